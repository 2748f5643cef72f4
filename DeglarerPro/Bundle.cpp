#include "Bundle.h"

#include "../platform/ModulePath.h"

std::string ModuleBundlePath()
{
    return Platform::BundlePathOf(Platform::ModulePathOf(reinterpret_cast<const void*>(&ModuleBundlePath)));
}
