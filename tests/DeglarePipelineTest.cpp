// The command-line host's machinery, run in process over generated files with a scripted
// stand-in for the effect: which picture goes out, what is reported, where frames come from.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "../host/deglare/EffectModule.h"
#include "../host/deglare/ExitStatus.h"
#include "../host/deglare/Pipeline.h"
#include "../host/deglare/SliderPositions.h"
#include "DeglareTestSupport.h"
#include "ScriptedEffect.h"

namespace {

using namespace Deglare;
using namespace DeglareTest;

const int kFrames = 30;

class PipelineTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ClipRecipe recipe;
        recipe.audio = true;
        input = WriteSteadyClip(folder.Path("input.mkv"), kFrames, recipe);
        settings.input = input;
        settings.output = folder.Path("output.mkv");
        settings.encoder.codec = "ffv1";
        settings.threads = 2;
    }

    RunResult Run(ScriptedEffect& effect)
    {
        Console console(messages, false, true);
        return Pipeline(&effect, console).Run(settings);
    }

    TempFolder folder;
    std::string input;
    RunSettings settings;
    std::ostringstream messages;
};

std::vector<int> Identity(int count)
{
    std::vector<int> frames;
    for (int index = 0; index < count; ++index)
        frames.push_back(index);
    return frames;
}

TEST_F(PipelineTest, EncodesTheOriginalPictureOfTheFrameThatCameBack)
{
    struct Case {
        const char* name;
        bool sequential;
        std::map<int, int> replacements;
    };
    // Without time access the effect can only show frames it saw before.
    const Case cases[] = {
        {"time access", false, {{10, 9}, {20, 21}, {21, 22}}},
        {"sequential", true, {{10, 9}, {20, 18}, {21, 18}}},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        ScriptedEffect effect;
        effect.replacements = test.replacements;
        effect.spared = {15};
        settings.sequential = test.sequential;
        const RunResult result = Run(effect);

        const ReadClip before = ReadBack(input);
        const ReadClip after = ReadBack(settings.output);
        std::vector<int> expected = Identity(kFrames);
        for (const auto& replacement : test.replacements)
            expected[replacement.first] = replacement.second;
        EXPECT_EQ(ShownFrames(after, before), expected);
        ASSERT_EQ(after.frames.size(), before.frames.size());
        for (size_t index = 0; index < before.frames.size(); ++index)
            EXPECT_EQ(after.frames[index].pts, before.frames[index].pts) << "frame " << index;

        ASSERT_EQ(result.frames.size(), static_cast<size_t>(kFrames));
        for (const FrameRecord& record : result.frames) {
            auto replacement = test.replacements.find(record.index);
            if (replacement != test.replacements.end()) {
                EXPECT_EQ(record.decision, Decision::Replaced) << "frame " << record.index;
                EXPECT_EQ(record.substitute, replacement->second);
            } else if (record.index == 15) {
                EXPECT_EQ(record.decision, Decision::Spared);
            } else {
                EXPECT_EQ(record.decision, Decision::Kept) << "frame " << record.index;
            }
        }
    }
}

TEST_F(PipelineTest, TestModeEncodesMarkedPicturesAndStillTellsTheSubstitute)
{
    ScriptedEffect effect;
    effect.replacements = {{10, 9}};
    effect.spared = {15};
    settings.effect.testMode = true;
    const RunResult result = Run(effect);

    std::vector<int> expected = Identity(kFrames);
    expected[10] = -1;
    expected[15] = -1;
    EXPECT_EQ(ShownFrames(ReadBack(settings.output), ReadBack(input)), expected);
    EXPECT_EQ(result.frames[10].decision, Decision::Replaced);
    EXPECT_EQ(result.frames[10].substitute, 9);
    EXPECT_EQ(result.frames[15].decision, Decision::Spared);
}

TEST_F(PipelineTest, AnalysisDecidesAndMeasuresWithoutWriting)
{
    ScriptedEffect effect;
    effect.replacements = {{12, 11}};
    settings.analyze = true;
    settings.measure = true;
    const RunResult result = Run(effect);

    EXPECT_FALSE(FileExists(settings.output));
    EXPECT_EQ(folder.Files(), std::vector<std::string>{"input.mkv"});
    ASSERT_EQ(result.frames.size(), static_cast<size_t>(kFrames));
    EXPECT_EQ(result.frames[12].decision, Decision::Replaced);
    EXPECT_EQ(result.frames[12].substitute, 11);
    for (const FrameRecord& record : result.frames) {
        EXPECT_TRUE(record.measured);
        // Each frame is a scene of level 0.40 to 0.42 with a texture that averages out.
        for (float band : record.bands.band) {
            EXPECT_GT(band, 0.35f);
            EXPECT_LT(band, 0.45f);
        }
        EXPECT_NEAR(record.time, record.index / 25.0, 1e-9);
    }
}

TEST_F(PipelineTest, FramesOutsideTheWindowAreDecodedApartAndOthersOnce)
{
    // A window of the least size, far smaller than the clip.
    settings.memoryBudget = 1;
    settings.threads = 1;
    {
        ScriptedEffect effect;
        effect.replacements = {{5, 6}, {20, 19}};
        const RunResult result = Run(effect);
        EXPECT_LT(result.windowFrames, kFrames);
        EXPECT_EQ(result.farDecodedFrames, 0) << "the common path decodes each frame once";
    }
    {
        ScriptedEffect effect;
        effect.replacements = {{27, 1}, {2, 29}};
        effect.looksAt = {{4, {28, 27, 26}}, {25, {3, 2, 1, 0}}};
        const RunResult result = Run(effect);
        EXPECT_GT(result.farDecodedFrames, 0);
        EXPECT_EQ(effect.MissedFetches(), 0);
        std::vector<int> expected = Identity(kFrames);
        expected[27] = 1;
        expected[2] = 29;
        EXPECT_EQ(ShownFrames(ReadBack(settings.output), ReadBack(input)), expected);
    }
}

// The window keeps behind the render only what "Max Frames" lets a substitute reach: a run of
// ten climbing frames, all replaced with "Max Frames" 10, takes substitutes up to five frames
// back, and none of them is decoded a second time.
TEST_F(PipelineTest, RealEffectFindsFarthestSubstitutesInTheWindow)
{
    const int runStart = 10, runLength = 10;
    std::vector<float> levels(kFrames, 0.30f);
    for (int step = 1; step <= runLength; ++step)
        levels[runStart + step - 1] = 0.30f * std::pow(1.1f, static_cast<float>(step));
    ClipRecipe recipe;
    recipe.frameCount = kFrames;
    WriteClip(input, recipe, Scene(levels));
    settings.analyze = true;
    settings.effect.maxFramesPosition = MaxFramesPosition(10);
    EffectModule module(DEGLARER_BUNDLE_PATH);
    Console console(messages, false, true);
    const RunResult result = Pipeline(module.Effect(), console).Run(settings);

    EXPECT_EQ(result.farDecodedFrames, 0);
    ASSERT_EQ(result.frames.size(), static_cast<size_t>(kFrames));
    for (int index = runStart; index < runStart + runLength; ++index) {
        EXPECT_EQ(result.frames[index].decision, Decision::Replaced) << "frame " << index;
        EXPECT_TRUE(result.frames[index].substitute == runStart - 1 ||
                    result.frames[index].substitute == runStart + runLength)
            << "frame " << index;
    }
}

TEST_F(PipelineTest, InterruptionLeavesAnExistingOutputAlone)
{
    WriteFile(settings.output, "an older file");
    std::atomic<bool> interrupted{true};
    settings.interrupted = &interrupted;
    ScriptedEffect effect;
    try {
        Run(effect);
        FAIL() << "an interrupted run must fail";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Status(), ExitStatus::Interrupted);
    }
    EXPECT_EQ(ReadFile(settings.output), "an older file");
    EXPECT_EQ(folder.Files(), (std::vector<std::string>{"input.mkv", "output.mkv"}));
}

} // namespace
