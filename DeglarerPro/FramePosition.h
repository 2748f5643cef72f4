#pragma once
#include "../include/RenderInfo.h"

// truncate(frames + 0.5) held to the range of a frame index; not a number gives -1.
int FrameIndexOf(double frames);

// The frame a render is for: the index field when the host says it is valid, else the time
// times the rate, rounded.
int CurrentFrameIndex(const RenderInfo& info);
