#include "Clip.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace TestHost {

int BytesPerPixel(PixelFormat format)
{
    switch (format) {
    case pfVideoSample:
    case pfVideoSampleSwapped: return 4;
    case pfVideoSampleFloat:
    case pfVideoSampleSwappedFloat: return 16;
    case pfMono8: return 1;
    case pfMonoFloat: return 4;
    }
    return 4;
}

namespace {
uint8_t ToByte(float value)
{
    return static_cast<uint8_t>(std::lround(std::min(1.0f, std::max(0.0f, value)) * 255.0f));
}

// One pixel of the given format, in memory order.
void EncodePixel(PixelFormat format, float blue, float green, float red, float alpha, uint8_t* out)
{
    switch (format) {
    case pfVideoSample: {
        const uint8_t px[4] = {ToByte(blue), ToByte(green), ToByte(red), ToByte(alpha)};
        std::memcpy(out, px, 4);
        break;
    }
    case pfVideoSampleSwapped: {
        const uint8_t px[4] = {ToByte(alpha), ToByte(red), ToByte(green), ToByte(blue)};
        std::memcpy(out, px, 4);
        break;
    }
    case pfVideoSampleFloat: {
        const float px[4] = {blue, green, red, alpha};
        std::memcpy(out, px, 16);
        break;
    }
    case pfVideoSampleSwappedFloat: {
        const float px[4] = {alpha, red, green, blue};
        std::memcpy(out, px, 16);
        break;
    }
    case pfMono8: out[0] = ToByte((blue + green + red) / 3.0f); break;
    case pfMonoFloat: {
        const float value = (blue + green + red) / 3.0f;
        std::memcpy(out, &value, 4);
        break;
    }
    }
}
} // namespace

Clip::Clip(int width, int height, PixelFormat format, int frameCount, double frameRate, int byteSpan)
    : m_width(width), m_height(height), m_format(format), m_frameRate(frameRate),
      m_byteSpan(byteSpan > 0 ? byteSpan : width * BytesPerPixel(format)),
      m_frames(frameCount, std::vector<uint8_t>(static_cast<size_t>(m_byteSpan) * height))
{
}

FrameParams Clip::Params(int index)
{
    FrameParams params = {};
    params.pBuffer = Frame(index);
    params.nWidth = m_width;
    params.nHeight = m_height;
    params.nByteSpan = m_byteSpan;
    params.nDepth = Depth();
    params.pfFormat = m_format;
    return params;
}

void Clip::Fill(int index, float blue, float green, float red, float alpha)
{
    FillRows(index, 0, m_height, blue, green, red, alpha);
}

void Clip::FillRows(int index, int firstRow, int lastRow, float blue, float green, float red, float alpha)
{
    uint8_t pixel[16];
    EncodePixel(m_format, blue, green, red, alpha, pixel);
    const int depth = Depth();
    for (int y = std::max(0, firstRow); y < std::min(m_height, lastRow); ++y) {
        uint8_t* row = Frame(index) + static_cast<size_t>(y) * m_byteSpan;
        for (int x = 0; x < m_width; ++x)
            std::memcpy(row + static_cast<size_t>(x) * depth, pixel, depth);
    }
}

Picture::Picture(int width, int height, PixelFormat format, int byteSpan)
    : m_width(width), m_height(height), m_format(format),
      m_byteSpan(byteSpan > 0 ? byteSpan : width * BytesPerPixel(format)),
      m_pixels(static_cast<size_t>(m_byteSpan) * height, 0)
{
}

FrameParams Picture::Params()
{
    FrameParams params = {};
    params.pBuffer = m_pixels.data();
    params.nWidth = m_width;
    params.nHeight = m_height;
    params.nByteSpan = m_byteSpan;
    params.nDepth = BytesPerPixel(m_format);
    params.pfFormat = m_format;
    return params;
}

bool Picture::SameAs(const Clip& clip, int index) const
{
    const size_t rowBytes = static_cast<size_t>(std::min(m_width, clip.Width())) * BytesPerPixel(m_format);
    for (int y = 0; y < std::min(m_height, clip.Height()); ++y)
        if (std::memcmp(m_pixels.data() + static_cast<size_t>(y) * m_byteSpan,
                        clip.Frame(index) + static_cast<size_t>(y) * clip.ByteSpan(), rowBytes) != 0)
            return false;
    return true;
}

} // namespace TestHost
