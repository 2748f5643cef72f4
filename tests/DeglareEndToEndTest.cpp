// The deglare program run as a user runs it, with the real effect loaded from the bundle, on
// clips generated with FFmpeg's libraries and read back frame by frame.
#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include <cairo.h>
#include <nlohmann/json.hpp>
#include <signal.h>
#include <sstream>

#include "DeglareTestSupport.h"

namespace {

using namespace Deglare;
using namespace DeglareTest;

std::vector<float> Steady(int count)
{
    std::vector<float> levels;
    for (int index = 0; index < count; ++index)
        levels.push_back(0.40f + 0.01f * (index % 3));
    return levels;
}

void ExpectSameTimestamps(const ReadClip& after, const ReadClip& before)
{
    ASSERT_EQ(after.frames.size(), before.frames.size());
    for (size_t index = 0; index < before.frames.size(); ++index)
        EXPECT_EQ(av_rescale_q(after.frames[index].pts, after.timeBase, before.timeBase), before.frames[index].pts)
            << "frame " << index;
}

// A clip whose frames show nothing the effect would take for a flash comes out frame for frame
// as it went in, whatever its form, on either render path.
TEST(DeglareEndToEnd, SteadyClipsComeOutUnchanged)
{
    struct Case {
        const char* name;
        int width, height;
        AVPixelFormat format;
        std::vector<int64_t> timestamps;   // in 1/1000 s; empty: 25 frames a second
        const char* extension;
        bool sequential;
    };
    const Case cases[] = {
        {"8-bit with audio", 64, 48, AV_PIX_FMT_YUV420P, {}, "mkv", false},
        {"8-bit, sequential", 64, 48, AV_PIX_FMT_YUV420P, {}, "mkv", true},
        {"10-bit", 64, 48, AV_PIX_FMT_YUV420P10LE, {}, "mkv", false},
        {"odd size", 65, 49, AV_PIX_FMT_YUV420P, {}, "mkv", false},
        {"4:4:4 in AVI", 80, 60, AV_PIX_FMT_YUV444P, {}, "avi", false},
        {"rotated, in MOV", 64, 48, AV_PIX_FMT_YUV420P, {}, "mov", false},
        {"variable frame rate", 64, 48, AV_PIX_FMT_YUV420P,
         {0, 40, 80, 150, 190, 230, 330, 370, 410, 420, 430, 470, 510, 600, 640, 680, 720, 760, 900, 940}, "mkv",
         false},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        TempFolder folder;
        ClipRecipe recipe;
        recipe.width = test.width;
        recipe.height = test.height;
        recipe.pixelFormat = test.format;
        recipe.frameCount = test.timestamps.empty() ? 24 : static_cast<int>(test.timestamps.size());
        recipe.audio = true;
        recipe.timestamps = test.timestamps;
        recipe.timeBase = test.timestamps.empty() ? AVRational{1, 25} : AVRational{1, 1000};
        recipe.range = AVCOL_RANGE_MPEG;
        recipe.primaries = AVCOL_PRI_BT709;
        recipe.transfer = AVCOL_TRC_BT709;
        recipe.matrix = AVCOL_SPC_BT709;
        recipe.rotation = 90.0;
        if (test.extension == std::string("mov")) {
            recipe.codec = "libx264";
            recipe.crf = 0;
        }
        const std::string input = folder.Path(std::string("in.") + test.extension);
        const std::string output = folder.Path(std::string("out.") + test.extension);
        WriteClip(input, recipe, Scene(Steady(recipe.frameCount)));

        // MOV takes no ffv1; libx264 at crf 0 is lossless too, and keeps the colour range.
        std::vector<std::string> arguments = {input, output, "--quiet", "--codec"};
        if (test.extension == std::string("mov"))
            arguments.insert(arguments.end(), {"libx264", "--crf", "0"});
        else
            arguments.push_back("ffv1");
        if (test.sequential)
            arguments.push_back("--sequential");
        const ProgramRun run = RunDeglare(arguments);
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.err, "");

        const ReadClip before = ReadBack(input);
        const ReadClip after = ReadBack(output);
        ASSERT_EQ(after.frames.size(), before.frames.size());
        for (size_t index = 0; index < before.frames.size(); ++index)
            EXPECT_TRUE(after.frames[index].planes == before.frames[index].planes) << "frame " << index;
        ExpectSameTimestamps(after, before);
        EXPECT_EQ(after.timeBase.num * before.timeBase.den, before.timeBase.num * after.timeBase.den);
        EXPECT_EQ(av_cmp_q(after.frameRate, before.frameRate), 0);
        EXPECT_EQ(after.pixelFormat, before.pixelFormat);
        EXPECT_EQ(after.width, test.width);
        EXPECT_EQ(after.height, test.height);
        EXPECT_EQ(after.range, before.range);
        EXPECT_EQ(after.primaries, before.primaries);
        EXPECT_EQ(after.transfer, before.transfer);
        EXPECT_EQ(after.matrix, before.matrix);
        // Of these containers only MOV carries a rotation.
        if (test.extension == std::string("mov")) {
            EXPECT_EQ(before.rotation, -90.0);
        }
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

namespace {

// A WAV file of silence: media with no video stream.
std::string SilentWav()
{
    const uint32_t samples = 4800;
    std::string wav = "RIFF";
    auto put32 = [&](uint32_t value) { wav.append(reinterpret_cast<const char*>(&value), 4); };
    auto put16 = [&](uint16_t value) { wav.append(reinterpret_cast<const char*>(&value), 2); };
    put32(36 + samples * 2);
    wav += "WAVEfmt ";
    put32(16);
    put16(1);
    put16(1);
    put32(48000);
    put32(96000);
    put16(2);
    put16(16);
    wav += "data";
    put32(samples * 2);
    wav.append(samples * 2, '\0');
    return wav;
}

// A preset file as an editor saves it, made for `effect` of "Tessarel Deglarer Pro"; the
// second and third parameters are of the types given, and the first slider at `position`.
std::string PresetFile(const std::string& library, const std::string& effect, const std::string& secondType,
                       const std::string& thirdType, const std::string& position = "0.300000")
{
    return "<?xml version=\"1.0\" standalone=\"no\" ?>\n<!-- Effect's Preset File -->\n"
           "<Preset Name=\"Mine\" LibraryName=\"Tessarel " + library + "\" EffectName=\"" + effect + "\">\n"
           "    <parameter type=\"2\" value=\"" + position + "\" />\n"
           "    <parameter type=\"" + secondType + "\" value=\"0.555556\" />\n"
           "    <parameter type=\"" + thirdType + "\" value=\"1\" />\n"
           "</Preset>\n";
}

struct BadCase {
    const char* name;
    std::vector<std::string> arguments;     // "@name" stands for a file in the test's folder
    int status;
    const char* named;                      // what the message must name
    const char* cause;                      // and a word of its cause
};

} // namespace

// Every bad input ends with one line naming the file and the cause, a status of its own, and
// no OUTPUT: a file already there stays as it was, and nothing else is left behind.
TEST(DeglareEndToEnd, BadInputsFailCleanlyWithTheirOwnStatus)
{
    TempFolder folder;
    ClipRecipe recipe;
    recipe.frameCount = 8;
    WriteClip(folder.Path("clip.mkv"), recipe, Scene(Steady(8)));
    ClipRecipe oddRecipe = recipe;
    oddRecipe.width = 65;
    oddRecipe.height = 49;
    WriteClip(folder.Path("odd.mkv"), oddRecipe, Scene(Steady(8)));
    ClipRecipe emptyRecipe = recipe;
    emptyRecipe.frameCount = 0;
    WriteClip(folder.Path("empty.avi"), emptyRecipe, Scene({}));
    WriteFile(folder.Path("notes.txt"), "These are words, not pictures.\n");
    WriteFile(folder.Path("tone.wav"), SilentWav());
    WriteFile(folder.Path("old.mkv"), "an older file");
    WriteFile(folder.Path("other.fxpunka"), PresetFile("Deglarer Pro", "Denoiser Pro", "2", "4"));
    WriteFile(folder.Path("mistyped.fxpunka"), PresetFile("Deglarer Pro", "Deglarer Pro", "4", "4"));
    WriteFile(folder.Path("steep.fxpunka"), PresetFile("Deglarer Pro", "Deglarer Pro", "2", "4", "1.5"));
    std::filesystem::create_directory(folder.Path("sub"));
    std::filesystem::create_directory(folder.Path("locked"));
    const bool root = geteuid() == 0;
    // Root may write anywhere a mode allows nothing; a folder of the proc file system takes no files.
    const std::string lockedFolder = root ? "/proc" : folder.Path("locked");
    if (!root)
        std::filesystem::permissions(folder.Path("locked"), std::filesystem::perms::owner_read |
                                                                std::filesystem::perms::owner_exec);

    const BadCase cases[] = {
        {"missing input", {"@missing.mkv", "@old.mkv"}, 3, "missing.mkv", "No such file"},
        {"folder as input", {"@sub", "@old.mkv"}, 3, "sub", "folder"},
        {"not media", {"@notes.txt", "@old.mkv"}, 4, "notes.txt", "not a media file"},
        {"no video stream", {"@tone.wav", "@old.mkv"}, 5, "tone.wav", "no video"},
        {"zero-frame video", {"@empty.avi", "@old.mkv"}, 6, "empty.avi", "no frames"},
        {"output is input", {"@clip.mkv", "@clip.mkv"}, 7, "clip.mkv", "input itself"},
        {"output is input by another name", {"@clip.mkv", "@sub/../clip.mkv"}, 7, "clip.mkv", "input itself"},
        {"output folder missing", {"@clip.mkv", "@nowhere/out.mkv"}, 8, "nowhere", "doesn't exist"},
        {"output folder not writable", {"@clip.mkv", lockedFolder + "/out.mkv"}, 9, "out.mkv", "can't write"},
        {"output is a folder", {"@clip.mkv", "@sub"}, 10, "sub", "folder"},
        {"unknown encoder", {"@clip.mkv", "@old.mkv", "--codec", "nosuchcodec"}, 11, "nosuchcodec", "no such"},
        {"encoder refuses the size", {"@odd.mkv", "@old.mkv", "--codec", "libx264"}, 12, "libx264", "not divisible by 2"},
        {"unknown container", {"@clip.mkv", "@out.nosuch"}, 13, "out.nosuch", "container"},
        {"unknown preset", {"@clip.mkv", "@old.mkv", "--preset", "Sunny Day"}, 14, "Sunny Day", "no such preset"},
        {"preset file for another effect", {"@clip.mkv", "@old.mkv", "--preset-file", "@other.fxpunka"}, 15,
         "other.fxpunka", "Denoiser Pro"},
        {"preset file of other types", {"@clip.mkv", "@old.mkv", "--preset-file", "@mistyped.fxpunka"}, 15,
         "mistyped.fxpunka", "doesn't match"},
        {"preset file off the slider", {"@clip.mkv", "@old.mkv", "--preset-file", "@steep.fxpunka"}, 15,
         "steep.fxpunka", "outside 0 to 1"},
        {"preset file that isn't one", {"@clip.mkv", "@old.mkv", "--preset-file", "@notes.txt"}, 15, "notes.txt",
         "not a preset file"},
        {"sensitivity out of range", {"@clip.mkv", "@old.mkv", "--sensitivity", "150"}, 2, "--sensitivity", "150"},
        {"max frames out of range", {"@clip.mkv", "@old.mkv", "--max-frames", "0"}, 2, "--max-frames", "0"},
        {"no effect bundle", {"@clip.mkv", "@old.mkv", "--bundle", "@nobundle"}, 17, "nobundle", "can't be loaded"},
    };
    const std::vector<std::string> filesBefore = folder.Files();
    for (const BadCase& test : cases) {
        SCOPED_TRACE(test.name);
        std::vector<std::string> arguments;
        for (const std::string& argument : test.arguments)
            arguments.push_back(argument[0] == '@' ? folder.Path(argument.substr(1)) : argument);
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
        std::filesystem::permissions(folder.Path("clip.mkv"), std::filesystem::perms::none);
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
    recipe.frameCount = 20;
    const std::string input = folder.Path("clip.mkv");
    WriteClip(input, recipe, Scene(Steady(recipe.frameCount)));
    WriteFile(folder.Path("old.mkv"), "an older file");
    const long limit = static_cast<long>(std::filesystem::file_size(input) / 3);
    const ProgramRun run = RunDeglare({input, folder.Path("old.mkv"), "--codec", "ffv1", "--quiet"}, limit);
    EXPECT_EQ(run.status, 16) << run.err;
    EXPECT_NE(run.err.find("old.mkv: writing failed"), std::string::npos) << run.err;
    EXPECT_EQ(ReadFile(folder.Path("old.mkv")), "an older file");
    EXPECT_EQ(folder.Files(), (std::vector<std::string>{"clip.mkv", "old.mkv"}));
}

// Damage in the middle of a stream is decoded past, with a warning that names the frame.
TEST(DeglareEndToEnd, DamagedFramesAreNamedAndDecodedPast)
{
    TempFolder folder;
    ClipRecipe recipe;
    recipe.width = 160;
    recipe.height = 120;
    recipe.frameCount = 30;
    recipe.codec = "libx264";
    const std::string input = folder.Path("clip.mkv");
    WriteClip(input, recipe, Scene(Steady(recipe.frameCount)));

    // Overwrite the middle of the largest picture after frame 10 that isn't a keyframe.
    int damaged = -1;
    int64_t position = 0;
    {
        AVFormatContext* opened = nullptr;
        ASSERT_EQ(avformat_open_input(&opened, input.c_str(), nullptr, nullptr), 0);
        InputFormatRef format(opened);
        PacketRef packet = AllocatePacket();
        int largest = 0;
        while (av_read_frame(format.get(), packet.get()) >= 0) {
            const int index = static_cast<int>(av_rescale_q(packet->pts, format->streams[0]->time_base, {1, 25}));
            if (index > 10 && index < 25 && !(packet->flags & AV_PKT_FLAG_KEY) && packet->size > largest) {
                largest = packet->size;
                damaged = index;
                position = packet->pos + packet->size / 2;
            }
            av_packet_unref(packet.get());
        }
        ASSERT_GT(largest, 64);
    }
    std::string bytes = ReadFile(input);
    for (int offset = 0; offset < 160; ++offset)
        bytes[position + offset] = static_cast<char>(0x5A ^ offset);
    WriteFile(input, bytes);

    const std::string output = folder.Path("out.mkv");
    const ProgramRun run = RunDeglare({input, output, "--codec", "ffv1", "--quiet"});
    ASSERT_EQ(run.status, 0) << run.err;
    // The warning names the frame, or the few frames that were in the decoder together.
    bool named = false;
    std::istringstream lines(run.err);
    for (std::string line; std::getline(lines, line);) {
        const size_t at = line.find("clip.mkv: frame");
        int first = -1, last = -1;
        if (line.rfind("deglare: warning: ", 0) != 0 || at == std::string::npos)
            continue;
        const char* where = line.c_str() + at;
        if (std::sscanf(where, "clip.mkv: frames %d-%d:", &first, &last) != 2 &&
            std::sscanf(where, "clip.mkv: frame %d:", &first) == 1)
            last = first;
        named = named || (first >= 0 && first <= damaged && damaged <= last && last - first < 8);
    }
    EXPECT_TRUE(named) << "frame " << damaged << " isn't named in: " << run.err;
    const ReadClip after = ReadBack(output);
    EXPECT_GE(after.frames.size(), static_cast<size_t>(recipe.frameCount - 1));
}

// Stock presets are read from the effect by name, in any case, saved ones from their file, and
// they land in the report's settings; sliders given beside a preset override it.
TEST(DeglareEndToEnd, PresetsComeFromTheEffect)
{
    TempFolder folder;
    ClipRecipe recipe;
    recipe.frameCount = 6;
    const std::string input = folder.Path("clip.mkv");
    WriteClip(input, recipe, Scene(Steady(recipe.frameCount)));
    const std::string saved = folder.Path("saved.fxpunka");
    WriteFile(saved, PresetFile("Deglarer Pro", "Deglarer Pro", "2", "4"));
    struct Case {
        std::vector<std::string> options;
        int sensitivity;
        int maxFrames;
        bool testMode;
    };
    const Case cases[] = {
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
    for (const Case& test : cases) {
        const std::string report = folder.Path("report.json");
        std::vector<std::string> arguments = {input, "--analyze", "--quiet", "--report", report};
        arguments.insert(arguments.end(), test.options.begin(), test.options.end());
        const ProgramRun run = RunDeglare(arguments);
        ASSERT_EQ(run.status, 0) << run.err;
        const std::string text = ReadFile(report);
        const auto has = [&](const std::string& entry) { return text.find(entry) != std::string::npos; };
        EXPECT_TRUE(has("\"sensitivity\": " + std::to_string(test.sensitivity) + ",")) << text.substr(0, 300);
        EXPECT_TRUE(has("\"maxFrames\": " + std::to_string(test.maxFrames) + ",")) << text.substr(0, 300);
        EXPECT_TRUE(has(std::string("\"testMode\": ") + (test.testMode ? "true" : "false"))) << text.substr(0, 300);
    }
}

// The report and the plot come out well-formed in each of their forms, beside the video or
// from an analysis.
TEST(DeglareEndToEnd, ReportsAndPlotsAreWellFormed)
{
    TempFolder folder;
    ClipRecipe recipe;
    recipe.frameCount = 12;
    const std::string input = folder.Path("clip.mkv");
    WriteClip(input, recipe, Scene(Steady(recipe.frameCount)));

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
    EXPECT_EQ(report["summary"]["framesRead"], 12);
    ASSERT_EQ(report["frames"].size(), 12u);
    for (size_t index = 0; index < 12; ++index) {
        const nlohmann::json& frame = report["frames"][index];
        EXPECT_EQ(frame["index"], index);
        EXPECT_NEAR(frame["time"].get<double>(), index / 25.0, 1e-9);
        ASSERT_EQ(frame["bands"].size(), 4u);
        float sum = 0.0f;
        for (const auto& band : frame["bands"])
            sum += band.get<float>();
        EXPECT_NEAR(frame["sum"].get<double>(), sum, 1e-5);
        EXPECT_EQ(frame["decision"], "kept");
    }
    EXPECT_TRUE(report["runs"].is_array());

    std::istringstream csv(ReadFile(folder.Path("report.csv")));
    std::string line;
    std::getline(csv, line);
    EXPECT_EQ(line, "index,time,band0,band1,band2,band3,sum,decision,substitute");
    int rows = 0;
    while (std::getline(csv, line) && !line.empty()) {
        EXPECT_EQ(std::count(line.begin(), line.end(), ','), 8) << line;
        EXPECT_EQ(line.rfind(std::to_string(rows) + ",", 0), 0u) << line;
        ++rows;
    }
    EXPECT_EQ(rows, 12);
    std::getline(csv, line);
    EXPECT_EQ(line, "run,first,last,replaced,spared");

    cairo_surface_t* png = cairo_image_surface_create_from_png(folder.Path("plot.png").c_str());
    EXPECT_EQ(cairo_surface_status(png), CAIRO_STATUS_SUCCESS);
    EXPECT_EQ(cairo_image_surface_get_width(png), 1200);
    EXPECT_EQ(cairo_image_surface_get_height(png), 520);
    cairo_surface_destroy(png);
    const std::string svg = ReadFile(folder.Path("plot.svg"));
    EXPECT_EQ(svg.rfind("<?xml", 0), 0u);
    EXPECT_NE(svg.find("<svg"), std::string::npos);
    EXPECT_NE(svg.find("</svg>"), std::string::npos);
}

// Ctrl-C in the middle of a run leaves neither OUTPUT nor the temporary file.
TEST(DeglareEndToEnd, InterruptionLeavesNothingBehind)
{
    TempFolder folder;
    ClipRecipe recipe;
    recipe.width = 320;
    recipe.height = 240;
    recipe.frameCount = 250;
    const std::string input = folder.Path("clip.mkv");
    WriteClip(input, recipe, Scene(Steady(recipe.frameCount)));
    const std::string output = folder.Path("out.mp4");
    const pid_t child = StartDeglare({input, output, "--quiet", "--threads", "1"});
    // Once the temporary file is there the run is under way.
    for (int wait = 0; wait < 500 && folder.Files().size() < 2; ++wait)
        usleep(10000);
    ASSERT_EQ(folder.Files().size(), 2u) << "the run never started writing";
    kill(child, SIGINT);
    EXPECT_EQ(WaitForDeglare(child), 130);
    EXPECT_EQ(folder.Files(), std::vector<std::string>{"clip.mkv"});
}
