#pragma once
#include "../include/PixelFormat.h"

class CFrame;

namespace Processors {

// Multiplies the colour channels by alpha, on the common area of two frames (the frame service
// passes one frame as both). Alpha stays as it is; floats are neither clamped nor checked.
class CAlphaPremul {
public:
    bool Process(CFrame& src, CFrame& dst);
    // c becomes floor(c * a / 255); spans are bytes. Always succeeds.
    bool Process(VideoSampleSwapped* pSrc, VideoSampleSwapped* pDst, unsigned int width, unsigned int height,
                 int srcByteSpan, int dstByteSpan);
};

} // namespace Processors
