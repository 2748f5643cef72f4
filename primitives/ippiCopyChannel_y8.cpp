// One channel of four gathered into one, with SSE4.1 shuffles. Built with -msse4.1 only.
#include <smmintrin.h>

#include "ippiRows.h"

// The pointer addresses the channel, so a whole last pixel may reach past the picture: vectors
// stop short of the row's last pixel, which the plain kernel does.
void Sse41Rows::CopyC4C1_8u(const uint8_t* s, uint8_t* d, size_t n)
{
    const __m128i gather0 = _mm_setr_epi8(0, 4, 8, 12, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1);
    const __m128i gather1 = _mm_setr_epi8(-1, -1, -1, -1, 0, 4, 8, 12, -1, -1, -1, -1, -1, -1, -1, -1);
    const __m128i gather2 = _mm_setr_epi8(-1, -1, -1, -1, -1, -1, -1, -1, 0, 4, 8, 12, -1, -1, -1, -1);
    const __m128i gather3 = _mm_setr_epi8(-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, 0, 4, 8, 12);
    size_t x = 0;
    for (; x + 16 < n; x += 16) {
        const auto* pixels = reinterpret_cast<const __m128i*>(s + 4 * x);
        const __m128i low = _mm_or_si128(_mm_shuffle_epi8(_mm_loadu_si128(pixels), gather0),
                                         _mm_shuffle_epi8(_mm_loadu_si128(pixels + 1), gather1));
        const __m128i high = _mm_or_si128(_mm_shuffle_epi8(_mm_loadu_si128(pixels + 2), gather2),
                                          _mm_shuffle_epi8(_mm_loadu_si128(pixels + 3), gather3));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + x), _mm_or_si128(low, high));
    }
    PlainRows::CopyC4C1_8u(s + 4 * x, d + x, n - x);
}

void Sse41Rows::CopyC4C1_32f(const float* s, float* d, size_t n)
{
    size_t x = 0;
    for (; x + 4 < n; x += 4) {
        const float* p = s + 4 * x;
        const __m128 first = _mm_shuffle_ps(_mm_loadu_ps(p), _mm_loadu_ps(p + 4), _MM_SHUFFLE(0, 0, 0, 0));
        const __m128 second = _mm_shuffle_ps(_mm_loadu_ps(p + 8), _mm_loadu_ps(p + 12), _MM_SHUFFLE(0, 0, 0, 0));
        _mm_storeu_ps(d + x, _mm_shuffle_ps(first, second, _MM_SHUFFLE(2, 0, 2, 0)));
    }
    PlainRows::CopyC4C1_32f(s + 4 * x, d + x, n - x);
}
