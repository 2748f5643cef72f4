// The pixel-area resize members, ippiResizeSqrPixel_*, and the size of their work space.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "../primitives/ippResize.h"
#include "ResizeReference.h"
#include "ResizeTestPicture.h"

namespace {

const int kModes[] = {IPPI_INTER_NN, IPPI_INTER_LINEAR, IPPI_INTER_CUBIC, IPPI_INTER_LANCZOS};

struct Form {
    bool bytes;
    int channels;
};
const Form kForms[] = {{true, 1}, {true, 4}, {false, 1}, {false, 4}};

IppiRect Whole(const TestPicture& picture)
{
    return {0, 0, picture.size.width, picture.size.height};
}

TEST(ResizeSqrPixel, RefusesBadArgumentsInOrderWithoutWriting)
{
    struct Case {
        const char* what;
        bool nullSrc, nullDst, nullBuffer;
        IppiSize srcSize;
        IppiRect roi, dstRoi;
        double xFactor, xShift;
        int interpolation;
        IppStatus status;
    };
    const Case cases[] = {
        {"null work space", false, false, true, {8, 8}, {0, 0, 8, 8}, {0, 0, 8, 8}, 1, 0, 2, ippStsNullPtrErr},
        {"null source before sizes", true, false, false, {0, 8}, {0, 0, 8, 8}, {0, 0, 8, 8}, 1, 0, 2,
         ippStsNullPtrErr},
        {"null destination", false, true, false, {8, 8}, {0, 0, 8, 8}, {0, 0, 8, 8}, 1, 0, 2, ippStsNullPtrErr},
        {"empty source", false, false, false, {0, 8}, {0, 0, 8, 8}, {0, 0, 8, 8}, 1, 0, 2, ippStsSizeErr},
        {"negative destination y", false, false, false, {8, 8}, {0, 0, 8, 8}, {0, -1, 8, 8}, 1, 0, 2,
         ippStsSizeErr},
        {"empty destination before the factor", false, false, false, {8, 8}, {0, 0, 8, 8}, {0, 0, 0, 8}, 0, 0, 2,
         ippStsSizeErr},
        {"x factor 0", false, false, false, {8, 8}, {0, 0, 8, 8}, {0, 0, 8, 8}, 0, 0, 2, ippStsResizeFactorErr},
        {"interpolation 3 before the region", false, false, false, {8, 8}, {8, 0, 8, 8}, {0, 0, 8, 8}, 1, 0, 3,
         ippStsInterpolationErr},
        {"further cubic kernels are not built", false, false, false, {8, 8}, {0, 0, 8, 8}, {0, 0, 8, 8}, 1, 0, 6,
         ippStsInterpolationErr},
        {"region at the width", false, false, false, {8, 8}, {8, 0, 1, 1}, {0, 0, 8, 8}, 1, 0, 2,
         ippStsWrongIntersectROI},
        {"shifted wholly right of the destination", false, false, false, {8, 8}, {0, 0, 8, 8}, {0, 0, 8, 8}, 1, 8.5,
         2, ippStsNoOperation},
        {"shifted wholly left", false, false, false, {8, 8}, {0, 0, 8, 8}, {0, 0, 8, 8}, 0.5, -4.6, 4,
         ippStsNoOperation},
        {"shift not a number", false, false, false, {8, 8}, {0, 0, 8, 8}, {0, 0, 8, 8}, 1, std::nan(""), 2,
         ippStsNoOperation},
        {"a sliver of the picture is written", false, false, false, {8, 8}, {0, 0, 8, 8}, {0, 0, 8, 8}, 1, 7.4, 2,
         ippStsNoErr},
    };
    std::mt19937 rng(2);
    for (const Form& form : kForms)
        for (const Case& c : cases) {
            TestPicture src({8, 8}, form.channels, form.bytes), dst({8, 8}, form.channels, form.bytes);
            src.FillRandom(rng);
            std::vector<uint8_t> buffer(100000);
            const std::vector<uint8_t> before = dst.Bytes();
            const IppStatus status = ResizeAreasAt(
                form.bytes, form.channels, c.nullSrc ? nullptr : src.Origin(), c.srcSize, src.step, c.roi,
                c.nullDst ? nullptr : dst.Origin(), dst.step, c.dstRoi, c.xFactor, 1.0, c.xShift, 0.0,
                c.interpolation, c.nullBuffer ? nullptr : buffer.data());
            EXPECT_EQ(status, c.status) << c.what;
            if (status != ippStsNoErr)
                EXPECT_EQ(dst.Bytes(), before) << c.what;
            else
                EXPECT_NE(dst.Bytes(), before) << c.what;
        }
}

// Random pictures, regions, destination regions, factors and shifts, including pictures of one
// sample and maps that run past every edge.
TEST(ResizeSqrPixel, MatchesDirectEvaluationOnRandomPictures)
{
    std::mt19937 rng(17);
    const double factors[] = {1.0, 2.0, 0.5, 1.0 / 3, 0.7, 1.37, 3.1, 4.0, 0.26, 2.5};
    const double shifts[] = {0.0, 0.5, -0.5, 0.25, 1.5, -2.75, 4.1, -1.25};
    auto pick = [&rng](int low, int high) { return std::uniform_int_distribution<int>(low, high)(rng); };
    int written = 0;
    const int rounds = 1200;
    for (int round = 0; round < rounds; ++round) {
        const Form form = kForms[round % 4];
        const int mode = kModes[pick(0, 3)];
        TestPicture src({pick(1, 20), pick(1, 20)}, form.channels, form.bytes);
        src.FillRandom(rng);
        const IppiRect roi = {pick(0, std::min(src.size.width - 1, 6)), pick(0, std::min(src.size.height - 1, 6)),
                              pick(1, 22), pick(1, 22)};
        const IppiRect dstRoi = {pick(0, 3), pick(0, 3), pick(1, 50), pick(1, 50)};
        const double xFactor = factors[pick(0, 9)], yFactor = factors[pick(0, 9)];
        const double xShift = shifts[pick(0, 7)], yShift = shifts[pick(0, 7)];
        TestPicture dst({60, 60}, form.channels, form.bytes);
        const std::vector<uint8_t> before = dst.Bytes();
        const ResizeReference::Expected expected =
            ResizeReference::Areas(src.AsSource(), roi, dstRoi, xFactor, yFactor, xShift, yShift, mode);
        const IppStatus status = ResizeAreas(src, roi, dst, dstRoi, xFactor, yFactor, xShift, yShift, mode);
        ASSERT_EQ(status, expected.columns == 0 ? ippStsNoOperation : ippStsNoErr) << "round " << round;
        written += expected.columns > 0;
        ASSERT_TRUE(ResizeReference::Matches(expected, dst.Origin(), dst.step, dst.size, before))
            << "round " << round << " mode " << mode << (form.bytes ? " bytes C" : " floats C") << form.channels
            << " " << src.size.width << "x" << src.size.height << " region " << roi.x << "," << roi.y << " "
            << roi.width << "x" << roi.height << " factors " << xFactor << " " << yFactor << " shifts " << xShift
            << " " << yShift;
    }
    EXPECT_GT(written, rounds / 2) << "most rounds must write something to test anything";
}

TEST(ResizeSqrPixel, FactorOneWithoutShiftCopiesInEveryMode)
{
    std::mt19937 rng(19);
    for (const Form& form : kForms)
        for (int mode : kModes) {
            TestPicture src({10, 7}, form.channels, form.bytes), dst({10, 7}, form.channels, form.bytes);
            src.FillRandom(rng);
            ASSERT_EQ(ResizeAreas(src, Whole(src), dst, Whole(dst), 1.0, 1.0, 0.0, 0.0, mode), ippStsNoErr);
            for (int y = 0; y < 7; ++y)
                for (int x = 0; x < 10; ++x)
                    for (int c = 0; c < form.channels; ++c)
                        ASSERT_EQ(dst.Get(x, y, c), src.Get(x, y, c)) << mode << " " << x << "," << y;
        }
}

// A whole shift moves the picture; columns and rows the shifted picture doesn't reach stay.
TEST(ResizeSqrPixel, WholeShiftMovesThePicture)
{
    std::mt19937 rng(23);
    for (const Form& form : kForms)
        for (int mode : kModes) {
            TestPicture src({9, 8}, form.channels, form.bytes), dst({9, 8}, form.channels, form.bytes);
            src.FillRandom(rng);
            const std::vector<uint8_t> before = dst.Bytes();
            ASSERT_EQ(ResizeAreas(src, Whole(src), dst, Whole(dst), 1.0, 1.0, 2.0, -1.0, mode), ippStsNoErr);
            for (int y = 0; y < 8; ++y)
                for (int x = 0; x < 9; ++x)
                    for (int c = 0; c < form.channels; ++c) {
                        if (x < 2 || y == 7)
                            ASSERT_EQ(dst.Origin()[dst.Offset(x, y, c)], before[dst.Offset(x, y, c)]) << x << "," << y;
                        else
                            ASSERT_EQ(dst.Get(x, y, c), src.Get(x - 2, y + 1, c)) << mode << " " << x << "," << y;
                    }
        }
}

TEST(ResizeSqrPixel, ConstantPictureStaysConstant)
{
    for (const Form& form : kForms)
        for (int mode : kModes) {
            TestPicture src({9, 11}, form.channels, form.bytes), dst({40, 40}, form.channels, form.bytes);
            const double level = form.bytes ? 201.0 : 0.7;
            for (int y = 0; y < 11; ++y)
                for (int x = 0; x < 9; ++x)
                    for (int c = 0; c < form.channels; ++c)
                        src.Set(x, y, c, level);
            ASSERT_EQ(ResizeAreas(src, Whole(src), dst, Whole(dst), 3.3, 0.45, 0.3, -0.2, mode), ippStsNoErr);
            for (int y = 0; y < 4; ++y)
                for (int x = 0; x < 30; ++x)
                    for (int c = 0; c < form.channels; ++c)
                        ASSERT_NEAR(dst.Get(x, y, c), level, form.bytes ? 0 : 1e-6) << mode << " " << x << "," << y;
        }
}

// Doubling maps the outputs to -0.25, 0.25, 0.75 and 1.25: the ends replicate the edge samples.
TEST(ResizeSqrPixel, LinearDoublingOfTwoSamplesReplicatesEdges)
{
    for (const Form& form : kForms) {
        TestPicture src({2, 1}, form.channels, form.bytes), dst({4, 2}, form.channels, form.bytes);
        for (int c = 0; c < form.channels; ++c) {
            src.Set(0, 0, c, 0);
            src.Set(1, 0, c, form.bytes ? 100 : 1.0);
        }
        ASSERT_EQ(ResizeAreas(src, Whole(src), dst, Whole(dst), 2.0, 2.0, 0.0, 0.0, IPPI_INTER_LINEAR), ippStsNoErr);
        const double expected[] = {0, 25, 75, 100};
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 4; ++x)
                EXPECT_EQ(dst.Get(x, y, form.channels - 1), form.bytes ? expected[x] : expected[x] / 100) << x;
    }
}

// Lanczos needs 6 samples each way, cubic 4; linear copes with one.
TEST(ResizeSqrPixel, SmallPicturesFallBackToNarrowerKernels)
{
    struct Case {
        IppiSize size;
        int asked, used;
    };
    const Case cases[] = {
        {{5, 30}, IPPI_INTER_LANCZOS, IPPI_INTER_CUBIC}, {{30, 3}, IPPI_INTER_LANCZOS, IPPI_INTER_LINEAR},
        {{3, 30}, IPPI_INTER_CUBIC, IPPI_INTER_LINEAR},
    };
    std::mt19937 rng(29);
    for (const Form& form : kForms)
        for (const Case& c : cases) {
            TestPicture src(c.size, form.channels, form.bytes), asked({70, 70}, form.channels, form.bytes),
                used({70, 70}, form.channels, form.bytes);
            src.FillRandom(rng);
            ASSERT_EQ(ResizeAreas(src, Whole(src), asked, Whole(asked), 2.3, 2.1, 0.4, 0.1, c.asked), ippStsNoErr);
            ASSERT_EQ(ResizeAreas(src, Whole(src), used, Whole(used), 2.3, 2.1, 0.4, 0.1, c.used), ippStsNoErr);
            EXPECT_EQ(asked.Bytes(), used.Bytes()) << c.size.width << "x" << c.size.height << " " << c.asked;
        }
}

TEST(ResizeGetBufSize, GivesFiguresForNearestAndLinear)
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
}

TEST(ResizeGetBufSize, RefusesBadArgumentsInOrder)
{
    struct Case {
        bool nullSize;
        IppiRect srcRoi, dstRoi;
        int channels, interpolation;
        IppStatus status;
    };
    const Case cases[] = {
        {true, {-1, 0, 1, 1}, {0, 0, 1, 1}, 2, 3, ippStsNullPtrErr},
        {false, {-1, 0, 1, 1}, {0, 0, 1, 1}, 2, 3, ippStsSizeErr},
        {false, {0, 0, 1, 1}, {0, 0, 0, 1}, 2, 3, ippStsSizeErr},
        {false, {0, 0, 1, 1}, {0, 0, 1, 1}, 2, 3, ippStsNumChannelsErr},
        {false, {0, 0, 1, 1}, {0, 0, 1, 1}, 3, 3, ippStsInterpolationErr},
        {false, {0, 0, 1, 1}, {0, 0, 1, 1}, 4, 8, ippStsInterpolationErr},
        {false, {0, 0, 1, 1}, {0, 0, 1 << 30, 1 << 30}, 4, 2, ippStsSizeErr},
    };
    for (const Case& c : cases) {
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
                int linear = 0, cubic = 0, lanczos = 0;
                const IppiRect rect = {0, 0, width, height};
                ASSERT_EQ(ippiResizeGetBufSize(rect, rect, channels, IPPI_INTER_LINEAR, &linear), ippStsNoErr);
                ASSERT_EQ(ippiResizeGetBufSize(rect, rect, channels, IPPI_INTER_CUBIC, &cubic), ippStsNoErr);
                ASSERT_EQ(ippiResizeGetBufSize(rect, rect, channels, IPPI_INTER_LANCZOS, &lanczos), ippStsNoErr);
                ASSERT_LE(cubic, 4 * linear) << width << "x" << height;
                ASSERT_LE(lanczos, 4 * linear) << width << "x" << height;
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
