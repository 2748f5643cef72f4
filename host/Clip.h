#pragma once
#include <cstdint>
#include <vector>

#include "../include/FrameParams.h"

namespace TestHost {

int BytesPerPixel(PixelFormat format);

// An in-memory clip: frames of one size and format, each row `byteSpan` bytes apart.
class Clip {
public:
    // A byteSpan of 0 packs the rows.
    Clip(int width, int height, PixelFormat format, int frameCount, double frameRate, int byteSpan = 0);

    int Width() const { return m_width; }
    int Height() const { return m_height; }
    int ByteSpan() const { return m_byteSpan; }
    int Depth() const { return BytesPerPixel(m_format); }
    PixelFormat Format() const { return m_format; }
    int FrameCount() const { return static_cast<int>(m_frames.size()); }
    double FrameRate() const { return m_frameRate; }
    size_t FrameBytes() const { return static_cast<size_t>(m_byteSpan) * m_height; }

    uint8_t* Frame(int index) { return m_frames[index].data(); }
    const uint8_t* Frame(int index) const { return m_frames[index].data(); }
    FrameParams Params(int index);

    // Fills frame `index` with one colour, given as 0..1 channel values (B, G, R, A by meaning,
    // laid out as the format says).
    void Fill(int index, float blue, float green, float red, float alpha = 1.0f);
    // Fills rows [firstRow, lastRow) only.
    void FillRows(int index, int firstRow, int lastRow, float blue, float green, float red, float alpha = 1.0f);

private:
    int m_width;
    int m_height;
    PixelFormat m_format;
    double m_frameRate;
    int m_byteSpan;
    std::vector<std::vector<uint8_t>> m_frames;
};

// A destination picture of a clip's geometry, with its own span.
class Picture {
public:
    Picture(int width, int height, PixelFormat format, int byteSpan = 0);
    FrameParams Params();
    uint8_t* Data() { return m_pixels.data(); }
    const std::vector<uint8_t>& Bytes() const { return m_pixels; }
    // Compares the picture area (not the row padding) with a clip frame.
    bool SameAs(const Clip& clip, int index) const;

private:
    int m_width;
    int m_height;
    PixelFormat m_format;
    int m_byteSpan;
    std::vector<uint8_t> m_pixels;
};

} // namespace TestHost
