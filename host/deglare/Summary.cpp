#include "Summary.h"

#include <cstdio>

#include "FlashRuns.h"

namespace Deglare {

namespace {
std::string Plural(long count, const char* one, const char* many)
{
    return std::to_string(count) + " " + (count == 1 ? one : many);
}
} // namespace

std::string SummaryLine(const std::vector<FrameRecord>& records, double seconds)
{
    const std::vector<FlashRun> runs = FindFlashRuns(records);
    char time[32];
    std::snprintf(time, sizeof(time), "%.1f s", seconds);
    return Plural(static_cast<long>(records.size()), "frame", "frames") + " read, " +
           Plural(static_cast<long>(runs.size()), "flash", "flashes") + " found, " +
           Plural(CountReplaced(records), "frame", "frames") + " replaced, in " + time;
}

std::vector<std::string> RunLines(const std::vector<FrameRecord>& records)
{
    std::vector<std::string> lines;
    for (const FlashRun& run : FindFlashRuns(records)) {
        std::string line = run.first == run.last ? "frame " + std::to_string(run.first)
                                                 : "frames " + std::to_string(run.first) + "-" +
                                                       std::to_string(run.last);
        for (const FrameRecord& record : records) {
            if (record.index < run.first || record.index > run.last)
                continue;
            if (record.index == run.first) {
                char time[32];
                std::snprintf(time, sizeof(time), " at %.2f s:", record.time);
                line += time;
            }
            if (record.decision == Decision::Replaced)
                line += " " + std::to_string(record.index) + " replaced by " + std::to_string(record.substitute) + ";";
            else if (record.decision == Decision::Spared)
                line += " " + std::to_string(record.index) + " spared;";
        }
        line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

} // namespace Deglare
