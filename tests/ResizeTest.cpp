// The six resize members, corner-to-corner (ippiResize_*) and pixel-area (ippiResizeSqrPixel_*),
// and the size of their work space.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "../primitives/ippResize.h"
#include "ResizeReference.h"
#include "ResizeTestPicture.h"

namespace {

TEST(Resize, RefusesBadArgumentsInOrderWithoutWriting)
{
    enum Null { kNone, kSrc, kDst, kWork };
    struct Case {
        bool areas;
        Null null;
        IppiSize srcSize;
        IppiRect roi, dstRoi;
        double xFactor, yFactor, xShift;
        int interpolation;
        IppStatus status;
    };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const IppiSize size = {8, 8};
    const IppiRect all = {0, 0, 8, 8};
    // Each refusal is checked before the ones after it in the table.
    const Case cases[] = {
        {false, kSrc, {0, 0}, all, all, 1, 1, 0, 2, ippStsNullPtrErr},
        {false, kDst, size, all, all, 1, 1, 0, 2, ippStsNullPtrErr},
        {false, kNone, {8, 0}, all, all, 1, 1, 0, 2, ippStsSizeErr},
        {false, kNone, size, {-1, 0, 8, 8}, all, 1, 1, 0, 2, ippStsSizeErr},
        {false, kNone, size, {8, 0, 1, 1}, {0, 0, 0, 0}, 1, 1, 0, 2, ippStsWrongIntersectROI},
        {false, kNone, size, {0, 8, 1, 1}, all, 1, 1, 0, 2, ippStsWrongIntersectROI},
        {false, kNone, size, all, {0, 0, 8, 0}, 0, 1, 0, 2, ippStsSizeErr},
        {false, kNone, size, all, all, 0, 1, 0, 3, ippStsResizeFactorErr},
        {false, kNone, size, all, all, 1, nan, 0, 2, ippStsResizeFactorErr},
        {false, kNone, size, all, all, 1, 1, 0, 8, ippStsInterpolationErr},   // area decimation is not built
        {false, kNone, size, all, all, 0.06, 1, 0, 2, ippStsResizeNoOperationErr},   // below half a pixel
        {false, kNone, size, {7, 0, 50, 8}, all, 0.45, 1, 0, 2, ippStsResizeNoOperationErr},   // after the cut
        {false, kNone, size, all, {0, 0, INT32_MAX, 8}, 1e9, 1, 0, 2, ippStsMemAllocErr},
        {false, kNone, size, all, all, 0.0625, 1, 0, 2, ippStsNoErr},   // half a pixel gives one

        {true, kWork, size, all, all, 1, 1, 0, 2, ippStsNullPtrErr},
        {true, kSrc, {0, 8}, all, all, 1, 1, 0, 2, ippStsNullPtrErr},
        {true, kNone, size, all, {0, -1, 8, 8}, 1, 1, 0, 2, ippStsSizeErr},
        {true, kNone, size, all, {0, 0, 0, 8}, 0, 1, 0, 2, ippStsSizeErr},
        {true, kNone, size, all, all, 0, 1, 0, 2, ippStsResizeFactorErr},
        {true, kNone, size, {8, 0, 8, 8}, all, 1, 1, 0, 3, ippStsInterpolationErr},
        {true, kNone, size, all, all, 1, 1, 0, 6, ippStsInterpolationErr},   // further cubic kernels
        {true, kNone, size, {8, 0, 1, 1}, all, 1, 1, 0, 2, ippStsWrongIntersectROI},
        {true, kNone, size, all, all, 1, 1, 8.5, 2, ippStsNoOperation},    // shifted wholly right
        {true, kNone, size, all, all, 0.5, 1, -4.6, 4, ippStsNoOperation},  // and wholly left
        {true, kNone, size, all, all, 1, 1, nan, 2, ippStsNoOperation},
        {true, kNone, size, all, all, 1, 1, 7.4, 2, ippStsNoErr},           // a sliver is written
    };
    std::mt19937 rng(1);
    std::vector<uint8_t> work(100000);
    for (const Member& m : kMembers)
        for (const Case& c : cases) {
            if (c.areas != m.areas)
                continue;
            SCOPED_TRACE(testing::Message() << m << ": case " << &c - cases);
            TestPicture src(size, m.channels, m.bytes), dst(size, m.channels, m.bytes);
            src.FillRandom(rng);
            const std::vector<uint8_t> before = dst.Bytes();
            const Call call = {c.srcSize, src.step, c.roi, dst.step, c.dstRoi, c.xFactor, c.yFactor, c.xShift, 0.0,
                               c.interpolation};
            const uint8_t* pSrc = c.null == kSrc ? nullptr : src.Origin();
            uint8_t* pDst = c.null == kDst ? nullptr : dst.Origin();
            EXPECT_EQ(RunMember(m, call, pSrc, pDst, c.null == kWork ? nullptr : work.data()), c.status);
            EXPECT_EQ(dst.Bytes() == before, c.status != ippStsNoErr);
        }
}

// Random pictures, regions anywhere in them (also at and past their edges), destination regions,
// factors up and down in each direction, and shifts: the tables and rolling row stores must give
// what the formulas give, and nothing outside the block may change.
TEST(Resize, MatchesDirectEvaluationOnRandomPictures)
{
    std::mt19937 rng(17);
    const double factors[] = {1.0, 2.0, 0.5, 1.0 / 3, 0.7, 1.37, 3.1, 4.0, 0.26, 2.5, 1.9999999};
    // With 0.505 the first destination centre lies a hair outside the mapped area.
    const double shifts[] = {0.0, 0.5, -0.5, 0.25, 1.5, -2.75, 4.1, -1.25, 0.505};
    auto pick = [&rng](int low, int high) { return std::uniform_int_distribution<int>(low, high)(rng); };
    int written = 0;
    const int rounds = 1800;
    for (int round = 0; round < rounds; ++round) {
        const Member& m = kMembers[round % 6];
        const int mode = kModes[pick(0, 3)];
        TestPicture src({pick(1, 20), pick(1, 20)}, m.channels, m.bytes);
        src.FillRandom(rng);
        const int reach = m.areas ? 6 : 20;
        const IppiRect roi = {pick(0, std::min(src.size.width - 1, reach)),
                              pick(0, std::min(src.size.height - 1, reach)), pick(1, 22), pick(1, 22)};
        const IppiRect dstRoi = m.areas ? IppiRect{pick(0, 3), pick(0, 3), pick(1, 50), pick(1, 50)}
                                        : IppiRect{0, 0, pick(1, 60), pick(1, 60)};
        const double xFactor = factors[pick(0, 10)], yFactor = factors[pick(0, 10)];
        const double xShift = m.areas ? shifts[pick(0, 8)] : 0, yShift = m.areas ? shifts[pick(0, 8)] : 0;
        TestPicture dst({60, 60}, m.channels, m.bytes);
        const std::vector<uint8_t> before = dst.Bytes();
        const ResizeReference::Expected expected =
            Reference(src, roi, dstRoi, xFactor, yFactor, xShift, yShift, mode, m.areas);
        SCOPED_TRACE(testing::Message() << "round " << round << " " << m << " mode " << mode << " " << src.size.width
                                        << "x" << src.size.height << " region " << roi.x << "," << roi.y << " "
                                        << roi.width << "x" << roi.height << " factors " << xFactor << " " << yFactor
                                        << " shifts " << xShift << " " << yShift);
        const IppStatus nothing = m.areas ? ippStsNoOperation : ippStsResizeNoOperationErr;
        ASSERT_EQ(Resize(src, roi, dst, dstRoi, xFactor, yFactor, xShift, yShift, mode, m.areas),
                  expected.columns == 0 ? nothing : ippStsNoErr);
        written += expected.columns > 0;
        ASSERT_TRUE(ResizeReference::Matches(expected, dst.Origin(), dst.step, dst.size, before));
    }
    EXPECT_GT(written, rounds * 2 / 3) << "most rounds must write something to test anything";
}

// Checks that don't lean on the reference: a constant picture stays constant, and doubling 0, 100
// in linear mode gives steps of a third with the ends on the samples (corner-to-corner) or maps
// the outputs to -0.25, 0.25, 0.75 and 1.25, replicating the edge samples (pixel-area).
TEST(Resize, ConstantPicturesAndTwoSamplesDoubledGiveWorkedValues)
{
    const double maps[][4] = {{2.5, 0.4, 0, 0}, {0.55, 0.55, 0, 0}, {3.3, 0.45, 0.3, -0.2}};
    for (const Member& m : kMembers) {
        SCOPED_TRACE(testing::Message() << m);
        const double levels[] = {m.bytes ? 200.0 : 0.8, m.bytes ? 17.0 : 0.1, m.bytes ? 255.0 : 1.0, 0.0};
        for (int mode : kModes)
            for (const auto& map : maps) {
                TestPicture src({13, 10}, m.channels, m.bytes), dst({40, 40}, m.channels, m.bytes);
                src.Fill([&](int, int, int c) { return levels[c]; });
                ASSERT_EQ(Resize(src, src.Whole(), dst, dst.Whole(), map[0], map[1], map[2], map[3], mode, m.areas),
                          ippStsNoErr);
                const int x0 = m.areas ? 1 : 0, y0 = m.areas ? 1 : 0;   // inside what a shift leaves
                for (int y = y0; y < 4; ++y)
                    for (int x = x0; x < 4; ++x)
                        for (int c = 0; c < m.channels; ++c)
                            ASSERT_NEAR(dst.Get(x, y, c), levels[c], m.bytes ? 0 : 1e-6)
                                << "mode " << mode << " factors " << map[0] << " at " << x << "," << y;
            }

        TestPicture src({2, 2}, m.channels, m.bytes), dst({4, 2}, m.channels, m.bytes);
        src.Fill([](int x, int, int) { return 100.0 * x; });
        ASSERT_EQ(Resize(src, src.Whole(), dst, dst.Whole(), 2.0, 1.0, 0.0, 0.0, IPPI_INTER_LINEAR, m.areas),
                  ippStsNoErr);
        const double corners[] = {0, 100.0 / 3, 200.0 / 3, 100}, areas[] = {0, 25, 75, 100};
        for (int x = 0; x < 4; ++x) {
            const double exact = m.areas ? areas[x] : corners[x];
            EXPECT_NEAR(dst.Get(x, 1, m.channels - 1), m.bytes ? std::round(exact) : exact, m.bytes ? 0 : 1e-4) << x;
        }
    }
}

// Nearest and linear have fixed figures; whatever the interpolation, four times the linear
// figure is enough work space, which the resize processor relies on.
TEST(ResizeGetBufSize, GivesFiguresWithinFourTimesLinearAndRefusesInOrder)
{
    struct Case {
        IppiSize dst;
        int channels, interpolation, bytes;
    };
    const Case cases[] = {
        {{100, 50}, 4, IPPI_INTER_NN, 64 * (7 + 4) + 16},
        {{100, 50}, 4, IPPI_INTER_LINEAR, 704 + 4 * (128 + 64) + 16 * 320 + 16},
        {{64, 17}, 3, IPPI_INTER_LINEAR, 64 * (4 + 2) + 4 * (64 + 64) + 12 * 192 + 16},
    };
    for (const Case& c : cases) {
        int size = 0;
        EXPECT_EQ(ippiResizeGetBufSize({3, 4, 5, 6}, {7, 8, c.dst.width, c.dst.height}, c.channels, c.interpolation,
                                       &size),
                  ippStsNoErr);
        EXPECT_EQ(size, c.bytes) << c.dst.width << "x" << c.dst.height;
    }
    for (int channels : {1, 3, 4})
        for (int width = 1; width < 300; width += 7)
            for (int height = 1; height < 300; height += 11) {
                const IppiRect rect = {0, 0, width, height};
                int sizes[3] = {};
                for (int mode = 0; mode < 3; ++mode)
                    ASSERT_EQ(ippiResizeGetBufSize(rect, rect, channels, kModes[mode + 1], &sizes[mode]), ippStsNoErr);
                ASSERT_LE(std::max(sizes[1], sizes[2]), 4 * sizes[0]) << width << "x" << height;
            }

    struct Refused {
        bool nullSize;
        IppiRect srcRoi, dstRoi;
        int channels, interpolation;
        IppStatus status;
    };
    const Refused refused[] = {
        {true, {-1, 0, 1, 1}, {0, 0, 1, 1}, 2, 3, ippStsNullPtrErr},
        {false, {-1, 0, 1, 1}, {0, 0, 1, 1}, 2, 3, ippStsSizeErr},
        {false, {0, 0, 1, 1}, {0, 0, 0, 1}, 2, 3, ippStsSizeErr},
        {false, {0, 0, 1, 1}, {0, 0, 1, 1}, 2, 3, ippStsNumChannelsErr},
        {false, {0, 0, 1, 1}, {0, 0, 1, 1}, 3, 3, ippStsInterpolationErr},
        {false, {0, 0, 1, 1}, {0, 0, 1 << 30, 1 << 30}, 4, 2, ippStsSizeErr},
    };
    for (const Refused& c : refused) {
        int size = -5;
        EXPECT_EQ(ippiResizeGetBufSize(c.srcRoi, c.dstRoi, c.channels, c.interpolation, c.nullSize ? nullptr : &size),
                  c.status);
        EXPECT_EQ(size, -5);
    }
}

TEST(ResizeTables, LanczosTableHoldsTheKernelAtHundredths)
{
    for (int j = 0; j <= 303; ++j)
        EXPECT_NEAR(_tblLanczos3[j], j < 300 && j % 100 != 0 ? ResizeReference::Lanczos3(j / 100.0) : j == 0, 1e-7)
            << j;
}

} // namespace
