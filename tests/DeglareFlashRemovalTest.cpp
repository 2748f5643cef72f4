// The deglare program with the real effect on clips that carry flashes: every output frame is
// checked, losslessly, against the input frame it must show.
#include <gtest/gtest.h>

#include <algorithm>

#include <nlohmann/json.hpp>

#include "DeglareTestSupport.h"

namespace {

using namespace Deglare;
using namespace DeglareTest;

const int kFrames = 30;
const int kOneFrameFlash = 4;
const int kPartialFlash = 9;            // the lower half only, as a rolling shutter gives
const int kBurstFirst = 13;             // three frames: 13, 14 (the brightest) and 15
const int kLampOn = 19;                 // and it stays on to the end

// Steady frames of 0.40 to 0.42 (steps well under the default threshold of 0.0559) with the
// flashes above; the lamp lifts the scene to 0.60 to 0.62. The lower half adds the partial flash.
std::vector<float> Levels(bool lower)
{
    std::vector<float> levels;
    for (int index = 0; index < kFrames; ++index)
        levels.push_back((index >= kLampOn ? 0.60f : 0.40f) + 0.01f * (index % 3));
    levels[kOneFrameFlash] = 0.80f;
    levels[kBurstFirst] = 0.70f;
    levels[kBurstFirst + 1] = 0.85f;
    levels[kBurstFirst + 2] = 0.75f;
    if (lower)
        levels[kPartialFlash] = 0.85f;
    return levels;
}

// With time access a lone flashed frame takes the frame before it; "Max Frames" 2 replaces the
// two brightest of the burst, the middle one by the burst's first frame, which itself is
// spared, and the last one by the clean frame behind the burst; the lamp's first frame goes,
// the lamp stays. Without time access a flashed frame takes the last good frame behind it,
// within "Max Frames"; the burst's falling last frame and the lamp after 6 frames count as good.
const std::map<int, int> kTimeAccessReplaced = {
    {kOneFrameFlash, 3}, {kPartialFlash, 8}, {14, 13}, {15, 16}, {kLampOn, 18}};
const std::map<int, int> kSequentialReplaced = {
    {kOneFrameFlash, 3}, {kPartialFlash, 8}, {13, 12}, {14, 12}, {kLampOn, 18}, {20, 18}};
const std::set<int> kSequentialSpared = {21, 22, 23, 24};

struct FlashCase {
    const char* name;
    std::vector<std::string> options;
    std::map<int, int> replaced;        // frame -> the frame shown in its place
    std::set<int> spared;               // flagged, shown as they are
    AVPixelFormat format = AV_PIX_FMT_YUV420P;
    int width = 64, height = 48;
    bool variableRate = false;
};

// "Test mode" puts the crosses into the output instead: every flagged frame comes out marked,
// and the report still tells the substitutes.
TEST(DeglareFlashRemoval, FlashedFramesShowTheRightNeighboursAndOthersAreUntouched)
{
    const FlashCase cases[] = {
        {"time access", {}, kTimeAccessReplaced, {13}},
        {"time access, Max Frames 3", {"--max-frames", "3"},
         {{kOneFrameFlash, 3}, {kPartialFlash, 8}, {13, 12}, {14, 12}, {15, 16}, {kLampOn, 18}}, {}},
        {"sequential", {"--sequential"}, kSequentialReplaced, kSequentialSpared},
        {"10-bit", {}, kTimeAccessReplaced, {13}, AV_PIX_FMT_YUV420P10LE},
        {"odd size", {}, kTimeAccessReplaced, {13}, AV_PIX_FMT_YUV420P, 65, 49},
        {"variable frame rate", {}, kTimeAccessReplaced, {13}, AV_PIX_FMT_YUV420P, 64, 48, true},
        {"variable frame rate, sequential", {"--sequential"}, kSequentialReplaced, kSequentialSpared,
         AV_PIX_FMT_YUV420P, 64, 48, true},
        {"4 threads", {"--threads", "4"}, kTimeAccessReplaced, {13}},
        {"test mode", {"--test-mode"}, kTimeAccessReplaced, {13}},
        {"test mode, sequential", {"--test-mode", "--sequential"}, kSequentialReplaced, kSequentialSpared},
    };
    for (const FlashCase& test : cases) {
        SCOPED_TRACE(test.name);
        TempFolder folder;
        ClipRecipe recipe;
        recipe.width = test.width;
        recipe.height = test.height;
        recipe.pixelFormat = test.format;
        recipe.frameCount = kFrames;
        recipe.audio = true;
        if (test.variableRate) {
            recipe.timeBase = {1, 1000};
            for (int index = 0, time = 0; index < kFrames; ++index, time += index % 4 == 0 ? 90 : 33)
                recipe.timestamps.push_back(time);
        }
        const std::string input = folder.Path("in.mkv");
        const std::string output = folder.Path("out.mkv");
        WriteClip(input, recipe, Scene(Levels(false), Levels(true)));

        std::vector<std::string> arguments = {input, output, "--codec", "ffv1", "--quiet", "--report",
                                              folder.Path("report.json")};
        arguments.insert(arguments.end(), test.options.begin(), test.options.end());
        const ProgramRun run = RunDeglare(arguments);
        ASSERT_EQ(run.status, 0) << run.err;

        std::map<int, int> shown = test.replaced;
        if (std::count(test.options.begin(), test.options.end(), "--test-mode") != 0) {
            for (auto& replacement : shown)
                replacement.second = -1;
            for (int index : test.spared)
                shown[index] = -1;
        }
        const ReadClip before = ReadBack(input);
        const ReadClip after = ReadBack(output);
        EXPECT_EQ(ShownFrames(after, before), ShownWith(kFrames, shown));
        EXPECT_EQ(after.pixelFormat, before.pixelFormat);
        ASSERT_EQ(after.frames.size(), before.frames.size());
        ASSERT_EQ(after.otherPackets.size(), before.otherPackets.size());
        for (size_t index = 0; index < before.otherPackets.size(); ++index)
            EXPECT_TRUE(after.otherPackets[index].data == before.otherPackets[index].data) << "packet " << index;

        // The report tells the same story, frame by frame, with the time of each frame.
        const nlohmann::json report = nlohmann::json::parse(ReadFile(folder.Path("report.json")));
        ASSERT_EQ(report["frames"].size(), static_cast<size_t>(kFrames));
        std::vector<std::string> told;
        for (int index = 0; index < kFrames; ++index) {
            const nlohmann::json& frame = report["frames"][index];
            told.push_back(Told(frame["decision"], frame.value("substitute", -1)));
            EXPECT_EQ(av_rescale_q(after.frames[index].pts, after.timeBase, before.timeBase), before.frames[index].pts)
                << "frame " << index;
            EXPECT_NEAR(frame["time"].get<double>(), before.frames[index].pts * av_q2d(before.timeBase), 1e-6)
                << "frame " << index;
        }
        EXPECT_EQ(told, ToldFor(kFrames, test.replaced, test.spared));
    }
}

} // namespace
