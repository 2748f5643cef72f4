// The deglare program with the real effect on clips that carry flashes, in several containers,
// depths, sizes and timings, on both paths: every output frame is checked, losslessly, against
// the input frame it must show, with the audio, timing, colour properties and rotation beside
// it, and the report and plot are read back.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include <cairo.h>
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
const std::set<int> kTimeAccessSpared = {13};
const std::map<int, int> kSequentialReplaced = {
    {kOneFrameFlash, 3}, {kPartialFlash, 8}, {13, 12}, {14, 12}, {kLampOn, 18}, {20, 18}};
const std::set<int> kSequentialSpared = {21, 22, 23, 24};

// A report's frames as the tests compare them, read from its JSON or its CSV form.
struct ReportRow {
    double time, sum;
    std::vector<float> bands;
    std::string told;
};
std::vector<ReportRow> ReadReport(const std::string& path)
{
    std::vector<ReportRow> rows;
    if (path.substr(path.size() - 5) == ".json") {
        const nlohmann::json report = nlohmann::json::parse(ReadFile(path));
        EXPECT_EQ(report["summary"]["framesRead"], kFrames);
        EXPECT_EQ(report["runs"].size(), 4u) << "the one-frame, partial and burst flashes, and the lamp";
        for (const nlohmann::json& frame : report["frames"]) {
            EXPECT_EQ(frame["index"], rows.size());
            rows.push_back({frame["time"], frame["sum"], frame["bands"],
                            Told(frame["decision"], frame.value("substitute", -1))});
        }
        return rows;
    }
    std::istringstream csv(ReadFile(path));
    std::string line;
    std::getline(csv, line);
    EXPECT_EQ(line, "index,time,band0,band1,band2,band3,sum,decision,substitute");
    while (std::getline(csv, line) && !line.empty()) {
        EXPECT_EQ(std::count(line.begin(), line.end(), ','), 8) << line;
        ReportRow row{0.0, 0.0, std::vector<float>(4), ""};
        int index = -1, substitute = -1;
        std::string decision;
        std::replace(line.begin(), line.end(), ',', ' ');
        std::istringstream(line) >> index >> row.time >> row.bands[0] >> row.bands[1] >> row.bands[2] >>
            row.bands[3] >> row.sum >> decision >> substitute;
        EXPECT_EQ(index, static_cast<int>(rows.size())) << line;
        // A frame not replaced has an empty substitute: its row ends with the comma.
        EXPECT_EQ(line.back() == ' ', substitute < 0) << line;
        row.told = Told(decision, substitute);
        rows.push_back(row);
    }
    std::getline(csv, line);
    EXPECT_EQ(line, "run,first,last,replaced,spared");
    int runs = 0;
    while (std::getline(csv, line) && !line.empty())
        ++runs;
    EXPECT_EQ(runs, 4);
    return rows;
}

struct FlashCase {
    const char* name;
    std::vector<std::string> options;
    std::map<int, int> replaced;        // frame -> the frame shown in its place
    std::set<int> spared;               // flagged, shown as they are
    std::string container = "mkv";
    AVPixelFormat format = AV_PIX_FMT_YUV420P;
    int width = 64, height = 48;
    bool variableRate = false;
    std::string report = "report.json";
    std::string plot = "";
    int startFrame = 0;                 // the video starts this many frames after the audio
};

// "Test mode" puts the crosses into the output instead: every flagged frame comes out marked,
// and the report still tells the substitutes. An analysis writes the report and plot alone.
TEST(DeglareFlashRemoval, FlashedFramesShowTheRightNeighboursAndAllElseIsKept)
{
    const FlashCase cases[] = {
        {"time access", {}, kTimeAccessReplaced, kTimeAccessSpared, "mkv", AV_PIX_FMT_YUV420P, 64, 48, false,
         "report.json", "plot.png"},
        {"analysis", {"--analyze"}, kTimeAccessReplaced, kTimeAccessSpared, "mkv", AV_PIX_FMT_YUV420P, 64, 48,
         false, "report.csv", "plot.svg"},
        {"time access, Max Frames 3", {"--max-frames", "3"},
         {{kOneFrameFlash, 3}, {kPartialFlash, 8}, {13, 12}, {14, 12}, {15, 16}, {kLampOn, 18}}, {}},
        {"sequential", {"--sequential"}, kSequentialReplaced, kSequentialSpared},
        {"odd size, 10-bit", {}, kTimeAccessReplaced, kTimeAccessSpared, "mkv", AV_PIX_FMT_YUV420P10LE, 65, 49},
        {"variable frame rate", {}, kTimeAccessReplaced, kTimeAccessSpared, "mkv", AV_PIX_FMT_YUV420P, 64, 48, true},
        // NUT keeps each stream's own time base, so copied packets must be rescaled to theirs.
        {"variable frame rate, sequential, NUT", {"--sequential"}, kSequentialReplaced, kSequentialSpared, "nut",
         AV_PIX_FMT_YUV420P, 64, 48, true},
        {"4 threads, AVI, 4:4:4", {"--threads", "4"}, kTimeAccessReplaced, kTimeAccessSpared, "avi",
         AV_PIX_FMT_YUV444P},
        // MOV takes no ffv1; libx264 at crf 0 is lossless too, and MOV carries the rotation.
        {"MOV", {"--codec", "libx264", "--crf", "0"}, kTimeAccessReplaced, kTimeAccessSpared, "mov"},
        // Video that starts 2 s after its audio: MP4 writes an edit list and the stream a start time.
        {"MP4 behind its audio", {"--codec", "libx264", "--crf", "0"}, kTimeAccessReplaced, kTimeAccessSpared, "mp4",
         AV_PIX_FMT_YUV420P, 64, 48, false, "report.json", "", 50},
        {"RGB, sequential", {"--sequential"}, kSequentialReplaced, kSequentialSpared, "mkv", AV_PIX_FMT_BGR0},
        {"test mode", {"--test-mode"}, kTimeAccessReplaced, kTimeAccessSpared},
        {"test mode, sequential", {"--test-mode", "--sequential"}, kSequentialReplaced, kSequentialSpared},
    };
    std::vector<ReportRow> firstRows;
    for (const FlashCase& test : cases) {
        SCOPED_TRACE(test.name);
        TempFolder folder;
        ClipRecipe recipe;
        recipe.width = test.width;
        recipe.height = test.height;
        recipe.pixelFormat = test.format;
        recipe.frameCount = kFrames;
        recipe.audio = true;
        recipe.range = AVCOL_RANGE_MPEG;
        recipe.primaries = AVCOL_PRI_BT709;
        recipe.transfer = AVCOL_TRC_BT709;
        recipe.matrix = AVCOL_SPC_BT709;
        recipe.rotation = 90.0;
        if (test.container == "mov" || test.container == "mp4") {
            recipe.codec = "libx264";
            recipe.crf = 0;
        }
        for (int index = 0; index < kFrames && test.startFrame > 0; ++index)
            recipe.timestamps.push_back(test.startFrame + index);
        if (test.variableRate) {
            recipe.timeBase = {1, 1000};
            for (int index = 0, time = 0; index < kFrames; ++index, time += index % 4 == 0 ? 90 : 33)
                recipe.timestamps.push_back(time);
        }
        const std::string input = folder.Path("in." + test.container);
        const std::string output = folder.Path("out." + test.container);
        WriteClip(input, recipe, Scene(Levels(false), Levels(true)));

        const auto has = [&](const char* option) {
            return std::count(test.options.begin(), test.options.end(), option) != 0;
        };
        const bool analysis = has("--analyze");
        std::vector<std::string> arguments = {input, "--report", folder.Path(test.report)};
        if (!analysis)
            arguments.insert(arguments.begin() + 1, output);
        if (!analysis && !has("--codec"))
            arguments.insert(arguments.end(), {"--codec", "ffv1"});
        if (!test.plot.empty())
            arguments.insert(arguments.end(), {"--plot", folder.Path(test.plot)});
        // The first run tells its summary; the others are quiet, but for the runs an analysis lists.
        if (!firstRows.empty())
            arguments.push_back("--quiet");
        arguments.insert(arguments.end(), test.options.begin(), test.options.end());
        const ProgramRun run = RunDeglare(arguments);
        ASSERT_EQ(run.status, 0) << run.err;
        if (firstRows.empty()) {
            EXPECT_NE(run.out.find("30 frames read, 4 flashes found, 5 frames replaced"), std::string::npos) << run.out;
        } else {
            EXPECT_EQ(run.err, "");
            const char* burst = "frames 13-15 at 0.52 s: 13 spared; 14 replaced by 13; 15 replaced by 16\n";
            EXPECT_EQ(run.out.find(burst) != std::string::npos, analysis) << run.out;
        }

        const ReadClip before = ReadBack(input);
        const std::vector<ReportRow> rows = ReadReport(folder.Path(test.report));
        ASSERT_EQ(rows.size(), static_cast<size_t>(kFrames));
        // The first clip again, so the same figures, in either form of the report.
        const bool sameFigures = !firstRows.empty() && test.container == "mkv" && test.width == 64 &&
                                 test.format == AV_PIX_FMT_YUV420P;
        std::vector<std::string> told;
        for (int index = 0; index < kFrames; ++index) {
            told.push_back(rows[index].told);
            EXPECT_NEAR(rows[index].time, before.frames[index].pts * av_q2d(before.timeBase), 1e-6) << index;
            EXPECT_NEAR(rows[index].sum, rows[index].bands[0] + rows[index].bands[1] + rows[index].bands[2] +
                                             rows[index].bands[3], 1e-5) << index;
            for (int band = 0; band < 4 && sameFigures; ++band)
                EXPECT_NEAR(rows[index].bands[band], firstRows[index].bands[band], 1e-6) << index;
        }
        EXPECT_EQ(told, ToldFor(kFrames, test.replaced, test.spared));
        if (firstRows.empty())
            firstRows = rows;
        if (test.plot == "plot.png") {
            cairo_surface_t* png = cairo_image_surface_create_from_png(folder.Path(test.plot).c_str());
            ASSERT_EQ(cairo_surface_status(png), CAIRO_STATUS_SUCCESS);
            EXPECT_EQ(cairo_image_surface_get_width(png), 1200);
            EXPECT_EQ(cairo_image_surface_get_height(png), 520);
            // Below the bands, 70 to 1176 pixels across for the clip's time: a red bar behind the
            // replaced frame, a blue one behind the spared, white behind a kept one.
            const auto colour = [&](int frame, int channel) {     // 0 blue, 2 red
                return cairo_image_surface_get_data(png)[454 * cairo_image_surface_get_stride(png) +
                                                         4 * (70 + frame * 1106 / (kFrames - 1)) + channel];
            };
            EXPECT_GT(colour(kOneFrameFlash, 2), colour(kOneFrameFlash, 0) + 40);
            EXPECT_GT(colour(kBurstFirst, 0), colour(kBurstFirst, 2) + 40);
            EXPECT_EQ(colour(2, 0) + colour(2, 2), 2 * 255);
            cairo_surface_destroy(png);
        } else if (test.plot == "plot.svg") {
            const std::string svg = ReadFile(folder.Path(test.plot));
            EXPECT_EQ(svg.rfind("<?xml", 0), 0u);
            EXPECT_NE(svg.find("</svg>"), std::string::npos);
        }
        if (analysis) {
            EXPECT_EQ(folder.Files(), (std::vector<std::string>{"in.mkv", test.plot, test.report}));
            continue;
        }

        std::map<int, int> shown = test.replaced;
        if (has("--test-mode")) {
            for (auto& replacement : shown)
                replacement.second = -1;
            for (int index : test.spared)
                shown[index] = -1;
        }
        const ReadClip after = ReadBack(output);
        EXPECT_EQ(ShownFrames(after, before), ShownWith(kFrames, shown));
        ASSERT_EQ(after.frames.size(), before.frames.size());
        for (int index = 0; index < kFrames; ++index)
            EXPECT_EQ(av_rescale_q(after.frames[index].pts, after.timeBase, before.timeBase), before.frames[index].pts)
                << "frame " << index;
        EXPECT_EQ(av_cmp_q(after.timeBase, before.timeBase), 0);
        EXPECT_EQ(av_cmp_q(after.frameRate, before.frameRate), 0);
        EXPECT_EQ(std::make_tuple(after.pixelFormat, after.width, after.height, after.range, after.primaries,
                                  after.transfer, after.matrix),
                  std::make_tuple(before.pixelFormat, test.width, test.height, before.range, before.primaries,
                                  before.transfer, before.matrix));
        EXPECT_EQ(before.rotation, test.container == "mov" || test.container == "mp4" ? -90.0 : 0.0);
        EXPECT_EQ(after.rotation, before.rotation);
        // Audio bit for bit, with its timestamps.
        ASSERT_EQ(after.streamCount, before.streamCount);
        ASSERT_FALSE(before.otherPackets.empty());
        ASSERT_EQ(after.otherPackets.size(), before.otherPackets.size());
        for (size_t index = 0; index < before.otherPackets.size(); ++index) {
            EXPECT_TRUE(after.otherPackets[index].data == before.otherPackets[index].data) << "packet " << index;
            EXPECT_EQ(after.otherPackets[index].pts, before.otherPackets[index].pts) << "packet " << index;
        }
    }
}

} // namespace
