#include "FrameProcessor.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "../include/InterfaceIds.h"
#include "../platform/Atomic.h"
#include "../primitives/ippResize.h"
#include "Copy.h"
#include "Frame.h"

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
    if (src == nullptr || dst == nullptr || src->pBuffer == nullptr || dst->pBuffer == nullptr)
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
    if (src == nullptr || dst == nullptr)
        return kRefused;
    return kRefused;
}

uint32_t FrameProcessor::YUY2ToRGBA(FrameParams* src, FrameParams* dst, unsigned char, IMemoryAllocator*)
{
    if (src == nullptr || dst == nullptr || src->pBuffer == nullptr || dst->pBuffer == nullptr)
        return kRefused;
    return kRefused;
}

uint32_t FrameProcessor::RGBAToYUY2(FrameParams* src, FrameParams* dst, IMemoryAllocator*)
{
    if (src == nullptr || dst == nullptr || src->pBuffer == nullptr || dst->pBuffer == nullptr)
        return kRefused;
    return kRefused;
}

uint32_t FrameProcessor::SetChannelValue(FrameParams* frame, unsigned int, unsigned int)
{
    if (frame == nullptr)
        return kRefused;
    return kRefused;
}

uint32_t FrameProcessor::AlphaBlend(FrameParams* out, FrameParams* in1, FrameParams* in2, bool)
{
    if (out == nullptr || in1 == nullptr || in2 == nullptr)
        return kRefused;
    return kRefused;
}

uint32_t FrameProcessor::SwapChannels(FrameParams* frame, unsigned int* order)
{
    if (frame == nullptr || order == nullptr)
        return kRefused;
    return kRefused;
}

uint32_t FrameProcessor::AlphaPremul(FrameParams* frame)
{
    if (frame == nullptr)
        return kRefused;
    return kRefused;
}

uint32_t FrameProcessor::AppleR4FLToARGB32(FrameParams* src, FrameParams* dst)
{
    if (src == nullptr || dst == nullptr)
        return kRefused;
    return kRefused;
}

uint32_t FrameProcessor::ARGB32ToAppleR4FL(FrameParams* src, FrameParams* dst)
{
    if (src == nullptr || dst == nullptr)
        return kRefused;
    return kRefused;
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

uint32_t FrameProcessor::CopyChannel(FrameParams* src, FrameParams* dst, int, int)
{
    if (src == nullptr || dst == nullptr)
        return kRefused;
    return kRefused;
}

uint32_t FrameProcessor::InvertChannel(FrameParams* frame, int)
{
    if (frame == nullptr)
        return kRefused;
    return kRefused;
}

uint32_t FrameProcessor::SqrInPlace(FrameParams* frame)
{
    if (frame == nullptr)
        return kRefused;
    return kRefused;
}

uint32_t FrameProcessor::SqrtInPlace(FrameParams* frame)
{
    if (frame == nullptr)
        return kRefused;
    return kRefused;
}

uint32_t FrameProcessor::ThresholdLTInPlace(FrameParams* frame, const float* thresholds)
{
    if (frame == nullptr || thresholds == nullptr)
        return kRefused;
    return kRefused;
}

// The rectangle (right and bottom inside) onto the whole destination. Its size is capped at the
// destination's, so a crop only ever enlarges or copies: a wider rectangle loses its right part.
uint32_t FrameProcessor::ResizeCrop(FrameParams* src, tagRECT* rect, FrameParams* dst, int mode)
{
    if (src == nullptr || rect == nullptr || dst == nullptr || src->pBuffer == nullptr || dst->pBuffer == nullptr)
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
