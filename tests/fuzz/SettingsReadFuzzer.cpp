// Feeds arbitrary bytes to the settings store as a section's file in the user's folder, the
// way a damaged or hostile file on disk reaches it. Besides the sanitizers' findings it checks
// what a read promises: a value comes back terminated within the buffer, or the buffer is left
// alone; and a write over whatever was there leaves a file that reads back.
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "../../foundation/RegistryHelper.h"

namespace {

const char kPattern = 'Z';
std::string g_file;

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    // Memory-backed where there is such a folder, so that each run costs no disk.
    const std::string base = std::string(access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp") +
                             "/deglarer-settings-fuzz-" + std::to_string(getpid());
    std::filesystem::create_directories(base + "/tessarel");
    setenv("XDG_CONFIG_HOME", base.c_str(), 1);
    setenv("XDG_CONFIG_DIRS", (base + "/none").c_str(), 1);
    g_file = base + "/tessarel/com.tessarel.common.plist";
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::ofstream(g_file, std::ios::binary | std::ios::trunc).write(reinterpret_cast<const char*>(data), size);
    for (const char* key : {"Key", "LastUsedHostName", ""}) {
        char buffer[64];
        std::memset(buffer, kPattern, sizeof buffer);
        if (RegistryHelper::GetRegistryKey("Common", key, buffer, 60)) {
            if (std::memchr(buffer, 0, 60) == nullptr)
                std::abort();
        } else {
            for (char byte : buffer)
                if (byte != kPattern)
                    std::abort();
        }
    }
    if (size % 7 == 0) {
        if (!RegistryHelper::SetRegistryKey("Common", "Written", "yes", RegistryHelper::kUserDomain) ||
            RegistryHelper::GetRegistryKey(TSString("Common"), TSString("Written")) != TSString("yes"))
            std::abort();
    }
    return 0;
}
