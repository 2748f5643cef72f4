#pragma once
#include <cstddef>
#include <cstdint>
#include <cstring>

// Interface identifier as hosts lay it out on 64-bit x86: the first group sits in an
// 8-byte word whose top half is zero. Only the first 20 bytes are significant.
struct _GUID {
    uint64_t Data1;
    uint16_t Data2;
    uint16_t Data3;
    uint8_t Data4[8];
};
static_assert(sizeof(_GUID) == 24, "_GUID size");
static_assert(offsetof(_GUID, Data1) == 0, "_GUID.Data1");
static_assert(offsetof(_GUID, Data2) == 8, "_GUID.Data2");
static_assert(offsetof(_GUID, Data3) == 10, "_GUID.Data3");
static_assert(offsetof(_GUID, Data4) == 12, "_GUID.Data4");

typedef _GUID GUID;
typedef _GUID IID;

const size_t kGuidSignificantBytes = 20;

inline bool IsEqualGUID(const _GUID& a, const _GUID& b)
{
    return std::memcmp(&a, &b, kGuidSignificantBytes) == 0;
}

// Status values of the QueryInterface kind.
typedef int32_t HRESULT;
const HRESULT S_OK = 0;
const HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002u);
const HRESULT E_POINTER = static_cast<HRESULT>(0x80004005u);

inline bool SUCCEEDED(HRESULT status) { return status >= 0; }
inline bool FAILED(HRESULT status) { return status < 0; }
