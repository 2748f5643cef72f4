// Packed 4:2:2 conversions with SSE4.1, four pixels at a time in 32-bit lanes, with the plain
// kernels' integer arithmetic. Built with -msse4.1 only.
#include <smmintrin.h>

#include "ippiRows.h"

namespace {

__m128i Times(__m128i v, int factor)
{
    return _mm_mullo_epi32(v, _mm_set1_epi32(factor));
}

} // namespace

void Sse41Rows::YCbCr422ToBGR(const uint8_t* s, uint8_t* d, size_t n, uint8_t alphaValue)
{
    const __m128i takeY = _mm_setr_epi8(0, -1, -1, -1, 2, -1, -1, -1, 4, -1, -1, -1, 6, -1, -1, -1);
    const __m128i takeCb = _mm_setr_epi8(1, -1, -1, -1, 1, -1, -1, -1, 5, -1, -1, -1, 5, -1, -1, -1);
    const __m128i takeCr = _mm_setr_epi8(3, -1, -1, -1, 3, -1, -1, -1, 7, -1, -1, -1, 7, -1, -1, -1);
    const __m128i interleave = _mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
    const __m128i alpha = _mm_set1_epi32(alphaValue);
    size_t x = 0;
    for (; x + 4 <= n; x += 4) {
        const __m128i packed = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(s + 2 * x));
        const __m128i luma = Times(_mm_shuffle_epi8(packed, takeY), 76284);
        const __m128i cb = _mm_shuffle_epi8(packed, takeCb);
        const __m128i cr = _mm_shuffle_epi8(packed, takeCr);
        const __m128i blue =
            _mm_srai_epi32(_mm_add_epi32(_mm_add_epi32(luma, Times(cb, 132186)), _mm_set1_epi32(-18140365)), 16);
        const __m128i green = _mm_srai_epi32(
            _mm_add_epi32(_mm_sub_epi32(_mm_sub_epi32(luma, Times(cr, 53281)), Times(cb, 25690)),
                          _mm_set1_epi32(8887730)),
            16);
        const __m128i red =
            _mm_srai_epi32(_mm_add_epi32(_mm_add_epi32(luma, Times(cr, 104595)), _mm_set1_epi32(-14608761)), 16);
        // Both packs saturate, which limits each result to 0 to 255.
        const __m128i planes = _mm_packus_epi16(_mm_packs_epi32(blue, green), _mm_packs_epi32(red, alpha));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 4 * x), _mm_shuffle_epi8(planes, interleave));
    }
    PlainRows::YCbCr422ToBGR(s + 2 * x, d + 4 * x, n - x, alphaValue);
}

// Products in 16-bit pairs: 33030 G is taken as 16515 G twice, once beside B and once beside R,
// and chroma from the pair sums of B, G and R. Results lie within 16 to 240, so packing them with
// saturation gives the same bytes as cutting them.
void Sse41Rows::BGRToYCbCr422(const uint8_t* s, uint8_t* d, size_t n)
{
    const __m128i firstPair = _mm_setr_epi8(0, -1, 1, -1, 2, -1, 1, -1, 4, -1, 5, -1, 6, -1, 5, -1);
    const __m128i secondPair = _mm_setr_epi8(8, -1, 9, -1, 10, -1, 9, -1, 12, -1, 13, -1, 14, -1, 13, -1);
    const __m128i lumaWeights = _mm_setr_epi16(6423, 16515, 16843, 16515, 6423, 16515, 16843, 16515);
    const __m128i cbWeights = _mm_setr_epi16(28770, -19071, -9699, 0, 28770, -19071, -9699, 0);
    const __m128i crWeights = _mm_setr_epi16(-4653, -24117, 28770, 0, -4653, -24117, 28770, 0);
    // From Y0, Y1, Y2, Y3, Cb01, Cb23, Cr01, Cr23 to Y0, Cb01, Y1, Cr01, Y2, Cb23, Y3, Cr23.
    const __m128i order = _mm_setr_epi8(0, 4, 1, 6, 2, 5, 3, 7, -1, -1, -1, -1, -1, -1, -1, -1);
    size_t x = 0;
    for (; x + 4 <= n; x += 4) {
        const __m128i pixels = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + 4 * x));
        const __m128i luma = _mm_srai_epi32(
            _mm_add_epi32(_mm_hadd_epi32(_mm_madd_epi16(_mm_shuffle_epi8(pixels, firstPair), lumaWeights),
                                         _mm_madd_epi16(_mm_shuffle_epi8(pixels, secondPair), lumaWeights)),
                          _mm_set1_epi32(0x108000)),
            16);
        const __m128i low = _mm_cvtepu8_epi16(pixels);
        const __m128i high = _mm_cvtepu8_epi16(_mm_srli_si128(pixels, 8));
        const __m128i sums = _mm_unpacklo_epi64(_mm_add_epi16(low, _mm_srli_si128(low, 8)),
                                                _mm_add_epi16(high, _mm_srli_si128(high, 8)));
        const __m128i chroma = _mm_srai_epi32(
            _mm_add_epi32(_mm_hadd_epi32(_mm_madd_epi16(sums, cbWeights), _mm_madd_epi16(sums, crWeights)),
                          _mm_set1_epi32(0x1004000)),
            17);
        const __m128i bytes = _mm_packus_epi16(_mm_packs_epi32(luma, chroma), _mm_setzero_si128());
        _mm_storel_epi64(reinterpret_cast<__m128i*>(d + 2 * x), _mm_shuffle_epi8(bytes, order));
    }
    PlainRows::BGRToYCbCr422(s + 4 * x, d + 2 * x, n - x);
}
