#include <gtest/gtest.h>

#include <cstring>
#include <tuple>
#include <utility>
#include <vector>

#include "../Common/Frame.h"
#include "../DeglarerPro/Deglarer.h"
#include "../host/Clip.h"
#include "../host/InProcessHost.h"
#include "FreshEffectId.h"

namespace {

bool Same(const Intensities& a, const Intensities& b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

bool Remembered(unsigned int id, int frameIndex)
{
    const auto frames = CDeglarer::m_FrameIntensitiesPool.find(id);
    return frames != CDeglarer::m_FrameIntensitiesPool.end() && frames->second.count(frameIndex) != 0;
}

// Frames of one grey level each, 8 x 8, 8-bit.
TestHost::Clip GreyClip(const std::vector<float>& levels)
{
    TestHost::Clip clip(8, 8, pfVideoSample, static_cast<int>(levels.size()), 25.0);
    for (size_t i = 0; i < levels.size(); ++i)
        clip.Fill(static_cast<int>(i), levels[i], levels[i], levels[i]);
    return clip;
}

TEST(IntensityPool, FirstStoredRecordWinsForEveryObjectOfTheId)
{
    TestHost::Clip clip = GreyClip({0.9f, 0.1f});
    CFrame bright, dark;
    FrameParams brightParams = clip.Params(0), darkParams = clip.Params(1);
    bright.Init(&brightParams);
    dark.Init(&darkParams);

    const unsigned int shared = FreshEffectId();
    CDeglarer first, second, other;
    first.SetId(shared);
    second.SetId(shared);
    other.SetId(FreshEffectId());

    const Intensities measured = first.GetAverageIntensity(3, bright);
    EXPECT_GT(measured.fBand[0], 0.85f);
    // Another picture under the same index and id reads the first figures, also from the host.
    EXPECT_TRUE(Same(second.GetAverageIntensity(3, dark), measured));
    TestHost::InProcessHost host(clip);
    RenderInfo info = host.MakeRenderInfo(1);
    EXPECT_TRUE(Same(second.GetAverageIntensity(3, &host, &info, pfVideoSample), measured));
    EXPECT_EQ(host.FetchCount(), 0u);
    // Another id has its own entry.
    EXPECT_LT(other.GetAverageIntensity(3, dark).fBand[0], 0.15f);

    // A frame without pixels is remembered as four zeros.
    CFrame empty;
    EXPECT_TRUE(Same(first.GetAverageIntensity(4, empty), Intensities::Zero()));
    EXPECT_TRUE(Remembered(shared, 4));
}

TEST(IntensityPool, UndeliveredFrameGivesMinusOnesAndIsAskedForAgain)
{
    TestHost::Clip clip = GreyClip({0.5f, 0.5f, 0.5f});
    TestHost::InProcessHost host(clip);
    CDeglarer effect;
    effect.SetId(FreshEffectId());
    RenderInfo info = host.MakeRenderInfo(0);

    host.SetUndeliverable(2);
    EXPECT_TRUE(Same(effect.GetAverageIntensity(2, &host, &info, pfVideoSample), Intensities::NoFrame()));
    EXPECT_FALSE(Remembered(effect.GetId(), 2));
    EXPECT_EQ(host.FetchCount(), 1u);

    host.SetUndeliverable(2, false);
    const Intensities measured = effect.GetAverageIntensity(2, &host, &info, pfVideoSample);
    EXPECT_NEAR(measured.fBand[2], 0.5f, 0.01f);
    EXPECT_TRUE(Remembered(effect.GetId(), 2));
    EXPECT_EQ(host.FetchCount(), 2u);
    // Known now: the host isn't asked again.
    EXPECT_TRUE(Same(effect.GetAverageIntensity(2, &host, &info, pfVideoSample), measured));
    EXPECT_EQ(host.FetchCount(), 2u);
    EXPECT_EQ(host.ReleaseCount(), 1u);
    EXPECT_EQ(host.Leaks(), "");
}

TEST(IntensityPool, FrameRequestCarriesIndexTimeAndTheCallersRecord)
{
    TestHost::Clip clip = GreyClip({0.2f, 0.3f, 0.4f, 0.5f, 0.6f, 0.7f, 0.8f, 0.9f});
    TestHost::InProcessHost host(clip);
    // Whatever the caller's record says, a request is 64 bytes: size, flags, pass-through, time,
    // clip length, rate, factor, index, field, padding, factor.
    RenderInfo info = {40, 0x4, 0x0123456789ABCDEFull, 9.9, 0.32, 25.0, 0.5, 77, 2, 0x55, 2.0};
    CFrame frame;
    frame.m_pfPixelFormat = pfVideoSampleFloat;
    void* handle = CDeglarer::GetFrameByIndex(7, frame, &host, &info);
    ASSERT_NE(handle, nullptr);
    const std::vector<TestHost::InProcessHost::FrameRequest> requests = host.FrameRequests();
    ASSERT_EQ(requests.size(), 1u);
    const RenderInfo& r = requests[0].info;
    EXPECT_EQ(std::tie(r.nSize, r.dwFlags, r.qwPassThrough, r.dTime, r.dClipLength, r.dFrameRate, r.dFactor1,
                       r.dFactor2, r.nFrameIndex, r.nField),
              std::make_tuple(64u, 0x14u, info.qwPassThrough, 7 / 25.0, 0.32, 25.0, 1.0, 1.0, 7, int16_t{2}));
    // The frame asked for names only its format, with no buffer.
    const FrameParams& asked = requests[0].frame;
    EXPECT_EQ(std::tie(asked.pBuffer, asked.nWidth, asked.nHeight, asked.pfFormat),
              std::make_tuple(static_cast<uint8_t*>(nullptr), 0, 0, pfVideoSampleFloat));
    // The host's memory is wrapped, not copied.
    ASSERT_NE(frame.m_pBuffer, nullptr);
    EXPECT_NE(frame.m_pBuffer, clip.Frame(7));
    EXPECT_EQ(std::memcmp(frame.m_pBuffer, clip.Frame(7), clip.FrameBytes()), 0);
    EXPECT_EQ(frame.m_nWidth, 8);
    FrameParams back = frame.GetFrameParams();
    host.ReleaseFrame(handle, &back);
    EXPECT_EQ(host.Leaks(), "");

    // A refused request leaves the frame as it was.
    CFrame untouched;
    untouched.m_pfPixelFormat = pfVideoSampleSwapped;
    untouched.m_nWidth = 123;
    host.SetUndeliverable(3);
    EXPECT_EQ(CDeglarer::GetFrameByIndex(3, untouched, &host, &info), nullptr);
    EXPECT_EQ(CDeglarer::GetFrameByIndex(3, untouched, nullptr, &info), nullptr);
    EXPECT_EQ(CDeglarer::GetFrameByIndex(3, untouched, &host, nullptr), nullptr);
    EXPECT_EQ(std::tie(untouched.m_nWidth, untouched.m_pBuffer, untouched.m_pfPixelFormat),
              std::make_tuple(123, static_cast<uint8_t*>(nullptr), pfVideoSampleSwapped));
    EXPECT_EQ(host.FetchCount(), 2u);
}

// On the sequential path only the rendered frame is measured, so its figures show its index.
TEST(IntensityPool, RenderedFrameIsRememberedUnderItsIndexFromTime)
{
    // truncate(time x rate + 0.5): 1.98 x 25 = 49.5 gives 50.
    for (const auto& [time, expected] : {std::pair{2.0, 50}, {1.98, 50}, {1.97, 49}}) {
        TestHost::Clip clip = GreyClip(std::vector<float>(60, 0.5f));
        TestHost::InProcessHost::Options options;
        options.timeAccess = false;
        TestHost::InProcessHost host(clip, options);
        CDeglarer effect;
        effect.SetId(FreshEffectId());
        FrameParams source = clip.Params(expected);
        TestHost::Picture output(8, 8, pfVideoSample);
        FrameParams destination = output.Params();
        RenderInfo info = host.MakeRenderInfo(0);
        info.dwFlags = 0;
        info.nFrameIndex = 3;   // not valid without the flag
        info.dTime = time;
        ASSERT_TRUE(effect.Render(&host, &source, nullptr, &destination, &info));
        EXPECT_TRUE(Remembered(effect.GetId(), expected) && !Remembered(effect.GetId(), 3)) << time;
        EXPECT_TRUE(output.SameAs(clip, expected));
    }
}

} // namespace
