#pragma once
#include <string>
#include <vector>

namespace Platform {

// The two ordered places where settings files live. The user's folder is
// $XDG_CONFIG_HOME/tessarel/ (by default ~/.config/tessarel/); the machine's is tessarel/ in the
// first folder of $XDG_CONFIG_DIRS (by default /etc/xdg/tessarel/).
enum class PreferencesDomain { kUser, kLocal };

// The domain's folder with a "/" at the end. Without `create`, empty when it isn't an existing
// directory; with `create`, the folder and its parents are made as needed and empty when that
// fails.
std::string PreferencesFolder(PreferencesDomain domain, bool create);

// The names of the regular files directly in `folder`, in no particular order; empty when the
// folder can't be read.
std::vector<std::string> FilesIn(const std::string& folder);

// The names of the directories directly in `folder`, "." and ".." left out.
std::vector<std::string> FoldersIn(const std::string& folder);

} // namespace Platform
