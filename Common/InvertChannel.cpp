#include "InvertChannel.h"

#include <cstddef>

#include "../include/PixelFormat.h"
#include "Frame.h"

namespace Processors {

namespace {

// Inverts every stride-th sample from pFirst on, count of them.
template <class Sample>
void InvertRun(Sample* pFirst, size_t count, size_t stride, Sample full)
{
    for (size_t i = 0; i < count; ++i)
        pFirst[i * stride] = full - pFirst[i * stride];
}

bool IsChannel(int channel)
{
    return channel >= 0 && channel < 4;
}

} // namespace

bool CInvertChannel::Process(CFrame* pFrame, int channel)
{
    if (pFrame == nullptr)
        return false;
    const CFrame& frame = *pFrame;
    // The run covers whole rows of the span; counting them from the span itself, rather than from
    // the pixel span, keeps a frame whose depth disagrees with its format inside its rows.
    if (frame.m_nHeight < 0 || frame.m_nByteSpan < 0)
        return false;
    const size_t rows = static_cast<size_t>(frame.m_nHeight);
    const size_t span = static_cast<size_t>(frame.m_nByteSpan);
    if (rows > 0 && span > 0 && frame.m_pBuffer == nullptr)
        return false;
    float* pFloats = reinterpret_cast<float*>(frame.m_pBuffer);
    switch (frame.m_pfPixelFormat) {
    case pfVideoSampleFloat:
    case pfVideoSampleSwappedFloat:
        if (!IsChannel(channel))
            return false;
        if (rows > 0 && span > 0)
            InvertRun(pFloats + channel, rows * (span / sizeof(VideoSampleFloat)), 4, 1.0f);
        return true;
    case pfMonoFloat:
        if (rows > 0 && span > 0)
            InvertRun(pFloats, rows * (span / sizeof(float)), 1, 1.0f);
        return true;
    default:
        break;
    }
    uint8_t* pBytes = frame.m_pBuffer;
    if (frame.m_nDepth == 4) {
        if (!IsChannel(channel))
            return false;
        if (rows > 0 && span > 0)
            InvertRun<uint8_t>(pBytes + channel, rows * (span / 4), 4, 255);
        return true;
    }
    if (frame.m_nDepth == 1) {
        if (rows > 0 && span > 0)
            InvertRun<uint8_t>(pBytes, rows * span, 1, 255);
        return true;
    }
    return false;
}

} // namespace Processors
