#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "../Common/AlphaBlend.h"
#include "../Common/AlphaFade.h"
#include "../Common/AlphaPremul.h"
#include "../Common/InvertChannel.h"
#include "../platform/UserInterface.h"
#include "AtEachVariant.h"
#include "ProcessorTestFrame.h"

namespace {

TEST_SUITE_AT_EACH_VARIANT(AlphaCompositing);

using Processors::CAlphaBlend;
using Processors::CAlphaFade;
using Processors::CAlphaPremul;
using Processors::CInvertChannel;

enum class Op { Over, OverPremul, Premul, Fade };

// One pixel through one operation: samples blue, green, red, alpha, wherever the format keeps them.
struct PixelCase {
    Op op;
    std::vector<PixelFormat> formats;
    int level;   // of a fade
    std::vector<double> in1, in2, expected;
};

const std::vector<PixelFormat> kBgra = {pfVideoSample}, kArgb = {pfVideoSampleSwapped},
                               kOther = {static_cast<PixelFormat>(2)},
                               kFloats = {pfVideoSampleFloat, pfVideoSampleSwappedFloat};

// Alpha-first bytes divide by 255 truncating; blue-first bytes go through the primitive, whose
// rounding is tested with it and whose premultiplied rule saturates where the plain one weighs by
// alpha. Floats are neither clamped nor rounded, except that a fade clamps its input. A fade of
// bytes scales alpha by level / 256, of floats by level / 255.
const PixelCase kPixelCases[] = {
    {Op::OverPremul, kArgb, 0, {30, 20, 10, 255}, {25, 50, 100, 200}, {30, 20, 10, 255}},
    {Op::OverPremul, kArgb, 0, {1, 0, 200, 0}, {255, 254, 200, 200}, {255, 254, 255, 200}},
    {Op::OverPremul, kArgb, 0, {0, 0, 100, 128}, {255, 1, 200, 255}, {127, 0, 199, 255}},
    {Op::Over, kArgb, 0, {30, 20, 10, 255}, {25, 50, 100, 200}, {30, 20, 10, 255}},
    {Op::Over, kArgb, 0, {200, 200, 200, 0}, {255, 0, 77, 255}, {255, 0, 77, 255}},
    {Op::Over, kArgb, 0, {255, 0, 200, 100}, {0, 255, 50, 128}, {100, 77, 93, 177}},
    {Op::OverPremul, kBgra, 0, {200, 0, 1, 0}, {200, 254, 255, 255}, {255, 254, 255, 255}},
    {Op::Over, kBgra, 0, {200, 0, 1, 0}, {200, 254, 255, 255}, {200, 254, 255, 255}},
    {Op::OverPremul, kFloats, 0, {0.25, 0.5, 0.75, 0.5}, {1.0, 0.5, 0.25, 1.0}, {0.75, 0.75, 0.875, 1.0}},
    {Op::OverPremul, kFloats, 0, {0.25, 0.5, 0.75, 1.0}, {1.0, 0.5, 0.25, 1.0}, {0.25, 0.5, 0.75, 1.0}},
    {Op::OverPremul, kFloats, 0, {2.0, -1.0, 0.0, 0.5}, {4.0, 0.0, 0.5, 3.0}, {4.0, -1.0, 0.25, 2.0}},
    {Op::Over, kFloats, 0, {1.0, 0.5, 0.0, 0.5}, {1.0, 1.0, 1.0, 0.5}, {0.75, 0.5, 0.25, 0.75}},
    {Op::Over, kFloats, 0, {0.25, 0.5, 0.75, 1.0}, {1.0, 1.0, 1.0, 1.0}, {0.25, 0.5, 0.75, 1.0}},
    {Op::Over, kFloats, 0, {3.0, 0.0, 0.0, 0.0}, {2.0, 8.0, 0.5, 2.0}, {4.0, 16.0, 1.0, 2.0}},
    {Op::Premul, kArgb, 0, {255, 1, 0, 255}, {}, {255, 1, 0, 255}},
    {Op::Premul, kArgb, 0, {1, 128, 255, 0}, {}, {0, 0, 0, 0}},
    {Op::Premul, kArgb, 0, {254, 2, 255, 128}, {}, {127, 1, 128, 128}},
    {Op::Premul, kArgb, 0, {1, 254, 100, 200}, {}, {0, 199, 78, 200}},
    {Op::Premul, kBgra, 0, {255, 2, 254, 128}, {}, {128, 1, 127, 128}},
    {Op::Premul, kFloats, 0, {0.5, 2.0, -1.0, 0.5}, {}, {0.25, 1.0, -0.5, 0.5}},
    {Op::Premul, kFloats, 0, {1.0, -0.25, 0.5, 4.0}, {}, {4.0, -1.0, 2.0, 4.0}},
    {Op::Fade, kBgra, 256, {255, 100, 0, 255}, {}, {254, 99, 0, 255}},
    {Op::Fade, kBgra, 255, {255, 100, 1, 255}, {}, {253, 99, 0, 254}},
    {Op::Fade, kBgra, 512, {255, 100, 1, 200}, {}, {254, 99, 0, 255}},
    {Op::Fade, kBgra, 128, {255, 254, 1, 128}, {}, {63, 63, 0, 64}},
    {Op::Fade, kBgra, 0, {255, 254, 1, 255}, {}, {0, 0, 0, 0}},
    {Op::Fade, kBgra, -300, {255, 254, 1, 255}, {}, {0, 0, 0, 0}},
    {Op::Fade, kArgb, 256, {0, 100, 255, 255}, {}, {0, 99, 254, 255}},
    {Op::Fade, kArgb, 255, {1, 100, 255, 255}, {}, {0, 99, 253, 254}},
    {Op::Fade, kOther, 256, {255, 100, 0, 255}, {}, {254, 99, 0, 255}},   // alpha at byte 3
    {Op::Fade, kFloats, 255, {0.5, 0.25, 1.0, 0.5}, {}, {0.25, 0.125, 0.5, 0.5}},
    {Op::Fade, kFloats, 255, {1.5, -0.5, 0.75, 2.0}, {}, {1.0, 0.0, 0.75, 1.0}},
    {Op::Fade, kFloats, 255, {0.5, 0.5, 0.5, -1.0}, {}, {0.0, 0.0, 0.0, 0.0}},
    {Op::Fade, kFloats, 0, {0.5, 0.5, 0.5, 1.0}, {}, {0.0, 0.0, 0.0, 0.0}},
    {Op::Fade, kFloats, 510, {0.5, 1.0, 0.0, 0.25}, {}, {0.25, 0.5, 0.0, 0.5}},
};

TEST_P(AlphaCompositing, EachPathRoundsAndSaturatesByItsOwnRules)
{
    for (const PixelCase& c : kPixelCases)
        for (PixelFormat format : c.formats) {
            SCOPED_TRACE(testing::Message() << "case " << (&c - kPixelCases) << ", format " << format);
            TestFrame in1(format, 1, 1), in2(format, 1, 1), out(format, 1, 1);
            in1.SetBgra(0, 0, c.in1);
            TestFrame& result = c.op == Op::Premul ? in1 : out;   // premultiplied in place
            switch (c.op) {
            case Op::Over:
            case Op::OverPremul:
                in2.SetBgra(0, 0, c.in2);
                ASSERT_TRUE(CAlphaBlend().Process(in1.Get(), in2.Get(), out.Get(), c.op == Op::OverPremul));
                break;
            case Op::Premul: ASSERT_TRUE(CAlphaPremul().Process(*in1, *in1)); break;
            case Op::Fade: ASSERT_TRUE(CAlphaFade().Process(in1.Get(), out.Get(), c.level)); break;
            }
            if (c.op == Op::Fade && result.Floats()) {
                for (int s = 0; s < 4; ++s)
                    EXPECT_FLOAT_EQ(result.Bgra(0, 0)[s], c.expected[s]) << "bgra sample " << s;
            } else {
                EXPECT_EQ(result.Bgra(0, 0), c.expected);
            }
        }
}

// Blend, premultiply and fade write only the top-left area their frames share, each frame the
// narrowest or the shortest somewhere.
TEST_P(AlphaCompositing, EachProcessorWritesOnlyTheCommonAreaInMemoryOrder)
{
    for (PixelFormat format : kFourSampleFormats) {
        SCOPED_TRACE(testing::Message() << "format " << format);
        TestFrame in1(format, 5, 3), in2(format, 4, 6), blended(format, 3, 5), premul(format, 6, 2),
            faded(format, 2, 4);
        in1.FillPattern();
        in2.FillPattern();
        const std::vector<uint8_t> blendedBefore = blended.Memory(), premulBefore = premul.Memory(),
                                   fadedBefore = faded.Memory();
        ASSERT_TRUE(CAlphaBlend().Process(in1.Get(), in2.Get(), blended.Get(), true));
        blended.ExpectUntouchedOutside(blendedBefore, 3, 3);
        EXPECT_NE(blended.Memory(), blendedBefore);
        ASSERT_TRUE(CAlphaPremul().Process(*in2, *premul));
        premul.ExpectUntouchedOutside(premulBefore, 4, 2);
        EXPECT_EQ(premul.Bgra(3, 1)[3], in2.Bgra(3, 1)[3]) << "alpha carried over";
        ASSERT_TRUE(CAlphaFade().Process(in1.Get(), faded.Get(), 256));
        faded.ExpectUntouchedOutside(fadedBefore, 2, 3);
        EXPECT_NE(faded.Memory(), fadedBefore);

        // An empty area is nothing to do, but through the primitive (blue-first bytes) a refusal.
        TestFrame none(format, 0, 4);
        const std::vector<uint8_t> blendedNow = blended.Memory(), premulNow = premul.Memory();
        EXPECT_EQ(CAlphaBlend().Process(in1.Get(), none.Get(), blended.Get(), false), format != pfVideoSample);
        EXPECT_EQ(CAlphaPremul().Process(*none, *premul), format != pfVideoSample);
        EXPECT_EQ(blended.Memory(), blendedNow);
        EXPECT_EQ(premul.Memory(), premulNow);

        // A record with a negative span starts at its top row; the blend walks it from its lowest
        // row, as it would a CFrame made over that record. An opaque foreground comes through as
        // it is, row for row in memory.
        TestFrame opaque(format, 3, 2, 0, 0), back(format, 3, 2, 0, 0), out(format, 3, 2, 0, 0);
        opaque.FillPattern();
        back.FillPattern();
        for (int i = 0; i < 6; ++i)
            opaque.SetSample(i % 3, i / 3, format % 3 == 1 ? 0 : 3, opaque.Floats() ? 1.0 : 255);   // 1, 4: alpha first
        FrameParams outParams = out->GetFrameParams();
        outParams.pBuffer += outParams.nByteSpan;   // the top row of a bottom-up picture
        outParams.nByteSpan = -outParams.nByteSpan;
        ASSERT_TRUE(CAlphaBlend().Process(opaque->GetFrameParams(), back->GetFrameParams(), outParams, true));
        const size_t pictureBytes = static_cast<size_t>(opaque->m_nByteSpan) * 2;
        EXPECT_TRUE(std::equal(opaque.Memory().begin(), opaque.Memory().begin() + pictureBytes, out.Memory().begin()));
    }
}

class AlphaRefusal : public ::testing::Test {
protected:
    void SetUp() override { m_pPrevious = Platform::SetUserInterface(&m_ui); }
    void TearDown() override { Platform::SetUserInterface(m_pPrevious); }
    Platform::HeadlessUserInterface m_ui;
    Platform::IUserInterface* m_pPrevious = nullptr;
};

// A zero depth is reported by its expression, once, before the refusal; other lies are refused
// without a word.
TEST_F(AlphaRefusal, FormatsWithoutAPathAndFramesThatLieLeaveTheOutputAlone)
{
    struct Case {
        int format;
        int depth1, depth2, depthOut;
        int spanShrink;           // bytes taken off in2's span, below its row
        const char* expression;   // the assertion's text, if any
    };
    // Formats without a path, negative depths, a span below the row, a float path over byte-deep
    // rows; then each zero depth.
    const Case cases[] = {
        {2, 4, 4, 4, 0, nullptr},   {5, 4, 4, 4, 0, nullptr},    {6, 4, 4, 4, 0, nullptr},
        {7, 4, 4, 4, 0, nullptr},   {0, -4, 4, 4, 0, nullptr},   {3, 16, 16, -16, 0, nullptr},
        {1, 4, 4, 4, 16, nullptr},  {4, 16, 4, 16, 0, nullptr},
        {0, 0, 4, 4, 0, "frameIn1.m_nDepth"}, {0, 4, 0, 4, 0, "frameIn2.m_nDepth"},
        {0, 4, 4, 0, 0, "frameOut.m_nDepth"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << (&c - cases));
        m_ui.ClearAlerts();
        const PixelFormat format = static_cast<PixelFormat>(c.format);
        TestFrame in1(format, 4, 3, std::abs(c.depth1)), in2(format, 4, 3, std::abs(c.depth2)),
            out(format, 4, 3, std::abs(c.depthOut));
        in1.FillPattern();
        in2.FillPattern();
        in1->m_nDepth = c.depth1;
        in2->m_nDepth = c.depth2;
        out->m_nDepth = c.depthOut;
        in2->m_nByteSpan -= c.spanShrink;
        testing::internal::CaptureStdout();
        out.ExpectRefused([&] { return CAlphaBlend().Process(in1.Get(), in2.Get(), out.Get(), false); });
        const std::string printed = testing::internal::GetCapturedStdout();
        EXPECT_EQ(m_ui.Alerts().size(), c.expression ? 1u : 0u);
        EXPECT_EQ(printed.empty(), c.expression == nullptr) << printed;
        const std::string said = c.expression ? std::string("Assertion failed: ") + c.expression + "; in " : "";
        EXPECT_NE(printed.find(said), std::string::npos) << printed;
        EXPECT_NE(printed.find(c.expression ? "(Processor" : ""), std::string::npos) << printed;
    }

    // Premultiply of formats without a path and into rows too short; fade of one-byte rows.
    for (int format : {2, 5, 6, 7}) {
        TestFrame src(static_cast<PixelFormat>(format), 2, 2, 4), dst(pfVideoSample, 2, 2);
        src.FillPattern();
        dst.ExpectRefused([&] { return CAlphaPremul().Process(*src, *dst); });
    }
    TestFrame wide(pfVideoSampleFloat, 4, 2), narrow(pfVideoSampleFloat, 4, 2), mono(pfMono8, 8, 2),
        monoOut(pfMono8, 8, 2);
    narrow->m_nByteSpan = 40;
    narrow.ExpectRefused([&] { return CAlphaPremul().Process(*wide, *narrow); });
    mono.FillPattern();
    monoOut.ExpectRefused([&] { return CAlphaFade().Process(mono.Get(), monoOut.Get(), 256); });
    EXPECT_FALSE(CAlphaFade().Process(nullptr, monoOut.Get(), 256));
    EXPECT_FALSE(CAlphaBlend().Process(nullptr, wide.Get(), narrow.Get(), false));
    EXPECT_FALSE(CAlphaBlend().Process(wide.Get(), wide.Get(), nullptr, true));
}

// The run covers whole spans, padding included; a frame of one sample a pixel inverts every
// sample. Bytes become 255 minus their value, floats 1 minus theirs, unclamped. Channels outside
// the record and unknown depths are refused.
TEST(InvertChannel, InvertsOnePositionOfEveryPixelPaddingIncluded)
{
    struct Case {
        PixelFormat format;
        int depth, channel;
        int every, first;   // the inverted samples: every such one, from this first; 0, 0 for a refusal
    };
    const Case cases[] = {
        {pfVideoSample, 4, 2, 4, 2},      {pfVideoSampleSwapped, 4, 0, 4, 0},       {pfMono8, 1, 4, 1, 0},
        {pfVideoSampleFloat, 16, 3, 4, 3}, {pfVideoSampleSwappedFloat, 16, 1, 4, 1}, {pfMonoFloat, 4, 9, 1, 0},
        {static_cast<PixelFormat>(2), 4, 3, 4, 3}, {static_cast<PixelFormat>(5), 1, -1, 1, 0},
        {pfVideoSample, 4, 4, 0, 0},       {pfVideoSampleSwapped, 4, -1, 0, 0},      {pfVideoSampleFloat, 16, 4, 0, 0},
        {pfVideoSampleSwappedFloat, 16, -2, 0, 0}, {static_cast<PixelFormat>(2), 2, 0, 0, 0}, {pfMono8, 3, 0, 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "format " << c.format << " depth " << c.depth << " channel " << c.channel);
        TestFrame frame(c.format, 3, 2, c.depth, c.depth * 2);
        frame.FillPattern();
        if (c.every == 0) {
            frame.ExpectRefused([&] { return CInvertChannel().Process(frame.Get(), c.channel); });
            continue;
        }
        const bool floats = frame.Floats();
        frame.SetSample(0, 0, c.first, 0);
        frame.SetSample(1, 0, c.first, floats ? 1.5 : 255);
        frame.SetSample(2, 1, c.first, floats ? -1 : 1);
        const std::vector<uint8_t> before = frame.Memory();
        ASSERT_TRUE(CInvertChannel().Process(frame.Get(), c.channel));
        const size_t end = static_cast<size_t>(frame->m_nByteSpan) * frame->m_nHeight, size = floats ? 4 : 1;
        auto at = [&](const uint8_t* sample) {
            float value = *sample;
            if (floats)
                std::memcpy(&value, sample, 4);
            return value;
        };
        for (size_t i = 0; i < before.size(); i += size) {
            const float was = at(&before[i]), full = floats ? 1.0f : 255.0f;
            const bool inverted = i < end && i / size % c.every == static_cast<size_t>(c.first);
            ASSERT_EQ(at(&frame.Memory()[i]), inverted ? full - was : was) << "sample " << i / size;
        }
    }
    EXPECT_FALSE(CInvertChannel().Process(nullptr, 0));
}

} // namespace
