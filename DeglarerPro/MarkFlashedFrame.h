#pragma once

class CFrame;

// Test mode's colours: a frame the effect replaced, and a flagged frame that "Max Frames" spared.
const unsigned int kReplacedFrameColour = 0xFFFF0000u;   // red
const unsigned int kSparedFrameColour = 0xFF0000FFu;     // blue

// Crosses the frame out with its two diagonals in `colour`; the frame's alpha stays.
void MarkFlashedFrame(CFrame& frame, unsigned int colour);
