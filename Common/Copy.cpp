#include "Copy.h"

#include <algorithm>
#include <cstdint>

#include "../primitives/ippCopy.h"
#include "Frame.h"

namespace Processors {

namespace {
// A row of the common area must fit in each frame's span, or rows would run into each other
// and the last one past the buffer.
bool SpansHold(const CFrame* pSrc, const CFrame* pDst, IppiSize common, int bytesPerPixel)
{
    const int64_t rowBytes = static_cast<int64_t>(common.width) * bytesPerPixel;
    return pSrc->m_nByteSpan >= rowBytes && pDst->m_nByteSpan >= rowBytes;
}

int CopyBytesPerPixel(const CFrame* pSrc, const CFrame* pDst)
{
    switch (pSrc->m_pfPixelFormat) {
    case pfVideoSampleFloat:
    case pfVideoSampleSwappedFloat: return 16;
    case pfVideoSample:
    case pfVideoSampleSwapped:
    case pfMonoFloat: return 4;
    default: return pDst->m_nDepth == 1 ? 1 : 0;
    }
}
} // namespace

bool CCopy::Process(CFrame* pSrc, CFrame* pDst)
{
    if (pSrc == nullptr || pDst == nullptr)
        return false;
    const IppiSize common = {std::min(pSrc->m_nWidth, pDst->m_nWidth), std::min(pSrc->m_nHeight, pDst->m_nHeight)};
    const int bytesPerPixel = CopyBytesPerPixel(pSrc, pDst);
    if (bytesPerPixel == 0)
        return true;   // a format without a copy: nothing to do
    if (!SpansHold(pSrc, pDst, common, bytesPerPixel))
        return false;
    IppStatus status;
    switch (pSrc->m_pfPixelFormat) {
    case pfVideoSampleFloat:
    case pfVideoSampleSwappedFloat:
        status = ippiCopy_32f_C4R(reinterpret_cast<const Ipp32f*>(pSrc->m_pBuffer), pSrc->m_nByteSpan,
                                  reinterpret_cast<Ipp32f*>(pDst->m_pBuffer), pDst->m_nByteSpan, common);
        break;
    case pfVideoSample:
    case pfVideoSampleSwapped:
        status = ippiCopy_8u_C4R(pSrc->m_pBuffer, pSrc->m_nByteSpan, pDst->m_pBuffer, pDst->m_nByteSpan, common);
        break;
    case pfMonoFloat:
        status = ippiCopy_32f_C1R(reinterpret_cast<const Ipp32f*>(pSrc->m_pBuffer), pSrc->m_nByteSpan,
                                  reinterpret_cast<Ipp32f*>(pDst->m_pBuffer), pDst->m_nByteSpan, common);
        break;
    default:
        status = ippiCopy_8u_C1R(pSrc->m_pBuffer, pSrc->m_nByteSpan, pDst->m_pBuffer, pDst->m_nByteSpan, common);
        break;
    }
    return status == ippStsNoErr;
}

} // namespace Processors
