#include "MarkFlashedFrame.h"

#include "../Common/Canvas.h"
#include "../Common/Frame.h"

void MarkFlashedFrame(CFrame& frame, unsigned int colour)
{
    const double right = frame.m_nWidth - 1.0;
    const double bottom = frame.m_nHeight - 1.0;
    Processors::CCanvas canvas;
    canvas.DrawSmoothedLine(&frame, 0.0, 0.0, right, bottom, colour);
    canvas.DrawSmoothedLine(&frame, 0.0, bottom, right, 0.0, colour);
}
