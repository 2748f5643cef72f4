#include "DeglarerPro.h"

#include <new>

#include "../Common/FrameProcessor.h"
#include "../Common/PresetSaver.h"
#include "../include/InterfaceIds.h"
#include "../platform/Atomic.h"
#include "Deglarer.h"

namespace {
const char kLibraryName[] = "Tessarel Deglarer Pro";
} // namespace

CDeglarerPro::CDeglarerPro() : m_lRefCount(1) {}

CDeglarerPro::~CDeglarerPro() {}

HRESULT CDeglarerPro::QueryInterface(const _GUID& iid, void** ppv)
{
    if (ppv == nullptr)
        return E_POINTER;
    if (IsEqualGUID(iid, IID_IUnknown) || IsEqualGUID(iid, IID_EffectLibrary))
        *ppv = static_cast<IEffectLibrary*>(this);
    else if (IsEqualGUID(iid, IID_IMultiLingual) && IsTranslationAvailable())
        *ppv = static_cast<IMultiLingual*>(this);
    else {
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

ULONG CDeglarerPro::AddRef()
{
    return static_cast<ULONG>(IncrementAtomic(&m_lRefCount) + 1);
}

ULONG CDeglarerPro::Release()
{
    const int32_t before = DecrementAtomic(&m_lRefCount);
    if (before == 1) {
        delete this;
        return 0;
    }
    return static_cast<ULONG>(before - 1);
}

const char* CDeglarerPro::GetName()
{
    return kLibraryName;
}

IVideoEffect* CDeglarerPro::CreateEffect(unsigned int index)
{
    if (index != 0)
        return nullptr;
    return new (std::nothrow) CDeglarer();
}

// Help and the services are offered once they exist.
bool CDeglarerPro::OpenHelp(OpaqueWindowPtr*, unsigned int)
{
    return false;
}

ILibraryServices* CDeglarerPro::GetLibraryServices()
{
    return nullptr;
}

// A new object for each call, with the caller's one reference.
IFrameProcessor* CDeglarerPro::GetFrameProcessor()
{
    return new (std::nothrow) FrameProcessor();
}

IPresetSaver* CDeglarerPro::GetPresetSaver()
{
    return new (std::nothrow) CPresetSaver();
}
