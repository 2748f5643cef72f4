#pragma once

class CFrame;

namespace Processors {

// Inverts one channel (1.0 - v for floats, 255 - v for bytes) over the whole buffer, row padding
// included. The channel is a position in the pixel record, not a colour; one-channel frames
// invert their only channel whatever is asked.
class CInvertChannel {
public:
    bool Process(CFrame* pFrame, int channel);
};

} // namespace Processors
