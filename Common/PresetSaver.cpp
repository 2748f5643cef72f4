#include "PresetSaver.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "../include/EffectLibrary.h"
#include "../include/InterfaceIds.h"
#include "../include/VideoEffect.h"
#include "../platform/Atomic.h"
#include "../platform/HomeDirectory.h"
#include "../platform/UserInterface.h"
#include "PresetName.h"
#include "PresetSerializer.h"

namespace {

const char kExtensionPrefix[] = "fxp";
const char kUnknownLibraryCode[] = "unk";
const char kGenericExtension[] = "prs";
const char kDefaultFileName[] = "MyPreset.%s";
const unsigned int kEffectLetters = 26;

struct LibraryCode {
    const char* libraryName;
    const char* code;
};

// Codes of the family's libraries that share this file format, by display name, compared
// exactly. This library has none and takes "unk", which its files in users' hands carry.
const LibraryCode kLibraryCodes[] = {
    {nullptr, nullptr},
};

const char kSaveFailedTitle[] = "Couldn't save preset";
const char kSaveFailedText[] = "An unexpected error occured. Your preset was unable to be saved.";
const char kLoadFailedTitle[] = "Couldn't load preset";
const char kLoadFailedText[] = "An unexpected error occured. The preset was unable to be loaded.";
const char kMismatchText[] = "The saved preset doesn't match the current version of the effect.";
const char kOkButton[] = "OK";

const char* LibraryCodeOf(const char* libraryName)
{
    for (const LibraryCode* entry = kLibraryCodes; entry->libraryName != nullptr; ++entry)
        if (std::strcmp(entry->libraryName, libraryName) == 0)
            return entry->code;
    return kUnknownLibraryCode;
}

void ShowAlert(const char* title, const char* text)
{
    Platform::GetUserInterface().ShowAlert(title, text, std::vector<std::string>{kOkButton}, 0);
}

// For a failure that came as an exception, from the library's objects or from memory running
// out: the user still learns that the file wasn't handled, if an alert can be shown at all.
void TryToShowAlert(const char* title, const char* text)
{
    try {
        ShowAlert(title, text);
    } catch (...) {
    }
}

// The chosen path as the fixed path buffer takes it: one that doesn't fit leaves the buffer
// empty, and the file can then be neither written nor read.
std::string FittedPath(const std::string& chosen)
{
    return chosen.size() < static_cast<size_t>(CPresetSaver::kPathBufferSize) ? chosen : std::string();
}

// Holds the caller's reference to an effect and gives it back on every way out.
class EffectReference {
public:
    explicit EffectReference(IVideoEffect* effect) : m_effect(effect) {}
    ~EffectReference()
    {
        if (m_effect != nullptr)
            m_effect->Release();
    }
    EffectReference(const EffectReference&) = delete;
    EffectReference& operator=(const EffectReference&) = delete;
    IVideoEffect* operator->() const { return m_effect; }
    explicit operator bool() const { return m_effect != nullptr; }

private:
    IVideoEffect* m_effect;
};

// Exact comparison of a name field with a name that the library or effect gives.
bool SameName(const char (&field)[kPresetNameLength], const char* name)
{
    if (name == nullptr)
        name = "";
    const size_t length = std::strlen(name);
    return length < sizeof field && std::memcmp(field, name, length + 1) == 0;
}

} // namespace

CPresetSaver::CPresetSaver() : m_lRefCount(1) {}

CPresetSaver::~CPresetSaver() {}

HRESULT CPresetSaver::QueryInterface(const _GUID& iid, void** ppv)
{
    if (ppv == nullptr)
        return E_POINTER;
    *ppv = nullptr;
    if (!IsEqualGUID(iid, IID_IUnknown) && !IsEqualGUID(iid, IID_PresetSaver))
        return E_NOINTERFACE;
    *ppv = static_cast<IPresetSaver*>(this);
    AddRef();
    return S_OK;
}

ULONG CPresetSaver::AddRef()
{
    return static_cast<ULONG>(IncrementAtomic(&m_lRefCount) + 1);
}

ULONG CPresetSaver::Release()
{
    const int32_t before = DecrementAtomic(&m_lRefCount);
    if (before == 1) {
        delete this;
        return 0;
    }
    return static_cast<ULONG>(before - 1);
}

void CPresetSaver::GetEffectExtension(const char* libraryName, unsigned int effectIndex, char* out)
{
    if (out == nullptr)
        return;
    // Past the last letter an effect has no extension of its own and takes the generic one.
    if (libraryName == nullptr || effectIndex >= kEffectLetters) {
        std::snprintf(out, kExtensionBufferSize, "%s", kGenericExtension);
        return;
    }
    std::snprintf(out, kExtensionBufferSize, "%s%s%c", kExtensionPrefix, LibraryCodeOf(libraryName),
                  static_cast<char>('a' + effectIndex));
}

int CPresetSaver::Save(OpaqueWindowPtr*, IEffectLibrary* library, unsigned int effectIndex, CEffectPreset* preset,
                       char*)
{
    if (preset == nullptr || library == nullptr)
        return 1;
    try {
        const char* libraryName = library->GetName();
        char extension[kExtensionBufferSize];
        GetEffectExtension(libraryName, effectIndex, extension);
        char defaultName[kDefaultNameBufferSize];
        std::snprintf(defaultName, sizeof defaultName, kDefaultFileName, extension);

        std::string chosen;
        if (!Platform::GetUserInterface().ChooseFileToSaveIn(Platform::HomeDirectory(), std::string(), defaultName,
                                                             extension, &chosen))
            return 1;

        SetPresetName(preset->LibraryName, libraryName);
        SetPresetName(preset->EffectName, nullptr);
        // Without the effect its name can't be had, and a file without it would never load again.
        EffectReference effect(library->CreateEffect(effectIndex));
        bool saved = false;
        if (effect) {
            SetPresetName(preset->EffectName, effect->GetName());
            saved = CPresetSerializer().Save(FittedPath(chosen).c_str(), preset);
        }
        if (!saved) {
            ShowAlert(kSaveFailedTitle, kSaveFailedText);
            return 1;
        }
        return 0;
    } catch (...) {
        TryToShowAlert(kSaveFailedTitle, kSaveFailedText);
        return 1;
    }
}

int CPresetSaver::Load(OpaqueWindowPtr*, IEffectLibrary* library, unsigned int effectIndex, CEffectPreset* preset,
                       char*)
{
    // A host must pass both; without a library no file could be checked against its effect.
    if (preset == nullptr || library == nullptr)
        return 1;
    try {
        char extension[kExtensionBufferSize];
        GetEffectExtension(library->GetName(), effectIndex, extension);

        std::string chosen;
        if (!Platform::GetUserInterface().ChooseFileToOpenIn(Platform::HomeDirectory(), std::string(), extension,
                                                             &chosen) ||
            chosen.empty())
            return 1;

        if (!CPresetSerializer().Load(FittedPath(chosen).c_str(), preset)) {
            ShowAlert(kLoadFailedTitle, kLoadFailedText);
            return 1;
        }
        if (!ValidatePreset(library, effectIndex, preset)) {
            ShowAlert(kLoadFailedTitle, kMismatchText);
            return 1;
        }
        return 0;
    } catch (...) {
        TryToShowAlert(kLoadFailedTitle, kLoadFailedText);
        return 1;
    }
}

bool CPresetSaver::ValidatePreset(IEffectLibrary* library, unsigned int effectIndex, CEffectPreset* preset)
{
    if (preset == nullptr)
        return false;
    if (library == nullptr)
        return preset->nCount > 0;
    try {
        EffectReference effect(library->CreateEffect(effectIndex));
        if (!effect)
            return false;
        if (!SameName(preset->LibraryName, library->GetName()) || !SameName(preset->EffectName, effect->GetName()))
            return false;
        // Only the effect's own parameters are checked, and only their types: a preset with more
        // is taken, one with fewer is not. The records end at the hundredth whatever the count says.
        const int used = std::min<int32_t>(preset->nCount, kPresetMaxParams);
        EffectParamSetup setup;
        std::memset(&setup, 0, sizeof setup);
        for (int index = 0; effect->EnumParam(static_cast<unsigned int>(index), &setup); ++index)
            if (index >= used || preset->Params[index].dwType != setup.dwType)
                return false;
        return true;
    } catch (...) {
        return false;
    }
}
