// The deglare program with the real effect on clips that carry flashes: every output frame is
// checked, losslessly, against the input frame it must show.
#include <gtest/gtest.h>

#include <map>
#include <set>

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
// flashes above; the lamp lifts the scene to 0.60 to 0.62.
std::vector<float> UpperLevels()
{
    std::vector<float> levels;
    for (int index = 0; index < kFrames; ++index)
        levels.push_back((index >= kLampOn ? 0.60f : 0.40f) + 0.01f * (index % 3));
    levels[kOneFrameFlash] = 0.80f;
    levels[kBurstFirst] = 0.70f;
    levels[kBurstFirst + 1] = 0.85f;
    levels[kBurstFirst + 2] = 0.75f;
    return levels;
}

std::vector<float> LowerLevels()
{
    std::vector<float> levels = UpperLevels();
    levels[kPartialFlash] = 0.85f;
    return levels;
}

// Frame -1 means "a marked picture, none of the input's".
std::vector<int> Shown(const std::map<int, int>& changed)
{
    std::vector<int> shown;
    for (int index = 0; index < kFrames; ++index) {
        const auto change = changed.find(index);
        shown.push_back(change == changed.end() ? index : change->second);
    }
    return shown;
}

struct FlashCase {
    const char* name;
    int width, height;
    AVPixelFormat format;
    bool variableRate;
    std::vector<std::string> options;
    std::map<int, int> replaced;        // frame -> the frame shown in its place
    std::set<int> spared;               // flagged, shown as they are
};

// With time access a lone flashed frame takes the frame before it; "Max Frames" 2 replaces the
// two brightest of the burst, the middle one by the burst's first frame, which itself is
// spared, and the last one by the clean frame behind the burst; the lamp's first frame goes,
// the lamp stays. Without time access a
// flashed frame takes the last good frame behind it, within "Max Frames"; the burst's falling
// last frame and the lamp after 6 frames count as good.
const std::map<int, int> kTimeAccessReplaced = {
    {kOneFrameFlash, 3}, {kPartialFlash, 8}, {14, 13}, {15, 16}, {kLampOn, 18}};
const std::map<int, int> kSequentialReplaced = {
    {kOneFrameFlash, 3}, {kPartialFlash, 8}, {13, 12}, {14, 12}, {kLampOn, 18}, {20, 18}};

TEST(DeglareFlashRemoval, FlashedFramesShowTheRightNeighboursAndOthersAreUntouched)
{
    const FlashCase cases[] = {
        {"time access", 64, 48, AV_PIX_FMT_YUV420P, false, {}, kTimeAccessReplaced, {13}},
        {"time access, Max Frames 3", 64, 48, AV_PIX_FMT_YUV420P, false, {"--max-frames", "3"},
         {{kOneFrameFlash, 3}, {kPartialFlash, 8}, {13, 12}, {14, 12}, {15, 16}, {kLampOn, 18}}, {}},
        {"sequential", 64, 48, AV_PIX_FMT_YUV420P, false, {"--sequential"}, kSequentialReplaced,
         {21, 22, 23, 24}},
        {"10-bit", 64, 48, AV_PIX_FMT_YUV420P10LE, false, {}, kTimeAccessReplaced, {13}},
        {"odd size", 65, 49, AV_PIX_FMT_YUV420P, false, {}, kTimeAccessReplaced, {13}},
        {"variable frame rate", 64, 48, AV_PIX_FMT_YUV420P, true, {}, kTimeAccessReplaced, {13}},
        {"variable frame rate, sequential", 64, 48, AV_PIX_FMT_YUV420P, true, {"--sequential"},
         kSequentialReplaced, {21, 22, 23, 24}},
        {"4 threads", 64, 48, AV_PIX_FMT_YUV420P, false, {"--threads", "4"}, kTimeAccessReplaced, {13}},
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
        WriteClip(input, recipe, Scene(UpperLevels(), LowerLevels()));

        std::vector<std::string> arguments = {input, output, "--codec", "ffv1", "--quiet", "--report",
                                              folder.Path("report.json")};
        arguments.insert(arguments.end(), test.options.begin(), test.options.end());
        const ProgramRun run = RunDeglare(arguments);
        ASSERT_EQ(run.status, 0) << run.err;

        const ReadClip before = ReadBack(input);
        const ReadClip after = ReadBack(output);
        EXPECT_EQ(ShownFrames(after, before), Shown(test.replaced));
        ASSERT_EQ(after.frames.size(), before.frames.size());
        for (size_t index = 0; index < before.frames.size(); ++index)
            EXPECT_EQ(av_rescale_q(after.frames[index].pts, after.timeBase, before.timeBase),
                      before.frames[index].pts)
                << "frame " << index;
        EXPECT_EQ(after.pixelFormat, before.pixelFormat);
        ASSERT_EQ(after.otherPackets.size(), before.otherPackets.size());
        for (size_t index = 0; index < before.otherPackets.size(); ++index)
            EXPECT_TRUE(after.otherPackets[index].data == before.otherPackets[index].data) << "packet " << index;

        // The report tells the same story, frame by frame, with the time of each frame.
        const nlohmann::json report = nlohmann::json::parse(ReadFile(folder.Path("report.json")));
        ASSERT_EQ(report["frames"].size(), static_cast<size_t>(kFrames));
        for (int index = 0; index < kFrames; ++index) {
            const nlohmann::json& frame = report["frames"][index];
            const double seconds = before.frames[index].pts * av_q2d(before.timeBase);
            EXPECT_NEAR(frame["time"].get<double>(), seconds, 1e-6) << "frame " << index;
            const auto replacement = test.replaced.find(index);
            if (replacement != test.replaced.end()) {
                EXPECT_EQ(frame["decision"], "replaced") << "frame " << index;
                EXPECT_EQ(frame["substitute"], replacement->second) << "frame " << index;
            } else {
                EXPECT_EQ(frame["decision"], test.spared.count(index) ? "spared" : "kept") << "frame " << index;
            }
        }
    }
}

// "Test mode" puts the crosses into the output instead: every frame the effect flagged comes
// out marked, every other frame untouched.
TEST(DeglareFlashRemoval, TestModeMarksExactlyTheFlaggedFrames)
{
    for (const bool sequential : {false, true}) {
        SCOPED_TRACE(sequential ? "sequential" : "time access");
        TempFolder folder;
        ClipRecipe recipe;
        recipe.frameCount = kFrames;
        const std::string input = folder.Path("in.mkv");
        WriteClip(input, recipe, Scene(UpperLevels(), LowerLevels()));
        std::vector<std::string> arguments = {input, folder.Path("out.mkv"), "--codec", "ffv1", "--quiet",
                                              "--test-mode"};
        if (sequential)
            arguments.push_back("--sequential");
        const ProgramRun run = RunDeglare(arguments);
        ASSERT_EQ(run.status, 0) << run.err;

        std::map<int, int> marked;
        for (const auto& replacement : sequential ? kSequentialReplaced : kTimeAccessReplaced)
            marked[replacement.first] = -1;
        for (int index : sequential ? std::set<int>{21, 22, 23, 24} : std::set<int>{13})
            marked[index] = -1;
        EXPECT_EQ(ShownFrames(ReadBack(folder.Path("out.mkv")), ReadBack(input)), Shown(marked));
    }
}

} // namespace
