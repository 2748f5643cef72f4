// The effect on a host without time access: frames arrive one per call, in order, and flashed
// ones are replaced by the remembered last good frame.
#include <gtest/gtest.h>

#include <atomic>
#include <vector>

#include "../DeglarerPro/Deglarer.h"
#include "../host/Clip.h"
#include "../host/InProcessHost.h"
#include "../platform/MonotonicClock.h"

namespace {

using TestHost::Clip;
using TestHost::InProcessHost;
using TestHost::Picture;

const int kWidth = 16;
const int kHeight = 8;
const int kMarked = -2;     // the output shows the source with a cross
const int kUnknown = -3;    // the output is no frame of the clip

// Measurements are remembered per effect id and frame index, so every clip gets an id of its own.
unsigned int FreshId()
{
    static std::atomic<unsigned int> next{0x5E000000u};
    return next++;
}

// A clip of uniform grey frames at the given levels (0..1), each frame told apart by one byte.
Clip GreyClip(const std::vector<float>& levels, int width = kWidth, int height = kHeight)
{
    Clip clip(width, height, pfVideoSample, static_cast<int>(levels.size()), 25.0);
    for (int index = 0; index < clip.FrameCount(); ++index) {
        clip.Fill(index, levels[index], levels[index], levels[index]);
        clip.Frame(index)[0] = static_cast<uint8_t>(index);
    }
    return clip;
}

// Renders frames in the order given and tells, per render, which clip frame came out.
class Player {
public:
    Player(Clip& clip, uint32_t instance = 1) : m_clip(clip), m_host(clip, Options(instance)) { m_effect.SetId(FreshId()); }

    int Render(int index, int16_t field = 1)
    {
        Picture output(m_clip.Width(), m_clip.Height(), m_clip.Format());
        FrameParams destination = output.Params();
        EXPECT_TRUE(m_host.RenderFrame(&m_effect, index, &destination, field));
        for (int candidate = 0; candidate < m_clip.FrameCount(); ++candidate)
            if (output.SameAs(m_clip, candidate))
                return candidate;
        m_lastOutput = output.Bytes();
        return OutputDiffersOnlyByCross(index) ? kMarked : kUnknown;
    }

    std::vector<int> Play(int first, int last, int16_t field = 1)
    {
        std::vector<int> shown;
        for (int index = first; index <= last; ++index)
            shown.push_back(Render(index, field));
        return shown;
    }

    // The colour of the cross in the last marked output: 'r', 'b' or '?'.
    char CrossColour() const
    {
        int red = 0, blue = 0;
        for (size_t i = 0; i + 3 < m_lastOutput.size(); i += 4) {
            red += m_lastOutput[i + 2] > 200 && m_lastOutput[i] < 60;
            blue += m_lastOutput[i] > 200 && m_lastOutput[i + 2] < 60;
        }
        return red > 0 && blue == 0 ? 'r' : blue > 0 && red == 0 ? 'b' : '?';
    }

    InProcessHost& Host() { return m_host; }
    CDeglarer& Effect() { return m_effect; }

private:
    static InProcessHost::Options Options(uint32_t instance)
    {
        InProcessHost::Options options;
        options.timeAccess = false;
        options.instanceId = instance;
        return options;
    }

    bool OutputDiffersOnlyByCross(int index) const
    {
        // The corners lie on the diagonals; the middle of the top row doesn't.
        const uint8_t* source = m_clip.Frame(index);
        const size_t middle = static_cast<size_t>(kWidth / 2) * 4 + 1;
        return m_lastOutput[middle] == source[middle] && m_lastOutput[4] != source[4];
    }

    Clip& m_clip;
    InProcessHost m_host;
    CDeglarer m_effect;
    std::vector<uint8_t> m_lastOutput;
};

std::vector<float> Steady(int count, float level = 0.4f)
{
    return std::vector<float>(count, level);
}

TEST(SequentialRender, ReplacesOneFrameFlashWithTheFrameBefore)
{
    std::vector<float> levels = Steady(30);
    levels[20] = 0.8f;
    Clip clip = GreyClip(levels);
    Player player(clip);
    const std::vector<int> shown = player.Play(0, 29);
    for (int index = 0; index < 30; ++index)
        EXPECT_EQ(shown[index], index == 20 ? 19 : index) << "frame " << index;
    EXPECT_EQ(player.Host().FetchCount(), 0u);   // this path never asks the host for frames
    EXPECT_EQ(player.Host().Leaks(), "");
}

TEST(SequentialRender, MaxFramesIsTheDistanceToTheLastGoodFrame)
{
    // A lasting brightening at 20: 20..25 wait behind the last good frame 19; 26 is 7 away and
    // is taken as the new picture.
    std::vector<float> levels = Steady(32);
    for (int index = 20; index < 32; ++index)
        levels[index] = 0.8f;
    struct Case {
        float maxFramesPosition;
        int limit;
    };
    for (const Case& c : {Case{0.2f, 2}, Case{0.0f, 1}, Case{1.0f, 10}}) {
        Clip clip = GreyClip(levels);
        Player player(clip);
        player.Host().SetMaxFrames(c.maxFramesPosition);
        const std::vector<int> shown = player.Play(0, 31);
        for (int index = 0; index < 32; ++index) {
            const bool waiting = index >= 20 && index <= 25;
            const int expected = waiting && index - 19 <= c.limit ? 19 : index;
            EXPECT_EQ(shown[index], expected) << "limit " << c.limit << ", frame " << index;
        }
    }
}

TEST(SequentialRender, TwoFrameFlashOfEvenBrightness)
{
    std::vector<float> levels = Steady(30);
    levels[20] = levels[21] = 0.8f;
    {
        Clip clip = GreyClip(levels);
        Player player(clip);   // limit 2
        const std::vector<int> shown = player.Play(0, 29);
        EXPECT_EQ(shown[20], 19);
        EXPECT_EQ(shown[21], 19);
        EXPECT_EQ(shown[22], 22);
    }
    {
        Clip clip = GreyClip(levels);
        Player player(clip);
        player.Host().SetMaxFrames(0.0f);   // limit 1
        player.Host().SetTestMode(true);
        player.Play(0, 19);
        EXPECT_EQ(player.Render(20), kMarked);
        EXPECT_EQ(player.CrossColour(), 'r');
        EXPECT_EQ(player.Render(20), kMarked);   // rendered twice in a row: the same decision
        EXPECT_EQ(player.CrossColour(), 'r');
        EXPECT_EQ(player.Render(21), kMarked);   // two frames from the last good one: spared
        EXPECT_EQ(player.CrossColour(), 'b');
        EXPECT_EQ(player.Render(22), 22);
    }
}

TEST(SequentialRender, TestModeMarksReplacedRedAndSparedBlue)
{
    std::vector<float> levels = Steady(12);
    levels[5] = levels[6] = levels[7] = 0.8f;
    Clip clip = GreyClip(levels);
    Player player(clip);   // limit 2: 5 and 6 replaced, 7 spared
    player.Host().SetTestMode(true);
    player.Play(0, 4);
    EXPECT_EQ(player.Render(5), kMarked);
    EXPECT_EQ(player.CrossColour(), 'r');
    EXPECT_EQ(player.Render(6), kMarked);
    EXPECT_EQ(player.CrossColour(), 'r');
    EXPECT_EQ(player.Render(7), kMarked);
    EXPECT_EQ(player.CrossColour(), 'b');
    EXPECT_EQ(player.Render(8), 8);
}

TEST(SequentialRender, FirstFrameIsNeverReplaced)
{
    std::vector<float> levels = Steady(8);
    levels[0] = 0.9f;
    Clip clip = GreyClip(levels);
    Player player(clip);
    EXPECT_EQ(player.Play(0, 7), (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7}));
}

TEST(SequentialRender, LampSwitchedOnStaysUp)
{
    std::vector<float> levels = Steady(10);
    for (int index = 10; index < 40; ++index)
        levels.push_back(0.75f);
    Clip clip = GreyClip(levels);
    Player player(clip);
    const std::vector<int> shown = player.Play(0, 39);
    // 10 and 11 are replaced (limit 2), 12..15 wait as they are, 16 onward is the new picture.
    for (int index = 0; index < 40; ++index)
        EXPECT_EQ(shown[index], index == 10 || index == 11 ? 9 : index) << "frame " << index;
}

TEST(SequentialRender, DarkFramesPassAndEmptyTheMemory)
{
    // A slow fade to black, then a flash right behind the dark stretch: with the memory emptied
    // the flash starts a new memory and goes out as it is.
    std::vector<float> levels;
    for (int index = 0; index < 20; ++index)
        levels.push_back(0.4f * (1.0f - index / 20.0f) + 0.005f);
    levels.push_back(0.01f);
    levels.push_back(0.8f);
    levels.push_back(0.4f);
    Clip clip = GreyClip(levels);
    Player player(clip);
    const std::vector<int> shown = player.Play(0, static_cast<int>(levels.size()) - 1);
    for (int index = 0; index < static_cast<int>(levels.size()); ++index)
        EXPECT_EQ(shown[index], index) << "frame " << index;

    // Right behind a flashed frame a dark frame counts as flashed while within reach.
    std::vector<float> behindFlash = Steady(12);
    behindFlash[6] = 0.8f;
    behindFlash[7] = 0.01f;
    Clip second = GreyClip(behindFlash);
    Player other(second);
    const std::vector<int> secondShown = other.Play(0, 11);
    EXPECT_EQ(secondShown[6], 5);
    EXPECT_EQ(secondShown[7], 5);
    EXPECT_EQ(secondShown[8], 8);
}

TEST(SequentialRender, ChangingAParameterResetsTheMemory)
{
    std::vector<float> levels = Steady(12);
    levels[5] = levels[6] = levels[7] = 0.8f;
    Clip clip = GreyClip(levels);
    Player player(clip);
    player.Play(0, 4);
    EXPECT_EQ(player.Render(5), 4);
    player.Host().SetSensitivity(0.75f);   // same threshold, but a changed value all the same
    EXPECT_EQ(player.Render(6), 6);        // the flash in progress now counts as good
    EXPECT_EQ(player.Render(7), 7);
    EXPECT_EQ(player.Render(8), 8);
}

TEST(SequentialRender, JumpsAndStepsBackStartAfresh)
{
    std::vector<float> levels = Steady(16);
    levels[12] = 0.8f;
    levels[10] = 0.8f;
    Clip clip = GreyClip(levels);
    Player player(clip);
    player.Play(0, 9);
    EXPECT_EQ(player.Render(10), 9);   // in order: replaced
    EXPECT_EQ(player.Render(11), 11);
    EXPECT_EQ(player.Render(12), 11);
    EXPECT_EQ(player.Render(12), 11);  // twice: the memory goes on, same picture
    EXPECT_EQ(player.Render(10), 10);  // a step back resets: the flash is its own predecessor
    EXPECT_EQ(player.Render(11), 11);
    EXPECT_EQ(player.Render(14), 14);  // a jump forward resets
    EXPECT_EQ(player.Render(12), 12);  // behind the last good frame: reset
}

TEST(SequentialRender, FieldsAndHostInstancesKeepSeparateMemories)
{
    std::vector<float> levels = Steady(10);
    levels[5] = 0.8f;
    Clip clip = GreyClip(levels);
    Player player(clip);
    player.Play(0, 4, 1);
    EXPECT_EQ(player.Render(5, 2), 5);   // field 2 has seen nothing: a fresh start
    EXPECT_EQ(player.Render(5, 3), 5);   // and so has field 3
    EXPECT_EQ(player.Render(5, 1), 4);   // field 1 remembers frame 4

    // A second host instance rendering the same id keeps its own memory.
    InProcessHost::Options options;
    options.timeAccess = false;
    options.instanceId = 2;
    InProcessHost otherHost(clip, options);
    Picture output(kWidth, kHeight, pfVideoSample);
    FrameParams destination = output.Params();
    ASSERT_TRUE(otherHost.RenderFrame(&player.Effect(), 5, &destination, 1));
    EXPECT_TRUE(output.SameAs(clip, 5));
    EXPECT_EQ(player.Render(6, 1), 6);
}

std::atomic<uint64_t> g_now{1000};
uint64_t ManualClock() { return g_now.load(); }

TEST(SequentialRender, MemoryExpiresAfterTenSecondsOfSilence)
{
    Platform::SetMillisecondSourceForTesting(&ManualClock);
    std::vector<float> levels = Steady(10);
    levels[5] = 0.8f;
    for (uint64_t pause : {10000u, 10001u}) {
        Clip clip = GreyClip(levels);
        Player player(clip);
        player.Play(0, 4);
        g_now += pause;
        EXPECT_EQ(player.Render(5), pause <= 10000 ? 4 : 5) << "pause " << pause;
    }
    Platform::SetMillisecondSourceForTesting(nullptr);
}

TEST(SequentialRender, FrameSizeChangeInTheMiddleFallsBackToTheSource)
{
    std::vector<float> levels = Steady(8);
    levels[5] = 0.8f;
    Clip small = GreyClip(levels);
    Clip large = GreyClip(levels, kWidth * 2, kHeight);
    InProcessHost::Options options;
    options.timeAccess = false;
    InProcessHost host(small, options);
    CDeglarer effect;
    effect.SetId(FreshId());
    for (int index = 0; index < 5; ++index) {
        Picture output(kWidth, kHeight, pfVideoSample);
        FrameParams destination = output.Params();
        ASSERT_TRUE(host.RenderFrame(&effect, index, &destination));
    }
    // Frame 5 comes at another size: the remembered frame doesn't fit it.
    FrameParams source = large.Params(5);
    Picture output(kWidth * 2, kHeight, pfVideoSample);
    FrameParams destination = output.Params();
    RenderInfo info = host.MakeRenderInfo(5);
    ASSERT_TRUE(effect.Render(&host, &source, nullptr, &destination, &info));
    EXPECT_TRUE(output.SameAs(large, 5));
    EXPECT_EQ(host.Leaks(), "");
}

} // namespace
