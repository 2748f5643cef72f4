#pragma once
#include <cstddef>

namespace Deglare {

// How the decoded frames of a run share the memory budget: the window around the render
// position, the outcomes waiting to be encoded, the frames kept by the far reader, and two
// destination pictures for each render thread.
struct MemoryPlan {
    int windowFrames = 0;       // frames decoded ahead of and kept behind the render position
    int keepBehind = 0;         // of them, frames kept behind the oldest render in progress
    int decodeAhead = 0;        // frames decoded past the oldest render before any request asks
    int pendingFrames = 0;      // outcomes rendered and not yet encoded
    int farFrames = 0;          // frames kept by the far reader
    int startPictures = 0;      // BGRA pictures held once the window has filled: its frames, destinations
    size_t plannedBytes = 0;    // the most the plan can hold
    bool raised = false;        // the budget was below the least that works, which is used instead
};

// `frameBytes`: a decoded frame with its BGRA picture; `pictureBytes`: one BGRA picture;
// `outcomeBytes`: what an outcome waiting to be encoded holds; `maxFrames`: the "Max Frames"
// the effect decodes, which bounds how far behind a frame its substitute can lie.
MemoryPlan PlanMemory(size_t budget, size_t frameBytes, size_t pictureBytes, size_t outcomeBytes, int renderThreads,
                      int maxFrames = 10);

} // namespace Deglare
