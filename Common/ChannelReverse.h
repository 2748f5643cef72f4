#pragma once

class CFrame;

namespace Processors {

// Reverses the four channels of each pixel (position 0 takes 3, 1 takes 2, ...), which turns a
// VideoSample into a VideoSampleSwapped and back, or permutes them in place by an order.
class CChannelReverse {
public:
    bool Process(CFrame* pSrc, CFrame* pDst);
    // Position i takes the old sample at order[i]; repeats are allowed.
    bool Process(CFrame* pFrame, unsigned int* order);

    bool Process8u(CFrame* pSrc, CFrame* pDst);
    bool Process8u(CFrame* pFrame, unsigned int* order);
    bool Process32f(CFrame* pSrc, CFrame* pDst);
};

} // namespace Processors
