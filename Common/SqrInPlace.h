#pragma once

class CFrame;

namespace Processors {

// Squares every sample of a four-float frame, alpha included.
class CSqrInPlace {
public:
    bool Process(CFrame* pFrame);
};

} // namespace Processors
