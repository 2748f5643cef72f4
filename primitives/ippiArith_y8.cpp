// Float arithmetic with SSE4.1, a pixel to a vector, lane for lane the plain operations in the
// same order. Built with -msse4.1 only.
#include <smmintrin.h>

#include "ippiRows.h"

namespace {

// The three colour samples of a pixel; the fourth place is left as it was.
void StoreColour(float* d, __m128 pixel)
{
    _mm_storel_pi(reinterpret_cast<__m64*>(d), pixel);
    _mm_store_ss(d + 2, _mm_movehl_ps(pixel, pixel));
}

// A pixel's four samples are loaded whole, but the fourth of the row's last pixel may lie past the
// picture: the vectors stop before it, and the plain kernel does that pixel.
template <typename Apply>
size_t ColourPixels(const float* s, float* d, size_t n, Apply apply)
{
    size_t x = 0;
    for (; x + 1 < n; ++x)
        StoreColour(d + 4 * x, apply(_mm_loadu_ps(s + 4 * x)));
    return x;
}

} // namespace

void Sse41Rows::AddC(const float* s, float* d, size_t n, const float value[3])
{
    const __m128 add = _mm_setr_ps(value[0], value[1], value[2], 0.0f);
    const size_t done = ColourPixels(s, d, n, [&](__m128 pixel) { return _mm_add_ps(pixel, add); });
    PlainRows::AddC(s + 4 * done, d + 4 * done, n - done, value);
}

void Sse41Rows::MulC(const float* s, float* d, size_t n, const float value[3])
{
    const __m128 factor = _mm_setr_ps(value[0], value[1], value[2], 0.0f);
    const size_t done = ColourPixels(s, d, n, [&](__m128 pixel) { return _mm_mul_ps(pixel, factor); });
    PlainRows::MulC(s + 4 * done, d + 4 * done, n - done, value);
}

// Lane c computes ((twist[c][0] s0 + twist[c][3]) + twist[c][1] s1) + twist[c][2] s2.
void Sse41Rows::ColorTwist(const float* s, float* d, size_t n, const float twist[3][4])
{
    __m128 column[4];
    for (int j = 0; j < 4; ++j)
        column[j] = _mm_setr_ps(twist[0][j], twist[1][j], twist[2][j], 0.0f);
    const size_t done = ColourPixels(s, d, n, [&](__m128 pixel) {
        const __m128 s0 = _mm_shuffle_ps(pixel, pixel, _MM_SHUFFLE(0, 0, 0, 0));
        const __m128 s1 = _mm_shuffle_ps(pixel, pixel, _MM_SHUFFLE(1, 1, 1, 1));
        const __m128 s2 = _mm_shuffle_ps(pixel, pixel, _MM_SHUFFLE(2, 2, 2, 2));
        __m128 sum = _mm_add_ps(_mm_mul_ps(column[0], s0), column[3]);
        sum = _mm_add_ps(sum, _mm_mul_ps(column[1], s1));
        return _mm_add_ps(sum, _mm_mul_ps(column[2], s2));
    });
    PlainRows::ColorTwist(s + 4 * done, d + 4 * done, n - done, twist);
}

void Sse41Rows::Sqr(float* sd, size_t n)
{
    for (size_t x = 0; x < n; ++x) {
        const __m128 pixel = _mm_loadu_ps(sd + 4 * x);
        _mm_storeu_ps(sd + 4 * x, _mm_mul_ps(pixel, pixel));
    }
}

// Roots in double precision, rounded to float once; zero and not-a-number are kept bit for bit.
bool Sse41Rows::Sqrt(float* sd, size_t n)
{
    const __m128 zero = _mm_setzero_ps();
    const __m128 notANumber = _mm_castsi128_ps(_mm_set1_epi32(0x7fc00000));
    int negative = 0;
    for (size_t x = 0; x < n; ++x) {
        const __m128 pixel = _mm_loadu_ps(sd + 4 * x);
        const __m128 low = _mm_cvtpd_ps(_mm_sqrt_pd(_mm_cvtps_pd(pixel)));
        const __m128 high = _mm_cvtpd_ps(_mm_sqrt_pd(_mm_cvtps_pd(_mm_movehl_ps(pixel, pixel))));
        const __m128 root = _mm_movelh_ps(low, high);
        const __m128 below = _mm_cmplt_ps(pixel, zero);
        __m128 result = _mm_blendv_ps(pixel, root, _mm_cmpgt_ps(pixel, zero));
        result = _mm_blendv_ps(result, notANumber, below);
        negative |= _mm_movemask_ps(below);
        _mm_storeu_ps(sd + 4 * x, result);
    }
    return negative != 0;
}

void Sse41Rows::Threshold(float* sd, size_t n, const float threshold[4], const float value[4])
{
    const __m128 limit = _mm_loadu_ps(threshold);
    const __m128 replacement = _mm_loadu_ps(value);
    for (size_t x = 0; x < n; ++x) {
        const __m128 pixel = _mm_loadu_ps(sd + 4 * x);
        _mm_storeu_ps(sd + 4 * x, _mm_blendv_ps(pixel, replacement, _mm_cmplt_ps(pixel, limit)));
    }
}
