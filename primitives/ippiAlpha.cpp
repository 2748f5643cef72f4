// Alpha compositing and premultiplication of four-byte pixels whose fourth sample is alpha.
#include "ippDispatch.h"
#include "ippiDivide255.h"
#include "ippiRegion.h"
#include "ippiRows.h"
#include "ippiVariants.h"

using IppRegion::Row;

namespace {

const int kLastAlphaType = ippAlphaPlusPremul;
const int kPremulTypes = ippAlphaOverPremul;   // types from here on take colours already premultiplied

// The Porter-Duff fractions of the two pictures for each rule, as bytes of 255.
struct Fractions {
    int first;
    int second;
};

Fractions FractionsOf(int rule, int a, int b)
{
    switch (rule) {
    case ippAlphaOver: return {255, 255 - a};
    case ippAlphaIn: return {b, 0};
    case ippAlphaOut: return {255 - b, 0};
    case ippAlphaATop: return {b, 255 - a};
    case ippAlphaXor: return {255 - b, 255 - a};
    default: return {255, 255};   // plus
    }
}

int Saturate(int v)
{
    return v > 255 ? 255 : v;
}

using CompKernel = void (*)(const uint8_t*, const uint8_t*, uint8_t*, size_t, int);
using PremulKernel = void (*)(const uint8_t*, uint8_t*, size_t);

IppStatus AlphaComp(const Ipp8u* pSrc1, int src1Step, const Ipp8u* pSrc2, int src2Step, Ipp8u* pDst, int dstStep,
                    IppiSize roiSize, IppiAlphaType alphaType, CompKernel comp)
{
    if (const IppStatus status = IppRegion::CheckPointersAndSize(roiSize, pSrc1, pSrc2, pDst); status != ippStsNoErr)
        return status;
    if (static_cast<unsigned>(alphaType) > static_cast<unsigned>(kLastAlphaType))
        return ippStsAlphaTypeErr;
    for (int y = 0; y < roiSize.height; ++y)
        comp(Row(pSrc1, src1Step, y), Row(pSrc2, src2Step, y), Row(pDst, dstStep, y),
             static_cast<size_t>(roiSize.width), alphaType);
    return ippStsNoErr;
}

IppStatus AlphaPremul(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize,
                      PremulKernel premul)
{
    if (const IppStatus status = IppRegion::CheckPointersAndSize(roiSize, pSrc, pDst); status != ippStsNoErr)
        return status;
    IppRegion::EachRow(pSrc, srcStep, pDst, dstStep, roiSize, premul);
    return ippStsNoErr;
}

} // namespace

// Straight colours are premultiplied first; then each side is weighted by its fraction, and the
// sum limited to a byte. Alpha takes the same fractions. Over on straight colours is thus
// m(s1 a) + m((255 - a) m(s2 b)), as m(255 x) = x for every byte x.
void PlainRows::AlphaComp(const uint8_t* s1, const uint8_t* s2, uint8_t* d, size_t n, int alphaType)
{
    const bool premultiplied = alphaType >= kPremulTypes;
    const int rule = alphaType % kPremulTypes;
    for (size_t x = 0; x < n; ++x, s1 += 4, s2 += 4, d += 4) {
        const int a = s1[3];
        const int b = s2[3];
        const Fractions f = FractionsOf(rule, a, b);
        for (int c = 0; c < 3; ++c) {
            const int first = premultiplied ? s1[c] : Divide255(s1[c] * a);
            const int second = premultiplied ? s2[c] : Divide255(s2[c] * b);
            d[c] = static_cast<uint8_t>(Saturate(Divide255(f.first * first) + Divide255(f.second * second)));
        }
        d[3] = static_cast<uint8_t>(Saturate(Divide255(f.first * a) + Divide255(f.second * b)));
    }
}

void PlainRows::AlphaPremul(const uint8_t* s, uint8_t* d, size_t n)
{
    for (size_t x = 0; x < n; ++x, s += 4, d += 4) {
        const int alpha = s[3];
        for (int c = 0; c < 3; ++c)
            d[c] = static_cast<uint8_t>(Divide255(s[c] * alpha));
        d[3] = static_cast<uint8_t>(alpha);
    }
}

IppStatus mx_ippiAlphaComp_8u_AC4R(const Ipp8u* pSrc1, int src1Step, const Ipp8u* pSrc2, int src2Step, Ipp8u* pDst,
                                   int dstStep, IppiSize roiSize, IppiAlphaType alphaType)
{
    return AlphaComp(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep, roiSize, alphaType, PlainRows::AlphaComp);
}

IppStatus y8_ippiAlphaComp_8u_AC4R(const Ipp8u* pSrc1, int src1Step, const Ipp8u* pSrc2, int src2Step, Ipp8u* pDst,
                                   int dstStep, IppiSize roiSize, IppiAlphaType alphaType)
{
    return AlphaComp(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep, roiSize, alphaType, Sse41Rows::AlphaComp);
}

IppStatus mx_ippiAlphaPremul_8u_AC4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return AlphaPremul(pSrc, srcStep, pDst, dstStep, roiSize, PlainRows::AlphaPremul);
}

IppStatus y8_ippiAlphaPremul_8u_AC4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return AlphaPremul(pSrc, srcStep, pDst, dstStep, roiSize, Sse41Rows::AlphaPremul);
}

namespace {
constexpr auto ippiAlphaComp_8u_AC4R_arraddr =
    IppDispatch::WithSse41(mx_ippiAlphaComp_8u_AC4R, y8_ippiAlphaComp_8u_AC4R);
constexpr auto ippiAlphaPremul_8u_AC4R_arraddr =
    IppDispatch::WithSse41(mx_ippiAlphaPremul_8u_AC4R, y8_ippiAlphaPremul_8u_AC4R);
} // namespace

IppStatus ippiAlphaComp_8u_AC4R(const Ipp8u* pSrc1, int src1Step, const Ipp8u* pSrc2, int src2Step, Ipp8u* pDst,
                                int dstStep, IppiSize roiSize, IppiAlphaType alphaType)
{
    return IppDispatch::Call(ippiAlphaComp_8u_AC4R_arraddr, pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep, roiSize,
                             alphaType);
}

IppStatus ippiAlphaPremul_8u_AC4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return IppDispatch::Call(ippiAlphaPremul_8u_AC4R_arraddr, pSrc, srcStep, pDst, dstStep, roiSize);
}
