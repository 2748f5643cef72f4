#include "SetColor.h"

#include "../include/PixelFormat.h"
#include "../primitives/ippi.h"
#include "Frame.h"
#include "FrameArea.h"

namespace Processors {

namespace {

const float kByteToFloat = 1.0f / 255.0f;

struct ColorBytes {
    explicit ColorBytes(unsigned int color)
        : a(static_cast<Ipp8u>(color >> 24)), r(static_cast<Ipp8u>(color >> 16)), g(static_cast<Ipp8u>(color >> 8)),
          b(static_cast<Ipp8u>(color))
    {
    }
    Ipp8u a, r, g, b;
};

} // namespace

bool CSetColor::Process(CFrame* pFrame, unsigned int color)
{
    if (pFrame == nullptr)
        return false;
    CFrame& frame = *pFrame;
    const IppiSize whole = {frame.m_nWidth, frame.m_nHeight};
    const ColorBytes word(color);
    const PixelFormat format = frame.m_pfPixelFormat;
    const bool floats = format == pfVideoSampleFloat || format == pfVideoSampleSwappedFloat || format == pfMonoFloat;
    Ipp32f* pFloats = reinterpret_cast<Ipp32f*>(frame.m_pBuffer);
    IppStatus status;
    if (format == pfVideoSample || format == pfVideoSampleSwapped) {
        const Ipp8u bgra[4] = {word.b, word.g, word.r, word.a};
        const Ipp8u argb[4] = {word.a, word.r, word.g, word.b};
        if (!AreaFits(frame, whole, 4))
            return false;
        status = ippiSet_8u_C4R(format == pfVideoSample ? bgra : argb, frame.m_pBuffer, frame.m_nByteSpan, whole);
    } else if (frame.m_nDepth == 1) {
        if (!AreaFits(frame, whole, 1))
            return false;
        status = ippiSet_8u_C1R(word.b, frame.m_pBuffer, frame.m_nByteSpan, whole);
    } else if (floats && frame.m_nDepth == 16) {
        // A one-channel float frame of four-float pixels takes the colour alpha first.
        const Ipp32f bgra[4] = {word.b * kByteToFloat, word.g * kByteToFloat, word.r * kByteToFloat,
                                word.a * kByteToFloat};
        const Ipp32f argb[4] = {bgra[3], bgra[2], bgra[1], bgra[0]};
        if (!AreaFits(frame, whole, 16))
            return false;
        status = ippiSet_32f_C4R(format == pfVideoSampleFloat ? bgra : argb, pFloats, frame.m_nByteSpan, whole);
    } else if (floats && frame.m_nDepth == 4) {
        if (!AreaFits(frame, whole, 4))
            return false;
        status = ippiSet_32f_C1R(word.b * kByteToFloat, pFloats, frame.m_nByteSpan, whole);
    } else {
        return false;
    }
    return status == ippStsNoErr;
}

} // namespace Processors
