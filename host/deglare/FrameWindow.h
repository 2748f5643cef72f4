#pragma once
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <set>

#include "FrameSource.h"

namespace Deglare {

// The decoded frames around the render position. The decoder fills it in order as far as
// `capacity` frames from its lowest frame; renders take frames from it in order, and the
// effect's requests are served from it, waiting for the decoder when a frame lies ahead within
// reach. Unasked, the decoder runs only `decodeAhead` frames past the oldest frame in use, so
// that few frames hold memory that no render has looked at; a request further ahead within
// reach lets it on. Once every render near a frame is over and `keepBehind` newer frames have
// started, the frame leaves the window. Requests outside the window go to `farFrames`, which
// decodes them apart (null: such frames can't be had).
class FrameWindow : public FrameSource {
public:
    // `decodeAhead` 0: as far as the capacity allows.
    FrameWindow(int capacity, int keepBehind, FrameSource* farFrames, int decodeAhead = 0);

    // Decoder side. Blocks while the frame lies beyond the window; false when cancelled.
    bool Push(FramePtr frame);
    // No more frames will come.
    void Finish();
    // Everyone waiting gives up.
    void Cancel();

    // Render side: the next decoded frame in order, and its position among them (0, 1, 2 ...);
    // null at the end or when cancelled.
    FramePtr NextToRender(long* ordinal);
    // The render of frame `index` is over.
    void Rendered(int index);
    // Frames handed out by NextToRender so far.
    long Handed() const;

    // FrameSource: any frame of the clip.
    FramePtr Frame(int index) override;

    int Capacity() const { return m_capacity; }

private:
    int OldestInUseLocked() const;
    void AdvanceLocked();

    const int m_capacity;
    const int m_keepBehind;
    const int m_decodeAhead;
    FrameSource* m_farFrames;

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::map<int, FramePtr> m_frames;
    std::deque<FramePtr> m_toRender;
    std::multiset<int> m_rendering;
    int m_base = 0;          // frames below this have left
    int m_highest = -1;      // the highest index decoded so far
    int m_wanted = -1;       // the highest index a request has waited for
    long m_handed = 0;
    bool m_finished = false;
    bool m_cancelled = false;
};

} // namespace Deglare
