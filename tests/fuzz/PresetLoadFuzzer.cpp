// Feeds arbitrary bytes to the preset loader as a file, the way a user's download reaches it.
// Besides the sanitizers' findings it checks what a load promises: a refused file leaves the
// record alone or sets only its names, a loaded one holds 1 to 100 parameters and names that
// are valid text within their fields, and what was loaded saves and loads back as it was.
#include <fcntl.h>
#include <unistd.h>

#include <boost/locale/utf.hpp>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "../../Common/PresetSerializer.h"

namespace {

const unsigned char kPattern = 0xA5;

std::string ScratchPath(const char* name)
{
    // Memory-backed where there is such a folder, so that each run costs no disk.
    const char* folder = access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
    return std::string(folder) + "/deglarer-fuzz-" + std::to_string(getpid()) + "-" + name;
}

const std::string& InputPath()
{
    static const std::string path = ScratchPath("input.fxpunka");
    return path;
}

const std::string& SavedPath()
{
    static const std::string path = ScratchPath("saved.fxpunka");
    return path;
}

void RemoveScratchFiles()
{
    unlink(InputPath().c_str());
    unlink(SavedPath().c_str());
}

void Check(bool holds, const char* what)
{
    if (!holds) {
        std::fprintf(stderr, "preset loader broke its promise: %s\n", what);
        std::abort();
    }
}

bool WriteInput(const uint8_t* data, size_t size)
{
    unlink(InputPath().c_str());
    const int fd = open(InputPath().c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (fd < 0)
        return false;
    const bool written = size == 0 || write(fd, data, size) == static_cast<ssize_t>(size);
    close(fd);
    return written;
}

bool ValidName(const char (&field)[kPresetNameLength])
{
    const size_t length = strnlen(field, sizeof field);
    if (length >= sizeof field)
        return false;
    for (size_t at = length; at < sizeof field; ++at)
        if (field[at] != '\0')
            return false;
    const char* position = field;
    const char* const end = field + length;
    while (position < end) {
        const boost::locale::utf::code_point character =
            boost::locale::utf::utf_traits<char>::decode(position, end);
        if (character == boost::locale::utf::illegal || character == boost::locale::utf::incomplete)
            return false;
    }
    return true;
}

bool AllPattern(const void* bytes, size_t size)
{
    const unsigned char* byte = static_cast<const unsigned char*>(bytes);
    for (size_t at = 0; at < size; ++at)
        if (byte[at] != kPattern)
            return false;
    return true;
}

bool SameLoad(const CEffectPreset& a, const CEffectPreset& b)
{
    return std::memcmp(a.Name, b.Name, sizeof a.Name) == 0 &&
           std::memcmp(a.LibraryName, b.LibraryName, sizeof a.LibraryName) == 0 &&
           std::memcmp(a.EffectName, b.EffectName, sizeof a.EffectName) == 0 && a.nCount == b.nCount &&
           std::memcmp(a.Params, b.Params, a.nCount * sizeof(EffectParam)) == 0;
}

// Saves `preset` and loads the file into a fresh record.
CEffectPreset SavedAndLoaded(const CEffectPreset& preset)
{
    CPresetSerializer serializer;
    CEffectPreset copy = preset;
    Check(serializer.Save(SavedPath().c_str(), &copy), "a loaded preset saves");
    CEffectPreset loaded;
    std::memset(&loaded, kPattern, sizeof loaded);
    Check(serializer.Load(SavedPath().c_str(), &loaded), "a saved preset loads");
    return loaded;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    std::atexit(RemoveScratchFiles);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (!WriteInput(data, size))
        return 0;
    CEffectPreset preset;
    std::memset(&preset, kPattern, sizeof preset);
    const bool loaded = CPresetSerializer().Load(InputPath().c_str(), &preset);
    const int used = preset.nCount >= 0 && preset.nCount <= kPresetMaxParams ? preset.nCount : 0;
    Check(AllPattern(preset.Params + used, sizeof(EffectParam) * (kPresetMaxParams - used)),
          "records past the count are left alone");
    if (!loaded) {
        if (!AllPattern(&preset, sizeof preset)) {
            Check(preset.nCount == 0, "a refused file that set the names has a count of 0");
            Check(ValidName(preset.Name) && ValidName(preset.LibraryName) && ValidName(preset.EffectName),
                  "names are valid text within their fields");
        }
        return 0;
    }
    Check(preset.nCount >= 1 && preset.nCount <= kPresetMaxParams, "a loaded preset holds 1 to 100 parameters");
    Check(ValidName(preset.Name) && ValidName(preset.LibraryName) && ValidName(preset.EffectName),
          "names are valid text within their fields");

    // Six decimals may move a float once; after that a preset goes through files unchanged.
    const CEffectPreset once = SavedAndLoaded(preset);
    Check(std::memcmp(once.Name, preset.Name, sizeof once.Name) == 0 &&
              std::memcmp(once.LibraryName, preset.LibraryName, sizeof once.LibraryName) == 0 &&
              std::memcmp(once.EffectName, preset.EffectName, sizeof once.EffectName) == 0,
          "names survive a save");
    Check(once.nCount == preset.nCount, "the count survives a save");
    for (int index = 0; index < once.nCount; ++index) {
        Check(once.Params[index].dwType == preset.Params[index].dwType, "types survive a save");
        if (once.Params[index].dwType != eptFloat && once.Params[index].dwType != eptPoint)
            Check(std::memcmp(&once.Params[index], &preset.Params[index], sizeof(EffectParam)) == 0,
                  "whole numbers and booleans survive a save");
    }
    Check(SameLoad(SavedAndLoaded(once), once), "a saved preset goes through files unchanged");
    return 0;
}
