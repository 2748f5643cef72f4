#include "FrameProcessor.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "../include/InterfaceIds.h"
#include "../platform/Atomic.h"
#include "../primitives/ippResize.h"
#include "../primitives/ippi.h"
#include "AlphaBlend.h"
#include "AlphaPremul.h"
#include "ChannelReverse.h"
#include "ColorSpaceConverter.h"
#include "Copy.h"
#include "CopyPlane.h"
#include "Frame.h"
#include "InvertChannel.h"
#include "SetChannelColor.h"
#include "SqrInPlace.h"
#include "SqrtInPlace.h"
#include "ThresholdLTInPlace.h"

namespace {

const uint32_t kDone = 1;
const uint32_t kRefused = 0;

// No exception may reach the host: one that escapes an operation is its failure.
template <typename Work>
uint32_t Guarded(Work work) noexcept
{
    try {
        return work() ? kDone : kRefused;
    } catch (...) {
        return kRefused;
    }
}

// The host's interpolation number as the resize members take it; unknown numbers mean linear.
int InterpolationFlag(int mode)
{
    switch (mode) {
    case 0: return IPPI_INTER_NN;
    case 2: return IPPI_INTER_CUBIC;
    default: return IPPI_INTER_LINEAR;
    }
}

// A scale factor from two lengths; an empty source leaves it 0, and the member then refuses the
// size before it looks at the factor.
double Factor(int to, int from)
{
    return from > 0 ? static_cast<double>(to) / from : 0.0;
}

// The resize members can't know a picture's extent: a record whose span can't hold a row of
// `width` pixels of `pixelBytes` each would have them read or write past the host's rows.
bool RowsFit(const FrameParams& frame, int64_t width, int pixelBytes)
{
    return std::llabs(int64_t{frame.nByteSpan}) >= width * pixelBytes;
}

// The processors behind the frame service trust their frames to have pixels; a host's record
// without them is refused here.
bool HasPixels(const FrameParams* frame)
{
    return frame != nullptr && frame->pBuffer != nullptr;
}

// Drives a processor on a frame over the host's record; the frame owns nothing.
template <typename Work>
uint32_t OnFrame(FrameParams* frame, Work work)
{
    if (!HasPixels(frame))
        return kRefused;
    return Guarded([&] {
        CFrame picture;
        picture.Init(frame);
        return work(picture);
    });
}

template <typename Work>
uint32_t OnFrames(FrameParams* src, FrameParams* dst, Work work)
{
    if (!HasPixels(src) || !HasPixels(dst))
        return kRefused;
    return Guarded([&] {
        CFrame source, destination;
        source.Init(src);
        destination.Init(dst);
        return work(source, destination);
    });
}

// The 4:2:2 conversions: the common area of the two records, or an empty size when a record is
// bottom-up or empty, or when its rows can't hold the area (2 bytes a packed pixel, 4 unpacked).
IppiSize PackedArea(const FrameParams& packed, const FrameParams& unpacked)
{
    const IppiSize none = {0, 0};
    if (packed.nByteSpan <= 0 || unpacked.nByteSpan <= 0)
        return none;
    const IppiSize area = {std::min(packed.nWidth, unpacked.nWidth), std::min(packed.nHeight, unpacked.nHeight)};
    if (area.width <= 0 || area.height <= 0)
        return none;
    if (!RowsFit(packed, area.width, 2) || !RowsFit(unpacked, area.width, 4))
        return none;
    return area;
}

// Bytes a pixel of a four-channel format that the crop resize handles, or 0.
int CropPixelBytes(PixelFormat format)
{
    switch (format) {
    case pfVideoSample:
    case pfVideoSampleSwapped: return 4;
    case pfVideoSampleFloat:
    case pfVideoSampleSwappedFloat: return 16;
    default: return 0;
    }
}

} // namespace

FrameProcessor::FrameProcessor() : m_lRefCount(1) {}

FrameProcessor::~FrameProcessor() {}

HRESULT FrameProcessor::QueryInterface(const _GUID& iid, void** ppv)
{
    if (ppv == nullptr)
        return E_POINTER;
    *ppv = nullptr;
    if (!IsEqualGUID(iid, IID_IUnknown) && !IsEqualGUID(iid, IID_FrameProcessor))
        return E_NOINTERFACE;
    *ppv = static_cast<IFrameProcessor*>(this);
    AddRef();
    return S_OK;
}

ULONG FrameProcessor::AddRef()
{
    return static_cast<ULONG>(IncrementAtomic(&m_lRefCount) + 1);
}

ULONG FrameProcessor::Release()
{
    const int32_t before = DecrementAtomic(&m_lRefCount);
    if (before == 1) {
        delete this;
        return 0;
    }
    return static_cast<ULONG>(before - 1);
}

// Both frames are taken as four-byte pixels, whatever their records say of format and flipping.
uint32_t FrameProcessor::Copy(FrameParams* src, FrameParams* dst)
{
    if (src == nullptr || dst == nullptr)
        return kRefused;
    return Guarded([&] {
        CFrame source, destination;
        source.Init(src->pBuffer, src->nWidth, src->nHeight, src->nByteSpan, src->nDepth, pfVideoSample, false);
        destination.Init(dst->pBuffer, dst->nWidth, dst->nHeight, dst->nByteSpan, dst->nDepth, pfVideoSample, false);
        return Processors::CCopy().Process(&source, &destination);
    });
}

// The whole source onto the whole destination, as four-byte pixels; the records are used as they
// stand, without frames and without regard to format or flipping.
uint32_t FrameProcessor::Resize(FrameParams* src, FrameParams* dst, int mode)
{
    if (!HasPixels(src) || !HasPixels(dst))
        return kRefused;
    if (!RowsFit(*src, src->nWidth, 4) || !RowsFit(*dst, dst->nWidth, 4))
        return kRefused;
    return Guarded([&] {
        const IppiSize srcSize = {src->nWidth, src->nHeight};
        const IppiRect srcRoi = {0, 0, src->nWidth, src->nHeight};
        const IppiSize dstSize = {dst->nWidth, dst->nHeight};
        return ippiResize_8u_C4R(src->pBuffer, srcSize, src->nByteSpan, srcRoi, dst->pBuffer, dst->nByteSpan, dstSize,
                                 Factor(dst->nWidth, src->nWidth), Factor(dst->nHeight, src->nHeight),
                                 InterpolationFlag(mode)) == ippStsNoErr;
    });
}

uint32_t FrameProcessor::ReverseChannels(FrameParams* src, FrameParams* dst)
{
    return OnFrames(src, dst, [](CFrame& source, CFrame& destination) {
        return Processors::CChannelReverse().Process(&source, &destination);
    });
}

// Packed 4:2:2 to blue, green, red and the given alpha, over the common area; the allocator is
// not needed.
uint32_t FrameProcessor::YUY2ToRGBA(FrameParams* src, FrameParams* dst, unsigned char alpha, IMemoryAllocator*)
{
    if (!HasPixels(src) || !HasPixels(dst))
        return kRefused;
    const IppiSize area = PackedArea(*src, *dst);
    if (area.width == 0)
        return kRefused;
    return Guarded([&] {
        return ippiYCbCr422ToBGR_8u_C2C4R(src->pBuffer, src->nByteSpan, dst->pBuffer, dst->nByteSpan, area, alpha) ==
               ippStsNoErr;
    });
}

// Blue, green and red to packed 4:2:2 over the common area; alpha is dropped.
uint32_t FrameProcessor::RGBAToYUY2(FrameParams* src, FrameParams* dst, IMemoryAllocator*)
{
    if (!HasPixels(src) || !HasPixels(dst))
        return kRefused;
    const IppiSize area = PackedArea(*dst, *src);
    if (area.width == 0)
        return kRefused;
    return Guarded([&] {
        return ippiBGRToYCbCr422_8u_AC4C2R(src->pBuffer, src->nByteSpan, dst->pBuffer, dst->nByteSpan, area) ==
               ippStsNoErr;
    });
}

uint32_t FrameProcessor::SetChannelValue(FrameParams* frame, unsigned int channel, unsigned int value)
{
    return OnFrame(frame, [&](CFrame& picture) {
        return Processors::CSetChannelColor().Process(&picture, channel, value);
    });
}

// The output comes first here and last in the processor.
uint32_t FrameProcessor::AlphaBlend(FrameParams* out, FrameParams* in1, FrameParams* in2, bool premultiplied)
{
    if (!HasPixels(out) || !HasPixels(in1) || !HasPixels(in2))
        return kRefused;
    return Guarded([&] {
        CFrame output, foreground, background;
        output.Init(out);
        foreground.Init(in1);
        background.Init(in2);
        return Processors::CAlphaBlend().Process(&foreground, &background, &output, premultiplied);
    });
}

uint32_t FrameProcessor::SwapChannels(FrameParams* frame, unsigned int* order)
{
    if (order == nullptr)
        return kRefused;
    return OnFrame(frame, [&](CFrame& picture) { return Processors::CChannelReverse().Process(&picture, order); });
}

uint32_t FrameProcessor::AlphaPremul(FrameParams* frame)
{
    return OnFrame(frame, [](CFrame& picture) { return Processors::CAlphaPremul().Process(picture, picture); });
}

// The converter reports success whatever its steps did: a source it can't take leaves the
// destination as it was and still gives 1.
uint32_t FrameProcessor::AppleR4FLToARGB32(FrameParams* src, FrameParams* dst)
{
    return OnFrames(src, dst, [](CFrame& source, CFrame& destination) {
        return Processors::CColorSpaceConverter().AppleR4FLToARGB32(source, destination);
    });
}

uint32_t FrameProcessor::ARGB32ToAppleR4FL(FrameParams* src, FrameParams* dst)
{
    return OnFrames(src, dst, [](CFrame& source, CFrame& destination) {
        return Processors::CColorSpaceConverter().ARGB32ToAppleR4FL(source, destination);
    });
}

// Row i of src goes to row rows - 1 - i of dst, over the common rows and row bytes. Succeeds
// whenever both records were given, also when a frame has no pixels and nothing moves.
uint32_t FrameProcessor::FlipFrame(FrameParams* src, FrameParams* dst)
{
    if (src == nullptr || dst == nullptr)
        return kRefused;
    CFrame source, destination;
    source.Init(src);
    destination.Init(dst);
    if (source.m_pBuffer == nullptr || destination.m_pBuffer == nullptr)
        return kDone;
    const int rows = std::min(source.m_nHeight, destination.m_nHeight);
    const int64_t rowBytes = std::min(int64_t{source.m_nWidth} * source.m_nDepth,
                                      int64_t{destination.m_nWidth} * destination.m_nDepth);
    if (rows < 1 || rowBytes < 1)
        return kDone;
    for (int i = 0; i < rows; ++i) {
        // memmove: a host may pass one picture as both.
        std::memmove(destination.m_pBuffer + int64_t{rows - 1 - i} * destination.m_nByteSpan,
                     source.m_pBuffer + int64_t{i} * source.m_nByteSpan, static_cast<size_t>(rowBytes));
    }
    return kDone;
}

// Exchanges the rows of the upper half with those of the lower, in whole 32-bit words; the bytes
// past the last whole word of a row and an odd middle row stay.
uint32_t FrameProcessor::FlipFrame(FrameParams* frame)
{
    if (frame == nullptr)
        return kRefused;
    CFrame picture;
    picture.Init(frame);
    if (picture.m_pBuffer == nullptr || picture.m_nHeight <= 1)
        return kDone;
    const int64_t words = int64_t{picture.m_nWidth} * picture.m_nDepth / 4;
    if (words < 1)
        return kDone;
    const int height = picture.m_nHeight;
    for (int i = 0; i < height / 2; ++i) {
        uint8_t* upper = picture.m_pBuffer + int64_t{i} * picture.m_nByteSpan;
        uint8_t* lower = picture.m_pBuffer + int64_t{height - 1 - i} * picture.m_nByteSpan;
        std::swap_ranges(upper, upper + words * 4, lower);
    }
    return kDone;
}

uint32_t FrameProcessor::CopyChannel(FrameParams* src, FrameParams* dst, int srcChannel, int dstChannel)
{
    return OnFrames(src, dst, [&](CFrame& source, CFrame& destination) {
        return Processors::CCopyPlane().Process(&source, &destination, srcChannel, dstChannel);
    });
}

uint32_t FrameProcessor::InvertChannel(FrameParams* frame, int channel)
{
    return OnFrame(frame, [&](CFrame& picture) { return Processors::CInvertChannel().Process(&picture, channel); });
}

uint32_t FrameProcessor::SqrInPlace(FrameParams* frame)
{
    return OnFrame(frame, [](CFrame& picture) { return Processors::CSqrInPlace().Process(&picture); });
}

// A negative sample becomes a not-a-number and gives 0, though the whole picture is done.
uint32_t FrameProcessor::SqrtInPlace(FrameParams* frame)
{
    return OnFrame(frame, [](CFrame& picture) { return Processors::CSqrtInPlace().Process(&picture); });
}

// Each sample below its channel's threshold becomes that threshold.
uint32_t FrameProcessor::ThresholdLTInPlace(FrameParams* frame, const float* thresholds)
{
    if (thresholds == nullptr)
        return kRefused;
    return OnFrame(frame, [&](CFrame& picture) {
        return Processors::CThresholdLTInPlace().Process(&picture, thresholds);
    });
}

// The rectangle (right and bottom inside) onto the whole destination. Its size is capped at the
// destination's, so a crop only ever enlarges or copies: a wider rectangle loses its right part.
uint32_t FrameProcessor::ResizeCrop(FrameParams* src, tagRECT* rect, FrameParams* dst, int mode)
{
    if (!HasPixels(src) || rect == nullptr || !HasPixels(dst))
        return kRefused;
    const int pixelBytes = CropPixelBytes(src->pfFormat);
    if (pixelBytes == 0 || src->nDepth != pixelBytes)
        return kRefused;
    const int64_t cropWidth = std::min(int64_t{rect->right} - rect->left + 1, int64_t{dst->nWidth});
    const int64_t cropHeight = std::min(int64_t{rect->bottom} - rect->top + 1, int64_t{dst->nHeight});
    // The member sees only the crop, so the crop must lie inside the source picture.
    if (cropWidth < 1 || cropHeight < 1 || rect->left < 0 || rect->top < 0 ||
        rect->left + cropWidth > src->nWidth || rect->top + cropHeight > src->nHeight)
        return kRefused;
    if (!RowsFit(*src, src->nWidth, pixelBytes) || !RowsFit(*dst, dst->nWidth, pixelBytes))
        return kRefused;
    return Guarded([&] {
        const IppiSize cropSize = {static_cast<int32_t>(cropWidth), static_cast<int32_t>(cropHeight)};
        const IppiRect cropRoi = {0, 0, cropSize.width, cropSize.height};
        const IppiSize dstSize = {dst->nWidth, dst->nHeight};
        const double xFactor = Factor(dst->nWidth, cropSize.width);
        const double yFactor = Factor(dst->nHeight, cropSize.height);
        const uint8_t* start = src->pBuffer + int64_t{rect->top} * src->nByteSpan + int64_t{rect->left} * src->nDepth;
        const int flag = InterpolationFlag(mode);
        if (pixelBytes == 4)
            return ippiResize_8u_C4R(start, cropSize, src->nByteSpan, cropRoi, dst->pBuffer, dst->nByteSpan, dstSize,
                                     xFactor, yFactor, flag) == ippStsNoErr;
        return ippiResize_32f_C4R(reinterpret_cast<const Ipp32f*>(start), cropSize, src->nByteSpan, cropRoi,
                                  reinterpret_cast<Ipp32f*>(dst->pBuffer), dst->nByteSpan, dstSize, xFactor, yFactor,
                                  flag) == ippStsNoErr;
    });
}
