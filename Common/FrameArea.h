#pragma once
#include <algorithm>
#include <cstdint>

#include "../primitives/ippdefs.h"
#include "Frame.h"

namespace Processors {

// The area two frames have in common: the smaller width and height, from the top left.
inline IppiSize CommonArea(const CFrame& first, const CFrame& second)
{
    return {std::min(first.m_nWidth, second.m_nWidth), std::min(first.m_nHeight, second.m_nHeight)};
}

inline bool IsEmpty(IppiSize area)
{
    return area.width <= 0 || area.height <= 0;
}

// Whether an area, walked with pixels of pixelBytes and rows rowStride bytes apart, stays inside a
// picture of the given rows. A frame's fields are public and a host may describe its buffer
// wrongly; refusing here keeps such a frame from sending writes past its last row. An empty area
// touches nothing and always fits.
inline bool AreaFits(const void* pBuffer, int32_t byteSpan, IppiSize area, int pixelBytes, int64_t rowStride)
{
    if (IsEmpty(area))
        return true;
    if (pBuffer == nullptr || rowStride < 0 || rowStride > byteSpan)
        return false;
    return static_cast<int64_t>(area.width) * pixelBytes <= rowStride;
}

// The same for a frame's own rows, which lie m_nByteSpan apart; the area must lie within the frame.
inline bool AreaFits(const CFrame& frame, IppiSize area, int pixelBytes)
{
    if (IsEmpty(area))
        return true;
    return area.width <= frame.m_nWidth && area.height <= frame.m_nHeight &&
           AreaFits(frame.m_pBuffer, frame.m_nByteSpan, area, pixelBytes, frame.m_nByteSpan);
}

// A frame of four-float pixels (format 3 or 4) with rows to work on, whole, in place.
inline bool IsFourFloatPicture(const CFrame& frame)
{
    const bool fourFloats =
        frame.m_pfPixelFormat == pfVideoSampleFloat || frame.m_pfPixelFormat == pfVideoSampleSwappedFloat;
    const IppiSize whole = {frame.m_nWidth, frame.m_nHeight};
    return fourFloats && !IsEmpty(whole) && frame.m_pBuffer != nullptr && frame.m_nByteSpan != 0 &&
           AreaFits(frame, whole, 16);
}

} // namespace Processors
