#pragma once
#include <atomic>
#include <deque>
#include <memory>
#include <mutex>
#include <string>

#include "FrameReader.h"
#include "FrameSource.h"

namespace Deglare {

// Frames far from the render position, decoded apart from the main pass by a reader of its
// own: a keyframe seek, then decoding forward to the frame. Requests that walk on in order are
// served by decoding on without seeking again, and the last few frames are kept. The input is
// opened on the first request.
class RandomAccessReader : public FrameSource {
public:
    RandomAccessReader(const std::string& path, const FrameIndex& index, int threads, int keep,
                       DecodedFrame::Keep keepOriginals = DecodedFrame::Keep::ForEncoding);

    FramePtr Frame(int index) override;

    // Frames this reader decoded in all; on the common path it decodes none.
    long DecodedFrames() const { return m_decodedFrames.load(); }

private:
    FramePtr KeptFrame(int index) const;
    FramePtr DecodeForwardTo(int index);
    void Keep(const FramePtr& frame);

    const std::string m_path;
    const FrameIndex& m_index;
    const int m_threads;
    const size_t m_keep;
    const DecodedFrame::Keep m_keepOriginals;
    std::mutex m_mutex;
    std::unique_ptr<FrameReader> m_reader;
    int m_position = -1;    // the last frame decoded; -1 before any or right after a seek
    std::deque<FramePtr> m_kept;
    std::atomic<long> m_decodedFrames{0};
};

} // namespace Deglare
