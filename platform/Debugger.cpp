#include "Debugger.h"

#include <csignal>
#include <cstdio>
#include <cstring>

namespace Platform {

namespace {
bool DebuggerAttached()
{
    FILE* status = std::fopen("/proc/self/status", "r");
    if (status == nullptr)
        return false;
    char line[256];
    int tracer = 0;
    while (std::fgets(line, sizeof line, status) != nullptr)
        if (std::strncmp(line, "TracerPid:", 10) == 0) {
            std::sscanf(line + 10, "%d", &tracer);
            break;
        }
    std::fclose(status);
    return tracer != 0;
}
} // namespace

void BreakIntoDebugger()
{
    if (DebuggerAttached())
        std::raise(SIGTRAP);
}

} // namespace Platform
