#pragma once
#include <string>
#include <vector>

#include "ClipWriter.h"
#include "Picture.h"

namespace Deglare {

// The demo's clip: a 1080p scene with moving things in it and flashes of the kinds the effect
// meets: a one-frame flash, a partial flash over the lower bands as a rolling shutter gives, a
// three-frame burst, and a lamp switched on that must stay on.
class DemoFootage {
public:
    struct Event {
        int first;
        int last;
        const char* what;
    };

    static const int kWidth = 1920;
    static const int kHeight = 1080;
    static const int kFrameCount = 64;

    // How the clip is encoded.
    static ClipRecipe Recipe();
    static const std::vector<Event>& Events();
    static void Paint(int index, Picture& picture);
};

} // namespace Deglare
