#include "MemoryPlan.h"

#include <algorithm>

namespace Deglare {

namespace {
// The effect's scans look ahead until five quiet frames in a row; a few more cover a
// flash in the way without leaving the window.
const int kLeastAhead = 8;
const int kLeastBehind = 2;
const int kFarFrames = 2;
// Scans rarely look further ahead than this; more frames would only cost memory, and fresh
// memory for every frame held.
const int kMostWindow = 32;

// Behind a frame the effect asks only for its substitute (the scans find earlier figures among
// its measurements). Of a run at most "Max Frames" are replaced, so the search for the nearest
// frame not replaced passes at most (maxFrames - 1) / 2 steps on which both neighbours are
// replaced; one frame more is kept for good measure.
int SubstituteReach(int maxFrames)
{
    return (std::clamp(maxFrames, 1, 10) - 1) / 2 + 2;
}
} // namespace

MemoryPlan PlanMemory(size_t budget, size_t frameBytes, size_t pictureBytes, size_t outcomeBytes, int renderThreads,
                      int maxFrames)
{
    MemoryPlan plan;
    const int threads = std::max(renderThreads, 1);
    plan.pendingFrames = threads + 2;
    plan.farFrames = kFarFrames;
    const size_t fixedBytes = plan.pendingFrames * outcomeBytes + plan.farFrames * frameBytes +
                              2 * static_cast<size_t>(threads) * pictureBytes;
    const int leastWindow = threads + kLeastAhead + kLeastBehind;
    int window = 0;
    if (budget > fixedBytes && frameBytes > 0)
        window = static_cast<int>(std::min<size_t>((budget - fixedBytes) / frameBytes, 1 << 20));
    window = std::min(window, std::max(kMostWindow, leastWindow));
    if (window < leastWindow) {
        window = leastWindow;
        plan.raised = true;
    }
    plan.windowFrames = window;
    plan.keepBehind = std::clamp(window / 4, kLeastBehind, SubstituteReach(maxFrames));
    plan.decodeAhead = std::min(threads + kLeastAhead, window - plan.keepBehind);
    plan.startPictures = plan.keepBehind + plan.decodeAhead + 2 * threads;
    plan.plannedBytes = fixedBytes + window * frameBytes;
    return plan;
}

} // namespace Deglare
