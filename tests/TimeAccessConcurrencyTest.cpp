// Rendering with time access gives the same picture whatever the order of the frames and however
// many threads render at once, on one effect object or on several objects with one id.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "../Common/Frame.h"
#include "../DeglarerPro/Deglarer.h"
#include "../DeglarerPro/IntensityMeasure.h"
#include "../host/Clip.h"
#include "../host/InProcessHost.h"
#include "FreshEffectId.h"
#include "TimeAccessOutcome.h"

namespace {

using TestHost::Clip;
using TestHost::InProcessHost;

const int kThreads = 8;

using Outputs = std::vector<std::vector<uint8_t>>;

struct Setting {
    PixelFormat format;
    bool test;
    float maxFrames;
};

// Plain and float frames; Test mode with one frame allowed, so that red and blue crosses show.
const Setting kSettings[] = {{pfVideoSample, false, 0.2f}, {pfVideoSampleSwappedFloat, false, 0.2f},
                             {pfVideoSample, true, 0.0f}};

void Configure(InProcessHost& host, const Setting& setting)
{
    host.SetTestMode(setting.test);
    host.SetMaxFrames(setting.maxFrames);
}

std::vector<int> InOrder(int count)
{
    std::vector<int> order(count);
    std::iota(order.begin(), order.end(), 0);
    return order;
}

std::vector<int> Shuffled(int count, unsigned int seed)
{
    std::vector<int> order = InOrder(count);
    std::shuffle(order.begin(), order.end(), std::mt19937(seed));
    return order;
}

// Renders the frames of `order` and files each output under its frame index.
void RenderInOrder(InProcessHost& host, CDeglarer& effect, Clip& clip, const std::vector<int>& order,
                   Outputs& outputs)
{
    for (int index : order) {
        TestHost::Picture picture(clip.Width(), clip.Height(), clip.Format(), clip.ByteSpan());
        FrameParams destination = picture.Params();
        if (host.RenderFrame(&effect, index, &destination))
            outputs[index] = picture.Bytes();
    }
}

Outputs InOrderReference(Clip& clip, const Setting& setting)
{
    InProcessHost host(clip);
    Configure(host, setting);
    CDeglarer effect;
    effect.SetId(FreshEffectId());
    Outputs outputs(clip.FrameCount());
    RenderInOrder(host, effect, clip, InOrder(clip.FrameCount()), outputs);
    return outputs;
}

// The reference must show the effect at work, or agreeing with it would prove nothing.
int ChangedFrames(Clip& clip, const Outputs& outputs)
{
    int changed = 0;
    for (int index = 0; index < clip.FrameCount(); ++index)
        if (outputs[index] != std::vector<uint8_t>(clip.Frame(index), clip.Frame(index) + clip.FrameBytes()))
            ++changed;
    return changed;
}

// Runs `work(thread)` on kThreads threads released at one moment.
template <class Work>
void RunTogether(Work work)
{
    std::atomic<int> ready{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            ++ready;
            while (ready.load() < kThreads)
                std::this_thread::yield();
            work(t);
        });
    for (std::thread& thread : threads)
        thread.join();
}

void ExpectSameOutputs(const Outputs& expected, const Outputs& actual, const std::string& what)
{
    ASSERT_EQ(expected.size(), actual.size());
    for (size_t index = 0; index < expected.size(); ++index)
        EXPECT_TRUE(actual[index] == expected[index]) << what << ", frame " << index;
}

TEST(TimeAccessConcurrency, ShuffledOrderGivesTheInOrderPictures)
{
    for (const Setting& setting : kSettings) {
        Clip clip = TimeAccessOutcome::EventfulClip(setting.format);
        const Outputs expected = InOrderReference(clip, setting);
        ASSERT_GE(ChangedFrames(clip, expected), 4);
        for (unsigned int seed : {1u, 2u, 3u}) {
            InProcessHost host(clip);
            Configure(host, setting);
            CDeglarer effect;
            effect.SetId(FreshEffectId());
            Outputs outputs(clip.FrameCount());
            RenderInOrder(host, effect, clip, Shuffled(clip.FrameCount(), seed), outputs);
            ExpectSameOutputs(expected, outputs, "seed " + std::to_string(seed));
            EXPECT_EQ(host.Leaks(), "");
        }
    }
}

// All threads on one effect object, or each on an object of its own that shares the id.
TEST(TimeAccessConcurrency, ThreadsOnOneObjectOrObjectsSharingAnIdGiveTheInOrderPictures)
{
    for (bool sharedObject : {true, false})
        for (const Setting& setting : kSettings) {
            Clip clip = TimeAccessOutcome::EventfulClip(setting.format);
            const Outputs expected = InOrderReference(clip, setting);
            ASSERT_GE(ChangedFrames(clip, expected), 4);
            InProcessHost host(clip);
            Configure(host, setting);
            const unsigned int id = FreshEffectId();
            std::vector<std::unique_ptr<CDeglarer>> effects;
            for (int t = 0; t < (sharedObject ? 1 : kThreads); ++t) {
                effects.push_back(std::make_unique<CDeglarer>());
                effects.back()->SetId(id);
            }
            std::vector<Outputs> outputs(kThreads, Outputs(clip.FrameCount()));
            RunTogether([&](int t) {
                CDeglarer& effect = *effects[sharedObject ? 0 : t];
                RenderInOrder(host, effect, clip, Shuffled(clip.FrameCount(), 100 + t), outputs[t]);
            });
            const std::string what = sharedObject ? "one object" : "objects sharing an id";
            for (int t = 0; t < kThreads; ++t)
                ExpectSameOutputs(expected, outputs[t], what + ", thread " + std::to_string(t));
            EXPECT_EQ(host.ReleaseCount(), host.FetchCount());
            EXPECT_EQ(host.Leaks(), "");
        }
}

TEST(TimeAccessConcurrency, ObjectsSharingAnIdAgreeOnTheFirstStoredRecord)
{
    // Each thread measures a picture of its own grey under one index: whichever is stored first,
    // every thread gets that record back, and later readers do too.
    Clip clip(16, 16, pfVideoSample, kThreads, 25.0);
    for (int t = 0; t < kThreads; ++t)
        clip.Fill(t, 0.1f * (t + 1), 0.1f * (t + 1), 0.1f * (t + 1));
    const unsigned int id = FreshEffectId();
    std::vector<Intensities> seen(kThreads);
    RunTogether([&](int t) {
        CDeglarer effect;
        effect.SetId(id);
        FrameParams params = clip.Params(t);
        CFrame frame;
        frame.Init(&params);
        seen[t] = effect.GetAverageIntensity(5, frame);
    });
    CDeglarer later;
    later.SetId(id);
    CFrame empty;
    const Intensities stored = later.GetAverageIntensity(5, empty);
    bool fromOnePicture = false;
    for (int t = 0; t < kThreads; ++t) {
        EXPECT_EQ(std::memcmp(&seen[t], &stored, sizeof stored), 0) << "thread " << t;
        FrameParams params = clip.Params(t);
        CFrame frame;
        frame.Init(&params);
        const Intensities own = MeasureFrameIntensities(frame);
        fromOnePicture = fromOnePicture || std::memcmp(&own, &stored, sizeof stored) == 0;
    }
    EXPECT_TRUE(fromOnePicture);
}

} // namespace
