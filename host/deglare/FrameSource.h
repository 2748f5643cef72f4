#pragma once
#include "DecodedFrame.h"

namespace Deglare {

// Where the stream host gets the clip's frames by index.
class FrameSource {
public:
    virtual ~FrameSource() = default;
    // The frame at `index`; null when the clip has none there or it can't be had.
    virtual FramePtr Frame(int index) = 0;
};

} // namespace Deglare
