#include "AssertBox.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "../platform/Debugger.h"
#include "../platform/UserInterface.h"

namespace __TSDebug {

namespace {
const size_t kMessageSize = 512;
enum Button { kIgnore = 0, kDebug = 1, kAbort = 2 };
} // namespace

int AssertBox(const char* condition, const char* function, const char* file, int line, const char* format, ...)
{
    char message[kMessageSize] = {};
    if (format != nullptr) {
        va_list arguments;
        va_start(arguments, format);
        std::vsnprintf(message, kMessageSize, format, arguments);
        va_end(arguments);
    }
    condition = condition ? condition : "";
    function = function ? function : "";
    file = file ? file : "";
    std::printf("Assertion failed: %s; in %s (%s#%d) %s \n", condition, function, file, line, message);
    std::fflush(stdout);

    char body[kMessageSize * 4];
    std::snprintf(body, sizeof body, "Condition: %s\n\nIn %s\n%s#%d\n\n%s", condition, function, file, line, message);
    int pressed = kIgnore;
    try {
        pressed = Platform::GetUserInterface().ShowAlert("Assertion failed", body, {"Ignore", "Debug", "Abort"},
                                                         kIgnore);
    } catch (...) {
        pressed = kIgnore;   // an alert that can't be shown counts as Ignore
    }
    if (pressed == kDebug)
        Platform::BreakIntoDebugger();
    else if (pressed == kAbort)
        std::exit(1);
    return 0;
}

} // namespace __TSDebug
