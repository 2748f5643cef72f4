#pragma once
#include <string>
#include <vector>

#include "Clip.h"

namespace TestHost {

// A short clip of a scene with a one-frame flash, a flash that covers only the lower bands (as a
// rolling shutter gives), a three-frame burst and a lamp switched on that stays on. `labels`
// receives a line per frame that says what it shows.
Clip MakeDemoClip(std::vector<std::string>* labels);

} // namespace TestHost
