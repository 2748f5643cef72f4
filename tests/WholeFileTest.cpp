#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <string>

#include "../platform/WholeFile.h"
#include "TempDirectory.h"

namespace {

using TestSupport::ReadFile;
using TestSupport::TempDirectory;

size_t EntriesIn(const std::string& directory)
{
    return static_cast<size_t>(std::distance(std::filesystem::directory_iterator(directory),
                                             std::filesystem::directory_iterator()));
}

bool WriteText(const std::string& path, const std::string& text)
{
    return Platform::ReplaceWholeFile(path.c_str(), [&text](FILE* file) {
        return std::fwrite(text.data(), 1, text.size(), file) == text.size();
    });
}

ino_t InodeOf(const std::string& path)
{
    struct stat info;
    return stat(path.c_str(), &info) == 0 ? info.st_ino : 0;
}

TEST(WholeFile, ReplacesAFileByRenamingANewOneOverIt)
{
    TempDirectory files;
    ASSERT_TRUE(files.Made());
    const std::string path = files.Write("preset.fxpunka", "old contents");
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    const ino_t before = InodeOf(path);
    ASSERT_TRUE(WriteText(path, "new"));
    EXPECT_EQ(ReadFile(path), "new");
    EXPECT_NE(InodeOf(path), before) << "a new file took the old one's place";
    struct stat info;
    ASSERT_EQ(stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0640u) << "the old file's permissions carry over";
    EXPECT_EQ(EntriesIn(files.Root()), 1u);

    // A new file, a name at the system's limit, and a link that stays a link to the new contents.
    ASSERT_TRUE(WriteText(files.Path("fresh.fxpunka"), "made"));
    EXPECT_EQ(ReadFile(files.Path("fresh.fxpunka")), "made");
    const std::string longest = files.Write(std::string(255, 'n'), "old");
    EXPECT_TRUE(WriteText(longest, "new"));
    EXPECT_EQ(ReadFile(longest), "new");
    const std::string link = files.Path("link.fxpunka");
    ASSERT_EQ(symlink(path.c_str(), link.c_str()), 0);
    ASSERT_TRUE(WriteText(link, "through the link"));
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_EQ(ReadFile(path), "through the link");
}

TEST(WholeFile, AFailedWriteLeavesTheOldFileAndNoTrace)
{
    TempDirectory files;
    ASSERT_TRUE(files.Made());
    const std::string path = files.Write("preset.fxpunka", "old contents");
    const ino_t before = InodeOf(path);
    const auto halfThenFail = [](FILE* file) {
        std::fputs("half", file);
        return false;
    };
    const auto halfThenThrow = [](FILE* file) -> bool {
        std::fputs("half", file);
        throw std::runtime_error("disk on fire");
    };
    EXPECT_FALSE(Platform::ReplaceWholeFile(path.c_str(), halfThenFail));
    EXPECT_FALSE(Platform::ReplaceWholeFile(path.c_str(), halfThenThrow));
    EXPECT_FALSE(Platform::ReplaceWholeFile(path.c_str(), std::function<bool(FILE*)>()));
    EXPECT_EQ(ReadFile(path), "old contents");
    EXPECT_EQ(InodeOf(path), before);
    EXPECT_EQ(EntriesIn(files.Root()), 1u) << "no temporary file stays behind";

    // A directory in the way, a missing folder, and no path at all.
    std::filesystem::create_directory(files.Path("folder"));
    EXPECT_FALSE(WriteText(files.Path("folder"), "x"));
    EXPECT_TRUE(std::filesystem::is_directory(files.Path("folder")));
    EXPECT_FALSE(WriteText(files.Path("missing/preset.fxpunka"), "x"));
    EXPECT_FALSE(WriteText("", "x"));
    EXPECT_FALSE(Platform::ReplaceWholeFile(nullptr, [](FILE*) { return true; }));
    EXPECT_EQ(EntriesIn(files.Root()), 2u);
}

TEST(WholeFile, ReadsRegularFilesUpToTheLimitOnly)
{
    TempDirectory files;
    ASSERT_TRUE(files.Made());
    const std::string path = files.Write("ten", "0123456789");
    std::string contents = "kept";
    EXPECT_FALSE(Platform::ReadWholeFile(path.c_str(), 9, &contents));
    EXPECT_EQ(contents, "kept");
    EXPECT_TRUE(Platform::ReadWholeFile(path.c_str(), 10, &contents));
    EXPECT_EQ(contents, "0123456789");
    EXPECT_TRUE(Platform::ReadWholeFile(files.Write("empty", "").c_str(), 10, &contents));
    EXPECT_EQ(contents, "");

    contents = "kept";
    EXPECT_FALSE(Platform::ReadWholeFile(files.Root().c_str(), 1000, &contents));
    EXPECT_FALSE(Platform::ReadWholeFile("/dev/zero", 1000, &contents));
    EXPECT_FALSE(Platform::ReadWholeFile(files.Path("missing").c_str(), 1000, &contents));
    EXPECT_FALSE(Platform::ReadWholeFile(nullptr, 1000, &contents));
    EXPECT_FALSE(Platform::ReadWholeFile(path.c_str(), 1000, nullptr));
    const std::string pipe = files.Path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(Platform::ReadWholeFile(pipe.c_str(), 1000, &contents));
    EXPECT_EQ(contents, "kept");
}

} // namespace
