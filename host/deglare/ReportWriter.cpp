#include "ReportWriter.h"

#include <cctype>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include <nlohmann/json.hpp>

#include "ExitStatus.h"
#include "FlashRuns.h"
#include "SliderPositions.h"
#include "TemporaryOutput.h"

namespace Deglare {

namespace {
using Json = nlohmann::ordered_json;

// A single-precision figure as the shortest decimal that reads back as the same float, rather
// than the float's exact binary value widened to a double.
double Figure(float value)
{
    char text[32];
    const auto result = std::to_chars(text, text + sizeof(text), value);
    return std::strtod(std::string(text, result.ptr).c_str(), nullptr);
}

Json SettingsJson(const ReportContext& context)
{
    return {
        {"sensitivity", ShownSensitivity(context.settings.sensitivityPosition)},
        {"sensitivityPosition", Figure(context.settings.sensitivityPosition)},
        {"maxFrames", DecodedMaxFrames(context.settings.maxFramesPosition)},
        {"maxFramesPosition", Figure(context.settings.maxFramesPosition)},
        {"testMode", context.settings.testMode},
        {"renderPath", context.sequential ? "sequential" : "time access"},
    };
}

bool EndsWith(const std::string& text, const std::string& ending)
{
    if (text.size() < ending.size())
        return false;
    for (size_t index = 0; index < ending.size(); ++index)
        if (std::tolower(static_cast<unsigned char>(text[text.size() - ending.size() + index])) != ending[index])
            return false;
    return true;
}
} // namespace

const char* DecisionName(Decision decision)
{
    switch (decision) {
    case Decision::Replaced:
        return "replaced";
    case Decision::Spared:
        return "spared";
    default:
        return "kept";
    }
}

std::string ReportJson(const ReportContext& context, const std::vector<FrameRecord>& records)
{
    Json frames = Json::array();
    for (const FrameRecord& record : records) {
        Json frame = {{"index", record.index}, {"time", record.time}};
        if (record.measured) {
            frame["bands"] = {Figure(record.bands.band[0]), Figure(record.bands.band[1]),
                              Figure(record.bands.band[2]), Figure(record.bands.band[3])};
            frame["sum"] = Figure(record.bands.Sum());
        }
        frame["decision"] = DecisionName(record.decision);
        if (record.decision == Decision::Replaced)
            frame["substitute"] = record.substitute;
        frames.push_back(frame);
    }
    Json runs = Json::array();
    for (const FlashRun& run : FindFlashRuns(records)) {
        Json replaced = Json::array();
        Json spared = Json::array();
        for (const FrameRecord& record : records) {
            if (record.index < run.first || record.index > run.last)
                continue;
            if (record.decision == Decision::Replaced)
                replaced.push_back({{"frame", record.index}, {"substitute", record.substitute}});
            else if (record.decision == Decision::Spared)
                spared.push_back(record.index);
        }
        runs.push_back({{"first", run.first}, {"last", run.last}, {"replaced", replaced}, {"spared", spared}});
    }
    const Json report = {
        {"input", context.input},
        {"settings", SettingsJson(context)},
        {"summary",
         {{"framesRead", records.size()},
          {"flashesFound", runs.size()},
          {"framesReplaced", CountReplaced(records)},
          {"seconds", context.seconds}}},
        {"frames", frames},
        {"runs", runs},
    };
    return report.dump(2) + "\n";
}

std::string ReportCsv(const ReportContext&, const std::vector<FrameRecord>& records)
{
    std::ostringstream csv;
    csv << "index,time,band0,band1,band2,band3,sum,decision,substitute\n";
    char line[256];
    for (const FrameRecord& record : records) {
        if (record.measured)
            std::snprintf(line, sizeof(line), "%d,%.6f,%.6f,%.6f,%.6f,%.6f,%.6f,", record.index, record.time,
                          record.bands.band[0], record.bands.band[1], record.bands.band[2], record.bands.band[3],
                          record.bands.Sum());
        else
            std::snprintf(line, sizeof(line), "%d,%.6f,,,,,,", record.index, record.time);
        csv << line << DecisionName(record.decision) << ',';
        if (record.decision == Decision::Replaced)
            csv << record.substitute;
        csv << '\n';
    }
    csv << "\nrun,first,last,replaced,spared\n";
    int number = 0;
    for (const FlashRun& run : FindFlashRuns(records))
        csv << ++number << ',' << run.first << ',' << run.last << ',' << run.replaced << ',' << run.spared << '\n';
    return csv.str();
}

void WriteReport(const std::string& path, const ReportContext& context, const std::vector<FrameRecord>& records)
{
    const std::string text = EndsWith(path, ".csv") ? ReportCsv(context, records) : ReportJson(context, records);
    TemporaryOutput file(path, context.input);
    {
        std::ofstream out(file.Path(), std::ios::binary | std::ios::trunc);
        out << text;
        out.flush();
        if (!out)
            throw Failure(ExitStatus::WriteFailed, path + ": the report couldn't be written");
    }
    file.Commit();
}

} // namespace Deglare
