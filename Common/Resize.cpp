#include "Resize.h"

#include <cstdint>

#include "../primitives/ippMemory.h"
#include "../primitives/ippResize.h"
#include "Frame.h"

namespace Processors {

namespace {

enum class Member { None, Mono8u, Mono32f, Colour8u, Colour32f };

int InterpolationOf(int interpolation)
{
    switch (interpolation) {
    case 0: return IPPI_INTER_NN;
    case 2: return IPPI_INTER_CUBIC;
    case 3: return IPPI_INTER_LANCZOS;
    default: return IPPI_INTER_LINEAR;
    }
}

Member MemberFor(const CFrame* pSrc)
{
    const PixelFormat format = pSrc->m_pfPixelFormat;
    if (pSrc->m_nDepth == 4 && format == pfMonoFloat)
        return Member::Mono32f;
    if (pSrc->m_nDepth == 1)
        return Member::Mono8u;
    if (pSrc->m_nDepth == 4 && (format == pfVideoSample || format == pfVideoSampleSwapped))
        return Member::Colour8u;
    if (pSrc->m_nDepth == 16 && (format == pfVideoSampleFloat || format == pfVideoSampleSwappedFloat))
        return Member::Colour32f;
    return Member::None;
}

// A rectangle's size, or false when it doesn't fit in 32 bits.
bool SizeOf(const tagRECT& rect, IppiSize& size)
{
    const int64_t width = int64_t{rect.right} - rect.left;
    const int64_t height = int64_t{rect.bottom} - rect.top;
    if (width < INT32_MIN || width > INT32_MAX || height < INT32_MIN || height > INT32_MAX)
        return false;
    size = {static_cast<int32_t>(width), static_cast<int32_t>(height)};
    return true;
}

// The primitive can't know a frame's extent, so a non-empty rectangle must lie inside its frame,
// and each of its rows inside one row of the frame.
bool FrameHolds(const CFrame* pFrame, const tagRECT& rect, IppiSize size)
{
    if (size.width < 1 || size.height < 1)
        return true;   // the primitive refuses an empty rectangle
    return rect.left >= 0 && rect.top >= 0 && rect.right <= pFrame->m_nWidth && rect.bottom <= pFrame->m_nHeight &&
           int64_t{pFrame->m_nByteSpan} >= int64_t{rect.right} * pFrame->m_nDepth;
}

// The rectangle's first pixel; a frame without pixels stays without.
Ipp8u* RectStart(const CFrame* pFrame, const tagRECT& rect)
{
    if (pFrame->m_pBuffer == nullptr)
        return nullptr;
    return pFrame->m_pBuffer + int64_t{rect.top} * pFrame->m_nByteSpan + int64_t{rect.left} * pFrame->m_nDepth;
}

} // namespace

bool CResize::Process(CFrame* pSrc, CFrame* pDst, tagRECT srcRect, tagRECT dstRect, int interpolation,
                      double xFactor, double yFactor, double xShift, double yShift)
{
    if (pSrc == nullptr || pDst == nullptr)
        return false;
    IppiSize srcSize, dstSize;
    if (!SizeOf(srcRect, srcSize) || !SizeOf(dstRect, dstSize))
        return false;
    // An empty source leaves a factor at 0, and the primitive refuses the size before the factor.
    if (xFactor == 0.0 && srcSize.width != 0)
        xFactor = static_cast<double>(dstSize.width) / srcSize.width;
    if (yFactor == 0.0 && srcSize.height != 0)
        yFactor = static_cast<double>(dstSize.height) / srcSize.height;
    if (pSrc->m_nDepth != pDst->m_nDepth)
        return false;
    const int ippInterpolation = InterpolationOf(interpolation);
    const Member member = MemberFor(pSrc);
    if (member == Member::None)
        return true;   // a format without a resize: nothing to do
    if (!FrameHolds(pSrc, srcRect, srcSize) || !FrameHolds(pDst, dstRect, dstSize))
        return false;

    const int channels = member == Member::Colour8u || member == Member::Colour32f ? 4 : 1;
    const IppiRect srcRoi = {0, 0, srcSize.width, srcSize.height};
    const IppiRect dstRoi = {0, 0, dstSize.width, dstSize.height};
    // Sized for linear whatever the interpolation: four times that covers the wider kernels.
    int linearBytes = 0;
    if (ippiResizeGetBufSize(srcRoi, dstRoi, channels, IPPI_INTER_LINEAR, &linearBytes) != ippStsNoErr)
        return false;
    if (linearBytes > INT32_MAX / 4)
        return false;
    Ipp8u* pWork = ippsMalloc_8u(4 * linearBytes);
    if (pWork == nullptr)
        return false;

    Ipp8u* pSrcStart = RectStart(pSrc, srcRect);
    Ipp8u* pDstStart = RectStart(pDst, dstRect);
    const int srcStep = pSrc->m_nByteSpan;
    const int dstStep = pDst->m_nByteSpan;
    IppStatus status = ippStsNoErr;
    switch (member) {
    case Member::Mono8u:
        status = ippiResizeSqrPixel_8u_C1R(pSrcStart, srcSize, srcStep, srcRoi, pDstStart, dstStep, dstRoi, xFactor,
                                           yFactor, xShift, yShift, ippInterpolation, pWork);
        break;
    case Member::Colour8u:
        status = ippiResizeSqrPixel_8u_C4R(pSrcStart, srcSize, srcStep, srcRoi, pDstStart, dstStep, dstRoi, xFactor,
                                           yFactor, xShift, yShift, ippInterpolation, pWork);
        break;
    case Member::Mono32f:
        status = ippiResizeSqrPixel_32f_C1R(reinterpret_cast<const Ipp32f*>(pSrcStart), srcSize, srcStep, srcRoi,
                                            reinterpret_cast<Ipp32f*>(pDstStart), dstStep, dstRoi, xFactor, yFactor,
                                            xShift, yShift, ippInterpolation, pWork);
        break;
    case Member::Colour32f:
        status = ippiResizeSqrPixel_32f_C4R(reinterpret_cast<const Ipp32f*>(pSrcStart), srcSize, srcStep, srcRoi,
                                            reinterpret_cast<Ipp32f*>(pDstStart), dstStep, dstRoi, xFactor, yFactor,
                                            xShift, yShift, ippInterpolation, pWork);
        break;
    case Member::None: break;
    }
    ippsFree(pWork);
    return status == ippStsNoErr;
}

} // namespace Processors
