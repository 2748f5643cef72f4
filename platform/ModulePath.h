#pragma once
#include <string>

namespace Platform {

// The real path of the loaded file that holds `symbol`; empty when it can't be told.
std::string ModulePathOf(const void* symbol);

// The bundle folder of a module at <bundle>/Contents/<platform>/<module>: three components up.
// Empty when the path has fewer components.
std::string BundlePathOf(const std::string& modulePath);

// <bundle>/Contents/Resources, or empty without a bundle.
std::string ResourcesPathOf(const std::string& bundlePath);

} // namespace Platform
