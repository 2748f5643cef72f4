#include "ModulePath.h"

#include <dlfcn.h>
#include <climits>
#include <cstdlib>

namespace Platform {

std::string ModulePathOf(const void* symbol)
{
    Dl_info info = {};
    if (symbol == nullptr || dladdr(symbol, &info) == 0 || info.dli_fname == nullptr)
        return std::string();
    char resolved[PATH_MAX];
    if (realpath(info.dli_fname, resolved) == nullptr)
        return std::string();
    return resolved;
}

std::string BundlePathOf(const std::string& modulePath)
{
    std::string path = modulePath;
    for (int level = 0; level < 3; ++level) {
        const size_t slash = path.find_last_of('/');
        if (slash == std::string::npos || slash == 0)
            return std::string();
        path.erase(slash);
    }
    return path;
}

std::string ResourcesPathOf(const std::string& bundlePath)
{
    return bundlePath.empty() ? std::string() : bundlePath + "/Contents/Resources";
}

} // namespace Platform
