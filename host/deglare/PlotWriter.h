#pragma once
#include <string>
#include <vector>

#include "FrameRecord.h"

namespace Deglare {

// Draws the four band figures over time, with the replaced frames marked in red and the spared
// ones in blue, to `path` as PNG or SVG by its extension, by way of a temporary file. `title`
// heads the picture. Throws Failure when it can't be written.
void WritePlot(const std::string& path, const std::string& title, const std::vector<FrameRecord>& records,
               const std::string& input);

} // namespace Deglare
