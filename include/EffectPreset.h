#pragma once
#include <cstddef>
#include <cstdint>
#include "EffectParam.h"

const int kPresetNameLength = 260;
const int kPresetMaxParams = 100;

// A preset as it passes between host and library.
struct CEffectPreset {
    char Name[kPresetNameLength];
    char LibraryName[kPresetNameLength];
    char EffectName[kPresetNameLength];
    EffectParam Params[kPresetMaxParams];
    int32_t nCount;
};
static_assert(sizeof(CEffectPreset) == 1984, "CEffectPreset size");
static_assert(offsetof(CEffectPreset, Name) == 0, "CEffectPreset.Name");
static_assert(offsetof(CEffectPreset, LibraryName) == 260, "CEffectPreset.LibraryName");
static_assert(offsetof(CEffectPreset, EffectName) == 520, "CEffectPreset.EffectName");
static_assert(offsetof(CEffectPreset, Params) == 780, "CEffectPreset.Params");
static_assert(offsetof(CEffectPreset, nCount) == 1980, "CEffectPreset.nCount");
