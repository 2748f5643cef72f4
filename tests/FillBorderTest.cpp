#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "../Common/FillBorder.h"
#include "AtEachVariant.h"
#include "ProcessorTestFrame.h"

namespace {

TEST_SUITE_AT_EACH_VARIANT(FillBorder);

struct Placement {
    int srcWidth, srcHeight, dstWidth, dstHeight, left, top;
};

// Every destination pixel is the picture pixel nearest to it; the picture lies in the source at
// (pictureX, pictureY). Row padding keeps what it had.
void ExpectReplicated(TestFrame& dst, const std::vector<uint8_t>& dstBefore, const std::vector<uint8_t>& srcMemory,
                      const CFrame& src, int pictureX, int pictureY, int pictureWidth, int pictureHeight, int left,
                      int top)
{
    const int depth = dst->m_nDepth;
    for (int y = 0; y < dst->m_nHeight; ++y)
        for (int x = 0; x < dst->m_nWidth; ++x) {
            const int fromX = pictureX + std::min(std::max(x - left, 0), pictureWidth - 1);
            const int fromY = pictureY + std::min(std::max(y - top, 0), pictureHeight - 1);
            const uint8_t* pExpected = &srcMemory[static_cast<size_t>(fromY) * src.m_nByteSpan + fromX * depth];
            ASSERT_EQ(std::memcmp(&dst.Memory()[dst.Offset(x, y)], pExpected, depth), 0)
                << "format " << dst->m_pfPixelFormat << " pixel " << x << "," << y;
        }
    for (size_t i = 0; i < dstBefore.size(); ++i) {
        const bool padding = i >= static_cast<size_t>(dst->m_nByteSpan) * dst->m_nHeight ||
                             static_cast<int>(i % dst->m_nByteSpan) >= dst->m_nWidth * depth;
        if (padding) {
            ASSERT_EQ(dst.Memory()[i], dstBefore[i]) << "padding byte " << i;
        }
    }
}

const PixelFormat kFormats[] = {pfVideoSample, pfVideoSampleSwapped, pfMono8,
                                pfVideoSampleFloat, pfVideoSampleSwappedFloat, pfMonoFloat};

TEST_P(FillBorder, PlacesThePictureAndExtendsItsEdgesIntoAnotherFrame)
{
    const Placement placements[] = {
        {2, 2, 4, 4, 1, 1},   // each corner block holds one source pixel
        {3, 2, 7, 6, 1, 2},   // right and bottom margins are what remains
        {3, 3, 3, 5, 0, 1},   // no side margins
        {1, 1, 3, 2, 2, 0},   // a single pixel fills everything
        {4, 3, 9, 3, 0, 0},   // only a right margin
    };
    for (PixelFormat format : kFormats)
        for (const Placement& p : placements) {
            TestFrame src(format, p.srcWidth, p.srcHeight), dst(format, p.dstWidth, p.dstHeight);
            src.FillPattern();
            const std::vector<uint8_t> before = dst.Memory();
            ASSERT_TRUE(Processors::CFillBorder().Process(src.Get(), dst.Get(), p.left, p.top))
                << "format " << format << " into " << p.dstWidth << "x" << p.dstHeight;
            ExpectReplicated(dst, before, src.Memory(), *src, 0, 0, p.srcWidth, p.srcHeight, p.left, p.top);
        }
}

TEST_P(FillBorder, InPlaceFillsOnlyTheMargins)
{
    const struct {
        int width, height, left, top;
    } cases[] = {{10, 10, 2, 3}, {5, 4, 0, 0}, {3, 3, 1, 1}, {8, 5, 3, 0}};
    for (PixelFormat format : kFormats)
        for (const auto& c : cases) {
            TestFrame frame(format, c.width, c.height);
            frame.FillPattern();
            const std::vector<uint8_t> original = frame.Memory();
            ASSERT_TRUE(Processors::CFillBorder().Process(frame.Get(), frame.Get(), c.left, c.top)) << format;
            ExpectReplicated(frame, original, original, *frame, c.left, c.top, c.width - 2 * c.left,
                             c.height - 2 * c.top, c.left, c.top);
        }
}

TEST_P(FillBorder, EqualSizedFramesTakeTheSourcesCentreAndIgnoreItsRing)
{
    for (PixelFormat format : kFormats) {
        TestFrame src(format, 5, 4), dst(format, 5, 4);
        src.FillPattern();
        // The outermost ring of the source must have no effect.
        for (int x = 0; x < 5; ++x) {
            std::memset(&src.Memory()[src.Offset(x, 0)], 0x11, src->m_nDepth);
            std::memset(&src.Memory()[src.Offset(x, 3)], 0x22, src->m_nDepth);
        }
        for (int y = 0; y < 4; ++y) {
            std::memset(&src.Memory()[src.Offset(0, y)], 0x33, src->m_nDepth);
            std::memset(&src.Memory()[src.Offset(4, y)], 0x44, src->m_nDepth);
        }
        const std::vector<uint8_t> before = dst.Memory();
        ASSERT_TRUE(Processors::CFillBorder().Process(src.Get(), dst.Get(), 1, 1)) << format;
        ExpectReplicated(dst, before, src.Memory(), *src, 1, 1, 3, 2, 1, 1);
    }
}

TEST_P(FillBorder, RefusesWhatItCannotPlaceAndWritesNothing)
{
    struct Case {
        const char* what;
        int srcFormat, srcDepth, dstDepth;
        Placement placement;
    };
    const Case cases[] = {
        {"byte depths differ", 0, 4, 1, {2, 2, 4, 4, 1, 1}},
        {"float depths differ", 3, 16, 4, {2, 2, 4, 4, 1, 1}},
        {"format 2 of four bytes", 2, 4, 4, {2, 2, 4, 4, 1, 1}},
        {"format 6 of two bytes", 6, 2, 2, {2, 2, 4, 4, 1, 1}},
        {"float picture past the right edge", 3, 16, 16, {3, 3, 4, 4, 2, 0}},
        {"float picture past the bottom edge", 7, 4, 4, {3, 3, 4, 4, 0, 2}},
        {"byte picture past the right edge", 0, 4, 4, {3, 3, 4, 4, 2, 0}},
        {"byte picture past the bottom edge", 6, 1, 1, {3, 3, 4, 4, 0, 2}},
        {"negative float margin", 4, 16, 16, {2, 2, 4, 4, -1, 0}},
        {"negative byte margin", 1, 4, 4, {2, 2, 4, 4, 0, -1}},
        {"in place margins leave no picture", 3, 16, 16, {4, 4, 4, 4, 2, 1}},
        {"in place negative margins", 0, 4, 4, {4, 4, 4, 4, -1, -1}},
    };
    for (const Case& c : cases) {
        const Placement& p = c.placement;
        TestFrame src(static_cast<PixelFormat>(c.srcFormat), p.srcWidth, p.srcHeight, c.srcDepth),
            dst(static_cast<PixelFormat>(c.srcFormat), p.dstWidth, p.dstHeight, c.dstDepth);
        src.FillPattern();
        const std::vector<uint8_t> before = dst.Memory();
        EXPECT_FALSE(Processors::CFillBorder().Process(src.Get(), dst.Get(), p.left, p.top)) << c.what;
        EXPECT_EQ(dst.Memory(), before) << c.what;
    }
    TestFrame frame(pfVideoSample, 2, 2);
    CFrame empty;
    EXPECT_FALSE(Processors::CFillBorder().Process(nullptr, frame.Get(), 0, 0));
    EXPECT_FALSE(Processors::CFillBorder().Process(frame.Get(), &empty, 0, 0));
    EXPECT_FALSE(Processors::CFillBorder().Process32f(frame.Get(), nullptr, 0, 0));
    EXPECT_FALSE(Processors::CFillBorder().Process8u(nullptr, frame.Get(), 0, 0));
}

} // namespace
