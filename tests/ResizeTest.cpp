// The corner-to-corner resize members, ippiResize_8u_C4R and ippiResize_32f_C4R.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "../primitives/ippResize.h"
#include "ResizeReference.h"
#include "ResizeTestPicture.h"

namespace {

const int kModes[] = {IPPI_INTER_NN, IPPI_INTER_LINEAR, IPPI_INTER_CUBIC, IPPI_INTER_LANCZOS};

IppiRect Whole(const TestPicture& picture)
{
    return {0, 0, picture.size.width, picture.size.height};
}

TEST(Resize, RefusesBadArgumentsInOrderWithoutWriting)
{
    struct Case {
        const char* what;
        bool nullSrc, nullDst;
        IppiSize srcSize;
        IppiRect roi;
        IppiSize dstRoiSize;
        double xFactor, yFactor;
        int interpolation;
        IppStatus status;
    };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const Case cases[] = {
        {"null source before sizes", true, false, {0, 0}, {0, 0, 8, 8}, {8, 8}, 1, 1, 2, ippStsNullPtrErr},
        {"null destination", false, true, {8, 8}, {0, 0, 8, 8}, {8, 8}, 1, 1, 2, ippStsNullPtrErr},
        {"empty source", false, false, {8, 0}, {0, 0, 8, 8}, {8, 8}, 1, 1, 2, ippStsSizeErr},
        {"negative region x", false, false, {8, 8}, {-1, 0, 8, 8}, {8, 8}, 1, 1, 2, ippStsSizeErr},
        {"empty region", false, false, {8, 8}, {0, 0, 8, 0}, {8, 8}, 1, 1, 2, ippStsSizeErr},
        {"region at the width, before the destination", false, false, {8, 8}, {8, 0, 1, 1}, {0, 0}, 1, 1, 2,
         ippStsWrongIntersectROI},
        {"region below the height", false, false, {8, 8}, {0, 9, 1, 1}, {8, 8}, 1, 1, 2, ippStsWrongIntersectROI},
        {"empty destination before the factor", false, false, {8, 8}, {0, 0, 8, 8}, {8, 0}, 0, 1, 2, ippStsSizeErr},
        {"x factor 0 before the interpolation", false, false, {8, 8}, {0, 0, 8, 8}, {8, 8}, 0, 1, 3,
         ippStsResizeFactorErr},
        {"negative y factor", false, false, {8, 8}, {0, 0, 8, 8}, {8, 8}, 1, -1, 2, ippStsResizeFactorErr},
        {"factor not a number", false, false, {8, 8}, {0, 0, 8, 8}, {8, 8}, nan, 1, 2, ippStsResizeFactorErr},
        {"interpolation 3", false, false, {8, 8}, {0, 0, 8, 8}, {8, 8}, 1, 1, 3, ippStsInterpolationErr},
        {"area decimation is not built", false, false, {8, 8}, {0, 0, 8, 8}, {8, 8}, 1, 1, 8, ippStsInterpolationErr},
        {"below half a pixel", false, false, {8, 8}, {0, 0, 8, 8}, {8, 8}, 0.06, 1, 2, ippStsResizeNoOperationErr},
        {"region cut to the picture is below half a pixel", false, false, {8, 8}, {7, 0, 50, 8}, {8, 8}, 0.45, 1, 2,
         ippStsResizeNoOperationErr},
        {"tables too large to allocate", false, false, {8, 8}, {0, 0, 8, 8}, {INT32_MAX, 8}, 1e9, 1, 2,
         ippStsMemAllocErr},
        {"half a pixel gives one", false, false, {8, 8}, {0, 0, 8, 8}, {8, 8}, 0.0625, 1, 2, ippStsNoErr},
    };
    std::mt19937 rng(1);
    for (bool bytes : {true, false})
        for (const Case& c : cases) {
            TestPicture src({8, 8}, 4, bytes), dst({8, 8}, 4, bytes);
            src.FillRandom(rng);
            const std::vector<uint8_t> before = dst.Bytes();
            const IppStatus status =
                ResizeCornersAt(bytes, c.nullSrc ? nullptr : src.Origin(), c.srcSize, src.step, c.roi,
                                c.nullDst ? nullptr : dst.Origin(), dst.step, c.dstRoiSize, c.xFactor, c.yFactor,
                                c.interpolation);
            EXPECT_EQ(status, c.status) << c.what;
            if (status != ippStsNoErr)
                EXPECT_EQ(dst.Bytes(), before) << c.what;
            else
                EXPECT_NE(dst.Bytes(), before) << c.what;
        }
}

// Random pictures, regions anywhere in them (also at their edges) and factors up and down, in
// both directions separately: the tables and rolling row stores must give what the formulas give.
TEST(Resize, MatchesDirectEvaluationOnRandomPictures)
{
    std::mt19937 rng(7);
    const double factors[] = {1.0, 2.0, 0.5, 1.0 / 3, 0.7, 1.37, 3.1, 4.0, 0.26, 1.9999999};
    auto pick = [&rng](int low, int high) { return std::uniform_int_distribution<int>(low, high)(rng); };
    int written = 0;
    const int rounds = 600;
    for (int round = 0; round < rounds; ++round) {
        const bool bytes = round % 2 == 0;
        const int mode = kModes[pick(0, 3)];
        TestPicture src({pick(1, 20), pick(1, 20)}, 4, bytes);
        src.FillRandom(rng);
        const IppiRect roi = {pick(0, src.size.width - 1), pick(0, src.size.height - 1), pick(1, 22), pick(1, 22)};
        const double xFactor = factors[pick(0, 9)], yFactor = factors[pick(0, 9)];
        const IppiSize dstRoiSize = {pick(1, 60), pick(1, 60)};
        TestPicture dst({60, 60}, 4, bytes);
        const std::vector<uint8_t> before = dst.Bytes();
        const ResizeReference::Expected expected =
            ResizeReference::Corners(src.AsSource(), roi, dstRoiSize, xFactor, yFactor, mode);
        const IppStatus status = ResizeCorners(src, roi, dst, dstRoiSize, xFactor, yFactor, mode);
        if (expected.columns == 0) {
            EXPECT_EQ(status, ippStsResizeNoOperationErr);
            continue;
        }
        ASSERT_EQ(status, ippStsNoErr);
        ++written;
        ASSERT_TRUE(ResizeReference::Matches(expected, dst.Origin(), dst.step, dst.size, before))
            << "round " << round << " mode " << mode << (bytes ? " bytes " : " floats ") << src.size.width << "x"
            << src.size.height << " region " << roi.x << "," << roi.y << " " << roi.width << "x" << roi.height
            << " factors " << xFactor << " " << yFactor;
    }
    EXPECT_GT(written, rounds * 3 / 4) << "most rounds must write something to test anything";
}

TEST(Resize, FactorOneCopiesWholePictureInEveryMode)
{
    std::mt19937 rng(3);
    for (bool bytes : {true, false})
        for (int mode : kModes) {
            TestPicture src({11, 9}, 4, bytes), dst({11, 9}, 4, bytes);
            src.FillRandom(rng);
            ASSERT_EQ(ResizeCorners(src, Whole(src), dst, dst.size, 1.0, 1.0, mode), ippStsNoErr);
            for (int y = 0; y < 9; ++y)
                for (int x = 0; x < 11; ++x)
                    for (int c = 0; c < 4; ++c)
                        ASSERT_EQ(dst.Get(x, y, c), src.Get(x, y, c)) << mode << " " << x << "," << y;
        }
}

TEST(Resize, ConstantPictureStaysConstant)
{
    const double factors[][2] = {{2.5, 0.4}, {0.3, 3.0}, {1.7, 1.7}, {0.55, 0.55}};
    for (bool bytes : {true, false})
        for (int mode : kModes)
            for (const auto& factor : factors) {
                TestPicture src({13, 10}, 4, bytes), dst({40, 40}, 4, bytes);
                const double levels[] = {bytes ? 200.0 : 0.8, bytes ? 17.0 : 0.1, bytes ? 255.0 : 1.0, 0.0};
                for (int y = 0; y < 10; ++y)
                    for (int x = 0; x < 13; ++x)
                        for (int c = 0; c < 4; ++c)
                            src.Set(x, y, c, levels[c]);
                ASSERT_EQ(ResizeCorners(src, Whole(src), dst, {40, 40}, factor[0], factor[1], mode), ippStsNoErr);
                const int columns = static_cast<int>(13 * factor[0] + 1e-7);
                const int rows = static_cast<int>(10 * factor[1] + 1e-7);
                for (int y = 0; y < rows; ++y)
                    for (int x = 0; x < columns; ++x)
                        for (int c = 0; c < 4; ++c)
                            ASSERT_NEAR(dst.Get(x, y, c), levels[c], bytes ? 0 : 1e-6) << mode << " " << x << "," << y;
            }
}

// Doubling 0, 100 gives steps of a third, with the ends on the samples.
TEST(Resize, LinearDoublingOfTwoSamplesGivesThirds)
{
    TestPicture src({2, 2}, 4, true), dst({4, 2}, 4, true);
    for (int y = 0; y < 2; ++y)
        for (int c = 0; c < 4; ++c) {
            src.Set(0, y, c, 0);
            src.Set(1, y, c, 100);
        }
    ASSERT_EQ(ResizeCorners(src, Whole(src), dst, {4, 2}, 2.0, 1.0, IPPI_INTER_LINEAR), ippStsNoErr);
    const double expected[] = {0, 33, 67, 100};
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 4; ++x)
            EXPECT_EQ(dst.Get(x, y, 2), expected[x]) << x;
}

// The last output column's weight lies wholly on the last sample of the region, whether the
// region ends at the picture's edge or inside it.
TEST(Resize, LastLinearColumnReadsExactlyLastSample)
{
    std::mt19937 rng(5);
    struct Case {
        int regionWidth;
        double factor;   // the region's scaled width is whole, so the last output falls on a sample
    };
    for (bool bytes : {true, false})
        for (const Case& r : {Case{10, 1.7}, Case{7, 2.0}}) {
            const int regionWidth = r.regionWidth;
            TestPicture src({10, 4}, 4, bytes), dst({40, 4}, 4, bytes);
            src.FillRandom(rng);
            ASSERT_EQ(ResizeCorners(src, {0, 0, regionWidth, 4}, dst, {40, 4}, r.factor, 1.0, IPPI_INTER_LINEAR),
                      ippStsNoErr);
            const int last = static_cast<int>(regionWidth * r.factor + 1e-7) - 1;
            for (int y = 0; y < 4; ++y)
                for (int c = 0; c < 4; ++c)
                    EXPECT_EQ(dst.Get(last, y, c), src.Get(regionWidth - 1, y, c)) << regionWidth;
        }
}

// Lanczos needs 8 samples each way, cubic 4, everything but nearest neighbour 2.
TEST(Resize, SmallPicturesFallBackToNarrowerKernels)
{
    struct Case {
        IppiSize size;
        int asked, used;
    };
    const Case cases[] = {
        {{7, 100}, IPPI_INTER_LANCZOS, IPPI_INTER_CUBIC}, {{100, 3}, IPPI_INTER_LANCZOS, IPPI_INTER_LINEAR},
        {{3, 100}, IPPI_INTER_CUBIC, IPPI_INTER_LINEAR},  {{1, 100}, IPPI_INTER_LINEAR, IPPI_INTER_NN},
        {{100, 1}, IPPI_INTER_LANCZOS, IPPI_INTER_NN},    {{8, 8}, IPPI_INTER_LANCZOS, IPPI_INTER_LANCZOS},
    };
    std::mt19937 rng(11);
    for (bool bytes : {true, false})
        for (const Case& c : cases) {
            TestPicture src(c.size, 4, bytes), asked({250, 250}, 4, bytes), used({250, 250}, 4, bytes),
                other({250, 250}, 4, bytes);
            src.FillRandom(rng);
            const IppiSize dstSize = {250, 250};
            ASSERT_EQ(ResizeCorners(src, Whole(src), asked, dstSize, 2.3, 1.3, c.asked), ippStsNoErr);
            ASSERT_EQ(ResizeCorners(src, Whole(src), used, dstSize, 2.3, 1.3, c.used), ippStsNoErr);
            EXPECT_EQ(asked.Bytes(), used.Bytes()) << c.size.width << "x" << c.size.height << " " << c.asked;
            const int narrower = c.used == IPPI_INTER_NN ? IPPI_INTER_LINEAR : IPPI_INTER_NN;
            if (c.used != IPPI_INTER_NN) {
                ASSERT_EQ(ResizeCorners(src, Whole(src), other, dstSize, 2.3, 1.3, narrower), ippStsNoErr);
                EXPECT_NE(asked.Bytes(), other.Bytes()) << "the fall-back differs from the next kernel";
            }
        }
}

// A hard edge rings with cubic and Lanczos: bytes are limited, floats keep the overshoot.
TEST(Resize, OvershootIsLimitedInBytesOnly)
{
    for (int mode : {IPPI_INTER_CUBIC, IPPI_INTER_LANCZOS}) {
        TestPicture bytes({12, 12}, 4, true), floats({12, 12}, 4, false);
        for (int y = 0; y < 12; ++y)
            for (int x = 0; x < 12; ++x)
                for (int c = 0; c < 4; ++c) {
                    bytes.Set(x, y, c, x < 6 ? 0 : 255);
                    floats.Set(x, y, c, x < 6 ? 0 : 1);
                }
        TestPicture bytesOut({43, 12}, 4, true), floatsOut({43, 12}, 4, false);
        ASSERT_EQ(ResizeCorners(bytes, Whole(bytes), bytesOut, {43, 12}, 3.6, 1.0, mode), ippStsNoErr);
        ASSERT_EQ(ResizeCorners(floats, Whole(floats), floatsOut, {43, 12}, 3.6, 1.0, mode), ippStsNoErr);
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
// region's first column.
TEST(Resize, OnePixelWideSourcesAndDestinations)
{
    std::mt19937 rng(13);
    for (bool bytes : {true, false})
        for (int mode : kModes) {
            TestPicture src({9, 9}, 4, bytes), wide({20, 9}, 4, bytes), narrow({1, 9}, 4, bytes);
            src.FillRandom(rng);
            ASSERT_EQ(ResizeCorners(src, {8, 0, 1, 9}, wide, {20, 9}, 20.0, 1.0, mode), ippStsNoErr);
            ASSERT_EQ(ResizeCorners(src, {3, 0, 6, 9}, narrow, {1, 9}, 1.0 / 6, 1.0, mode), ippStsNoErr);
            for (int y = 0; y < 9; ++y)
                for (int c = 0; c < 4; ++c) {
                    for (int x = 0; x < 20; ++x)
                        ASSERT_EQ(wide.Get(x, y, c), src.Get(8, y, c)) << mode << " " << x;
                    if (mode != IPPI_INTER_NN)
                        ASSERT_EQ(narrow.Get(0, y, c), src.Get(3, y, c)) << mode;
                    else
                        ASSERT_EQ(narrow.Get(0, y, c), src.Get(6, y, c)) << "the centre of six samples";
                }
        }
}

} // namespace
