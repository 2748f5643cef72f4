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

void Sse41Rows::BGRToYCbCr422(const uint8_t* s, uint8_t* d, size_t n)
{
    const __m128i takeB = _mm_setr_epi8(0, -1, -1, -1, 4, -1, -1, -1, 8, -1, -1, -1, 12, -1, -1, -1);
    const __m128i takeG = _mm_setr_epi8(1, -1, -1, -1, 5, -1, -1, -1, 9, -1, -1, -1, 13, -1, -1, -1);
    const __m128i takeR = _mm_setr_epi8(2, -1, -1, -1, 6, -1, -1, -1, 10, -1, -1, -1, 14, -1, -1, -1);
    const __m128i lowBytes = _mm_setr_epi8(0, 4, 8, 12, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1);
    const __m128i highBytes = _mm_setr_epi8(-1, -1, -1, -1, 0, 4, 8, 12, -1, -1, -1, -1, -1, -1, -1, -1);
    const __m128i chromaBias = _mm_set1_epi32(0x1004000);
    size_t x = 0;
    for (; x + 4 <= n; x += 4) {
        const __m128i pixels = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + 4 * x));
        const __m128i b = _mm_shuffle_epi8(pixels, takeB);
        const __m128i g = _mm_shuffle_epi8(pixels, takeG);
        const __m128i r = _mm_shuffle_epi8(pixels, takeR);
        const __m128i luma = _mm_srai_epi32(
            _mm_add_epi32(_mm_add_epi32(_mm_add_epi32(Times(b, 6423), Times(g, 33030)), Times(r, 16843)),
                          _mm_set1_epi32(0x108000)),
            16);
        // Sums of each pair, in the low two lanes.
        const __m128i bPair = _mm_hadd_epi32(b, b);
        const __m128i gPair = _mm_hadd_epi32(g, g);
        const __m128i rPair = _mm_hadd_epi32(r, r);
        const __m128i cb = _mm_srai_epi32(
            _mm_add_epi32(_mm_sub_epi32(_mm_sub_epi32(Times(bPair, 28770), Times(gPair, 19071)), Times(rPair, 9699)),
                          chromaBias),
            17);
        const __m128i cr = _mm_srai_epi32(
            _mm_add_epi32(_mm_add_epi32(_mm_sub_epi32(Times(rPair, 28770), Times(gPair, 24117)), Times(bPair, -4653)),
                          chromaBias),
            17);
        const __m128i chroma = _mm_unpacklo_epi32(cb, cr);
        // Y0, Cb, Y1, Cr, Y2, Cb, Y3, Cr, each cut to its low byte.
        const __m128i first = _mm_shuffle_epi8(_mm_unpacklo_epi32(luma, chroma), lowBytes);
        const __m128i second = _mm_shuffle_epi8(_mm_unpackhi_epi32(luma, chroma), highBytes);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(d + 2 * x), _mm_or_si128(first, second));
    }
    PlainRows::BGRToYCbCr422(s + 4 * x, d + 2 * x, n - x);
}
