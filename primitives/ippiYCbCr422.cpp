// Conversions between four-byte blue, green, red, alpha pixels and packed Y'CbCr 4:2:2, whose
// pixel pairs take four bytes Y0, Cb, Y1, Cr. BT.601 studio range in 16 fractional bits.
#include "ippDispatch.h"
#include "ippiRegion.h"
#include "ippiRows.h"
#include "ippiVariants.h"

namespace {

using ToBgrKernel = void (*)(const uint8_t*, uint8_t*, size_t, uint8_t);

// Both directions: checks, then converts row by row. A pair needs two pixels: a width of 1 is refused.
template <typename RowKernel>
IppStatus Convert422(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize, RowKernel convert)
{
    if (pSrc == nullptr || pDst == nullptr)
        return ippStsNullPtrErr;
    if (roiSize.width < 2 || roiSize.height < 1)
        return ippStsSizeErr;
    IppRegion::EachRow(pSrc, srcStep, pDst, dstStep, roiSize, convert);
    return ippStsNoErr;
}

IppStatus ToBgr(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize, Ipp8u alphaValue,
                ToBgrKernel convert)
{
    return Convert422(pSrc, srcStep, pDst, dstStep, roiSize,
                      [&](const uint8_t* s, uint8_t* d, size_t n) { convert(s, d, n, alphaValue); });
}

int32_t Luma(int32_t b, int32_t g, int32_t r)
{
    return (6423 * b + 33030 * g + 16843 * r + 0x108000) >> 16;
}

uint8_t Saturate(int32_t v)
{
    return static_cast<uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v);
}

// One pixel from its own Y and the pair's chroma; shifts keep the sign.
void ToBgrPixel(int32_t y, int32_t cb, int32_t cr, uint8_t alphaValue, uint8_t* d)
{
    d[0] = Saturate((76284 * y + 132186 * cb - 18140365) >> 16);
    d[1] = Saturate((76284 * y - 53281 * cr - 25690 * cb + 8887730) >> 16);
    d[2] = Saturate((76284 * y + 104595 * cr - 14608761) >> 16);
    d[3] = alphaValue;
}

} // namespace

// With an odd width the last pixel takes the Cb of its own two bytes and the Cr of the pair before.
void PlainRows::YCbCr422ToBGR(const uint8_t* s, uint8_t* d, size_t n, uint8_t alphaValue)
{
    size_t x = 0;
    for (; x + 2 <= n; x += 2, s += 4, d += 8) {
        ToBgrPixel(s[0], s[1], s[3], alphaValue, d);
        ToBgrPixel(s[2], s[1], s[3], alphaValue, d + 4);
    }
    if (x < n)
        ToBgrPixel(s[0], s[1], s[-1], alphaValue, d);
}

// Chroma is the average of the pair, by a shift one bit further; an odd last pixel writes its Y
// and a Cb of its own, and no Cr. Results are cut to a byte.
void PlainRows::BGRToYCbCr422(const uint8_t* s, uint8_t* d, size_t n)
{
    size_t x = 0;
    for (; x + 2 <= n; x += 2, s += 8, d += 4) {
        const int32_t b = s[0] + s[4];
        const int32_t g = s[1] + s[5];
        const int32_t r = s[2] + s[6];
        d[0] = static_cast<uint8_t>(Luma(s[0], s[1], s[2]));
        d[1] = static_cast<uint8_t>((28770 * b - 19071 * g - 9699 * r + 0x1004000) >> 17);
        d[2] = static_cast<uint8_t>(Luma(s[4], s[5], s[6]));
        d[3] = static_cast<uint8_t>((-4653 * b - 24117 * g + 28770 * r + 0x1004000) >> 17);
    }
    if (x < n) {
        d[0] = static_cast<uint8_t>(Luma(s[0], s[1], s[2]));
        d[1] = static_cast<uint8_t>((28770 * s[0] - 19071 * s[1] - 9699 * s[2] + 0x802000) >> 16);
    }
}

IppStatus mx_ippiYCbCr422ToBGR_8u_C2C4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize,
                                        Ipp8u alphaValue)
{
    return ToBgr(pSrc, srcStep, pDst, dstStep, roiSize, alphaValue, PlainRows::YCbCr422ToBGR);
}

IppStatus mx_ippiBGRToYCbCr422_8u_AC4C2R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return Convert422(pSrc, srcStep, pDst, dstStep, roiSize, PlainRows::BGRToYCbCr422);
}

IppStatus y8_ippiYCbCr422ToBGR_8u_C2C4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize,
                                        Ipp8u alphaValue)
{
    return ToBgr(pSrc, srcStep, pDst, dstStep, roiSize, alphaValue, Sse41Rows::YCbCr422ToBGR);
}

IppStatus y8_ippiBGRToYCbCr422_8u_AC4C2R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return Convert422(pSrc, srcStep, pDst, dstStep, roiSize, Sse41Rows::BGRToYCbCr422);
}

namespace {
constexpr auto ippiYCbCr422ToBGR_8u_C2C4R_arraddr =
    IppDispatch::WithSse41(mx_ippiYCbCr422ToBGR_8u_C2C4R, y8_ippiYCbCr422ToBGR_8u_C2C4R);
constexpr auto ippiBGRToYCbCr422_8u_AC4C2R_arraddr =
    IppDispatch::WithSse41(mx_ippiBGRToYCbCr422_8u_AC4C2R, y8_ippiBGRToYCbCr422_8u_AC4C2R);
} // namespace

IppStatus ippiYCbCr422ToBGR_8u_C2C4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize,
                                     Ipp8u alphaValue)
{
    return IppDispatch::Call(ippiYCbCr422ToBGR_8u_C2C4R_arraddr, pSrc, srcStep, pDst, dstStep, roiSize, alphaValue);
}

IppStatus ippiBGRToYCbCr422_8u_AC4C2R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return IppDispatch::Call(ippiBGRToYCbCr422_8u_AC4C2R_arraddr, pSrc, srcStep, pDst, dstStep, roiSize);
}
