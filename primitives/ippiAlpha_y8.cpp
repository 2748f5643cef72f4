// Alpha compositing and premultiplication with SSE4.1, four pixels at a time as two vectors of
// 16-bit lanes, one pixel's four samples in four lanes. Built with -msse4.1 only.
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

__m128i Load(const uint8_t* p)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

void Store(uint8_t* p, __m128i bytes)
{
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), bytes);
}

// Four pixels' bytes widened to two vectors of 16-bit lanes, and the shuffles that spread one byte
// of each pixel over the pixel's four lanes: the alpha (byte 3), or the alpha in the three colour
// lanes and byte 0 in the alpha lane, for pixels whose byte 0 was first set to 255.
struct Lanes {
    __m128i low;
    __m128i high;
};

Lanes Widen(__m128i bytes)
{
    return {_mm_unpacklo_epi8(bytes, _mm_setzero_si128()), _mm_unpackhi_epi8(bytes, _mm_setzero_si128())};
}

Lanes SpreadAlpha(__m128i bytes)
{
    return {_mm_shuffle_epi8(bytes, _mm_setr_epi8(3, -1, 3, -1, 3, -1, 3, -1, 7, -1, 7, -1, 7, -1, 7, -1)),
            _mm_shuffle_epi8(bytes, _mm_setr_epi8(11, -1, 11, -1, 11, -1, 11, -1, 15, -1, 15, -1, 15, -1, 15, -1))};
}

// Alpha in the colour lanes and 255 in the alpha lane, so that m(v x factor) premultiplies the
// colours and keeps alpha, as m(255 x) = x.
Lanes PremulFactors(__m128i bytes)
{
    const __m128i marked = _mm_or_si128(bytes, _mm_set1_epi32(0xff));
    return {_mm_shuffle_epi8(marked, _mm_setr_epi8(3, -1, 3, -1, 3, -1, 0, -1, 7, -1, 7, -1, 7, -1, 4, -1)),
            _mm_shuffle_epi8(marked, _mm_setr_epi8(11, -1, 11, -1, 11, -1, 8, -1, 15, -1, 15, -1, 15, -1, 12, -1))};
}

__m128i Weigh(__m128i samples, __m128i factors)
{
    return Divide255(_mm_mullo_epi16(samples, factors));
}

// Over on straight colours: m(s1 a) + m((255 - a) m(s2 b)); alpha a + m((255 - a) b).
__m128i Over(__m128i first, __m128i second)
{
    const Lanes firstLanes = Widen(first);
    const Lanes firstFactors = PremulFactors(first);
    const Lanes secondLanes = Widen(second);
    const Lanes secondFactors = PremulFactors(second);
    const Lanes rest = SpreadAlpha(_mm_xor_si128(first, _mm_set1_epi8(-1)));
    const __m128i low = _mm_add_epi16(Weigh(firstLanes.low, firstFactors.low),
                                      Weigh(rest.low, Weigh(secondLanes.low, secondFactors.low)));
    const __m128i high = _mm_add_epi16(Weigh(firstLanes.high, firstFactors.high),
                                       Weigh(rest.high, Weigh(secondLanes.high, secondFactors.high)));
    return _mm_packus_epi16(low, high);
}

// Over on premultiplied colours: s1 + m((255 - a) s2), limited to 255 by the pack; alpha the same.
__m128i OverPremul(__m128i first, __m128i second)
{
    const Lanes firstLanes = Widen(first);
    const Lanes secondLanes = Widen(second);
    const Lanes rest = SpreadAlpha(_mm_xor_si128(first, _mm_set1_epi8(-1)));
    const __m128i low = _mm_add_epi16(firstLanes.low, Weigh(rest.low, secondLanes.low));
    const __m128i high = _mm_add_epi16(firstLanes.high, Weigh(rest.high, secondLanes.high));
    return _mm_packus_epi16(low, high);
}

// Every lane weighed by its pixel's alpha, then the source alpha bytes put back.
__m128i Premultiply(__m128i pixels)
{
    const Lanes lanes = Widen(pixels);
    const Lanes alpha = SpreadAlpha(pixels);
    const __m128i weighed = _mm_packus_epi16(Weigh(lanes.low, alpha.low), Weigh(lanes.high, alpha.high));
    return _mm_blendv_epi8(weighed, pixels, _mm_set1_epi32(static_cast<int>(0xff000000)));
}

template <__m128i (*Rule)(__m128i, __m128i)>
size_t Composite(const uint8_t* s1, const uint8_t* s2, uint8_t* d, size_t n)
{
    size_t x = 0;
    for (; x + 4 <= n; x += 4)
        Store(d + 4 * x, Rule(Load(s1 + 4 * x), Load(s2 + 4 * x)));
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
    for (; x + 4 <= n; x += 4)
        Store(d + 4 * x, Premultiply(Load(s + 4 * x)));
    PlainRows::AlphaPremul(s + 4 * x, d + 4 * x, n - x);
}
