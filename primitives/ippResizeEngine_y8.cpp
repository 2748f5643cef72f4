// The resize engine with SSE4.1 instructions: the passes of linear, cubic and Lanczos over
// four-channel bytes work on whole pixels at a time, and give the plain passes' results bit for
// bit. Everything else is the plain code, compiled for this processor. Built with -msse4.1 only.
#include <smmintrin.h>

#include <cstring>

#include "ippResizeRows.h"

namespace ResizeEngine {

namespace {

__m128i LoadLow32(const void* p)
{
    int32_t bits;
    std::memcpy(&bits, p, sizeof bits);
    return _mm_cvtsi32_si128(bits);
}

__m128i LoadLow64(const void* p)
{
    return _mm_loadl_epi64(static_cast<const __m128i*>(p));
}

// One output pixel of linear across: the four samples of a pixel and of its right neighbour,
// paired channel by channel, weighted in one multiply-add.
__m128i LinearPixel(const uint8_t* pair, const int16_t* weights)
{
    const __m128i interleave = _mm_setr_epi8(0, -1, 4, -1, 1, -1, 5, -1, 2, -1, 6, -1, 3, -1, 7, -1);
    const __m128i samples = _mm_shuffle_epi8(LoadLow64(pair), interleave);
    const __m128i sums = _mm_madd_epi16(samples, _mm_shuffle_epi32(LoadLow32(weights), 0));
    return _mm_srai_epi32(_mm_add_epi32(sums, _mm_set1_epi32(128)), 8);
}

void AlongLinearBytes4(const uint8_t* __restrict src, const AxisTable& along, int16_t* __restrict out)
{
    AlongEdges<4>(src, along, out);
    const int32_t* first = along.first;
    const int16_t* weights = along.fixed;
    int x = along.leftEdge;
    for (; x + 2 <= along.rightEdge; x += 2) {
        const __m128i left = LinearPixel(src + static_cast<ptrdiff_t>(first[x]) * 4, weights + 2 * x);
        const __m128i right = LinearPixel(src + static_cast<ptrdiff_t>(first[x + 1]) * 4, weights + 2 * x + 2);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 4 * x), _mm_packs_epi32(left, right));
    }
    if (x < along.rightEdge)
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out + 4 * x),
                         _mm_packs_epi32(LinearPixel(src + static_cast<ptrdiff_t>(first[x]) * 4, weights + 2 * x),
                                         _mm_setzero_si128()));
}

// Eight samples of linear down: the two rows paired sample by sample, weighted in one multiply-add.
__m128i DownLinearEight(const int16_t* r0, const int16_t* r1, __m128i weights)
{
    const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(r0));
    const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(r1));
    const __m128i rounding = _mm_set1_epi32(0x80000);
    const __m128i low = _mm_srai_epi32(_mm_add_epi32(_mm_madd_epi16(_mm_unpacklo_epi16(a, b), weights), rounding), 20);
    const __m128i high = _mm_srai_epi32(_mm_add_epi32(_mm_madd_epi16(_mm_unpackhi_epi16(a, b), weights), rounding), 20);
    return _mm_packs_epi32(low, high);
}

void DownLinearBytes(const int16_t* __restrict r0, const int16_t* __restrict r1, const int16_t* pair,
                     uint8_t* __restrict out, int length)
{
    const __m128i weights = _mm_shuffle_epi32(LoadLow32(pair), 0);
    int i = 0;
    for (; i + 16 <= length; i += 16) {
        const __m128i bytes = _mm_packus_epi16(DownLinearEight(r0 + i, r1 + i, weights),
                                               DownLinearEight(r0 + i + 8, r1 + i + 8, weights));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), bytes);
    }
    DownLinear(r0 + i, r1 + i, pair, out + i, length - i);
}

// One output pixel across: the four channels of each tap, widened to floats, weighted and summed
// in the plain order.
template <int TAPS>
void AlongWeightedBytes4(const uint8_t* __restrict src, const AxisTable& along, float* __restrict out)
{
    const int32_t* first = along.first;
    const float* weights = along.weights;
    for (int x = 0; x < along.count; ++x) {
        const uint8_t* taps = src + static_cast<ptrdiff_t>(first[x]) * 4;
        const float* w = weights + static_cast<ptrdiff_t>(x) * TAPS;
        __m128 sum = _mm_mul_ps(_mm_cvtepi32_ps(_mm_cvtepu8_epi32(LoadLow32(taps))), _mm_set1_ps(w[0]));
        for (int k = 1; k < TAPS; ++k)
            sum = _mm_add_ps(sum, _mm_mul_ps(_mm_cvtepi32_ps(_mm_cvtepu8_epi32(LoadLow32(taps + 4 * k))),
                                             _mm_set1_ps(w[k])));
        _mm_storeu_ps(out + 4 * x, sum);
    }
}

// Four samples down to bytes: v + 0.5000001 in double precision, truncated, limited by the packs.
template <int TAPS>
__m128i DownWeightedFour(const float* const* rows, const float* w, int i)
{
    __m128 sum = _mm_mul_ps(_mm_loadu_ps(rows[0] + i), _mm_set1_ps(w[0]));
    for (int k = 1; k < TAPS; ++k)
        sum = _mm_add_ps(sum, _mm_mul_ps(_mm_loadu_ps(rows[k] + i), _mm_set1_ps(w[k])));
    const __m128d rounding = _mm_set1_pd(0.5000001);
    const __m128i low = _mm_cvttpd_epi32(_mm_add_pd(_mm_cvtps_pd(sum), rounding));
    const __m128i high = _mm_cvttpd_epi32(_mm_add_pd(_mm_cvtps_pd(_mm_movehl_ps(sum, sum)), rounding));
    return _mm_unpacklo_epi64(low, high);
}

template <int TAPS>
void DownWeightedBytes(const float* const* rows, const float* w, uint8_t* __restrict out, int length)
{
    int i = 0;
    for (; i + 16 <= length; i += 16) {
        const __m128i first =
            _mm_packs_epi32(DownWeightedFour<TAPS>(rows, w, i), DownWeightedFour<TAPS>(rows, w, i + 4));
        const __m128i second =
            _mm_packs_epi32(DownWeightedFour<TAPS>(rows, w, i + 8), DownWeightedFour<TAPS>(rows, w, i + 12));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), _mm_packus_epi16(first, second));
    }
    for (; i < length; ++i)
        out[i] = ToByte(DownSum<TAPS>(rows, w, i));
}

template <typename T, int NCH>
struct Sse41LinearPasses : LinearPasses<T, NCH> {};

template <>
struct Sse41LinearPasses<uint8_t, 4> {
    using Store = int16_t;
    static void Along(const uint8_t* src, const AxisTable& along, Store* out) { AlongLinearBytes4(src, along, out); }
    static void Down(const Store* const* rows, const AxisTable& down, int y, uint8_t* out, int length)
    {
        DownLinearBytes(rows[0], rows[1], down.fixed + 2 * static_cast<ptrdiff_t>(y), out, length);
    }
};

template <>
struct Sse41LinearPasses<uint8_t, 1> : LinearPasses<uint8_t, 1> {
    static void Down(const Store* const* rows, const AxisTable& down, int y, uint8_t* out, int length)
    {
        DownLinearBytes(rows[0], rows[1], down.fixed + 2 * static_cast<ptrdiff_t>(y), out, length);
    }
};

template <int TAPS, typename T, int NCH>
struct Sse41WeightedPasses : WeightedPasses<TAPS, T, NCH> {};

template <int TAPS>
struct Sse41WeightedPasses<TAPS, uint8_t, 4> {
    using Store = float;
    static void Along(const uint8_t* src, const AxisTable& along, Store* out)
    {
        AlongWeightedBytes4<TAPS>(src, along, out);
    }
    static void Down(const Store* const* rows, const AxisTable& down, int y, uint8_t* out, int length)
    {
        DownWeightedBytes<TAPS>(rows, down.weights + static_cast<ptrdiff_t>(y) * TAPS, out, length);
    }
};

template <int TAPS>
struct Sse41WeightedPasses<TAPS, uint8_t, 1> : WeightedPasses<TAPS, uint8_t, 1> {
    using Store = float;
    static void Down(const Store* const* rows, const AxisTable& down, int y, uint8_t* out, int length)
    {
        DownWeightedBytes<TAPS>(rows, down.weights + static_cast<ptrdiff_t>(y) * TAPS, out, length);
    }
};

} // namespace

void ResampleSse41(const Job& job)
{
    ResampleWith<Sse41LinearPasses, Sse41WeightedPasses>(job);
}

} // namespace ResizeEngine
