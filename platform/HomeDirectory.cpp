#include "HomeDirectory.h"

#include <errno.h>
#include <pwd.h>
#include <unistd.h>

#include <vector>

namespace Platform {

std::string HomeDirectory()
{
    const long suggested = sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(suggested > 0 ? static_cast<size_t>(suggested) : 4096);
    struct passwd entry;
    struct passwd* found = nullptr;
    int status;
    while ((status = getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found)) == ERANGE &&
           buffer.size() < (1u << 20))
        buffer.resize(buffer.size() * 2);
    if (status != 0 || found == nullptr || found->pw_dir == nullptr)
        return std::string();
    return found->pw_dir;
}

} // namespace Platform
