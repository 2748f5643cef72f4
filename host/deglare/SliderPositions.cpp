#include "SliderPositions.h"

#include <algorithm>
#include <cmath>

namespace Deglare {

namespace {
const float kTenths = 10.0f;
const float kFrameSteps = 9.0f;
} // namespace

int DecodedSensitivityTenth(float position)
{
    const float scaled = position * kTenths;
    return static_cast<int>(scaled);
}

int DecodedMaxFrames(float position)
{
    const float scaled = kFrameSteps * position;
    return std::clamp(static_cast<int>(scaled) + 1, kLeastMaxFrames, kMostMaxFrames);
}

float SensitivityPosition(int shown)
{
    shown = std::clamp(shown, kLeastSensitivity, kMostSensitivity);
    float position = static_cast<float>(shown) / 100.0f;
    // Step up by the least amount while the product truncates below the wanted tenth.
    while (DecodedSensitivityTenth(position) < shown / 10)
        position = std::nextafter(position, 2.0f);
    return position;
}

float MaxFramesPosition(int frames)
{
    frames = std::clamp(frames, kLeastMaxFrames, kMostMaxFrames);
    float position = static_cast<float>(frames - 1) / kFrameSteps;
    while (DecodedMaxFrames(position) < frames)
        position = std::nextafter(position, 2.0f);
    return position;
}

int ShownSensitivity(float position)
{
    return static_cast<int>(std::lround(position * 100.0));
}

} // namespace Deglare
