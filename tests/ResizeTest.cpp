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
        const char* what;
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
    const IppiRect whole = {0, 0, 8, 8};
    const Case cases[] = {
        {"null source before sizes", false, kSrc, {0, 0}, whole, whole, 1, 1, 0, 2, ippStsNullPtrErr},
        {"null destination", false, kDst, size, whole, whole, 1, 1, 0, 2, ippStsNullPtrErr},
        {"empty source", false, kNone, {8, 0}, whole, whole, 1, 1, 0, 2, ippStsSizeErr},
        {"negative region x", false, kNone, size, {-1, 0, 8, 8}, whole, 1, 1, 0, 2, ippStsSizeErr},
        {"empty region", false, kNone, size, {0, 0, 8, 0}, whole, 1, 1, 0, 2, ippStsSizeErr},
        {"region at the width, before the destination", false, kNone, size, {8, 0, 1, 1}, {0, 0, 0, 0}, 1, 1, 0, 2,
         ippStsWrongIntersectROI},
        {"region below the height", false, kNone, size, {0, 9, 1, 1}, whole, 1, 1, 0, 2, ippStsWrongIntersectROI},
        {"empty destination before the factor", false, kNone, size, whole, {0, 0, 8, 0}, 0, 1, 0, 2, ippStsSizeErr},
        {"x factor 0 before the interpolation", false, kNone, size, whole, whole, 0, 1, 0, 3, ippStsResizeFactorErr},
        {"negative y factor", false, kNone, size, whole, whole, 1, -1, 0, 2, ippStsResizeFactorErr},
        {"factor not a number", false, kNone, size, whole, whole, nan, 1, 0, 2, ippStsResizeFactorErr},
        {"interpolation 3", false, kNone, size, whole, whole, 1, 1, 0, 3, ippStsInterpolationErr},
        {"area decimation is not built", false, kNone, size, whole, whole, 1, 1, 0, 8, ippStsInterpolationErr},
        {"below half a pixel", false, kNone, size, whole, whole, 0.06, 1, 0, 2, ippStsResizeNoOperationErr},
        {"region cut to the picture is below half a pixel", false, kNone, size, {7, 0, 50, 8}, whole, 0.45, 1, 0, 2,
         ippStsResizeNoOperationErr},
        {"tables too large to allocate", false, kNone, size, whole, {0, 0, INT32_MAX, 8}, 1e9, 1, 0, 2,
         ippStsMemAllocErr},
        {"half a pixel gives one", false, kNone, size, whole, whole, 0.0625, 1, 0, 2, ippStsNoErr},

        {"null work space", true, kWork, size, whole, whole, 1, 1, 0, 2, ippStsNullPtrErr},
        {"null source before sizes", true, kSrc, {0, 8}, whole, whole, 1, 1, 0, 2, ippStsNullPtrErr},
        {"null destination", true, kDst, size, whole, whole, 1, 1, 0, 2, ippStsNullPtrErr},
        {"empty source", true, kNone, {0, 8}, whole, whole, 1, 1, 0, 2, ippStsSizeErr},
        {"negative destination y", true, kNone, size, whole, {0, -1, 8, 8}, 1, 1, 0, 2, ippStsSizeErr},
        {"empty destination before the factor", true, kNone, size, whole, {0, 0, 0, 8}, 0, 1, 0, 2, ippStsSizeErr},
        {"x factor 0", true, kNone, size, whole, whole, 0, 1, 0, 2, ippStsResizeFactorErr},
        {"interpolation 3 before the region", true, kNone, size, {8, 0, 8, 8}, whole, 1, 1, 0, 3,
         ippStsInterpolationErr},
        {"further cubic kernels are not built", true, kNone, size, whole, whole, 1, 1, 0, 6, ippStsInterpolationErr},
        {"region at the width", true, kNone, size, {8, 0, 1, 1}, whole, 1, 1, 0, 2, ippStsWrongIntersectROI},
        {"shifted wholly right of the destination", true, kNone, size, whole, whole, 1, 1, 8.5, 2, ippStsNoOperation},
        {"shifted wholly left", true, kNone, size, whole, whole, 0.5, 1, -4.6, 4, ippStsNoOperation},
        {"shift not a number", true, kNone, size, whole, whole, 1, 1, nan, 2, ippStsNoOperation},
        {"a sliver of the picture is written", true, kNone, size, whole, whole, 1, 1, 7.4, 2, ippStsNoErr},
    };
    std::mt19937 rng(1);
    std::vector<uint8_t> work(100000);
    for (const Member& m : kMembers)
        for (const Case& c : cases) {
            if (c.areas != m.areas)
                continue;
            SCOPED_TRACE(testing::Message() << m << ": " << c.what);
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

// Factor 1 without shift copies in every mode; a whole shift of a pixel-area member moves the
// picture, and what it doesn't reach stays.
TEST(Resize, FactorOneCopiesAndWholeShiftsMove)
{
    std::mt19937 rng(3);
    for (const Member& m : kMembers)
        for (int mode : kModes) {
            SCOPED_TRACE(testing::Message() << m << " mode " << mode);
            TestPicture src({11, 9}, m.channels, m.bytes), dst({11, 9}, m.channels, m.bytes);
            src.FillRandom(rng);
            ASSERT_EQ(Resize(src, src.Whole(), dst, dst.Whole(), 1.0, 1.0, 0.0, 0.0, mode, m.areas), ippStsNoErr);
            EXPECT_EQ(dst.Bytes(), src.Bytes());
            if (!m.areas)
                continue;
            TestPicture moved({11, 9}, m.channels, m.bytes);
            const TestPicture blank({11, 9}, m.channels, m.bytes);
            ASSERT_EQ(Resize(src, src.Whole(), moved, moved.Whole(), 1.0, 1.0, 2.0, -1.0, mode, true), ippStsNoErr);
            for (int y = 0; y < 9; ++y)
                for (int x = 0; x < 11; ++x)
                    for (int c = 0; c < m.channels; ++c)
                        ASSERT_EQ(moved.Get(x, y, c), x >= 2 && y < 8 ? src.Get(x - 2, y + 1, c) : blank.Get(x, y, c))
                            << x << "," << y;
        }
}

TEST(Resize, ConstantPictureStaysConstant)
{
    const double maps[][4] = {{2.5, 0.4, 0, 0}, {0.3, 3.0, 0, 0}, {1.7, 1.7, 0, 0}, {0.55, 0.55, 0, 0},
                              {3.3, 0.45, 0.3, -0.2}};
    for (const Member& m : kMembers)
        for (int mode : kModes)
            for (const auto& map : maps) {
                SCOPED_TRACE(testing::Message() << m << " mode " << mode << " factors " << map[0] << " " << map[1]);
                const double levels[] = {m.bytes ? 200.0 : 0.8, m.bytes ? 17.0 : 0.1, m.bytes ? 255.0 : 1.0, 0.0};
                TestPicture src({13, 10}, m.channels, m.bytes), dst({40, 40}, m.channels, m.bytes);
                src.Fill([&](int, int, int c) { return levels[c]; });
                ASSERT_EQ(Resize(src, src.Whole(), dst, dst.Whole(), map[0], map[1], map[2], map[3], mode, m.areas),
                          ippStsNoErr);
                const ResizeReference::Expected block =
                    Reference(src, src.Whole(), dst.Whole(), map[0], map[1], map[2], map[3], mode, m.areas);
                ASSERT_GT(block.columns * block.rows, 3);
                for (int y = 0; y < block.rows; ++y)
                    for (int x = 0; x < block.columns; ++x)
                        for (int c = 0; c < m.channels; ++c)
                            ASSERT_NEAR(dst.Get(x + block.firstColumn, y + block.firstRow, c), levels[c],
                                        m.bytes ? 0 : 1e-6)
                                << x << "," << y;
            }
}

// Doubling 0, 100 in linear mode: corner-to-corner gives steps of a third with the ends on the
// samples; pixel-area maps the outputs to -0.25, 0.25, 0.75 and 1.25, so its ends replicate the
// edge samples.
TEST(Resize, LinearDoublingOfTwoSamples)
{
    for (const Member& m : kMembers) {
        SCOPED_TRACE(testing::Message() << m);
        TestPicture src({2, 2}, m.channels, m.bytes), dst({4, 2}, m.channels, m.bytes);
        src.Fill([](int x, int, int) { return 100.0 * x; });
        ASSERT_EQ(Resize(src, src.Whole(), dst, dst.Whole(), 2.0, 1.0, 0.0, 0.0, IPPI_INTER_LINEAR, m.areas),
                  ippStsNoErr);
        const double corners[] = {0, 100.0 / 3, 200.0 / 3, 100}, areas[] = {0, 25, 75, 100};
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 4; ++x) {
                const double exact = m.areas ? areas[x] : corners[x];
                EXPECT_NEAR(dst.Get(x, y, m.channels - 1), m.bytes ? std::round(exact) : exact, m.bytes ? 0 : 1e-4)
                    << x;
            }
    }
}

// Corner-to-corner Lanczos needs 8 samples each way, pixel-area Lanczos 6, cubic 4, and
// corner-to-corner everything but nearest neighbour 2; a smaller picture takes the narrower kernel.
TEST(Resize, SmallPicturesFallBackToNarrowerKernels)
{
    struct Case {
        bool areas;
        IppiSize size;
        int asked, used;
    };
    const int nn = IPPI_INTER_NN, linear = IPPI_INTER_LINEAR, cubic = IPPI_INTER_CUBIC, lanczos = IPPI_INTER_LANCZOS;
    const Case cases[] = {
        {false, {7, 100}, lanczos, cubic}, {false, {100, 3}, lanczos, linear}, {false, {3, 100}, cubic, linear},
        {false, {1, 100}, linear, nn},     {false, {100, 1}, lanczos, nn},     {false, {8, 8}, lanczos, lanczos},
        {true, {5, 30}, lanczos, cubic},   {true, {30, 3}, lanczos, linear},   {true, {3, 30}, cubic, linear},
        {true, {6, 6}, lanczos, lanczos},
    };
    std::mt19937 rng(11);
    for (const Member& m : kMembers)
        for (const Case& c : cases) {
            if (c.areas != m.areas)
                continue;
            SCOPED_TRACE(testing::Message() << m << " " << c.size.width << "x" << c.size.height << " " << c.asked);
            TestPicture src(c.size, m.channels, m.bytes);
            src.FillRandom(rng);
            const int modes[] = {c.asked, c.used, c.used == nn ? linear : nn};
            std::vector<uint8_t> results[3];
            for (int run = 0; run < 3; ++run) {
                TestPicture dst({90, 90}, m.channels, m.bytes);
                ASSERT_EQ(Resize(src, src.Whole(), dst, dst.Whole(), 2.3, 2.1, 0.4, 0.1, modes[run], m.areas),
                          ippStsNoErr);
                results[run] = dst.Bytes();
            }
            EXPECT_EQ(results[0], results[1]);
            EXPECT_TRUE(c.used == nn || results[0] != results[2]) << "the fall-back differs from the next";
        }
}

// The last output column of a corner-to-corner linear resize has its weight wholly on the
// region's last sample, whether the region ends at the picture's edge or inside it.
TEST(Resize, LastLinearColumnReadsExactlyLastSample)
{
    std::mt19937 rng(5);
    const std::pair<int, double> regions[] = {{10, 1.7}, {7, 2.0}};   // scaled widths are whole
    for (bool bytes : {true, false})
        for (const auto& region : regions) {
            TestPicture src({10, 4}, 4, bytes), dst({40, 4}, 4, bytes);
            src.FillRandom(rng);
            ASSERT_EQ(Resize(src, {0, 0, region.first, 4}, dst, dst.Whole(), region.second, 1.0, 0, 0,
                             IPPI_INTER_LINEAR, false),
                      ippStsNoErr);
            const int last = static_cast<int>(region.first * region.second + 1e-7) - 1;
            for (int y = 0; y < 4; ++y)
                for (int c = 0; c < 4; ++c)
                    EXPECT_EQ(dst.Get(last, y, c), src.Get(region.first - 1, y, c)) << region.first;
        }
}

// A hard edge rings with cubic and Lanczos: bytes are limited, floats keep the overshoot.
TEST(Resize, OvershootIsLimitedInBytesOnly)
{
    for (int mode : {IPPI_INTER_CUBIC, IPPI_INTER_LANCZOS}) {
        TestPicture bytes({12, 12}, 4, true), floats({12, 12}, 4, false);
        bytes.Fill([](int x, int, int) { return x < 6 ? 0 : 255; });
        floats.Fill([](int x, int, int) { return x < 6 ? 0 : 1; });
        TestPicture bytesOut({43, 12}, 4, true), floatsOut({43, 12}, 4, false);
        ASSERT_EQ(Resize(bytes, bytes.Whole(), bytesOut, bytesOut.Whole(), 3.6, 1.0, 0, 0, mode, false), ippStsNoErr);
        ASSERT_EQ(Resize(floats, floats.Whole(), floatsOut, floatsOut.Whole(), 3.6, 1.0, 0, 0, mode, false),
                  ippStsNoErr);
        int below = 0, above = 0;
        for (int x = 0; x < 43; ++x) {
            const double value = floatsOut.Get(x, 5, 1);
            if (value < -0.01) {
                ++below;
                EXPECT_EQ(bytesOut.Get(x, 5, 1), 0) << x;
            }
            if (value > 1.01) {
                ++above;
                EXPECT_EQ(bytesOut.Get(x, 5, 1), 255) << x;
            }
        }
        EXPECT_GT(below, 0) << mode;
        EXPECT_GT(above, 0) << mode;
    }
}

// A one-sample-wide region stretches to a column of its samples; a one-pixel-wide output takes the
// region's first column (its centre in nearest neighbour).
TEST(Resize, OnePixelWideSourcesAndDestinations)
{
    std::mt19937 rng(13);
    for (bool bytes : {true, false})
        for (int mode : kModes) {
            SCOPED_TRACE(mode);
            TestPicture src({9, 9}, 4, bytes), wide({20, 9}, 4, bytes), narrow({1, 9}, 4, bytes);
            src.FillRandom(rng);
            ASSERT_EQ(Resize(src, {8, 0, 1, 9}, wide, wide.Whole(), 20.0, 1.0, 0, 0, mode, false), ippStsNoErr);
            ASSERT_EQ(Resize(src, {3, 0, 6, 9}, narrow, narrow.Whole(), 1.0 / 6, 1.0, 0, 0, mode, false), ippStsNoErr);
            for (int y = 0; y < 9; ++y)
                for (int c = 0; c < 4; ++c) {
                    for (int x = 0; x < 20; ++x)
                        ASSERT_EQ(wide.Get(x, y, c), src.Get(8, y, c)) << x;
                    ASSERT_EQ(narrow.Get(0, y, c), src.Get(mode == IPPI_INTER_NN ? 6 : 3, y, c));
                }
        }
}

TEST(ResizeGetBufSize, GivesFiguresForNearestAndLinearAndRefusesInOrder)
{
    struct Case {
        IppiSize dst;
        int channels, interpolation, bytes;
    };
    const Case cases[] = {
        {{100, 50}, 4, IPPI_INTER_NN, 64 * (7 + 4) + 16},
        {{100, 50}, 4, IPPI_INTER_LINEAR, 704 + 4 * (128 + 64) + 16 * 320 + 16},
        {{1, 1}, 1, IPPI_INTER_LINEAR, 128 + 4 * (64 + 64) + 4 * 128 + 16},
        {{64, 17}, 3, IPPI_INTER_LINEAR, 64 * (4 + 2) + 4 * (64 + 64) + 12 * 192 + 16},
    };
    for (const Case& c : cases) {
        int size = 0;
        EXPECT_EQ(ippiResizeGetBufSize({3, 4, 5, 6}, {7, 8, c.dst.width, c.dst.height}, c.channels, c.interpolation,
                                       &size),
                  ippStsNoErr);
        EXPECT_EQ(size, c.bytes) << c.dst.width << "x" << c.dst.height;
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
        {false, {0, 0, 1, 1}, {0, 0, 1, 1}, 4, 8, ippStsInterpolationErr},
        {false, {0, 0, 1, 1}, {0, 0, 1 << 30, 1 << 30}, 4, 2, ippStsSizeErr},
    };
    for (const Refused& c : refused) {
        int size = -5;
        EXPECT_EQ(ippiResizeGetBufSize(c.srcRoi, c.dstRoi, c.channels, c.interpolation, c.nullSize ? nullptr : &size),
                  c.status);
        EXPECT_EQ(size, -5);
    }
}

// Whatever the interpolation, four times the linear figure is enough work space.
TEST(ResizeGetBufSize, CubicAndLanczosStayWithinFourTimesLinear)
{
    for (int channels : {1, 3, 4})
        for (int width = 1; width < 300; width += 7)
            for (int height = 1; height < 300; height += 11) {
                const IppiRect rect = {0, 0, width, height};
                int sizes[3] = {};
                for (int mode = 0; mode < 3; ++mode)
                    ASSERT_EQ(ippiResizeGetBufSize(rect, rect, channels, kModes[mode + 1], &sizes[mode]), ippStsNoErr);
                ASSERT_LE(std::max(sizes[1], sizes[2]), 4 * sizes[0]) << width << "x" << height;
            }
}

TEST(ResizeTables, LanczosTableHoldsTheKernelAtHundredths)
{
    EXPECT_EQ(_tblLanczos3[0], 1.0f);
    for (int j = 1; j <= 300; ++j)
        EXPECT_NEAR(_tblLanczos3[j], ResizeReference::Lanczos3(j / 100.0), 1e-7) << j;
    for (int j : {100, 200, 300, 301, 302, 303})
        EXPECT_EQ(_tblLanczos3[j], 0.0f) << j;
}

} // namespace
