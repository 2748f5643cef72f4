#pragma once
#include <vector>

#include "FrameRecord.h"

namespace Deglare {

// Neighbouring frames that the effect flagged as flashed: replaced or spared.
struct FlashRun {
    int first = 0;
    int last = 0;
    int replaced = 0;
    int spared = 0;
};

// The runs of flagged frames among `records`, which are in frame order.
std::vector<FlashRun> FindFlashRuns(const std::vector<FrameRecord>& records);

// How many frames were replaced.
int CountReplaced(const std::vector<FrameRecord>& records);

} // namespace Deglare
