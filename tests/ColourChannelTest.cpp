#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "../Common/ChannelReverse.h"
#include "../Common/ColorSpaceConverter.h"
#include "../Common/CopyPlane.h"
#include "../Common/SetChannelColor.h"
#include "../Common/SetColor.h"
#include "../Common/SqrInPlace.h"
#include "../Common/SqrtInPlace.h"
#include "../Common/ThresholdLTInPlace.h"
#include "AtEachVariant.h"
#include "ProcessorTestFrame.h"

namespace {

TEST_SUITE_AT_EACH_VARIANT(ColorSpaceConverter);
TEST_SUITE_AT_EACH_VARIANT(ChannelReverse);
TEST_SUITE_AT_EACH_VARIANT(CopyPlane);
TEST_SUITE_AT_EACH_VARIANT(SetColor);
TEST_SUITE_AT_EACH_VARIANT(SetChannelColor);
TEST_SUITE_AT_EACH_VARIANT(FloatArithmetic);

const float kByteToFloat = 1.0f / 255.0f;
const float kNaN = std::numeric_limits<float>::quiet_NaN();
const PixelFormat kFourSampleFormats[] = {pfVideoSample, pfVideoSampleSwapped, pfVideoSampleFloat,
                                          pfVideoSampleSwappedFloat};
const unsigned int kReversed[4] = {3, 2, 1, 0};

bool IsFloatFormat(PixelFormat format)
{
    return format == pfVideoSampleFloat || format == pfVideoSampleSwappedFloat || format == pfMonoFloat;
}

// Sample s of pixel (x, y) as a number, byte or float by the frame's format.
double SampleAt(TestFrame& frame, int x, int y, int s)
{
    return IsFloatFormat(frame->m_pfPixelFormat) ? frame.GetFloat(x, y, s) : frame.Byte(x, y, s);
}

// Sample s of each top-left pixel of dst is sample from[s] of the same pixel of src.
void ExpectSamplesFrom(TestFrame& dst, TestFrame& src, int width, int height, const unsigned int from[4])
{
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int s = 0; s < 4; ++s)
                ASSERT_EQ(SampleAt(dst, x, y, s), SampleAt(src, x, y, from[s])) << x << "," << y << " sample " << s;
}

// The four bytes of a float frame's alpha at (x, y) were never written.
bool AlphaUntouched(TestFrame& frame, int x, int y)
{
    return std::vector<uint8_t>(&frame.Memory()[frame.Offset(x, y)], &frame.Memory()[frame.Offset(x, y)] + 4) ==
           std::vector<uint8_t>(4, TestFrame::kSentinel);
}

struct ConversionCase {
    PixelFormat from, to;
    bool reversed;
};

TEST_P(ColorSpaceConverter, BytesBecomeFloatsInTheirOwnOrReversedOrder)
{
    const ConversionCase cases[] = {{pfVideoSample, pfVideoSampleFloat, false},
                                    {pfVideoSampleSwapped, pfVideoSampleSwappedFloat, false},
                                    {pfVideoSample, pfVideoSampleSwappedFloat, true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.from << " to " << c.to);
        TestFrame src(c.from, 2, 1), dst(c.to, 2, 1);
        src.SetBytes(0, 0, 255, 0, 1, 128);
        src.SetBytes(1, 0, 254, 2, 127, 255);
        ASSERT_TRUE(Processors::CColorSpaceConverter().Process(src.Get(), dst.Get()));
        for (int i = 0; i < 8; ++i)
            EXPECT_EQ(dst.GetFloat(i / 4, 0, i % 4), src.Byte(i / 4, 0, c.reversed ? 3 - i % 4 : i % 4) * kByteToFloat)
                << "sample " << i;
        EXPECT_EQ(dst.GetFloat(0, 0, c.reversed ? 3 : 0), 1.0f) << "white is exactly 1.0";
    }
}

TEST_P(ColorSpaceConverter, FloatsBecomeBytesClampedAndRounded)
{
    const float in[] = {1.0f, 0.999f, 0.5f, 0.0f, 1.5f, -0.1f, 0.0019f, 0.002f, kNaN, 0.998f, 0.25f, 2.0f};
    const int expected[] = {255, 255, 128, 0, 255, 0, 0, 1, 0, 254, 64, 255};
    const ConversionCase cases[] = {{pfVideoSampleFloat, pfVideoSample, false},
                                    {pfVideoSampleSwappedFloat, pfVideoSampleSwapped, false},
                                    {pfVideoSampleSwappedFloat, pfVideoSample, true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.from << " to " << c.to);
        TestFrame src(c.from, 3, 1), dst(c.to, 3, 1);
        for (int i = 0; i < 12; ++i)
            src.SetFloat(i / 4, 0, i % 4, in[i]);
        ASSERT_TRUE(Processors::CColorSpaceConverter().Process(src.Get(), dst.Get()));
        for (int i = 0; i < 12; ++i)
            EXPECT_EQ(dst.Byte(i / 4, 0, c.reversed ? 3 - i % 4 : i % 4), expected[i]) << "value " << in[i];
    }
}

TEST_P(ColorSpaceConverter, ReordersBetweenTheTwoRecordsOfOneSampleTypeOverTheCommonArea)
{
    const PixelFormat partner[] = {pfVideoSampleSwapped, pfVideoSample, pfVideoSampleSwappedFloat, pfVideoSampleFloat};
    for (int i = 0; i < 4; ++i) {
        SCOPED_TRACE(testing::Message() << "from " << kFourSampleFormats[i]);
        TestFrame src(kFourSampleFormats[i], 3, 4), dst(partner[i], 5, 2);
        src.FillPattern();
        const std::vector<uint8_t> before = dst.Memory();
        ASSERT_TRUE(Processors::CColorSpaceConverter().Process(src.Get(), dst.Get()));
        ExpectSamplesFrom(dst, src, 3, 2, kReversed);
        dst.ExpectUntouchedOutside(before, 3, 2);
    }
    // Bytes to floats over mixed sizes; an empty destination is nothing to do.
    TestFrame src(pfVideoSample, 4, 2), dst(pfVideoSampleFloat, 2, 3), empty(pfVideoSampleFloat, 0, 3);
    src.FillPattern();
    const std::vector<uint8_t> before = dst.Memory();
    ASSERT_TRUE(Processors::CColorSpaceConverter().Process(src.Get(), dst.Get()));
    EXPECT_EQ(dst.GetFloat(1, 1, 2), src.Byte(1, 1, 2) * kByteToFloat);
    dst.ExpectUntouchedOutside(before, 2, 2);
    EXPECT_TRUE(Processors::CColorSpaceConverter().Process(src.Get(), empty.Get()));
}

TEST_P(ColorSpaceConverter, PairsWithoutAPathLeaveTheDestinationAlone)
{
    const struct {
        int from, to;
    } cases[] = {{1, 3}, {3, 1}, {0, 0}, {3, 3}, {4, 4}, {0, 6}, {6, 3}, {7, 4}, {2, 3}, {0, 5}, {7, 7}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.from << " to " << c.to);
        TestFrame src(static_cast<PixelFormat>(c.from), 2, 2), dst(static_cast<PixelFormat>(c.to), 2, 2);
        src.FillPattern();
        dst.ExpectRefused([&] { return Processors::CColorSpaceConverter().Process(src.Get(), dst.Get()); });
    }
    // A destination whose rows are too short for four-float pixels, and a missing source.
    TestFrame src(pfVideoSample, 4, 2), dst(pfVideoSampleFloat, 4, 2, 4);
    dst.ExpectRefused([&] { return Processors::CColorSpaceConverter().Process(src.Get(), dst.Get()); });
    EXPECT_FALSE(Processors::CColorSpaceConverter().Process(nullptr, dst.Get()));
}

TEST_P(ColorSpaceConverter, StudioRangeYCbCrOfGreyAndBack)
{
    for (float grey : {0.0f, 0.2f, 0.5f, 1.0f}) {
        SCOPED_TRACE(testing::Message() << "grey " << grey);
        TestFrame rgb(pfVideoSampleSwappedFloat, 2, 2), ycc(pfVideoSampleSwappedFloat, 2, 2),
            back(pfVideoSampleSwappedFloat, 2, 2);
        for (int i = 0; i < 4; ++i)
            rgb.SetFloats(i % 2, i / 2, 0.75f, grey, grey, grey);
        ASSERT_TRUE(Processors::CColorSpaceConverter().ARGB32ToAppleR4FL(*rgb, *ycc));
        EXPECT_NEAR(ycc.GetFloat(1, 1, 1), grey * 219.0f / 255.0f, 1e-6);
        EXPECT_NEAR(ycc.GetFloat(1, 1, 2), 128.0f / 255.0f, 1e-6);
        EXPECT_NEAR(ycc.GetFloat(1, 1, 3), 128.0f / 255.0f, 1e-6);
        EXPECT_TRUE(AlphaUntouched(ycc, 1, 1)) << "alpha is never written";
        ASSERT_TRUE(Processors::CColorSpaceConverter().AppleR4FLToARGB32(*ycc, *back));
        for (int s = 1; s < 4; ++s)
            EXPECT_NEAR(back.GetFloat(0, 1, s), grey, 1e-5) << "sample " << s;
    }
}

TEST_P(ColorSpaceConverter, MatrixOperationsTakeOnlyAlphaFirstFloats)
{
    float identity[3][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}};
    float twist[3][4] = {{0, 0, 1, 0.5f}, {0, 2, 0, 0}, {1, 1, 1, -1}};
    float constants[3] = {2.0f, -1.0f, 0.5f};
    TestFrame src(pfVideoSampleSwappedFloat, 3, 2), dst(pfVideoSampleSwappedFloat, 2, 3);
    src.FillPattern();
    Processors::CColorSpaceConverter converter;
    const std::vector<uint8_t> before = dst.Memory();
    ASSERT_TRUE(converter.ProcessColorMatrix32f(*src, *dst, identity));
    EXPECT_TRUE(AlphaUntouched(dst, 1, 1)) << "alpha is never written";
    for (int i = 0; i < 4; ++i)
        for (int s = 1; s < 4; ++s)
            EXPECT_EQ(dst.GetFloat(i % 2, i / 2, s), src.GetFloat(i % 2, i / 2, s));
    dst.ExpectUntouchedOutside(before, 2, 2);
    const float r = src.GetFloat(1, 1, 1), g = src.GetFloat(1, 1, 2), b = src.GetFloat(1, 1, 3);
    ASSERT_TRUE(converter.ProcessColorMatrix32f(*src, *src, twist));
    EXPECT_EQ(src.GetFloat(1, 1, 1), b + 0.5f);
    EXPECT_EQ(src.GetFloat(1, 1, 2), 2 * g);
    EXPECT_EQ(src.GetFloat(1, 1, 3), ((r + -1.0f) + g) + b);
    ASSERT_TRUE(converter.ProcessMulC32f(*src, *dst, constants));
    EXPECT_EQ(dst.GetFloat(1, 1, 1), src.GetFloat(1, 1, 1) * 2.0f);
    EXPECT_EQ(dst.GetFloat(1, 1, 3), src.GetFloat(1, 1, 3) * 0.5f);
    ASSERT_TRUE(converter.ProcessAddC32f(*dst, *dst, constants));
    EXPECT_EQ(dst.GetFloat(1, 1, 1), src.GetFloat(1, 1, 1) * 2.0f + 2.0f);

    // Any other format, an empty area or missing constants: false, and nothing written.
    TestFrame bgra(pfVideoSampleFloat, 2, 2), target(pfVideoSampleSwappedFloat, 2, 2), empty(pfVideoSampleSwappedFloat, 2, 0);
    target.ExpectRefused([&] {
        return converter.ProcessColorMatrix32f(*bgra, *target, identity) || converter.ProcessMulC32f(*bgra, *target, constants) ||
               converter.ProcessAddC32f(*target, *bgra, constants) || converter.ProcessAddC32f(*empty, *target, constants) ||
               converter.ProcessMulC32f(*src, *target, nullptr) || !converter.ARGB32ToAppleR4FL(*bgra, *target) ||
               !converter.AppleR4FLToARGB32(*bgra, *target);
    });
}

TEST_P(ChannelReverse, ReversesIntoAnotherFrameOrInPlace)
{
    for (PixelFormat format : kFourSampleFormats) {
        SCOPED_TRACE(testing::Message() << "format " << format);
        TestFrame src(format, 4, 3), dst(format, 2, 5), same(format, 3, 2);
        src.FillPattern();
        same.FillPattern();
        const std::vector<uint8_t> before = dst.Memory(), original = same.Memory();
        ASSERT_TRUE(Processors::CChannelReverse().Process(src.Get(), dst.Get()));
        ExpectSamplesFrom(dst, src, 2, 3, kReversed);
        dst.ExpectUntouchedOutside(before, 2, 3);
        ASSERT_TRUE(Processors::CChannelReverse().Process(same.Get(), same.Get()));
        EXPECT_NE(same.Memory(), original);
        ASSERT_TRUE(Processors::CChannelReverse().Process(same.Get(), same.Get()));
        EXPECT_EQ(same.Memory(), original) << "reversing twice restores";
    }
}

TEST_P(ChannelReverse, PermutesInPlaceByAnOrder)
{
    // Each entry names the old position its position takes.
    const unsigned int orders[][4] = {{3, 2, 1, 0}, {0, 0, 0, 0}, {1, 2, 3, 0}, {2, 2, 3, 3}};
    for (PixelFormat format : kFourSampleFormats)
        for (const auto& order : orders) {
            SCOPED_TRACE(testing::Message() << "format " << format << " order " << order[0] << order[1] << order[2] << order[3]);
            TestFrame frame(format, 3, 2), original(format, 3, 2);
            frame.FillPattern();
            original.FillPattern();
            unsigned int copy[4] = {order[0], order[1], order[2], order[3]};
            ASSERT_TRUE(Processors::CChannelReverse().Process(frame.Get(), copy));
            ExpectSamplesFrom(frame, original, 3, 2, order);
        }
}

TEST_P(ChannelReverse, RefusesBadOrdersFormatsAndFrames)
{
    const struct {
        PixelFormat format;
        int height;
        unsigned int order[4];
    } cases[] = {{pfVideoSampleFloat, 2, {0, 1, 2, 4}},  {pfVideoSampleSwappedFloat, 2, {4, 0, 0, 0}},
                 {pfVideoSample, 2, {0, 1, 2, 4}},       {pfVideoSampleSwapped, 2, {0xFFFFFFFFu, 1, 2, 3}},
                 {pfMono8, 2, {0, 1, 2, 3}},             {pfMonoFloat, 2, {0, 1, 2, 3}},
                 {pfVideoSampleFloat, 0, {0, 1, 2, 3}}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "format " << c.format << " height " << c.height);
        TestFrame frame(c.format, 3, c.height);
        frame.FillPattern();
        unsigned int order[4] = {c.order[0], c.order[1], c.order[2], c.order[3]};
        frame.ExpectRefused([&] { return Processors::CChannelReverse().Process(frame.Get(), order); });
    }
    TestFrame src(pfMono8, 2, 2), dst(pfVideoSample, 2, 2);
    dst.ExpectRefused([&] {
        return Processors::CChannelReverse().Process(src.Get(), dst.Get()) ||
               Processors::CChannelReverse().Process(nullptr, dst.Get()) ||
               Processors::CChannelReverse().Process(dst.Get(), static_cast<CFrame*>(nullptr));
    });
}

TEST_P(CopyPlane, MovesOneChannelBetweenEveryPairOfDepths)
{
    const struct {
        PixelFormat srcFormat, dstFormat;
        int srcDepth, dstDepth;
        int srcPlane, dstPlane;
    } cases[] = {
        {pfVideoSampleFloat, pfMonoFloat, 16, 4, 2, 3},
        {pfMonoFloat, pfVideoSampleSwappedFloat, 4, 16, 0, 3},
        {pfVideoSampleSwappedFloat, pfVideoSampleFloat, 16, 16, 0, 1},
        {pfVideoSample, pfMono8, 4, 1, 3, 0},
        {pfMono8, pfVideoSampleSwapped, 1, 4, 0, 2},
        {pfVideoSampleSwapped, pfVideoSample, 4, 4, 1, 0},
        {static_cast<PixelFormat>(2), pfVideoSample, 1, 4, 0, 1},
    };
    for (const auto& c : cases) {
        TestFrame src(c.srcFormat, 5, 2, c.srcDepth), dst(c.dstFormat, 3, 4, c.dstDepth);
        src.FillPattern();
        dst.FillPattern();
        const std::vector<uint8_t> before = dst.Memory();
        ASSERT_TRUE(Processors::CCopyPlane().Process(src.Get(), dst.Get(), c.srcPlane, c.dstPlane)) << c.srcFormat;
        const bool floats = IsFloatFormat(c.srcFormat);
        const int sampleBytes = floats ? 4 : 1;
        const int dstPlane = c.dstDepth == sampleBytes ? 0 : c.dstPlane;
        const int srcPlane = c.srcDepth == sampleBytes ? 0 : c.srcPlane;
        for (size_t i = 0; i < before.size(); ++i) {
            const int y = static_cast<int>(i / dst->m_nByteSpan);
            const int x = static_cast<int>(i % dst->m_nByteSpan) / c.dstDepth;
            const int sample = static_cast<int>(i % dst->m_nByteSpan % c.dstDepth) / sampleBytes;
            if (x < 3 && y < 2 && sample == dstPlane) {
                const size_t from = src.Offset(x, y) + srcPlane * sampleBytes + (i % sampleBytes);
                ASSERT_EQ(dst.Memory()[i], src.Memory()[from]) << c.srcFormat << " byte " << i;
            } else {
                ASSERT_EQ(dst.Memory()[i], before[i]) << c.srcFormat << " byte " << i;
            }
        }
    }
}

TEST_P(CopyPlane, RefusesPairsWithoutAPrimitive)
{
    const struct {
        int srcFormat, srcDepth, dstDepth, srcPlane, dstPlane;
    } cases[] = {{3, 16, 1, 0, 0}, {7, 4, 4, 0, 0}, {0, 4, 16, 0, 0}, {1, 1, 1, 0, 0},
                 {2, 4, 4, 0, 0},  {5, 16, 16, 0, 0}, {0, 4, 4, 4, 0}, {4, 16, 16, 0, -1}};
    for (const auto& c : cases) {
        TestFrame src(static_cast<PixelFormat>(c.srcFormat), 2, 2, c.srcDepth), dst(pfVideoSample, 2, 2, c.dstDepth);
        SCOPED_TRACE(testing::Message() << c.srcFormat << " " << c.srcDepth << " to " << c.dstDepth);
        src.FillPattern();
        dst.ExpectRefused([&] { return Processors::CCopyPlane().Process(src.Get(), dst.Get(), c.srcPlane, c.dstPlane); });
    }
}

TEST_P(SetColor, LaysTheColourWordDownInEachFormatsOrder)
{
    const unsigned int color = 0x80FF0000u;
    const float a = 128 * kByteToFloat;
    const struct {
        PixelFormat format;
        int depth;
        unsigned int color;
        std::vector<double> expected;
    } cases[] = {
        {pfVideoSample, 4, color, {0, 0, 255, 128}},
        {pfVideoSampleSwapped, 4, color, {128, 255, 0, 0}},
        {pfMono8, 1, 0x12345678u, {0x78}},
        {static_cast<PixelFormat>(2), 1, 0x12345678u, {0x78}},
        {pfVideoSampleFloat, 16, color, {0, 0, 1, a}},
        {pfVideoSampleSwappedFloat, 16, color, {a, 1, 0, 0}},
        {pfMonoFloat, 16, color, {a, 1, 0, 0}},
        {pfMonoFloat, 4, 0x123456FFu, {1}},
        {pfVideoSampleSwappedFloat, 4, 0xFFFFFF33u, {0x33 * kByteToFloat}},
    };
    for (const auto& c : cases) {
        TestFrame frame(c.format, 3, 2, c.depth);
        ASSERT_TRUE(Processors::CSetColor().Process(frame.Get(), c.color)) << c.format;
        const bool floats = IsFloatFormat(c.format) && c.depth != 1;
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 3; ++x)
                for (size_t s = 0; s < c.expected.size(); ++s) {
                    const double value = floats ? frame.GetFloat(x, y, s) : frame.Byte(x, y, s);
                    ASSERT_EQ(value, c.expected[s]) << "format " << c.format << " depth " << c.depth << " sample " << s;
                }
        EXPECT_EQ(frame.Memory()[frame.Offset(3, 0)], TestFrame::kSentinel) << "row padding stays";
    }
}

TEST_P(SetColor, RefusesFormatsAndDepthsWithoutAFill)
{
    const struct {
        int format, depth;
    } cases[] = {{2, 4}, {5, 16}, {6, 4}, {3, 4 * 2}, {7, 8}, {0, 4}};
    for (const auto& c : cases) {
        TestFrame frame(static_cast<PixelFormat>(c.format), 3, 2, c.depth);
        SCOPED_TRACE(testing::Message() << c.format << " depth " << c.depth);
        if (c.format == 0)
            frame->m_nByteSpan = 8;   // a span that can't hold a row
        frame.ExpectRefused([&] { return Processors::CSetColor().Process(frame.Get(), 0xFFFFFFFFu); });
    }
    EXPECT_FALSE(Processors::CSetColor().Process(nullptr, 0));
}

TEST_P(SetChannelColor, FillsOnePositionWithTheLowByte)
{
    const struct {
        PixelFormat format;
        unsigned int channel;
        unsigned int value;
        double expected;
    } cases[] = {{pfVideoSample, 1, 0x1FF, 255},           {pfVideoSampleSwapped, 0, 0x100, 0},
                 {pfVideoSampleFloat, 3, 51, 51 * kByteToFloat}, {pfVideoSampleSwappedFloat, 0, 0xFFFFFF80u, 128 * kByteToFloat}};
    for (const auto& c : cases) {
        TestFrame frame(c.format, 3, 2), original(c.format, 3, 2);
        frame.FillPattern();
        original.FillPattern();
        ASSERT_TRUE(Processors::CSetChannelColor().Process(frame.Get(), c.channel, c.value)) << c.format;
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 3; ++x)
                for (unsigned int s = 0; s < 4; ++s)
                    ASSERT_EQ(SampleAt(frame, x, y, s), s == c.channel ? c.expected : SampleAt(original, x, y, s))
                        << c.format << " sample " << s;
    }
    const struct {
        int format, depth;
        unsigned int channel;
    } refused[] = {{7, 4, 0}, {6, 1, 0}, {0, 16, 0}, {3, 4, 0}, {2, 4, 0}, {0, 4, 4}, {4, 16, 7}};
    for (const auto& c : refused) {
        SCOPED_TRACE(testing::Message() << c.format << " depth " << c.depth << " channel " << c.channel);
        TestFrame frame(static_cast<PixelFormat>(c.format), 3, 2, c.depth);
        frame.ExpectRefused([&] { return Processors::CSetChannelColor().Process(frame.Get(), c.channel, 9); });
    }
}

// The two pixels of a 2 x 1 float frame are these eight samples, NaN matching NaN.
void ExpectFloats(TestFrame& frame, const float (&expected)[8])
{
    for (int i = 0; i < 8; ++i) {
        const float value = frame.GetFloat(i / 4, 0, i % 4);
        if (std::isnan(expected[i]))
            EXPECT_TRUE(std::isnan(value)) << "sample " << i;
        else
            EXPECT_EQ(value, expected[i]) << "sample " << i;
    }
}

TEST_P(FloatArithmetic, SquareRootAndFloorRunOverAllFourSamples)
{
    for (PixelFormat format : {pfVideoSampleFloat, pfVideoSampleSwappedFloat}) {
        SCOPED_TRACE(testing::Message() << "format " << format);
        TestFrame frame(format, 2, 1);
        frame.SetFloats(0, 0, 3.0f, -2.0f, 0.5f, 0.0f);
        frame.SetFloats(1, 0, 4.0f, 0.25f, kNaN, 1.0f);
        ASSERT_TRUE(Processors::CSqrInPlace().Process(frame.Get()));
        ExpectFloats(frame, {9.0f, 4.0f, 0.25f, 0.0f, 16.0f, 0.0625f, kNaN, 1.0f});
        ASSERT_TRUE(Processors::CSqrtInPlace().Process(frame.Get()));
        ExpectFloats(frame, {3.0f, 2.0f, 0.5f, 0.0f, 4.0f, 0.25f, kNaN, 1.0f});
        // A negative sample: the whole picture is still done, but the answer is false.
        frame.SetFloats(0, 0, -1.0f, 16.0f, 9.0f, 0.0f);
        EXPECT_FALSE(Processors::CSqrtInPlace().Process(frame.Get()));
        ExpectFloats(frame, {kNaN, 4.0f, 3.0f, 0.0f, 2.0f, 0.5f, kNaN, 1.0f});

        const float floor[4] = {0.1f, 0.1f, 0.1f, 0.0f};
        frame.SetFloats(0, 0, 0.1f, 0.05f, 0.2f, -0.5f);
        frame.SetFloats(1, 0, kNaN, -3.0f, 0.1f, 0.0f);
        ASSERT_TRUE(Processors::CThresholdLTInPlace().Process(frame.Get(), floor));
        ExpectFloats(frame, {0.1f, 0.1f, 0.2f, 0.0f, kNaN, 0.1f, 0.1f, 0.0f});
        EXPECT_FALSE(Processors::CThresholdLTInPlace().Process(frame.Get(), nullptr));
    }
}

TEST_P(FloatArithmetic, RefusesAllButWholeFourFloatFrames)
{
    const float floor[4] = {1, 1, 1, 1};
    const struct {
        const char* what;
        int format, width, height, depth;
        int span;   // -1 keeps the frame's own
    } cases[] = {{"byte frame", 0, 2, 2, 4, -1},      {"one-float frame", 7, 2, 2, 4, -1},
                 {"format 2", 2, 2, 2, 16, -1},       {"no columns", 3, 0, 2, 16, -1},
                 {"no rows", 4, 2, 0, 16, -1},        {"zero span", 3, 2, 2, 16, 0},
                 {"span below the row", 4, 2, 2, 16, 24}};
    for (const auto& c : cases) {
        TestFrame frame(static_cast<PixelFormat>(c.format), c.width, c.height, c.depth);
        SCOPED_TRACE(c.what);
        if (c.span >= 0)
            frame->m_nByteSpan = c.span;
        const std::vector<uint8_t> before = frame.Memory();
        EXPECT_FALSE(Processors::CSqrInPlace().Process(frame.Get()));
        EXPECT_FALSE(Processors::CSqrtInPlace().Process(frame.Get()));
        EXPECT_FALSE(Processors::CThresholdLTInPlace().Process(frame.Get(), floor));
        EXPECT_EQ(frame.Memory(), before);
    }
    CFrame empty;
    empty.m_pfPixelFormat = pfVideoSampleFloat;
    EXPECT_FALSE(Processors::CSqrInPlace().Process(&empty));
    EXPECT_FALSE(Processors::CSqrtInPlace().Process(nullptr));
}

} // namespace
