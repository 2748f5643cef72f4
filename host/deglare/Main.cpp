// deglare: a command-line host that removes flashes from video files through the effect.
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdarg>
#include <iostream>
#include <string>

extern "C" {
#include <libavutil/log.h>
}

#include "Application.h"
#include "Console.h"
#include "DamageWatch.h"
#include "ExitStatus.h"
#include "Options.h"

namespace {
// Set by Ctrl-C; the run watches it and stops cleanly.
std::atomic<bool> s_interrupted{false};
// Where FFmpeg's own complaints go: kept aside, never printed over the run's own words.
Deglare::Console* s_console = nullptr;

extern "C" void OnInterrupt(int)
{
    s_interrupted = true;
}

extern "C" void OnLibraryMessage(void* object, int level, const char* format, va_list arguments)
{
    if (level > av_log_get_level() || s_console == nullptr)
        return;
    thread_local std::string line;
    int printPrefix = 0;
    char text[1024];
    // Without the "[codec @ address]" prefix: the text is the cause itself.
    printPrefix = 0;
    av_log_format_line2(object, level, format, arguments, text, sizeof(text), &printPrefix);
    line += text;
    if (line.empty() || line.back() != '\n')
        return;
    line.pop_back();
    Deglare::RouteLibraryMessage(object, level, line, *s_console);
    line.clear();
}
} // namespace

#if defined(__SANITIZE_ADDRESS__)
// Under the leak checker: what libraries lose on their own failure paths (libx264 when it
// refuses a picture size) or keep for the life of the process (fontconfig, under Cairo's text)
// is theirs, not this program's.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions()
{
    return "leak:libx264.so\nleak:libfontconfig.so\n";
}

// ... and the tally of those doesn't belong on the program's standard error.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_options()
{
    return "print_suppressions=0";
}
#endif

int main(int argc, char** argv)
{
    using namespace Deglare;
    Options options;
    switch (ParseOptions(argc, argv, options, std::cout, std::cerr)) {
    case ParseResult::Done:
        return static_cast<int>(ExitStatus::Success);
    case ParseResult::Invalid:
        return static_cast<int>(ExitStatus::Usage);
    case ParseResult::Run:
        break;
    }
    std::signal(SIGINT, OnInterrupt);
    std::signal(SIGTERM, OnInterrupt);

    Console console(std::cerr, isatty(STDERR_FILENO) != 0, options.quiet);
    s_console = &console;
    av_log_set_level(AV_LOG_ERROR);
    av_log_set_callback(OnLibraryMessage);
    const ExitStatus status = RunApplication(options, console, std::cout, &s_interrupted);
    av_log_set_callback(av_log_default_callback);
    s_console = nullptr;
    return static_cast<int>(status);
}
