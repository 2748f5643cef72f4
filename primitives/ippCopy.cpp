// The plain region copies and their entries.
#include "ippCopy.h"

#include <cstring>

#include "ippDispatch.h"
#include "ippiRegion.h"
#include "ippiRows.h"
#include "ippiVariants.h"

namespace {

using CopyKernel = void (*)(const uint8_t*, uint8_t*, size_t);

IppStatus CopyRows(const void* pSrc, int srcStep, void* pDst, int dstStep, IppiSize roiSize, size_t pixelBytes,
                   CopyKernel copy)
{
    if (const IppStatus status = IppRegion::CheckPointersAndSize(roiSize, pSrc, pDst); status != ippStsNoErr)
        return status;
    IppRegion::EachRowOrWhole(static_cast<const uint8_t*>(pSrc), srcStep, pixelBytes, static_cast<uint8_t*>(pDst),
                              dstStep, pixelBytes, roiSize,
                              [&](const uint8_t* s, uint8_t* d, size_t n) { copy(s, d, n * pixelBytes); });
    return ippStsNoErr;
}

} // namespace

void PlainRows::CopyBytes(const uint8_t* s, uint8_t* d, size_t bytes)
{
    std::memmove(d, s, bytes);
}

IppStatus mx_ippiCopy_8u_C1R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return CopyRows(pSrc, srcStep, pDst, dstStep, roiSize, 1, PlainRows::CopyBytes);
}

IppStatus mx_ippiCopy_8u_C4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return CopyRows(pSrc, srcStep, pDst, dstStep, roiSize, 4, PlainRows::CopyBytes);
}

IppStatus mx_ippiCopy_32f_C1R(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize)
{
    return CopyRows(pSrc, srcStep, pDst, dstStep, roiSize, 4, PlainRows::CopyBytes);
}

IppStatus mx_ippiCopy_32f_C4R(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize)
{
    return CopyRows(pSrc, srcStep, pDst, dstStep, roiSize, 16, PlainRows::CopyBytes);
}

IppStatus y8_ippiCopy_8u_C1R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return CopyRows(pSrc, srcStep, pDst, dstStep, roiSize, 1, Sse41Rows::CopyBytes);
}

IppStatus y8_ippiCopy_8u_C4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return CopyRows(pSrc, srcStep, pDst, dstStep, roiSize, 4, Sse41Rows::CopyBytes);
}

IppStatus y8_ippiCopy_32f_C1R(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize)
{
    return CopyRows(pSrc, srcStep, pDst, dstStep, roiSize, 4, Sse41Rows::CopyBytes);
}

IppStatus y8_ippiCopy_32f_C4R(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize)
{
    return CopyRows(pSrc, srcStep, pDst, dstStep, roiSize, 16, Sse41Rows::CopyBytes);
}

namespace {
constexpr auto ippiCopy_8u_C1R_arraddr = IppDispatch::WithSse41(mx_ippiCopy_8u_C1R, y8_ippiCopy_8u_C1R);
constexpr auto ippiCopy_8u_C4R_arraddr = IppDispatch::WithSse41(mx_ippiCopy_8u_C4R, y8_ippiCopy_8u_C4R);
constexpr auto ippiCopy_32f_C1R_arraddr = IppDispatch::WithSse41(mx_ippiCopy_32f_C1R, y8_ippiCopy_32f_C1R);
constexpr auto ippiCopy_32f_C4R_arraddr = IppDispatch::WithSse41(mx_ippiCopy_32f_C4R, y8_ippiCopy_32f_C4R);
} // namespace

IppStatus ippiCopy_8u_C1R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return IppDispatch::Call(ippiCopy_8u_C1R_arraddr, pSrc, srcStep, pDst, dstStep, roiSize);
}

IppStatus ippiCopy_8u_C4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return IppDispatch::Call(ippiCopy_8u_C4R_arraddr, pSrc, srcStep, pDst, dstStep, roiSize);
}

IppStatus ippiCopy_32f_C1R(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize)
{
    return IppDispatch::Call(ippiCopy_32f_C1R_arraddr, pSrc, srcStep, pDst, dstStep, roiSize);
}

IppStatus ippiCopy_32f_C4R(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize)
{
    return IppDispatch::Call(ippiCopy_32f_C4R_arraddr, pSrc, srcStep, pDst, dstStep, roiSize);
}
