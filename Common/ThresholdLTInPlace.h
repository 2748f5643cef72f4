#pragma once

class CFrame;

namespace Processors {

// Raises every sample of a four-float frame that lies below its channel's threshold to that
// threshold; alpha is a channel like the others. pThreshold holds four floats in record order.
class CThresholdLTInPlace {
public:
    bool Process(CFrame* pFrame, const float* pThreshold);
};

} // namespace Processors
