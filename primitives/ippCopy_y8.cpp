// Region copies with SSE4.1 loads and stores. Built with -msse4.1 only.
#include <smmintrin.h>

#include "ippiRows.h"

// Overlapping rows keep the plain copy, whose memmove defines what an overlapping copy gives.
void Sse41Rows::CopyBytes(const uint8_t* s, uint8_t* d, size_t bytes)
{
    const uintptr_t from = reinterpret_cast<uintptr_t>(s);
    const uintptr_t to = reinterpret_cast<uintptr_t>(d);
    if (from < to + bytes && to < from + bytes) {
        PlainRows::CopyBytes(s, d, bytes);
        return;
    }
    size_t i = 0;
    for (; i + 64 <= bytes; i += 64) {
        const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
        const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i + 16));
        const __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i + 32));
        const __m128i e = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i + 48));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i), a);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i + 16), b);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i + 32), c);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i + 48), e);
    }
    for (; i + 16 <= bytes; i += 16)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i), _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i)));
    PlainRows::CopyBytes(s + i, d + i, bytes - i);
}
