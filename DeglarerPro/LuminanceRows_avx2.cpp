// Built with AVX2 only; the library calls it only on processors that have it.
#include <immintrin.h>

#include <algorithm>

#include "LuminanceRows.h"

namespace {

// Per-lane sums of at most this many blocks stay below 2^32.
const int kBlocksPerFlush = 1 << 16;
const int kPixelsPerBlock = 8;

uint64_t AddLanes(__m256i lanes)
{
    alignas(32) uint32_t values[8];
    _mm256_store_si256(reinterpret_cast<__m256i*>(values), lanes);
    uint64_t sum = 0;
    for (uint32_t value : values)
        sum += value;
    return sum;
}

// Each 32-bit pixel splits into the 16-bit lanes (byte 0, byte 2) and (byte 1, byte 3), so that
// two multiply-adds give 76 r + 149 g + 30 b exactly; the shift then drops the fraction per pixel.
template <class Pixel>
uint64_t Sum8u(const Pixel* row, int width, __m256i evenWeights, __m256i oddWeights)
{
    const __m256i evenBytes = _mm256_set1_epi32(0x00FF00FF);
    uint64_t sum = 0;
    int x = 0;
    while (width - x >= kPixelsPerBlock) {
        const int blocks = std::min((width - x) / kPixelsPerBlock, kBlocksPerFlush);
        __m256i lanes = _mm256_setzero_si256();
        for (int block = 0; block < blocks; ++block, x += kPixelsPerBlock) {
            const __m256i pixels = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(row + x));
            const __m256i even = _mm256_and_si256(pixels, evenBytes);
            const __m256i odd = _mm256_srli_epi16(pixels, 8);
            const __m256i weighted =
                _mm256_add_epi32(_mm256_madd_epi16(even, evenWeights), _mm256_madd_epi16(odd, oddWeights));
            lanes = _mm256_add_epi32(lanes, _mm256_srli_epi32(weighted, 8));
        }
        sum += AddLanes(lanes);
    }
    for (; x < width; ++x)
        sum += Luminance8u(row[x].r, row[x].g, row[x].b);
    return sum;
}

uint64_t Sum8uPlain(const VideoSample* row, int width)
{
    // Bytes B, G, R, A: even lanes (B, R), odd lanes (G, A).
    return Sum8u(row, width, _mm256_set1_epi32((76 << 16) | 30), _mm256_set1_epi32(149));
}

uint64_t Sum8uSwapped(const VideoSampleSwapped* row, int width)
{
    // Bytes A, R, G, B: even lanes (A, G), odd lanes (R, B).
    return Sum8u(row, width, _mm256_set1_epi32(149 << 16), _mm256_set1_epi32((30 << 16) | 76));
}

// Four float pixels, one a 128-bit lane pair, transposed so that each channel fills a vector;
// the lanes come out in a fixed order that the per-lane sums don't care about.
struct Channels {
    __m256 c0, c1, c2, c3;
};

Channels Transpose(const float* pixels)
{
    const __m256 p01 = _mm256_loadu_ps(pixels);
    const __m256 p23 = _mm256_loadu_ps(pixels + 8);
    const __m256 p45 = _mm256_loadu_ps(pixels + 16);
    const __m256 p67 = _mm256_loadu_ps(pixels + 24);
    const __m256 t0 = _mm256_unpacklo_ps(p01, p23);
    const __m256 t1 = _mm256_unpackhi_ps(p01, p23);
    const __m256 t2 = _mm256_unpacklo_ps(p45, p67);
    const __m256 t3 = _mm256_unpackhi_ps(p45, p67);
    return Channels{_mm256_shuffle_ps(t0, t2, 0x44), _mm256_shuffle_ps(t0, t2, 0xEE),
                    _mm256_shuffle_ps(t1, t3, 0x44), _mm256_shuffle_ps(t1, t3, 0xEE)};
}

double AddLanes(__m256d lanes)
{
    alignas(32) double values[4];
    _mm256_store_pd(values, lanes);
    return (values[0] + values[1]) + (values[2] + values[3]);
}

// The luminance is worked out per lane with the same single-precision operations, in the same
// order, as one pixel at a time; only the double sums are split over lanes.
template <class Pixel, bool kSwapped>
double Sum32f(const Pixel* row, int width)
{
    const __m256 redWeight = _mm256_set1_ps(Luminance32f(1.0f, 0.0f, 0.0f));
    const __m256 greenWeight = _mm256_set1_ps(Luminance32f(0.0f, 1.0f, 0.0f));
    const __m256 blueWeight = _mm256_set1_ps(Luminance32f(0.0f, 0.0f, 1.0f));
    __m256d low = _mm256_setzero_pd();
    __m256d high = _mm256_setzero_pd();
    int x = 0;
    for (; width - x >= kPixelsPerBlock; x += kPixelsPerBlock) {
        const Channels channels = Transpose(reinterpret_cast<const float*>(row + x));
        const __m256 red = kSwapped ? channels.c1 : channels.c2;
        const __m256 green = kSwapped ? channels.c2 : channels.c1;
        const __m256 blue = kSwapped ? channels.c3 : channels.c0;
        const __m256 luminance = _mm256_add_ps(
            _mm256_add_ps(_mm256_mul_ps(redWeight, red), _mm256_mul_ps(greenWeight, green)),
            _mm256_mul_ps(blueWeight, blue));
        low = _mm256_add_pd(low, _mm256_cvtps_pd(_mm256_castps256_ps128(luminance)));
        high = _mm256_add_pd(high, _mm256_cvtps_pd(_mm256_extractf128_ps(luminance, 1)));
    }
    double sum = AddLanes(_mm256_add_pd(low, high));
    for (; x < width; ++x)
        sum += static_cast<double>(Luminance32f(row[x].r, row[x].g, row[x].b));
    return sum;
}

} // namespace

const LuminanceRowKernels kLuminanceRowsAvx2 = {
    "avx2", Sum8uPlain, Sum8uSwapped, Sum32f<VideoSampleFloat, false>, Sum32f<VideoSampleSwappedFloat, true>,
};
