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

// Renders every frame of the clip, in order or shuffled by `seed`, and files each output under
// its frame index.
void RenderAll(InProcessHost& host, CDeglarer& effect, Clip& clip, unsigned int seed, Outputs& outputs)
{
    std::vector<int> order(clip.FrameCount());
    std::iota(order.begin(), order.end(), 0);
    if (seed != 0)
        std::shuffle(order.begin(), order.end(), std::mt19937(seed));
    for (int index : order) {
        TestHost::Picture picture(clip.Width(), clip.Height(), clip.Format(), clip.ByteSpan());
        FrameParams destination = picture.Params();
        if (host.RenderFrame(&effect, index, &destination))
            outputs[index] = picture.Bytes();
    }
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

// All threads on one effect object, or each on an object of its own that shares the id, each
// in an order of its own: every output is the one rendering in order on one thread gives.
TEST(TimeAccessConcurrency, ThreadsOnOneObjectOrObjectsSharingAnIdGiveTheInOrderPictures)
{
    for (bool sharedObject : {true, false})
        for (const Setting& setting : kSettings) {
            Clip clip = TimeAccessOutcome::EventfulClip(setting.format);
            InProcessHost host(clip);
            host.SetTestMode(setting.test);
            host.SetMaxFrames(setting.maxFrames);
            Outputs expected(clip.FrameCount());
            {
                CDeglarer effect;
                effect.SetId(FreshEffectId());
                RenderAll(host, effect, clip, 0, expected);
            }
            // The reference must show the effect at work, or agreeing with it would prove nothing.
            int changed = 0;
            for (int index = 0; index < clip.FrameCount(); ++index)
                changed += expected[index].size() == clip.FrameBytes() &&
                           std::memcmp(expected[index].data(), clip.Frame(index), clip.FrameBytes()) != 0;
            ASSERT_GE(changed, 4);

            const unsigned int id = FreshEffectId();
            std::vector<std::unique_ptr<CDeglarer>> effects;
            for (int t = 0; t < (sharedObject ? 1 : kThreads); ++t) {
                effects.push_back(std::make_unique<CDeglarer>());
                effects.back()->SetId(id);
            }
            std::vector<Outputs> outputs(kThreads, Outputs(clip.FrameCount()));
            RunTogether([&](int t) { RenderAll(host, *effects[sharedObject ? 0 : t], clip, 100 + t, outputs[t]); });
            for (int t = 0; t < kThreads; ++t)
                for (int index = 0; index < clip.FrameCount(); ++index)
                    EXPECT_TRUE(outputs[t][index] == expected[index])
                        << (sharedObject ? "one object" : "objects sharing an id") << ", thread " << t << ", frame "
                        << index;
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
    struct ClipFrame {
        FrameParams params;
        CFrame frame;
        ClipFrame(Clip& clip, int index) : params(clip.Params(index)) { frame.Init(&params); }
    };
    const unsigned int id = FreshEffectId();
    std::vector<Intensities> seen(kThreads);
    RunTogether([&](int t) {
        CDeglarer effect;
        effect.SetId(id);
        ClipFrame own(clip, t);
        seen[t] = effect.GetAverageIntensity(5, own.frame);
    });
    CDeglarer later;
    later.SetId(id);
    CFrame empty;
    const Intensities stored = later.GetAverageIntensity(5, empty);
    bool fromOnePicture = false;
    for (int t = 0; t < kThreads; ++t) {
        EXPECT_EQ(std::memcmp(&seen[t], &stored, sizeof stored), 0) << "thread " << t;
        ClipFrame picture(clip, t);
        const Intensities own = MeasureFrameIntensities(picture.frame);
        fromOnePicture = fromOnePicture || std::memcmp(&own, &stored, sizeof stored) == 0;
    }
    EXPECT_TRUE(fromOnePicture);
}

} // namespace
