#include "ModuleLoader.h"

#include <dlfcn.h>

namespace TestHost {

ModuleLoader::ModuleLoader(const std::string& modulePath)
    : m_handle(nullptr), m_getLibrary(nullptr), m_canUnload(nullptr)
{
    m_handle = dlopen(modulePath.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (m_handle == nullptr) {
        const char* error = dlerror();
        m_error = error != nullptr ? error : "dlopen failed";
        return;
    }
    m_getLibrary = reinterpret_cast<GetEffectsLibraryProc>(dlsym(m_handle, "GetEffectsLibrary"));
    m_canUnload = reinterpret_cast<CanUnloadDLLNowProc>(dlsym(m_handle, "CanUnloadDLLNow"));
    if (!Loaded())
        m_error = "the module lacks its entry points";
}

ModuleLoader::~ModuleLoader()
{
    if (m_handle != nullptr)
        dlclose(m_handle);
}

std::string ModuleLoader::ModuleInBundle(const std::string& bundlePath)
{
    return bundlePath + "/Contents/Linux-x86-64/DeglarerPro.so";
}

} // namespace TestHost
