#include <new>

#include "../Common/Optimize.h"
#include "../include/EffectLibrary.h"
#include "DeglarerPro.h"

#define DEGLARER_EXPORT extern "C" __attribute__((visibility("default")))

// The primitive layer chooses its processor variant while the module loads, before the host can
// call in and before any thread of the library exists.
static const Processors::COptimize s_Optimize;

DEGLARER_EXPORT IEffectLibrary* GetEffectsLibrary()
{
    try {
        CDeglarerPro* library = new CDeglarerPro();
        return static_cast<IEffectLibrary*>(library);
    } catch (...) {
        return nullptr;
    }
}

DEGLARER_EXPORT int CanUnloadDLLNow()
{
    return DLLDependentObject::m_nInstanceCount.load(std::memory_order_relaxed) == 0 ? 1 : 0;
}
