#pragma once

class CFrame;

namespace Processors {

// Converts between the pixel formats (bytes to floats and back, with or without reversing the
// channel order), and between RGB and studio-range Y'CbCr in alpha-first float frames.
class CColorSpaceConverter {
public:
    // On the common area; only the pairs of formats that have a path, else false.
    bool Process(CFrame* pSrc, CFrame* pDst);

    // Both frames VideoSampleSwappedFloat; alpha is left alone. These report true whatever their
    // steps did.
    bool ARGB32ToAppleR4FL(CFrame& src, CFrame& dst);
    bool AppleR4FLToARGB32(CFrame& src, CFrame& dst);

    // The three colour channels of VideoSampleSwappedFloat frames through a matrix of three rows of
    // four (the fourth column is an offset), three multipliers or three addends.
    bool ProcessColorMatrix32f(CFrame& src, CFrame& dst, float (*matrix)[4]);
    bool ProcessMulC32f(CFrame& src, CFrame& dst, float* constants);
    bool ProcessAddC32f(CFrame& src, CFrame& dst, float* constants);
};

} // namespace Processors
