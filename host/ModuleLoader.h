#pragma once
#include <string>

#include "../include/EffectLibrary.h"

namespace TestHost {

// Loads the plug-in module with dlopen, as a separately built host would, and reaches it only
// through its two exported entry points.
class ModuleLoader {
public:
    explicit ModuleLoader(const std::string& modulePath);
    ~ModuleLoader();
    ModuleLoader(const ModuleLoader&) = delete;
    ModuleLoader& operator=(const ModuleLoader&) = delete;

    bool Loaded() const { return m_handle != nullptr && m_getLibrary != nullptr && m_canUnload != nullptr; }
    const std::string& Error() const { return m_error; }

    IEffectLibrary* GetEffectsLibrary() const { return m_getLibrary ? m_getLibrary() : nullptr; }
    bool CanUnload() const { return m_canUnload && m_canUnload() != 0; }

    // The module inside a bundle: <bundle>/Contents/Linux-x86-64/DeglarerPro.so
    static std::string ModuleInBundle(const std::string& bundlePath);

private:
    void* m_handle;
    GetEffectsLibraryProc m_getLibrary;
    CanUnloadDLLNowProc m_canUnload;
    std::string m_error;
};

} // namespace TestHost
