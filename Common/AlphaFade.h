#pragma once

class CFrame;

namespace Processors {

// Writes dst from src with the opacity scaled by level and the colours multiplied by the new
// alpha, so the result is premultiplied. Full opacity is level 255 for float frames and 256 for
// byte frames.
class CAlphaFade {
public:
    bool Process(CFrame* pSrc, CFrame* pDst, int level);
};

} // namespace Processors
