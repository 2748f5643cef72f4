#include "Options.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>

extern "C" {
#include <libavcodec/version.h>
#include <libavformat/version.h>
#include <libavutil/version.h>
#include <libswscale/version.h>
}

#include "SliderPositions.h"

namespace Deglare {

namespace {
const uint64_t kLeastMemoryMegabytes = 64;
const uint64_t kMostMemoryMegabytes = 1 << 20;
const int kMostThreads = 256;
const int kMostCrf = 63;

std::string Extension(const std::string& path)
{
    const size_t dot = path.find_last_of('.');
    const size_t slash = path.find_last_of('/');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash))
        return "";
    std::string extension = path.substr(dot + 1);
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension;
}

CLI::Validator EndsIn(const std::string& first, const std::string& second)
{
    return CLI::Validator(
        [first, second](std::string& path) -> std::string {
            const std::string extension = Extension(path);
            if (extension == first || extension == second)
                return "";
            return path + " must end in ." + first + " or ." + second;
        },
        "FILE (." + first + " or ." + second + ")");
}

std::string VersionText()
{
    return std::string("deglare ") + DEGLARE_VERSION + "\n" + "libavformat " AV_STRINGIFY(LIBAVFORMAT_VERSION) +
           ", libavcodec " AV_STRINGIFY(LIBAVCODEC_VERSION) + ", libavutil " AV_STRINGIFY(LIBAVUTIL_VERSION) +
           ", libswscale " AV_STRINGIFY(LIBSWSCALE_VERSION) + "\n";
}
} // namespace

ParseResult ParseOptions(int argc, const char* const* argv, Options& options, std::ostream& out, std::ostream& err)
{
    CLI::App app("Removes photographic flashes from a video: each flashed frame is replaced whole by a clean\n"
                 "neighbouring frame, through the Deglarer Pro effect.",
                 "deglare");
    app.get_formatter()->column_width(30);
    app.add_option("INPUT", options.input, "Any file FFmpeg can demux and decode");
    app.add_option("OUTPUT", options.output, "The cleaned file; its extension chooses the container");

    app.add_option("--sensitivity", options.sensitivity, "The \"Sensitivity\" slider, 0 to 100 (default 70)")
        ->check(CLI::Range(kLeastSensitivity, kMostSensitivity));
    app.add_option("--max-frames", options.maxFrames, "The \"Max Frames\" slider, 1 to 10 (default 2)")
        ->check(CLI::Range(kLeastMaxFrames, kMostMaxFrames));
    CLI::Option* preset = app.add_option("--preset", options.preset, "One of the effect's eight stock presets");
    CLI::Option* presetFile = app.add_option("--preset-file", options.presetFile, "A saved preset file")
                                  ->check(CLI::ExistingFile);
    preset->excludes(presetFile);
    app.add_flag("--test-mode", options.testMode, "Show the decisions: a red cross on replaced frames, blue on spared");
    app.add_flag("--sequential", options.sequential,
                 "Play a host without time access: the effect sees the frames in order only");
    CLI::Option* analyze =
        app.add_flag("--analyze", options.analyze, "Decode, measure and decide, and write no video");
    app.add_option("--report", options.report, "Per-frame figures and decisions, and the flash runs")
        ->check(EndsIn("json", "csv"));
    app.add_option("--plot", options.plot, "The four bands over time with replaced and spared frames marked")
        ->check(EndsIn("png", "svg"));

    app.add_option("--codec", options.encoder.codec, "Any FFmpeg video encoder (default libx264)");
    CLI::Option* crf =
        app.add_option("--crf", options.encoder.crf, "Constant rate factor (libx264 default 18)")->check(CLI::Range(0, kMostCrf));
    CLI::Option* bitrate = app.add_option("--bitrate", options.encoder.bitrate, "Video bit rate, e.g. 8M or 2500k")
                               ->transform(CLI::AsSizeValue(true))
                               ->check(CLI::Range(uint64_t(1), uint64_t(1) << 40));
    crf->excludes(bitrate);
    app.add_option("--threads", options.threads, "Render threads (default: one for every two processors)")
        ->check(CLI::Range(1, kMostThreads));
    app.add_option("--memory", options.memoryMegabytes, "Megabytes for decoded frames (default 1024)")
        ->check(CLI::Range(kLeastMemoryMegabytes, kMostMemoryMegabytes));
    app.add_option("--bundle", options.bundle, "The effect's bundle (default: beside deglare)");
    app.add_flag("--quiet", options.quiet, "No progress and no summary");
    CLI::Option* demo = app.add_flag("--demo", options.demo,
                                     "Make a 1080p clip with flashes, clean it, and write everything to deglare-demo/");
    bool version = false;
    app.add_flag("--version", version, "Show the version");
    demo->excludes(analyze);

    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        out << app.help();
        return ParseResult::Done;
    } catch (const CLI::ParseError& error) {
        err << "deglare: " << error.what() << " (see deglare --help)\n";
        return ParseResult::Invalid;
    }
    if (version) {
        out << VersionText();
        return ParseResult::Done;
    }

    std::string complaint;
    if (options.demo) {
        if (!options.input.empty())
            complaint = "--demo makes its own clip and takes no INPUT or OUTPUT";
    } else if (options.input.empty()) {
        complaint = "INPUT is required";
    } else if (options.analyze && !options.output.empty()) {
        complaint = "--analyze writes no video; leave OUTPUT out";
    } else if (!options.analyze && options.output.empty()) {
        complaint = "OUTPUT is required (or --analyze)";
    }
    if (!complaint.empty()) {
        err << "deglare: " << complaint << " (see deglare --help)\n";
        return ParseResult::Invalid;
    }
    return ParseResult::Run;
}

} // namespace Deglare
