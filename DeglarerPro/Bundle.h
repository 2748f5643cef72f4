#pragma once
#include <string>

// The bundle folder that holds this module, found from one of its own symbols; empty when the
// module is not inside a bundle.
std::string ModuleBundlePath();
