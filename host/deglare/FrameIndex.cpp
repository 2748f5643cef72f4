#include "FrameIndex.h"

#include <algorithm>

extern "C" {
#include <libavutil/avutil.h>
}

namespace Deglare {

void FrameIndex::Add(int64_t pts)
{
    ++m_count;
    if (pts == AV_NOPTS_VALUE)
        m_timed = false;
    else
        m_pts.push_back(pts);
}

void FrameIndex::Finish()
{
    std::sort(m_pts.begin(), m_pts.end());
    // Two packets with one timestamp can't both be found by it.
    if (std::adjacent_find(m_pts.begin(), m_pts.end()) != m_pts.end())
        m_timed = false;
    if (!m_timed)
        m_pts.clear();
}

int64_t FrameIndex::PtsOf(int index) const
{
    if (!Timed() || index < 0 || index >= static_cast<int>(m_pts.size()))
        return AV_NOPTS_VALUE;
    return m_pts[index];
}

int FrameIndex::IndexOf(int64_t pts) const
{
    if (!Timed() || pts == AV_NOPTS_VALUE)
        return kNotFound;
    auto found = std::lower_bound(m_pts.begin(), m_pts.end(), pts);
    if (found == m_pts.end() || *found != pts)
        return kNotFound;
    return static_cast<int>(found - m_pts.begin());
}

} // namespace Deglare
