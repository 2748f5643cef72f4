#pragma once
#include <cstdint>
#include <memory>

#include "AvSupport.h"
#include "BandFigures.h"
#include "Picture.h"

namespace Deglare {

// What the effect decided for a frame, as the host can tell from what came back.
enum class Decision {
    Kept,       // the frame's own picture
    Replaced,   // another frame's picture in its place
    Spared,     // flagged as flashed, left as it was ("Max Frames" spares it)
};

// The result of rendering one frame, ready to be reported and encoded.
struct FrameOutcome {
    int index = -1;
    int64_t pts = 0;                    // the frame's own time, in the stream's time base
    Decision decision = Decision::Kept;
    int substitute = -1;                // the frame shown instead, for Replaced
    bool measured = false;
    BandFigures bands;                  // when measured

    // What to encode: an original decoded picture, or else a rendered picture that is
    // none of them (a marked frame in "Test mode").
    FrameRef picture;
    std::unique_ptr<Picture> rendered;
};

} // namespace Deglare
