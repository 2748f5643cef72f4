#pragma once
#include <atomic>
#include <cstdint>

#include "../include/VideoEffect.h"

class IVideoHost;

// The flash removal effect. What it remembers between renders lives in static pools keyed by
// the id that the host gives, so objects that share an id share their memory.
class CDeglarer : public IVideoEffect, public IParamToolTip, public IEffectUniqueId {
public:
    CDeglarer();
    ~CDeglarer() override;

    HRESULT QueryInterface(const _GUID& iid, void** ppv) override;
    ULONG AddRef() override;
    ULONG Release() override;

    const char* GetName() override;
    unsigned int GetCaps() override;
    bool EnumParam(unsigned int index, EffectParamSetup* setup) override;
    bool Render(IVideoHost* host, FrameParams* source, FrameParams* second, FrameParams* destination,
                RenderInfo* info) override;
    const char* EnumPreset(unsigned int index) override;
    bool EnumPresetData(unsigned int preset, unsigned int param, EffectParam* value) override;
    const char* EnumToolTip(unsigned int index) override;
    void SetId(unsigned int id) override;
    unsigned int GetId() override;

    static const int kParamCount = 3;
    static const int kPresetCount = 8;
    static const char* const s_szToolTips[kParamCount];
    static const char* const s_szPresetNames[kPresetCount];
    static const uint64_t s_llPresetData[kPresetCount][kParamCount];

private:
    bool RenderUsingTimeAccess(IVideoHost* host, FrameParams* source, FrameParams* second,
                               FrameParams* destination, RenderInfo* info);
    bool RenderUsingCache(IVideoHost* host, FrameParams* source, FrameParams* second, FrameParams* destination,
                          RenderInfo* info);

    uint32_t m_uId;
    std::atomic<int32_t> m_lRefCount;
    int32_t m_lField;
};

// The fallback of both render paths: the source copied to the destination as it is.
bool CopySourceToDestination(FrameParams* source, FrameParams* destination);
