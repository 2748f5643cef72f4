#include "FramePosition.h"

#include <climits>
#include <cmath>

int FrameIndexOf(double frames)
{
    const double rounded = frames + 0.5;
    if (std::isnan(rounded))
        return -1;
    if (rounded >= static_cast<double>(INT_MAX))
        return INT_MAX;
    if (rounded <= static_cast<double>(INT_MIN))
        return INT_MIN;
    return static_cast<int>(rounded);
}

int CurrentFrameIndex(const RenderInfo& info)
{
    return (info.dwFlags & kRenderInfoFrameIndexValid) ? info.nFrameIndex : FrameIndexOf(info.dTime * info.dFrameRate);
}
