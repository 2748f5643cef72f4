#include "FilterHost.h"

#include <cstring>

#include "../../include/HostInfo.h"
#include "../../include/InterfaceIds.h"

namespace Frei0r {

FilterHost::FilterHost(uint32_t instanceId) : m_instanceId(instanceId) {}

HRESULT FilterHost::QueryInterface(const _GUID& iid, void** ppv)
{
    if (ppv == nullptr)
        return E_POINTER;
    *ppv = IsEqualGUID(iid, IID_IUnknown) ? static_cast<IUnknown*>(this) : nullptr;
    if (*ppv == nullptr)
        return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

bool FilterHost::GetParamValue(uint32_t index, EffectParam* value, uint32_t)
{
    if (value == nullptr || index > 2)
        return false;
    std::memset(value->value.bytes, 0, sizeof value->value.bytes);
    if (index == 0)
        value->value.fValue = m_fSensitivity;
    else if (index == 1)
        value->value.fValue = m_fMaxFrames;
    else
        value->value.bValue = m_bTestMode;
    return true;
}

HostInfo FilterHost::GetHostInfo()
{
    HostInfo info = {};
    info.m_HostName = m_hostName;
    info.m_dwCaps = 0;   // frames come one per call, in play order
    info.m_InstanceID = m_instanceId;
    return info;
}

} // namespace Frei0r
