// The command-line host's machinery, run in process over generated files with a scripted
// stand-in for the effect: which picture goes out, what is reported, where frames come from.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "../host/deglare/EffectModule.h"
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
        settings.input = WriteSteadyClip(folder.Path("input.mkv"), kFrames, recipe);
        settings.output = folder.Path("output.mkv");
        settings.encoder.codec = "ffv1";
        settings.threads = 2;
    }

    TempFolder folder;
    RunSettings settings;
};

// The original picture of the frame that came back goes out; test mode encodes the marked
// pictures and still tells the substitute; an analysis measures and decides and writes nothing.
// The window is of the least size, far smaller than the clip, yet substitutes near the frame
// are never decoded a second time; frames further off are the thread tests' part.
TEST_F(PipelineTest, EncodesTheOriginalPictureOfTheFrameThatCameBack)
{
    struct Case {
        const char* name;
        bool sequential, testMode, analyze;
        std::map<int, int> replacements;
        std::map<int, int> shown;
    };
    // Without time access the effect can only show frames it saw before.
    const Case cases[] = {
        {"time access", false, false, false, {{10, 9}, {20, 21}, {21, 22}}, {{10, 9}, {20, 21}, {21, 22}}},
        {"sequential", true, false, false, {{10, 9}, {20, 18}, {21, 18}}, {{10, 9}, {20, 18}, {21, 18}}},
        {"test mode", false, true, false, {{10, 9}}, {{10, -1}, {15, -1}}},
        {"analysis", false, false, true, {{5, 6}, {12, 11}}, {}},
    };
    settings.memoryBudget = 1;
    settings.measure = true;
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        ScriptedEffect effect;
        effect.replacements = test.replacements;
        effect.spared = {15};
        settings.sequential = test.sequential;
        settings.effect.testMode = test.testMode;
        settings.analyze = test.analyze;
        const PipelineRun run = RunPipeline(&effect, settings);
        EXPECT_EQ(run.shown, test.analyze ? std::vector<int>{} : ShownWith(kFrames, test.shown));
        EXPECT_EQ(run.told, ToldFor(kFrames, test.replacements, {15}));
        EXPECT_LT(run.result.windowFrames, kFrames);
        EXPECT_EQ(run.result.farDecodedFrames, 0);
        for (const FrameRecord& record : run.result.frames) {
            EXPECT_TRUE(record.measured);
            // Each frame is a scene of level 0.40 to 0.42 with a texture that averages out.
            for (float band : record.bands.band)
                EXPECT_NEAR(band, 0.41f, 0.05f);
            EXPECT_NEAR(record.time, record.index / 25.0, 1e-9);
        }
        EXPECT_EQ(folder.Files().size(), test.analyze ? 1u : 2u) << "an analysis writes nothing";
        std::filesystem::remove(settings.output);
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
    WriteClip(settings.input, recipe, Scene(levels));
    settings.analyze = true;
    settings.effect.maxFramesPosition = MaxFramesPosition(10);
    EffectModule module(DEGLARER_BUNDLE_PATH);
    const RunResult result = RunPipeline(module.Effect(), settings).result;

    EXPECT_EQ(result.farDecodedFrames, 0);
    ASSERT_EQ(result.frames.size(), static_cast<size_t>(kFrames));
    for (int index = runStart; index < runStart + runLength; ++index) {
        EXPECT_EQ(result.frames[index].decision, Decision::Replaced) << "frame " << index;
        EXPECT_TRUE(result.frames[index].substitute == runStart - 1 ||
                    result.frames[index].substitute == runStart + runLength)
            << "frame " << index;
    }
}

} // namespace
