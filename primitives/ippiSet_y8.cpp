// Region fills with SSE4.1 stores. Built with -msse4.1 only.
#include <smmintrin.h>

#include <cstring>

#include "ippiRows.h"

namespace {

// Stores one 16-byte pattern along the row and leaves the rest to `tail`.
size_t StorePattern(__m128i pattern, uint8_t* d, size_t bytes)
{
    size_t i = 0;
    for (; i + 64 <= bytes; i += 64) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i), pattern);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i + 16), pattern);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i + 32), pattern);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i + 48), pattern);
    }
    for (; i + 16 <= bytes; i += 16)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i), pattern);
    return i;
}

} // namespace

void Sse41Rows::Set_8u_C1(uint8_t value, uint8_t* d, size_t n)
{
    const size_t done = StorePattern(_mm_set1_epi8(static_cast<char>(value)), d, n);
    PlainRows::Set_8u_C1(value, d + done, n - done);
}

void Sse41Rows::Set_32f_C1(float value, float* d, size_t n)
{
    const size_t done = StorePattern(_mm_castps_si128(_mm_set1_ps(value)), reinterpret_cast<uint8_t*>(d), 4 * n) / 4;
    PlainRows::Set_32f_C1(value, d + done, n - done);
}

void Sse41Rows::Set_8u_C4(const uint8_t value[4], uint8_t* d, size_t n)
{
    int32_t pixel;
    std::memcpy(&pixel, value, 4);
    const size_t done = StorePattern(_mm_set1_epi32(pixel), d, 4 * n) / 4;
    PlainRows::Set_8u_C4(value, d + 4 * done, n - done);
}

void Sse41Rows::Set_32f_C4(const float value[4], float* d, size_t n)
{
    const size_t done =
        StorePattern(_mm_castps_si128(_mm_loadu_ps(value)), reinterpret_cast<uint8_t*>(d), 16 * n) / 16;
    PlainRows::Set_32f_C4(value, d + 4 * done, n - done);
}
