#include <gtest/gtest.h>

#include <cstdint>
#include <tuple>
#include <vector>

#include "../Common/Frame.h"
#include "../Common/MemoryAllocator.h"
#include "../host/Clip.h"
#include "../host/InProcessHost.h"
#include "../primitives/ippMemory.h"

namespace {

// A frame's description as one comparable value: buffer, width, height, spans, depth, format, flip.
std::tuple<const uint8_t*, int, int, int, int, int, PixelFormat, bool> Described(const CFrame& f)
{
    return {f.m_pBuffer, f.m_nWidth, f.m_nHeight, f.m_nByteSpan, f.m_nPixelSpan, f.m_nDepth, f.m_pfPixelFormat,
            f.m_bFlipped};
}

TEST(Frame, EachDescriptionGivesItsTopDownPicture)
{
    uint8_t pixels[7 * 4 * 4];
    CFrame frame;
    using Expected = decltype(Described(frame));
    // A negative span describes a bottom-up picture from its top row.
    ASSERT_TRUE(frame.Init(pixels + 2 * 20, 5, 3, -20, 4, pfVideoSample, true));
    EXPECT_EQ(Described(frame), Expected(pixels, 5, 3, 20, 5, 4, pfVideoSample, false));
    EXPECT_FALSE(frame.m_bLocalAlloc);

    // A host record comes back whole, its spare words zero.
    FrameParams in = {pixels, 3, 2, 20, 4, 77, -1, pfVideoSampleSwapped, true};
    ASSERT_TRUE(frame.Init(&in));
    EXPECT_EQ(Described(frame), Expected(pixels, 3, 2, 20, 5, 4, pfVideoSampleSwapped, true));
    const FrameParams out = frame.GetFrameParams();
    EXPECT_EQ(std::tie(out.pBuffer, out.nWidth, out.nHeight, out.nByteSpan, out.nDepth, out.nReserved1,
                       out.nReserved2, out.pfFormat, out.bFlipped),
              std::make_tuple(pixels, 3, 2, 20, 4, 0, 0, pfVideoSampleSwapped, true));
    EXPECT_FALSE(frame.Init(static_cast<const FrameParams*>(nullptr)));
    EXPECT_EQ(Described(frame), Expected(nullptr, 0, 0, 0, 0, 0, pfVideoSample, false));

    // A bitmap header's height sign gives the flip.
    tagBITMAPINFOHEADER header = {};
    header.biWidth = 7;
    header.biBitCount = 32;
    for (int height : {-4, 4}) {
        header.biHeight = height;
        ASSERT_TRUE(frame.Init(&header, pixels));
        EXPECT_EQ(Described(frame), Expected(pixels, 7, 4, 28, 7, 4, pfVideoSample, height < 0));
    }
}

TEST(Frame, AllocatesFromThePrimitivesOrTheHost)
{
    CFrame frame;
    ASSERT_TRUE(frame.Init(100, 10, 4, nullptr, pfVideoSample, false));
    EXPECT_TRUE(frame.m_bLocalAlloc);
    EXPECT_EQ(frame.m_nPixelSpan, 104);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(frame.m_pBuffer) % 32, 0u);
    ASSERT_TRUE(frame.Init(9, 3, 1, nullptr, pfVideoSample, false));
    EXPECT_EQ(frame.m_pfPixelFormat, pfMono8);   // depth 1 forces the mono format
    EXPECT_EQ(frame.m_nByteSpan, 32);
    EXPECT_FALSE(frame.Init(4, 4, 5, nullptr, pfVideoSample, false));
    EXPECT_EQ(frame.m_pBuffer, nullptr);
    EXPECT_FALSE(frame.Init(0, 4, 4, nullptr, pfVideoSample, false));

    // A host's allocator serves and takes back; without one the primitives serve.
    for (bool offered : {true, false}) {
        TestHost::Clip clip(4, 4, pfVideoSample, 1, 25.0);
        TestHost::InProcessHost::Options options;
        options.offerAllocator = offered;
        TestHost::InProcessHost host(clip, options);
        {
            MemoryAllocator allocator(&host);
            CFrame hosted;
            ASSERT_TRUE(hosted.Init(10, 3, 4, &allocator, pfVideoSample, false));
            EXPECT_EQ(hosted.m_nByteSpan, offered ? 48 : 64);   // the host's span, not a 32-byte rounding
            ASSERT_TRUE(hosted.Init(10, 3, 16, &allocator, pfVideoSampleFloat, false));   // frees the first
            EXPECT_EQ(host.AllocationCount(), offered ? 2u : 0u);
        }
        EXPECT_EQ(host.Leaks(), "");
    }

    // Bad arguments are refused and nothing is written.
    MemoryAllocator allocator(nullptr);
    unsigned char* buffer = reinterpret_cast<unsigned char*>(0x1);
    int span = -7;
    const int bad[][3] = {{0, 4, 4}, {4, -1, 4}, {4, 4, 0}};
    for (const auto& b : bad)
        EXPECT_FALSE(allocator.AllocatePicture(&buffer, b[0], b[1], b[2], &span));
    EXPECT_FALSE(allocator.AllocatePicture(nullptr, 4, 4, 4, &span));
    EXPECT_FALSE(allocator.AllocatePicture(&buffer, 4, 4, 4, nullptr));
    EXPECT_EQ(buffer, reinterpret_cast<unsigned char*>(0x1));
    EXPECT_EQ(span, -7);
}

TEST(PrimitiveMemory, BlocksAlignAndPictureRowsRoundUpTo32Bytes)
{
    EXPECT_EQ(ippMalloc(0), nullptr);
    EXPECT_EQ(ippMalloc(-1), nullptr);
    EXPECT_EQ(ippsMalloc_8u(0), nullptr);
    ippFree(nullptr);
    for (int length : {1, 33, 4096}) {
        void* block = ippMalloc(length);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % 32, 0u);
        static_cast<unsigned char*>(block)[length - 1] = 0xAB;   // the whole length is usable
        ippFree(block);
    }
    const auto floats = [](int w, int h, int* s) {
        return reinterpret_cast<unsigned char*>(ippiMalloc_32f_C4(w, h, s));
    };
    struct Case {
        unsigned char* (*allocate)(int, int, int*);
        int width, height, step;
    };
    const Case cases[] = {
        {ippiMalloc_8u_C4, 100, 10, 416}, {ippiMalloc_8u_C1, 1, 1, 32}, {ippiMalloc_8u_C2, 17, 2, 64},
        {ippiMalloc_8u_C3, 11, 2, 64},    {ippiMalloc_8u_C4, 0, 10, 0}, {ippiMalloc_8u_C1, 5, 0, 0},
        {floats, 2, 2, 32},               {floats, 32768, 4096, 0},   // 2 GiB or more is not served

    };
    for (const Case& c : cases) {
        int step = -1;
        unsigned char* picture = c.allocate(c.width, c.height, &step);
        EXPECT_EQ(step, c.step) << c.width << "x" << c.height;
        EXPECT_EQ(picture == nullptr, c.step == 0);
        ippiFree(picture);
    }
    EXPECT_EQ(ippiMalloc_8u_C4(4, 4, nullptr), nullptr);
}

} // namespace
