#include "Console.h"

namespace Deglare {

Console::Console(std::ostream& out, bool terminal, bool quiet) : m_out(out), m_terminal(terminal), m_quiet(quiet) {}

void Console::Warn(const std::string& text)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    ClearProgressLocked();
    m_out << "deglare: warning: " << text << '\n';
    m_out.flush();
}

void Console::Error(const std::string& text)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    ClearProgressLocked();
    m_out << "deglare: " << text << '\n';
    m_out.flush();
}

void Console::Progress(const std::string& text)
{
    if (m_quiet)
        return;
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_terminal) {
        m_out << '\r' << text;
        if (text.size() < m_progressWidth)
            m_out << std::string(m_progressWidth - text.size(), ' ') << '\r' << text;
        m_progressWidth = text.size();
    } else {
        m_out << "deglare: " << text << '\n';
    }
    m_out.flush();
}

void Console::EndProgress()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    ClearProgressLocked();
}

void Console::NoteLibraryMessage(const std::string& text)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_libraryMessage = text;
}

std::string Console::TakeLibraryMessage()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    std::string text;
    text.swap(m_libraryMessage);
    return text;
}

void Console::ClearProgressLocked()
{
    if (m_progressWidth == 0)
        return;
    m_out << '\r' << std::string(m_progressWidth, ' ') << '\r';
    m_progressWidth = 0;
}

} // namespace Deglare
