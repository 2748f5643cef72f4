#include "Demo.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>

#include "Application.h"
#include "DemoFootage.h"
#include "ExitStatus.h"
#include "FlashRuns.h"
#include "Summary.h"
#include "TemporaryOutput.h"

namespace Deglare {

namespace {
const char* const kFolder = "deglare-demo";

void WriteFootage(const std::string& path)
{
    TemporaryOutput file(path, "");
    try {
        WriteClip(file.Path(), DemoFootage::Recipe(), DemoFootage::Paint);
    } catch (const std::exception& error) {
        throw Failure(ExitStatus::WriteFailed, path + ": the demo clip couldn't be written (" + error.what() + ")");
    }
    file.Commit();
}

// What became of the frames from `first` to `last`.
std::string Fate(const std::vector<FrameRecord>& records, int first, int last)
{
    std::string fate;
    for (const FrameRecord& record : records) {
        if (record.index < first || record.index > last)
            continue;
        std::string what = record.decision == Decision::Replaced ? "replaced by frame " + std::to_string(record.substitute)
                           : record.decision == Decision::Spared ? "flagged but spared"
                                                                 : "kept";
        if (first != last)
            what = std::to_string(record.index) + " " + what;
        fate += (fate.empty() ? "" : ", ") + what;
    }
    return fate;
}

std::string Frames(int first, int last)
{
    return first == last ? "frame " + std::to_string(first)
                         : "frames " + std::to_string(first) + "-" + std::to_string(last);
}
} // namespace

void RunDemo(const Options& options, Console& console, std::ostream& out, const std::atomic<bool>* interrupted)
{
    std::error_code error;
    std::filesystem::create_directories(kFolder, error);
    if (error)
        throw Failure(ExitStatus::OutputFolderNotWritable,
                      std::string(kFolder) + ": the demo's folder can't be made (" + error.message() + ")");
    Options job = options;
    job.demo = false;
    job.analyze = false;
    job.input = std::string(kFolder) + "/demo-input.mp4";
    job.output = std::string(kFolder) + "/demo-cleaned.mp4";
    job.report = std::string(kFolder) + "/demo-report.json";
    job.plot = std::string(kFolder) + "/demo-plot.png";

    if (!options.quiet)
        out << "Making a " << DemoFootage::kWidth << "x" << DemoFootage::kHeight << " clip of "
            << DemoFootage::kFrameCount << " frames with flashes ..." << std::endl;
    WriteFootage(job.input);
    if (!options.quiet)
        out << "Cleaning it ..." << std::endl;
    const RunResult result = CleanFile(job, console, interrupted);
    if (options.quiet)
        return;

    out << "\nThe clip with flashes: " << job.input << "\n"
        << "The cleaned clip:      " << job.output << "\n"
        << "The report:            " << job.report << "\n"
        << "The plot:              " << job.plot << "\n\n"
        << "What became of the flashes:\n";
    int lastEventFrame = -1;
    for (const DemoFootage::Event& event : DemoFootage::Events()) {
        out << "  " << Frames(event.first, event.last) << ", " << event.what << ": "
            << Fate(result.frames, event.first, event.last) << "\n";
        lastEventFrame = event.last;
    }
    const int lastFrame = DemoFootage::kFrameCount - 1;
    out << "  " << Frames(lastEventFrame + 1, lastFrame) << ", the lamp still on: "
        << (CountReplaced(std::vector<FrameRecord>(result.frames.begin() + lastEventFrame + 1, result.frames.end())) == 0
                ? "kept"
                : "some replaced")
        << "\n";
    const bool spared = std::any_of(result.frames.begin(), result.frames.end(),
                                    [](const FrameRecord& record) { return record.decision == Decision::Spared; });
    if (spared)
        out << "  (\"Max Frames\" limits how many of a run's frames are replaced, the brightest first;\n"
               "   deglare --demo --max-frames 3 takes the whole burst)\n";
    out << "\n" << SummaryLine(result.frames, result.seconds) << std::endl;
}

} // namespace Deglare
