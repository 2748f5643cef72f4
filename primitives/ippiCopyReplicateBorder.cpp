// Places a picture in a larger one and fills the margin with the nearest edge pixel.
#include <cstring>

#include "ippDispatch.h"
#include "ippiRegion.h"
#include "ippiVariants.h"

using IppRegion::Row;

namespace {

// The source may lie in place inside the destination: each of its rows is read where it is written
// and moved with memmove, and the fill never reaches a row not yet read.
IppStatus ReplicateBorder(const Ipp8u* pSrc, int srcStep, IppiSize srcRoiSize, Ipp8u* pDst, int dstStep,
                          IppiSize dstRoiSize, int top, int left, size_t pixelBytes)
{
    if (pSrc == nullptr || pDst == nullptr)
        return ippStsNullPtrErr;
    if (srcStep < 1 || dstStep < 1)
        return ippStsStepErr;
    if (!IppRegion::Holds(srcRoiSize) || !IppRegion::Holds(dstRoiSize) || top < 0 || left < 0 ||
        static_cast<int64_t>(left) + srcRoiSize.width > dstRoiSize.width ||
        static_cast<int64_t>(top) + srcRoiSize.height > dstRoiSize.height)
        return ippStsSizeErr;

    const size_t rowBytes = static_cast<size_t>(srcRoiSize.width) * pixelBytes;
    const size_t dstRowBytes = static_cast<size_t>(dstRoiSize.width) * pixelBytes;
    const size_t leftBytes = static_cast<size_t>(left) * pixelBytes;
    const size_t rightPixels = static_cast<size_t>(dstRoiSize.width - left - srcRoiSize.width);
    for (int y = 0; y < srcRoiSize.height; ++y) {
        const Ipp8u* src = Row(pSrc, srcStep, y);
        Ipp8u* dst = Row(pDst, dstStep, top + y);
        std::memmove(dst + leftBytes, src, rowBytes);
        const Ipp8u* first = dst + leftBytes;
        const Ipp8u* last = first + rowBytes - pixelBytes;
        for (int x = 0; x < left; ++x)
            std::memcpy(dst + x * pixelBytes, first, pixelBytes);
        Ipp8u* right = dst + leftBytes + rowBytes;
        for (size_t x = 0; x < rightPixels; ++x)
            std::memcpy(right + x * pixelBytes, last, pixelBytes);
    }
    const Ipp8u* firstRow = Row(pDst, dstStep, top);
    const Ipp8u* lastRow = Row(pDst, dstStep, top + srcRoiSize.height - 1);
    for (int y = top + srcRoiSize.height; y < dstRoiSize.height; ++y)
        std::memcpy(Row(pDst, dstStep, y), lastRow, dstRowBytes);
    for (int y = 0; y < top; ++y)
        std::memcpy(Row(pDst, dstStep, y), firstRow, dstRowBytes);
    return ippStsNoErr;
}

} // namespace

IppStatus mx_ippiCopyReplicateBorder_8u_C1R(const Ipp8u* pSrc, int srcStep, IppiSize srcRoiSize, Ipp8u* pDst,
                                            int dstStep, IppiSize dstRoiSize, int topBorderHeight, int leftBorderWidth)
{
    return ReplicateBorder(pSrc, srcStep, srcRoiSize, pDst, dstStep, dstRoiSize, topBorderHeight, leftBorderWidth, 1);
}

IppStatus mx_ippiCopyReplicateBorder_8u_C4R(const Ipp8u* pSrc, int srcStep, IppiSize srcRoiSize, Ipp8u* pDst,
                                            int dstStep, IppiSize dstRoiSize, int topBorderHeight, int leftBorderWidth)
{
    return ReplicateBorder(pSrc, srcStep, srcRoiSize, pDst, dstStep, dstRoiSize, topBorderHeight, leftBorderWidth, 4);
}

namespace {
constexpr auto ippiCopyReplicateBorder_8u_C1R_arraddr = IppDispatch::PlainOnly(mx_ippiCopyReplicateBorder_8u_C1R);
constexpr auto ippiCopyReplicateBorder_8u_C4R_arraddr = IppDispatch::PlainOnly(mx_ippiCopyReplicateBorder_8u_C4R);
} // namespace

IppStatus ippiCopyReplicateBorder_8u_C1R(const Ipp8u* pSrc, int srcStep, IppiSize srcRoiSize, Ipp8u* pDst,
                                         int dstStep, IppiSize dstRoiSize, int topBorderHeight, int leftBorderWidth)
{
    return IppDispatch::Call(ippiCopyReplicateBorder_8u_C1R_arraddr, pSrc, srcStep, srcRoiSize, pDst, dstStep,
                             dstRoiSize, topBorderHeight, leftBorderWidth);
}

IppStatus ippiCopyReplicateBorder_8u_C4R(const Ipp8u* pSrc, int srcStep, IppiSize srcRoiSize, Ipp8u* pDst,
                                         int dstStep, IppiSize dstRoiSize, int topBorderHeight, int leftBorderWidth)
{
    return IppDispatch::Call(ippiCopyReplicateBorder_8u_C4R_arraddr, pSrc, srcStep, srcRoiSize, pDst, dstStep,
                             dstRoiSize, topBorderHeight, leftBorderWidth);
}
