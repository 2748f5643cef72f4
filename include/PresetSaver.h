#pragma once
#include "EffectPreset.h"
#include "FrameParams.h"
#include "Unknown.h"

class IEffectLibrary;

// Results: 0 success, 1 anything else.
class IPresetSaver : public IUnknown {
public:
    virtual int Load(OpaqueWindowPtr* window, IEffectLibrary* library, unsigned int effect, CEffectPreset* preset,
                     char* name) = 0;
    virtual int Save(OpaqueWindowPtr* window, IEffectLibrary* library, unsigned int effect, CEffectPreset* preset,
                     char* name) = 0;
};
