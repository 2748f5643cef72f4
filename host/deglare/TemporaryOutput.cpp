#include "TemporaryOutput.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <vector>

#include "ExitStatus.h"

namespace Deglare {

namespace fs = std::filesystem;

namespace {
const unsigned kNewFileMode = 0666;

fs::path FolderOf(const std::string& output)
{
    fs::path folder = fs::absolute(fs::path(output)).parent_path();
    return folder.empty() ? fs::current_path() : folder;
}
} // namespace

void TemporaryOutput::Check(const std::string& output, const std::string& input)
{
    std::error_code error;
    const fs::path outputPath(output);
    // The same file by another spelling, a link, or a second name for its data.
    std::error_code inputError, outputError;
    const bool sameName =
        fs::weakly_canonical(fs::path(input), inputError) == fs::weakly_canonical(outputPath, outputError) &&
        !inputError && !outputError;
    if (sameName || (fs::exists(outputPath, error) && fs::equivalent(fs::path(input), outputPath, error)))
        throw Failure(ExitStatus::OutputIsInput, output + ": is the input itself; choose another OUTPUT");
    if (fs::is_directory(outputPath, error))
        throw Failure(ExitStatus::OutputIsFolder, output + ": is a folder; give OUTPUT a file name");
    const fs::path folder = FolderOf(output);
    if (!fs::exists(folder, error))
        throw Failure(ExitStatus::OutputFolderMissing, output + ": the folder " + folder.string() + " doesn't exist");
    if (!fs::is_directory(folder, error))
        throw Failure(ExitStatus::OutputFolderMissing, output + ": " + folder.string() + " is not a folder");
}

TemporaryOutput::TemporaryOutput(const std::string& output, const std::string& input) : m_output(output)
{
    Check(output, input);
    const fs::path folder = FolderOf(output);
    // Hidden, unique, and with OUTPUT's extension, which tells what the file holds.
    const std::string extension = fs::path(output).extension().string();
    const std::string pattern =
        (folder / ("." + fs::path(output).stem().string() + ".deglare-XXXXXX" + extension)).string();
    std::vector<char> name(pattern.begin(), pattern.end());
    name.push_back('\0');
    const int descriptor = mkstemps(name.data(), static_cast<int>(extension.size()));
    if (descriptor < 0)
        throw Failure(ExitStatus::OutputFolderNotWritable,
                      output + ": can't write in " + folder.string() + " (" + std::strerror(errno) + ")");
    close(descriptor);
    m_temporary = name.data();
    // The finished file gets the mode of any new file, not the temporary file's private one.
    const mode_t mask = umask(0);
    umask(mask);
    m_mode = kNewFileMode & ~mask;
}

TemporaryOutput::~TemporaryOutput()
{
    Discard();
}

void TemporaryOutput::Discard()
{
    if (m_done)
        return;
    std::remove(m_temporary.c_str());
    m_done = true;
}

void TemporaryOutput::Commit()
{
    if (chmod(m_temporary.c_str(), m_mode) != 0 || std::rename(m_temporary.c_str(), m_output.c_str()) != 0)
        throw Failure(ExitStatus::WriteFailed, m_output + ": can't be put in place (" + std::strerror(errno) + ")");
    m_done = true;
}

} // namespace Deglare
