#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "../Common/Copy.h"
#include "../Common/Frame.h"
#include "../primitives/ippCopy.h"

namespace {

const uint8_t kSentinel = 0xCD;

std::vector<uint8_t> Pattern(size_t length)
{
    std::vector<uint8_t> bytes(length);
    for (size_t i = 0; i < length; ++i)
        bytes[i] = static_cast<uint8_t>(i * 7 + 3);
    return bytes;
}

// Copies between frames of each format and checks that exactly the common top-left area moved.
TEST(Copy, CopiesCommonTopLeftAreaForEveryFormat)
{
    struct Case {
        PixelFormat format;
        int depth;
    };
    const Case cases[] = {{pfVideoSample, 4},  {pfVideoSampleSwapped, 4}, {pfVideoSampleFloat, 16},
                          {pfVideoSampleSwappedFloat, 16}, {pfMono8, 1}, {pfMonoFloat, 4}};
    for (const Case& c : cases) {
        const int srcWidth = 7, srcHeight = 5, dstWidth = 4, dstHeight = 9;
        const int srcSpan = srcWidth * c.depth + 12, dstSpan = dstWidth * c.depth + 5;
        std::vector<uint8_t> src = Pattern(srcSpan * srcHeight);
        std::vector<uint8_t> dst(dstSpan * dstHeight, kSentinel);
        CFrame srcFrame, dstFrame;
        srcFrame.Init(src.data(), srcWidth, srcHeight, srcSpan, c.depth, c.format, false);
        dstFrame.Init(dst.data(), dstWidth, dstHeight, dstSpan, c.depth, c.format, false);
        std::vector<uint8_t> expected = dst;
        for (int y = 0; y < srcHeight; ++y)
            std::memcpy(&expected[y * dstSpan], &src[y * srcSpan], dstWidth * c.depth);
        ASSERT_TRUE(Processors::CCopy().Process(&srcFrame, &dstFrame)) << c.format;
        EXPECT_EQ(dst, expected) << "format " << c.format;
    }
}

TEST(Copy, FormatsWithoutACopyLeaveDestinationAndSucceed)
{
    std::vector<uint8_t> src = Pattern(16 * 4), dst(16 * 4, kSentinel);
    for (int format : {2, 5, 6, 42}) {
        CFrame srcFrame, dstFrame;
        srcFrame.Init(src.data(), 4, 4, 16, 4, static_cast<PixelFormat>(format), false);
        dstFrame.Init(dst.data(), 4, 4, 16, 4, pfVideoSample, false);
        EXPECT_TRUE(Processors::CCopy().Process(&srcFrame, &dstFrame)) << format;
        EXPECT_EQ(dst, std::vector<uint8_t>(16 * 4, kSentinel)) << format;
    }
    // Any format but the known ones copies bytes when the destination is one byte deep.
    CFrame srcFrame, dstFrame;
    srcFrame.Init(src.data(), 4, 4, 4, 1, static_cast<PixelFormat>(2), false);
    dstFrame.Init(dst.data(), 4, 4, 4, 1, pfMono8, false);
    EXPECT_TRUE(Processors::CCopy().Process(&srcFrame, &dstFrame));
    EXPECT_EQ(0, std::memcmp(dst.data(), src.data(), 16));
}

TEST(Copy, RefusesEmptyFramesAndShortSpansWithoutWriting)
{
    std::vector<uint8_t> src = Pattern(64), dst(64, kSentinel);
    const std::vector<uint8_t> untouched = dst;
    struct Case {
        uint8_t* srcBuffer;
        int srcWidth, srcSpan;
        uint8_t* dstBuffer;
        int dstWidth, dstHeight, dstSpan;
    };
    const Case cases[] = {
        {nullptr, 4, 16, dst.data(), 4, 4, 16},   // no source picture
        {src.data(), 4, 16, nullptr, 4, 4, 16},   // no destination picture
        {src.data(), 0, 16, dst.data(), 4, 4, 16}, // empty source
        {src.data(), 4, 16, dst.data(), 4, 0, 16}, // empty destination
        {src.data(), 4, 8, dst.data(), 4, 4, 16},  // source rows overlap
        {src.data(), 4, 16, dst.data(), 4, 4, 12}, // destination rows overlap
    };
    for (const Case& c : cases) {
        CFrame srcFrame, dstFrame;
        srcFrame.Init(c.srcBuffer, c.srcWidth, 4, c.srcSpan, 4, pfVideoSample, false);
        dstFrame.Init(c.dstBuffer, c.dstWidth, c.dstHeight, c.dstSpan, 4, pfVideoSample, false);
        EXPECT_FALSE(Processors::CCopy().Process(&srcFrame, &dstFrame));
        EXPECT_EQ(dst, untouched);
    }
    CFrame frame;
    EXPECT_FALSE(Processors::CCopy().Process(nullptr, &frame));
    EXPECT_FALSE(Processors::CCopy().Process(&frame, nullptr));
}

TEST(Copy, PrimitiveCopiesCheckPointersThenSizes)
{
    uint8_t src[64] = {1, 2, 3}, dst[64] = {};
    float fsrc[16] = {}, fdst[16] = {};
    EXPECT_EQ(ippiCopy_8u_C1R(nullptr, 4, dst, 4, IppiSize{0, 0}), ippStsNullPtrErr);
    EXPECT_EQ(ippiCopy_8u_C4R(src, 4, nullptr, 4, IppiSize{1, 1}), ippStsNullPtrErr);
    EXPECT_EQ(ippiCopy_32f_C1R(fsrc, 4, fdst, 4, IppiSize{0, 1}), ippStsSizeErr);
    EXPECT_EQ(ippiCopy_32f_C4R(fsrc, 16, fdst, 16, IppiSize{1, -3}), ippStsSizeErr);
    EXPECT_EQ(dst[0], 0);
    EXPECT_EQ(ippiCopy_8u_C1R(src, 4, dst, 4, IppiSize{3, 1}), ippStsNoErr);
    EXPECT_EQ(dst[2], 3);
}

} // namespace
