#pragma once
#include <cstdint>
#include <string>
#include <vector>

extern "C" {
#include <libavutil/rational.h>
}

namespace Deglare {

// Keeps the times of encoded frames valid and strictly increasing, also in the container's time
// base: a damaged stream can have its decoder put out a frame whose best-effort time doesn't
// pass the last one's (or none at all), which an intra-only encoder's muxer refuses. Such a
// frame keeps its place and is moved to just past the last time by one tick of the coarser of
// the encoder's and the container's time bases; frames are never dropped or reordered.
class TimestampRepair {
public:
    TimestampRepair(AVRational encoderTimeBase, AVRational containerTimeBase);

    // The time to encode frame `index` at, given its time `pts` in the encoder's time base.
    int64_t Next(int index, int64_t pts);

    // The frames whose times were moved, as "frame 7" or "frames 0, 455-456"; empty when none.
    std::string RepairedFrames() const;

private:
    int64_t m_step;
    int64_t m_last;
    std::vector<int> m_repaired;
};

} // namespace Deglare
