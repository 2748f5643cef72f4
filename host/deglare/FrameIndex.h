#pragma once
#include <cstdint>
#include <vector>

namespace Deglare {

// The video frames of a stream in presentation order, known before any is decoded: frame i is
// the one with the i-th smallest presentation timestamp. It gives the clip's length to the
// effect and lets a frame be found again after a seek. A stream whose packets carry no
// timestamps is untimed: its frames are numbered in the order they decode.
class FrameIndex {
public:
    static constexpr int kNotFound = -1;

    // One video packet's presentation timestamp, in any order; AV_NOPTS_VALUE makes the index
    // untimed.
    void Add(int64_t pts);
    void Finish();

    int Count() const { return m_count; }
    bool Timed() const { return m_timed && m_count > 0; }
    // The timestamp of frame `index`, AV_NOPTS_VALUE when untimed or out of range.
    int64_t PtsOf(int index) const;
    // The frame whose timestamp is `pts`, kNotFound when none is.
    int IndexOf(int64_t pts) const;

private:
    std::vector<int64_t> m_pts;
    int m_count = 0;
    bool m_timed = true;
};

} // namespace Deglare
