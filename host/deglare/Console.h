#pragma once
#include <mutex>
#include <ostream>
#include <string>

namespace Deglare {

// The program's voice on standard error: warnings, and the one progress line that they must
// not tear. A progress line on a terminal is redrawn in place; elsewhere it is a plain line.
class Console {
public:
    Console(std::ostream& out, bool terminal, bool quiet);

    bool Terminal() const { return m_terminal; }
    bool Quiet() const { return m_quiet; }

    // "deglare: warning: <text>", shown even with --quiet: a warning is never noise.
    void Warn(const std::string& text);
    // "deglare: <text>": the one line that tells why the run failed.
    void Error(const std::string& text);
    // A progress line: redrawn in place on a terminal, printed as a line elsewhere.
    void Progress(const std::string& text);
    // Ends a progress line left open on a terminal.
    void EndProgress();

    // FFmpeg's own complaints are not shown: the run reports causes in its own words. The last
    // one is kept, to tell why an open or a write failed.
    void NoteLibraryMessage(const std::string& text);
    // The last complaint since the previous call; empty if none.
    std::string TakeLibraryMessage();

private:
    void ClearProgressLocked();

    std::ostream& m_out;
    bool m_terminal;
    bool m_quiet;
    std::mutex m_mutex;
    size_t m_progressWidth = 0;
    std::string m_libraryMessage;
};

} // namespace Deglare
