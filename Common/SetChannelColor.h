#pragma once

class CFrame;

namespace Processors {

// Fills one position of the pixel record (0 to 3) of the whole frame with the low byte of value,
// as a byte or as that byte times 1/255.
class CSetChannelColor {
public:
    bool Process(CFrame* pFrame, unsigned int channel, unsigned int value);
};

} // namespace Processors
