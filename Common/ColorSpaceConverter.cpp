#include "ColorSpaceConverter.h"

#include <cstddef>

#include "../include/PixelFormat.h"
#include "../primitives/ippi.h"
#include "ChannelReverse.h"
#include "Frame.h"
#include "FrameArea.h"

namespace Processors {

namespace {

const float kByteToFloat = 1.0f / 255.0f;
const float kFloatToByte = 255.0f;

// Studio-range Y'CbCr: rows give Y', Cb, Cr (or red, green, blue) from the three colour samples
// of an alpha-first pixel plus the fourth column.
const float kRgbToYCbCr[3][4] = {
    {0.299f, 0.587f, 0.114f, 0.0f},
    {-0.168736f, -0.331264f, 0.5f, 0.5f},
    {0.5f, -0.418688f, -0.081312f, 0.5f},
};
const float kYCbCrToRgb[3][4] = {
    {1.0f, 0.0f, 1.402f, 0.0f},
    {1.0f, -0.344f, -0.714f, 0.0f},
    {1.0f, 1.772f, 0.0f, 0.0f},
};
// Y' has no foot of 16/255 in either direction: black is 0.0 and white 219/255.
const float kForwardScale[3] = {219.0f / 255.0f, 224.0f / 255.0f, 224.0f / 255.0f};
const float kForwardOffset[3] = {0.0f, 16.0f / 255.0f, 16.0f / 255.0f};
const float kInverseFirstOffset[3] = {0.0f, -16.0f / 255.0f, -16.0f / 255.0f};
const float kInverseScale[3] = {255.0f / 219.0f, 255.0f / 224.0f, 255.0f / 224.0f};
const float kInverseSecondOffset[3] = {0.0f, -0.5f, -0.5f};

// Above 1.0 is white and below 0.0 black; a not-a-number counts as black.
uint8_t ToByte(float value)
{
    if (value > 1.0f)
        return 255;
    if (!(value >= 0.0f))
        return 0;
    return static_cast<uint8_t>(value * kFloatToByte + 0.5f);
}

// Rows of the conversions lie a pixel span apart, in pixels of the format's own size.
template <class Sample>
Sample* RowAt(const CFrame& frame, int y, int pixelBytes)
{
    return reinterpret_cast<Sample*>(frame.m_pBuffer +
                                     static_cast<ptrdiff_t>(y) * frame.m_nPixelSpan * pixelBytes);
}

bool ConversionFits(const CFrame& frame, IppiSize area, int pixelBytes)
{
    return AreaFits(frame.m_pBuffer, frame.m_nByteSpan, area, pixelBytes,
                    static_cast<int64_t>(frame.m_nPixelSpan) * pixelBytes);
}

// Same channel order, or reversed (position c takes 3 - c).
void BytesToFloats(const CFrame& src, const CFrame& dst, IppiSize area, bool reverse)
{
    for (int y = 0; y < area.height; ++y) {
        const uint8_t* pIn = RowAt<const uint8_t>(src, y, sizeof(VideoSample));
        float* pOut = RowAt<float>(dst, y, sizeof(VideoSampleFloat));
        for (int x = 0; x < area.width; ++x, pIn += 4, pOut += 4)
            for (int c = 0; c < 4; ++c)
                pOut[c] = pIn[reverse ? 3 - c : c] * kByteToFloat;
    }
}

void FloatsToBytes(const CFrame& src, const CFrame& dst, IppiSize area, bool reverse)
{
    for (int y = 0; y < area.height; ++y) {
        const float* pIn = RowAt<const float>(src, y, sizeof(VideoSampleFloat));
        uint8_t* pOut = RowAt<uint8_t>(dst, y, sizeof(VideoSample));
        for (int x = 0; x < area.width; ++x, pIn += 4, pOut += 4)
            for (int c = 0; c < 4; ++c)
                pOut[c] = ToByte(pIn[reverse ? 3 - c : c]);
    }
}

// The pairs of formats that convert between bytes and floats.
struct Conversion {
    PixelFormat from;
    PixelFormat to;
    bool toFloats;
    bool reverse;
};
const Conversion kConversions[] = {
    {pfVideoSample, pfVideoSampleFloat, true, false},
    {pfVideoSampleSwapped, pfVideoSampleSwappedFloat, true, false},
    {pfVideoSample, pfVideoSampleSwappedFloat, true, true},
    {pfVideoSampleFloat, pfVideoSample, false, false},
    {pfVideoSampleSwappedFloat, pfVideoSampleSwapped, false, false},
    {pfVideoSampleSwappedFloat, pfVideoSample, false, true},
};

const Conversion* FindConversion(PixelFormat from, PixelFormat to)
{
    for (const Conversion& conversion : kConversions)
        if (conversion.from == from && conversion.to == to)
            return &conversion;
    return nullptr;
}

// The matrix operations' shared start: both frames alpha-first floats, a common area that isn't
// empty, and the address of the first pixel's red, so that the primitive's three channels are
// red, green, blue and its skipped fourth is the next pixel's alpha.
bool ColourArea(const CFrame& src, const CFrame& dst, IppiSize* pArea)
{
    if (src.m_pfPixelFormat != pfVideoSampleSwappedFloat || dst.m_pfPixelFormat != pfVideoSampleSwappedFloat)
        return false;
    *pArea = CommonArea(src, dst);
    return !IsEmpty(*pArea) && AreaFits(src, *pArea, sizeof(VideoSampleSwappedFloat)) &&
           AreaFits(dst, *pArea, sizeof(VideoSampleSwappedFloat));
}

Ipp32f* FirstRed(const CFrame& frame)
{
    return reinterpret_cast<Ipp32f*>(frame.m_pBuffer) + offsetof(VideoSampleSwappedFloat, r) / sizeof(float);
}

// Three constants applied to the colour samples, in place when both frames are one buffer.
template <IppStatus (*InPlace)(const Ipp32f*, Ipp32f*, int, IppiSize),
          IppStatus (*TwoFrames)(const Ipp32f*, int, const Ipp32f*, Ipp32f*, int, IppiSize)>
bool ApplyConstants(const CFrame& src, const CFrame& dst, const float* constants)
{
    IppiSize area;
    if (!ColourArea(src, dst, &area))
        return false;
    const IppStatus status = src.m_pBuffer == dst.m_pBuffer
                                 ? InPlace(constants, FirstRed(src), src.m_nByteSpan, area)
                                 : TwoFrames(FirstRed(src), src.m_nByteSpan, constants, FirstRed(dst), dst.m_nByteSpan, area);
    return status == ippStsNoErr;
}

// The matrix operations take their tables as writable arrays; each call gets its own copy.
struct Constants {
    explicit Constants(const float (&values)[3]) : m_values{values[0], values[1], values[2]} {}
    float m_values[3];
};

struct Matrix {
    explicit Matrix(const float (&rows)[3][4])
    {
        for (int r = 0; r < 3; ++r)
            for (int c = 0; c < 4; ++c)
                m_rows[r][c] = rows[r][c];
    }
    float m_rows[3][4];
};

} // namespace

bool CColorSpaceConverter::Process(CFrame* pSrc, CFrame* pDst)
{
    if (pSrc == nullptr || pDst == nullptr)
        return false;
    const PixelFormat from = pSrc->m_pfPixelFormat;
    const PixelFormat to = pDst->m_pfPixelFormat;
    const bool bytesIn = from == pfVideoSample || from == pfVideoSampleSwapped;
    const bool floatsIn = from == pfVideoSampleFloat || from == pfVideoSampleSwappedFloat;
    const bool bytesOut = to == pfVideoSample || to == pfVideoSampleSwapped;
    const bool floatsOut = to == pfVideoSampleFloat || to == pfVideoSampleSwappedFloat;
    if (from != to && ((bytesIn && bytesOut) || (floatsIn && floatsOut)))
        return CChannelReverse().Process(pSrc, pDst);

    const Conversion* pConversion = FindConversion(from, to);
    if (pConversion == nullptr)
        return false;   // 1 to 3 and 3 to 1 among them: no path between those two orders
    const bool toFloats = pConversion->toFloats;
    const bool reverse = pConversion->reverse;

    const IppiSize area = CommonArea(*pSrc, *pDst);
    const int srcPixelBytes = toFloats ? sizeof(VideoSample) : sizeof(VideoSampleFloat);
    const int dstPixelBytes = toFloats ? sizeof(VideoSampleFloat) : sizeof(VideoSample);
    if (!ConversionFits(*pSrc, area, srcPixelBytes) || !ConversionFits(*pDst, area, dstPixelBytes))
        return false;
    if (IsEmpty(area))
        return true;
    if (toFloats)
        BytesToFloats(*pSrc, *pDst, area, reverse);
    else
        FloatsToBytes(*pSrc, *pDst, area, reverse);
    return true;
}

// Each step after the first works on dst in place; once a step refuses, the rest would only
// work over what dst held before, so they are left out. The answer is true either way.
bool CColorSpaceConverter::ARGB32ToAppleR4FL(CFrame& src, CFrame& dst)
{
    Matrix toYCbCr(kRgbToYCbCr);
    Constants scale(kForwardScale), offset(kForwardOffset);
    (void)(ProcessColorMatrix32f(src, dst, toYCbCr.m_rows) && ProcessMulC32f(dst, dst, scale.m_values) &&
           ProcessAddC32f(dst, dst, offset.m_values));
    return true;
}

bool CColorSpaceConverter::AppleR4FLToARGB32(CFrame& src, CFrame& dst)
{
    Constants firstOffset(kInverseFirstOffset), scale(kInverseScale), secondOffset(kInverseSecondOffset);
    Matrix toRgb(kYCbCrToRgb);
    (void)(ProcessAddC32f(src, dst, firstOffset.m_values) && ProcessMulC32f(dst, dst, scale.m_values) &&
           ProcessAddC32f(dst, dst, secondOffset.m_values) && ProcessColorMatrix32f(dst, dst, toRgb.m_rows));
    return true;
}

bool CColorSpaceConverter::ProcessColorMatrix32f(CFrame& src, CFrame& dst, float (*matrix)[4])
{
    IppiSize area;
    if (!ColourArea(src, dst, &area))
        return false;
    const IppStatus status =
        src.m_pBuffer == dst.m_pBuffer
            ? ippiColorTwist_32f_AC4IR(FirstRed(src), src.m_nByteSpan, area, matrix)
            : ippiColorTwist_32f_AC4R(FirstRed(src), src.m_nByteSpan, FirstRed(dst), dst.m_nByteSpan, area, matrix);
    return status == ippStsNoErr;
}

bool CColorSpaceConverter::ProcessMulC32f(CFrame& src, CFrame& dst, float* constants)
{
    return ApplyConstants<ippiMulC_32f_AC4IR, ippiMulC_32f_AC4R>(src, dst, constants);
}

bool CColorSpaceConverter::ProcessAddC32f(CFrame& src, CFrame& dst, float* constants)
{
    return ApplyConstants<ippiAddC_32f_AC4IR, ippiAddC_32f_AC4R>(src, dst, constants);
}

} // namespace Processors
