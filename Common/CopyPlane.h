#pragma once

class CFrame;

namespace Processors {

// Copies one channel from src to dst on the common area. Planes are positions in the pixel
// record (0 to 3); a one-channel frame has only its plane 0. The source's sample type picks floats
// or bytes, and the two depths pick which of the pair has four channels.
class CCopyPlane {
public:
    bool Process(CFrame* pSrc, CFrame* pDst, int srcPlane, int dstPlane);
};

} // namespace Processors
