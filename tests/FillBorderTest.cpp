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
    bool inPlace = false;
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

// Into a larger frame the whole source is the picture; into a frame of its size, or in place, the
// source's centre inside the margins is, and its outer ring has no effect.
TEST_P(FillBorder, PlacesThePictureAndExtendsItsEdges)
{
    const Placement placements[] = {
        {2, 2, 4, 4, 1, 1},   // each corner block holds one source pixel
        {3, 2, 7, 6, 1, 2},   // right and bottom margins are what remains
        {3, 3, 3, 5, 0, 1},   // no side margins
        {1, 1, 3, 2, 2, 0},   // a single pixel fills everything
        {4, 3, 9, 3, 0, 0},   // only a right margin
        {5, 4, 5, 4, 1, 1},   // equal sizes
        {10, 10, 10, 10, 2, 3, true}, {5, 4, 5, 4, 0, 0, true}, {3, 3, 3, 3, 1, 1, true}, {8, 5, 8, 5, 3, 0, true},
    };
    for (PixelFormat format : kFormats)
        for (const Placement& p : placements) {
            TestFrame src(format, p.srcWidth, p.srcHeight), dst(format, p.dstWidth, p.dstHeight);
            TestFrame& from = p.inPlace ? dst : src;
            from.FillPattern();
            const std::vector<uint8_t> before = dst.Memory(), source = from.Memory();
            ASSERT_TRUE(Processors::CFillBorder().Process(from.Get(), dst.Get(), p.left, p.top))
                << "format " << format << " into " << p.dstWidth << "x" << p.dstHeight;
            const bool centre = p.srcWidth == p.dstWidth && p.srcHeight == p.dstHeight;
            ExpectReplicated(dst, before, source, *from, centre ? p.left : 0, centre ? p.top : 0,
                             p.srcWidth - (centre ? 2 * p.left : 0), p.srcHeight - (centre ? 2 * p.top : 0), p.left,
                             p.top);
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
        SCOPED_TRACE(c.what);
        dst.ExpectRefused([&] { return Processors::CFillBorder().Process(src.Get(), dst.Get(), p.left, p.top); });
    }
    TestFrame frame(pfVideoSample, 2, 2);
    CFrame empty;
    EXPECT_FALSE(Processors::CFillBorder().Process(nullptr, frame.Get(), 0, 0));
    EXPECT_FALSE(Processors::CFillBorder().Process(frame.Get(), &empty, 0, 0));
    EXPECT_FALSE(Processors::CFillBorder().Process32f(frame.Get(), nullptr, 0, 0));
    EXPECT_FALSE(Processors::CFillBorder().Process8u(nullptr, frame.Get(), 0, 0));
}

} // namespace
