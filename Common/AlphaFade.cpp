#include "AlphaFade.h"

#include <algorithm>
#include <cstddef>

#include "../include/PixelFormat.h"
#include "Frame.h"
#include "FrameArea.h"

namespace Processors {

namespace {

const float kByteToFloat = 1.0f / 255.0f;

float ClampUnit(float value)
{
    return std::min(std::max(value, 0.0f), 1.0f);
}

template <class Pixel>
Pixel* RowAt(const CFrame& frame, int y)
{
    return reinterpret_cast<Pixel*>(frame.m_pBuffer) + static_cast<ptrdiff_t>(y) * frame.m_nPixelSpan;
}

template <class Pixel>
void FadeFloat(const CFrame& src, const CFrame& dst, IppiSize area, int level)
{
    const float factor = static_cast<float>(level) * kByteToFloat;
    for (int y = 0; y < area.height; ++y) {
        const Pixel* pSrcRow = RowAt<Pixel>(src, y);
        Pixel* pDstRow = RowAt<Pixel>(dst, y);
        for (int x = 0; x < area.width; ++x) {
            const Pixel pixel = pSrcRow[x];
            Pixel faded;
            faded.a = ClampUnit(pixel.a) * factor;
            faded.r = ClampUnit(pixel.r) * faded.a;
            faded.g = ClampUnit(pixel.g) * faded.a;
            faded.b = ClampUnit(pixel.b) * faded.a;
            pDstRow[x] = faded;
        }
    }
}

// Byte frames keep alpha at byte 0 (VideoSampleSwapped) or, whatever else the format says, at
// byte 3; the colours are the other three bytes either way.
void FadeBytes(const CFrame& src, const CFrame& dst, IppiSize area, int level, int alphaIndex)
{
    for (int y = 0; y < area.height; ++y) {
        const uint8_t* pSrcRow = reinterpret_cast<const uint8_t*>(RowAt<VideoSample>(src, y));
        uint8_t* pDstRow = reinterpret_cast<uint8_t*>(RowAt<VideoSample>(dst, y));
        for (int x = 0; x < area.width; ++x) {
            const uint8_t* pPixel = pSrcRow + 4 * x;
            uint8_t pixel[4] = {pPixel[0], pPixel[1], pPixel[2], pPixel[3]};
            // A level below 0 gives no opacity rather than a wrapped byte.
            const int64_t scaled = (static_cast<int64_t>(level) * pixel[alphaIndex]) >> 8;
            const int alpha = static_cast<int>(std::min<int64_t>(std::max<int64_t>(scaled, 0), 255));
            for (int c = 0; c < 4; ++c)
                pixel[c] = static_cast<uint8_t>(c == alphaIndex ? alpha : (pixel[c] * alpha) >> 8);
            std::copy(pixel, pixel + 4, pDstRow + 4 * x);
        }
    }
}

} // namespace

bool CAlphaFade::Process(CFrame* pSrc, CFrame* pDst, int level)
{
    if (pSrc == nullptr || pDst == nullptr)
        return false;
    const IppiSize area = CommonArea(*pSrc, *pDst);
    const bool floats =
        pSrc->m_pfPixelFormat == pfVideoSampleFloat || pSrc->m_pfPixelFormat == pfVideoSampleSwappedFloat;
    const int pixelBytes = floats ? sizeof(VideoSampleFloat) : sizeof(VideoSample);
    // Rows lie a pixel span apart in this path's pixels, whatever depth the frames say.
    if (!AreaFits(pSrc->m_pBuffer, pSrc->m_nByteSpan, area, pixelBytes,
                  static_cast<int64_t>(pSrc->m_nPixelSpan) * pixelBytes) ||
        !AreaFits(pDst->m_pBuffer, pDst->m_nByteSpan, area, pixelBytes,
                  static_cast<int64_t>(pDst->m_nPixelSpan) * pixelBytes))
        return false;
    if (IsEmpty(area))
        return true;
    switch (pSrc->m_pfPixelFormat) {
    case pfVideoSampleFloat: FadeFloat<VideoSampleFloat>(*pSrc, *pDst, area, level); break;
    case pfVideoSampleSwappedFloat: FadeFloat<VideoSampleSwappedFloat>(*pSrc, *pDst, area, level); break;
    case pfVideoSampleSwapped: FadeBytes(*pSrc, *pDst, area, level, offsetof(VideoSampleSwapped, a)); break;
    default: FadeBytes(*pSrc, *pDst, area, level, offsetof(VideoSample, a)); break;
    }
    return true;
}

} // namespace Processors
