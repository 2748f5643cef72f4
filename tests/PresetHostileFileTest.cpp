// Preset files come from other people. Whatever a file holds, loading returns, leaves the
// caller's record as the rules say, and never reads or writes past a field.
#include <gtest/gtest.h>

#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <boost/locale/utf.hpp>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "../Common/PresetSerializer.h"
#include "PresetTestRecords.h"
#include "TempDirectory.h"

namespace {

using namespace PresetTest;
using TestSupport::TempDirectory;

class PresetHostileFileTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(files.Made()); }

    // Loads `text` into a patterned record; true when the load refused it and left the record
    // as it was.
    bool Refused(const std::string& text)
    {
        CEffectPreset preset = Untouched();
        const std::string path = files.Write("hostile.fxpunka", text);
        return !serializer.Load(path.c_str(), &preset) && SameBytes(preset, Untouched());
    }

    // Loads `text` on a thread with a 512 KiB stack: the count loaded, or -1 when refused.
    int LoadOnSmallStack(const std::string& text)
    {
        struct Job {
            std::string path;
            int result;
        } job{files.Write("stack.fxpunka", text), -2};
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        pthread_attr_setstacksize(&attributes, 512 * 1024);
        pthread_t thread;
        const int created = pthread_create(
            &thread, &attributes,
            [](void* argument) -> void* {
                Job* job = static_cast<Job*>(argument);
                CEffectPreset preset = Untouched();
                job->result = CPresetSerializer().Load(job->path.c_str(), &preset) ? preset.nCount : -1;
                return nullptr;
            },
            &job);
        pthread_attr_destroy(&attributes);
        if (created != 0)
            return -2;
        pthread_join(thread, nullptr);
        return job.result;
    }

    TempDirectory files;
    CPresetSerializer serializer;
};

// A name field holds a terminator and valid UTF-8 before it.
template <size_t N>
bool ValidText(const char (&field)[N])
{
    const char* text = field;
    const char* end = static_cast<const char*>(std::memchr(field, '\0', N));
    while (end != nullptr && text < end) {
        const boost::locale::utf::code_point character = boost::locale::utf::utf_traits<char>::decode(text, end);
        if (character == boost::locale::utf::illegal || character == boost::locale::utf::incomplete)
            return false;
    }
    return end != nullptr;
}

TEST_F(PresetHostileFileTest, RefusesFilesThatAreNoPresetAndLeavesTheRecord)
{
    struct Case {
        const char* what;
        std::string text;
    };
    const Case cases[] = {
        {"empty", ""},
        {"blanks", " \n\t \n"},
        {"plain text", "Fine Tune 0.7 0.2 1"},
        {"other format", "{\"Preset\": {\"Name\": \"x\"}}"},
        {"binary", std::string("\x00\x01\x02\xff\xfe<\x00Preset", 12)},
        {"wrong root", "<Presets Name=\"x\"><parameter type=\"1\" value=\"1\"/></Presets>"},
        {"root in other case", "<preset Name=\"x\"><parameter type=\"1\" value=\"1\"/></preset>"},
        {"root below another", "<Wrap><Preset Name=\"x\"><parameter type=\"1\" value=\"1\"/></Preset></Wrap>"},
        {"unclosed root", "<Preset Name=\"x\"><parameter type=\"1\" value=\"1\"/>"},
        {"mismatched close", "<Preset Name=\"x\"><parameter type=\"1\" value=\"1\"></Preset>"},
        {"duplicated attribute", "<Preset Name=\"x\" Name=\"y\"><parameter type=\"1\" value=\"1\"/></Preset>"},
        {"duplicated value", "<Preset><parameter type=\"1\" value=\"1\" value=\"2\"/></Preset>"},
        {"open comment", "<Preset><parameter type=\"1\" value=\"1\"/><!-- </Preset>"},
        {"open attribute", "<Preset Name=\"x><parameter type=\"1\" value=\"1\"/></Preset>"},
        {"character cut at the end", "<?xml version=\"1.0\" ?><Preset Name=\"\xf0"},
        {"lead byte before the end", "\xef\xbb\xbf<Preset Name=\"a\xe2\"/>\xe2"},
        {"NUL inside", std::string("<Preset Name=\"a\0b\"><parameter/></Preset>", 40)},
        {"only a declaration", "<?xml version=\"1.0\" ?>"},
        {"only a comment", "<!-- Effect's Preset File -->"},
    };
    for (const Case& c : cases)
        EXPECT_TRUE(Refused(c.text)) << c.what;
}

TEST_F(PresetHostileFileTest, RefusesEveryTruncationOfAValidFile)
{
    const std::string whole = kFineTuneFile;
    const size_t complete = whole.find("</Preset>") + std::strlen("</Preset>");
    for (size_t length = 0; length < complete; ++length)
        ASSERT_TRUE(Refused(whole.substr(0, length))) << length;
    CEffectPreset preset = Untouched();
    EXPECT_TRUE(serializer.Load(files.Write("whole.fxpunka", whole.substr(0, complete)).c_str(), &preset));
    EXPECT_EQ(preset.nCount, 3);
}

TEST_F(PresetHostileFileTest, APresetWithoutParametersSetsOnlyTheNames)
{
    for (const std::string& text : {std::string("<Preset Name=\"Only\" LibraryName=\"L\" />"),
                                    std::string("<Preset Name=\"Only\" LibraryName=\"L\"><other/></Preset>"),
                                    std::string("<Preset Name=\"Only\" LibraryName=\"L\">text</Preset>")}) {
        CEffectPreset preset = Untouched();
        EXPECT_FALSE(serializer.Load(files.Write("p.fxpunka", text).c_str(), &preset)) << text;
        EXPECT_STREQ(preset.Name, "Only");
        EXPECT_STREQ(preset.LibraryName, "L");
        EXPECT_STREQ(preset.EffectName, "");
        EXPECT_EQ(preset.nCount, 0);
    }
    // A second root is ignored; the first one counts.
    CEffectPreset preset = Untouched();
    EXPECT_TRUE(serializer.Load(files.Write("p.fxpunka", "<Preset Name=\"first\"><parameter/></Preset>"
                                                         "<Preset Name=\"second\"/>")
                                    .c_str(),
                                &preset));
    EXPECT_STREQ(preset.Name, "first");
}

TEST_F(PresetHostileFileTest, RefusesWhatIsNoReadableFile)
{
    CEffectPreset preset = Untouched();
    EXPECT_FALSE(serializer.Load(files.Path("missing.fxpunka").c_str(), &preset));
    EXPECT_FALSE(serializer.Load(files.Root().c_str(), &preset)) << "a directory";
    EXPECT_FALSE(serializer.Load("/dev/null", &preset));
    EXPECT_FALSE(serializer.Load("/dev/zero", &preset)) << "a device without end";
    const std::string pipe = files.Path("pipe.fxpunka");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(serializer.Load(pipe.c_str(), &preset)) << "a pipe nobody writes: no waiting";
    const std::string loop = files.Path("loop.fxpunka");
    ASSERT_EQ(symlink(loop.c_str(), loop.c_str()), 0);
    EXPECT_FALSE(serializer.Load(loop.c_str(), &preset));
    std::string longPath = files.Root();
    while (longPath.size() < 5000)
        longPath += "/d";
    EXPECT_FALSE(serializer.Load(longPath.c_str(), &preset)) << "a path beyond the system's limit";
    EXPECT_FALSE(serializer.Load(std::string(300, 'n').c_str(), &preset)) << "a name beyond the system's limit";
    EXPECT_TRUE(SameBytes(preset, Untouched()));
}

TEST_F(PresetHostileFileTest, RefusesAFileItMayNotRead)
{
    const std::string path = files.Write("private.fxpunka", kFineTuneFile);
    ASSERT_EQ(chmod(path.c_str(), 0), 0);
    if (geteuid() != 0) {
        CEffectPreset preset = Untouched();
        EXPECT_FALSE(serializer.Load(path.c_str(), &preset));
        EXPECT_TRUE(SameBytes(preset, Untouched()));
        return;
    }
    // Permissions don't stop root, so the load runs in a child that has given up root.
    ASSERT_EQ(chmod(files.Root().c_str(), 0755), 0);
    EXPECT_EXIT(
        {
            if (setgid(65534) != 0 || setuid(65534) != 0)
                std::_Exit(2);
            CEffectPreset preset = Untouched();
            const bool loaded = CPresetSerializer().Load(path.c_str(), &preset);
            std::_Exit(!loaded && SameBytes(preset, Untouched()) ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "")
        << "exit code 2 means the child could not give up root";
}

TEST_F(PresetHostileFileTest, TakesFilesUpToTheSizeLimitAndRefusesAHundredMegabytesAtOnce)
{
    const std::string head = "<Preset Name=\"big\"><parameter type=\"1\" value=\"9\"/>", tail = "</Preset>";
    const size_t limit = CPresetSerializer::kMaxFileBytes;
    CEffectPreset preset = Untouched();
    EXPECT_TRUE(serializer.Load(
        files.Write("limit.fxpunka", head + std::string(limit - head.size() - tail.size(), ' ') + tail).c_str(),
        &preset));
    EXPECT_EQ(preset.Params[0].value.nValue, 9);
    EXPECT_TRUE(Refused(head + std::string(limit + 1 - head.size() - tail.size(), ' ') + tail));

    const std::string path = files.Path("huge.fxpunka");
    FILE* file = std::fopen(path.c_str(), "wb");
    ASSERT_NE(file, nullptr);
    std::fputs("<Preset Name=\"huge\">", file);
    std::string chunk;
    while (chunk.size() < (1 << 20))
        chunk += "<parameter type=\"2\" value=\"0.5\" />";
    for (int megabyte = 0; megabyte < 100; ++megabyte)
        std::fwrite(chunk.data(), 1, chunk.size(), file);
    std::fputs("</Preset>", file);
    ASSERT_EQ(std::fclose(file), 0);
    ASSERT_GT(std::filesystem::file_size(path), 100u << 20);
    preset = Untouched();
    EXPECT_FALSE(serializer.Load(path.c_str(), &preset));
    EXPECT_TRUE(SameBytes(preset, Untouched()));
    std::remove(path.c_str());
}

TEST_F(PresetHostileFileTest, RefusesDeepNestingAndTooManyTags)
{
    auto nested = [](size_t depth) {
        std::string text = "<Preset Name=\"deep\"><parameter type=\"1\" value=\"1\">";
        for (size_t level = 0; level < depth; ++level)
            text += "<a>";
        for (size_t level = 0; level < depth; ++level)
            text += "</a>";
        return text + "</parameter></Preset>";
    };
    EXPECT_TRUE(Refused(nested(8000)));
    EXPECT_TRUE(Refused(nested(CPresetSerializer::kMaxTags)));
    std::string flat = "<Preset>";
    for (size_t tag = 0; tag < CPresetSerializer::kMaxTags; ++tag)
        flat += "<parameter/>";
    EXPECT_TRUE(Refused(flat + "</Preset>"));

    // Nesting as deep as the limit lets through is parsed, and refused when left open, even on a
    // thread with a small stack, as hosts give their secondary threads.
    std::string open = "<Preset><parameter type=\"1\">";
    for (size_t tag = 2; tag < CPresetSerializer::kMaxTags; ++tag)
        open += "<a>";
    EXPECT_EQ(LoadOnSmallStack(open), -1);
    EXPECT_EQ(LoadOnSmallStack(nested(CPresetSerializer::kMaxTags / 2 - 3)), 1);
}

// Names of random bytes, and random damage to a valid file: a refused file changes at most the
// names (and only when a root was found), a loaded one holds 1 to 100 records and names of valid text.
TEST_F(PresetHostileFileTest, RandomBytesAndDamageNeverBreakTheRecord)
{
    std::mt19937 random(4242);
    const std::string whole = kFineTuneFile;
    for (int round = 0; round < 2400; ++round) {
        SCOPED_TRACE(round);
        std::string text = whole;
        const bool damaged = round % 6 != 0;
        for (int change = 1 + random() % 4; damaged && change > 0; --change) {
            const size_t at = random() % text.size();
            switch (random() % 3) {
            case 0: text[at] = static_cast<char>(random() % 256); break;
            case 1: text.erase(at, 1 + random() % 8); break;
            default: text.insert(at, whole.substr(random() % whole.size(), random() % 40)); break;
            }
            if (text.empty())
                text = "<";
        }
        if (!damaged) {
            std::string name;
            for (size_t length = random() % 400; length > 0; --length) {
                const char byte = static_cast<char>(random() % 256);
                name += byte == '"' || byte == '<' || byte == '&' || byte == '\0' ? '\x80' : byte;
            }
            text = (round % 4 == 0 ? "\xef\xbb\xbf" : "") + std::string(round % 3 ? "<?xml version=\"1.0\" ?>" : "") +
                   "<Preset Name=\"" + name + "\"><parameter type=\"1\" value=\"1\"/></Preset>";
        }
        CEffectPreset preset = Untouched();
        if (!serializer.Load(files.Write("damaged.fxpunka", text).c_str(), &preset)) {
            EXPECT_TRUE(SameBytes(preset, Untouched()) || (damaged && preset.nCount == 0))
                << "a refused file changes at most the names";
            continue;
        }
        EXPECT_GE(preset.nCount, 1);
        EXPECT_LE(preset.nCount, damaged ? kPresetMaxParams : 1);
        EXPECT_TRUE(ValidText(preset.Name) && ValidText(preset.LibraryName) && ValidText(preset.EffectName));
    }
}

} // namespace
