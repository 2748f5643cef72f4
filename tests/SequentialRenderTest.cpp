// The effect on a host without time access: frames arrive one per call, in order, and flashed
// ones are replaced by the remembered last good frame.
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "../DeglarerPro/Deglarer.h"
#include "../host/Clip.h"
#include "../host/InProcessHost.h"
#include "FreshEffectId.h"
#include "TimeAccessOutcome.h"

namespace {

using TestHost::Clip;
using TestHost::InProcessHost;
using TestHost::Picture;
using TimeAccessOutcome::Mark;
using TimeAccessOutcome::Outcome;

const int kWidth = 16;
const int kHeight = 8;

// Frames first..last of a clip at one grey level.
struct Stretch {
    int first, last;
    float level;
};

// A clip of uniform grey frames, 0.4 but for the stretches given, each frame told apart by one byte.
Clip GreyClip(int count, const std::vector<Stretch>& stretches = {}, int width = kWidth)
{
    std::vector<float> levels(count, 0.4f);
    for (const Stretch& stretch : stretches)
        for (int index = stretch.first; index <= stretch.last; ++index)
            levels[index] = stretch.level;
    Clip clip(width, kHeight, pfVideoSample, count, 25.0);
    for (int index = 0; index < count; ++index) {
        clip.Fill(index, levels[index], levels[index], levels[index]);
        clip.Frame(index)[0] = static_cast<uint8_t>(index);
    }
    return clip;
}

InProcessHost::Options Sequential(uint32_t instance = 1, bool offerAllocator = true)
{
    InProcessHost::Options options;
    options.timeAccess = false;
    options.instanceId = instance;
    options.offerAllocator = offerAllocator;
    return options;
}

// One stand-in picture of the source's geometry asked for and given back per replaced frame.
void ExpectStandIns(const InProcessHost& host, size_t replaced, const char* what = "")
{
    const InProcessHost::PictureRequest standIn{kWidth, kHeight, 4};
    EXPECT_EQ(host.PictureRequests(), std::vector<InProcessHost::PictureRequest>(replaced, standIn)) << what;
    EXPECT_EQ(host.FreeCount(), replaced) << what;
}

// Renders frames in the order given and tells, per render, which clip frame came out. Players of
// other host instances may share one effect object.
class Player {
public:
    Player(Clip& clip, uint32_t instance = 1, CDeglarer* shared = nullptr, bool offerAllocator = true)
        : m_clip(clip), m_host(clip, Sequential(instance, offerAllocator)),
          m_effect(shared != nullptr ? *shared : m_ownEffect)
    {
        if (shared == nullptr)
            m_ownEffect.SetId(FreshEffectId());
    }

    // The clip frame the output shows, or -1.
    int Render(int index, int16_t field = 1)
    {
        Picture output(m_clip.Width(), m_clip.Height(), m_clip.Format());
        FrameParams destination = output.Params();
        EXPECT_TRUE(m_host.RenderFrame(&m_effect, index, &destination, field));
        for (int candidate = 0; candidate < m_clip.FrameCount(); ++candidate)
            if (output.SameAs(m_clip, candidate))
                return candidate;
        return -1;
    }

    std::vector<int> Play(int first, int last)
    {
        std::vector<int> shown;
        for (int index = first; index <= last; ++index)
            shown.push_back(Render(index));
        return shown;
    }

    // What the output shows, Test mode's cross included.
    Outcome Marked(int index) { return TimeAccessOutcome::Render(m_host, m_effect, m_clip, index); }
    InProcessHost& Host() { return m_host; }
    CDeglarer& Effect() { return m_effect; }

private:
    Clip& m_clip;
    InProcessHost m_host;
    CDeglarer m_ownEffect;
    CDeglarer& m_effect;
};

// Renders (index, expected clip frame shown) in order.
void ExpectShown(Player& player, const std::vector<std::pair<int, int>>& renders)
{
    for (const auto& render : renders)
        EXPECT_EQ(player.Render(render.first), render.second) << "frame " << render.first;
}

TEST(SequentialRender, PlayingAClipInOrderReplacesFlashesWithinMaxFramesOfTheLastGoodFrame)
{
    struct Case {
        const char* what;
        int frames;
        std::vector<Stretch> stretches;
        float maxFrames;                           // position 0 is a limit of 1, 0.2 of 2, 1 of 10
        std::vector<std::pair<int, int>> replaced;  // frame, the frame shown instead
    };
    // A lasting brightening at 20: 20..25 wait behind the last good frame 19; 26 is 7 away and is
    // taken as the new picture. A dark frame behind a good one empties the memory, so the flash
    // behind it starts afresh; right behind a flashed one it counts as flashed.
    const Case cases[] = {
        {"one-frame flash", 30, {{20, 20, 0.8f}}, 0.2f, {{20, 19}}},
        {"two-frame flash", 30, {{20, 21, 0.8f}}, 0.2f, {{20, 19}, {21, 19}}},
        {"lasting, limit 1", 32, {{20, 31, 0.8f}}, 0.0f, {{20, 19}}},
        {"lasting, limit 2", 32, {{20, 31, 0.8f}}, 0.2f, {{20, 19}, {21, 19}}},
        {"lasting, limit 10", 32, {{20, 31, 0.8f}}, 1.0f, {{20, 19}, {21, 19}, {22, 19}, {23, 19}, {24, 19}, {25, 19}}},
        {"bright first frame", 8, {{0, 0, 0.9f}}, 0.2f, {}},
        {"dark, then a flash", 12, {{10, 10, 0.01f}, {11, 11, 0.8f}}, 0.2f, {}},
        {"dark behind a flash", 12, {{6, 6, 0.8f}, {7, 7, 0.01f}}, 0.2f, {{6, 5}, {7, 5}}},
    };
    for (const Case& c : cases) {
        Clip clip = GreyClip(c.frames, c.stretches);
        Player player(clip);
        player.Host().SetMaxFrames(c.maxFrames);
        std::vector<int> expected;
        for (int index = 0; index < c.frames; ++index)
            expected.push_back(index);
        for (const auto& replaced : c.replaced)
            expected[replaced.first] = replaced.second;
        EXPECT_EQ(player.Play(0, c.frames - 1), expected) << c.what;
        EXPECT_EQ(player.Host().FetchCount(), 0u) << c.what;   // this path never asks the host for frames
        ExpectStandIns(player.Host(), c.replaced.size(), c.what);
    }
}

TEST(SequentialRender, TestModeMarksReplacedRedAndSparedBlue)
{
    Clip clip = GreyClip(12, {{5, 7, 0.8f}});
    Player player(clip);   // limit 2: 5 and 6 replaced, 7 spared
    player.Host().SetTestMode(true);
    player.Play(0, 4);
    // Frame 5 rendered twice in a row gets the same decision.
    const std::pair<int, Mark> marks[] = {{5, Mark::kRed}, {5, Mark::kRed}, {6, Mark::kRed}, {7, Mark::kBlue}};
    for (const auto& [index, mark] : marks)
        EXPECT_EQ(player.Marked(index), (Outcome{index, mark}));
    EXPECT_EQ(player.Render(8), 8);
    ExpectStandIns(player.Host(), 3);   // the red ones: a spared frame needs none
}

TEST(SequentialRender, AStandInTheHostRefusesLeavesTheSourceUnmarked)
{
    struct Case {
        bool offerAllocator, refuse, test;
        Outcome frame5;
    };
    const Case cases[] = {
        {true, false, false, {4, Mark::kNone}}, {true, false, true, {5, Mark::kRed}},
        {true, true, false, {5, Mark::kNone}},  {true, true, true, {5, Mark::kNone}},
        {false, false, false, {4, Mark::kNone}}, {false, false, true, {5, Mark::kRed}},   // the library's own memory
    };
    for (const Case& c : cases) {
        Clip clip = GreyClip(8, {{5, 5, 0.8f}});
        Player player(clip, 1, nullptr, c.offerAllocator);
        player.Host().SetTestMode(c.test);
        player.Play(0, 4);
        player.Host().SetRefusePictures(c.refuse);
        EXPECT_EQ(player.Marked(5), c.frame5) << c.offerAllocator << c.refuse << c.test;
        EXPECT_EQ(player.Host().PictureRequests().size(), c.offerAllocator ? 1u : 0u);
        EXPECT_EQ(player.Host().Leaks(), "");
    }
}

TEST(SequentialRender, ChangingAParameterResetsTheMemory)
{
    Clip clip = GreyClip(12, {{5, 7, 0.8f}});
    Player player(clip);
    player.Play(0, 4);
    EXPECT_EQ(player.Render(5), 4);
    player.Host().SetSensitivity(0.75f);   // same threshold, but a changed value all the same
    ExpectShown(player, {{6, 6}, {7, 7}, {8, 8}});   // the flash in progress now counts as good
}

TEST(SequentialRender, JumpsAndStepsBackStartAfresh)
{
    Clip clip = GreyClip(16, {{10, 10, 0.8f}, {12, 12, 0.8f}});
    Player player(clip);
    player.Play(0, 9);
    ExpectShown(player, {{10, 9}, {11, 11}, {12, 11},
                         {12, 11},    // twice: the memory goes on, same picture
                         {10, 10},    // a step back resets: the flash is its own predecessor
                         {11, 11},
                         {14, 14},    // a jump forward resets
                         {12, 12}});  // behind the last good frame: reset
}

TEST(SequentialRender, FieldsAndHostInstancesKeepSeparateMemories)
{
    Clip clip = GreyClip(10, {{5, 5, 0.8f}});
    Player player(clip);
    player.Play(0, 4);
    EXPECT_EQ(player.Render(5, 2), 5);   // field 2 has seen nothing: a fresh start
    EXPECT_EQ(player.Render(5, 3), 5);   // and so has field 3
    EXPECT_EQ(player.Render(5, 1), 4);   // field 1 remembers frame 4
    Player otherInstance(clip, 2, &player.Effect());
    EXPECT_EQ(otherInstance.Render(5), 5);
    EXPECT_EQ(player.Render(6), 6);
}

TEST(SequentialRender, FrameSizeChangeInTheMiddleFallsBackToTheSource)
{
    Clip small = GreyClip(8, {{5, 5, 0.8f}});
    Clip large = GreyClip(8, {{5, 5, 0.8f}}, kWidth * 2);
    Player player(small);
    player.Play(0, 4);
    // Frame 5 comes at another size: the remembered frame doesn't fit it.
    FrameParams source = large.Params(5);
    Picture output(kWidth * 2, kHeight, pfVideoSample);
    FrameParams destination = output.Params();
    RenderInfo info = player.Host().MakeRenderInfo(5);
    ASSERT_TRUE(player.Effect().Render(&player.Host(), &source, nullptr, &destination, &info));
    EXPECT_TRUE(output.SameAs(large, 5));
    EXPECT_EQ(player.Host().Leaks(), "");
}

} // namespace
