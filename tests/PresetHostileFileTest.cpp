// Preset files come from other people. Whatever a file holds, loading returns, leaves the
// caller's record as the rules say, and never reads or writes past a field. Random bytes and
// damage are the preset fuzzer's part.
#include <gtest/gtest.h>

#include <pthread.h>
#include <sys/stat.h>

#include <string>

#include "../Common/PresetSerializer.h"
#include "PresetTestRecords.h"
#include "TempDirectory.h"

namespace {

using namespace PresetTest;
using TestSupport::TempDirectory;

class PresetHostileFileTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(files.Made()); }

    // Loads `text` into a patterned record, so that what the load didn't write shows.
    bool Load(const std::string& text, CEffectPreset* preset)
    {
        *preset = Untouched();
        return serializer.Load(files.Write("hostile.fxpunka", text).c_str(), preset);
    }

    // True when the load refused `text` and left the record as it was.
    bool Refused(const std::string& text)
    {
        CEffectPreset preset;
        return !Load(text, &preset) && SameBytes(preset, Untouched());
    }

    // Loads `text` on a thread with a 512 KiB stack: the count loaded, or -1 when refused.
    int LoadOnSmallStack(const std::string& text)
    {
        struct Job {
            std::string path;
            int result = -2;
        } job{files.Write("stack.fxpunka", text)};
        auto run = [](void* argument) -> void* {
            Job* job = static_cast<Job*>(argument);
            CEffectPreset preset = Untouched();
            job->result = CPresetSerializer().Load(job->path.c_str(), &preset) ? preset.nCount : -1;
            return nullptr;
        };
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        pthread_attr_setstacksize(&attributes, 512 * 1024);
        pthread_t thread;
        if (pthread_create(&thread, &attributes, run, &job) == 0)
            pthread_join(thread, nullptr);
        pthread_attr_destroy(&attributes);
        return job.result;
    }

    TempDirectory files;
    CPresetSerializer serializer;
};

TEST_F(PresetHostileFileTest, RefusesFilesThatAreNoPresetAndLeavesTheRecord)
{
    const std::string parameter = "<parameter type=\"1\" value=\"1\"/>";
    const std::string cases[] = {
        "",
        "Fine Tune 0.7 0.2 1",
        std::string("\x00\x01\x02\xff\xfe<\x00Preset", 12),
        "<Presets Name=\"x\">" + parameter + "</Presets>",
        "<preset Name=\"x\">" + parameter + "</preset>",
        "<Wrap><Preset Name=\"x\">" + parameter + "</Preset></Wrap>",
        "<Preset Name=\"x\"><parameter type=\"1\" value=\"1\"></Preset>",
        "<Preset Name=\"x\" Name=\"y\">" + parameter + "</Preset>",
        "<Preset>" + parameter + "<!-- </Preset>",
        "<Preset Name=\"x>" + parameter + "</Preset>",
        "<?xml version=\"1.0\" ?><Preset Name=\"\xf0",   // a character cut at the end
        "\xef\xbb\xbf<Preset Name=\"a\xe2\"/>\xe2",
        std::string("<Preset Name=\"a\0b\"><parameter/></Preset>", 40),
        "<!-- Effect's Preset File -->",
    };
    for (const std::string& text : cases)
        EXPECT_TRUE(Refused(text)) << text;

    // Every truncation of a valid file.
    const std::string whole = kFineTuneFile;
    const size_t complete = whole.find("</Preset>") + std::strlen("</Preset>");
    for (size_t length = 0; length < complete; ++length)
        ASSERT_TRUE(Refused(whole.substr(0, length))) << length;
    CEffectPreset preset;
    EXPECT_TRUE(Load(whole.substr(0, complete), &preset));
    EXPECT_EQ(preset.nCount, 3);

    // What is no readable file, through the serializer.
    const std::string pipe = files.Path("pipe.fxpunka");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& path : {files.Path("missing.fxpunka"), files.Root(), std::string("/dev/zero"), pipe})
        EXPECT_FALSE(serializer.Load(path.c_str(), &preset)) << path;
}

TEST_F(PresetHostileFileTest, APresetWithoutParametersSetsOnlyTheNames)
{
    CEffectPreset preset;
    EXPECT_FALSE(Load("<Preset Name=\"Only\" LibraryName=\"L\"><other/>text</Preset>", &preset));
    EXPECT_STREQ(preset.Name, "Only");
    EXPECT_STREQ(preset.LibraryName, "L");
    EXPECT_STREQ(preset.EffectName, "");
    EXPECT_EQ(preset.nCount, 0);
    // A second root is ignored; the first one counts.
    EXPECT_TRUE(Load("<Preset Name=\"first\"><parameter/></Preset><Preset Name=\"second\"/>", &preset));
    EXPECT_STREQ(preset.Name, "first");
}

TEST_F(PresetHostileFileTest, TakesFilesUpToTheSizeLimitAndNoMore)
{
    const std::string head = "<Preset Name=\"big\"><parameter type=\"1\" value=\"9\"/>", tail = "</Preset>";
    const size_t limit = CPresetSerializer::kMaxFileBytes;
    CEffectPreset preset;
    EXPECT_TRUE(Load(head + std::string(limit - head.size() - tail.size(), ' ') + tail, &preset));
    EXPECT_EQ(preset.Params[0].value.nValue, 9);
    EXPECT_TRUE(Refused(head + std::string(limit + 1 - head.size() - tail.size(), ' ') + tail));
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

} // namespace
