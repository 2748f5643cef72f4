#pragma once
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <string>

#include "../include/EffectPreset.h"

// Builders for preset records in tests: every byte of a record is set, so that records compare
// over their whole size.
namespace PresetTest {

inline EffectParam Typed(uint32_t type)
{
    EffectParam parameter;
    std::memset(&parameter, 0, sizeof parameter);
    parameter.dwType = type;
    return parameter;
}

// A parameter of `type` whose value `set` writes.
template <typename Set>
EffectParam Typed(uint32_t type, Set set)
{
    EffectParam parameter = Typed(type);
    set(parameter.value);
    return parameter;
}

inline EffectParam Float(float f) { return Typed(eptFloat, [f](auto& value) { value.fValue = f; }); }
inline EffectParam Bool(uint8_t byte) { return Typed(eptBool, [byte](auto& value) { value.bytes[0] = byte; }); }
inline EffectParam Integer(int32_t n, uint32_t type = eptInteger)
{
    return Typed(type, [n](auto& value) { value.nValue = n; });
}
inline EffectParam Point(float x, float y)
{
    return Typed(eptPoint, [x, y](auto& value) {
        value.ptValue.x = x;
        value.ptValue.y = y;
    });
}

inline CEffectPreset Record(const std::string& name, const std::string& library, const std::string& effect,
                            std::initializer_list<EffectParam> parameters)
{
    CEffectPreset preset;
    std::memset(&preset, 0, sizeof preset);
    std::strncpy(preset.Name, name.c_str(), sizeof preset.Name - 1);
    std::strncpy(preset.LibraryName, library.c_str(), sizeof preset.LibraryName - 1);
    std::strncpy(preset.EffectName, effect.c_str(), sizeof preset.EffectName - 1);
    for (const EffectParam& parameter : parameters)
        preset.Params[preset.nCount++] = parameter;
    return preset;
}

// A record full of a pattern that no load produces, to see what a refused load left alone.
inline CEffectPreset Untouched()
{
    CEffectPreset preset;
    std::memset(&preset, 0xA5, sizeof preset);
    return preset;
}

template <typename T>
bool SameBytes(const T& a, const T& b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

inline uint32_t Bits(float value)
{
    uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

// The value a float has after a file: its "%f" text read back and narrowed; what doesn't print
// as a number reads as 0.
inline float ThroughText(float value)
{
    char text[64];
    std::snprintf(text, sizeof text, "%f", static_cast<double>(value));
    return std::isfinite(value) ? static_cast<float>(std::strtod(text, nullptr)) : 0.0f;
}

// A "Preset" root with the given children.
inline std::string PresetWith(const std::string& parameters)
{
    return "<Preset Name=\"n\" LibraryName=\"l\" EffectName=\"e\">" + parameters + "</Preset>";
}

const char kLibraryName[] = "Tessarel Deglarer Pro";
const char kEffectName[] = "Deglarer Pro";

// The file that the stock preset "Fine Tune" with the effect's defaults makes, line by line.
const char kFineTuneFile[] =
    "<?xml version=\"1.0\" standalone=\"no\" ?>\n"
    "<!-- Effect's Preset File -->\n"
    "<Preset Name=\"Fine Tune\" LibraryName=\"Tessarel Deglarer Pro\" EffectName=\"Deglarer Pro\">\n"
    "    <parameter type=\"2\" value=\"0.700000\" />\n"
    "    <parameter type=\"2\" value=\"0.200000\" />\n"
    "    <parameter type=\"4\" value=\"1\" />\n"
    "</Preset>\n";

} // namespace PresetTest
