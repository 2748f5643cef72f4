#pragma once

class CFrame;

namespace Processors {

// Copies the common top-left area of two frames, by the source's format. Formats are not
// compared and nothing is converted.
class CCopy {
public:
    bool Process(CFrame* pSrc, CFrame* pDst);
};

} // namespace Processors
