#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "../Common/Frame.h"
#include "../Common/MemoryAllocator.h"
#include "../host/Clip.h"
#include "../host/InProcessHost.h"
#include "../primitives/ippMemory.h"

namespace {

TEST(Frame, NegativeSpanDescribesBottomUpPictureFromItsTopRow)
{
    const int width = 5, height = 3;
    std::vector<uint8_t> pixels(width * 4 * height);
    uint8_t* topRow = pixels.data() + (height - 1) * width * 4;
    CFrame frame;
    ASSERT_TRUE(frame.Init(topRow, width, height, -width * 4, 4, pfVideoSample, true));
    EXPECT_EQ(frame.m_pBuffer, pixels.data());
    EXPECT_EQ(frame.m_nByteSpan, width * 4);
    EXPECT_EQ(frame.m_nPixelSpan, width);
    EXPECT_FALSE(frame.m_bFlipped);
    EXPECT_FALSE(frame.m_bLocalAlloc);
}

TEST(Frame, FrameParamsRoundTripKeepsEveryFieldAndZeroesSpareWords)
{
    uint8_t pixels[64];
    FrameParams in = {};
    in.pBuffer = pixels;
    in.nWidth = 3;
    in.nHeight = 2;
    in.nByteSpan = 20;
    in.nDepth = 4;
    in.nReserved1 = 77;
    in.nReserved2 = -1;
    in.pfFormat = pfVideoSampleSwapped;
    in.bFlipped = true;
    CFrame frame;
    ASSERT_TRUE(frame.Init(&in));
    const FrameParams out = frame.GetFrameParams();
    EXPECT_EQ(out.pBuffer, pixels);
    EXPECT_EQ(out.nWidth, 3);
    EXPECT_EQ(out.nHeight, 2);
    EXPECT_EQ(out.nByteSpan, 20);
    EXPECT_EQ(out.nDepth, 4);
    EXPECT_EQ(out.nReserved1, 0);
    EXPECT_EQ(out.nReserved2, 0);
    EXPECT_EQ(out.pfFormat, pfVideoSampleSwapped);
    EXPECT_TRUE(out.bFlipped);
    EXPECT_EQ(frame.m_nPixelSpan, 5);

    EXPECT_FALSE(frame.Init(static_cast<const FrameParams*>(nullptr)));
    EXPECT_EQ(frame.m_pBuffer, nullptr);
    EXPECT_EQ(frame.m_nWidth, 0);
}

TEST(Frame, BitmapHeaderHeightSignGivesFlippedFlag)
{
    tagBITMAPINFOHEADER header = {};
    header.biWidth = 7;
    header.biHeight = -4;
    header.biBitCount = 32;
    uint8_t bits[7 * 4 * 4];
    CFrame frame;
    ASSERT_TRUE(frame.Init(&header, bits));
    EXPECT_TRUE(frame.m_bFlipped);
    EXPECT_EQ(frame.m_nHeight, 4);
    EXPECT_EQ(frame.m_nByteSpan, 28);
    EXPECT_EQ(frame.m_nDepth, 4);
    EXPECT_EQ(frame.m_pfPixelFormat, pfVideoSample);
    header.biHeight = 4;
    ASSERT_TRUE(frame.Init(&header, bits));
    EXPECT_FALSE(frame.m_bFlipped);
}

TEST(Frame, AllocationWithoutHostComesFromPrimitiveLibrary)
{
    CFrame frame;
    ASSERT_TRUE(frame.Init(100, 10, 4, nullptr, pfVideoSample, false));
    EXPECT_TRUE(frame.m_bLocalAlloc);
    EXPECT_EQ(frame.m_nByteSpan, 416);
    EXPECT_EQ(frame.m_nPixelSpan, 104);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(frame.m_pBuffer) % 32, 0u);

    ASSERT_TRUE(frame.Init(9, 3, 1, nullptr, pfVideoSample, false));
    EXPECT_EQ(frame.m_pfPixelFormat, pfMono8);   // depth 1 forces the mono format
    EXPECT_EQ(frame.m_nByteSpan, 32);

    EXPECT_FALSE(frame.Init(4, 4, 5, nullptr, pfVideoSample, false));
    EXPECT_EQ(frame.m_pBuffer, nullptr);
    EXPECT_EQ(frame.m_nWidth, 4);
    EXPECT_FALSE(frame.Init(0, 4, 4, nullptr, pfVideoSample, false));
    frame.Clear();
    frame.Clear();
}

TEST(Frame, HostAllocatorServesAndTakesBackPictures)
{
    TestHost::Clip clip(4, 4, pfVideoSample, 1, 25.0);
    TestHost::InProcessHost host(clip);
    {
        MemoryAllocator allocator(&host);
        CFrame frame;
        ASSERT_TRUE(frame.Init(10, 3, 4, &allocator, pfVideoSample, false));
        EXPECT_EQ(host.AllocationCount(), 1u);
        EXPECT_EQ(frame.m_nByteSpan, 48);   // the host's span, not a 32-byte rounding
        ASSERT_TRUE(frame.Init(10, 3, 16, &allocator, pfVideoSampleFloat, false));   // frees the first
        EXPECT_EQ(host.AllocationCount(), 2u);
    }
    EXPECT_EQ(host.Leaks(), "");
}

TEST(Frame, HostWithoutAllocatorStillGetsFrames)
{
    TestHost::Clip clip(4, 4, pfVideoSample, 1, 25.0);
    TestHost::InProcessHost::Options options;
    options.offerAllocator = false;
    TestHost::InProcessHost host(clip, options);
    MemoryAllocator allocator(&host);
    CFrame frame;
    ASSERT_TRUE(frame.Init(3, 3, 4, &allocator, pfVideoSample, false));
    EXPECT_EQ(frame.m_nByteSpan, 32);
    EXPECT_EQ(host.AllocationCount(), 0u);
    EXPECT_EQ(host.Leaks(), "");
}

TEST(Frame, AllocatorRefusesBadArgumentsWithoutWriting)
{
    MemoryAllocator allocator(nullptr);
    unsigned char* buffer = reinterpret_cast<unsigned char*>(0x1);
    int span = -7;
    EXPECT_FALSE(allocator.AllocatePicture(nullptr, 4, 4, 4, &span));
    EXPECT_FALSE(allocator.AllocatePicture(&buffer, 4, 4, 4, nullptr));
    EXPECT_FALSE(allocator.AllocatePicture(&buffer, 0, 4, 4, &span));
    EXPECT_FALSE(allocator.AllocatePicture(&buffer, 4, -1, 4, &span));
    EXPECT_FALSE(allocator.AllocatePicture(&buffer, 4, 4, 0, &span));
    EXPECT_EQ(buffer, reinterpret_cast<unsigned char*>(0x1));
    EXPECT_EQ(span, -7);
}

TEST(PrimitiveMemory, MallocAlignsAndRefusesEmptyLengths)
{
    EXPECT_EQ(ippMalloc(0), nullptr);
    EXPECT_EQ(ippMalloc(-1), nullptr);
    EXPECT_EQ(ippsMalloc_8u(0), nullptr);
    ippFree(nullptr);
    for (int length : {1, 31, 32, 33, 4096}) {
        void* block = ippMalloc(length);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % 32, 0u);
        static_cast<unsigned char*>(block)[length - 1] = 0xAB;   // the whole length is usable
        ippFree(block);
    }
}

TEST(PrimitiveMemory, PictureStepsRoundRowsUpTo32Bytes)
{
    struct Case {
        unsigned char* (*allocate)(int, int, int*);
        int width, height, step;
    };
    const Case cases[] = {
        {ippiMalloc_8u_C4, 100, 10, 416}, {ippiMalloc_8u_C1, 1, 1, 32}, {ippiMalloc_8u_C2, 17, 2, 64},
        {ippiMalloc_8u_C3, 11, 2, 64},    {ippiMalloc_8u_C4, 0, 10, 0}, {ippiMalloc_8u_C1, 5, 0, 0},
    };
    for (const Case& c : cases) {
        int step = -1;
        unsigned char* picture = c.allocate(c.width, c.height, &step);
        EXPECT_EQ(step, c.step) << c.width << "x" << c.height;
        EXPECT_EQ(picture == nullptr, c.step == 0);
        ippiFree(picture);
    }
    int step = -1;
    float* floats = ippiMalloc_32f_C4(2, 2, &step);
    EXPECT_EQ(step, 32);
    ippiFree(floats);
    EXPECT_EQ(ippiMalloc_8u_C4(4, 4, nullptr), nullptr);
    // 2 GiB or more is not served.
    EXPECT_EQ(ippiMalloc_32f_C4(32768, 4096, &step), nullptr);
}

} // namespace
