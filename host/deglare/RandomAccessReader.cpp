#include "RandomAccessReader.h"

#include <algorithm>

namespace Deglare {

namespace {
// Up to this many frames ahead, decoding on is cheaper than a seek back to a keyframe.
const int kDecodeOnLimit = 96;
} // namespace

RandomAccessReader::RandomAccessReader(const std::string& path, const FrameIndex& index, int threads, int keep,
                                       DecodedFrame::Keep keepOriginals)
    : m_path(path), m_index(index), m_threads(threads), m_keep(static_cast<size_t>(std::max(keep, 1))),
      m_keepOriginals(keepOriginals)
{
}

FramePtr RandomAccessReader::KeptFrame(int index) const
{
    for (const FramePtr& frame : m_kept)
        if (frame->Index() == index)
            return frame;
    return nullptr;
}

void RandomAccessReader::Keep(const FramePtr& frame)
{
    m_kept.push_back(frame);
    if (m_kept.size() > m_keep)
        m_kept.pop_front();
}

FramePtr RandomAccessReader::Frame(int index)
{
    if (index < 0 || index >= m_index.Count())
        return nullptr;
    std::lock_guard<std::mutex> lock(m_mutex);
    if (FramePtr kept = KeptFrame(index))
        return kept;
    try {
        if (!m_reader) {
            m_reader = std::make_unique<FrameReader>(std::make_unique<MediaInput>(m_path), m_index, m_threads);
            m_reader->SetKeep(m_keepOriginals);
            m_position = -1;
        }
        const bool decodeOn = m_position >= 0 && index > m_position && index - m_position <= kDecodeOnLimit;
        if (!decodeOn) {
            // The index holds the stream's own timestamps, start time included, so the seek
            // lands where the frame really is.
            if (m_reader->SeekBefore(index))
                m_position = -1;
            else {
                m_reader->Restart();
                m_position = -1;
            }
        }
        FramePtr frame = DecodeForwardTo(index);
        if (!frame && m_position > index) {
            // The seek landed behind the frame: start from the beginning, which always finds it.
            m_reader->Restart();
            m_position = -1;
            frame = DecodeForwardTo(index);
        }
        return frame;
    } catch (...) {
        m_reader.reset();
        return nullptr;
    }
}

FramePtr RandomAccessReader::DecodeForwardTo(int index)
{
    while (FramePtr frame = m_reader->Next()) {
        ++m_decodedFrames;
        m_position = frame->Index();
        if (m_position == index) {
            Keep(frame);
            return frame;
        }
        if (m_position > index)
            return nullptr;
        // Frames just before the one asked for are what a backward scan wants next.
        if (index - m_position <= static_cast<int>(m_keep))
            Keep(frame);
    }
    return nullptr;
}

} // namespace Deglare
