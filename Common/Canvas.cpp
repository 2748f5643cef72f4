#include "Canvas.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "../include/PixelFormat.h"
#include "Frame.h"

namespace Processors {

namespace {

unsigned int ColourByte(unsigned int color, int shift)
{
    return (color >> shift) & 0xFFu;
}

// The byte form divides by 256, not 255: a pixel darkens by a step even at weight 1.0.
uint8_t BlendChannel(uint8_t old, unsigned int colour, float weight)
{
    const int w = static_cast<int>(weight * 255.0f);
    return static_cast<uint8_t>((old * w + static_cast<int>(colour) * (255 - w)) >> 8);
}

float BlendChannel(float old, unsigned int colour, float weight)
{
    return old * weight + static_cast<float>(colour) * (1.0f - weight) / 255.0f;
}

} // namespace

template <class Pixel, class Channel>
bool CCanvas::DrawPixel(CFrame* pFrame, int x, int y, float weight, unsigned int color)
{
    if (pFrame == nullptr || pFrame->m_pBuffer == nullptr || pFrame->m_nDepth < static_cast<int>(sizeof(Pixel)))
        return false;
    if (x < 0 || y < 0 || x >= pFrame->m_nWidth || y >= pFrame->m_nHeight)
        return false;
    if (!(weight >= 0.0f && weight <= 1.0f))
        return false;
    Pixel* pixel = reinterpret_cast<Pixel*>(pFrame->m_pBuffer + static_cast<ptrdiff_t>(y) * pFrame->m_nByteSpan +
                                            static_cast<ptrdiff_t>(x) * pFrame->m_nDepth);
    pixel->r = BlendChannel(static_cast<Channel>(pixel->r), ColourByte(color, 16), weight);
    pixel->g = BlendChannel(static_cast<Channel>(pixel->g), ColourByte(color, 8), weight);
    pixel->b = BlendChannel(static_cast<Channel>(pixel->b), ColourByte(color, 0), weight);
    return true;
}

template bool CCanvas::DrawPixel<VideoSample, uint8_t>(CFrame*, int, int, float, unsigned int);
template bool CCanvas::DrawPixel<VideoSampleSwapped, uint8_t>(CFrame*, int, int, float, unsigned int);
template bool CCanvas::DrawPixel<VideoSampleFloat, float>(CFrame*, int, int, float, unsigned int);
template bool CCanvas::DrawPixel<VideoSampleSwappedFloat, float>(CFrame*, int, int, float, unsigned int);

bool CCanvas::DrawPixelMain(CFrame* pFrame, int x, int y, float weight, unsigned int color)
{
    if (pFrame == nullptr)
        return false;
    switch (pFrame->m_pfPixelFormat) {
    case pfVideoSample: return DrawPixel<VideoSample, uint8_t>(pFrame, x, y, weight, color);
    case pfVideoSampleSwapped: return DrawPixel<VideoSampleSwapped, uint8_t>(pFrame, x, y, weight, color);
    case pfVideoSampleFloat: return DrawPixel<VideoSampleFloat, float>(pFrame, x, y, weight, color);
    case pfVideoSampleSwappedFloat: return DrawPixel<VideoSampleSwappedFloat, float>(pFrame, x, y, weight, color);
    default: return false;
    }
}

void CCanvas::DrawSmoothedLine(CFrame* pFrame, double x1, double y1, double x2, double y2, unsigned int color)
{
    for (double coordinate : {x1, y1, x2, y2})
        if (!(std::fabs(coordinate) <= kFarthestCoordinate))
            return;
    double dx = x2 - x1;
    double dy = y2 - y1;
    if (dx == 0.0 && dy == 0.0)
        return;
    // x is the major axis below; a steep line has its coordinates exchanged and is drawn at
    // (minor, major). Equal magnitudes count as steep.
    const bool steep = !(std::fabs(dx) > std::fabs(dy));
    if (steep) {
        std::swap(x1, y1);
        std::swap(x2, y2);
        std::swap(dx, dy);
    }
    if (x1 > x2) {
        std::swap(x1, x2);
        std::swap(y1, y2);
        dx = x2 - x1;
        dy = y2 - y1;
    }
    auto plot = [&](int major, int minor, double weight) {
        if (steep)
            DrawPixelMain(pFrame, minor, major, static_cast<float>(weight), color);
        else
            DrawPixelMain(pFrame, major, minor, static_cast<float>(weight), color);
    };
    // An end point of a steep line covers two pixels; that of a flat line only the first.
    auto plotEnd = [&](double major, double minor, double gap) {
        const double fraction = minor - std::floor(minor);
        const int at = static_cast<int>(major);
        const int below = static_cast<int>(std::floor(minor));
        plot(at, below, fraction * gap);
        if (steep)
            plot(at, below + 1, (1.0 - fraction) * gap);
    };

    const double gradient = dy / dx;

    const double xe = std::floor(x1 + 0.5);
    const double ye = y1 + gradient * (xe - x1);
    plotEnd(xe, ye, 1.0 - ((x1 + 0.5) - xe));
    double minor = ye + gradient;

    const double xs = std::floor(x2 + 0.5);
    const double ys = y2 + gradient * (xs - x2);
    plotEnd(xs, ys, 1.0 - ((x2 - 0.5) - std::floor(x2 - 0.5)));

    const int majorEnd = static_cast<int>(xs);
    for (int major = static_cast<int>(xe) + 1; major < majorEnd; ++major) {
        const double below = std::floor(minor);
        const double fraction = minor - below;
        plot(major, static_cast<int>(below), fraction);
        plot(major, static_cast<int>(below) + 1, 1.0 - fraction);
        minor += gradient;
    }
}

} // namespace Processors
