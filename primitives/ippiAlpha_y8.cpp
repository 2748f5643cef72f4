// Alpha compositing and premultiplication with SSE4.1, four pixels at a time. Built with -msse4.1 only.
//
// Every division by 255 here is one high multiply. m(x y) for bytes x and y is floor(x y / 255),
// and that equals (257 x) (256 y + 1) >> 24: with x y = 255 n + j, 0 <= j < 255, the product is
// 2^24 n + 2^8 (257 j - n) + 257 x, and 0 <= 2^8 (257 j - n) + 257 x < 2^24 because n <= x and
// 257 x <= 65535. Both factors fit 16 bits, so _mm_mulhi_epu16 gives the product >> 16 and the
// result is the high byte of each lane: it goes straight back into byte position, or, masked and
// given its + 1, into the next product as its (256 y + 1) factor.
//
// A vector of four pixels is split into its even bytes (blue, red) and its odd bytes (green,
// alpha), each byte in the high half of a 16-bit lane, so that no widening or packing is needed:
// the even results move down a byte and the odd ones stay, and one byte blend joins them. The even
// bytes reach the high halves by a second load one byte earlier, or, for a row's first four
// pixels, whose byte before may not be readable, by a byte shift.
#include <smmintrin.h>

#include "ippdefs.h"
#include "ippiRows.h"

namespace {

__m128i Load(const uint8_t* p)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

void Store(uint8_t* p, __m128i bytes)
{
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), bytes);
}

__m128i HighBytes()
{
    return _mm_set1_epi16(static_cast<short>(0xff00));
}

// Each pixel's alpha as 257 a in both lanes of the pixel.
__m128i AlphaTimes257(__m128i pixels)
{
    return _mm_shuffle_epi8(pixels, _mm_setr_epi8(3, 3, 3, 3, 7, 7, 7, 7, 11, 11, 11, 11, 15, 15, 15, 15));
}

// Four pixels, and the same bytes one place up, each even byte in the high half of its lane.
struct Block {
    __m128i pixels;
    __m128i raised;
};

Block LoadBlock(const uint8_t* p, bool rowStart)
{
    const __m128i pixels = Load(p);
    return {pixels, rowStart ? _mm_slli_si128(pixels, 1) : Load(p - 1)};
}

// The (256 y + 1) factors of the odd bytes, with 255 in place of alpha, so that alpha comes out
// as m(255 x) = x.
__m128i OddFactorsAlphaAsWhole(__m128i pixels)
{
    return _mm_blendv_epi8(_mm_setr_epi16(1, static_cast<short>(0xff01), 1, static_cast<short>(0xff01), 1,
                                          static_cast<short>(0xff01), 1, static_cast<short>(0xff01)),
                           pixels, _mm_setr_epi16(static_cast<short>(0xff00), 0, static_cast<short>(0xff00), 0,
                                                  static_cast<short>(0xff00), 0, static_cast<short>(0xff00), 0));
}

// The high byte of each lane as the (256 y + 1) factor of a product: even bytes from the raised
// pixels, odd bytes from the pixels, or a result to be weighed again.
__m128i AsFactor(__m128i highBytes)
{
    return _mm_blendv_epi8(_mm_set1_epi16(1), highBytes, HighBytes());
}

// Even and odd lanes of results back to bytes in pixel order.
__m128i Join(__m128i even, __m128i odd)
{
    return _mm_blendv_epi8(_mm_srli_epi16(even, 8), odd, HighBytes());
}

// The halves of four pixels weighed by their own alpha, in the high byte of each lane: colours
// m(c a), alpha a itself.
struct Halves {
    __m128i even;
    __m128i odd;
};

Halves Premultiplied(const Block& block)
{
    const __m128i alpha = AlphaTimes257(block.pixels);
    return {_mm_mulhi_epu16(alpha, AsFactor(block.raised)),
            _mm_mulhi_epu16(alpha, OddFactorsAlphaAsWhole(block.pixels))};
}

// Over on straight colours: m(s1 a) + m((255 - a) m(s2 b)); alpha a + m((255 - a) b), the second
// picture's alpha weighed as b itself. (255 - a) 257 is the complement of 257 a. The byte sum needs
// no limit: it is at most m(255 a) + m((255 - a) 255) = 255.
__m128i Over(const uint8_t* s1, const uint8_t* s2, bool rowStart)
{
    const Block first = LoadBlock(s1, rowStart);
    const Halves mine = Premultiplied(first);
    const Halves behind = Premultiplied(LoadBlock(s2, rowStart));
    const __m128i rest = _mm_xor_si128(AlphaTimes257(first.pixels), _mm_set1_epi8(-1));
    const __m128i seen =
        Join(_mm_mulhi_epu16(rest, AsFactor(behind.even)), _mm_mulhi_epu16(rest, AsFactor(behind.odd)));
    return _mm_add_epi8(Join(mine.even, mine.odd), seen);
}

// Over on premultiplied colours, alpha alike: s1 + m((255 - a) s2), limited to 255 by the saturating
// add. Here the second picture's bytes take the 257 x side, spread by one shuffle each, and
// 256 (255 - a) + 1 = 65281 - 256 a the other.
__m128i OverPremul(const uint8_t* s1, const uint8_t* s2, bool)
{
    const __m128i first = Load(s1);
    const __m128i second = Load(s2);
    const __m128i evenTimes257 =
        _mm_shuffle_epi8(second, _mm_setr_epi8(0, 0, 2, 2, 4, 4, 6, 6, 8, 8, 10, 10, 12, 12, 14, 14));
    const __m128i oddTimes257 =
        _mm_shuffle_epi8(second, _mm_setr_epi8(1, 1, 3, 3, 5, 5, 7, 7, 9, 9, 11, 11, 13, 13, 15, 15));
    const __m128i alphaTimes256 =
        _mm_shuffle_epi8(first, _mm_setr_epi8(-1, 3, -1, 3, -1, 7, -1, 7, -1, 11, -1, 11, -1, 15, -1, 15));
    const __m128i rest = _mm_sub_epi16(_mm_set1_epi16(static_cast<short>(65281)), alphaTimes256);
    const __m128i weighed = Join(_mm_mulhi_epu16(evenTimes257, rest), _mm_mulhi_epu16(oddTimes257, rest));
    return _mm_adds_epu8(first, weighed);
}

__m128i Premultiply(const uint8_t* s, const uint8_t*, bool rowStart)
{
    const Halves weighed = Premultiplied(LoadBlock(s, rowStart));
    return Join(weighed.even, weighed.odd);
}

// A row's blocks of four pixels, two a step after the first, whose byte before lies outside the
// row; gives the pixels done.
template <typename Rule>
size_t EachBlock(const uint8_t* s1, const uint8_t* s2, uint8_t* d, size_t n, Rule rule)
{
    if (n < 4)
        return 0;
    Store(d, rule(s1, s2, true));
    size_t x = 4;
    for (; x + 8 <= n; x += 8) {
        Store(d + 4 * x, rule(s1 + 4 * x, s2 + 4 * x, false));
        Store(d + 4 * x + 16, rule(s1 + 4 * x + 16, s2 + 4 * x + 16, false));
    }
    if (x + 4 <= n) {
        Store(d + 4 * x, rule(s1 + 4 * x, s2 + 4 * x, false));
        x += 4;
    }
    return x;
}

} // namespace

// The two rules the library composites with have vectors; the others run the plain kernel.
void Sse41Rows::AlphaComp(const uint8_t* s1, const uint8_t* s2, uint8_t* d, size_t n, int alphaType)
{
    size_t done = 0;
    if (alphaType == ippAlphaOver)
        done = EachBlock(s1, s2, d, n, Over);
    else if (alphaType == ippAlphaOverPremul)
        done = EachBlock(s1, s2, d, n, OverPremul);
    PlainRows::AlphaComp(s1 + 4 * done, s2 + 4 * done, d + 4 * done, n - done, alphaType);
}

void Sse41Rows::AlphaPremul(const uint8_t* s, uint8_t* d, size_t n)
{
    const size_t done = EachBlock(s, s, d, n, Premultiply);
    PlainRows::AlphaPremul(s + 4 * done, d + 4 * done, n - done);
}
