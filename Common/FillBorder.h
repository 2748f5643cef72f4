#pragma once

class CFrame;

namespace Processors {

// Places a picture inside a larger frame at (left, top) and extends its edge pixels outward to the
// frame's edges; the corners take the picture's corner pixels. When both frames share one buffer,
// or have the same width and height, the picture is taken to lie already inside the source with
// margins of left and top on every side, and only the margins are filled.
class CFillBorder {
public:
    bool Process(CFrame* pSrc, CFrame* pDst, int left, int top);
    bool Process8u(CFrame* pSrc, CFrame* pDst, int left, int top);
    bool Process32f(CFrame* pSrc, CFrame* pDst, int left, int top);
};

} // namespace Processors
