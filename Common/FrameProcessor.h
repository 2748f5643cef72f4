#pragma once
#include <atomic>
#include <cstdint>

#include "../include/FrameProcessor.h"

// The library's image operations as a host calls them on its own frames. Each operation checks
// its arguments, wraps the host's records in frames that own nothing and drives one processor or
// primitive; it returns 1 when that succeeded and 0 otherwise, leaving a refused destination as it
// was. The object holds nothing but its reference count, so threads may share it.
class FrameProcessor : public IFrameProcessor {
public:
    FrameProcessor();
    ~FrameProcessor() override;

    HRESULT QueryInterface(const _GUID& iid, void** ppv) override;
    ULONG AddRef() override;
    ULONG Release() override;

    uint32_t Copy(FrameParams* src, FrameParams* dst) override;
    uint32_t Resize(FrameParams* src, FrameParams* dst, int mode) override;
    uint32_t ReverseChannels(FrameParams* src, FrameParams* dst) override;
    uint32_t YUY2ToRGBA(FrameParams* src, FrameParams* dst, unsigned char alpha, IMemoryAllocator* allocator) override;
    uint32_t RGBAToYUY2(FrameParams* src, FrameParams* dst, IMemoryAllocator* allocator) override;
    uint32_t SetChannelValue(FrameParams* frame, unsigned int channel, unsigned int value) override;
    uint32_t AlphaBlend(FrameParams* out, FrameParams* in1, FrameParams* in2, bool premultiplied) override;
    uint32_t SwapChannels(FrameParams* frame, unsigned int* order) override;
    uint32_t AlphaPremul(FrameParams* frame) override;
    uint32_t AppleR4FLToARGB32(FrameParams* src, FrameParams* dst) override;
    uint32_t ARGB32ToAppleR4FL(FrameParams* src, FrameParams* dst) override;
    uint32_t FlipFrame(FrameParams* src, FrameParams* dst) override;
    uint32_t FlipFrame(FrameParams* frame) override;
    uint32_t CopyChannel(FrameParams* src, FrameParams* dst, int srcChannel, int dstChannel) override;
    uint32_t InvertChannel(FrameParams* frame, int channel) override;
    uint32_t SqrInPlace(FrameParams* frame) override;
    uint32_t SqrtInPlace(FrameParams* frame) override;
    uint32_t ThresholdLTInPlace(FrameParams* frame, const float* thresholds) override;
    uint32_t ResizeCrop(FrameParams* src, tagRECT* rect, FrameParams* dst, int mode) override;

private:
    std::atomic<int32_t> m_lRefCount;
};

static_assert(sizeof(std::atomic<int32_t>) == 4, "the reference count is a 32-bit value");
