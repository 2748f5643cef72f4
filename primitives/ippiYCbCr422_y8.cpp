// Packed 4:2:2 conversions with SSE4.1, eight pixels at a time in 32-bit lanes, with the plain
// kernels' integer arithmetic. Built with -msse4.1 only.
#include <smmintrin.h>

#include "ippiRows.h"

namespace {

// The high 16 bits of each 32-bit lane of `even` and `odd`, as eight 16-bit lanes taken in turn
// from the two: (x >> 16) for sums whose results fit 16 signed bits.
__m128i HighHalves(__m128i even, __m128i odd)
{
    return _mm_blend_epi16(_mm_srli_epi32(even, 16), odd, 0xaa);
}

} // namespace

// Products by 16-bit multiply-adds, their factors scaled by a byte multiply-add so that both fit
// 16 signed bits: 76284 Y = 19071 (4 Y), 132186 Cb = 22031 (6 Cb), 104595 Cr = 20919 (5 Cr). Green's
// chroma, whose 53281 has no such split, is -1901 Cr - 25690 (Cb + 2 Cr). The even pixels of four
// pairs are in one vector and the odd ones in another, so that the pairs' chroma terms, worked out
// once a pair, add to both as they stand; the results' high halves then interleave back into pixel
// order. All sums are exact in 32 bits, as in the plain kernel.
void Sse41Rows::YCbCr422ToBGR(const uint8_t* s, uint8_t* d, size_t n, uint8_t alphaValue)
{
    const __m128i lumaTimes4 = _mm_setr_epi8(4, 0, 4, 0, 4, 0, 4, 0, 4, 0, 4, 0, 4, 0, 4, 0);
    const __m128i evenLuma19071 = _mm_setr_epi16(19071, 0, 19071, 0, 19071, 0, 19071, 0);
    const __m128i oddLuma19071 = _mm_setr_epi16(0, 19071, 0, 19071, 0, 19071, 0, 19071);
    const __m128i cbTimes6CrTimes5 = _mm_setr_epi8(0, 6, 0, 5, 0, 6, 0, 5, 0, 6, 0, 5, 0, 6, 0, 5);
    const __m128i blueFactors = _mm_setr_epi16(22031, 0, 22031, 0, 22031, 0, 22031, 0);
    const __m128i redFactors = _mm_setr_epi16(0, 20919, 0, 20919, 0, 20919, 0, 20919);
    // Bytes Cr, -, Cb, Cr of each pair, weighed 1, 0, 1, 2: lanes Cr and Cb + 2 Cr.
    const __m128i greenBytes = _mm_setr_epi8(3, -1, 1, 3, 7, -1, 5, 7, 11, -1, 9, 11, 15, -1, 13, 15);
    const __m128i greenWeights = _mm_setr_epi8(1, 0, 1, 2, 1, 0, 1, 2, 1, 0, 1, 2, 1, 0, 1, 2);
    const __m128i greenFactors = _mm_setr_epi16(-1901, -25690, -1901, -25690, -1901, -25690, -1901, -25690);
    const __m128i alpha = _mm_set1_epi16(alphaValue);
    size_t x = 0;
    for (; x + 8 <= n; x += 8) {
        const __m128i packed = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + 2 * x));
        const __m128i luma = _mm_maddubs_epi16(packed, lumaTimes4);
        const __m128i evenLuma = _mm_madd_epi16(luma, evenLuma19071);
        const __m128i oddLuma = _mm_madd_epi16(luma, oddLuma19071);
        const __m128i chroma = _mm_maddubs_epi16(packed, cbTimes6CrTimes5);
        const __m128i blueChroma = _mm_add_epi32(_mm_madd_epi16(chroma, blueFactors), _mm_set1_epi32(-18140365));
        const __m128i redChroma = _mm_add_epi32(_mm_madd_epi16(chroma, redFactors), _mm_set1_epi32(-14608761));
        const __m128i greenPairs = _mm_maddubs_epi16(_mm_shuffle_epi8(packed, greenBytes), greenWeights);
        const __m128i greenChroma = _mm_add_epi32(_mm_madd_epi16(greenPairs, greenFactors), _mm_set1_epi32(8887730));
        const __m128i blue =
            HighHalves(_mm_add_epi32(evenLuma, blueChroma), _mm_add_epi32(oddLuma, blueChroma));
        const __m128i green =
            HighHalves(_mm_add_epi32(evenLuma, greenChroma), _mm_add_epi32(oddLuma, greenChroma));
        const __m128i red = HighHalves(_mm_add_epi32(evenLuma, redChroma), _mm_add_epi32(oddLuma, redChroma));
        // The pack saturates, which limits each result to 0 to 255.
        const __m128i blueRed = _mm_packus_epi16(blue, red);
        const __m128i greenAlpha = _mm_packus_epi16(green, alpha);
        const __m128i blueGreen = _mm_unpacklo_epi8(blueRed, greenAlpha);
        const __m128i redAlpha = _mm_unpackhi_epi8(blueRed, greenAlpha);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 4 * x), _mm_unpacklo_epi16(blueGreen, redAlpha));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 4 * x + 16), _mm_unpackhi_epi16(blueGreen, redAlpha));
    }
    PlainRows::YCbCr422ToBGR(s + 2 * x, d + 4 * x, n - x, alphaValue);
}

// Products in 16-bit pairs: 33030 G is taken as 16515 G twice, once beside B and once beside R.
// Chroma comes from the pair sums of B, G and R, made by a byte multiply-add with ones, and takes
// its constant from the alpha sum's place: 1025 x 16384 = 0x1004000. Results lie within 16 to
// 240, so packing them with saturation gives the same bytes as cutting them.
void Sse41Rows::BGRToYCbCr422(const uint8_t* s, uint8_t* d, size_t n)
{
    const __m128i blueGreen = _mm_setr_epi8(0, -1, 1, -1, 4, -1, 5, -1, 8, -1, 9, -1, 12, -1, 13, -1);
    const __m128i redGreen = _mm_setr_epi8(2, -1, 1, -1, 6, -1, 5, -1, 10, -1, 9, -1, 14, -1, 13, -1);
    const __m128i lumaBlueGreen = _mm_setr_epi16(6423, 16515, 6423, 16515, 6423, 16515, 6423, 16515);
    const __m128i lumaRedGreen = _mm_setr_epi16(16843, 16515, 16843, 16515, 16843, 16515, 16843, 16515);
    const __m128i lumaRounding = _mm_set1_epi32(0x108000);
    // Sums of two pairs: B, G of the first and of the second, then R, A of the first and second.
    const __m128i pairSamples = _mm_setr_epi8(0, 4, 1, 5, 8, 12, 9, 13, 2, 6, 3, 7, 10, 14, 11, 15);
    const __m128i chromaConstant = _mm_set1_epi32(1025 << 16);
    const __m128i cbBlueGreen = _mm_setr_epi16(28770, -19071, 28770, -19071, 28770, -19071, 28770, -19071);
    const __m128i cbRed = _mm_setr_epi16(-9699, 16384, -9699, 16384, -9699, 16384, -9699, 16384);
    const __m128i crBlueGreen = _mm_setr_epi16(-4653, -24117, -4653, -24117, -4653, -24117, -4653, -24117);
    const __m128i crRed = _mm_setr_epi16(28770, 16384, 28770, 16384, 28770, 16384, 28770, 16384);
    // From Y0, Y4, Y1, Y5, Y2, Y6, Y3, Y7, Cb01, Cb23, Cb45, Cb67, Cr01, Cr23, Cr45, Cr67 to
    // Y0, Cb01, Y1, Cr01, ... Y7, Cr67.
    const __m128i order = _mm_setr_epi8(0, 8, 2, 12, 4, 9, 6, 13, 1, 10, 3, 14, 5, 11, 7, 15);
    size_t x = 0;
    for (; x + 8 <= n; x += 8) {
        const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + 4 * x));
        const __m128i second = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + 4 * x + 16));
        const __m128i firstLuma =
            _mm_add_epi32(_mm_add_epi32(_mm_madd_epi16(_mm_shuffle_epi8(first, blueGreen), lumaBlueGreen),
                                        _mm_madd_epi16(_mm_shuffle_epi8(first, redGreen), lumaRedGreen)),
                          lumaRounding);
        const __m128i secondLuma =
            _mm_add_epi32(_mm_add_epi32(_mm_madd_epi16(_mm_shuffle_epi8(second, blueGreen), lumaBlueGreen),
                                        _mm_madd_epi16(_mm_shuffle_epi8(second, redGreen), lumaRedGreen)),
                          lumaRounding);
        const __m128i firstSums = _mm_maddubs_epi16(_mm_shuffle_epi8(first, pairSamples), _mm_set1_epi8(1));
        const __m128i secondSums = _mm_maddubs_epi16(_mm_shuffle_epi8(second, pairSamples), _mm_set1_epi8(1));
        const __m128i blueGreenSums = _mm_unpacklo_epi64(firstSums, secondSums);
        const __m128i redConstant = _mm_blend_epi16(_mm_unpackhi_epi64(firstSums, secondSums), chromaConstant, 0xaa);
        const __m128i cb = _mm_srai_epi32(
            _mm_add_epi32(_mm_madd_epi16(blueGreenSums, cbBlueGreen), _mm_madd_epi16(redConstant, cbRed)), 17);
        const __m128i cr = _mm_srai_epi32(
            _mm_add_epi32(_mm_madd_epi16(blueGreenSums, crBlueGreen), _mm_madd_epi16(redConstant, crRed)), 17);
        // (x >> 16) of each luma sum, the two vectors' lanes taken in turn.
        const __m128i luma = _mm_blend_epi16(_mm_srli_epi32(firstLuma, 16), secondLuma, 0xaa);
        const __m128i bytes = _mm_packus_epi16(luma, _mm_packs_epi32(cb, cr));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 2 * x), _mm_shuffle_epi8(bytes, order));
    }
    PlainRows::BGRToYCbCr422(s + 4 * x, d + 2 * x, n - x);
}
