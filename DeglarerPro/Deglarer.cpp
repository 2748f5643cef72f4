#include "Deglarer.h"

#include <cstring>
#include <new>

#include "../Common/Copy.h"
#include "../Common/Frame.h"
#include "../include/InterfaceIds.h"
#include "../include/VideoHost.h"
#include "../platform/Atomic.h"

namespace {
const char kEffectName[] = "Deglarer Pro";
const unsigned int kEffectCaps = 993;

enum ParamIndex { kSensitivity = 0, kMaxFrames = 1, kTestMode = 2 };

// Layout words of the parameter setups, as the host's dialog expects them.
const uint32_t kLayoutStep = 66;
const uint32_t kLayoutWord3 = 198;
const uint32_t kLayoutWord4 = 30;
} // namespace

const char* const CDeglarer::s_szToolTips[kParamCount] = {
    "Control how sensitive flash detection is",
    "Limit how many consecutive frames will be compensated for",
    "Shows what frames have been detected as flash",
};

const char* const CDeglarer::s_szPresetNames[kPresetCount] = {
    "Bright Lighting", "Dim Lighting",    "Fine Tune",      "Heavy Flashes",
    "Multi Flashes",   "Preserve Motion", "Single Flashes", "Typical Lighting",
};

// Control positions as float bits in the low half; the last column is "Test mode".
const uint64_t CDeglarer::s_llPresetData[kPresetCount][kParamCount] = {
    {0x3F666666, 0x3EAAAAAB, 0},
    {0x3E19999A, 0x3EAAAAAB, 0},
    {0x3F000000, 0x00000000, 1},
    {0x3EE66666, 0x3F800000, 1},
    {0x3EE66666, 0x3EAAAA9F, 1},
    {0x3F4CCCCD, 0x00000000, 0},
    {0x3DCCCCCD, 0x3DE38E2A, 0},
    {0x3F000000, 0x3EAAAAAB, 0},
};

CDeglarer::CDeglarer() : m_uId(0xFFFFFFFFu), m_lRefCount(1), m_lField(INT32_MIN) {}

CDeglarer::~CDeglarer() {}

HRESULT CDeglarer::QueryInterface(const _GUID& iid, void** ppv)
{
    if (ppv == nullptr)
        return E_POINTER;
    if (IsEqualGUID(iid, IID_IUnknown) || IsEqualGUID(iid, IID_VideoEffect))
        *ppv = static_cast<IVideoEffect*>(this);
    else if (IsEqualGUID(iid, IID_ParamToolTip))
        *ppv = static_cast<IParamToolTip*>(this);
    else if (IsEqualGUID(iid, IID_EffectUniqueId))
        *ppv = static_cast<IEffectUniqueId*>(this);
    else {
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

ULONG CDeglarer::AddRef()
{
    return static_cast<ULONG>(IncrementAtomic(&m_lRefCount) + 1);
}

ULONG CDeglarer::Release()
{
    const int32_t before = DecrementAtomic(&m_lRefCount);
    if (before == 1) {
        delete this;
        return 0;
    }
    return static_cast<ULONG>(before - 1);
}

const char* CDeglarer::GetName()
{
    return kEffectName;
}

unsigned int CDeglarer::GetCaps()
{
    return kEffectCaps;
}

bool CDeglarer::EnumParam(unsigned int index, EffectParamSetup* setup)
{
    if (index >= kParamCount || setup == nullptr)
        return false;
    static const char* const names[kParamCount] = {"Sensitivity", "Max Frames", "Test mode"};
    switch (index) {
    case kSensitivity:
        setup->defaultValue.fValue = 0.7f;
        setup->dwType = eptFloat;
        setup->fMin = 0.0f;
        setup->fMax = 100.0f;
        setup->dwRangeWord = 0;
        break;
    case kMaxFrames:
        setup->defaultValue.fValue = 0.2f;
        setup->dwType = eptFloat;
        setup->fMin = 1.0f;
        setup->fMax = 10.0f;
        setup->dwRangeWord = 0;
        break;
    default:
        setup->dwType = eptBool;   // range and default stay as the caller cleared them
        break;
    }
    std::strcpy(setup->szName, names[index]);
    setup->dwLayout1 = kLayoutStep * index;
    setup->dwLayout2 = 0;
    setup->dwLayout3 = kLayoutWord3;
    setup->dwLayout4 = kLayoutWord4;
    setup->bFlag = true;
    return true;
}

const char* CDeglarer::EnumPreset(unsigned int index)
{
    return index < kPresetCount ? s_szPresetNames[index] : nullptr;
}

bool CDeglarer::EnumPresetData(unsigned int preset, unsigned int param, EffectParam* value)
{
    if (preset >= kPresetCount || param >= kParamCount || value == nullptr)
        return false;
    std::memcpy(value->value.bytes, &s_llPresetData[preset][param], sizeof(value->value.bytes));
    return true;
}

const char* CDeglarer::EnumToolTip(unsigned int index)
{
    return index < kParamCount ? s_szToolTips[index] : nullptr;
}

void CDeglarer::SetId(unsigned int id)
{
    m_uId = id;
}

unsigned int CDeglarer::GetId()
{
    return m_uId;
}

bool CDeglarer::Render(IVideoHost* host, FrameParams* source, FrameParams* second, FrameParams* destination,
                       RenderInfo* info)
{
    if (host == nullptr || source == nullptr || source->pBuffer == nullptr || destination == nullptr ||
        destination->pBuffer == nullptr || info == nullptr)
        return false;
    try {
        const HostInfo hostInfo = host->GetHostInfo();
        if (hostInfo.m_dwCaps & kHostCapsTimeAccess)
            return RenderUsingTimeAccess(host, source, second, destination, info);
        return RenderUsingCache(host, source, second, destination, info);
    } catch (...) {
        // Nothing may unwind into the host; what was rendered so far stands.
        return false;
    }
}

bool CopySourceToDestination(FrameParams* source, FrameParams* destination)
{
    CFrame sourceFrame;
    CFrame destinationFrame;
    sourceFrame.Init(source);
    destinationFrame.Init(destination);
    Processors::CCopy().Process(&sourceFrame, &destinationFrame);
    return true;
}
