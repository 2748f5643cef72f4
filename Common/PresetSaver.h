#pragma once
#include <atomic>
#include <cstdint>

#include "../include/PresetSaver.h"

class IEffectLibrary;

// Lets the user keep a preset in a file and bring it back, through the platform's file panels.
// A new object for each GetPresetSaver; it holds nothing but its reference count.
class CPresetSaver : public IPresetSaver {
public:
    CPresetSaver();

    HRESULT QueryInterface(const _GUID& iid, void** ppv) override;
    ULONG AddRef() override;
    ULONG Release() override;

    // Both return 0 when the preset was loaded or saved and 1 otherwise: cancelled or failed.
    int Load(OpaqueWindowPtr* window, IEffectLibrary* library, unsigned int effect, CEffectPreset* preset,
             char* reserved) override;
    int Save(OpaqueWindowPtr* window, IEffectLibrary* library, unsigned int effect, CEffectPreset* preset,
             char* reserved) override;

    // Writes the file extension for an effect of a library, at most kExtensionBufferSize bytes
    // with the terminator: "fxp", the library's code, the effect's letter; "prs" for a null name.
    static void GetEffectExtension(const char* libraryName, unsigned int effectIndex, char* out);
    // True when `preset` was made for this effect of this library and holds a value of the
    // right type for each of the effect's parameters.
    static bool ValidatePreset(IEffectLibrary* library, unsigned int effectIndex, CEffectPreset* preset);

    static const int kExtensionBufferSize = 20;
    static const int kDefaultNameBufferSize = 60;
    static const int kPathBufferSize = 255;

protected:
    ~CPresetSaver() override;

private:
    std::atomic<int32_t> m_lRefCount;
};
