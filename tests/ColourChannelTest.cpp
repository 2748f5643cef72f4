#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>

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

TEST_SUITE_AT_EACH_VARIANT(ColourAndChannels);

const float kByteToFloat = 1.0f / 255.0f;
const float kNaN = std::numeric_limits<float>::quiet_NaN();
const unsigned int kReversed[4] = {3, 2, 1, 0};

// Sample s of each top-left pixel of dst is sample from[s] of the same pixel of src.
void ExpectSamplesFrom(const TestFrame& dst, const TestFrame& src, int width, int height, const unsigned int from[4])
{
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int s = 0; s < 4; ++s)
                ASSERT_EQ(dst.Sample(x, y, s), src.Sample(x, y, from[s])) << x << "," << y << " sample " << s;
}

// The alpha of an alpha-first float frame at (x, y) was never written.
bool AlphaUntouched(TestFrame& frame, int x, int y)
{
    const uint8_t* alpha = &frame.Byte(x, y, 0);
    return std::count(alpha, alpha + 4, TestFrame::kSentinel) == 4;
}

// Floats become bytes clamped and rounded, not-a-number as black; bytes become floats by 1/255;
// between the two records of one sample type the samples are reversed. An empty destination is
// nothing to do.
TEST_P(ColourAndChannels, ConvertsInTheirOwnOrReversedOrderOverTheCommonArea)
{
    const float floats[] = {1.0f, 0.999f, 0.5f, 0.0f, 1.5f, -0.1f, 0.0019f, 0.002f, kNaN, 0.998f, 0.25f, 2.0f};
    const int bytes[] = {255, 255, 128, 0, 255, 0, 0, 1, 0, 254, 64, 255};
    // Formats 0 and 1 are bytes, 3 and 4 floats; 0 and 3 blue first, 1 and 4 alpha first.
    const struct {
        int from, to;
        bool reversed;
    } cases[] = {{0, 3, false}, {1, 4, false}, {0, 4, true}, {3, 0, false}, {4, 1, false},
                 {4, 0, true},  {0, 1, true},  {1, 0, true}, {3, 4, true},  {4, 3, true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.from << " to " << c.to);
        TestFrame src(static_cast<PixelFormat>(c.from), 4, 1), dst(static_cast<PixelFormat>(c.to), 3, 2),
            empty(static_cast<PixelFormat>(c.to), 0, 3);
        src.FillPattern();
        for (int i = 0; i < 12; ++i)
            src.SetSample(i / 4, 0, i % 4, src.Floats() ? floats[i] : bytes[i]);
        const std::vector<uint8_t> before = dst.Memory();
        ASSERT_TRUE(Processors::CColorSpaceConverter().Process(src.Get(), dst.Get()));
        for (int i = 0; i < 12; ++i) {
            const double expected = !dst.Floats() ? bytes[i] : src.Floats() ? floats[i] : bytes[i] * kByteToFloat;
            const double got = dst.Sample(i / 4, 0, c.reversed ? 3 - i % 4 : i % 4);
            EXPECT_TRUE(got == expected || (std::isnan(got) && std::isnan(expected))) << got << " for " << expected;
        }
        dst.ExpectUntouchedOutside(before, 3, 1);
        EXPECT_TRUE(Processors::CColorSpaceConverter().Process(src.Get(), empty.Get()));
    }
}

TEST_P(ColourAndChannels, StudioRangeYCbCrOfGreyAndBack)
{
    for (float grey : {0.0f, 0.2f, 0.5f, 1.0f}) {
        SCOPED_TRACE(testing::Message() << "grey " << grey);
        TestFrame rgb(pfVideoSampleSwappedFloat, 2, 2), ycc(pfVideoSampleSwappedFloat, 2, 2),
            back(pfVideoSampleSwappedFloat, 2, 2);
        for (int i = 0; i < 4; ++i)
            rgb.SetSamples(i % 2, i / 2, {0.75f, grey, grey, grey});
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

TEST_P(ColourAndChannels, MatrixOperationsTakeOnlyAlphaFirstFloats)
{
    float twist[3][4] = {{0, 0, 1, 0.5f}, {0, 2, 0, 0}, {1, 1, 1, -1}};
    float constants[3] = {2.0f, -1.0f, 0.5f};
    TestFrame src(pfVideoSampleSwappedFloat, 3, 2), original(pfVideoSampleSwappedFloat, 3, 2),
        dst(pfVideoSampleSwappedFloat, 2, 3);
    src.FillPattern();
    original.FillPattern();
    Processors::CColorSpaceConverter converter;
    const std::vector<uint8_t> dstBefore = dst.Memory(), srcBefore = src.Memory();
    // Back and forth between frames of other spans (the in-place forms go with the round trip):
    // multiplied, twisted, added.
    ASSERT_TRUE(converter.ProcessMulC32f(*src, *dst, constants) && converter.ProcessColorMatrix32f(*dst, *src, twist) &&
                converter.ProcessAddC32f(*src, *dst, constants));
    dst.ExpectUntouchedOutside(dstBefore, 2, 2);
    src.ExpectUntouchedOutside(srcBefore, 2, 2);
    for (int i = 0; i < 4; ++i) {
        const int x = i % 2, y = i / 2;
        const float r = original.GetFloat(x, y, 1), g = original.GetFloat(x, y, 2), b = original.GetFloat(x, y, 3);
        EXPECT_TRUE(AlphaUntouched(dst, x, y)) << "alpha is never written";
        EXPECT_EQ(dst.GetFloat(x, y, 1), (b * 0.5f + 0.5f) + 2.0f);
        EXPECT_EQ(dst.GetFloat(x, y, 2), 2 * (g * -1.0f) + -1.0f);
        EXPECT_EQ(dst.GetFloat(x, y, 3), (((r * 2.0f + -1.0f) + g * -1.0f) + b * 0.5f) + 0.5f);
    }

    // Any other format, an empty area or missing constants: false, and nothing written.
    TestFrame bgra(pfVideoSampleFloat, 2, 2), target(pfVideoSampleSwappedFloat, 2, 2),
        empty(pfVideoSampleSwappedFloat, 2, 0);
    target.ExpectRefused([&] {
        Processors::CColorSpaceConverter& c = converter;
        return c.ProcessColorMatrix32f(*bgra, *target, twist) || c.ProcessMulC32f(*bgra, *target, constants) ||
               c.ProcessAddC32f(*target, *bgra, constants) || c.ProcessAddC32f(*empty, *target, constants) ||
               c.ProcessMulC32f(*src, *target, nullptr) || !c.ARGB32ToAppleR4FL(*bgra, *target) ||
               !c.AppleR4FLToARGB32(*bgra, *target);
    });
}

// Each entry of an order names the old position its position takes.
// In place: reversed, or permuted by an order whose entries each name the old position their own
// takes. Reversal into another frame goes with the converter's cases.
TEST_P(ColourAndChannels, ReversesAndPermutesInPlace)
{
    const unsigned int orders[][4] = {{3, 2, 1, 0}, {0, 0, 0, 0}, {1, 2, 3, 0}, {2, 2, 3, 3}};
    for (PixelFormat format : kFourSampleFormats) {
        SCOPED_TRACE(testing::Message() << "format " << format);
        TestFrame original(format, 3, 2), frame(format, 3, 2);
        original.FillPattern();
        frame.FillPattern();
        ASSERT_TRUE(Processors::CChannelReverse().Process(frame.Get(), frame.Get()));
        ExpectSamplesFrom(frame, original, 3, 2, kReversed);
        for (const auto& order : orders) {
            SCOPED_TRACE(testing::Message() << "order " << order[0] << order[1] << order[2] << order[3]);
            frame.FillPattern();
            unsigned int copy[4] = {order[0], order[1], order[2], order[3]};
            ASSERT_TRUE(Processors::CChannelReverse().Process(frame.Get(), copy));
            ExpectSamplesFrom(frame, original, 3, 2, order);
        }
    }
}

TEST_P(ColourAndChannels, MovesOneChannelBetweenEveryPairOfDepths)
{
    const struct {
        PixelFormat srcFormat, dstFormat;
        int srcDepth, dstDepth, srcPlane, dstPlane;
    } cases[] = {
        {pfVideoSampleFloat, pfMonoFloat, 16, 4, 2, 3},       {pfMonoFloat, pfVideoSampleSwappedFloat, 4, 16, 0, 3},
        {pfVideoSampleSwappedFloat, pfVideoSampleFloat, 16, 16, 0, 1}, {pfVideoSample, pfMono8, 4, 1, 3, 0},
        {pfMono8, pfVideoSampleSwapped, 1, 4, 0, 2},          {pfVideoSampleSwapped, pfVideoSample, 4, 4, 1, 0},
        {static_cast<PixelFormat>(2), pfVideoSample, 1, 4, 0, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.srcFormat << " depth " << c.srcDepth << " to depth " << c.dstDepth);
        TestFrame src(c.srcFormat, 5, 2, c.srcDepth), dst(c.dstFormat, 3, 4, c.dstDepth),
            expected(c.dstFormat, 3, 4, c.dstDepth);
        src.FillPattern();
        dst.FillPattern();
        expected.FillPattern();
        ASSERT_TRUE(Processors::CCopyPlane().Process(src.Get(), dst.Get(), c.srcPlane, c.dstPlane));
        // A frame of one sample a pixel has only plane 0, whatever plane is asked.
        const int one = src.Floats() ? 4 : 1;
        for (int i = 0; i < 6; ++i)
            expected.SetSample(i % 3, i / 3, c.dstDepth == one ? 0 : c.dstPlane,
                               src.Sample(i % 3, i / 3, c.srcDepth == one ? 0 : c.srcPlane));
        EXPECT_EQ(dst.Memory(), expected.Memory());
    }
}

// A colour word fills every pixel in the format's own order, floats as bytes over 255; one
// channel takes the value's low byte. The rest of each pixel and the row padding stay.
TEST_P(ColourAndChannels, FillsTheColourWordOrOneChannelInEachFormatsOrder)
{
    const float a = 128 * kByteToFloat;
    auto colour = [](unsigned int word) { return [=](CFrame* f) { return Processors::CSetColor().Process(f, word); }; };
    auto channel = [](unsigned int c, unsigned int value) {
        return [=](CFrame* f) { return Processors::CSetChannelColor().Process(f, c, value); };
    };
    const struct {
        PixelFormat format;
        int depth, first;   // the samples from `first` on are `expected`
        std::function<bool(CFrame*)> fill;
        std::vector<double> expected;
    } cases[] = {
        {pfVideoSample, 4, 0, colour(0x80FF0000u), {0, 0, 255, 128}}, {pfMono8, 1, 0, colour(0x12345678u), {0x78}},
        {pfVideoSampleSwapped, 4, 0, colour(0x80FF0000u), {128, 255, 0, 0}},
        {static_cast<PixelFormat>(2), 1, 0, colour(0x12345678u), {0x78}}, {pfMonoFloat, 4, 0, colour(0x123456FFu), {1}},
        {pfVideoSampleFloat, 16, 0, colour(0x80FF0000u), {0, 0, 1, a}},
        {pfMonoFloat, 16, 0, colour(0x80FF0000u), {a, 1, 0, 0}},
        {pfVideoSampleSwappedFloat, 16, 0, colour(0x80FF0000u), {a, 1, 0, 0}},
        {pfVideoSampleSwappedFloat, 4, 0, colour(0xFFFFFF33u), {0x33 * kByteToFloat}},
        {pfVideoSample, 4, 1, channel(1, 0x1FF), {255}}, {pfVideoSampleSwapped, 4, 0, channel(0, 0x100), {0}},
        {pfVideoSampleFloat, 16, 3, channel(3, 51), {51 * kByteToFloat}},
        {pfVideoSampleSwappedFloat, 16, 0, channel(0, 0xFFFFFF80u), {a}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << (&c - cases) << ", format " << c.format);
        TestFrame frame(c.format, 3, 2, c.depth), expected(c.format, 3, 2, c.depth);
        frame.FillPattern();
        expected.FillPattern();
        for (int i = 0; i < 6; ++i)
            for (size_t s = 0; s < c.expected.size(); ++s)
                expected.SetSample(i % 3, i / 3, c.first + static_cast<int>(s), c.expected[s]);
        ASSERT_TRUE(c.fill(frame.Get()));
        EXPECT_EQ(frame.Memory(), expected.Memory());
    }
}

// The two pixels of a 2 x 1 float frame are these eight samples, NaN matching NaN.
void ExpectFloats(TestFrame& frame, const float (&expected)[8])
{
    for (int i = 0; i < 8; ++i) {
        const float value = frame.GetFloat(i / 4, 0, i % 4);
        EXPECT_TRUE(std::isnan(expected[i]) ? std::isnan(value) : value == expected[i]) << i << ": " << value;
    }
}

TEST_P(ColourAndChannels, SquareRootAndFloorRunOverAllFourSamples)
{
    const float floor[4] = {0.1f, 0.1f, 0.1f, 0.0f};
    for (PixelFormat format : {pfVideoSampleFloat, pfVideoSampleSwappedFloat}) {
        SCOPED_TRACE(testing::Message() << "format " << format);
        TestFrame frame(format, 2, 1);
        frame.SetSamples(0, 0, {3.0f, -2.0f, 0.5f, 0.0f});
        frame.SetSamples(1, 0, {4.0f, 0.25f, kNaN, 1.0f});
        ASSERT_TRUE(Processors::CSqrInPlace().Process(frame.Get()));
        ExpectFloats(frame, {9.0f, 4.0f, 0.25f, 0.0f, 16.0f, 0.0625f, kNaN, 1.0f});
        // A negative sample: the whole picture is still done, but the answer is false.
        frame.SetSamples(0, 0, {-1.0f, 16.0f, 9.0f, 0.0f});
        EXPECT_FALSE(Processors::CSqrtInPlace().Process(frame.Get()));
        ExpectFloats(frame, {kNaN, 4.0f, 3.0f, 0.0f, 4.0f, 0.25f, kNaN, 1.0f});
        frame.SetSamples(0, 0, {0.1f, 0.05f, 0.2f, -0.5f});
        frame.SetSamples(1, 0, {kNaN, -3.0f, 0.1f, 0.0f});
        ASSERT_TRUE(Processors::CThresholdLTInPlace().Process(frame.Get(), floor));
        ExpectFloats(frame, {0.1f, 0.1f, 0.2f, 0.0f, kNaN, 0.1f, 0.1f, 0.0f});
        EXPECT_FALSE(Processors::CThresholdLTInPlace().Process(frame.Get(), nullptr));
    }
}

// Each processor refuses the formats, depths, spans and arguments it has no path for, and leaves
// the frame as it was.
TEST_P(ColourAndChannels, NoPathLeavesTheFrameAlone)
{
    using namespace Processors;
    // A patterned two-by-two source frame, kept alive by the call made with it.
    auto source = [](int format, int depth = 0) {
        auto frame = std::make_shared<TestFrame>(static_cast<PixelFormat>(format), 2, 2, depth);
        frame->FillPattern();
        return frame;
    };
    auto from = [&](int format) {
        return [src = source(format)](CFrame* dst) { return CColorSpaceConverter().Process(src->Get(), dst); };
    };
    auto copy = [&](int format, int depth, int srcPlane, int dstPlane) {
        return [src = source(format, depth), srcPlane, dstPlane](CFrame* dst) {
            return CCopyPlane().Process(src->Get(), dst, srcPlane, dstPlane);
        };
    };
    auto order = [](std::array<unsigned int, 4> o) {
        return [=](CFrame* frame) mutable { return CChannelReverse().Process(frame, o.data()); };
    };
    auto fill = [](CFrame* frame) { return CSetColor().Process(frame, 0xFFFFFFFFu); };
    auto channel = [](unsigned int c) { return [=](CFrame* f) { return CSetChannelColor().Process(f, c, 9); }; };
    auto arithmetic = [](CFrame* frame) {
        const float floor[4] = {1, 1, 1, 1};
        return CSqrInPlace().Process(frame) || CSqrtInPlace().Process(frame) ||
               CThresholdLTInPlace().Process(frame, floor);
    };
    struct Case {
        int format, depth;
        std::function<bool(CFrame*)> call;
        int width = 3, height = 2, span = -1;   // span -1 keeps the frame's own
    };
    const Case cases[] = {
        // Conversions between formats without a path, and rows too short for four-float pixels.
        {3, 0, from(1)}, {1, 0, from(3)}, {0, 0, from(0)}, {3, 0, from(3)}, {4, 0, from(4)}, {6, 0, from(0)},
        {3, 0, from(6)}, {4, 0, from(7)}, {3, 0, from(2)}, {5, 0, from(0)}, {7, 0, from(7)}, {3, 4, from(0)},
        {3, 0, [](CFrame* dst) { return CColorSpaceConverter().Process(nullptr, dst); }},
        // Orders beyond the record, formats without four samples, no rows, frames missing.
        {3, 0, order({0, 1, 2, 4})}, {4, 0, order({4, 0, 0, 0})}, {0, 0, order({0, 1, 2, 4})},
        {1, 0, order({0xFFFFFFFFu, 1, 2, 3})}, {6, 0, order({0, 1, 2, 3})}, {7, 0, order({0, 1, 2, 3})},
        {3, 0, order({0, 1, 2, 3}), 3, 0},
        {0, 0, [](CFrame* dst) { return CChannelReverse().Process(nullptr, dst); }},
        {0, 0, [](CFrame* dst) { return CChannelReverse().Process(dst, static_cast<CFrame*>(nullptr)); }},
        {0, 0, [src = source(6)](CFrame* dst) { return CChannelReverse().Process(src->Get(), dst); }},
        // Plane copies between depths without a primitive, and planes beyond the record.
        {0, 1, copy(3, 16, 0, 0)}, {0, 4, copy(7, 4, 0, 0)}, {0, 16, copy(0, 4, 0, 0)}, {0, 1, copy(1, 1, 0, 0)},
        {0, 4, copy(2, 4, 0, 0)}, {0, 16, copy(5, 16, 0, 0)}, {0, 4, copy(0, 4, 4, 0)}, {0, 16, copy(4, 16, 0, -1)},
        // Fills of formats and depths without one, a span that can't hold a row, channels beyond the record.
        {2, 4, fill}, {5, 16, fill}, {6, 4, fill}, {3, 8, fill}, {7, 8, fill}, {0, 4, fill, 3, 2, 8},
        {0, 0, [](CFrame*) { return CSetColor().Process(nullptr, 0); }},
        {7, 4, channel(0)}, {6, 1, channel(0)}, {0, 16, channel(0)}, {3, 4, channel(0)}, {2, 4, channel(0)},
        {0, 4, channel(4)}, {4, 16, channel(7)},
        // Arithmetic on anything but whole four-float frames.
        {0, 4, arithmetic}, {7, 4, arithmetic}, {2, 16, arithmetic}, {3, 16, arithmetic, 0, 2},
        {4, 16, arithmetic, 2, 0}, {3, 16, arithmetic, 2, 2, 0}, {4, 16, arithmetic, 2, 2, 24},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << (&c - cases) << ", format " << c.format << " depth " << c.depth);
        TestFrame frame(static_cast<PixelFormat>(c.format), c.width, c.height, c.depth);
        frame.FillPattern();
        if (c.span >= 0)
            frame->m_nByteSpan = c.span;
        frame.ExpectRefused([&] { return c.call(frame.Get()); });
    }
    CFrame empty;
    empty.m_pfPixelFormat = pfVideoSampleFloat;
    EXPECT_FALSE(CSqrInPlace().Process(&empty));
    EXPECT_FALSE(CSqrtInPlace().Process(nullptr));
}

} // namespace
