#include "AlphaPremul.h"

#include <cstddef>

#include "../primitives/ippi.h"
#include "Frame.h"
#include "FrameArea.h"

namespace Processors {

namespace {

// Rows of float pixels lie a whole number of pixels apart: the byte span divided by 16.
int64_t FloatRowStride(const CFrame& frame)
{
    return static_cast<int64_t>(frame.m_nByteSpan / sizeof(VideoSampleFloat)) * sizeof(VideoSampleFloat);
}

template <class Pixel>
void PremultiplyFloat(const CFrame& src, CFrame& dst, IppiSize area)
{
    const int srcSpan = src.m_nByteSpan / static_cast<int>(sizeof(Pixel));
    const int dstSpan = dst.m_nByteSpan / static_cast<int>(sizeof(Pixel));
    const Pixel* pSrcFirst = reinterpret_cast<const Pixel*>(src.m_pBuffer);
    Pixel* pDstFirst = reinterpret_cast<Pixel*>(dst.m_pBuffer);
    for (int y = 0; y < area.height; ++y) {
        const Pixel* pSrcRow = pSrcFirst + static_cast<ptrdiff_t>(y) * srcSpan;
        Pixel* pDstRow = pDstFirst + static_cast<ptrdiff_t>(y) * dstSpan;
        for (int x = 0; x < area.width; ++x) {
            Pixel pixel = pSrcRow[x];
            pixel.b *= pixel.a;
            pixel.g *= pixel.a;
            pixel.r *= pixel.a;
            pDstRow[x] = pixel;
        }
    }
}

} // namespace

bool CAlphaPremul::Process(CFrame& src, CFrame& dst)
{
    const IppiSize area = CommonArea(src, dst);
    switch (src.m_pfPixelFormat) {
    case pfVideoSampleFloat:
    case pfVideoSampleSwappedFloat:
        if (!AreaFits(src.m_pBuffer, src.m_nByteSpan, area, sizeof(VideoSampleFloat), FloatRowStride(src)) ||
            !AreaFits(dst.m_pBuffer, dst.m_nByteSpan, area, sizeof(VideoSampleFloat), FloatRowStride(dst)))
            return false;
        if (IsEmpty(area))
            return true;
        if (src.m_pfPixelFormat == pfVideoSampleFloat)
            PremultiplyFloat<VideoSampleFloat>(src, dst, area);
        else
            PremultiplyFloat<VideoSampleSwappedFloat>(src, dst, area);
        return true;
    case pfVideoSampleSwapped: {
        // This path steps rows by the byte span cut to whole pixels.
        const int srcByteSpan = src.m_nByteSpan & ~3;
        const int dstByteSpan = dst.m_nByteSpan & ~3;
        if (!AreaFits(src.m_pBuffer, src.m_nByteSpan, area, sizeof(VideoSampleSwapped), srcByteSpan) ||
            !AreaFits(dst.m_pBuffer, dst.m_nByteSpan, area, sizeof(VideoSampleSwapped), dstByteSpan))
            return false;
        if (IsEmpty(area))
            return true;
        return Process(reinterpret_cast<VideoSampleSwapped*>(src.m_pBuffer),
                       reinterpret_cast<VideoSampleSwapped*>(dst.m_pBuffer), area.width, area.height, srcByteSpan,
                       dstByteSpan);
    }
    case pfVideoSample:
        if (!AreaFits(src, area, sizeof(VideoSample)) || !AreaFits(dst, area, sizeof(VideoSample)))
            return false;
        return ippiAlphaPremul_8u_AC4R(src.m_pBuffer, src.m_nByteSpan, dst.m_pBuffer, dst.m_nByteSpan, area) ==
               ippStsNoErr;
    default: return false;
    }
}

bool CAlphaPremul::Process(VideoSampleSwapped* pSrc, VideoSampleSwapped* pDst, unsigned int width,
                           unsigned int height, int srcByteSpan, int dstByteSpan)
{
    for (unsigned int y = 0; y < height; ++y) {
        const VideoSampleSwapped* pSrcRow = reinterpret_cast<const VideoSampleSwapped*>(
            reinterpret_cast<const uint8_t*>(pSrc) + static_cast<ptrdiff_t>(y) * srcByteSpan);
        VideoSampleSwapped* pDstRow =
            reinterpret_cast<VideoSampleSwapped*>(reinterpret_cast<uint8_t*>(pDst) + static_cast<ptrdiff_t>(y) * dstByteSpan);
        for (unsigned int x = 0; x < width; ++x) {
            VideoSampleSwapped pixel = pSrcRow[x];
            const unsigned int a = pixel.a;
            pixel.r = static_cast<uint8_t>(pixel.r * a / 255u);
            pixel.g = static_cast<uint8_t>(pixel.g * a / 255u);
            pixel.b = static_cast<uint8_t>(pixel.b * a / 255u);
            pDstRow[x] = pixel;
        }
    }
    return true;
}

} // namespace Processors
