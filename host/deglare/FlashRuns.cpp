#include "FlashRuns.h"

namespace Deglare {

std::vector<FlashRun> FindFlashRuns(const std::vector<FrameRecord>& records)
{
    std::vector<FlashRun> runs;
    bool open = false;
    for (const FrameRecord& record : records) {
        if (record.decision == Decision::Kept) {
            open = false;
            continue;
        }
        // A frame lost to damage between two flagged frames splits them.
        if (!open || record.index != runs.back().last + 1) {
            runs.push_back(FlashRun{record.index, record.index, 0, 0});
            open = true;
        }
        FlashRun& run = runs.back();
        run.last = record.index;
        if (record.decision == Decision::Replaced)
            ++run.replaced;
        else
            ++run.spared;
    }
    return runs;
}

int CountReplaced(const std::vector<FrameRecord>& records)
{
    int replaced = 0;
    for (const FrameRecord& record : records)
        if (record.decision == Decision::Replaced)
            ++replaced;
    return replaced;
}

} // namespace Deglare
