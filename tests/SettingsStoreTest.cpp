// The settings store on folders of the test's own, set through the XDG variables: domains and
// their order, file names, buffer rules, permissions and files that can't be trusted.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include <plist/plist.h>

#include "../foundation/RegistryHelper.h"
#include "../platform/PropertyList.h"
#include "TempDirectory.h"

namespace {

using TestSupport::TempDirectory;

// Points the user and machine domains into a temporary folder for the test's length.
class SettingsStore : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_root.Made());
        setenv("XDG_CONFIG_HOME", m_root.Path("user").c_str(), 1);
        setenv("XDG_CONFIG_DIRS", (m_root.Path("machine") + ":" + m_root.Path("other")).c_str(), 1);
    }
    void TearDown() override
    {
        unsetenv("XDG_CONFIG_HOME");
        unsetenv("XDG_CONFIG_DIRS");
    }

    std::string UserFile(const char* name = "com.tessarel.common.plist") const
    {
        return m_root.Path("user/tessarel/") + name;
    }
    // A file written by hand, bypassing the store.
    void Place(const std::string& relative, const std::string& contents)
    {
        std::filesystem::create_directories(std::filesystem::path(m_root.Path(relative)).parent_path());
        m_root.Write(relative, contents);
    }
    static std::string Plist(const std::string& entries)
    {
        return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + entries +
               "</dict></plist>\n";
    }
    static std::string Read(const char* section, const char* key, int size = 60)
    {
        char buffer[64] = "untouched";
        return RegistryHelper::GetRegistryKey(section, key, buffer, size) ? buffer : std::string("!") + buffer;
    }

    // {"Key": "binary"} in the binary form.
    static std::string BinaryPlist()
    {
        plist_t dictionary = plist_new_dict();
        plist_dict_set_item(dictionary, "Key", plist_new_string("binary"));
        char* bytes = nullptr;
        uint32_t length = 0;
        plist_to_bin(dictionary, &bytes, &length);
        std::string binary(bytes, length);
        plist_to_bin_free(bytes);
        plist_free(dictionary);
        return binary;
    }

    TempDirectory m_root;
};

TEST_F(SettingsStore, SectionsNameFilesThroughNormalize)
{
    const std::pair<const char*, const char*> names[] = {
        {"Common", "com.tessarel.common.plist"},
        {"C o m m o n", "com.tessarel.common.plist"},
        {"Tessarel Deglarer Pro for Mac", "com.tessarel.tessareldeglarerproformac.plist"},
        {"common.monitoring.reports.A_1-x", "com.tessarel.common.monitoring.reports.a_1-x.plist"},
        {" !\xC3\xBC", "com.tessarel..plist"},
    };
    for (const auto& [section, file] : names)
        EXPECT_EQ(RegistryHelper::FileNameOfSection(section), TSString(file)) << section;
    EXPECT_EQ(RegistryHelper::FileNameOfSection(std::string(400, 'a').c_str()).Size(), 258u);
}

TEST_F(SettingsStore, ReadsFallBackThroughTheDomainsAndTheFirstFileWithTheKeyWins)
{
    EXPECT_EQ(Read("Common", "Key"), "!untouched");
    EXPECT_FALSE(std::filesystem::exists(m_root.Path("user")));   // reads never make folders
    Place("machine/tessarel/Network/com.tessarel.common.plist", Plist("<key>Key</key><string>network</string>"));
    EXPECT_EQ(Read("Common", "Key"), "network");
    ASSERT_TRUE(RegistryHelper::SetRegistryKey("Common", "Key", "machine", RegistryHelper::kLocalDomain));
    EXPECT_EQ(Read("common", "Key"), "machine");
    ASSERT_TRUE(RegistryHelper::SetRegistryKey(TSString("C o m m o n"), TSString("Other"), TSString("user")));
    EXPECT_EQ(Read("Common", "Key"), "machine");   // the user's file lacks the key: not merged
    ASSERT_TRUE(RegistryHelper::SetRegistryKey(TSString("Common"), TSString("Key"), TSString("user")));
    EXPECT_EQ(RegistryHelper::GetRegistryKey(TSString("Common"), TSString("Key")), TSString("user"));
    EXPECT_EQ(Read("Common", "Other"), "user");   // other keys of the file are kept
    EXPECT_EQ(Read("Common", "key"), "!untouched");   // keys are case-sensitive
}

TEST_F(SettingsStore, AValueMustFitWithItsTerminator)
{
    ASSERT_TRUE(RegistryHelper::SetRegistryKey("Common", "Key", "12345", RegistryHelper::kUserDomain));
    EXPECT_EQ(Read("Common", "Key", 5), "!untouched");
    EXPECT_EQ(Read("Common", "Key", 6), "12345");
    ASSERT_TRUE(RegistryHelper::SetRegistryKey("Common", "Long", std::string(511, 'x').c_str(),
                                               RegistryHelper::kUserDomain));
    EXPECT_TRUE(RegistryHelper::GetRegistryKey(TSString("Common"), TSString("Long")).IsEmpty());
}

TEST_F(SettingsStore, ANewFileTakesTheOwnerAndModeOfItsFolder)
{
    std::filesystem::create_directories(m_root.Path("user/tessarel"));
    ASSERT_EQ(chmod(m_root.Path("user/tessarel").c_str(), 0750), 0);
    ASSERT_TRUE(RegistryHelper::SetRegistryKey(TSString("Common"), TSString("Key"), TSString("yes")));
    struct stat folder, file;
    ASSERT_EQ(stat(m_root.Path("user/tessarel").c_str(), &folder), 0);
    ASSERT_EQ(stat(UserFile().c_str(), &file), 0);
    EXPECT_EQ(file.st_mode & 07777, 0750u);
    EXPECT_EQ(file.st_uid, folder.st_uid);
    EXPECT_EQ(file.st_gid, folder.st_gid);
    std::string xml = TestSupport::ReadFile(UserFile());
    EXPECT_NE(xml.find("<key>Key</key>"), std::string::npos);   // written as an XML property list
}

TEST_F(SettingsStore, FilesThatCantBeTrustedCountAsAbsent)
{
    ASSERT_TRUE(RegistryHelper::SetRegistryKey("Common", "Key", "machine", RegistryHelper::kLocalDomain));
    const std::pair<const char*, std::string> hostile[] = {
        {"corrupt", "<plist><dict><key>Key</key><string>user"},
        {"not a list", "Key=user\n"},
        {"empty", ""},
        {"array root", "<plist version=\"1.0\"><array><string>user</string></array></plist>"},
        {"not a text", Plist("<key>Key</key><integer>7</integer>")},
        {"truncated binary", BinaryPlist().substr(0, 30)},
        {"deep", [] {
             std::string deep = "<plist version=\"1.0\"><dict><key>Key</key>";
             for (int level = 0; level < 100000; ++level)
                 deep += "<array>";
             return deep;
         }()},
    };
    for (const auto& [what, contents] : hostile) {
        Place("user/tessarel/com.tessarel.common.plist", contents);
        EXPECT_EQ(Read("Common", "Key"), "machine") << what;
    }
    Place("user/tessarel/com.tessarel.common.plist", Plist(std::string("<key>Key</key><string>ab\0cd</string>", 36)));
    EXPECT_EQ(Read("Common", "Key"), "ab");   // a zero inside a text ends it as C text, and nothing asserts
    Place("user/tessarel/com.tessarel.common.plist", BinaryPlist());
    EXPECT_EQ(Read("Common", "Key"), "binary");
    std::filesystem::remove(UserFile());
    std::filesystem::create_directories(UserFile());   // a folder where the file should be
    EXPECT_EQ(Read("Common", "Key"), "machine");
    EXPECT_FALSE(RegistryHelper::SetRegistryKey(TSString("Common"), TSString("Key"), TSString("user")));
    std::filesystem::remove(UserFile());
    Place("user/tessarel/com.tessarel.common.plist", "garbage");   // a write replaces a corrupt file
    ASSERT_TRUE(RegistryHelper::SetRegistryKey(TSString("Common"), TSString("Key"), TSString("user")));
    EXPECT_EQ(Read("Common", "Key"), "user");
}

TEST_F(SettingsStore, AWriterInAnotherProcessNeverLeavesATornFile)
{
    ASSERT_TRUE(RegistryHelper::SetRegistryKey(TSString("Common"), TSString("Key"), TSString("start")));
    const pid_t writer = fork();
    ASSERT_GE(writer, 0);
    if (writer == 0) {
        for (int round = 0; round < 300; ++round)
            RegistryHelper::SetRegistryKey(TSString("Common"), TSString("Key"),
                                           TSString(std::string(round % 97 * 40, 'w').c_str()));
        _exit(0);
    }
    int torn = 0;
    for (int read = 0; read < 2000; ++read) {
        Platform::PropertyList list;
        torn += list.Read(UserFile()) ? 0 : 1;
        RegistryHelper::SetRegistryKey(TSString("Common"), TSString("Mine"), TSString("m"));
    }
    int status = 0;
    waitpid(writer, &status, 0);
    EXPECT_EQ(torn, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

} // namespace
