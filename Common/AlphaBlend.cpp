#include "AlphaBlend.h"

#include <algorithm>
#include <cstddef>

#include "../foundation/AssertBox.h"
#include "../primitives/ippi.h"
#include "Frame.h"
#include "FrameArea.h"

namespace Processors {

namespace {

// The blend's assertions name the family's chief source, where host authors look them up.
const char kAssertFile[] = "Processor.cpp";

// A zero depth means the caller built the frame wrongly; the user hears of it, then the blend refuses.
void AssertDepth(int32_t depth, const char* expression, const char* function, int line)
{
    if (depth == 0)
        __TSDebug::AssertBox(expression, function, kAssertFile, line, "%s", "");
}

template <class Pixel>
Pixel* RowAt(Pixel* pFirst, unsigned int y, int span)
{
    return pFirst + static_cast<ptrdiff_t>(y) * span;
}

// O = (1 - a) B + F on all four channels when the colours carry their alpha; otherwise the
// background counts by its own alpha, w = (1 - a) B.a, and the result comes out premultiplied.
template <class Pixel>
void BlendFloat(Pixel* pIn1, Pixel* pIn2, Pixel* pOut, unsigned int width, unsigned int height, bool bPremultiplied,
                int span1, int span2, int spanOut)
{
    for (unsigned int y = 0; y < height; ++y) {
        const Pixel* pFore = RowAt(pIn1, y, span1);
        const Pixel* pBack = RowAt(pIn2, y, span2);
        Pixel* pResult = RowAt(pOut, y, spanOut);
        for (unsigned int x = 0; x < width; ++x) {
            const Pixel fore = pFore[x];
            const Pixel back = pBack[x];
            const float a = fore.a;
            Pixel out;
            if (bPremultiplied) {
                const float keep = 1.0f - a;
                out.b = keep * back.b + fore.b;
                out.g = keep * back.g + fore.g;
                out.r = keep * back.r + fore.r;
                out.a = keep * back.a + fore.a;
            } else {
                const float w = (1.0f - a) * back.a;
                out.b = a * fore.b + w * back.b;
                out.g = a * fore.g + w * back.g;
                out.r = a * fore.r + w * back.r;
                out.a = w + a;
            }
            pResult[x] = out;
        }
    }
}

unsigned int Saturate(unsigned int value)
{
    return std::min(value, 255u);
}

} // namespace

bool CAlphaBlend::Process(CFrame* pIn1, CFrame* pIn2, CFrame* pOut, bool bPremultiplied)
{
    if (pIn1 == nullptr || pIn2 == nullptr || pOut == nullptr)
        return false;
    const FrameParams in1 = pIn1->GetFrameParams();
    const FrameParams in2 = pIn2->GetFrameParams();
    FrameParams out = pOut->GetFrameParams();
    return Process(in1, in2, out, bPremultiplied);
}

bool CAlphaBlend::Process(const FrameParams& frameIn1, const FrameParams& frameIn2, FrameParams& frameOut,
                          bool bPremultiplied)
{
    const IppiSize area = {std::min({frameIn1.nWidth, frameIn2.nWidth, frameOut.nWidth}),
                           std::min({frameIn1.nHeight, frameIn2.nHeight, frameOut.nHeight})};
    AssertDepth(frameIn1.nDepth, "frameIn1.m_nDepth", __PRETTY_FUNCTION__, __LINE__);
    AssertDepth(frameIn2.nDepth, "frameIn2.m_nDepth", __PRETTY_FUNCTION__, __LINE__);
    AssertDepth(frameOut.nDepth, "frameOut.m_nDepth", __PRETTY_FUNCTION__, __LINE__);
    // A negative output depth would walk the rows backwards: refused like a zero one.
    if (frameIn1.nDepth <= 0 || frameIn2.nDepth <= 0 || frameOut.nDepth <= 0)
        return false;
    const int span1 = frameIn1.nByteSpan / frameIn1.nDepth;
    const int span2 = frameIn2.nByteSpan / frameIn2.nDepth;
    const int spanOut = frameOut.nByteSpan / frameOut.nDepth;

    int pixelBytes;
    switch (frameIn1.pfFormat) {
    case pfVideoSampleFloat:
    case pfVideoSampleSwappedFloat: pixelBytes = sizeof(VideoSampleFloat); break;
    case pfVideoSample:
    case pfVideoSampleSwapped: pixelBytes = sizeof(VideoSample); break;
    default: return false;
    }
    // Rows are walked a pixel span apart in the path's own pixels, whatever depth a frame says.
    if (!AreaFits(frameIn1.pBuffer, frameIn1.nByteSpan, area, pixelBytes, static_cast<int64_t>(span1) * pixelBytes) ||
        !AreaFits(frameIn2.pBuffer, frameIn2.nByteSpan, area, pixelBytes, static_cast<int64_t>(span2) * pixelBytes) ||
        !AreaFits(frameOut.pBuffer, frameOut.nByteSpan, area, pixelBytes, static_cast<int64_t>(spanOut) * pixelBytes))
        return false;

    const unsigned int width = IsEmpty(area) ? 0 : area.width;
    const unsigned int height = IsEmpty(area) ? 0 : area.height;
    switch (frameIn1.pfFormat) {
    case pfVideoSampleFloat:
        return Process(reinterpret_cast<VideoSampleFloat*>(frameIn1.pBuffer),
                       reinterpret_cast<VideoSampleFloat*>(frameIn2.pBuffer),
                       reinterpret_cast<VideoSampleFloat*>(frameOut.pBuffer), width, height, bPremultiplied, span1,
                       span2, spanOut);
    case pfVideoSampleSwappedFloat:
        return Process(reinterpret_cast<VideoSampleSwappedFloat*>(frameIn1.pBuffer),
                       reinterpret_cast<VideoSampleSwappedFloat*>(frameIn2.pBuffer),
                       reinterpret_cast<VideoSampleSwappedFloat*>(frameOut.pBuffer), width, height, bPremultiplied,
                       span1, span2, spanOut);
    case pfVideoSampleSwapped:
        return Process(reinterpret_cast<VideoSampleSwapped*>(frameIn1.pBuffer),
                       reinterpret_cast<VideoSampleSwapped*>(frameIn2.pBuffer),
                       reinterpret_cast<VideoSampleSwapped*>(frameOut.pBuffer), width, height, bPremultiplied, span1,
                       span2, spanOut);
    default: {
        if (IsEmpty(area))
            return false;   // what the primitive answers for an empty area, without forming its steps
        const IppiAlphaType alphaType = bPremultiplied ? ippAlphaOverPremul : ippAlphaOver;
        const IppStatus status = ippiAlphaComp_8u_AC4R(frameIn1.pBuffer, span1 * 4, frameIn2.pBuffer, span2 * 4,
                                                       frameOut.pBuffer, spanOut * 4, area, alphaType);
        return status == ippStsNoErr;
    }
    }
}

bool CAlphaBlend::Process(VideoSampleFloat* pIn1, VideoSampleFloat* pIn2, VideoSampleFloat* pOut, unsigned int width,
                          unsigned int height, bool bPremultiplied, int span1, int span2, int spanOut)
{
    BlendFloat(pIn1, pIn2, pOut, width, height, bPremultiplied, span1, span2, spanOut);
    return true;
}

bool CAlphaBlend::Process(VideoSampleSwappedFloat* pIn1, VideoSampleSwappedFloat* pIn2, VideoSampleSwappedFloat* pOut,
                          unsigned int width, unsigned int height, bool bPremultiplied, int span1, int span2,
                          int spanOut)
{
    BlendFloat(pIn1, pIn2, pOut, width, height, bPremultiplied, span1, span2, spanOut);
    return true;
}

// Integer division by 255, truncating, and a cut at 255: this path's rounding, not the primitive's.
bool CAlphaBlend::Process(VideoSampleSwapped* pIn1, VideoSampleSwapped* pIn2, VideoSampleSwapped* pOut,
                          unsigned int width, unsigned int height, bool bPremultiplied, int span1, int span2,
                          int spanOut)
{
    for (unsigned int y = 0; y < height; ++y) {
        const VideoSampleSwapped* pFore = RowAt(pIn1, y, span1);
        const VideoSampleSwapped* pBack = RowAt(pIn2, y, span2);
        VideoSampleSwapped* pResult = RowAt(pOut, y, spanOut);
        for (unsigned int x = 0; x < width; ++x) {
            const VideoSampleSwapped fore = pFore[x];
            const VideoSampleSwapped back = pBack[x];
            const unsigned int a = fore.a;
            const unsigned int keep = 255u - a;
            VideoSampleSwapped out;
            if (bPremultiplied) {
                out.a = static_cast<uint8_t>(Saturate(fore.a + keep * back.a / 255u));
                out.r = static_cast<uint8_t>(Saturate(fore.r + keep * back.r / 255u));
                out.g = static_cast<uint8_t>(Saturate(fore.g + keep * back.g / 255u));
                out.b = static_cast<uint8_t>(Saturate(fore.b + keep * back.b / 255u));
            } else {
                const unsigned int w = Saturate(keep * back.a / 255u);
                out.a = static_cast<uint8_t>(Saturate(w + a));
                out.r = static_cast<uint8_t>(Saturate((a * fore.r + w * back.r) / 255u));
                out.g = static_cast<uint8_t>(Saturate((a * fore.g + w * back.g) / 255u));
                out.b = static_cast<uint8_t>(Saturate((a * fore.b + w * back.b) / 255u));
            }
            pResult[x] = out;
        }
    }
    return true;
}

} // namespace Processors
