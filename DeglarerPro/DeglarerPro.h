#pragma once
#include <atomic>
#include <cstdint>

#include "../foundation/MultiLingualBase.h"
#include "../include/EffectLibrary.h"
#include "DLLDependentObject.h"

// The library object. Hosts hold its IEffectLibrary sub-object.
class CDeglarerPro : public DLLDependentObject, public IEffectLibrary, public CMultiLingualBase {
public:
    CDeglarerPro();
    ~CDeglarerPro() override;

    HRESULT QueryInterface(const _GUID& iid, void** ppv) override;
    ULONG AddRef() override;
    ULONG Release() override;

    const char* GetName() override;
    IVideoEffect* CreateEffect(unsigned int index) override;
    bool OpenHelp(OpaqueWindowPtr* window, unsigned int index) override;
    ILibraryServices* GetLibraryServices() override;
    IFrameProcessor* GetFrameProcessor() override;
    IPresetSaver* GetPresetSaver() override;

private:
    std::atomic<int32_t> m_lRefCount;
};
