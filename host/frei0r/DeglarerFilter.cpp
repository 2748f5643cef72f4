// The effect as a frei0r filter, for the Linux programs that load frei0r plug-ins. It is a host
// like any editor: it loads the bundle beside it with dlopen, reaches the module only through its
// entry points, makes one effect per filter instance, and renders each frame as it arrives.
// The header declares the plug-in's functions without C linkage of its own.
extern "C" {
#include <frei0r.h>
}

#include <cstring>
#include <memory>
#include <mutex>
#include <string>

#include "../../include/EffectParam.h"
#include "../../include/InterfaceIds.h"
#include "../../include/RenderInfo.h"
#include "../../platform/ModulePath.h"
#include "../EffectInstance.h"
#include "../ModuleLoader.h"
#include "FilterHost.h"
#include "FrameClock.h"

#define DEGLARER_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

const int kParamCount = 3;
const int kTestModeParam = 2;
const char* const kBundleName = "DeglarerPro.bundle";

// What the effect says of its parameters, read once when the host loads the filter.
struct ParamDescription {
    std::string name;
    std::string explanation;
    float defaultPosition = 0;
};

struct Plugin {
    std::unique_ptr<TestHost::ModuleLoader> module;
    std::string name = "Deglarer Pro";
    ParamDescription params[kParamCount];
};

std::mutex g_pluginGuard;
Plugin* g_plugin = nullptr;

struct Instance {
    Instance(const TestHost::ModuleLoader& module, unsigned width, unsigned height)
        : effect(module), host(effect.Id()), width(static_cast<int>(width)), height(static_cast<int>(height))
    {
    }

    TestHost::EffectInstance effect;
    Frei0r::FilterHost host;
    Frei0r::FrameClock clock;
    int width, height;
};

std::string BundleBesideFilter()
{
    const std::string filter = Platform::ModulePathOf(reinterpret_cast<const void*>(&f0r_init));
    const size_t slash = filter.rfind('/');
    return (slash == std::string::npos ? std::string(".") : filter.substr(0, slash)) + "/" + kBundleName;
}

// frei0r's BGRA8888 is the effect's own 8-bit format, bytes B, G, R, A, so the host's pictures
// go to the effect as they are. The effect never writes its source.
FrameParams Frame(const uint32_t* pixels, int width, int height)
{
    FrameParams frame = {};
    frame.pBuffer = reinterpret_cast<uint8_t*>(const_cast<uint32_t*>(pixels));
    frame.nWidth = width;
    frame.nHeight = height;
    frame.nByteSpan = width * 4;
    frame.nDepth = 4;
    frame.pfFormat = pfVideoSample;
    return frame;
}

} // namespace

DEGLARER_EXPORT int f0r_init()
{
    std::lock_guard<std::mutex> lock(g_pluginGuard);
    if (g_plugin != nullptr)
        return 1;
    auto plugin = std::make_unique<Plugin>();
    plugin->module = std::make_unique<TestHost::ModuleLoader>(TestHost::ModuleLoader::ModuleInBundle(BundleBesideFilter()));
    if (!plugin->module->Loaded())
        return 0;
    {
        TestHost::EffectInstance probe(*plugin->module);
        if (probe.Effect() == nullptr)
            return 0;
        if (const char* name = probe.Effect()->GetName())
            plugin->name = name;
        IParamToolTip* tips = nullptr;
        probe.Effect()->QueryInterface(IID_ParamToolTip, reinterpret_cast<void**>(&tips));
        for (int index = 0; index < kParamCount; ++index) {
            EffectParamSetup setup;
            std::memset(&setup, 0, sizeof setup);
            if (!probe.Effect()->EnumParam(index, &setup))
                return 0;
            ParamDescription& param = plugin->params[index];
            param.name.assign(setup.szName, strnlen(setup.szName, sizeof setup.szName));
            param.defaultPosition = index == kTestModeParam ? (setup.defaultValue.bValue ? 1.0f : 0.0f)
                                                            : setup.defaultValue.fValue;
            const char* tip = tips != nullptr ? tips->EnumToolTip(index) : nullptr;
            param.explanation = tip != nullptr ? tip : "";
        }
        if (tips != nullptr)
            tips->Release();
    }
    g_plugin = plugin.release();
    return 1;
}

DEGLARER_EXPORT void f0r_deinit()
{
    std::lock_guard<std::mutex> lock(g_pluginGuard);
    delete g_plugin;
    g_plugin = nullptr;
}

DEGLARER_EXPORT void f0r_get_plugin_info(f0r_plugin_info_t* info)
{
    info->name = g_plugin != nullptr ? g_plugin->name.c_str() : "Deglarer Pro";
    info->author = "Tessarel";
    info->plugin_type = F0R_PLUGIN_TYPE_FILTER;
    info->color_model = F0R_COLOR_MODEL_BGRA8888;
    info->frei0r_version = FREI0R_MAJOR_VERSION;
    info->major_version = 3;
    info->minor_version = 0;
    info->num_params = kParamCount;
    info->explanation = "Replaces frames that a photographic flash brightened with a clean neighbouring frame";
}

DEGLARER_EXPORT void f0r_get_param_info(f0r_param_info_t* info, int index)
{
    if (info == nullptr || g_plugin == nullptr || index < 0 || index >= kParamCount)
        return;
    info->name = g_plugin->params[index].name.c_str();
    info->type = index == kTestModeParam ? F0R_PARAM_BOOL : F0R_PARAM_DOUBLE;
    info->explanation = g_plugin->params[index].explanation.c_str();
}

DEGLARER_EXPORT f0r_instance_t f0r_construct(unsigned int width, unsigned int height)
{
    if (g_plugin == nullptr || width == 0 || height == 0 || width > 32768 || height > 32768)
        return nullptr;
    auto instance = std::make_unique<Instance>(*g_plugin->module, width, height);
    if (instance->effect.Effect() == nullptr)
        return nullptr;
    instance->host.m_fSensitivity = g_plugin->params[0].defaultPosition;
    instance->host.m_fMaxFrames = g_plugin->params[1].defaultPosition;
    instance->host.m_bTestMode = g_plugin->params[2].defaultPosition != 0;
    return instance.release();
}

DEGLARER_EXPORT void f0r_destruct(f0r_instance_t instance)
{
    delete static_cast<Instance*>(instance);
}

DEGLARER_EXPORT void f0r_set_param_value(f0r_instance_t handle, f0r_param_t param, int index)
{
    Instance* instance = static_cast<Instance*>(handle);
    if (instance == nullptr || param == nullptr)
        return;
    const double value = *static_cast<const double*>(param);
    if (index == 0)
        instance->host.m_fSensitivity = static_cast<float>(value);
    else if (index == 1)
        instance->host.m_fMaxFrames = static_cast<float>(value);
    else if (index == kTestModeParam)
        instance->host.m_bTestMode = value >= 0.5;
}

DEGLARER_EXPORT void f0r_get_param_value(f0r_instance_t handle, f0r_param_t param, int index)
{
    Instance* instance = static_cast<Instance*>(handle);
    if (instance == nullptr || param == nullptr)
        return;
    double& value = *static_cast<double*>(param);
    if (index == 0)
        value = instance->host.m_fSensitivity;
    else if (index == 1)
        value = instance->host.m_fMaxFrames;
    else if (index == kTestModeParam)
        value = instance->host.m_bTestMode ? 1.0 : 0.0;
}

DEGLARER_EXPORT void f0r_update(f0r_instance_t handle, double time, const uint32_t* inframe, uint32_t* outframe)
{
    Instance* instance = static_cast<Instance*>(handle);
    if (instance == nullptr || inframe == nullptr || outframe == nullptr)
        return;
    FrameParams source = Frame(inframe, instance->width, instance->height);
    FrameParams destination = Frame(outframe, instance->width, instance->height);
    RenderInfo info = {};
    info.nSize = sizeof(RenderInfo);
    info.dwFlags = kRenderInfoFrameIndexValid;
    info.nFrameIndex = instance->clock.IndexAt(time);
    info.dFrameRate = instance->clock.FrameRate();
    info.dTime = info.nFrameIndex / info.dFrameRate;
    info.dFactor1 = 1.0;
    info.nField = 3;   // whole frames
    info.dFactor2 = 1.0;
    if (!instance->effect.Effect()->Render(&instance->host, &source, nullptr, &destination, &info))
        std::memcpy(outframe, inframe, static_cast<size_t>(instance->width) * instance->height * sizeof(uint32_t));
}
