#pragma once
#include <atomic>
#include <ostream>

#include "Console.h"
#include "Options.h"

namespace Deglare {

// deglare --demo: writes the demo clip into "deglare-demo/", cleans it with a report and a
// plot beside it, and tells where everything is and what became of each flash. The options'
// encoder, threads, bundle and effect settings apply. Throws Failure.
void RunDemo(const Options& options, Console& console, std::ostream& out, const std::atomic<bool>* interrupted);

} // namespace Deglare
