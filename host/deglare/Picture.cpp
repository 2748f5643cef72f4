#include "Picture.h"

#include <cstring>
#include <new>

extern "C" {
#include <libavutil/mem.h>
}

namespace Deglare {

namespace {
const int kRowAlignment = 64;
const int kDepth = 4;

int SpanFor(int width)
{
    return (width * kDepth + kRowAlignment - 1) / kRowAlignment * kRowAlignment;
}
} // namespace

void Picture::Free::operator()(uint8_t* pixels) const
{
    if (pool)
        pool->Give(pixels, bytes);
    else
        av_free(pixels);
}

Picture::Picture(int width, int height, std::shared_ptr<PicturePool> pool)
    : m_width(width), m_height(height), m_span(SpanFor(width)), m_pixels(nullptr, Free{pool, Bytes()})
{
    uint8_t* pixels = pool ? pool->Take(Bytes()) : static_cast<uint8_t*>(av_malloc(Bytes()));
    if (pixels == nullptr)
        throw std::bad_alloc();
    m_pixels.reset(pixels);
}

size_t Picture::BytesFor(int width, int height)
{
    return static_cast<size_t>(SpanFor(width)) * height;
}

FrameParams Picture::Params() const
{
    FrameParams params = {};
    params.pBuffer = const_cast<uint8_t*>(m_pixels.get());
    params.nWidth = m_width;
    params.nHeight = m_height;
    params.nByteSpan = m_span;
    params.nDepth = kDepth;
    params.pfFormat = pfVideoSample;
    params.bFlipped = false;
    return params;
}

bool Picture::SamePixels(const Picture& other) const
{
    if (m_width != other.m_width || m_height != other.m_height)
        return false;
    const size_t rowBytes = static_cast<size_t>(m_width) * kDepth;
    if (m_span == other.m_span && rowBytes == static_cast<size_t>(m_span))
        return std::memcmp(Data(), other.Data(), Bytes()) == 0;
    for (int y = 0; y < m_height; ++y)
        if (std::memcmp(Row(y), other.Row(y), rowBytes) != 0)
            return false;
    return true;
}

} // namespace Deglare
