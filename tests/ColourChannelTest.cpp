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

bool IsFloatFormat(PixelFormat format)
{
    return format == pfVideoSampleFloat || format == pfVideoSampleSwappedFloat || format == pfMonoFloat;
}

// Sample s of pixel (x, y) as a number, byte or float by the frame's format.
double SampleAt(TestFrame& frame, int x, int y, int s)
{
    return IsFloatFormat(frame->m_pfPixelFormat) ? frame.GetFloat(x, y, s) : frame.Byte(x, y, s);
}

TEST_P(ColorSpaceConverter, BytesBecomeFloatsInTheirOwnOrReversedOrder)
{
    const struct {
        PixelFormat from, to;
        bool reversed;
    } cases[] = {{pfVideoSample, pfVideoSampleFloat, false},
                 {pfVideoSampleSwapped, pfVideoSampleSwappedFloat, false},
                 {pfVideoSample, pfVideoSampleSwappedFloat, true}};
    for (const auto& c : cases) {
        TestFrame src(c.from, 2, 1), dst(c.to, 2, 1);
        src.SetBytes(0, 0, 255, 0, 1, 128);
        src.SetBytes(1, 0, 254, 2, 127, 255);
        ASSERT_TRUE(Processors::CColorSpaceConverter().Process(src.Get(), dst.Get()));
        for (int x = 0; x < 2; ++x)
            for (int s = 0; s < 4; ++s)
                EXPECT_EQ(dst.GetFloat(x, 0, s), src.Byte(x, 0, c.reversed ? 3 - s : s) * kByteToFloat)
                    << c.from << " to " << c.to << " pixel " << x << " sample " << s;
        EXPECT_EQ(dst.GetFloat(0, 0, c.reversed ? 3 : 0), 1.0f) << "white is exactly 1.0";
    }
}

TEST_P(ColorSpaceConverter, FloatsBecomeBytesClampedAndRounded)
{
    const float in[] = {1.0f, 0.999f, 0.5f, 0.0f, 1.5f, -0.1f, 0.0019f, 0.002f, kNaN, 0.998f, 0.25f, 2.0f};
    const int expected[] = {255, 255, 128, 0, 255, 0, 0, 1, 0, 254, 64, 255};
    const struct {
        PixelFormat from, to;
        bool reversed;
    } cases[] = {{pfVideoSampleFloat, pfVideoSample, false},
                 {pfVideoSampleSwappedFloat, pfVideoSampleSwapped, false},
                 {pfVideoSampleSwappedFloat, pfVideoSample, true}};
    for (const auto& c : cases) {
        TestFrame src(c.from, 3, 1), dst(c.to, 3, 1);
        for (int i = 0; i < 12; ++i)
            src.SetFloat(i / 4, 0, i % 4, in[i]);
        ASSERT_TRUE(Processors::CColorSpaceConverter().Process(src.Get(), dst.Get()));
        for (int i = 0; i < 12; ++i) {
            const int x = i / 4, s = i % 4;
            EXPECT_EQ(dst.Byte(x, 0, c.reversed ? 3 - s : s), expected[i]) << c.from << " to " << c.to << " value " << in[i];
        }
    }
}

TEST_P(ColorSpaceConverter, ReordersBetweenTheTwoRecordsOfOneSampleType)
{
    for (PixelFormat from : {pfVideoSample, pfVideoSampleSwapped, pfVideoSampleFloat, pfVideoSampleSwappedFloat}) {
        const bool floats = IsFloatFormat(from);
        const PixelFormat to = floats ? (from == pfVideoSampleFloat ? pfVideoSampleSwappedFloat : pfVideoSampleFloat)
                                      : (from == pfVideoSample ? pfVideoSampleSwapped : pfVideoSample);
        TestFrame src(from, 3, 4), dst(to, 5, 2);
        src.FillPattern();
        const std::vector<uint8_t> before = dst.Memory();
        ASSERT_TRUE(Processors::CColorSpaceConverter().Process(src.Get(), dst.Get())) << from;
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 3; ++x)
                for (int s = 0; s < 4; ++s)
                    ASSERT_EQ(SampleAt(dst, x, y, s), SampleAt(src, x, y, 3 - s)) << from << " at " << x << "," << y;
        dst.ExpectUntouchedOutside(before, 3, 2);
    }
}

TEST_P(ColorSpaceConverter, ConvertsOnlyTheCommonArea)
{
    TestFrame src(pfVideoSample, 4, 2), dst(pfVideoSampleFloat, 2, 3);
    src.FillPattern();
    const std::vector<uint8_t> before = dst.Memory();
    ASSERT_TRUE(Processors::CColorSpaceConverter().Process(src.Get(), dst.Get()));
    EXPECT_EQ(dst.GetFloat(1, 1, 2), src.Byte(1, 1, 2) * kByteToFloat);
    dst.ExpectUntouchedOutside(before, 2, 2);

    TestFrame empty(pfVideoSampleFloat, 0, 3);
    EXPECT_TRUE(Processors::CColorSpaceConverter().Process(src.Get(), empty.Get()));
}

TEST_P(ColorSpaceConverter, PairsWithoutAPathLeaveTheDestinationAlone)
{
    const struct {
        int from, to;
    } cases[] = {{1, 3}, {3, 1}, {0, 0}, {3, 3}, {4, 4}, {0, 6}, {6, 3}, {7, 4}, {2, 3}, {0, 5}, {7, 7}};
    for (const auto& c : cases) {
        const PixelFormat from = static_cast<PixelFormat>(c.from), to = static_cast<PixelFormat>(c.to);
        TestFrame src(from, 2, 2), dst(to, 2, 2);
        src.FillPattern();
        const std::vector<uint8_t> before = dst.Memory();
        EXPECT_FALSE(Processors::CColorSpaceConverter().Process(src.Get(), dst.Get())) << c.from << " to " << c.to;
        EXPECT_EQ(dst.Memory(), before) << c.from << " to " << c.to;
    }
    // A destination whose rows are too short for four-float pixels.
    TestFrame src(pfVideoSample, 4, 2), dst(pfVideoSampleFloat, 4, 2, 4);
    const std::vector<uint8_t> before = dst.Memory();
    EXPECT_FALSE(Processors::CColorSpaceConverter().Process(src.Get(), dst.Get()));
    EXPECT_EQ(dst.Memory(), before);
    EXPECT_FALSE(Processors::CColorSpaceConverter().Process(nullptr, dst.Get()));
}

TEST_P(ColorSpaceConverter, StudioRangeYCbCrOfGreyAndBack)
{
    for (float grey : {0.0f, 0.2f, 0.5f, 1.0f}) {
        TestFrame rgb(pfVideoSampleSwappedFloat, 2, 2), ycc(pfVideoSampleSwappedFloat, 2, 2);
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 2; ++x)
                rgb.SetFloats(x, y, 0.75f, grey, grey, grey);
        ASSERT_TRUE(Processors::CColorSpaceConverter().ARGB32ToAppleR4FL(*rgb, *ycc));
        EXPECT_NEAR(ycc.GetFloat(1, 1, 1), grey * 219.0f / 255.0f, 1e-6) << grey;
        EXPECT_NEAR(ycc.GetFloat(1, 1, 2), 128.0f / 255.0f, 1e-6) << grey;
        EXPECT_NEAR(ycc.GetFloat(1, 1, 3), 128.0f / 255.0f, 1e-6) << grey;

        // Alpha is never written: the destination's alpha is still the sentinel.
        std::vector<uint8_t> alphaBytes(&ycc.Memory()[ycc.Offset(1, 1)], &ycc.Memory()[ycc.Offset(1, 1)] + 4);
        EXPECT_EQ(alphaBytes, std::vector<uint8_t>(4, TestFrame::kSentinel));

        TestFrame back(pfVideoSampleSwappedFloat, 2, 2);
        ASSERT_TRUE(Processors::CColorSpaceConverter().AppleR4FLToARGB32(*ycc, *back));
        for (int s = 1; s < 4; ++s)
            EXPECT_NEAR(back.GetFloat(0, 1, s), grey, 1e-5) << grey << " sample " << s;
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
    std::vector<uint8_t> before = dst.Memory();
    ASSERT_TRUE(converter.ProcessColorMatrix32f(*src, *dst, identity));
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 2; ++x)
            for (int s = 1; s < 4; ++s)
                EXPECT_EQ(dst.GetFloat(x, y, s), src.GetFloat(x, y, s));
    dst.ExpectUntouchedOutside(before, 2, 2);
    const std::vector<uint8_t> alphaBytes(&dst.Memory()[dst.Offset(1, 1)], &dst.Memory()[dst.Offset(1, 1)] + 4);
    EXPECT_EQ(alphaBytes, std::vector<uint8_t>(4, TestFrame::kSentinel)) << "alpha is never written";
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
    before = target.Memory();
    EXPECT_FALSE(converter.ProcessColorMatrix32f(*bgra, *target, identity));
    EXPECT_FALSE(converter.ProcessMulC32f(*bgra, *target, constants));
    EXPECT_FALSE(converter.ProcessAddC32f(*target, *bgra, constants));
    EXPECT_FALSE(converter.ProcessAddC32f(*empty, *target, constants));
    EXPECT_FALSE(converter.ProcessMulC32f(*src, *target, nullptr));
    EXPECT_TRUE(converter.ARGB32ToAppleR4FL(*bgra, *target));
    EXPECT_TRUE(converter.AppleR4FLToARGB32(*bgra, *target));
    EXPECT_EQ(target.Memory(), before);
}

TEST_P(ChannelReverse, ReversesIntoAnotherFrameOrInPlace)
{
    for (PixelFormat format : {pfVideoSample, pfVideoSampleSwapped, pfVideoSampleFloat, pfVideoSampleSwappedFloat}) {
        TestFrame src(format, 4, 3), dst(format, 2, 5), same(format, 3, 2);
        src.FillPattern();
        same.FillPattern();
        const std::vector<uint8_t> before = dst.Memory();
        ASSERT_TRUE(Processors::CChannelReverse().Process(src.Get(), dst.Get())) << format;
        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < 2; ++x)
                for (int s = 0; s < 4; ++s)
                    ASSERT_EQ(SampleAt(dst, x, y, s), SampleAt(src, x, y, 3 - s)) << format;
        dst.ExpectUntouchedOutside(before, 2, 3);

        const std::vector<uint8_t> original = same.Memory();
        ASSERT_TRUE(Processors::CChannelReverse().Process(same.Get(), same.Get())) << format;
        EXPECT_NE(same.Memory(), original);
        ASSERT_TRUE(Processors::CChannelReverse().Process(same.Get(), same.Get())) << format;
        EXPECT_EQ(same.Memory(), original) << "reversing twice restores, format " << format;
    }
}

TEST_P(ChannelReverse, PermutesInPlaceByAnOrder)
{
    const struct {
        unsigned int order[4];
        int expected[4];   // the old position each position takes
    } cases[] = {{{3, 2, 1, 0}, {3, 2, 1, 0}}, {{0, 0, 0, 0}, {0, 0, 0, 0}}, {{1, 2, 3, 0}, {1, 2, 3, 0}},
                 {{2, 2, 3, 3}, {2, 2, 3, 3}}};
    for (PixelFormat format : {pfVideoSample, pfVideoSampleSwapped, pfVideoSampleFloat, pfVideoSampleSwappedFloat}) {
        for (const auto& c : cases) {
            TestFrame frame(format, 3, 2), original(format, 3, 2);
            frame.FillPattern();
            original.FillPattern();
            unsigned int order[4] = {c.order[0], c.order[1], c.order[2], c.order[3]};
            ASSERT_TRUE(Processors::CChannelReverse().Process(frame.Get(), order)) << format;
            for (int y = 0; y < 2; ++y)
                for (int x = 0; x < 3; ++x)
                    for (int s = 0; s < 4; ++s)
                        ASSERT_EQ(SampleAt(frame, x, y, s), SampleAt(original, x, y, c.expected[s]))
                            << "format " << format << " order entry " << s;
        }
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
        TestFrame frame(c.format, 3, c.height);
        frame.FillPattern();
        const std::vector<uint8_t> before = frame.Memory();
        unsigned int order[4] = {c.order[0], c.order[1], c.order[2], c.order[3]};
        EXPECT_FALSE(Processors::CChannelReverse().Process(frame.Get(), order)) << c.format;
        EXPECT_EQ(frame.Memory(), before) << c.format;
    }
    TestFrame src(pfMono8, 2, 2), dst(pfVideoSample, 2, 2);
    const std::vector<uint8_t> before = dst.Memory();
    EXPECT_FALSE(Processors::CChannelReverse().Process(src.Get(), dst.Get()));
    EXPECT_FALSE(Processors::CChannelReverse().Process(nullptr, dst.Get()));
    EXPECT_FALSE(Processors::CChannelReverse().Process(dst.Get(), static_cast<CFrame*>(nullptr)));
    EXPECT_EQ(dst.Memory(), before);
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
        src.FillPattern();
        const std::vector<uint8_t> before = dst.Memory();
        EXPECT_FALSE(Processors::CCopyPlane().Process(src.Get(), dst.Get(), c.srcPlane, c.dstPlane))
            << c.srcFormat << " " << c.srcDepth << " to " << c.dstDepth;
        EXPECT_EQ(dst.Memory(), before);
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
        if (c.format == 0)
            frame->m_nByteSpan = 8;   // a span that can't hold a row
        const std::vector<uint8_t> before = frame.Memory();
        EXPECT_FALSE(Processors::CSetColor().Process(frame.Get(), 0xFFFFFFFFu)) << c.format << " depth " << c.depth;
        EXPECT_EQ(frame.Memory(), before);
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
        TestFrame frame(static_cast<PixelFormat>(c.format), 3, 2, c.depth);
        const std::vector<uint8_t> before = frame.Memory();
        EXPECT_FALSE(Processors::CSetChannelColor().Process(frame.Get(), c.channel, 9)) << c.format;
        EXPECT_EQ(frame.Memory(), before);
    }
}

TEST_P(FloatArithmetic, SquareRootAndFloorRunOverAllFourSamples)
{
    for (PixelFormat format : {pfVideoSampleFloat, pfVideoSampleSwappedFloat}) {
        TestFrame frame(format, 2, 1);
        frame.SetFloats(0, 0, 3.0f, -2.0f, 0.5f, 0.0f);
        frame.SetFloats(1, 0, 4.0f, 0.25f, kNaN, 1.0f);
        ASSERT_TRUE(Processors::CSqrInPlace().Process(frame.Get()));
        const float squared[8] = {9.0f, 4.0f, 0.25f, 0.0f, 16.0f, 0.0625f, kNaN, 1.0f};
        for (int i = 0; i < 8; ++i) {
            const float value = frame.GetFloat(i / 4, 0, i % 4);
            if (std::isnan(squared[i]))
                EXPECT_TRUE(std::isnan(value));
            else
                EXPECT_EQ(value, squared[i]) << i;
        }
        ASSERT_TRUE(Processors::CSqrtInPlace().Process(frame.Get()));
        const float roots[8] = {3.0f, 2.0f, 0.5f, 0.0f, 4.0f, 0.25f, kNaN, 1.0f};
        for (int i = 0; i < 8; ++i) {
            const float value = frame.GetFloat(i / 4, 0, i % 4);
            if (std::isnan(roots[i]))
                EXPECT_TRUE(std::isnan(value));
            else
                EXPECT_EQ(value, roots[i]) << i;
        }
        // A negative sample: the whole picture is still done, but the answer is false.
        frame.SetFloats(0, 0, -1.0f, 16.0f, 9.0f, 0.0f);
        EXPECT_FALSE(Processors::CSqrtInPlace().Process(frame.Get()));
        EXPECT_TRUE(std::isnan(frame.GetFloat(0, 0, 0)));
        EXPECT_EQ(frame.GetFloat(0, 0, 1), 4.0f);
        EXPECT_EQ(frame.GetFloat(1, 0, 0), 2.0f);

        const float floor[4] = {0.1f, 0.1f, 0.1f, 0.0f};
        frame.SetFloats(0, 0, 0.1f, 0.05f, 0.2f, -0.5f);
        frame.SetFloats(1, 0, kNaN, -3.0f, 0.1f, 0.0f);
        ASSERT_TRUE(Processors::CThresholdLTInPlace().Process(frame.Get(), floor));
        const float floored[8] = {0.1f, 0.1f, 0.2f, 0.0f, kNaN, 0.1f, 0.1f, 0.0f};
        for (int i = 0; i < 8; ++i) {
            const float value = frame.GetFloat(i / 4, 0, i % 4);
            if (std::isnan(floored[i]))
                EXPECT_TRUE(std::isnan(value));
            else
                EXPECT_EQ(value, floored[i]) << i;
        }
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
        if (c.span >= 0)
            frame->m_nByteSpan = c.span;
        const std::vector<uint8_t> before = frame.Memory();
        EXPECT_FALSE(Processors::CSqrInPlace().Process(frame.Get())) << c.what;
        EXPECT_FALSE(Processors::CSqrtInPlace().Process(frame.Get())) << c.what;
        EXPECT_FALSE(Processors::CThresholdLTInPlace().Process(frame.Get(), floor)) << c.what;
        EXPECT_EQ(frame.Memory(), before) << c.what;
    }
    CFrame empty;
    empty.m_pfPixelFormat = pfVideoSampleFloat;
    EXPECT_FALSE(Processors::CSqrInPlace().Process(&empty));
    EXPECT_FALSE(Processors::CSqrtInPlace().Process(nullptr));
}

} // namespace
