#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>

#include "../../include/FrameParams.h"
#include "PicturePool.h"

namespace Deglare {

// A picture in the form the effect renders: 8-bit B, G, R, A, top row first, each row starting
// on a 64-byte boundary.
class Picture {
public:
    // Memory from `pool` when one is given, else its own.
    Picture(int width, int height, std::shared_ptr<PicturePool> pool = nullptr);
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;
    Picture(Picture&&) = default;
    Picture& operator=(Picture&&) = default;

    int Width() const { return m_width; }
    int Height() const { return m_height; }
    int Span() const { return m_span; }
    uint8_t* Data() { return m_pixels.get(); }
    const uint8_t* Data() const { return m_pixels.get(); }
    uint8_t* Row(int y) { return m_pixels.get() + static_cast<size_t>(y) * m_span; }
    const uint8_t* Row(int y) const { return m_pixels.get() + static_cast<size_t>(y) * m_span; }
    size_t Bytes() const { return static_cast<size_t>(m_span) * m_height; }

    // The record that hands this picture across the host boundary.
    FrameParams Params() const;
    // Same size and the same pixels (row padding not compared).
    bool SamePixels(const Picture& other) const;

    // The bytes a picture of this size takes.
    static size_t BytesFor(int width, int height);

private:
    struct Free {
        std::shared_ptr<PicturePool> pool;
        size_t bytes;
        void operator()(uint8_t* pixels) const;
    };
    int m_width;
    int m_height;
    int m_span;
    std::unique_ptr<uint8_t, Free> m_pixels;
};

} // namespace Deglare
