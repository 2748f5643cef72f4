#pragma once
#include <string>
#include <vector>

#include "EffectSettings.h"
#include "FrameRecord.h"

namespace Deglare {

// What a report says about the run beside the frames.
struct ReportContext {
    std::string input;
    EffectSettings settings;
    bool sequential = false;
    double seconds = 0.0;
};

// The report as JSON: the settings, a record for each frame (index, time, the four band
// figures, their sum, the decision and the substitute), the flash runs, and a summary.
std::string ReportJson(const ReportContext& context, const std::vector<FrameRecord>& records);
// The report as CSV: a table of the frames, a blank line, and a table of the flash runs.
std::string ReportCsv(const ReportContext& context, const std::vector<FrameRecord>& records);

// Writes the report to `path` in the form its extension (.json or .csv) names, by way of a
// temporary file. Throws Failure when it can't be written.
void WriteReport(const std::string& path, const ReportContext& context, const std::vector<FrameRecord>& records);

// The word for a decision in reports: "kept", "replaced" or "spared".
const char* DecisionName(Decision decision);

} // namespace Deglare
