#pragma once
#include "FrameParams.h"
#include "Unknown.h"

class IMemoryAllocator;

// The library's image operations offered to the host. Every operation returns 1 on success, 0 on failure.
// Hosts call by slot, so the order below is the contract: after QueryInterface 0, AddRef 1, Release 2
// and the two destructors 3 and 4 come Copy 5, Resize 6, ReverseChannels 7, YUY2ToRGBA 8, RGBAToYUY2 9,
// SetChannelValue 10, AlphaBlend 11, SwapChannels 12, AlphaPremul 13, AppleR4FLToARGB32 14,
// ARGB32ToAppleR4FL 15, FlipFrame(src, dst) 16, FlipFrame(frame) 17, CopyChannel 18, InvertChannel 19,
// SqrInPlace 20, SqrtInPlace 21, ThresholdLTInPlace 22, ResizeCrop 23.
class IFrameProcessor : public IUnknown {
public:
    virtual uint32_t Copy(FrameParams* src, FrameParams* dst) = 0;
    virtual uint32_t Resize(FrameParams* src, FrameParams* dst, int mode) = 0;
    virtual uint32_t ReverseChannels(FrameParams* src, FrameParams* dst) = 0;
    virtual uint32_t YUY2ToRGBA(FrameParams* src, FrameParams* dst, unsigned char alpha, IMemoryAllocator* allocator) = 0;
    virtual uint32_t RGBAToYUY2(FrameParams* src, FrameParams* dst, IMemoryAllocator* allocator) = 0;
    virtual uint32_t SetChannelValue(FrameParams* frame, unsigned int channel, unsigned int value) = 0;
    virtual uint32_t AlphaBlend(FrameParams* out, FrameParams* in1, FrameParams* in2, bool premultiplied) = 0;
    virtual uint32_t SwapChannels(FrameParams* frame, unsigned int* order) = 0;
    virtual uint32_t AlphaPremul(FrameParams* frame) = 0;
    virtual uint32_t AppleR4FLToARGB32(FrameParams* src, FrameParams* dst) = 0;
    virtual uint32_t ARGB32ToAppleR4FL(FrameParams* src, FrameParams* dst) = 0;
    virtual uint32_t FlipFrame(FrameParams* src, FrameParams* dst) = 0;
    virtual uint32_t FlipFrame(FrameParams* frame) = 0;
    virtual uint32_t CopyChannel(FrameParams* src, FrameParams* dst, int srcChannel, int dstChannel) = 0;
    virtual uint32_t InvertChannel(FrameParams* frame, int channel) = 0;
    virtual uint32_t SqrInPlace(FrameParams* frame) = 0;
    virtual uint32_t SqrtInPlace(FrameParams* frame) = 0;
    virtual uint32_t ThresholdLTInPlace(FrameParams* frame, const float* thresholds) = 0;
    virtual uint32_t ResizeCrop(FrameParams* src, tagRECT* rect, FrameParams* dst, int mode) = 0;
};
static_assert(sizeof(IFrameProcessor) == sizeof(void*), "IFrameProcessor is its table pointer alone");
