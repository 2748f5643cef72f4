#pragma once
#include "FrameParams.h"
#include "Unknown.h"

class IVideoEffect;
class IFrameProcessor;
class IPresetSaver;
class ILibraryServices;

class IEffectLibrary : public IUnknown {
public:
    virtual const char* GetName() = 0;
    virtual IVideoEffect* CreateEffect(unsigned int index) = 0;
    virtual bool OpenHelp(OpaqueWindowPtr* window, unsigned int index) = 0;
    virtual ILibraryServices* GetLibraryServices() = 0;
    virtual IFrameProcessor* GetFrameProcessor() = 0;
    virtual IPresetSaver* GetPresetSaver() = 0;
};

// The module's two exported entry points.
extern "C" {
typedef IEffectLibrary* (*GetEffectsLibraryProc)();
typedef int (*CanUnloadDLLNowProc)();
}
