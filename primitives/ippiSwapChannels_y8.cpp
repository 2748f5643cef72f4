// Channel reordering, four pixels to a byte shuffle. Built with -msse4.1 only.
#include <smmintrin.h>

#include "ippiRows.h"

void Sse41Rows::SwapChannels(uint8_t* sd, size_t n, const int order[4])
{
    alignas(16) int8_t select[16];
    for (int p = 0; p < 4; ++p)
        for (int c = 0; c < 4; ++c)
            select[4 * p + c] = static_cast<int8_t>(4 * p + order[c]);
    const __m128i shuffle = _mm_load_si128(reinterpret_cast<const __m128i*>(select));
    size_t x = 0;
    for (; x + 4 <= n; x += 4) {
        auto* pixels = reinterpret_cast<__m128i*>(sd + 4 * x);
        _mm_storeu_si128(pixels, _mm_shuffle_epi8(_mm_loadu_si128(pixels), shuffle));
    }
    PlainRows::SwapChannels(sd + 4 * x, n - x, order);
}
