// The deglare program run as a user runs it, with the real effect loaded from the bundle, on
// clips generated with FFmpeg's libraries and read back frame by frame.
#include <gtest/gtest.h>

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <sstream>

#include <cairo.h>
#include <nlohmann/json.hpp>

#include "DeglareTestSupport.h"

namespace {

using namespace Deglare;
using namespace DeglareTest;
namespace fs = std::filesystem;

// A steady clip comes out frame for frame as it went in, with its timing, colour properties,
// rotation and audio, whatever its container and form. Flashed clips, other depths and sizes
// and the sequential path are the flash removal tests' part.
TEST(DeglareEndToEnd, SteadyClipsComeOutUnchanged)
{
    struct Case {
        const char* extension;
        AVPixelFormat format;
        std::vector<int64_t> timestamps;   // in 1/1000 s; empty: 25 frames a second
    };
    const Case cases[] = {
        {"mkv", AV_PIX_FMT_YUV420P, {}},
        {"avi", AV_PIX_FMT_YUV444P, {}},
        {"mov", AV_PIX_FMT_YUV420P, {}},     // the one container here that carries a rotation
        {"mkv", AV_PIX_FMT_YUV420P, {0, 40, 80, 150, 190, 230, 330, 370, 410, 420, 430, 470, 510, 600, 640}},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(std::string(test.extension) + (test.timestamps.empty() ? "" : ", variable frame rate"));
        TempFolder folder;
        ClipRecipe recipe;
        recipe.pixelFormat = test.format;
        recipe.audio = true;
        recipe.timestamps = test.timestamps;
        if (!test.timestamps.empty())
            recipe.timeBase = {1, 1000};
        recipe.range = AVCOL_RANGE_MPEG;
        recipe.primaries = AVCOL_PRI_BT709;
        recipe.transfer = AVCOL_TRC_BT709;
        recipe.matrix = AVCOL_SPC_BT709;
        recipe.rotation = 90.0;
        // MOV takes no ffv1; libx264 at crf 0 is lossless too, and keeps the colour range.
        const bool mov = test.extension == std::string("mov");
        if (mov) {
            recipe.codec = "libx264";
            recipe.crf = 0;
        }
        const int frames = test.timestamps.empty() ? 16 : static_cast<int>(test.timestamps.size());
        const std::string input = WriteSteadyClip(folder.Path(std::string("in.") + test.extension), frames, recipe);
        const std::string output = folder.Path(std::string("out.") + test.extension);
        const std::vector<std::string> codec = mov ? std::vector<std::string>{"libx264", "--crf", "0"}
                                                   : std::vector<std::string>{"ffv1"};
        std::vector<std::string> arguments = {input, output, "--quiet", "--codec"};
        arguments.insert(arguments.end(), codec.begin(), codec.end());
        const ProgramRun run = RunDeglare(arguments);
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.err, "");

        const ReadClip before = ReadBack(input);
        const ReadClip after = ReadBack(output);
        ASSERT_EQ(after.frames.size(), before.frames.size());
        for (size_t index = 0; index < before.frames.size(); ++index) {
            EXPECT_TRUE(after.frames[index].planes == before.frames[index].planes) << "frame " << index;
            EXPECT_EQ(av_rescale_q(after.frames[index].pts, after.timeBase, before.timeBase), before.frames[index].pts)
                << "frame " << index;
        }
        EXPECT_EQ(av_cmp_q(after.timeBase, before.timeBase), 0);
        EXPECT_EQ(av_cmp_q(after.frameRate, before.frameRate), 0);
        EXPECT_EQ(std::make_tuple(after.pixelFormat, after.width, after.height, after.range, after.primaries,
                                  after.transfer, after.matrix),
                  std::make_tuple(before.pixelFormat, recipe.width, recipe.height, before.range, before.primaries,
                                  before.transfer, before.matrix));
        EXPECT_EQ(before.rotation, mov ? -90.0 : 0.0);
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

// A WAV file of silence: media with no video stream.
std::string SilentWav()
{
    const uint32_t dataBytes = 9600;
    // RIFF size, format chunk size, PCM, mono, 48000 Hz, bytes a second, block size, bits.
    const uint32_t header[] = {36 + dataBytes, 16, 1 | 1 << 16, 48000, 96000, 2 | 16 << 16};
    std::string wav = "RIFF";
    wav.append(reinterpret_cast<const char*>(&header[0]), 4);
    wav += "WAVEfmt ";
    wav.append(reinterpret_cast<const char*>(&header[1]), sizeof(header) - 4);
    wav += "data";
    wav.append(reinterpret_cast<const char*>(&dataBytes), 4);
    return wav + std::string(dataBytes, '\0');
}

// A preset file as an editor saves it, for `effect` of "Tessarel Deglarer Pro"; the second and
// third parameters of the types given, and the first slider at `position`.
std::string PresetFile(const std::string& effect, const std::string& secondType = "2",
                       const std::string& position = "0.300000")
{
    return "<?xml version=\"1.0\" standalone=\"no\" ?>\n<!-- Effect's Preset File -->\n"
           "<Preset Name=\"Mine\" LibraryName=\"Tessarel Deglarer Pro\" EffectName=\"" + effect + "\">\n"
           "    <parameter type=\"2\" value=\"" + position + "\" />\n"
           "    <parameter type=\"" + secondType + "\" value=\"0.555556\" />\n"
           "    <parameter type=\"4\" value=\"1\" />\n"
           "</Preset>\n";
}

// Every bad input ends with one line naming the file and the cause, a status of its own, and
// no OUTPUT: a file already there stays as it was, and nothing else is left behind.
TEST(DeglareEndToEnd, BadInputsFailCleanlyWithTheirOwnStatus)
{
    TempFolder folder;
    WriteSteadyClip(folder.Path("clip.mkv"), 8);
    ClipRecipe odd;
    odd.width = 65;
    odd.height = 49;
    WriteSteadyClip(folder.Path("odd.mkv"), 8, odd);
    WriteSteadyClip(folder.Path("empty.avi"), 0);
    WriteFile(folder.Path("notes.txt"), "These are words, not pictures.\n");
    WriteFile(folder.Path("tone.wav"), SilentWav());
    WriteFile(folder.Path("old.mkv"), "an older file");
    WriteFile(folder.Path("other.fxpunka"), PresetFile("Denoiser Pro"));
    WriteFile(folder.Path("mistyped.fxpunka"), PresetFile("Deglarer Pro", "4"));
    WriteFile(folder.Path("steep.fxpunka"), PresetFile("Deglarer Pro", "2", "1.5"));
    fs::create_directory(folder.Path("sub"));
    fs::create_directory(folder.Path("locked"));
    const bool root = geteuid() == 0;
    // Root may write anywhere a mode allows nothing; a folder of the proc file system takes no files.
    const std::string lockedFolder = root ? "/proc" : folder.Path("locked");
    if (!root)
        fs::permissions(folder.Path("locked"), fs::perms::owner_read | fs::perms::owner_exec);

    const struct {
        std::vector<std::string> arguments;     // "@name" stands for a file in the test's folder
        int status;
        const char* named;                      // what the message must name
        const char* cause;                      // and a word of its cause
    } cases[] = {
        {{"@missing.mkv", "@old.mkv"}, 3, "missing.mkv", "No such file"},
        {{"@sub", "@old.mkv"}, 3, "sub", "folder"},
        {{"@notes.txt", "@old.mkv"}, 4, "notes.txt", "not a media file"},
        {{"@tone.wav", "@old.mkv"}, 5, "tone.wav", "no video"},
        {{"@empty.avi", "@old.mkv"}, 6, "empty.avi", "no frames"},
        {{"@clip.mkv", "@clip.mkv"}, 7, "clip.mkv", "input itself"},
        {{"@clip.mkv", "@sub/../clip.mkv"}, 7, "clip.mkv", "input itself"},
        {{"@clip.mkv", "@nowhere/out.mkv"}, 8, "nowhere", "doesn't exist"},
        {{"@clip.mkv", lockedFolder + "/out.mkv"}, 9, "out.mkv", "can't write"},
        {{"@clip.mkv", "@sub"}, 10, "sub", "folder"},
        {{"@clip.mkv", "@old.mkv", "--codec", "nosuchcodec"}, 11, "nosuchcodec", "no such"},
        {{"@odd.mkv", "@old.mkv", "--codec", "libx264"}, 12, "libx264", "not divisible by 2"},
        {{"@clip.mkv", "@out.nosuch"}, 13, "out.nosuch", "container"},
        {{"@clip.mkv", "@old.mkv", "--preset", "Sunny Day"}, 14, "Sunny Day", "no such preset"},
        {{"@clip.mkv", "@old.mkv", "--preset-file", "@other.fxpunka"}, 15, "other.fxpunka", "Denoiser Pro"},
        {{"@clip.mkv", "@old.mkv", "--preset-file", "@mistyped.fxpunka"}, 15, "mistyped.fxpunka", "doesn't match"},
        {{"@clip.mkv", "@old.mkv", "--preset-file", "@steep.fxpunka"}, 15, "steep.fxpunka", "outside 0 to 1"},
        {{"@clip.mkv", "@old.mkv", "--preset-file", "@notes.txt"}, 15, "notes.txt", "not a preset file"},
        {{"@clip.mkv", "@old.mkv", "--sensitivity", "150"}, 2, "--sensitivity", "150"},
        {{"@clip.mkv", "@old.mkv", "--max-frames", "0"}, 2, "--max-frames", "0"},
        {{"@clip.mkv", "@old.mkv", "--bundle", "@nobundle"}, 17, "nobundle", "can't be loaded"},
    };
    const std::vector<std::string> filesBefore = folder.Files();
    for (const auto& test : cases) {
        std::vector<std::string> arguments;
        for (const std::string& argument : test.arguments)
            arguments.push_back(argument[0] == '@' ? folder.Path(argument.substr(1)) : argument);
        SCOPED_TRACE(arguments[0] + " " + arguments[1] + (arguments.size() > 2 ? " " + arguments[2] : ""));
        const ProgramRun run = RunDeglare(arguments);
        EXPECT_EQ(run.status, test.status) << run.err;
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        EXPECT_EQ(run.err.rfind("deglare: ", 0), 0u) << run.err;
        EXPECT_NE(run.err.find(test.named), std::string::npos) << run.err;
        EXPECT_NE(run.err.find(test.cause), std::string::npos) << run.err;
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(ReadFile(folder.Path("old.mkv")), "an older file");
        EXPECT_EQ(folder.Files(), filesBefore);
    }
    if (!root) {
        // A file the user may not read.
        fs::permissions(folder.Path("clip.mkv"), fs::perms::none);
        const ProgramRun run = RunDeglare({folder.Path("clip.mkv"), folder.Path("out.mkv")});
        EXPECT_EQ(run.status, 3) << run.err;
        EXPECT_NE(run.err.find("Permission denied"), std::string::npos) << run.err;
    }
}

// A full disk in the middle of writing is reported, and the half-written file goes.
TEST(DeglareEndToEnd, WriteFailureIsReportedAndLeavesNothing)
{
    TempFolder folder;
    ClipRecipe recipe;
    recipe.width = 160;
    recipe.height = 120;
    const std::string input = WriteSteadyClip(folder.Path("clip.mkv"), 20, recipe);
    WriteFile(folder.Path("old.mkv"), "an older file");
    const long limit = static_cast<long>(fs::file_size(input) / 3);
    const ProgramRun run = RunDeglare({input, folder.Path("old.mkv"), "--codec", "ffv1", "--quiet"}, limit);
    EXPECT_EQ(run.status, 16) << run.err;
    EXPECT_NE(run.err.find("old.mkv: writing failed"), std::string::npos) << run.err;
    EXPECT_EQ(ReadFile(folder.Path("old.mkv")), "an older file");
    EXPECT_EQ(folder.Files(), (std::vector<std::string>{"clip.mkv", "old.mkv"}));
}

// Damage in the middle of a stream is decoded past, with a warning that names the frame or the
// few frames that were in the decoder together.
TEST(DeglareEndToEnd, DamagedFramesAreNamedAndDecodedPast)
{
    TempFolder folder;
    ClipRecipe recipe;
    recipe.width = 160;
    recipe.height = 120;
    recipe.codec = "libx264";
    const int frames = 30;
    const std::string input = WriteSteadyClip(folder.Path("clip.mkv"), frames, recipe);

    // Overwrite the middle of the largest picture between frames 10 and 25 that isn't a keyframe.
    int damaged = -1, largest = 0;
    int64_t position = 0;
    {
        AVFormatContext* opened = nullptr;
        ASSERT_EQ(avformat_open_input(&opened, input.c_str(), nullptr, nullptr), 0);
        InputFormatRef format(opened);
        PacketRef packet = AllocatePacket();
        while (av_read_frame(format.get(), packet.get()) >= 0) {
            const int index = static_cast<int>(av_rescale_q(packet->pts, format->streams[0]->time_base, {1, 25}));
            if (index > 10 && index < 25 && !(packet->flags & AV_PKT_FLAG_KEY) && packet->size > largest) {
                largest = packet->size;
                damaged = index;
                position = packet->pos + packet->size / 2;
            }
            av_packet_unref(packet.get());
        }
    }
    ASSERT_GT(largest, 64);
    std::string bytes = ReadFile(input);
    for (int offset = 0; offset < 160; ++offset)
        bytes[position + offset] = static_cast<char>(0x5A ^ offset);
    WriteFile(input, bytes);

    const std::string output = folder.Path("out.mkv");
    const ProgramRun run = RunDeglare({input, output, "--codec", "ffv1", "--quiet"});
    ASSERT_EQ(run.status, 0) << run.err;
    bool named = false;
    std::istringstream lines(run.err);
    for (std::string line; std::getline(lines, line);) {
        const size_t at = line.find("clip.mkv: frame");
        if (line.rfind("deglare: warning: ", 0) != 0 || at == std::string::npos)
            continue;
        int first = -1, last = -1;
        if (std::sscanf(line.c_str() + at, "clip.mkv: frames %d-%d:", &first, &last) != 2 &&
            std::sscanf(line.c_str() + at, "clip.mkv: frame %d:", &first) == 1)
            last = first;
        named = named || (first >= 0 && first <= damaged && damaged <= last && last - first < 8);
    }
    EXPECT_TRUE(named) << "frame " << damaged << " isn't named in: " << run.err;
    EXPECT_GE(ReadBack(output).frames.size(), static_cast<size_t>(frames - 1));
}

// Stock presets are read from the effect by name, in any case, saved ones from their file, and
// they land in the report's settings; sliders given beside a preset override it.
TEST(DeglareEndToEnd, PresetsComeFromTheEffect)
{
    TempFolder folder;
    const std::string input = WriteSteadyClip(folder.Path("clip.mkv"), 6);
    const std::string saved = folder.Path("saved.fxpunka");
    WriteFile(saved, PresetFile("Deglarer Pro"));
    const struct {
        std::vector<std::string> options;
        int sensitivity, maxFrames;
        bool testMode;
    } cases[] = {
        {{}, 70, 2, false},
        {{"--preset", "fine tune"}, 50, 1, true},
        {{"--preset", "HEAVY FLASHES"}, 45, 10, true},
        {{"--preset", "Bright Lighting"}, 90, 4, false},
        {{"--preset", "Multi Flashes"}, 45, 3, true},
        {{"--preset", "Single Flashes", "--max-frames", "7", "--sensitivity", "33"}, 33, 7, false},
        {{"--test-mode", "--sensitivity", "0"}, 0, 2, true},
        // 0.555556 of the way from 1 to 10 is 6.
        {{"--preset-file", saved}, 30, 6, true},
        {{"--preset-file", saved, "--max-frames", "10"}, 30, 10, true},
    };
    for (const auto& test : cases) {
        const std::string report = folder.Path("report.json");
        std::vector<std::string> arguments = {input, "--analyze", "--quiet", "--report", report};
        arguments.insert(arguments.end(), test.options.begin(), test.options.end());
        ASSERT_EQ(RunDeglare(arguments).status, 0);
        const nlohmann::json settings = nlohmann::json::parse(ReadFile(report))["settings"];
        EXPECT_EQ(settings["sensitivity"], test.sensitivity) << settings;
        EXPECT_EQ(settings["maxFrames"], test.maxFrames) << settings;
        EXPECT_EQ(settings["testMode"], test.testMode) << settings;
    }
}

// The report and the plot come out well-formed in each of their forms, beside the video or from
// an analysis, and the two reports agree figure for figure.
TEST(DeglareEndToEnd, ReportsAndPlotsAreWellFormed)
{
    TempFolder folder;
    const int frames = 12;
    const std::string input = WriteSteadyClip(folder.Path("clip.mkv"), frames);
    const ProgramRun clean = RunDeglare({input, folder.Path("out.mkv"), "--codec", "ffv1", "--report",
                                         folder.Path("report.json"), "--plot", folder.Path("plot.png")});
    ASSERT_EQ(clean.status, 0) << clean.err;
    EXPECT_NE(clean.out.find("12 frames read, 0 flashes found, 0 frames replaced"), std::string::npos) << clean.out;
    const ProgramRun analysis = RunDeglare({input, "--analyze", "--quiet", "--report", folder.Path("report.csv"),
                                            "--plot", folder.Path("plot.svg")});
    ASSERT_EQ(analysis.status, 0) << analysis.err;
    EXPECT_EQ(analysis.out, "");

    const nlohmann::json report = nlohmann::json::parse(ReadFile(folder.Path("report.json")));
    EXPECT_EQ(report["input"], input);
    EXPECT_EQ(report["summary"]["framesRead"], frames);
    EXPECT_TRUE(report["runs"].is_array());
    ASSERT_EQ(report["frames"].size(), static_cast<size_t>(frames));
    std::istringstream csv(ReadFile(folder.Path("report.csv")));
    std::string line;
    std::getline(csv, line);
    EXPECT_EQ(line, "index,time,band0,band1,band2,band3,sum,decision,substitute");
    for (int index = 0; index < frames; ++index) {
        const nlohmann::json& frame = report["frames"][index];
        EXPECT_EQ(frame["index"], index);
        ASSERT_EQ(frame["bands"].size(), 4u);
        const std::vector<float> bands = frame["bands"];
        EXPECT_NEAR(frame["sum"].get<double>(), bands[0] + bands[1] + bands[2] + bands[3], 1e-5);
        // The CSV row: the same frame, time, bands and sum, then the decision and no substitute.
        std::getline(csv, line);
        std::vector<double> row(7);
        char decision[16] = {};
        ASSERT_EQ(std::sscanf(line.c_str(), "%lf,%lf,%lf,%lf,%lf,%lf,%lf,%15[a-z],", &row[0], &row[1], &row[2],
                              &row[3], &row[4], &row[5], &row[6], decision),
                  8)
            << line;
        EXPECT_EQ(line.back(), ',') << line;
        EXPECT_EQ(row[0], index);
        EXPECT_NEAR(row[1], index / 25.0, 1e-6);
        for (int band = 0; band < 4; ++band)
            EXPECT_NEAR(row[2 + band], bands[band], 1e-6) << line;
        EXPECT_NEAR(row[6], frame["sum"].get<double>(), 1e-6) << line;
        EXPECT_STREQ(decision, "kept");
    }
    std::getline(csv, line);
    EXPECT_EQ(line, "");
    std::getline(csv, line);
    EXPECT_EQ(line, "run,first,last,replaced,spared");

    cairo_surface_t* png = cairo_image_surface_create_from_png(folder.Path("plot.png").c_str());
    EXPECT_EQ(cairo_surface_status(png), CAIRO_STATUS_SUCCESS);
    EXPECT_EQ(cairo_image_surface_get_width(png), 1200);
    EXPECT_EQ(cairo_image_surface_get_height(png), 520);
    cairo_surface_destroy(png);
    const std::string svg = ReadFile(folder.Path("plot.svg"));
    EXPECT_EQ(svg.rfind("<?xml", 0), 0u);
    EXPECT_NE(svg.find("</svg>"), std::string::npos);
}

// Ctrl-C in the middle of a run leaves neither OUTPUT nor the temporary file.
TEST(DeglareEndToEnd, InterruptionLeavesNothingBehind)
{
    TempFolder folder;
    ClipRecipe recipe;
    recipe.width = 320;
    recipe.height = 240;
    const std::string input = WriteSteadyClip(folder.Path("clip.mkv"), 250, recipe);
    const pid_t child = StartDeglare({input, folder.Path("out.mp4"), "--quiet", "--threads", "1"});
    // Once the temporary file is there the run is under way.
    for (int wait = 0; wait < 500 && folder.Files().size() < 2; ++wait)
        usleep(10000);
    ASSERT_EQ(folder.Files().size(), 2u) << "the run never started writing";
    kill(child, SIGINT);
    EXPECT_EQ(WaitForDeglare(child), 130);
    EXPECT_EQ(folder.Files(), std::vector<std::string>{"clip.mkv"});
}

} // namespace
