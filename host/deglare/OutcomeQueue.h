#pragma once
#include <condition_variable>
#include <map>
#include <mutex>

#include "FrameOutcome.h"

namespace Deglare {

// Puts the outcomes of frames rendered on several threads back in order, and keeps renders
// from running further than `depth` frames ahead of the consumer.
class OutcomeQueue {
public:
    explicit OutcomeQueue(long depth);

    // Waits until the frame at `ordinal` may be rendered; false when cancelled.
    bool WaitForRoom(long ordinal);
    void Put(long ordinal, FrameOutcome outcome);
    // The outcome at the next ordinal; false once all `total` have been taken or on cancel.
    bool Take(FrameOutcome* outcome);
    // `total` outcomes will have been put in all.
    void Finish(long total);
    void Cancel();

private:
    const long m_depth;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::map<long, FrameOutcome> m_waiting;
    long m_taken = 0;
    long m_total = -1;
    bool m_cancelled = false;
};

} // namespace Deglare
