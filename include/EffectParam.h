#pragma once
#include <cstddef>
#include <cstdint>

// Parameter type codes.
enum EffectParamType : uint32_t {
    eptPoint = 0,
    eptInteger = 1,
    eptFloat = 2,
    eptInteger2 = 3,
    eptBool = 4,
    eptNone = 5,
};

// The 8 value bytes of a parameter; bytes without meaning are kept zero because values are
// compared over all 8.
union EffectParamValue {
    float fValue;
    int32_t nValue;
    bool bValue;
    struct { float x, y; } ptValue;
    uint8_t bytes[8];
};
static_assert(sizeof(EffectParamValue) == 8 && alignof(EffectParamValue) == 4, "value bytes");

struct EffectParam {
    EffectParamValue value;
    uint32_t dwType;
};
static_assert(sizeof(EffectParam) == 12, "EffectParam size");
static_assert(offsetof(EffectParam, value) == 0, "EffectParam.value");
static_assert(offsetof(EffectParam, dwType) == 8, "EffectParam.dwType");

const int kParamNameLength = 40;

// The description of one parameter that EnumParam fills.
struct EffectParamSetup {
    EffectParamValue defaultValue;  // a float slider holds the control position 0..1
    uint32_t dwType;
    float fMin;                     // shown range
    float fMax;
    uint32_t dwRangeWord;
    uint8_t reserved[192];
    char szName[kParamNameLength];
    uint32_t dwLayout1;
    uint32_t dwLayout2;
    uint32_t dwLayout3;
    uint32_t dwLayout4;
    bool bFlag;
};
static_assert(sizeof(EffectParamSetup) == 276, "EffectParamSetup size");
static_assert(offsetof(EffectParamSetup, defaultValue) == 0, "EffectParamSetup.defaultValue");
static_assert(offsetof(EffectParamSetup, dwType) == 8, "EffectParamSetup.dwType");
static_assert(offsetof(EffectParamSetup, fMin) == 12, "EffectParamSetup.fMin");
static_assert(offsetof(EffectParamSetup, fMax) == 16, "EffectParamSetup.fMax");
static_assert(offsetof(EffectParamSetup, dwRangeWord) == 20, "EffectParamSetup.dwRangeWord");
static_assert(offsetof(EffectParamSetup, reserved) == 24, "EffectParamSetup.reserved");
static_assert(offsetof(EffectParamSetup, szName) == 216, "EffectParamSetup.szName");
static_assert(offsetof(EffectParamSetup, dwLayout1) == 256, "EffectParamSetup.dwLayout1");
static_assert(offsetof(EffectParamSetup, dwLayout2) == 260, "EffectParamSetup.dwLayout2");
static_assert(offsetof(EffectParamSetup, dwLayout3) == 264, "EffectParamSetup.dwLayout3");
static_assert(offsetof(EffectParamSetup, dwLayout4) == 268, "EffectParamSetup.dwLayout4");
static_assert(offsetof(EffectParamSetup, bFlag) == 272, "EffectParamSetup.bFlag");
