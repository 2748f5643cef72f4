#pragma once
#include <deque>
#include <string>
#include <vector>

namespace Platform {

// The one seam through which the library shows alerts and file panels.
class IUserInterface {
public:
    virtual ~IUserInterface() {}
    // Returns the index of the button pressed.
    virtual int ShowAlert(const std::string& title, const std::string& message,
                          const std::vector<std::string>& buttons, int defaultButton) = 0;
    // File panels: false when the user cancels.
    virtual bool ChooseFileToSave(const std::string& title, const std::string& defaultName,
                                  const std::string& extension, std::string* path) = 0;
    virtual bool ChooseFileToOpen(const std::string& title, const std::string& extension, std::string* path) = 0;

    // The same panels, starting in `directory`. A toolkit that can't choose where a panel starts
    // keeps the plain ones, to which these forward.
    virtual bool ChooseFileToSaveIn(const std::string& directory, const std::string& title,
                                    const std::string& defaultName, const std::string& extension, std::string* path)
    {
        (void)directory;
        return ChooseFileToSave(title, defaultName, extension, path);
    }
    virtual bool ChooseFileToOpenIn(const std::string& directory, const std::string& title,
                                    const std::string& extension, std::string* path)
    {
        (void)directory;
        return ChooseFileToOpen(title, extension, path);
    }
};

// Without a toolkit: prints each alert on standard output and takes its default button; panels
// cancel unless answers were queued.
class HeadlessUserInterface : public IUserInterface {
public:
    int ShowAlert(const std::string& title, const std::string& message, const std::vector<std::string>& buttons,
                  int defaultButton) override;
    bool ChooseFileToSave(const std::string& title, const std::string& defaultName, const std::string& extension,
                          std::string* path) override;
    bool ChooseFileToOpen(const std::string& title, const std::string& extension, std::string* path) override;
    bool ChooseFileToSaveIn(const std::string& directory, const std::string& title, const std::string& defaultName,
                            const std::string& extension, std::string* path) override;
    bool ChooseFileToOpenIn(const std::string& directory, const std::string& title, const std::string& extension,
                            std::string* path) override;

    // Scripting for tests: the next alerts press these buttons (by title), the next panels answer
    // these paths (an empty path cancels).
    void QueueButton(const std::string& button) { m_buttons.push_back(button); }
    void QueuePath(const std::string& path) { m_paths.push_back(path); }

    struct Alert {
        std::string title;
        std::string message;
        std::vector<std::string> buttons;
    };
    const std::vector<Alert>& Alerts() const { return m_alerts; }
    void ClearAlerts() { m_alerts.clear(); }

    // The panels shown, in order, with what they were asked to show.
    struct Panel {
        bool save;
        std::string title;
        std::string directory;
        std::string defaultName;
        std::string extension;
    };
    const std::vector<Panel>& Panels() const { return m_panels; }

private:
    bool NextPath(std::string* path);

    std::deque<std::string> m_buttons;
    std::deque<std::string> m_paths;
    std::vector<Alert> m_alerts;
    std::vector<Panel> m_panels;
};

// The seam in use; headless unless something else was installed.
IUserInterface& GetUserInterface();
// Installs `ui` (null restores the headless one); returns the previous one.
IUserInterface* SetUserInterface(IUserInterface* ui);

} // namespace Platform
