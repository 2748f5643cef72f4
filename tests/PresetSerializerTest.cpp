#include <gtest/gtest.h>

#include <sys/stat.h>
#include <tinyxml.h>

#include <cfloat>
#include <climits>
#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "../Common/PresetSerializer.h"
#include "PresetTestRecords.h"
#include "TempDirectory.h"

namespace {

using namespace PresetTest;
using TestSupport::ReadFile;
using TestSupport::TempDirectory;

class PresetSerializerTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(files.Made()); }

    // Saves `preset`, keeps the file's text, and loads it into a patterned record, so what the
    // load didn't write shows.
    bool RoundTrip(CEffectPreset preset, CEffectPreset* loaded, std::string* text = nullptr)
    {
        const std::string path = files.Path("round-trip.fxpunka");
        if (!serializer.Save(path.c_str(), &preset))
            return false;
        if (text != nullptr)
            *text = ReadFile(path);
        *loaded = Untouched();
        return serializer.Load(path.c_str(), loaded);
    }

    bool LoadText(const std::string& text, CEffectPreset* preset)
    {
        return serializer.Load(files.Write("preset.fxpunka", text).c_str(), preset);
    }

    TempDirectory files;
    CPresetSerializer serializer;
};

// The names, whole fields, and every bit of the records in use.
bool SameInUse(const CEffectPreset& a, const CEffectPreset& b)
{
    return a.nCount == b.nCount && a.nCount >= 0 && a.nCount <= kPresetMaxParams &&
           std::memcmp(&a, &b, offsetof(CEffectPreset, Params) + a.nCount * sizeof(EffectParam)) == 0;
}

TEST_F(PresetSerializerTest, WritesTheFileLineByLineAndEachTypeInItsForm)
{
    const CEffectPreset fine = Record("Fine Tune", kLibraryName, kEffectName, {Float(0.7f), Float(0.2f), Bool(1)});
    CEffectPreset loaded;
    std::string text;
    ASSERT_TRUE(RoundTrip(fine, &loaded, &text));
    EXPECT_EQ(text, kFineTuneFile);
    EXPECT_TRUE(SameInUse(loaded, fine)) << "0.7 and 0.2 come back as the floats nearest their texts";
    EXPECT_FALSE(RoundTrip(Record("Nothing", "L", "E", {}), &loaded, &text));
    EXPECT_NE(text.find("<Preset Name=\"Nothing\" LibraryName=\"L\" EffectName=\"E\" />\n"), std::string::npos);

    const std::pair<EffectParam, const char*> cases[] = {
        {Point(1.5f, -2.0f), "<parameter type=\"0\" x=\"1.500000\" y=\"-2.000000\" />"},
        {Integer(-7), "<parameter type=\"1\" value=\"-7\" />"},
        {Float(-1e-7f), "<parameter type=\"2\" value=\"-0.000000\" />"},
        {Integer(INT_MIN, eptInteger2), "<parameter type=\"3\" value=\"-2147483648\" />"},
        {Bool(7), "<parameter type=\"4\" value=\"1\" />"},
        // Only the first byte is the flag.
        {Typed(eptBool, [](auto& value) { value.bytes[1] = 1; }), "<parameter type=\"4\" value=\"0\" />"},
        {Typed(0xFFFFFFFFu), "<parameter type=\"-1\" />"},
    };
    for (const auto& c : cases) {
        CEffectPreset preset = Record("n", "l", "e", {c.first});
        if (c.first.dwType != eptPoint)
            std::memset(preset.Params[0].value.bytes + 4, 0x77, 4);   // bytes without meaning are not written
        RoundTrip(preset, &loaded, &text);
        EXPECT_NE(text.find(std::string("    ") + c.second + "\n"), std::string::npos) << text;
    }
}

TEST_F(PresetSerializerTest, ReadsEachValueByTheRulesOfItsType)
{
    const std::pair<const char*, EffectParam> cases[] = {
        {"type=\"2\" value=\"0.700000\"", Float(0.7f)},
        {"type=\"0\" x=\"1.5\" y=\"-2\"", Point(1.5f, -2.0f)},
        {"x=\"3\" y=\"4\"", Point(3.0f, 4.0f)},                          // no type: a point
        {"type=\"1\" value=\" -34abc\"", Integer(-34)},                  // the leading number
        {"type=\"1\" value=\"0x10\"", Integer(0)},
        {"type=\"3\" value=\"-2147483648\"", Integer(INT_MIN, eptInteger2)},
        {"type=\"3\" value=\"2147483648\"", Integer(0, eptInteger2)},    // beyond 32 bits
        {"type=\"1\"", Integer(0)},
        {"type=\"4\" value=\"-3\"", Bool(1)},
        {"type=\"4\" value=\"yes\"", Bool(0)},
        {"type=\"2\" value=\"-NAN(123)\"", Float(0.0f)},                 // no parameter holds these
        {"type=\"2\" value=\"-infinity\"", Float(0.0f)},
        {"type=\"2\" value=\"3.5e38\"", Float(0.0f)},                    // beyond a float
        {"type=\"2\" value=\"3e38\"", Float(3e38f)},
        {"type=\"0\" x=\"nan\" y=\"7\"", Point(0.0f, 7.0f)},
        {"type=\"77\" value=\"9\" x=\"1\"", Typed(77)},                  // other types read nothing
        {"type=\"-1\" value=\"9\"", Typed(0xFFFFFFFFu)},
        {"type=\"99999999999\" value=\"9\"", Point(0.0f, 0.0f)},         // a type beyond 32 bits is 0
    };
    for (const auto& c : cases) {
        CEffectPreset preset = Untouched();
        ASSERT_TRUE(LoadText(PresetWith(std::string("<parameter ") + c.first + " />"), &preset)) << c.first;
        EXPECT_EQ(preset.nCount, 1);
        EXPECT_TRUE(SameBytes(preset.Params[0], c.second)) << c.first;
        EXPECT_EQ(preset.Params[1].dwType, 0xA5A5A5A5u) << "records past the count are left alone";
    }
}

TEST_F(PresetSerializerTest, CountsSiblingsAfterTheFirstParameterAndHoldsTheCountToAHundred)
{
    CEffectPreset preset = Untouched();
    ASSERT_TRUE(LoadText(PresetWith("<other value=\"1\" /><parameter type=\"2\" value=\"0.5\" />"
                                    "<other value=\"3\" /><!-- note --><parameter type=\"4\" value=\"1\" />"),
                         &preset));
    ASSERT_EQ(preset.nCount, 3);
    EXPECT_TRUE(SameBytes(preset.Params[0], Float(0.5f)));
    EXPECT_TRUE(SameBytes(preset.Params[1], Point(0.0f, 0.0f)));
    EXPECT_TRUE(SameBytes(preset.Params[2], Bool(1)));

    std::string parameters;
    for (int index = 0; index < 101; ++index)
        parameters += "<parameter type=\"1\" value=\"" + std::to_string(index) + "\"/>";
    ASSERT_TRUE(LoadText(PresetWith(parameters), &preset));
    ASSERT_EQ(preset.nCount, 100);
    EXPECT_EQ(preset.Params[99].value.nValue, 99);

    // Saving: no more than a hundred, and nothing for a negative count.
    for (int32_t count : {-1, 0, 101}) {
        const int written = std::max(0, std::min(count, 100));
        preset = Record("n", "l", "e", {});
        for (int index = 0; index < kPresetMaxParams; ++index)
            preset.Params[index] = Integer(index);
        preset.nCount = count;
        CEffectPreset loaded;
        std::string text;
        EXPECT_EQ(RoundTrip(preset, &loaded, &text), written > 0);
        EXPECT_EQ(loaded.nCount, written);
        size_t elements = 0;
        for (size_t at = text.find("<parameter"); at != std::string::npos; at = text.find("<parameter", at + 1))
            ++elements;
        EXPECT_EQ(elements, static_cast<size_t>(written)) << count;
    }

    // Get appends behind the records in use, within the hundred.
    TiXmlDocument document;
    document.Parse(PresetWith("<parameter type=\"1\" value=\"5\"/><parameter type=\"1\" value=\"6\"/>").c_str());
    TiXmlElement* root = document.FirstChildElement("Preset");
    ASSERT_NE(root, nullptr);
    const int32_t counts[][2] = {{0, 2}, {1, 3}, {-5, 2}, {5000, 100}, {99, 100}};
    for (const auto& count : counts) {
        preset = Untouched();
        preset.nCount = count[0];
        EXPECT_TRUE(CPresetSerializer::Get(root, &preset, nullptr));
        EXPECT_EQ(preset.nCount, count[1]) << count[0];
    }
    EXPECT_EQ(preset.Params[99].value.nValue, 5);
    EXPECT_EQ(preset.Params[0].dwType, 0xA5A5A5A5u);
}

// Random records, names of every length up to the field's, with what XML must escape, and floats
// both exact in six decimals and of any bit pattern: each value comes back as its text says.
TEST_F(PresetSerializerTest, RoundTripsRandomRecords)
{
    std::mt19937 random(20240611);
    const std::vector<std::string> pieces = {"a", " ", "&", "<", ">", "\"", "'", "&amp;", "\t", "\n", "\r",
                                             "\x01", "\xc3\xa9", "\xe2\x82\xac", "\xf0\x9f\x93\xb7", "]]>"};
    auto randomName = [&](size_t length) {
        std::string name;
        for (const std::string* piece = &pieces[random() % pieces.size()]; name.size() + piece->size() <= length;
             piece = &pieces[random() % pieces.size()])
            name += *piece;
        return name.append(length - name.size(), 'x');   // exactly `length` bytes
    };
    const float special[] = {0.7f, 1.0f / 3, -1e-7f, FLT_MAX, FLT_MIN, 16777217.0f, -0.0f, NAN, -INFINITY};
    auto randomFloat = [&] {
        const uint32_t bits = static_cast<uint32_t>(random());
        float value;
        std::memcpy(&value, &bits, sizeof value);
        switch (random() % 3) {
        case 0: return special[random() % (sizeof special / sizeof special[0])];
        case 1: return static_cast<float>(static_cast<int32_t>(bits % (1u << 25)) - (1 << 24)) / 64.0f;   // exact
        default: return value;
        }
    };
    for (int round = 0; round < 200; ++round) {
        CEffectPreset preset =
            Record(randomName(round % 3 == 0 ? 259 : random() % 260), randomName(259), randomName(random() % 40), {});
        CEffectPreset expected = preset;
        const int count = round == 0 ? 100 : 1 + static_cast<int>(random() % 100);
        for (int index = 0; index < count; ++index) {
            const float x = randomFloat(), y = randomFloat();
            const int32_t n = static_cast<int32_t>(random());
            const EffectParam choices[] = {Point(x, y), Integer(n), Float(x), Integer(n, eptInteger2), Bool(n & 1),
                                           Typed(6 + static_cast<uint32_t>(n) % 1000)};
            preset.Params[index] = choices[random() % 6];
            const EffectParam& in = preset.Params[index];
            expected.Params[index] = in.dwType == eptPoint ? Point(ThroughText(x), ThroughText(y))
                                     : in.dwType == eptFloat ? Float(ThroughText(x))
                                                             : in;
        }
        preset.nCount = expected.nCount = count;
        CEffectPreset loaded;
        ASSERT_TRUE(RoundTrip(preset, &loaded)) << round;
        EXPECT_TRUE(SameInUse(loaded, expected)) << round;
    }
}

TEST_F(PresetSerializerTest, CutsNamesToTheirFieldsAtWholeCharacters)
{
    const std::string e = "\xc3\xa9", euro = "\xe2\x82\xac";
    std::string es;   // 200 of them
    for (int count = 0; count < 200; ++count)
        es += e;
    const std::pair<std::string, std::string> cases[] = {
        {std::string(260, 'x'), std::string(259, 'x')},
        {es, es.substr(0, 258)},
        {std::string(257, 'x') + euro, std::string(257, 'x')},
        {std::string(256, 'x') + euro, std::string(256, 'x') + euro},
        {"a\xff" "b\xc3(", "a?b?("},                   // bytes that begin no character
        {"\xed\xa0\x80\xc0\xaf", "?????"},             // nor a surrogate, nor an overlong form
        {"&lt;&amp;&quot;&#xE9;", "<&\"" + e},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.first.substr(0, 20) + " of " + std::to_string(c.first.size()));
        CEffectPreset preset = Untouched();
        ASSERT_TRUE(LoadText("<?xml version=\"1.0\" ?><Preset Name=\"" + c.first + "\" LibraryName=\"" + c.first +
                                 "\"><parameter type=\"1\" value=\"1\"/></Preset>",
                             &preset));
        EXPECT_EQ(std::string(preset.Name), c.second);
        EXPECT_EQ(std::string(preset.LibraryName), c.second);
        EXPECT_EQ(std::string(preset.EffectName), "") << "a missing attribute is an empty name";
        EXPECT_EQ(std::string(preset.Name + c.second.size(), preset.Name + sizeof preset.Name),
                  std::string(sizeof preset.Name - c.second.size(), '\0'))
            << "the rest of the field is zeroed";
    }

    // On saving: a field filled to its last byte, and bytes that would break the file's text.
    CEffectPreset preset = Record("", "abc\xc3", "\xff\xfe", {Integer(1)});   // a lead byte would take the quote
    std::memset(preset.Name, 'n', sizeof preset.Name);
    CEffectPreset loaded;
    ASSERT_TRUE(RoundTrip(preset, &loaded));
    EXPECT_EQ(std::string(loaded.Name), std::string(259, 'n'));
    EXPECT_STREQ(loaded.LibraryName, "abc?");
    EXPECT_STREQ(loaded.EffectName, "??");

    // The largest file this system writes loads, well within the size limit.
    preset = Record(std::string(259, '\x01'), std::string(259, '"'), std::string(259, '&'), {});
    for (int index = 0; index < kPresetMaxParams; ++index)
        preset.Params[index] = Point(-FLT_MAX, -FLT_MAX);
    preset.nCount = kPresetMaxParams;
    std::string text;
    ASSERT_TRUE(RoundTrip(preset, &loaded, &text));
    EXPECT_LT(text.size(), CPresetSerializer::kMaxFileBytes / 3 * 2);
    EXPECT_TRUE(SameBytes(loaded, preset));
}

// A save renames a whole new file over the old one, so a write that fails halfway can't leave
// half a file; nothing is written for arguments it can't use.
TEST_F(PresetSerializerTest, SavePutsANewFileInTheOldOnesPlaceAndRefusesWhatItCantUse)
{
    const std::string path = files.Write("old.fxpunka", "old");
    struct stat before, after;
    ASSERT_EQ(stat(path.c_str(), &before), 0);
    CEffectPreset preset = Record("n", "l", "e", {Integer(1)});
    ASSERT_TRUE(serializer.Save(path.c_str(), &preset));
    ASSERT_EQ(stat(path.c_str(), &after), 0);
    EXPECT_NE(after.st_ino, before.st_ino);

    // What a save may do to a directory or a missing folder is the whole-file tests' concern.
    EXPECT_FALSE(serializer.Save(files.Path("missing/dir/p.fxpunka").c_str(), &preset));
    EXPECT_FALSE(serializer.Save(nullptr, &preset));
    EXPECT_FALSE(serializer.Save("", &preset));
    EXPECT_FALSE(serializer.Save(files.Path("p.fxpunka").c_str(), nullptr));
    EXPECT_FALSE(std::filesystem::exists(files.Path("p.fxpunka")));

    preset = Untouched();
    EXPECT_FALSE(serializer.Load(path.c_str(), nullptr));
    EXPECT_FALSE(serializer.Load(nullptr, &preset));
    EXPECT_FALSE(serializer.Load("", &preset));
    EXPECT_EQ(CPresetSerializer::Add(nullptr, &preset, nullptr), 0);
    EXPECT_FALSE(CPresetSerializer::Get(nullptr, &preset, nullptr));
    TiXmlElement element("Preset");
    EXPECT_EQ(CPresetSerializer::Add(&element, nullptr, nullptr), 0);
    EXPECT_FALSE(CPresetSerializer::Get(&element, nullptr, nullptr));
    EXPECT_TRUE(SameBytes(preset, Untouched()));
}

} // namespace
