#pragma once
#include <atomic>
#include <ostream>

#include "Console.h"
#include "ExitStatus.h"
#include "Options.h"
#include "Pipeline.h"

namespace Deglare {

// Cleans or analyses the file the options name, with the report and plot they ask for.
// Throws Failure.
RunResult CleanFile(const Options& options, Console& console, const std::atomic<bool>* interrupted);

// Does what the options ask: clean a file, analyse one, or run the demo. Results go to `out`,
// a failure to the console as one line; the result is the exit status.
ExitStatus RunApplication(const Options& options, Console& console, std::ostream& out,
                          const std::atomic<bool>* interrupted);

} // namespace Deglare
