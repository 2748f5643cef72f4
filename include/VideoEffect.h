#pragma once
#include "EffectParam.h"
#include "FrameParams.h"
#include "RenderInfo.h"
#include "Unknown.h"

class IVideoHost;

class IVideoEffect : public IUnknown {
public:
    virtual const char* GetName() = 0;
    virtual unsigned int GetCaps() = 0;
    virtual bool EnumParam(unsigned int index, EffectParamSetup* setup) = 0;
    virtual bool Render(IVideoHost* host, FrameParams* source, FrameParams* second, FrameParams* destination,
                        RenderInfo* info) = 0;
    virtual const char* EnumPreset(unsigned int index) = 0;
    virtual bool EnumPresetData(unsigned int preset, unsigned int param, EffectParam* value) = 0;
};

class IParamToolTip : public IUnknown {
public:
    virtual const char* EnumToolTip(unsigned int index) = 0;
};

class IEffectUniqueId : public IUnknown {
public:
    virtual void SetId(unsigned int id) = 0;
    virtual unsigned int GetId() = 0;
};
