#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "../Common/AlphaBlend.h"
#include "../Common/AlphaFade.h"
#include "../Common/AlphaPremul.h"
#include "../Common/InvertChannel.h"
#include "../platform/UserInterface.h"
#include "AtEachVariant.h"
#include "ProcessorTestFrame.h"

namespace {

TEST_SUITE_AT_EACH_VARIANT(AlphaBlend);
TEST_SUITE_AT_EACH_VARIANT(AlphaPremul);

using Bytes4 = std::vector<int>;
using Floats4 = std::vector<float>;

const PixelFormat kFourSampleFormats[] = {pfVideoSample, pfVideoSampleSwapped, pfVideoSampleFloat,
                                          pfVideoSampleSwappedFloat};

// Where a four-sample record keeps sample bgraIndex (0 b, 1 g, 2 r, 3 a).
int RecordIndex(PixelFormat format, int bgraIndex)
{
    return format == pfVideoSample || format == pfVideoSampleFloat ? bgraIndex : 3 - bgraIndex;
}

void SetBgra(TestFrame& frame, const Floats4& bgra)
{
    for (int s = 0; s < 4; ++s)
        frame.SetFloat(0, 0, RecordIndex(frame->m_pfPixelFormat, s), bgra[s]);
}

Floats4 GetBgra(TestFrame& frame)
{
    Floats4 bgra(4);
    for (int s = 0; s < 4; ++s)
        bgra[s] = frame.GetFloat(0, 0, RecordIndex(frame->m_pfPixelFormat, s));
    return bgra;
}

// One pixel of each frame, samples in record order.
struct ByteBlendCase {
    PixelFormat format;
    bool premultiplied;
    Bytes4 fore, back, expected;
};

TEST_P(AlphaBlend, BytePathsRoundAndSaturateByTheirOwnRules)
{
    const ByteBlendCase cases[] = {
        // VideoSampleSwapped: A, R, G, B; truncating division by 255.
        {pfVideoSampleSwapped, true, {255, 10, 20, 30}, {200, 100, 50, 25}, {255, 10, 20, 30}},
        {pfVideoSampleSwapped, true, {0, 200, 0, 1}, {200, 200, 254, 255}, {200, 255, 254, 255}},
        {pfVideoSampleSwapped, true, {128, 100, 0, 0}, {255, 200, 1, 255}, {255, 199, 0, 127}},
        {pfVideoSampleSwapped, false, {255, 10, 20, 30}, {200, 100, 50, 25}, {255, 10, 20, 30}},
        {pfVideoSampleSwapped, false, {0, 200, 200, 200}, {255, 77, 0, 255}, {255, 77, 0, 255}},
        {pfVideoSampleSwapped, false, {100, 200, 0, 255}, {128, 50, 255, 0}, {177, 93, 77, 100}},
        // VideoSample: B, G, R, A through the primitive; over a = 255 gives the foreground, and
        // the premultiplied rule saturates where the plain one weighs by alpha.
        {pfVideoSample, false, {10, 20, 30, 255}, {100, 50, 25, 255}, {10, 20, 30, 255}},
        {pfVideoSample, true, {200, 0, 1, 0}, {200, 254, 255, 255}, {255, 254, 255, 255}},
        {pfVideoSample, false, {200, 0, 1, 0}, {200, 254, 255, 255}, {200, 254, 255, 255}},
        {pfVideoSample, false, {200, 0, 1, 0}, {200, 254, 255, 128}, {100, 127, 128, 128}},
    };
    for (const ByteBlendCase& c : cases) {
        SCOPED_TRACE(testing::Message() << "format " << c.format << " premultiplied " << c.premultiplied << " fore "
                                        << c.fore[0] << "," << c.fore[1] << "," << c.fore[2] << "," << c.fore[3]);
        TestFrame in1(c.format, 1, 1), in2(c.format, 1, 1), out(c.format, 1, 1);
        in1.SetBytes(0, 0, c.fore[0], c.fore[1], c.fore[2], c.fore[3]);
        in2.SetBytes(0, 0, c.back[0], c.back[1], c.back[2], c.back[3]);
        ASSERT_TRUE(Processors::CAlphaBlend().Process(in1.Get(), in2.Get(), out.Get(), c.premultiplied));
        EXPECT_EQ((Bytes4{out.Byte(0, 0, 0), out.Byte(0, 0, 1), out.Byte(0, 0, 2), out.Byte(0, 0, 3)}), c.expected);
    }
}

// Colour samples and alpha, placed by each float format where its record keeps them.
struct FloatBlendCase {
    bool premultiplied;
    Floats4 fore, back, expected;   // b, g, r, a
};

TEST_P(AlphaBlend, FloatPathsWeighWithoutClamping)
{
    const FloatBlendCase cases[] = {
        {true, {0.25f, 0.5f, 0.75f, 0.5f}, {1.0f, 0.5f, 0.25f, 1.0f}, {0.75f, 0.75f, 0.875f, 1.0f}},
        {true, {0.25f, 0.5f, 0.75f, 1.0f}, {1.0f, 0.5f, 0.25f, 1.0f}, {0.25f, 0.5f, 0.75f, 1.0f}},
        {true, {2.0f, -1.0f, 0.0f, 0.5f}, {4.0f, 0.0f, 0.5f, 3.0f}, {4.0f, -1.0f, 0.25f, 2.0f}},
        {false, {1.0f, 0.5f, 0.0f, 0.5f}, {1.0f, 1.0f, 1.0f, 0.5f}, {0.75f, 0.5f, 0.25f, 0.75f}},
        {false, {0.25f, 0.5f, 0.75f, 1.0f}, {1.0f, 1.0f, 1.0f, 1.0f}, {0.25f, 0.5f, 0.75f, 1.0f}},
        {false, {3.0f, 0.0f, 0.0f, 0.0f}, {2.0f, 8.0f, 0.5f, 2.0f}, {4.0f, 16.0f, 1.0f, 2.0f}},
    };
    for (PixelFormat format : {pfVideoSampleFloat, pfVideoSampleSwappedFloat})
        for (const FloatBlendCase& c : cases) {
            SCOPED_TRACE(testing::Message() << "format " << format << " premultiplied " << c.premultiplied
                                            << " fore alpha " << c.fore[3] << " back alpha " << c.back[3]);
            TestFrame in1(format, 1, 1), in2(format, 1, 1), out(format, 1, 1);
            SetBgra(in1, c.fore);
            SetBgra(in2, c.back);
            ASSERT_TRUE(Processors::CAlphaBlend().Process(in1.Get(), in2.Get(), out.Get(), c.premultiplied));
            EXPECT_EQ(GetBgra(out), c.expected);
        }
}

// Blend, premultiply and fade write only the top-left area their frames share, in every format they cover.
TEST_P(AlphaBlend, EachAlphaProcessorWritesOnlyTheCommonArea)
{
    for (PixelFormat format : kFourSampleFormats) {
        SCOPED_TRACE(testing::Message() << "format " << format);
        TestFrame in1(format, 5, 3), in2(format, 3, 6), blended(format, 6, 5), premul(format, 6, 2), faded(format, 2, 4);
        in1.FillPattern();
        in2.FillPattern();
        const std::vector<uint8_t> blendedBefore = blended.Memory(), premulBefore = premul.Memory(),
                                   fadedBefore = faded.Memory();
        ASSERT_TRUE(Processors::CAlphaBlend().Process(in1.Get(), in2.Get(), blended.Get(), true));
        blended.ExpectUntouchedOutside(blendedBefore, 3, 3);
        EXPECT_NE(blended.Memory(), blendedBefore);
        ASSERT_TRUE(Processors::CAlphaPremul().Process(*in2, *premul));
        premul.ExpectUntouchedOutside(premulBefore, 3, 2);
        // Premultiplying carries alpha over as it was.
        if (format == pfVideoSample || format == pfVideoSampleSwapped)
            EXPECT_EQ(premul.Byte(2, 1, RecordIndex(format, 3)), in2.Byte(2, 1, RecordIndex(format, 3)));
        else
            EXPECT_EQ(premul.GetFloat(2, 1, RecordIndex(format, 3)), in2.GetFloat(2, 1, RecordIndex(format, 3)));
        ASSERT_TRUE(Processors::CAlphaFade().Process(in1.Get(), faded.Get(), 256));
        faded.ExpectUntouchedOutside(fadedBefore, 2, 3);
    }
}

// A record with a negative span starts at its top row; the blend walks it from its lowest row, as
// it would a CFrame made over that record.
TEST_P(AlphaBlend, RecordsWithNegativeSpansAreWalkedFromTheirLowestRow)
{
    for (PixelFormat format : kFourSampleFormats) {
        TestFrame in1(format, 3, 2, 0, 0), in2(format, 3, 2, 0, 0), out(format, 3, 2, 0, 0);
        in1.FillPattern();
        in2.FillPattern();
        for (int i = 0; i < 6; ++i) {
            if (in1->m_nDepth == 4)
                in1.Byte(i % 3, i / 3, RecordIndex(format, 3)) = 255;
            else
                in1.SetFloat(i % 3, i / 3, RecordIndex(format, 3), 1.0f);
        }
        FrameParams outParams = out->GetFrameParams();
        outParams.pBuffer += outParams.nByteSpan;   // the top row of a bottom-up picture
        outParams.nByteSpan = -outParams.nByteSpan;
        ASSERT_TRUE(Processors::CAlphaBlend().Process(in1->GetFrameParams(), in2->GetFrameParams(), outParams, true))
            << format;
        // An opaque foreground comes through as it is, row for row in memory.
        const size_t pictureBytes = static_cast<size_t>(in1->m_nByteSpan) * 2;
        EXPECT_TRUE(std::equal(in1.Memory().begin(), in1.Memory().begin() + pictureBytes, out.Memory().begin()))
            << format;
    }
}

TEST_P(AlphaBlend, ZeroSizedAreaSucceedsExceptThroughThePrimitive)
{
    const struct {
        PixelFormat format;
        bool expected;
    } cases[] = {{pfVideoSampleSwapped, true}, {pfVideoSampleFloat, true}, {pfVideoSampleSwappedFloat, true},
                 {pfVideoSample, false}};
    for (const auto& c : cases) {
        TestFrame in1(c.format, 4, 4), in2(c.format, 0, 4), out(c.format, 4, 4), untouched(c.format, 4, 4);
        EXPECT_EQ(Processors::CAlphaBlend().Process(in1.Get(), in2.Get(), out.Get(), false), c.expected) << c.format;
        EXPECT_EQ(out.Memory(), untouched.Memory()) << c.format;
    }
}

class AlphaBlendRefusal : public ::testing::Test {
protected:
    void SetUp() override { m_pPrevious = Platform::SetUserInterface(&m_ui); }
    void TearDown() override { Platform::SetUserInterface(m_pPrevious); }
    Platform::HeadlessUserInterface m_ui;
    Platform::IUserInterface* m_pPrevious = nullptr;
};

TEST_F(AlphaBlendRefusal, FormatsWithoutAPathAndFramesThatLieLeaveOutAlone)
{
    struct Case {
        const char* what;
        int format;
        int depth1, depth2, depthOut;
        int spanShrink;   // bytes taken off in2's span, below its row
    };
    const Case cases[] = {
        {"format 2", 2, 4, 4, 4, 0},      {"format 5", 5, 4, 4, 4, 0},     {"format 6", 6, 4, 4, 4, 0},
        {"format 7", 7, 4, 4, 4, 0},      {"negative in1 depth", 0, -4, 4, 4, 0},
        {"negative out depth", 3, 16, 16, -16, 0}, {"span below the row", 1, 4, 4, 4, 16},
        {"float path over byte-deep rows", 4, 16, 4, 16, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const PixelFormat format = static_cast<PixelFormat>(c.format);
        TestFrame in1(format, 4, 3, std::abs(c.depth1)), in2(format, 4, 3, std::abs(c.depth2)),
            out(format, 4, 3, std::abs(c.depthOut));
        in1.FillPattern();
        in2.FillPattern();
        in1->m_nDepth = c.depth1;
        in2->m_nDepth = c.depth2;
        out->m_nDepth = c.depthOut;
        in2->m_nByteSpan -= c.spanShrink;
        out.ExpectRefused([&] { return Processors::CAlphaBlend().Process(in1.Get(), in2.Get(), out.Get(), false); });
    }
    EXPECT_TRUE(m_ui.Alerts().empty());
    TestFrame in1(pfVideoSample, 2, 2), out(pfVideoSample, 2, 2);
    EXPECT_FALSE(Processors::CAlphaBlend().Process(nullptr, in1.Get(), out.Get(), false));
    EXPECT_FALSE(Processors::CAlphaBlend().Process(in1.Get(), in1.Get(), nullptr, true));
}

TEST_F(AlphaBlendRefusal, ZeroDepthIsReportedByItsExpressionThenRefused)
{
    const char* const expressions[] = {"frameIn1.m_nDepth", "frameIn2.m_nDepth", "frameOut.m_nDepth"};
    for (int which = 0; which < 3; ++which) {
        m_ui.ClearAlerts();
        TestFrame in1(pfVideoSample, 2, 2), in2(pfVideoSample, 2, 2), out(pfVideoSample, 2, 2);
        CFrame* frames[] = {in1.Get(), in2.Get(), out.Get()};
        frames[which]->m_nDepth = 0;
        const std::vector<uint8_t> before = out.Memory();
        testing::internal::CaptureStdout();
        EXPECT_FALSE(Processors::CAlphaBlend().Process(in1.Get(), in2.Get(), out.Get(), false));
        const std::string printed = testing::internal::GetCapturedStdout();
        EXPECT_EQ(out.Memory(), before);
        EXPECT_NE(printed.find(std::string("Assertion failed: ") + expressions[which] + "; in "), std::string::npos)
            << printed;
        EXPECT_NE(printed.find("(Processor"), std::string::npos) << printed;
        EXPECT_EQ(m_ui.Alerts().size(), 1u) << expressions[which];
    }
}

TEST_P(AlphaPremul, MultipliesColourByAlphaInEachPath)
{
    struct Case {
        PixelFormat format;
        Bytes4 in, expected;
    };
    const Case cases[] = {
        {pfVideoSampleSwapped, {255, 0, 1, 255}, {255, 0, 1, 255}},
        {pfVideoSampleSwapped, {0, 255, 128, 1}, {0, 0, 0, 0}},
        {pfVideoSampleSwapped, {128, 255, 2, 254}, {128, 128, 1, 127}},
        {pfVideoSampleSwapped, {200, 100, 254, 1}, {200, 78, 199, 0}},
        {pfVideoSample, {1, 255, 254, 255}, {1, 255, 254, 255}},
        {pfVideoSample, {255, 128, 1, 0}, {0, 0, 0, 0}},
        {pfVideoSample, {255, 2, 254, 128}, {128, 1, 127, 128}},
        {pfVideoSample, {100, 254, 1, 200}, {78, 199, 0, 200}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "format " << c.format << " in " << c.in[0] << "," << c.in[1] << ","
                                        << c.in[2] << "," << c.in[3]);
        TestFrame frame(c.format, 1, 1);
        frame.SetBytes(0, 0, c.in[0], c.in[1], c.in[2], c.in[3]);
        ASSERT_TRUE(Processors::CAlphaPremul().Process(*frame, *frame));
        EXPECT_EQ((Bytes4{frame.Byte(0, 0, 0), frame.Byte(0, 0, 1), frame.Byte(0, 0, 2), frame.Byte(0, 0, 3)}), c.expected);
    }
    // Floats are neither clamped nor checked.
    const Floats4 in[] = {{0.5f, 2.0f, -1.0f, 0.5f}, {1.0f, -0.25f, 0.5f, 4.0f}};
    const Floats4 expected[] = {{0.25f, 1.0f, -0.5f, 0.5f}, {4.0f, -1.0f, 2.0f, 4.0f}};
    for (PixelFormat format : {pfVideoSampleFloat, pfVideoSampleSwappedFloat})
        for (int i = 0; i < 2; ++i) {
            TestFrame frame(format, 1, 1);
            SetBgra(frame, in[i]);
            ASSERT_TRUE(Processors::CAlphaPremul().Process(*frame, *frame));
            EXPECT_EQ(GetBgra(frame), expected[i]) << "format " << format << " case " << i;
        }
}

TEST_P(AlphaPremul, RefusesFormatsWithoutAPathAndAcceptsEmptyAreas)
{
    for (int format : {2, 5, 6, 7}) {
        TestFrame src(static_cast<PixelFormat>(format), 2, 2, 4), dst(pfVideoSample, 2, 2);
        src.FillPattern();
        SCOPED_TRACE(testing::Message() << "format " << format);
        dst.ExpectRefused([&] { return Processors::CAlphaPremul().Process(*src, *dst); });
    }
    for (PixelFormat format : {pfVideoSampleSwapped, pfVideoSampleFloat, pfVideoSampleSwappedFloat}) {
        TestFrame src(format, 0, 2), dst(format, 2, 2);
        EXPECT_TRUE(Processors::CAlphaPremul().Process(*src, *dst)) << format;
    }
    TestFrame src(pfVideoSample, 0, 2), dst(pfVideoSample, 2, 2);
    EXPECT_FALSE(Processors::CAlphaPremul().Process(*src, *dst));
    // A destination whose span can't hold a row of the area.
    TestFrame wide(pfVideoSampleFloat, 4, 2), narrow(pfVideoSampleFloat, 4, 2);
    narrow->m_nByteSpan = 40;
    narrow.ExpectRefused([&] { return Processors::CAlphaPremul().Process(*wide, *narrow); });
}

TEST(AlphaFade, BytePathsScaleAlphaByLevelOver256)
{
    struct Case {
        PixelFormat format;
        int level;
        Bytes4 in, expected;
    };
    const Case cases[] = {
        {pfVideoSample, 256, {255, 100, 0, 255}, {254, 99, 0, 255}},
        {pfVideoSample, 255, {255, 100, 1, 255}, {253, 99, 0, 254}},
        {pfVideoSample, 512, {255, 100, 1, 200}, {254, 99, 0, 255}},
        {pfVideoSample, 128, {255, 254, 1, 128}, {63, 63, 0, 64}},
        {pfVideoSample, 0, {255, 254, 1, 255}, {0, 0, 0, 0}},
        {pfVideoSample, -300, {255, 254, 1, 255}, {0, 0, 0, 0}},
        {pfVideoSampleSwapped, 256, {255, 255, 100, 0}, {255, 254, 99, 0}},
        {pfVideoSampleSwapped, 255, {255, 255, 100, 1}, {254, 253, 99, 0}},
        // Any other four-byte format keeps its alpha at byte 3.
        {static_cast<PixelFormat>(2), 256, {255, 100, 0, 255}, {254, 99, 0, 255}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "format " << c.format << " level " << c.level << " alpha " << c.in[3]);
        TestFrame src(c.format, 1, 1), dst(c.format, 1, 1);
        src.SetBytes(0, 0, c.in[0], c.in[1], c.in[2], c.in[3]);
        ASSERT_TRUE(Processors::CAlphaFade().Process(src.Get(), dst.Get(), c.level));
        EXPECT_EQ((Bytes4{dst.Byte(0, 0, 0), dst.Byte(0, 0, 1), dst.Byte(0, 0, 2), dst.Byte(0, 0, 3)}), c.expected);
    }
}

TEST(AlphaFade, FloatPathsClampTheirInputAndScaleByLevelOver255)
{
    struct Case {
        int level;
        Floats4 in, expected;   // b, g, r, a
    };
    const Case cases[] = {
        {255, {0.5f, 0.25f, 1.0f, 0.5f}, {0.25f, 0.125f, 0.5f, 0.5f}},
        {255, {1.5f, -0.5f, 0.75f, 2.0f}, {1.0f, 0.0f, 0.75f, 1.0f}},
        {255, {0.5f, 0.5f, 0.5f, -1.0f}, {0.0f, 0.0f, 0.0f, 0.0f}},
        {0, {0.5f, 0.5f, 0.5f, 1.0f}, {0.0f, 0.0f, 0.0f, 0.0f}},
        {510, {0.5f, 1.0f, 0.0f, 0.25f}, {0.25f, 0.5f, 0.0f, 0.5f}},
    };
    for (PixelFormat format : {pfVideoSampleFloat, pfVideoSampleSwappedFloat})
        for (const Case& c : cases) {
            SCOPED_TRACE(testing::Message() << "format " << format << " level " << c.level << " alpha " << c.in[3]);
            TestFrame src(format, 1, 1), dst(format, 1, 1);
            SetBgra(src, c.in);
            ASSERT_TRUE(Processors::CAlphaFade().Process(src.Get(), dst.Get(), c.level));
            const Floats4 out = GetBgra(dst);
            for (int s = 0; s < 4; ++s)
                EXPECT_FLOAT_EQ(out[s], c.expected[s]) << "bgra sample " << s;
        }
}

TEST(AlphaFade, RefusesRowsItCannotWalk)
{
    // A one-byte-deep frame has no four-byte rows to walk.
    TestFrame mono(pfMono8, 8, 2), out(pfMono8, 8, 2);
    mono.FillPattern();
    out.ExpectRefused([&] { return Processors::CAlphaFade().Process(mono.Get(), out.Get(), 256); });
    EXPECT_FALSE(Processors::CAlphaFade().Process(nullptr, out.Get(), 256));
}

TEST(InvertChannel, InvertsOnePositionOfEveryPixelPaddingIncluded)
{
    struct Case {
        PixelFormat format;
        int depth;
        int channel;
        int invertedEvery;   // samples: every byte (1) or every fourth one (4)
        int first;           // the first inverted sample
    };
    const Case cases[] = {
        {pfVideoSample, 4, 2, 4, 2},         {pfVideoSampleSwapped, 4, 0, 4, 0},
        {static_cast<PixelFormat>(2), 4, 3, 4, 3}, {pfMono8, 1, 4, 1, 0},
        {static_cast<PixelFormat>(5), 1, -1, 1, 0},
    };
    for (const Case& c : cases) {
        TestFrame frame(c.format, 3, 2, c.depth, c.depth * 2);
        frame.FillPattern();
        frame.Byte(0, 0, c.first) = 0;
        frame.Byte(1, 0, c.first) = 255;
        frame.Byte(2, 1, c.first) = 1;
        const std::vector<uint8_t> before = frame.Memory();
        ASSERT_TRUE(Processors::CInvertChannel().Process(frame.Get(), c.channel)) << c.format;
        const size_t end = static_cast<size_t>(frame->m_nByteSpan) * frame->m_nHeight;
        for (size_t i = 0; i < before.size(); ++i) {
            const bool inverted = i < end && i % c.invertedEvery == static_cast<size_t>(c.first);
            ASSERT_EQ(frame.Memory()[i], inverted ? 255 - before[i] : before[i]) << "format " << c.format << " byte " << i;
        }
        ASSERT_TRUE(Processors::CInvertChannel().Process(frame.Get(), c.channel));
        EXPECT_EQ(frame.Memory(), before) << "twice restores, format " << c.format;
    }
}

TEST(InvertChannel, FloatChannelsBecomeOneMinusTheirValue)
{
    const float values[] = {0.25f, 1.5f, -1.0f, 0.0f, 1.0f};
    const struct {
        PixelFormat format;
        int channel;
    } cases[] = {{pfVideoSampleFloat, 3}, {pfVideoSampleSwappedFloat, 1}, {pfMonoFloat, 9}};
    for (const auto& c : cases) {
        const int samples = TestFrame::DepthOf(c.format) / 4;
        TestFrame frame(c.format, 5, 1, 0, 0);
        for (int x = 0; x < 5; ++x)
            for (int s = 0; s < samples; ++s)
                frame.SetFloat(x, 0, s, values[(x + s) % 5]);
        ASSERT_TRUE(Processors::CInvertChannel().Process(frame.Get(), c.channel));
        for (int x = 0; x < 5; ++x)
            for (int s = 0; s < samples; ++s) {
                const float original = values[(x + s) % 5];
                const bool inverted = samples == 1 || s == c.channel;
                EXPECT_EQ(frame.GetFloat(x, 0, s), inverted ? 1.0f - original : original)
                    << "format " << c.format << " pixel " << x << " sample " << s;
            }
    }
}

TEST(InvertChannel, RefusesChannelsOutsideTheRecordAndUnknownDepths)
{
    const struct {
        PixelFormat format;
        int depth;
        int channel;
    } cases[] = {{pfVideoSample, 4, 4},          {pfVideoSampleSwapped, 4, -1},
                 {pfVideoSampleFloat, 16, 4},    {pfVideoSampleSwappedFloat, 16, -2},
                 {static_cast<PixelFormat>(2), 2, 0}, {pfMono8, 3, 0}};
    for (const auto& c : cases) {
        TestFrame frame(c.format, 3, 2, c.depth);
        frame.FillPattern();
        SCOPED_TRACE(testing::Message() << "format " << c.format << " channel " << c.channel);
        frame.ExpectRefused([&] { return Processors::CInvertChannel().Process(frame.Get(), c.channel); });
    }
    EXPECT_FALSE(Processors::CInvertChannel().Process(nullptr, 0));
}

} // namespace
