#include "UserInterface.h"

#include <atomic>
#include <cstdio>

namespace Platform {

int HeadlessUserInterface::ShowAlert(const std::string& title, const std::string& message,
                                     const std::vector<std::string>& buttons, int defaultButton)
{
    m_alerts.push_back(Alert{title, message, buttons});
    std::printf("%s: %s\n", title.c_str(), message.c_str());
    std::fflush(stdout);
    if (!m_buttons.empty()) {
        const std::string wanted = m_buttons.front();
        m_buttons.pop_front();
        for (size_t i = 0; i < buttons.size(); ++i)
            if (buttons[i] == wanted)
                return static_cast<int>(i);
    }
    return defaultButton;
}

bool HeadlessUserInterface::NextPath(std::string* path)
{
    if (m_paths.empty() || path == nullptr)
        return false;
    *path = m_paths.front();
    m_paths.pop_front();
    return !path->empty();
}

bool HeadlessUserInterface::ChooseFileToSave(const std::string& title, const std::string& defaultName,
                                             const std::string& extension, std::string* path)
{
    return ChooseFileToSaveIn(std::string(), title, defaultName, extension, path);
}

bool HeadlessUserInterface::ChooseFileToOpen(const std::string& title, const std::string& extension,
                                             std::string* path)
{
    return ChooseFileToOpenIn(std::string(), title, extension, path);
}

bool HeadlessUserInterface::ChooseFileToSaveIn(const std::string& directory, const std::string& title,
                                               const std::string& defaultName, const std::string& extension,
                                               std::string* path)
{
    m_panels.push_back(Panel{true, title, directory, defaultName, extension});
    return NextPath(path);
}

bool HeadlessUserInterface::ChooseFileToOpenIn(const std::string& directory, const std::string& title,
                                               const std::string& extension, std::string* path)
{
    m_panels.push_back(Panel{false, title, directory, std::string(), extension});
    return NextPath(path);
}

namespace {
HeadlessUserInterface& DefaultUserInterface()
{
    static HeadlessUserInterface headless;
    return headless;
}
std::atomic<IUserInterface*> g_installed{nullptr};
} // namespace

IUserInterface& GetUserInterface()
{
    IUserInterface* ui = g_installed.load();
    return ui != nullptr ? *ui : DefaultUserInterface();
}

IUserInterface* SetUserInterface(IUserInterface* ui)
{
    return g_installed.exchange(ui);
}

} // namespace Platform
