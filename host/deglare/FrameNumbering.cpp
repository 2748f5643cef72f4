#include "FrameNumbering.h"

namespace Deglare {

int FrameNumbering::Number(int64_t pts)
{
    int number = m_index.IndexOf(pts);
    if (m_counting && (number == FrameIndex::kNotFound || number <= m_previous))
        number = m_previous + 1;
    if (number == FrameIndex::kNotFound)
        return kUnknown;
    m_previous = number;
    m_counting = true;
    return number;
}

} // namespace Deglare
