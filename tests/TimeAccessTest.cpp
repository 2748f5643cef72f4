// Rendering with time access, checked frame by frame on clips built for each case: what each
// output shows (the frame itself, a substitute, or the source with Test mode's cross).
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "../Common/Frame.h"
#include "../DeglarerPro/Deglarer.h"
#include "../DeglarerPro/MarkFlashedFrame.h"
#include "../host/Clip.h"
#include "../host/InProcessHost.h"
#include "FreshEffectId.h"
#include "TimeAccessOutcome.h"

namespace {

using TestHost::Clip;
using TestHost::InProcessHost;
using TimeAccessOutcome::Mark;
using TimeAccessOutcome::Outcome;

const int kWidth = 16;
const int kHeight = 64;
const float kMaxFramesOne = 0.0f;    // "Max Frames" positions
const float kMaxFramesTwo = 0.2f;    // the default
const float kMaxFramesThree = 0.25f;

std::vector<float> Repeat(float level, int count)
{
    return std::vector<float>(count, level);
}

std::vector<float> Join(std::initializer_list<std::vector<float>> parts)
{
    std::vector<float> all;
    for (const std::vector<float>& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

float FrameTag(int index)
{
    return (index + 1) / 255.0f;
}

// One grey level a frame; the frame number rides in the alpha, which measuring doesn't read, so
// that every frame can be told apart.
Clip BuildClip(const std::vector<float>& levels, PixelFormat format)
{
    Clip clip(kWidth, kHeight, format, static_cast<int>(levels.size()), 25.0);
    for (size_t i = 0; i < levels.size(); ++i)
        clip.Fill(static_cast<int>(i), levels[i], levels[i], levels[i], FrameTag(static_cast<int>(i)));
    return clip;
}

// A one-frame flash at frame 6 of 13.
const std::vector<float> kFlashAtSix = Join({Repeat(0.4f, 6), {0.8f}, Repeat(0.4f, 6)});

struct Example {
    const char* name;
    std::vector<float> levels;
    float maxFrames;
    std::map<int, int> replaced;   // frame -> the frame shown in its place
    std::set<int> spared;          // flagged frames that "Max Frames" leaves alone
    std::set<int> undeliverable;
    int topLit = -1;   // a frame lit only in its first rows
};

// The examples all run at the default sensitivity, threshold 0.0559.
std::vector<Example> Examples()
{
    const std::vector<float> scene = Repeat(0.40f, 6);
    std::vector<float> fade;   // 4 % a frame is less than one step: nothing accumulates
    for (int i = 0; i < 32; ++i)
        fade.push_back(0.30f * std::pow(1.04f, static_cast<float>(i < 16 ? i : 31 - i)));
    return {
        // 0.80 against 0.40 climbs 8 steps and drops 8: the flash frame alone is flagged, and
        // its neighbours tie, so the earlier one stands in.
        {"one-frame flash", kFlashAtSix, kMaxFramesTwo, {{6, 5}}, {}, {}},
        // Climbs 8, drops 4, then 5: the second frame stays raised, seen from both sides.
        {"flash fading over two frames", Join({scene, {0.80f, 0.60f}, scene}), kMaxFramesTwo, {{6, 5}, {7, 8}}, {}, {}},
        {"flash fading, one frame allowed", Join({scene, {0.80f, 0.60f}, scene}), kMaxFramesOne, {{6, 5}}, {7}, {}},
        // The first bright frame is a climb; the ones behind it are raised from one side only.
        {"lamp switched on", Join({scene, Repeat(0.75f, 8)}), kMaxFramesTwo, {{6, 5}}, {}, {}},
        {"slow fade up and down", fade, kMaxFramesTwo, {}, {}, {}},
        // With one frame allowed, the brighter frame goes, the run's end rule first.
        {"two-frame flash, brighter second", Join({scene, {0.80f, 0.90f}, scene}), kMaxFramesOne, {{7, 8}}, {6}, {}},
        // The brightest middle frame takes the dimmer of its flashed neighbours, the earlier of
        // two alike; of two alike frames the earlier goes.
        {"three-frame flash, brightest middle", Join({scene, {0.80f, 0.90f, 0.70f}, scene}), kMaxFramesOne, {{7, 8}},
         {6, 8}, {}},
        {"three-frame flash, even sides", Join({scene, {0.80f, 0.90f, 0.80f}, scene}), kMaxFramesOne, {{7, 6}},
         {6, 8}, {}},
        {"two-frame flash, even", Join({scene, {0.80f, 0.80f}, scene}), kMaxFramesOne, {{6, 5}}, {7}, {}},
        {"three-frame flash, two allowed", Join({scene, {0.80f, 0.90f, 0.70f}, scene}), kMaxFramesTwo,
         {{6, 5}, {7, 8}}, {8}, {}},
        // Only the first rows light up: band 0 climbs 2 steps, band 1 none. The whole frame goes.
        {"one-band flash", Repeat(0.4f, 13), kMaxFramesTwo, {{6, 5}}, {}, {}, 6},
        {"flash on frame 0", Join({{0.80f}, Repeat(0.40f, 8)}), kMaxFramesTwo, {}, {}, {}},
        // A run that reaches the clip's end has no clean frame behind it.
        {"flash run reaching the end", Join({Repeat(0.40f, 8), {0.80f, 0.90f}}), kMaxFramesTwo, {}, {}, {}},
        // The dark frame belongs to the run seen from its bright neighbours, but passes unchanged.
        {"dark frame inside a run", Join({Repeat(0.01f, 6), {0.50f, 0.02f, 0.50f}, Repeat(0.01f, 6)}),
         kMaxFramesThree, {{6, 5}, {8, 9}}, {}, {}},
        {"frames missing from the scans", kFlashAtSix, kMaxFramesTwo, {{6, 5}}, {}, {3, 9}},
        // A missing neighbour counts as unchanged, so it reads as raised with the flash: both are
        // replaced in the run, and the flash takes the clean frame behind.
        {"missing neighbour of a flash", kFlashAtSix, kMaxFramesTwo, {{6, 7}}, {}, {5}},
    };
}

const PixelFormat kFormats[] = {pfVideoSampleFloat, pfVideoSample, pfVideoSampleSwapped, pfVideoSampleSwappedFloat};

TEST(TimeAccess, WorkedExamplesFrameByFrame)
{
    for (const Example& example : Examples())
        for (PixelFormat format : kFormats)
            for (bool test : {false, true}) {
                Clip clip = BuildClip(example.levels, format);
                if (example.topLit >= 0)
                    clip.FillRows(example.topLit, 0, 4, 0.80f, 0.80f, 0.80f, FrameTag(example.topLit));
                InProcessHost host(clip);
                host.SetMaxFrames(example.maxFrames);
                host.SetTestMode(test);
                for (int index : example.undeliverable)
                    host.SetUndeliverable(index);
                CDeglarer effect;
                effect.SetId(FreshEffectId());
                for (int index = 0; index < clip.FrameCount(); ++index) {
                    // A host that can't give a frame doesn't render it either; rendered, its
                    // source would be measured and remembered.
                    if (example.undeliverable.count(index))
                        continue;
                    Outcome expected{index, Mark::kNone};
                    const auto replaced = example.replaced.find(index);
                    if (replaced != example.replaced.end())
                        expected = test ? Outcome{index, Mark::kRed} : Outcome{replaced->second, Mark::kNone};
                    else if (test && example.spared.count(index))
                        expected = Outcome{index, Mark::kBlue};
                    EXPECT_EQ(TimeAccessOutcome::Render(host, effect, clip, index), expected)
                        << example.name << ", format " << format << (test ? ", test mode" : "") << ", frame " << index;
                }
                EXPECT_EQ(host.Leaks(), "") << example.name;
            }
}

TEST(TimeAccess, UndeliverableSubstituteLeavesTheSourceUnmarked)
{
    for (bool test : {false, true}) {
        Clip clip = BuildClip(kFlashAtSix, pfVideoSample);
        InProcessHost host(clip);
        host.SetTestMode(test);
        CDeglarer effect;
        effect.SetId(FreshEffectId());
        EXPECT_EQ(TimeAccessOutcome::Render(host, effect, clip, 6),
                  (test ? Outcome{6, Mark::kRed} : Outcome{5, Mark::kNone}));
        // Now measured; the substitute itself can't be had any more.
        host.SetUndeliverable(5);
        host.ClearRecord();
        EXPECT_EQ(TimeAccessOutcome::Render(host, effect, clip, 6), (Outcome{6, Mark::kNone}));
        EXPECT_EQ(host.FetchedIndices(), std::vector<int>{5});
        EXPECT_EQ(host.Leaks(), "");
    }
}

// Scans ask for frames in the source's format, and stop after five quiet frames each way.
TEST(TimeAccess, ScansAskForTheSourceFormatAndStopAfterFiveQuietFrames)
{
    Clip clip = BuildClip(Repeat(0.5f, 31), pfVideoSampleSwapped);
    InProcessHost host(clip);
    CDeglarer effect;
    effect.SetId(FreshEffectId());
    EXPECT_EQ(TimeAccessOutcome::Render(host, effect, clip, 15), (Outcome{15, Mark::kNone}));
    std::vector<int> fetched = host.FetchedIndices();
    std::sort(fetched.begin(), fetched.end());
    EXPECT_EQ(fetched, (std::vector<int>{10, 11, 12, 13, 14, 16, 17, 18, 19, 20}));
    for (const InProcessHost::FrameRequest& request : host.FrameRequests())
        EXPECT_EQ(std::make_tuple(request.frame.pfFormat, request.frame.pBuffer, request.info.nField),
                  std::make_tuple(pfVideoSampleSwapped, static_cast<uint8_t*>(nullptr), int16_t{1}));
    // Frames without clean frames on both sides are decided without looking around.
    host.ClearRecord();
    CDeglarer fresh;
    fresh.SetId(FreshEffectId());
    TimeAccessOutcome::Render(host, fresh, clip, 0);
    TimeAccessOutcome::Render(host, fresh, clip, 30);
    EXPECT_EQ(host.FetchCount(), 0u);
}

TEST(TimeAccess, PositionsOutsideTheClipPassUnchanged)
{
    // Clip length, frame index, frame rate, the frame shown: a frame past the clip's end, a
    // negative index, lengths and rates that aren't numbers or are 0. A clip said to be endless
    // is scanned until the missing frames are quiet.
    const double nan = std::nan("");
    const double cases[][4] = {{0.2, 40, 25.0, 6}, {0.8, -3, 25.0, 6}, {nan, 6, 25.0, 6},
                               {0.8, 6, nan, 6},   {0.8, 6, 0.0, 6},   {1e300, 6, 25.0, 5}};
    for (const auto& c : cases) {
        Clip clip = BuildClip(kFlashAtSix, pfVideoSample);
        InProcessHost host(clip);
        CDeglarer effect;
        effect.SetId(FreshEffectId());
        FrameParams source = clip.Params(6);
        TestHost::Picture output(kWidth, kHeight, pfVideoSample);
        FrameParams destination = output.Params();
        RenderInfo info = host.MakeRenderInfo(6);
        info.dClipLength = c[0];
        info.nFrameIndex = static_cast<int>(c[1]);
        info.dFrameRate = c[2];
        EXPECT_TRUE(effect.Render(&host, &source, nullptr, &destination, &info));
        EXPECT_TRUE(output.SameAs(clip, static_cast<int>(c[3]))) << c[0] << " " << c[1] << " " << c[2];
        EXPECT_EQ(host.Leaks(), "");
    }
}

} // namespace
