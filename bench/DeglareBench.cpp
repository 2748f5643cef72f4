// deglare's throughput on a generated 1080p clip beside FFmpeg doing the same work without the
// effect, timed in one run: cleaning against a plain re-encode with the same encoder settings
// and against FFmpeg's own photosensitivity filter, and --analyze against decoding alone.
#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

extern "C" {
#include <libavutil/log.h>
}

#include "../host/deglare/ClipWriter.h"
#include "../host/deglare/DemoFootage.h"

namespace {

namespace fs = std::filesystem;
using Deglare::DemoFootage;

const int kFrames = 150;
// The encoder settings that deglare uses by default, given to FFmpeg alike.
const std::vector<std::string> kEncoder = {"-c:v", "libx264", "-crf", "18", "-preset", "medium"};

// The clip, made once: the demo's scene with its flashes again every 64 frames.
const std::string& Clip()
{
    static const std::string path = [] {
        const fs::path folder = fs::temp_directory_path() / ("deglare-bench-" + std::to_string(getpid()));
        fs::create_directories(folder);
        const std::string clip = (folder / "clip.mp4").string();
        av_log_set_level(AV_LOG_ERROR);
        Deglare::ClipRecipe recipe = DemoFootage::Recipe();
        recipe.frameCount = kFrames;
        Deglare::WriteClip(clip, recipe, [](int index, Deglare::Picture& picture) {
            DemoFootage::Paint(index % DemoFootage::kFrameCount, picture);
        });
        std::atexit([] {
            std::error_code error;
            fs::remove_all(fs::path(Clip()).parent_path(), error);
        });
        return clip;
    }();
    return path;
}

std::string Beside(const std::string& name)
{
    return (fs::path(Clip()).parent_path() / name).string();
}

// What a program took: wall time, and processor time of all its threads, in seconds. On a
// machine that others share, the processor time says more about the work than the wall time.
struct Took {
    double wall = -1.0;     // negative when the program failed
    double processor = 0.0;
};

// Runs a program to its end with its output discarded.
Took TimeProgram(const std::vector<std::string>& arguments)
{
    std::vector<char*> argv;
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) {
        const int nothing = open("/dev/null", O_WRONLY);
        dup2(nothing, STDOUT_FILENO);
        dup2(nothing, STDERR_FILENO);
        execvp(argv[0], argv.data());
        _exit(127);
    }
    int status = 0;
    rusage usage = {};
    wait4(child, &status, 0, &usage);
    Took took;
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0)
        took.wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    for (const timeval& time : {usage.ru_utime, usage.ru_stime})
        took.processor += time.tv_sec + time.tv_usec * 1e-6;
    return took;
}

// Wall and processor time summed over the iterations of one program.
struct Tally {
    double wall = 0.0;
    double processor = 0.0;
    void Add(const Took& took)
    {
        wall += took.wall;
        processor += took.processor;
    }
};

std::vector<std::string> Ffmpeg(std::vector<std::string> middle, const std::string& output)
{
    std::vector<std::string> command = {"ffmpeg", "-nostdin", "-y", "-loglevel", "error", "-i", Clip(), "-map", "0"};
    command.insert(command.end(), middle.begin(), middle.end());
    command.push_back(output);
    return command;
}

void BM_CleanAgainstReencode(benchmark::State& state)
{
    Clip();
    Tally deglare, reencode, photosensitivity;
    for (auto _ : state) {
        std::vector<std::string> plain = kEncoder;
        plain.insert(plain.end(), {"-c:a", "copy"});
        std::vector<std::string> filtered = {"-vf", "photosensitivity"};
        filtered.insert(filtered.end(), plain.begin(), plain.end());
        const Took reencodeTook = TimeProgram(Ffmpeg(plain, Beside("reencode.mp4")));
        const Took filterTook = TimeProgram(Ffmpeg(filtered, Beside("photosensitivity.mp4")));
        const Took deglareTook = TimeProgram({DEGLARE_PROGRAM, Clip(), Beside("deglare.mp4"), "--quiet"});
        if (reencodeTook.wall < 0 || filterTook.wall < 0 || deglareTook.wall < 0) {
            state.SkipWithError("a program failed (is ffmpeg installed?)");
            return;
        }
        state.SetIterationTime(deglareTook.wall);
        deglare.Add(deglareTook);
        reencode.Add(reencodeTook);
        photosensitivity.Add(filterTook);
    }
    const double frames = static_cast<double>(kFrames) * state.iterations();
    state.counters["deglare_fps"] = frames / deglare.wall;
    state.counters["reencode_fps"] = frames / reencode.wall;
    state.counters["photosensitivity_fps"] = frames / photosensitivity.wall;
    // Throughput against the plain re-encode: the aim is at least 0.9.
    state.counters["x_reencode"] = reencode.wall / deglare.wall;
    state.counters["x_photosensitivity"] = photosensitivity.wall / deglare.wall;
    state.counters["x_reencode_cpu"] = reencode.processor / deglare.processor;
}

void BM_AnalyzeAgainstDecode(benchmark::State& state)
{
    Clip();
    Tally analyze, decode;
    for (auto _ : state) {
        // The video alone, as --analyze reads only the video.
        const Took decodeTook = TimeProgram(
            {"ffmpeg", "-nostdin", "-loglevel", "error", "-i", Clip(), "-map", "0:v", "-f", "null", "-"});
        const Took analyzeTook = TimeProgram({DEGLARE_PROGRAM, Clip(), "--analyze", "--quiet"});
        if (decodeTook.wall < 0 || analyzeTook.wall < 0) {
            state.SkipWithError("a program failed (is ffmpeg installed?)");
            return;
        }
        state.SetIterationTime(analyzeTook.wall);
        analyze.Add(analyzeTook);
        decode.Add(decodeTook);
    }
    const double frames = static_cast<double>(kFrames) * state.iterations();
    state.counters["analyze_fps"] = frames / analyze.wall;
    state.counters["decode_fps"] = frames / decode.wall;
    // Throughput against decoding alone: the aim is at least 0.9.
    state.counters["x_decode"] = decode.wall / analyze.wall;
    state.counters["x_decode_cpu"] = decode.processor / analyze.processor;
}

} // namespace

BENCHMARK(BM_CleanAgainstReencode)->UseManualTime()->Iterations(1)->Unit(benchmark::kSecond);
BENCHMARK(BM_AnalyzeAgainstDecode)->UseManualTime()->Iterations(3)->Unit(benchmark::kSecond);
