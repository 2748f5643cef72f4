#include "ippCopy.h"

#include <cstddef>
#include <cstring>

namespace {
IppStatus CopyRows(const void* pSrc, int srcStep, void* pDst, int dstStep, IppiSize roiSize, int bytesPerPixel)
{
    if (pSrc == nullptr || pDst == nullptr)
        return ippStsNullPtrErr;
    if (roiSize.width < 1 || roiSize.height < 1)
        return ippStsSizeErr;
    const size_t rowBytes = static_cast<size_t>(roiSize.width) * bytesPerPixel;
    const auto* src = static_cast<const unsigned char*>(pSrc);
    auto* dst = static_cast<unsigned char*>(pDst);
    if (static_cast<size_t>(srcStep) == rowBytes && static_cast<size_t>(dstStep) == rowBytes) {
        std::memmove(dst, src, rowBytes * roiSize.height);
        return ippStsNoErr;
    }
    for (int y = 0; y < roiSize.height; ++y)
        std::memmove(dst + static_cast<ptrdiff_t>(y) * dstStep, src + static_cast<ptrdiff_t>(y) * srcStep, rowBytes);
    return ippStsNoErr;
}
} // namespace

IppStatus ippiCopy_8u_C1R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return CopyRows(pSrc, srcStep, pDst, dstStep, roiSize, 1);
}

IppStatus ippiCopy_8u_C4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return CopyRows(pSrc, srcStep, pDst, dstStep, roiSize, 4);
}

IppStatus ippiCopy_32f_C1R(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize)
{
    return CopyRows(pSrc, srcStep, pDst, dstStep, roiSize, 4);
}

IppStatus ippiCopy_32f_C4R(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize)
{
    return CopyRows(pSrc, srcStep, pDst, dstStep, roiSize, 16);
}
