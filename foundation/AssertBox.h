#pragma once

namespace __TSDebug {

// Reports a failed assertion on standard output and in an alert with "Ignore", "Debug" and
// "Abort". Returns 0 when the user lets the caller go on.
int AssertBox(const char* condition, const char* function, const char* file, int line, const char* format, ...)
    __attribute__((format(printf, 5, 6)));

} // namespace __TSDebug

// Checks a condition that holds unless the calling code is wrong; present in released builds,
// and the caller goes on behind it when the user ignores it.
#define TS_ASSERT(condition)                                                                        \
    ((condition) ? (void)0                                                                          \
                 : (void)__TSDebug::AssertBox(#condition, __PRETTY_FUNCTION__, __FILE__, __LINE__, "%s", ""))
