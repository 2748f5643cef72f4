#include "SetChannelColor.h"

#include "../include/PixelFormat.h"
#include "../primitives/ippi.h"
#include "Frame.h"
#include "FrameArea.h"

namespace Processors {

namespace {
const float kByteToFloat = 1.0f / 255.0f;
} // namespace

bool CSetChannelColor::Process(CFrame* pFrame, unsigned int channel, unsigned int value)
{
    // A channel beyond the record would write into the next pixel, and past the last row's end.
    if (pFrame == nullptr || pFrame->m_pBuffer == nullptr || channel > 3)
        return false;
    CFrame& frame = *pFrame;
    const IppiSize whole = {frame.m_nWidth, frame.m_nHeight};
    const Ipp8u byte = static_cast<Ipp8u>(value);
    const PixelFormat format = frame.m_pfPixelFormat;
    IppStatus status;
    if ((format == pfVideoSample || format == pfVideoSampleSwapped) && frame.m_nDepth == 4) {
        if (!AreaFits(frame, whole, 4))
            return false;
        status = ippiSet_8u_C4CR(byte, frame.m_pBuffer + channel, frame.m_nByteSpan, whole);
    } else if ((format == pfVideoSampleFloat || format == pfVideoSampleSwappedFloat) && frame.m_nDepth == 16) {
        if (!AreaFits(frame, whole, 16))
            return false;
        status = ippiSet_32f_C4CR(byte * kByteToFloat, reinterpret_cast<Ipp32f*>(frame.m_pBuffer) + channel,
                                  frame.m_nByteSpan, whole);
    } else {
        return false;
    }
    return status == ippStsNoErr;
}

} // namespace Processors
