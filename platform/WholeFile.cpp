#include "WholeFile.h"

#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>

namespace Platform {

namespace {

class FileDescriptor {
public:
    explicit FileDescriptor(int fd) : m_fd(fd) {}
    ~FileDescriptor()
    {
        if (m_fd >= 0)
            close(m_fd);
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    int Get() const { return m_fd; }

private:
    int m_fd;
};

// The file that a save replaces: the target of a link, so that the link itself survives.
std::string ResolveTarget(const char* path)
{
    struct stat info;
    if (lstat(path, &info) == 0 && S_ISLNK(info.st_mode)) {
        char* resolved = realpath(path, nullptr);
        if (resolved != nullptr) {
            std::string target(resolved);
            free(resolved);
            return target;
        }
    }
    return path;
}

// A hidden name beside `target` that no other save uses at the same moment; O_EXCL settles any
// clash. The target's own name is shortened so that the new name stays within a directory
// entry's limit.
std::string TemporaryNameBeside(const std::string& target)
{
    static std::atomic<unsigned> s_counter{0};
    const size_t slash = target.rfind('/');
    const std::string directory = slash == std::string::npos ? std::string() : target.substr(0, slash + 1);
    const std::string base = slash == std::string::npos ? target : target.substr(slash + 1);
    const unsigned long long stamp = static_cast<unsigned long long>(
        std::chrono::steady_clock::now().time_since_epoch().count());
    return directory + "." + base.substr(0, 160) + "." + std::to_string(getpid()) + "-" +
           std::to_string(s_counter.fetch_add(1)) + "-" + std::to_string(stamp % 1000000007ull) + ".saving";
}

} // namespace

bool ReadWholeFile(const char* path, size_t limit, std::string* contents)
{
    if (path == nullptr || *path == '\0' || contents == nullptr)
        return false;
    // Non-blocking, so that opening a pipe that nobody writes returns at once.
    FileDescriptor file(open(path, O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    if (file.Get() < 0)
        return false;
    struct stat info;
    if (fstat(file.Get(), &info) != 0 || !S_ISREG(info.st_mode))
        return false;
    if (info.st_size < 0 || static_cast<unsigned long long>(info.st_size) > limit)
        return false;

    // The size is only a hint: the file may grow while it is read, so the limit is checked on
    // what arrives.
    std::string text;
    char chunk[16384];
    for (;;) {
        const ssize_t got = read(file.Get(), chunk, sizeof chunk);
        if (got < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        if (got == 0)
            break;
        if (text.size() + static_cast<size_t>(got) > limit)
            return false;
        text.append(chunk, static_cast<size_t>(got));
    }
    contents->swap(text);
    return true;
}

bool ReplaceWholeFile(const char* path, const std::function<bool(FILE*)>& write)
{
    if (path == nullptr || *path == '\0' || !write)
        return false;
    const std::string target = ResolveTarget(path);

    std::string temporary;
    int fd = -1;
    for (int attempt = 0; attempt < 16 && fd < 0; ++attempt) {
        temporary = TemporaryNameBeside(target);
        fd = open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOCTTY, 0666);
        if (fd < 0 && errno != EEXIST)
            return false;
    }
    if (fd < 0)
        return false;

    struct stat existing;
    if (stat(target.c_str(), &existing) == 0 && S_ISREG(existing.st_mode))
        fchmod(fd, existing.st_mode & 07777);

    FILE* stream = fdopen(fd, "w");
    if (stream == nullptr) {
        close(fd);
        unlink(temporary.c_str());
        return false;
    }
    bool written = false;
    try {
        written = write(stream);
    } catch (...) {
        written = false;
    }
    written = written && std::fflush(stream) == 0 && std::ferror(stream) == 0 && fsync(fileno(stream)) == 0;
    written = (std::fclose(stream) == 0) && written;
    if (!written || rename(temporary.c_str(), target.c_str()) != 0) {
        unlink(temporary.c_str());
        return false;
    }
    return true;
}

} // namespace Platform
