#pragma once
#include "Picture.h"

namespace Deglare {

// What a render in "Test mode" said about a frame: nothing drawn, a red cross (the frame is
// replaced), or a blue cross (flagged as flashed, but spared by "Max Frames").
enum class Mark { None, Red, Blue };

// Reads the mark from the rendered picture and the source it was rendered from: a cross drawn
// corner to corner, whose pixels lean towards red or towards blue.
Mark ReadMark(const Picture& rendered, const Picture& source);

} // namespace Deglare
