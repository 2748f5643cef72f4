#include "FrameClock.h"

#include <cmath>

namespace Frei0r {

namespace {
// Times within this share of a step count as that step: hosts round times to milliseconds.
const double kStepTolerance = 0.25;
} // namespace

int FrameClock::IndexAt(double time)
{
    // Some hosts give no time at all (FFmpeg hands a frame without a timestamp over as the
    // lowest 64-bit number): their frames are numbered in the order they come.
    if (!std::isfinite(time) || time < 0) {
        const bool first = !m_started;
        m_started = true;
        return first ? (m_index = 0) : ++m_index;
    }
    const double elapsed = time - m_lastTime;
    const bool first = !m_started;
    m_started = true;
    m_lastTime = time;
    if (first)
        return m_index = 0;
    if (m_step > 0 && std::fabs(elapsed) <= m_step * kStepTolerance)
        return m_index;
    if (m_step > 0 && std::fabs(elapsed - m_step) <= m_step * kStepTolerance)
        return ++m_index;
    if (m_step == 0 && elapsed > 0) {
        m_step = elapsed;
        return ++m_index;
    }
    if (m_step == 0 && elapsed == 0)
        return m_index;
    return m_index = 0;
}

} // namespace Frei0r
