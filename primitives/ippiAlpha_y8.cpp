// Alpha compositing and premultiplication with SSE4.1, two pixels to a vector of 16-bit lanes.
// Built with -msse4.1 only.
#include <smmintrin.h>

#include "ippdefs.h"
#include "ippiRows.h"

namespace {

// m(t) = (t + (t >> 8) + 1) >> 8 for products of two bytes. For every t up to 255 x 255 this
// equals ((t + 1) x 257) >> 16, one add and one high multiply.
__m128i Divide255(__m128i product)
{
    return _mm_mulhi_epu16(_mm_add_epi16(product, _mm_set1_epi16(1)), _mm_set1_epi16(257));
}

// Each pixel's alpha in all four of its lanes.
__m128i SpreadAlpha(__m128i pixels)
{
    return _mm_shufflehi_epi16(_mm_shufflelo_epi16(pixels, _MM_SHUFFLE(3, 3, 3, 3)), _MM_SHUFFLE(3, 3, 3, 3));
}

// Alpha in the colour lanes and 255 in the alpha lane, so that m(v * factor) premultiplies the
// colours and keeps alpha: m(255 x) = x.
__m128i PremulFactors(__m128i pixels)
{
    return _mm_blend_epi16(SpreadAlpha(pixels), _mm_set1_epi16(255), 0x88);
}

__m128i Premultiply(__m128i pixels)
{
    return Divide255(_mm_mullo_epi16(pixels, PremulFactors(pixels)));
}

// Over on straight colours: m(s1 a) + m((255 - a) m(s2 b)); alpha a + m((255 - a) b).
__m128i Over(__m128i first, __m128i second)
{
    const __m128i rest = _mm_sub_epi16(_mm_set1_epi16(255), SpreadAlpha(first));
    return _mm_add_epi16(Premultiply(first), Divide255(_mm_mullo_epi16(rest, Premultiply(second))));
}

// Over on premultiplied colours: s1 + m((255 - a) s2), limited to 255 when packed.
__m128i OverPremul(__m128i first, __m128i second)
{
    const __m128i rest = _mm_sub_epi16(_mm_set1_epi16(255), SpreadAlpha(first));
    return _mm_add_epi16(first, Divide255(_mm_mullo_epi16(rest, second)));
}

__m128i LowPixels(__m128i bytes)
{
    return _mm_cvtepu8_epi16(bytes);
}

__m128i HighPixels(__m128i bytes)
{
    return _mm_cvtepu8_epi16(_mm_srli_si128(bytes, 8));
}

template <__m128i (*Rule)(__m128i, __m128i)>
size_t Composite(const uint8_t* s1, const uint8_t* s2, uint8_t* d, size_t n)
{
    size_t x = 0;
    for (; x + 4 <= n; x += 4) {
        const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s1 + 4 * x));
        const __m128i second = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s2 + 4 * x));
        const __m128i low = Rule(LowPixels(first), LowPixels(second));
        const __m128i high = Rule(HighPixels(first), HighPixels(second));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 4 * x), _mm_packus_epi16(low, high));
    }
    return x;
}

} // namespace

// The two rules the library composites with have vectors; the others run the plain kernel.
void Sse41Rows::AlphaComp(const uint8_t* s1, const uint8_t* s2, uint8_t* d, size_t n, int alphaType)
{
    size_t done = 0;
    if (alphaType == ippAlphaOver)
        done = Composite<Over>(s1, s2, d, n);
    else if (alphaType == ippAlphaOverPremul)
        done = Composite<OverPremul>(s1, s2, d, n);
    PlainRows::AlphaComp(s1 + 4 * done, s2 + 4 * done, d + 4 * done, n - done, alphaType);
}

void Sse41Rows::AlphaPremul(const uint8_t* s, uint8_t* d, size_t n)
{
    size_t x = 0;
    for (; x + 4 <= n; x += 4) {
        const __m128i pixels = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + 4 * x));
        const __m128i low = Premultiply(LowPixels(pixels));
        const __m128i high = Premultiply(HighPixels(pixels));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 4 * x), _mm_packus_epi16(low, high));
    }
    PlainRows::AlphaPremul(s + 4 * x, d + 4 * x, n - x);
}
