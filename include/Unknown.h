#pragma once
#include <cstdint>
#include "Guid.h"

typedef uint32_t ULONG;

// Root of every interface but IMultiLingual. The virtual destructor takes two slots
// (complete and deleting) after Release.
class IUnknown {
public:
    virtual HRESULT QueryInterface(const _GUID& iid, void** ppv) = 0;
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;
    virtual ~IUnknown() {}
};
