// Packed 4:2:2 conversions with SSE4.1, eight pixels at a time in 32-bit lanes, with the plain
// kernels' integer arithmetic. Built with -msse4.1 only.
#include <smmintrin.h>

#include "ippiRows.h"

namespace {

__m128i Times(__m128i v, int factor)
{
    return _mm_mullo_epi32(v, _mm_set1_epi32(factor));
}

// The high 16 bits of each 32-bit lane of `even` and `odd`, as eight 16-bit lanes taken in turn
// from the two: (x >> 16) for sums whose results fit 16 signed bits.
__m128i HighHalves(__m128i even, __m128i odd)
{
    return _mm_blend_epi16(_mm_srli_epi32(even, 16), odd, 0xaa);
}

} // namespace

// The even pixels of four pairs in one vector and the odd ones in another, so that the pairs'
// chroma terms, worked out once a pair, add to both as they stand; the results' high halves then
// interleave back into pixel order.
void Sse41Rows::YCbCr422ToBGR(const uint8_t* s, uint8_t* d, size_t n, uint8_t alphaValue)
{
    const __m128i takeEvenY = _mm_setr_epi8(0, -1, -1, -1, 4, -1, -1, -1, 8, -1, -1, -1, 12, -1, -1, -1);
    const __m128i takeOddY = _mm_setr_epi8(2, -1, -1, -1, 6, -1, -1, -1, 10, -1, -1, -1, 14, -1, -1, -1);
    const __m128i takeCb = _mm_setr_epi8(1, -1, -1, -1, 5, -1, -1, -1, 9, -1, -1, -1, 13, -1, -1, -1);
    const __m128i takeCr = _mm_setr_epi8(3, -1, -1, -1, 7, -1, -1, -1, 11, -1, -1, -1, 15, -1, -1, -1);
    const __m128i alpha = _mm_set1_epi16(alphaValue);
    size_t x = 0;
    for (; x + 8 <= n; x += 8) {
        const __m128i packed = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + 2 * x));
        const __m128i evenLuma = Times(_mm_shuffle_epi8(packed, takeEvenY), 76284);
        const __m128i oddLuma = Times(_mm_shuffle_epi8(packed, takeOddY), 76284);
        const __m128i cb = _mm_shuffle_epi8(packed, takeCb);
        const __m128i cr = _mm_shuffle_epi8(packed, takeCr);
        const __m128i blueChroma = _mm_add_epi32(Times(cb, 132186), _mm_set1_epi32(-18140365));
        const __m128i greenChroma =
            _mm_add_epi32(_mm_add_epi32(Times(cr, -53281), Times(cb, -25690)), _mm_set1_epi32(8887730));
        const __m128i redChroma = _mm_add_epi32(Times(cr, 104595), _mm_set1_epi32(-14608761));
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
