#pragma once
#include <string>
#include <vector>

#include "FrameRecord.h"

namespace Deglare {

// The one line that ends a run: frames read, flashes found, frames replaced, time taken.
std::string SummaryLine(const std::vector<FrameRecord>& records, double seconds);

// A line for each flash run, for --analyze: where it is and what became of its frames.
std::vector<std::string> RunLines(const std::vector<FrameRecord>& records);

} // namespace Deglare
