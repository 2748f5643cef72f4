// Loads the built bundle as an editor would, describes the effect, and runs a generated clip
// through both render paths, telling which frame each output shows.
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "../include/InterfaceIds.h"
#include "../include/VideoEffect.h"
#include "Clip.h"
#include "DemoClip.h"
#include "InProcessHost.h"
#include "ModuleLoader.h"

using namespace TestHost;

namespace {

void DescribeEffect(IVideoEffect* effect)
{
    std::printf("Effect: %s (caps %u)\n", effect->GetName(), effect->GetCaps());
    IParamToolTip* toolTips = nullptr;
    effect->QueryInterface(IID_ParamToolTip, reinterpret_cast<void**>(&toolTips));
    for (unsigned int index = 0;; ++index) {
        EffectParamSetup setup = {};
        if (!effect->EnumParam(index, &setup))
            break;
        std::printf("  parameter %u: %-12s", index, setup.szName);
        if (setup.dwType == eptFloat)
            std::printf(" slider %g..%g, default position %g", setup.fMin, setup.fMax, setup.defaultValue.fValue);
        else
            std::printf(" check box");
        std::printf("  \"%s\"\n", toolTips ? toolTips->EnumToolTip(index) : "");
    }
    if (toolTips)
        toolTips->Release();
    for (unsigned int preset = 0; effect->EnumPreset(preset) != nullptr; ++preset) {
        EffectParam values[3] = {};
        for (unsigned int param = 0; param < 3; ++param)
            effect->EnumPresetData(preset, param, &values[param]);
        std::printf("  preset %u: %-16s sensitivity %.6g, max frames %.6g, test mode %s\n", preset,
                    effect->EnumPreset(preset), values[0].value.fValue, values[1].value.fValue,
                    values[2].value.bValue ? "on" : "off");
    }
}

// Renders every frame and prints, per frame, which clip frame the output equals.
void RunClip(IVideoEffect* effect, Clip& clip, bool timeAccess, const std::vector<std::string>& labels)
{
    InProcessHost::Options options;
    options.timeAccess = timeAccess;
    InProcessHost host(clip, options);
    std::printf("\n%s:\n", timeAccess ? "Rendered with time access" : "Rendered in order, without time access");
    int replaced = 0;
    for (int index = 0; index < clip.FrameCount(); ++index) {
        Picture output(clip.Width(), clip.Height(), clip.Format());
        FrameParams destination = output.Params();
        host.RenderFrame(effect, index, &destination);
        int shown = -1;
        for (int candidate = 0; candidate < clip.FrameCount() && shown < 0; ++candidate)
            if (output.SameAs(clip, candidate))
                shown = candidate;
        if (shown == index)
            std::printf("  frame %2d %-28s kept\n", index, labels[index].c_str());
        else if (shown >= 0) {
            std::printf("  frame %2d %-28s replaced by frame %d\n", index, labels[index].c_str(), shown);
            ++replaced;
        } else
            std::printf("  frame %2d %-28s marked\n", index, labels[index].c_str());
    }
    std::printf("  %d of %d frames replaced; %zu frames fetched from the host\n", replaced, clip.FrameCount(),
                host.FetchCount());
    const std::string leaks = host.Leaks();
    if (!leaks.empty())
        std::printf("  host: %s\n", leaks.c_str());
}

} // namespace

int main(int argc, char** argv)
{
    const std::string bundle = argc > 1 ? argv[1] : DEGLARER_BUNDLE_PATH;
    ModuleLoader module(ModuleLoader::ModuleInBundle(bundle));
    if (!module.Loaded()) {
        std::fprintf(stderr, "deglarer-demo: cannot load %s: %s\n", bundle.c_str(), module.Error().c_str());
        return 1;
    }
    IEffectLibrary* library = module.GetEffectsLibrary();
    if (library == nullptr) {
        std::fprintf(stderr, "deglarer-demo: the module gave no library object\n");
        return 1;
    }
    std::printf("Library: %s\n", library->GetName());
    IVideoEffect* effect = library->CreateEffect(0);
    DescribeEffect(effect);

    std::vector<std::string> labels;
    Clip clip = MakeDemoClip(&labels);
    RunClip(effect, clip, true, labels);
    RunClip(effect, clip, false, labels);

    effect->Release();
    library->Release();
    std::printf("\nCanUnloadDLLNow: %s\n", module.CanUnload() ? "yes" : "no");
    return module.CanUnload() ? 0 : 1;
}
