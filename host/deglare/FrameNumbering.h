#pragma once
#include <cstdint>

#include "FrameIndex.h"

namespace Deglare {

// Gives decoded frames their index in the clip. A frame is found by its timestamp; one that
// can't be (no timestamp, or one the index doesn't hold) follows the frame before it, which is
// known when decoding started at the beginning and not after a seek.
class FrameNumbering {
public:
    static constexpr int kUnknown = -1;

    explicit FrameNumbering(const FrameIndex& index) : m_index(index) {}

    // Decoding starts at frame 0.
    void StartAtBeginning() { m_previous = -1; m_counting = true; }
    // Decoding starts at a keyframe somewhere after a seek.
    void StartAfterSeek() { m_previous = kUnknown; m_counting = false; }

    // The index of the next decoded frame, kUnknown if it can't be told.
    int Number(int64_t pts);

private:
    const FrameIndex& m_index;
    int m_previous = -1;
    bool m_counting = true;
};

} // namespace Deglare
