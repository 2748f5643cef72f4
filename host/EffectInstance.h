#pragma once
#include "../include/EffectLibrary.h"
#include "../include/VideoEffect.h"
#include "ModuleLoader.h"

namespace TestHost {

// The library object of a loaded module and its one effect, with an id of its own: what an
// editor holds for each use of the effect. Effects go before the library, as the module
// expects before it is unloaded.
class EffectInstance {
public:
    // Empty (Effect() null) when the module gives no library or the library no effect.
    explicit EffectInstance(const ModuleLoader& module);
    ~EffectInstance();
    EffectInstance(const EffectInstance&) = delete;
    EffectInstance& operator=(const EffectInstance&) = delete;

    IEffectLibrary* Library() const { return m_library; }
    IVideoEffect* Effect() const { return m_effect; }
    unsigned int Id() const { return m_id; }

private:
    IEffectLibrary* m_library = nullptr;
    IVideoEffect* m_effect = nullptr;
    unsigned int m_id = 0;
};

} // namespace TestHost
