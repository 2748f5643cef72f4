#pragma once
#include <chrono>
#include <string>

#include "Console.h"

namespace Deglare {

// The progress of a run on standard error: a bar redrawn in place on a terminal, a plain line
// every tenth of the way elsewhere, nothing with --quiet.
class Progress {
public:
    Progress(Console& console, int total);

    // `done` frames are finished.
    void Update(int done);
    // Clears the bar.
    void Finish();

    // The text of a progress report: frames done of total, frames a second, time left.
    static std::string Describe(int done, int total, double seconds, bool bar);

private:
    Console& m_console;
    int m_total;
    std::chrono::steady_clock::time_point m_start;
    std::chrono::steady_clock::time_point m_lastShown;
    int m_lastTenth = 0;
};

} // namespace Deglare
