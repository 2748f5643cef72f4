#pragma once
#include <string>

#include "../../include/EffectLibrary.h"
#include "../../include/VideoEffect.h"
#include "EffectSettings.h"

namespace Deglare {

// A preset the user saved from an editor: the "Preset" XML file with the library's and the
// effect's names and one "parameter" element a value. It is taken only when it was made for
// this library and this effect and holds a value of the right type for each of the effect's
// parameters, as the editor's own preset loading demands. Throws Failure naming the file and
// what is wrong with it.
EffectSettings ReadPresetFile(const std::string& path, IEffectLibrary* library, IVideoEffect* effect);

} // namespace Deglare
