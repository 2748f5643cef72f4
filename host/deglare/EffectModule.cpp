#include "EffectModule.h"

#include <cctype>
#include <filesystem>

#include "ExitStatus.h"

namespace Deglare {

namespace {
const unsigned int kSensitivityParam = 0;
const unsigned int kMaxFramesParam = 1;
const unsigned int kTestModeParam = 2;
const char* const kBundleName = "DeglarerPro.bundle";

bool SameIgnoringCase(const std::string& a, const std::string& b)
{
    if (a.size() != b.size())
        return false;
    for (size_t index = 0; index < a.size(); ++index)
        if (std::tolower(static_cast<unsigned char>(a[index])) != std::tolower(static_cast<unsigned char>(b[index])))
            return false;
    return true;
}
} // namespace

std::string EffectModule::BundleBesideProgram()
{
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error)
        return kBundleName;
    return (program.parent_path() / kBundleName).string();
}

EffectModule::EffectModule(const std::string& bundlePath)
{
    m_loader = std::make_unique<TestHost::ModuleLoader>(TestHost::ModuleLoader::ModuleInBundle(bundlePath));
    if (!m_loader->Loaded())
        throw Failure(ExitStatus::ModuleUnavailable, bundlePath + ": the effect can't be loaded (" + m_loader->Error() +
                                                         "); give its place with --bundle");
    m_instance = std::make_unique<TestHost::EffectInstance>(*m_loader);
    if (m_instance->Library() == nullptr)
        throw Failure(ExitStatus::ModuleUnavailable, bundlePath + ": the module gave no library object");
    if (m_instance->Effect() == nullptr)
        throw Failure(ExitStatus::ModuleUnavailable, bundlePath + ": the library offers no effect");
}

EffectModule::~EffectModule() = default;

EffectSettings EffectModule::Defaults() const
{
    EffectSettings settings;
    EffectParamSetup setup = {};
    if (Effect()->EnumParam(kSensitivityParam, &setup))
        settings.sensitivityPosition = setup.defaultValue.fValue;
    setup = EffectParamSetup();
    if (Effect()->EnumParam(kMaxFramesParam, &setup))
        settings.maxFramesPosition = setup.defaultValue.fValue;
    setup = EffectParamSetup();
    if (Effect()->EnumParam(kTestModeParam, &setup))
        settings.testMode = setup.defaultValue.bValue;
    return settings;
}

std::vector<std::string> EffectModule::PresetNames() const
{
    std::vector<std::string> names;
    for (unsigned int preset = 0; const char* name = Effect()->EnumPreset(preset); ++preset)
        names.push_back(name);
    return names;
}

EffectSettings EffectModule::Preset(const std::string& name) const
{
    const std::vector<std::string> names = PresetNames();
    for (unsigned int preset = 0; preset < names.size(); ++preset) {
        if (!SameIgnoringCase(names[preset], name))
            continue;
        EffectParam values[3] = {};
        for (unsigned int param = kSensitivityParam; param <= kTestModeParam; ++param)
            if (!Effect()->EnumPresetData(preset, param, &values[param]))
                throw Failure(ExitStatus::UnknownPreset, name + ": the effect gives no values for this preset");
        EffectSettings settings;
        settings.sensitivityPosition = values[kSensitivityParam].value.fValue;
        settings.maxFramesPosition = values[kMaxFramesParam].value.fValue;
        settings.testMode = values[kTestModeParam].value.bValue;
        return settings;
    }
    std::string known;
    for (const std::string& stock : names)
        known += (known.empty() ? "" : ", ") + ("\"" + stock + "\"");
    throw Failure(ExitStatus::UnknownPreset, name + ": no such preset; the presets are " + known);
}

} // namespace Deglare
