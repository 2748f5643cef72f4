#pragma once

namespace Deglare {

// The effect's three parameters as the host hands them back: slider positions from 0 to 1 and
// the check box.
struct EffectSettings {
    float sensitivityPosition = 0.7f;
    float maxFramesPosition = 0.2f;
    bool testMode = false;
};

} // namespace Deglare
