#include "ChannelReverse.h"

#include <cstddef>

#include "../primitives/ippi.h"
#include "Frame.h"
#include "FrameArea.h"

namespace Processors {

namespace {

const unsigned int kReversed[4] = {3, 2, 1, 0};

template <class Sample>
Sample* PixelAt(const CFrame& frame, int x, int y)
{
    return reinterpret_cast<Sample*>(frame.m_pBuffer + static_cast<ptrdiff_t>(y) * frame.m_nByteSpan) + 4 * x;
}

// Reads each pixel whole before writing it, so that source and destination may be one picture.
template <class Sample>
void Permute(const CFrame& src, const CFrame& dst, IppiSize area, const unsigned int order[4])
{
    for (int y = 0; y < area.height; ++y)
        for (int x = 0; x < area.width; ++x) {
            const Sample* pIn = PixelAt<Sample>(src, x, y);
            const Sample pixel[4] = {pIn[0], pIn[1], pIn[2], pIn[3]};
            Sample* pOut = PixelAt<Sample>(dst, x, y);
            for (int c = 0; c < 4; ++c)
                pOut[c] = pixel[order[c]];
        }
}

bool IsUsable(const CFrame* pFrame)
{
    return pFrame != nullptr && pFrame->m_pBuffer != nullptr;
}

} // namespace

bool CChannelReverse::Process(CFrame* pSrc, CFrame* pDst)
{
    if (!IsUsable(pSrc) || !IsUsable(pDst))
        return false;
    switch (pSrc->m_pfPixelFormat) {
    case pfVideoSample:
    case pfVideoSampleSwapped: return Process8u(pSrc, pDst);
    case pfVideoSampleFloat:
    case pfVideoSampleSwappedFloat: return Process32f(pSrc, pDst);
    default: return false;
    }
}

bool CChannelReverse::Process8u(CFrame* pSrc, CFrame* pDst)
{
    if (!IsUsable(pSrc) || !IsUsable(pDst))
        return false;
    if (pSrc->m_pBuffer == pDst->m_pBuffer) {
        unsigned int order[4] = {kReversed[0], kReversed[1], kReversed[2], kReversed[3]};
        return Process8u(pDst, order);
    }
    const IppiSize area = CommonArea(*pSrc, *pDst);
    if (!AreaFits(*pSrc, area, 4) || !AreaFits(*pDst, area, 4))
        return false;
    Permute<uint8_t>(*pSrc, *pDst, area, kReversed);
    return true;
}

bool CChannelReverse::Process32f(CFrame* pSrc, CFrame* pDst)
{
    if (!IsUsable(pSrc) || !IsUsable(pDst))
        return false;
    // One buffer: the area lies in the destination's rows, which both frames describe.
    const IppiSize area = CommonArea(*pSrc, *pDst);
    if (!AreaFits(*pSrc, area, 16) || !AreaFits(*pDst, area, 16))
        return false;
    if (pSrc->m_pBuffer == pDst->m_pBuffer)
        Permute<float>(*pDst, *pDst, area, kReversed);
    else
        Permute<float>(*pSrc, *pDst, area, kReversed);
    return true;
}

bool CChannelReverse::Process(CFrame* pFrame, unsigned int* order)
{
    if (!IsUsable(pFrame) || order == nullptr)
        return false;
    switch (pFrame->m_pfPixelFormat) {
    case pfVideoSample:
    case pfVideoSampleSwapped: return Process8u(pFrame, order);
    case pfVideoSampleFloat:
    case pfVideoSampleSwappedFloat: {
        for (int c = 0; c < 4; ++c)
            if (order[c] > 3)
                return false;
        const IppiSize whole = {pFrame->m_nWidth, pFrame->m_nHeight};
        if (pFrame->m_nHeight <= 0 || !AreaFits(*pFrame, whole, 16))
            return false;
        Permute<float>(*pFrame, *pFrame, whole, order);
        return true;
    }
    default: return false;
    }
}

bool CChannelReverse::Process8u(CFrame* pFrame, unsigned int* order)
{
    if (!IsUsable(pFrame) || order == nullptr)
        return false;
    const IppiSize whole = {pFrame->m_nWidth, pFrame->m_nHeight};
    if (!AreaFits(*pFrame, whole, 4))
        return false;
    // An entry beyond the int range is out of 0 to 3 as well; the primitive refuses both alike.
    int dstOrder[4];
    for (int c = 0; c < 4; ++c)
        dstOrder[c] = order[c] > 3 ? -1 : static_cast<int>(order[c]);
    return ippiSwapChannels_8u_C4IR(pFrame->m_pBuffer, pFrame->m_nByteSpan, whole, dstOrder) == ippStsNoErr;
}

} // namespace Processors
