#include "TimestampRepair.h"

#include <algorithm>

extern "C" {
#include <libavutil/avutil.h>
#include <libavutil/mathematics.h>
}

namespace Deglare {

TimestampRepair::TimestampRepair(AVRational encoderTimeBase, AVRational containerTimeBase)
    : m_step(std::max<int64_t>(1, av_rescale_q_rnd(1, containerTimeBase, encoderTimeBase, AV_ROUND_UP))),
      m_last(AV_NOPTS_VALUE)
{
}

int64_t TimestampRepair::Next(int index, int64_t pts)
{
    if (m_last != AV_NOPTS_VALUE && (pts == AV_NOPTS_VALUE || pts < m_last + m_step)) {
        pts = m_last + m_step;
        m_repaired.push_back(index);
    } else if (pts == AV_NOPTS_VALUE) {
        pts = 0;
        m_repaired.push_back(index);
    }
    m_last = pts;
    return pts;
}

std::string TimestampRepair::RepairedFrames() const
{
    std::string text;
    for (size_t first = 0; first < m_repaired.size();) {
        size_t last = first;
        while (last + 1 < m_repaired.size() && m_repaired[last + 1] == m_repaired[last] + 1)
            ++last;
        text += (text.empty() ? "" : ", ") + std::to_string(m_repaired[first]);
        if (last > first)
            text += "-" + std::to_string(m_repaired[last]);
        first = last + 1;
    }
    if (text.empty())
        return text;
    return (m_repaired.size() == 1 ? "frame " : "frames ") + text;
}

} // namespace Deglare
