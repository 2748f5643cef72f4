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
    EXPECT_NE(text.find("<Preset Name=\"Nothing\" LibraryName=\"L\" EffectName=\"E\" />\n"), std::string::npos)
        << text;

    struct Case {
        EffectParam parameter;
        const char* line;
    };
    const Case cases[] = {
        {Point(1.5f, -2.0f), "<parameter type=\"0\" x=\"1.500000\" y=\"-2.000000\" />"},
        {Integer(-7), "<parameter type=\"1\" value=\"-7\" />"},
        {Float(-1e-7f), "<parameter type=\"2\" value=\"-0.000000\" />"},
        {Integer(INT_MIN, eptInteger2), "<parameter type=\"3\" value=\"-2147483648\" />"},
        {Bool(7), "<parameter type=\"4\" value=\"1\" />"},
        {Bool(0), "<parameter type=\"4\" value=\"0\" />"},
        {Typed(eptNone), "<parameter type=\"5\" />"},
        {Typed(0xFFFFFFFFu), "<parameter type=\"-1\" />"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line);
        CEffectPreset preset = Record("n", "l", "e", {c.parameter});
        if (c.parameter.dwType != eptPoint)
            std::memset(preset.Params[0].value.bytes + 4, 0x77, 4);   // bytes without meaning are not written
        text.clear();
        RoundTrip(preset, &loaded, &text);
        EXPECT_NE(text.find(std::string("    ") + c.line + "\n"), std::string::npos) << text;
    }
}

TEST_F(PresetSerializerTest, ReadsEachValueByTheRulesOfItsType)
{
    struct Case {
        const char* element;
        EffectParam expected;
    };
    const Case cases[] = {
        {"<parameter type=\"2\" value=\"0.25\" />", Float(0.25f)},
        {"<parameter type=\"2\" value=\"0.700000\" />", Float(0.7f)},
        {"<parameter type=\"0\" x=\"1.5\" y=\"-2\" />", Point(1.5f, -2.0f)},
        {"<parameter x=\"3\" y=\"4\" />", Point(3.0f, 4.0f)},                   // no type: a point
        {"<parameter type=\"0\" />", Point(0.0f, 0.0f)},
        {"<parameter type=\"1\" value=\"12abc\" />", Integer(12)},               // the leading number
        {"<parameter type=\"1\" value=\" -34\" />", Integer(-34)},
        {"<parameter type=\"1\" value=\"abc\" />", Integer(0)},
        {"<parameter type=\"1\" value=\"0x10\" />", Integer(0)},
        {"<parameter type=\"3\" value=\"-2147483648\" />", Integer(INT_MIN, eptInteger2)},
        {"<parameter type=\"3\" value=\"2147483648\" />", Integer(0, eptInteger2)},   // beyond 32 bits
        {"<parameter type=\"1\" value=\"99999999999999999999999\" />", Integer(0)},
        {"<parameter type=\"1\" />", Integer(0)},
        {"<parameter type=\"4\" value=\"-3\" />", Bool(1)},
        {"<parameter type=\"4\" value=\"0\" />", Bool(0)},
        {"<parameter type=\"4\" value=\"yes\" />", Bool(0)},
        {"<parameter type=\"2\" value=\"nan\" />", Float(0.0f)},                // no parameter holds these
        {"<parameter type=\"2\" value=\"-NAN(123)\" />", Float(0.0f)},
        {"<parameter type=\"2\" value=\"inf\" />", Float(0.0f)},
        {"<parameter type=\"2\" value=\"-infinity\" />", Float(0.0f)},
        {"<parameter type=\"2\" value=\"1e999\" />", Float(0.0f)},
        {"<parameter type=\"2\" value=\"3.5e38\" />", Float(0.0f)},             // beyond a float
        {"<parameter type=\"2\" value=\"3e38\" />", Float(3e38f)},
        {"<parameter type=\"2\" value=\"1e-300\" />", Float(0.0f)},
        {"<parameter type=\"0\" x=\"nan\" y=\"7\" />", Point(0.0f, 7.0f)},
        {"<parameter type=\"2\" value=\"0.5xyz\" />", Float(0.5f)},
        {"<parameter type=\"2\" value=\"\" />", Float(0.0f)},
        {"<parameter type=\"5\" value=\"9\" />", Typed(eptNone)},               // other types read nothing
        {"<parameter type=\"77\" value=\"9\" x=\"1\" />", Typed(77)},
        {"<parameter type=\"-1\" value=\"9\" />", Typed(0xFFFFFFFFu)},
        {"<parameter type=\"99999999999\" value=\"9\" />", Point(0.0f, 0.0f)},  // a type beyond 32 bits is 0
        {"<parameter type=\"two\" value=\"9\" />", Point(0.0f, 0.0f)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.element);
        CEffectPreset preset = Untouched();
        ASSERT_TRUE(LoadText(PresetWith(c.element), &preset));
        EXPECT_EQ(preset.nCount, 1);
        EXPECT_TRUE(SameBytes(preset.Params[0], c.expected));
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

    for (int elements : {99, 100, 101, 1000}) {
        std::string parameters;
        for (int index = 0; index < elements; ++index)
            parameters += index <= 100 ? "<parameter type=\"1\" value=\"" + std::to_string(index) + "\"/>" : "<x/>";
        preset = Untouched();
        ASSERT_TRUE(LoadText(PresetWith(parameters), &preset)) << elements;
        ASSERT_EQ(preset.nCount, std::min(elements, 100));
        EXPECT_EQ(preset.Params[preset.nCount - 1].value.nValue, preset.nCount - 1);
    }

    // Saving: no more than a hundred, and nothing for a negative count.
    for (int32_t count : {-1, INT_MIN, 0, 100, 101, INT_MAX}) {
        SCOPED_TRACE(count);
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
        EXPECT_EQ(elements, static_cast<size_t>(written));
    }

    // Get appends behind the records in use, within the hundred.
    TiXmlDocument document;
    document.Parse(PresetWith("<parameter type=\"1\" value=\"5\"/><parameter type=\"1\" value=\"6\"/>").c_str());
    TiXmlElement* root = document.FirstChildElement("Preset");
    ASSERT_NE(root, nullptr);
    const int32_t counts[][2] = {{0, 2}, {1, 3}, {99, 100}, {100, 100}, {-5, 2}, {INT_MIN, 2}, {5000, 100}};
    for (const auto& count : counts) {
        preset = Untouched();
        preset.nCount = count[0];
        EXPECT_TRUE(CPresetSerializer::Get(root, &preset, nullptr));
        EXPECT_EQ(preset.nCount, count[1]) << count[0];
    }
    preset = Untouched();
    preset.nCount = 1;
    CPresetSerializer::Get(root, &preset, nullptr);
    EXPECT_EQ(preset.Params[1].value.nValue, 5);
    EXPECT_EQ(preset.Params[0].dwType, 0xA5A5A5A5u);
}

// Random records, names of every length up to the field's, with what XML must escape, and floats
// both exact in six decimals and of any bit pattern: each value comes back as its text says.
TEST_F(PresetSerializerTest, RoundTripsRandomRecords)
{
    std::mt19937 random(20240611);
    const std::vector<std::string> pieces = {"a", "Z", " ", "&", "<", ">", "\"", "'", "&#x41;", "&amp;", "\t",
                                             "\n", "\r", "\x01", "\x1f", "\xc3\xa9", "\xe2\x82\xac",
                                             "\xf0\x9f\x93\xb7", "]]>", "=", "/"};
    auto randomName = [&](size_t length) {
        std::string name;
        for (const std::string* piece = &pieces[random() % pieces.size()]; name.size() + piece->size() <= length;
             piece = &pieces[random() % pieces.size()])
            name += *piece;
        return name.append(length - name.size(), 'x');   // exactly `length` bytes
    };
    auto randomFloat = [&] {
        if (random() % 2)   // multiples of 1/64 up to 2^18: six decimals hold them exactly
            return static_cast<float>(static_cast<int32_t>(random() % (1u << 25)) - (1 << 24)) / 64.0f;
        const uint32_t bits = static_cast<uint32_t>(random());
        float value;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    };
    const float special[] = {0.7f, 0.2f, 1.0f / 3, 1e-7f, -1e-7f, FLT_MAX, -FLT_MAX,
                             FLT_MIN, 16777217.0f, -0.0f, NAN, INFINITY, -INFINITY};
    const size_t kSpecial = sizeof special / sizeof special[0];
    for (int round = 0; round < 200; ++round) {
        SCOPED_TRACE(round);
        CEffectPreset preset =
            Record(randomName(round % 3 == 0 ? 259 : random() % 260), randomName(259), randomName(random() % 40), {});
        CEffectPreset expected = preset;
        const int count = round <= 1 ? 100 : 1 + static_cast<int>(random() % 100);
        for (int index = 0; index < count; ++index) {
            const bool pinned = round == 1 && static_cast<size_t>(index) < 2 * kSpecial;   // each as point and float
            const float x = pinned ? special[index / 2] : randomFloat(), y = pinned ? -x : randomFloat();
            switch (pinned ? index % 2 * 2 : random() % 7) {
            case 0: preset.Params[index] = Point(x, y); break;
            case 1: preset.Params[index] = Integer(static_cast<int32_t>(random())); break;
            case 2: preset.Params[index] = Float(x); break;
            case 3: preset.Params[index] = Integer(static_cast<int32_t>(random()), eptInteger2); break;
            case 4: preset.Params[index] = Bool(random() % 2); break;
            case 5: preset.Params[index] = Typed(eptNone); break;
            default: preset.Params[index] = Typed(6 + random() % 1000); break;
            }
            const EffectParam& in = preset.Params[index];
            expected.Params[index] = in.dwType == eptPoint ? Point(ThroughText(in.value.ptValue.x),
                                                                   ThroughText(in.value.ptValue.y))
                                     : in.dwType == eptFloat ? Float(ThroughText(in.value.fValue))
                                                             : in;
        }
        preset.nCount = expected.nCount = count;
        CEffectPreset loaded;
        ASSERT_TRUE(RoundTrip(preset, &loaded));
        EXPECT_TRUE(SameInUse(loaded, expected));
    }
}

TEST_F(PresetSerializerTest, CutsNamesToTheirFieldsAtWholeCharacters)
{
    const std::string e = "\xc3\xa9";       // 2 bytes
    const std::string euro = "\xe2\x82\xac";  // 3 bytes
    auto times = [](const std::string& piece, int count) {
        std::string text;
        while (count-- > 0)
            text += piece;
        return text;
    };
    struct Case {
        std::string attribute;
        std::string expected;
    };
    const Case cases[] = {
        {std::string(259, 'x'), std::string(259, 'x')},
        {std::string(260, 'x'), std::string(259, 'x')},
        {std::string(5000, 'x'), std::string(259, 'x')},
        {times(e, 200), times(e, 129)},
        {std::string(257, 'x') + euro, std::string(257, 'x')},
        {std::string(256, 'x') + euro, std::string(256, 'x') + euro},
        {"a\xff" "b", "a?b"},                       // bytes that begin no character
        {"\xc3(", "?("},
        {"\xed\xa0\x80", "???"},                   // a surrogate is no character
        {"\xc0\xaf", "??"},                         // nor an overlong form
        {"&lt;&amp;&quot;", "<&\""},
        {"&#xE9;", e},
        {"", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.attribute.substr(0, 20) + " of " + std::to_string(c.attribute.size()));
        CEffectPreset preset = Untouched();
        ASSERT_TRUE(LoadText("<?xml version=\"1.0\" ?><Preset Name=\"" + c.attribute + "\" LibraryName=\"" +
                                 c.attribute + "\"><parameter type=\"1\" value=\"1\"/></Preset>",
                             &preset));
        EXPECT_EQ(std::string(preset.Name), c.expected);
        EXPECT_EQ(std::string(preset.LibraryName), c.expected);
        EXPECT_EQ(std::string(preset.EffectName), "") << "a missing attribute is an empty name";
        EXPECT_EQ(std::string(preset.Name + c.expected.size(), preset.Name + sizeof preset.Name),
                  std::string(sizeof preset.Name - c.expected.size(), '\0'))
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
// half a file (the renaming itself is the whole-file tests' concern).
TEST_F(PresetSerializerTest, SavePutsANewFileInTheOldOnesPlace)
{
    const std::string path = files.Write("old.fxpunka", "old");
    struct stat before, after;
    ASSERT_EQ(stat(path.c_str(), &before), 0);
    CEffectPreset preset = Record("n", "l", "e", {Integer(1)});
    ASSERT_TRUE(serializer.Save(path.c_str(), &preset));
    ASSERT_EQ(stat(path.c_str(), &after), 0);
    EXPECT_NE(after.st_ino, before.st_ino);
}

TEST_F(PresetSerializerTest, RefusesNullAndUnwritableArgumentsWritingNothing)
{
    CEffectPreset preset = Record("n", "l", "e", {Integer(1)});
    EXPECT_FALSE(serializer.Save(files.Path("missing/dir/p.fxpunka").c_str(), &preset));
    EXPECT_FALSE(serializer.Save(nullptr, &preset));
    EXPECT_FALSE(serializer.Save("", &preset));
    EXPECT_FALSE(serializer.Save(files.Path("p.fxpunka").c_str(), nullptr));
    EXPECT_FALSE(serializer.Save(std::string(5000, 'p').c_str(), &preset));
    const std::string directory = files.Path("taken.fxpunka");   // stays as it was
    std::filesystem::create_directory(directory);
    files.Write("taken.fxpunka/inside", "kept");
    EXPECT_FALSE(serializer.Save(directory.c_str(), &preset));
    EXPECT_EQ(ReadFile(directory + "/inside"), "kept");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(files.Root()), std::filesystem::directory_iterator()),
              1)
        << "no temporary file stays behind";

    preset = Untouched();
    const std::string path = files.Write("p.fxpunka", PresetWith("<parameter type=\"1\" value=\"1\"/>"));
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
