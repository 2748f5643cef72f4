// Feeds arbitrary bytes to deglare's reading of a preset file saved from an editor, the path of
// `deglare --preset-file`. A file is either taken, with positions the effect can decode, or
// refused with deglare's own failure; nothing else may come out of it.
#include <fcntl.h>
#include <unistd.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "../../DeglarerPro/DeglarerPro.h"
#include "../../host/deglare/ExitStatus.h"
#include "../../host/deglare/PresetFile.h"

namespace {

std::string g_path;
CDeglarerPro* g_library = nullptr;
IVideoEffect* g_effect = nullptr;

void Release()
{
    unlink(g_path.c_str());
    g_effect->Release();
    g_library->Release();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    g_path = std::string(access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp") + "/deglarer-presetfile-fuzz-" +
             std::to_string(getpid()) + ".fxpunka";
    g_library = new CDeglarerPro;
    g_effect = g_library->CreateEffect(0);
    std::atexit(Release);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FILE* file = std::fopen(g_path.c_str(), "wb");
    if (file == nullptr)
        return 0;
    const bool written = std::fwrite(data, 1, size, file) == size;
    std::fclose(file);
    if (!written)
        return 0;
    try {
        const Deglare::EffectSettings settings = Deglare::ReadPresetFile(g_path, g_library, g_effect);
        if (!(settings.sensitivityPosition >= 0 && settings.sensitivityPosition <= 1) ||
            !(settings.maxFramesPosition >= 0 && settings.maxFramesPosition <= 1))
            std::abort();
    } catch (const Deglare::Failure& failure) {
        if (failure.Status() != Deglare::ExitStatus::PresetFileRejected)
            std::abort();
    }
    return 0;
}
