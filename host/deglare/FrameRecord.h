#pragma once
#include "BandFigures.h"
#include "FrameOutcome.h"

namespace Deglare {

// One line of the report: a frame, its time, the host's band figures and what the effect did.
struct FrameRecord {
    int index = 0;
    double time = 0.0;          // seconds from the start of the clip
    bool measured = false;
    BandFigures bands;
    Decision decision = Decision::Kept;
    int substitute = -1;        // for Replaced
};

} // namespace Deglare
