#include "Progress.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace Deglare {

namespace {
const int kBarWidth = 30;
const auto kRedrawInterval = std::chrono::milliseconds(100);

std::string Clock(double seconds)
{
    const long whole = static_cast<long>(std::ceil(std::max(seconds, 0.0)));
    char text[32];
    if (whole >= 3600)
        std::snprintf(text, sizeof(text), "%ld:%02ld:%02ld", whole / 3600, whole / 60 % 60, whole % 60);
    else
        std::snprintf(text, sizeof(text), "%ld:%02ld", whole / 60, whole % 60);
    return text;
}
} // namespace

Progress::Progress(Console& console, int total)
    : m_console(console), m_total(std::max(total, 1)), m_start(std::chrono::steady_clock::now()), m_lastShown(m_start)
{
}

std::string Progress::Describe(int done, int total, double seconds, bool bar)
{
    const double rate = seconds > 0.0 ? done / seconds : 0.0;
    const std::string left = rate > 0.0 ? Clock((total - done) / rate) + " left" : "--:-- left";
    char numbers[96];
    std::snprintf(numbers, sizeof(numbers), "%d/%d frames  %.1f fps  %s", done, total, rate, left.c_str());
    if (!bar)
        return numbers;
    const int filled = total > 0 ? static_cast<int>(static_cast<long>(kBarWidth) * std::min(done, total) / total) : 0;
    return "[" + std::string(filled, '#') + std::string(kBarWidth - filled, '.') + "] " + numbers;
}

void Progress::Update(int done)
{
    if (m_console.Quiet())
        return;
    const auto now = std::chrono::steady_clock::now();
    const double seconds = std::chrono::duration<double>(now - m_start).count();
    if (m_console.Terminal()) {
        if (now - m_lastShown < kRedrawInterval && done < m_total)
            return;
        m_lastShown = now;
        m_console.Progress(Describe(done, m_total, seconds, true));
        return;
    }
    const int tenth = static_cast<int>(10L * done / m_total);
    if (tenth <= m_lastTenth)
        return;
    m_lastTenth = tenth;
    m_console.Progress(Describe(done, m_total, seconds, false));
}

void Progress::Finish()
{
    m_console.EndProgress();
}

} // namespace Deglare
