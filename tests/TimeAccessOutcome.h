#pragma once
#include <ostream>

#include "../host/Clip.h"
#include "../host/InProcessHost.h"

class CDeglarer;

// What a rendered frame shows: a frame of the clip as it is, or the rendered frame's source with
// Test mode's red or blue cross.
namespace TimeAccessOutcome {

enum class Mark { kNone, kRed, kBlue };

struct Outcome {
    int shows;   // the clip frame, or -1 when the output is none of these
    Mark mark;
    bool operator==(const Outcome& other) const { return shows == other.shows && mark == other.mark; }
};
void PrintTo(const Outcome& outcome, std::ostream* out);

// Renders frame `index` through `host` and tells what the output shows. Clip frames must differ
// (the clips here carry the frame number in their alpha, which measuring doesn't read).
Outcome Render(TestHost::InProcessHost& host, CDeglarer& effect, TestHost::Clip& clip, int index);

// 40 frames with a one-frame flash, a flash on the lower half only, a three-frame burst, a flash
// among dark frames and a lamp switched on.
TestHost::Clip EventfulClip(PixelFormat format);

} // namespace TimeAccessOutcome
