#pragma once

namespace Frei0r {

// A frei0r host tells a filter only the time of each frame. The effect needs frame numbers in
// play order, so the clock counts them: 0 for the first frame, one more for a frame one step
// later, the same number for the same time again. A step back or a gap, as a seek in an editor
// gives, starts again at 0, where the effect starts its memory afresh. Without usable times
// (none, or negative) frames are numbered in the order they come.
class FrameClock {
public:
    int IndexAt(double time);
    // Frames a second, once two frames have shown the step; 25 before.
    double FrameRate() const { return m_step > 0 ? 1.0 / m_step : 25.0; }

private:
    bool m_started = false;
    double m_lastTime = 0;
    double m_step = 0;
    int m_index = 0;
};

} // namespace Frei0r
