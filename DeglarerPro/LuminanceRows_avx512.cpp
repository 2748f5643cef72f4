// Built with AVX-512 (F, BW, VNNI); the library calls it only on processors that have them.
#include <immintrin.h>

#include <algorithm>

#include "LuminanceRows.h"

namespace {

// Per-lane sums of at most this many blocks stay below 2^32.
const int kBlocksPerFlush = 1 << 16;
const int kPixelsPerBlock = 16;
const __mmask16 kAllLanes = 0xFFFF;

uint64_t AddLanes(__m512i lanes)
{
    alignas(64) uint32_t values[16];
    _mm512_store_si512(values, lanes);
    uint64_t sum = 0;
    for (uint32_t value : values)
        sum += value;
    return sum;
}

// Two four-byte dot products give 76 r + 149 g + 30 b exactly: 149 doesn't fit a signed byte
// weight, so green is weighted 127 + 22. Bytes are given as little-endian weight words.
template <class Pixel>
uint64_t Sum8u(const Pixel* row, int width, int firstWeights, int secondWeights)
{
    const __m512i first = _mm512_set1_epi32(firstWeights);
    const __m512i second = _mm512_set1_epi32(secondWeights);
    uint64_t sum = 0;
    int x = 0;
    while (x < width) {
        const int blocks = std::min((width - x + kPixelsPerBlock - 1) / kPixelsPerBlock, kBlocksPerFlush);
        __m512i lanes = _mm512_setzero_si512();
        for (int block = 0; block < blocks; ++block, x += kPixelsPerBlock) {
            // The last block loads only the row's remaining pixels; the others read as black.
            const int remaining = std::min(width - x, kPixelsPerBlock);
            const __mmask16 mask = static_cast<__mmask16>((1u << remaining) - 1u);
            const __m512i pixels = _mm512_maskz_loadu_epi32(mask, row + x);
            const __m512i weighted =
                _mm512_dpbusd_epi32(_mm512_dpbusd_epi32(_mm512_setzero_si512(), pixels, first), pixels, second);
            // The zero-masked shift: the plain form trips a false uninitialised-value warning.
            lanes = _mm512_add_epi32(lanes, _mm512_maskz_srli_epi32(kAllLanes, weighted, 8));
        }
        sum += AddLanes(lanes);
    }
    return sum;
}

uint64_t Sum8uPlain(const VideoSample* row, int width)
{
    // Bytes B, G, R, A.
    return Sum8u(row, width, 0x004C7F1E, 0x00001600);
}

uint64_t Sum8uSwapped(const VideoSampleSwapped* row, int width)
{
    // Bytes A, R, G, B.
    return Sum8u(row, width, 0x1E7F4C00, 0x00160000);
}

} // namespace

// The float rows are bound by memory, and the AVX2 set already keeps pace with it.
const LuminanceRowKernels kLuminanceRowsAvx512 = {
    "avx512", Sum8uPlain, Sum8uSwapped, kLuminanceRowsAvx2.sum32f, kLuminanceRowsAvx2.sum32fSwapped,
};
