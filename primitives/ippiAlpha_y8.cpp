// Alpha compositing and premultiplication with SSE4.1 in 16-bit lanes. Built with -msse4.1 only.
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

// Four pixels' bytes widened to two vectors of 16-bit lanes, a pixel's four samples in four lanes,
// and each pixel's alpha spread over its four lanes.
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

__m128i Weigh(__m128i samples, __m128i factors)
{
    return Divide255(_mm_mullo_epi16(samples, factors));
}

// Eight pixels' samples as four planes of 16-bit lanes, one plane a channel, so that alpha needs
// no spreading and the alpha plane only the arithmetic it needs itself.
struct Planes {
    __m128i blue;
    __m128i green;
    __m128i red;
    __m128i alpha;
};

Planes Deinterleave(__m128i first, __m128i second)
{
    const __m128i byChannel = _mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
    const __m128i a = _mm_shuffle_epi8(first, byChannel);
    const __m128i b = _mm_shuffle_epi8(second, byChannel);
    const __m128i blueGreen = _mm_unpacklo_epi32(a, b);
    const __m128i redAlpha = _mm_unpackhi_epi32(a, b);
    return {_mm_cvtepu8_epi16(blueGreen), _mm_unpackhi_epi8(blueGreen, _mm_setzero_si128()),
            _mm_cvtepu8_epi16(redAlpha), _mm_unpackhi_epi8(redAlpha, _mm_setzero_si128())};
}

// Back to eight pixels of bytes, limited to 0 to 255 by the packs.
void Interleave(const Planes& planes, uint8_t* d)
{
    const __m128i blueGreen = _mm_packus_epi16(planes.blue, planes.green);
    const __m128i redAlpha = _mm_packus_epi16(planes.red, planes.alpha);
    const __m128i blueRed = _mm_unpacklo_epi8(blueGreen, redAlpha);
    const __m128i greenAlpha = _mm_unpackhi_epi8(blueGreen, redAlpha);
    Store(d, _mm_unpacklo_epi8(blueRed, greenAlpha));
    Store(d + 16, _mm_unpackhi_epi8(blueRed, greenAlpha));
}

// Over on straight colours: m(s1 a) + m((255 - a) m(s2 b)); alpha a + m((255 - a) b).
void Over(const uint8_t* s1, const uint8_t* s2, uint8_t* d)
{
    const Planes first = Deinterleave(Load(s1), Load(s1 + 16));
    const Planes second = Deinterleave(Load(s2), Load(s2 + 16));
    const __m128i rest = _mm_xor_si128(first.alpha, _mm_set1_epi16(255));
    const auto colour = [&](__m128i mine, __m128i behind) {
        return _mm_add_epi16(Weigh(mine, first.alpha), Weigh(rest, Weigh(behind, second.alpha)));
    };
    Interleave({colour(first.blue, second.blue), colour(first.green, second.green), colour(first.red, second.red),
                _mm_add_epi16(first.alpha, Weigh(rest, second.alpha))},
               d);
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

size_t CompositeOver(const uint8_t* s1, const uint8_t* s2, uint8_t* d, size_t n)
{
    size_t x = 0;
    for (; x + 8 <= n; x += 8)
        Over(s1 + 4 * x, s2 + 4 * x, d + 4 * x);
    return x;
}

size_t CompositeOverPremul(const uint8_t* s1, const uint8_t* s2, uint8_t* d, size_t n)
{
    size_t x = 0;
    for (; x + 4 <= n; x += 4)
        Store(d + 4 * x, OverPremul(Load(s1 + 4 * x), Load(s2 + 4 * x)));
    return x;
}

} // namespace

// The two rules the library composites with have vectors; the others run the plain kernel.
void Sse41Rows::AlphaComp(const uint8_t* s1, const uint8_t* s2, uint8_t* d, size_t n, int alphaType)
{
    size_t done = 0;
    if (alphaType == ippAlphaOver)
        done = CompositeOver(s1, s2, d, n);
    else if (alphaType == ippAlphaOverPremul)
        done = CompositeOverPremul(s1, s2, d, n);
    PlainRows::AlphaComp(s1 + 4 * done, s2 + 4 * done, d + 4 * done, n - done, alphaType);
}

void Sse41Rows::AlphaPremul(const uint8_t* s, uint8_t* d, size_t n)
{
    size_t x = 0;
    for (; x + 4 <= n; x += 4)
        Store(d + 4 * x, Premultiply(Load(s + 4 * x)));
    PlainRows::AlphaPremul(s + 4 * x, d + 4 * x, n - x);
}
