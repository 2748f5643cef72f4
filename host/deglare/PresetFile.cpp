#include "PresetFile.h"

#include <tinyxml.h>

#include <string>
#include <vector>

#include "../../Common/PresetDocument.h"
#include "ExitStatus.h"

namespace Deglare {

namespace {
// The order of the effect's parameters.
const size_t kSensitivityParam = 0;
const size_t kMaxFramesParam = 1;
const size_t kTestModeParam = 2;

std::string Attribute(const TiXmlElement* element, const char* name)
{
    const char* value = element->Attribute(name);
    return value == nullptr ? "" : value;
}

// The stored values in file order. After the first "parameter" every sibling element counts,
// as editors read these files.
std::vector<EffectParam> ReadParameters(const TiXmlElement* root)
{
    std::vector<EffectParam> params;
    for (const TiXmlElement* element = root->FirstChildElement("parameter"); element != nullptr;
         element = element->NextSiblingElement()) {
        EffectParam param = {};
        int type = 0;
        element->Attribute("type", &type);
        param.dwType = static_cast<uint32_t>(type);
        double x = 0.0, y = 0.0;
        int whole = 0;
        switch (type) {
        case eptPoint:
            element->Attribute("x", &x);
            element->Attribute("y", &y);
            param.value.ptValue.x = static_cast<float>(x);
            param.value.ptValue.y = static_cast<float>(y);
            break;
        case eptInteger:
        case eptInteger2:
            element->Attribute("value", &whole);
            param.value.nValue = whole;
            break;
        case eptFloat:
            element->Attribute("value", &x);
            param.value.fValue = static_cast<float>(x);
            break;
        case eptBool:
            element->Attribute("value", &whole);
            param.value.bValue = whole != 0;
            break;
        default:
            break;
        }
        params.push_back(param);
    }
    return params;
}

[[noreturn]] void Refuse(const std::string& path, const std::string& cause)
{
    throw Failure(ExitStatus::PresetFileRejected, path + ": " + cause);
}
} // namespace

EffectSettings ReadPresetFile(const std::string& path, IEffectLibrary* library, IVideoEffect* effect)
{
    TiXmlDocument document;
    switch (ReadPresetDocument(path.c_str(), &document)) {
    case PresetDocumentStatus::kParsed:
        break;
    case PresetDocumentStatus::kUnreadable:
        Refuse(path, "the preset file can't be read");
    case PresetDocumentStatus::kTooLarge:
        Refuse(path, "not a preset file (larger, or with more elements, than any preset)");
    case PresetDocumentStatus::kMalformed:
        Refuse(path, std::string("not a preset file (") + document.ErrorDesc() + ")");
    }
    const TiXmlElement* root = document.FirstChildElement("Preset");
    if (root == nullptr)
        Refuse(path, "not a preset file (no \"Preset\" element)");
    const std::vector<EffectParam> params = ReadParameters(root);
    if (params.empty())
        Refuse(path, "the preset holds no values");

    const std::string libraryName = Attribute(root, "LibraryName");
    const std::string effectName = Attribute(root, "EffectName");
    if (libraryName != library->GetName() || effectName != effect->GetName())
        Refuse(path, "a preset for \"" + effectName + "\" of \"" + libraryName + "\", not for \"" +
                         effect->GetName() + "\" of \"" + library->GetName() + "\"");
    EffectParamSetup setup = {};
    for (unsigned int index = 0; effect->EnumParam(index, &setup); ++index) {
        if (index >= params.size())
            Refuse(path, "the preset has no value for \"" + std::string(setup.szName) +
                             "\"; it doesn't match this version of the effect");
        if (params[index].dwType != setup.dwType)
            Refuse(path, "the preset's value for \"" + std::string(setup.szName) +
                             "\" has another type; it doesn't match this version of the effect");
    }

    if (params.size() <= kTestModeParam)
        Refuse(path, "the preset holds too few values; it doesn't match this version of the effect");
    // An editor's slider can't stand outside its track, and the effect reads only positions on it.
    for (size_t index : {kSensitivityParam, kMaxFramesParam}) {
        const float position = params[index].value.fValue;
        if (!(position >= 0.0f && position <= 1.0f))
            Refuse(path, "the preset's slider position " + std::to_string(position) + " lies outside 0 to 1");
    }

    EffectSettings settings;
    settings.sensitivityPosition = params[kSensitivityParam].value.fValue;
    settings.maxFramesPosition = params[kMaxFramesParam].value.fValue;
    settings.testMode = params[kTestModeParam].value.bValue;
    return settings;
}

} // namespace Deglare
