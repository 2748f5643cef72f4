#pragma once
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace TestSupport {

// A fresh directory under the system's temporary folder, removed with all it holds.
class TempDirectory {
public:
    TempDirectory()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "deglarer-XXXXXX").string();
        if (mkdtemp(&pattern[0]) != nullptr)
            m_path = pattern;
    }
    ~TempDirectory()
    {
        std::error_code ignored;
        if (!m_path.empty())
            std::filesystem::remove_all(m_path, ignored);
    }
    TempDirectory(const TempDirectory&) = delete;
    TempDirectory& operator=(const TempDirectory&) = delete;

    bool Made() const { return !m_path.empty(); }
    std::string Path(const std::string& name) const { return m_path + "/" + name; }
    const std::string& Root() const { return m_path; }

    std::string Write(const std::string& name, const std::string& contents) const
    {
        const std::string path = Path(name);
        // A new file each time: rewriting one in place makes the file system flush it first.
        std::remove(path.c_str());
        std::ofstream(path, std::ios::binary) << contents;
        return path;
    }

private:
    std::string m_path;
};

inline std::string ReadFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

} // namespace TestSupport
