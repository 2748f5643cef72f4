#pragma once
#include <memory>
#include <string>
#include <vector>

#include "../../include/EffectLibrary.h"
#include "../../include/VideoEffect.h"
#include "../EffectInstance.h"
#include "../ModuleLoader.h"
#include "EffectSettings.h"

namespace Deglare {

// The effect as an editor meets it: the bundle's module loaded with dlopen, the library object
// from its entry point, and the one effect from CreateEffect(0), given an id of its own.
class EffectModule {
public:
    // Throws Failure when the bundle can't be loaded or offers no effect.
    explicit EffectModule(const std::string& bundlePath);
    ~EffectModule();
    EffectModule(const EffectModule&) = delete;
    EffectModule& operator=(const EffectModule&) = delete;

    IEffectLibrary* Library() const { return m_instance->Library(); }
    IVideoEffect* Effect() const { return m_instance->Effect(); }

    // The parameters' default positions, as EnumParam states them.
    EffectSettings Defaults() const;
    // The stock preset named `name`, compared without regard to case; throws Failure naming
    // the stock presets when there is none.
    EffectSettings Preset(const std::string& name) const;
    std::vector<std::string> PresetNames() const;

    // Where the bundle lies by default: beside the running program.
    static std::string BundleBesideProgram();

private:
    std::unique_ptr<TestHost::ModuleLoader> m_loader;
    std::unique_ptr<TestHost::EffectInstance> m_instance;   // declared after the loader: it goes first
};

} // namespace Deglare
