#pragma once

class CFrame;

namespace Processors {

// Takes the root of every sample of a four-float frame, alpha included. A negative sample
// becomes a not-a-number; the rest of the picture is still done, and the result is then false.
class CSqrtInPlace {
public:
    bool Process(CFrame* pFrame);
};

} // namespace Processors
