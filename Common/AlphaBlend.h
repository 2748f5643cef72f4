#pragma once
#include "../include/FrameParams.h"

class CFrame;

namespace Processors {

// Composites a foreground (in1) over a background (in2) into out, on the area all three share.
// The path follows in1's format, and each path rounds in its own way: the float paths don't
// clamp, the byte paths cut at 255. What comes out is premultiplied, whatever came in.
class CAlphaBlend {
public:
    bool Process(CFrame* pIn1, CFrame* pIn2, CFrame* pOut, bool bPremultiplied);
    bool Process(const FrameParams& frameIn1, const FrameParams& frameIn2, FrameParams& frameOut,
                 bool bPremultiplied);

    // The per-pixel paths. Spans are in pixels; these forms always succeed.
    bool Process(VideoSampleFloat* pIn1, VideoSampleFloat* pIn2, VideoSampleFloat* pOut, unsigned int width,
                 unsigned int height, bool bPremultiplied, int span1, int span2, int spanOut);
    bool Process(VideoSampleSwappedFloat* pIn1, VideoSampleSwappedFloat* pIn2, VideoSampleSwappedFloat* pOut,
                 unsigned int width, unsigned int height, bool bPremultiplied, int span1, int span2, int spanOut);
    bool Process(VideoSampleSwapped* pIn1, VideoSampleSwapped* pIn2, VideoSampleSwapped* pOut, unsigned int width,
                 unsigned int height, bool bPremultiplied, int span1, int span2, int spanOut);
};

} // namespace Processors
