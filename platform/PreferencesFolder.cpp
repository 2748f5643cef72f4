#include "PreferencesFolder.h"

#include <dirent.h>
#include <errno.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <memory>

#include "HomeDirectory.h"

namespace Platform {

namespace {

const char kFamilyFolder[] = "tessarel/";

bool IsDirectory(const std::string& path)
{
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// Makes `path` and its missing parents.
bool MakeDirectories(const std::string& path)
{
    if (path.empty() || IsDirectory(path))
        return !path.empty();
    const size_t slash = path.find_last_of('/', path.size() > 1 ? path.size() - 2 : 0);
    if (slash != std::string::npos && slash > 0 && !MakeDirectories(path.substr(0, slash)))
        return false;
    return mkdir(path.c_str(), 0755) == 0 || (errno == EEXIST && IsDirectory(path));
}

// An environment variable that holds an absolute path, as the base-directory rules require.
std::string AbsoluteVariable(const char* name)
{
    const char* value = getenv(name);
    return value != nullptr && value[0] == '/' ? std::string(value) : std::string();
}

std::string DomainBase(PreferencesDomain domain)
{
    if (domain == PreferencesDomain::kUser) {
        std::string base = AbsoluteVariable("XDG_CONFIG_HOME");
        if (base.empty()) {
            const std::string home = HomeDirectory();
            if (home.empty())
                return std::string();
            base = home + "/.config";
        }
        return base;
    }
    const std::string list = AbsoluteVariable("XDG_CONFIG_DIRS");
    const std::string first = list.substr(0, list.find(':'));
    return first.empty() || first[0] != '/' ? std::string("/etc/xdg") : first;
}

template <typename Keep>
std::vector<std::string> EntriesIn(const std::string& folder, Keep keep)
{
    std::vector<std::string> names;
    std::unique_ptr<DIR, int (*)(DIR*)> directory(opendir(folder.c_str()), closedir);
    if (!directory)
        return names;
    while (const dirent* entry = readdir(directory.get())) {
        const std::string name = entry->d_name;
        if (name == "." || name == "..")
            continue;
        struct stat info;
        if (stat((folder + "/" + name).c_str(), &info) == 0 && keep(info))
            names.push_back(name);
    }
    return names;
}

} // namespace

std::string PreferencesFolder(PreferencesDomain domain, bool create)
{
    const std::string base = DomainBase(domain);
    if (base.empty())
        return std::string();
    std::string folder = base;
    if (folder.back() != '/')
        folder += '/';
    folder += kFamilyFolder;
    if (create ? MakeDirectories(folder) : IsDirectory(folder))
        return folder;
    return std::string();
}

std::vector<std::string> FilesIn(const std::string& folder)
{
    return EntriesIn(folder, [](const struct stat& info) { return S_ISREG(info.st_mode); });
}

std::vector<std::string> FoldersIn(const std::string& folder)
{
    return EntriesIn(folder, [](const struct stat& info) { return S_ISDIR(info.st_mode); });
}

} // namespace Platform
