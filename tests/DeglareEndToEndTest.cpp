// The deglare program run as a user runs it, with the real effect loaded from the bundle, on
// generated clips: bad inputs, damage, presets and interruption. Clips with flashes are the
// flash removal tests' part.
#include <gtest/gtest.h>

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <sstream>

#include <nlohmann/json.hpp>

#include "DeglareTestSupport.h"

namespace {

using namespace Deglare;
using namespace DeglareTest;
namespace fs = std::filesystem;

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

// Every bad input, and a disk that fills up while writing, ends with one line naming the file
// and the cause, a status of its own, and no OUTPUT: a file already there stays as it was, and
// nothing else is left behind.
TEST(DeglareEndToEnd, BadInputsFailCleanlyWithTheirOwnStatus)
{
    TempFolder folder;
    ClipRecipe recipe;
    recipe.width = 160;
    recipe.height = 120;
    const std::string clip = WriteSteadyClip(folder.Path("clip.mkv"), 20, recipe);
    // A third of the clip's size: full long before the copy is written.
    const long fullDisk = static_cast<long>(fs::file_size(clip) / 3);
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
    std::string deep = "<Preset>";   // 100,000 nested elements: deep enough to exhaust a parser's stack
    for (int level = 0; level < 100000; ++level)
        deep += "<a>";
    WriteFile(folder.Path("deep.fxpunka"), deep);
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
        long fileSizeLimit = 0;
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
        {{"@clip.mkv", "--analyze", "--preset-file", "@deep.fxpunka"}, 15, "deep.fxpunka", "than any preset"},
        {{"@clip.mkv", "@old.mkv", "--sensitivity", "150"}, 2, "--sensitivity", "150"},
        {{"@clip.mkv", "@old.mkv", "--max-frames", "0"}, 2, "--max-frames", "0"},
        {{"@clip.mkv", "@old.mkv", "--bundle", "@nobundle"}, 17, "nobundle", "can't be loaded"},
        {{"@clip.mkv", "@old.mkv", "--codec", "ffv1", "--quiet"}, 16, "old.mkv", "writing failed", fullDisk},
    };
    const std::vector<std::string> filesBefore = folder.Files();
    for (const auto& test : cases) {
        std::vector<std::string> arguments;
        for (const std::string& argument : test.arguments)
            arguments.push_back(argument[0] == '@' ? folder.Path(argument.substr(1)) : argument);
        SCOPED_TRACE(arguments[0] + " " + arguments[1] + (arguments.size() > 2 ? " " + arguments[2] : ""));
        const ProgramRun run = RunDeglare(arguments, test.fileSizeLimit);
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

// A decoder can put out a frame whose time doesn't pass the one before (a damaged stream does);
// every frame is still written, in order, at times an intra-only codec's container takes, and
// the frames moved are named.
TEST(DeglareEndToEnd, TimesThatDontIncreaseAreMovedForwardNotRefused)
{
    TempFolder folder;
    ClipRecipe recipe;
    recipe.timeBase = {1, 25};
    for (int64_t frame = 0; frame < 12; ++frame)
        recipe.timestamps.push_back(frame == 5 ? 4 : frame);
    const std::string repeated = WriteSteadyClip(folder.Path("repeated.mkv"), 12, recipe);
    struct Case {
        std::string input;
        const char* output;
        size_t frames;
        const char* named;
    };
    std::vector<Case> cases = {{repeated, "out.nut", 12, "repeated.mkv: frame 5: "},
                               {repeated, "out.avi", 12, "repeated.mkv: frame 5: "}};
    const std::string phone = DEGLARER_SOURCE_DIR "/../shared/clips/box.mp4";   // damaged first frames
    if (fs::exists(phone))
        cases.push_back({phone, "out.nut", 455, "box.mp4: frame 456: "});
    for (const Case& c : cases) {
        const ProgramRun run = RunDeglare({c.input, folder.Path(c.output), "--codec", "ffv1", "--quiet"});
        ASSERT_EQ(run.status, 0) << c.input << " " << c.output << ": " << run.err;
        EXPECT_NE(run.err.find(c.named), std::string::npos) << run.err;
        const ReadClip written = ReadBack(folder.Path(c.output));
        ASSERT_EQ(written.frames.size(), c.frames);
        for (size_t frame = 1; frame < written.frames.size(); ++frame)
            ASSERT_GT(written.frames[frame].pts, written.frames[frame - 1].pts) << c.output << " frame " << frame;
    }
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
        EXPECT_EQ(std::make_tuple(settings["sensitivity"].get<int>(), settings["maxFrames"].get<int>(),
                                  settings["testMode"].get<bool>()),
                  std::make_tuple(test.sensitivity, test.maxFrames, test.testMode)) << settings;
    }
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
