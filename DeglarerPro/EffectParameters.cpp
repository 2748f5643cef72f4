#include "EffectParameters.h"

#include <cstdint>
#include <cstring>

#include "../include/EffectParam.h"
#include "../include/VideoHost.h"

namespace {

enum ParamIndex { kSensitivity = 0, kMaxFrames = 1, kTestMode = 2 };

// The threshold is (1 - u * u) * 0.09 + 0.01 with u the sensitivity in whole tenths; both
// constants by their single-precision bits.
const uint32_t kThresholdSpanBits = 0x3DB851EC;   // 0.09
const uint32_t kThresholdFloorBits = 0x3C23D70A;  // 0.01
const int kSensitivitySteps = 10;
const int kMostFrames = 10;

float FloatFromBits(uint32_t bits)
{
    float value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

// Truncation toward zero, held to [low, high]; a position that is not a number reads as low.
int TruncateHeld(float value, int low, int high)
{
    if (!(value > static_cast<float>(low)))
        return low;
    if (value >= static_cast<float>(high))
        return high;
    return static_cast<int>(value);
}

EffectParam ReadParam(IVideoHost* host, uint32_t index, EffectParamType type)
{
    EffectParam param;
    std::memset(&param, 0, sizeof param);
    param.dwType = type;
    if (host != nullptr)
        host->GetParamValue(index, &param, type);
    return param;
}

} // namespace

DecodedParameters DecodeParameters(IVideoHost* host)
{
    const float sensitivity = ReadParam(host, kSensitivity, eptFloat).value.fValue;
    const float maxFrames = ReadParam(host, kMaxFrames, eptFloat).value.fValue;
    const EffectParam testMode = ReadParam(host, kTestMode, eptBool);

    DecodedParameters decoded;
    // Positions are quantised down to tenths; positions beyond the slider's ends act as its ends.
    const int tenths = TruncateHeld(sensitivity * static_cast<float>(kSensitivitySteps), 0, kSensitivitySteps);
    const float u = static_cast<float>(tenths) / static_cast<float>(kSensitivitySteps);
    decoded.threshold = (1.0f - u * u) * FloatFromBits(kThresholdSpanBits) + FloatFromBits(kThresholdFloorBits);
    decoded.limit = TruncateHeld(9.0f * maxFrames, 0, kMostFrames - 1) + 1;
    decoded.test = testMode.value.bytes[0] != 0;
    return decoded;
}
