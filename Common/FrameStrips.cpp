#include "FrameStrips.h"

#include <cstddef>

#include "Copy.h"

namespace {

// A strip of this many bytes of each frame it touches stays in a second-level cache of 1 MB
// beside the strips of two other frames. On 1080p frames, strips of 64 KB to 512 KB timed
// alike; a row at a time lost to the cost of each call, a few megabytes to the cache.
const int kStripBytes = 128 * 1024;

// A frame over rows of `frame`, owning nothing.
void InitStrip(const CFrame& frame, int firstRow, int rowCount, CFrame& strip)
{
    strip.Init(frame.m_pBuffer + static_cast<ptrdiff_t>(firstRow) * frame.m_nByteSpan, frame.m_nWidth, rowCount,
               frame.m_nByteSpan, frame.m_nDepth, frame.m_pfPixelFormat, frame.m_bFlipped);
}

} // namespace

int RowsPerStrip(const CFrame& frame)
{
    return std::max(1, kStripBytes / std::max(1, frame.m_nByteSpan));
}

bool CopyStrip(CFrame& src, CFrame& dst, int firstRow, int rowCount)
{
    if (src.m_pBuffer == nullptr || dst.m_pBuffer == nullptr || firstRow < 0)
        return false;
    rowCount = std::min({rowCount, src.m_nHeight - firstRow, dst.m_nHeight - firstRow});
    if (rowCount <= 0)
        return true;   // no common rows here
    CFrame srcStrip;
    CFrame dstStrip;
    InitStrip(src, firstRow, rowCount, srcStrip);
    InitStrip(dst, firstRow, rowCount, dstStrip);
    return Processors::CCopy().Process(&srcStrip, &dstStrip);
}
