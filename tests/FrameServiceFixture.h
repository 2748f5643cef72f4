#pragma once
// A host's view of the frame service: the module loaded with dlopen, the service asked of the
// library object, and each operation called by its slot.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>

#include "../host/CallSlot.h"
#include "../host/Clip.h"
#include "../host/ModuleLoader.h"
#include "../include/Guid.h"

class IMemoryAllocator;

// The slots of IFrameProcessor as a host numbers them.
class FrameService {
public:
    explicit FrameService(void* object) : m_object(object) {}
    void* Object() const { return m_object; }

    int32_t QueryInterface(const _GUID* iid, void** out) { return Call<int32_t>(0, iid, out); }
    uint32_t AddRef() { return Call<uint32_t>(1); }
    uint32_t Release() { return Call<uint32_t>(2); }
    uint32_t Copy(FrameParams* src, FrameParams* dst) { return Call<uint32_t>(5, src, dst); }
    uint32_t Resize(FrameParams* src, FrameParams* dst, int mode) { return Call<uint32_t>(6, src, dst, mode); }
    uint32_t ReverseChannels(FrameParams* src, FrameParams* dst) { return Call<uint32_t>(7, src, dst); }
    uint32_t YUY2ToRGBA(FrameParams* src, FrameParams* dst, unsigned char alpha, IMemoryAllocator* allocator)
    {
        return Call<uint32_t>(8, src, dst, alpha, allocator);
    }
    uint32_t RGBAToYUY2(FrameParams* src, FrameParams* dst, IMemoryAllocator* allocator)
    {
        return Call<uint32_t>(9, src, dst, allocator);
    }
    uint32_t SetChannelValue(FrameParams* frame, unsigned int channel, unsigned int value)
    {
        return Call<uint32_t>(10, frame, channel, value);
    }
    uint32_t AlphaBlend(FrameParams* out, FrameParams* in1, FrameParams* in2, bool premultiplied)
    {
        return Call<uint32_t>(11, out, in1, in2, premultiplied);
    }
    uint32_t SwapChannels(FrameParams* frame, unsigned int* order) { return Call<uint32_t>(12, frame, order); }
    uint32_t AlphaPremul(FrameParams* frame) { return Call<uint32_t>(13, frame); }
    uint32_t AppleR4FLToARGB32(FrameParams* src, FrameParams* dst) { return Call<uint32_t>(14, src, dst); }
    uint32_t ARGB32ToAppleR4FL(FrameParams* src, FrameParams* dst) { return Call<uint32_t>(15, src, dst); }
    uint32_t FlipFrame(FrameParams* src, FrameParams* dst) { return Call<uint32_t>(16, src, dst); }
    uint32_t FlipFrame(FrameParams* frame) { return Call<uint32_t>(17, frame); }
    uint32_t CopyChannel(FrameParams* src, FrameParams* dst, int srcChannel, int dstChannel)
    {
        return Call<uint32_t>(18, src, dst, srcChannel, dstChannel);
    }
    uint32_t InvertChannel(FrameParams* frame, int channel) { return Call<uint32_t>(19, frame, channel); }
    uint32_t SqrInPlace(FrameParams* frame) { return Call<uint32_t>(20, frame); }
    uint32_t SqrtInPlace(FrameParams* frame) { return Call<uint32_t>(21, frame); }
    uint32_t ThresholdLTInPlace(FrameParams* frame, const float* thresholds)
    {
        return Call<uint32_t>(22, frame, thresholds);
    }
    uint32_t ResizeCrop(FrameParams* src, tagRECT* rect, FrameParams* dst, int mode)
    {
        return Call<uint32_t>(23, src, rect, dst, mode);
    }

private:
    template <typename Result, typename... Args>
    Result Call(int slot, Args... args)
    {
        return TestHost::CallSlot<Result>(m_object, slot, args...);
    }

    void* m_object;
};

class FrameServiceTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    std::unique_ptr<TestHost::ModuleLoader> module;
    IEffectLibrary* library = nullptr;
    std::unique_ptr<FrameService> service;
};

const uint8_t kSentinel = 0xA5;

// Every byte (or float) of the picture, row padding included, set from its position, so that a
// misplaced row, column or channel shows. Floats lie in 0 to 1.
TestHost::Picture Pattern(int width, int height, PixelFormat format, int byteSpan = 0, int seed = 0);
// A picture of sentinel bytes, to see that nothing was written.
TestHost::Picture Sentinel(int width, int height, PixelFormat format, int byteSpan = 0);
bool Untouched(const TestHost::Picture& picture);
bool IsFloat(PixelFormat format);
const uint8_t* Row(const TestHost::Picture& picture, const FrameParams& params, int y);
// Each row of `picture` holds the first `bytes` bytes of row sourceRow(y) of `source` (none where
// that is -1) and sentinels in the rest of its span.
::testing::AssertionResult RowsHold(const TestHost::Picture& picture, const FrameParams& params,
                                    const TestHost::Picture& source, const FrameParams& src, int bytes,
                                    const std::function<int(int)>& sourceRow);
