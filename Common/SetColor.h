#pragma once

class CFrame;

namespace Processors {

// Fills the whole frame with a colour word 0xAARRGGBB, laid down in the frame's channel order;
// one-channel frames take the word's low byte. Floats are the bytes times 1/255.
class CSetColor {
public:
    bool Process(CFrame* pFrame, unsigned int color);
};

} // namespace Processors
