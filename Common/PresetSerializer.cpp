#include "PresetSerializer.h"

#include <tinyxml.h>

#include <algorithm>
#include <cerrno>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "../platform/ScopedCLocale.h"
#include "../platform/WholeFile.h"
#include "PresetDocument.h"
#include "PresetName.h"

namespace {

// The skeleton of every preset file. TinyXML takes the declaration as it stands and prints it
// in its own form, `<?xml version="1.0" standalone="no" ?>`.
const char kPresetSkeleton[] =
    "<?xml version=\"1.0\"  standalone='no' >\n"
    "<!-- Effect's Preset File -->\n"
    "<Preset>\n"
    "</Preset>";

const char kRootElement[] = "Preset";
const char kParameterElement[] = "parameter";

int ClampedCount(int32_t count)
{
    return std::min(std::max(count, 0), kPresetMaxParams);
}

void SetFloatAttribute(TiXmlElement* element, const char* name, float value)
{
    char text[64];
    std::snprintf(text, sizeof text, "%f", static_cast<double>(value));
    element->SetAttribute(name, text);
}

// A whole number by the rules of atoi: leading blanks, a sign, decimal digits, the rest
// ignored; 0 when there are no digits. One outside 32 bits gives 0, as no field can hold it.
int32_t IntegerAttribute(const TiXmlElement* element, const char* name)
{
    const char* text = element->Attribute(name);
    if (text == nullptr)
        return 0;
    errno = 0;
    const long long value = std::strtoll(text, nullptr, 10);
    if (errno == ERANGE || value < INT32_MIN || value > INT32_MAX)
        return 0;
    return static_cast<int32_t>(value);
}

// A number by the rules of atof, narrowed to a float; 0 when there is no number, and also for
// NaN, the infinities and what a float can't hold, which no parameter can take.
float FloatAttribute(const TiXmlElement* element, const char* name)
{
    const char* text = element->Attribute(name);
    if (text == nullptr)
        return 0.0f;
    const double value = std::strtod(text, nullptr);
    if (!std::isfinite(value) || std::fabs(value) > static_cast<double>(FLT_MAX))
        return 0.0f;
    return static_cast<float>(value);
}

EffectParam ReadParameter(const TiXmlElement* element)
{
    EffectParam parameter;
    std::memset(&parameter, 0, sizeof parameter);
    parameter.dwType = static_cast<uint32_t>(IntegerAttribute(element, "type"));
    switch (parameter.dwType) {
    case eptPoint:
        parameter.value.ptValue.x = FloatAttribute(element, "x");
        parameter.value.ptValue.y = FloatAttribute(element, "y");
        break;
    case eptInteger:
    case eptInteger2:
        parameter.value.nValue = IntegerAttribute(element, "value");
        break;
    case eptFloat:
        parameter.value.fValue = FloatAttribute(element, "value");
        break;
    case eptBool:
        parameter.value.bValue = IntegerAttribute(element, "value") != 0;
        break;
    default:
        break;
    }
    return parameter;
}

void WriteParameter(const EffectParam& parameter, TiXmlElement* element)
{
    element->SetAttribute("type", static_cast<int>(parameter.dwType));
    switch (parameter.dwType) {
    case eptPoint:
        SetFloatAttribute(element, "x", parameter.value.ptValue.x);
        SetFloatAttribute(element, "y", parameter.value.ptValue.y);
        break;
    case eptInteger:
    case eptInteger2:
        element->SetAttribute("value", parameter.value.nValue);
        break;
    case eptFloat:
        SetFloatAttribute(element, "value", parameter.value.fValue);
        break;
    case eptBool:
        element->SetAttribute("value", parameter.value.bytes[0] != 0 ? 1 : 0);
        break;
    default:
        break;
    }
}

void AppendParameters(TiXmlElement* element, const CEffectPreset& preset)
{
    const int count = ClampedCount(preset.nCount);
    for (int index = 0; index < count; ++index) {
        TiXmlElement parameter(kParameterElement);
        WriteParameter(preset.Params[index], &parameter);
        element->InsertEndChild(parameter);
    }
}

// After the first "parameter" every sibling element counts, whatever its name; past the
// hundredth they are passed over.
void ReadParameters(const TiXmlElement* element, CEffectPreset* preset)
{
    int count = ClampedCount(preset->nCount);
    for (const TiXmlElement* parameter = element->FirstChildElement(kParameterElement);
         parameter != nullptr && count < kPresetMaxParams; parameter = parameter->NextSiblingElement())
        preset->Params[count++] = ReadParameter(parameter);
    preset->nCount = count;
}

} // namespace

bool CPresetSerializer::Save(const char* path, CEffectPreset* preset)
{
    if (preset == nullptr || path == nullptr || *path == '\0')
        return false;
    try {
        Platform::ScopedCLocale classic;
        TiXmlDocument document;
        document.Parse(kPresetSkeleton, nullptr, TIXML_ENCODING_UNKNOWN);
        TiXmlElement* root = document.FirstChildElement(kRootElement);
        if (root == nullptr)
            return false;
        root->SetAttribute("Name", GetPresetName(preset->Name));
        root->SetAttribute("LibraryName", GetPresetName(preset->LibraryName));
        root->SetAttribute("EffectName", GetPresetName(preset->EffectName));
        AppendParameters(root, *preset);
        return Platform::ReplaceWholeFile(path, [&document](FILE* file) { return document.SaveFile(file); });
    } catch (...) {
        return false;
    }
}

bool CPresetSerializer::Load(const char* path, CEffectPreset* preset)
{
    if (preset == nullptr)
        return false;
    try {
        TiXmlDocument document;
        if (ReadPresetDocument(path, &document) != PresetDocumentStatus::kParsed)
            return false;
        Platform::ScopedCLocale classic;
        TiXmlElement* root = document.FirstChildElement(kRootElement);
        if (root == nullptr)
            return false;

        // Built aside and handed over whole, so that a failure on the way leaves nothing half done.
        CEffectPreset loaded = *preset;
        loaded.nCount = 0;
        SetPresetName(loaded.Name, root->Attribute("Name"));
        SetPresetName(loaded.LibraryName, root->Attribute("LibraryName"));
        SetPresetName(loaded.EffectName, root->Attribute("EffectName"));
        ReadParameters(root, &loaded);
        std::memcpy(preset, &loaded, sizeof loaded);
        return preset->nCount != 0;
    } catch (...) {
        return false;
    }
}

int CPresetSerializer::Add(TiXmlElement* element, CEffectPreset* preset, IEffectData*)
{
    if (element == nullptr || preset == nullptr)
        return 0;
    try {
        Platform::ScopedCLocale classic;
        AppendParameters(element, *preset);
    } catch (...) {
    }
    return 0;
}

bool CPresetSerializer::Get(TiXmlElement* element, CEffectPreset* preset, IEffectData*)
{
    if (element == nullptr || preset == nullptr)
        return false;
    try {
        Platform::ScopedCLocale classic;
        ReadParameters(element, preset);
    } catch (...) {
    }
    return preset->nCount != 0;
}
