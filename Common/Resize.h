#pragma once
#include "../include/FrameParams.h"

class CFrame;

namespace Processors {

// Scales a rectangle of one frame onto a rectangle of another, with free factors and shifts: a
// source point x lands on x * xFactor + xShift in the destination rectangle. Rectangles are half
// open. A factor of 0.0 is worked out from the rectangles.
class CResize {
public:
    // interpolation: 0 nearest neighbour, 1 linear, 2 cubic, 3 Lanczos, anything else linear.
    bool Process(CFrame* pSrc, CFrame* pDst, tagRECT srcRect, tagRECT dstRect, int interpolation, double xFactor,
                 double yFactor, double xShift, double yShift);
};

} // namespace Processors
