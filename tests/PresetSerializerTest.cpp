#include <gtest/gtest.h>

#include <tinyxml.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
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

    // Saves and loads `preset` through a file; the loaded record starts from a pattern, so
    // what the load didn't write shows.
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
        const std::string path = files.Write("preset.fxpunka", text);
        return serializer.Load(path.c_str(), preset);
    }

    TempDirectory files;
    CPresetSerializer serializer;
};

std::string PresetWith(const std::string& parameters)
{
    return "<Preset Name=\"n\" LibraryName=\"l\" EffectName=\"e\">" + parameters + "</Preset>";
}

// The value a float has after the file: its "%f" text read back and narrowed.
float ThroughText(float value)
{
    char text[64];
    std::snprintf(text, sizeof text, "%f", static_cast<double>(value));
    return static_cast<float>(std::strtod(text, nullptr));
}

TEST_F(PresetSerializerTest, SavesTheSevenLinesOfAPresetFile)
{
    CEffectPreset preset =
        Record("Fine Tune", kLibraryName, kEffectName, {Float(0.7f), Float(0.2f), Bool(1)});
    const std::string path = files.Path("fine.fxpunka");
    ASSERT_TRUE(serializer.Save(path.c_str(), &preset));
    EXPECT_EQ(ReadFile(path), kFineTuneFile);

    CEffectPreset empty = Record("Nothing", "L", "E", {});
    ASSERT_TRUE(serializer.Save(path.c_str(), &empty));
    const std::string text = ReadFile(path);
    EXPECT_NE(text.find("<Preset Name=\"Nothing\" LibraryName=\"L\" EffectName=\"E\" />\n"), std::string::npos)
        << text;
}

TEST_F(PresetSerializerTest, WritesEachTypeInItsOwnForm)
{
    struct Case {
        EffectParam parameter;
        const char* line;
    };
    const Case cases[] = {
        {Point(1.5f, -2.0f), "<parameter type=\"0\" x=\"1.500000\" y=\"-2.000000\" />"},
        {Integer(-7), "<parameter type=\"1\" value=\"-7\" />"},
        {Float(0.7f), "<parameter type=\"2\" value=\"0.700000\" />"},
        {Float(-1e-7f), "<parameter type=\"2\" value=\"-0.000000\" />"},
        {Integer(INT_MIN, eptInteger2), "<parameter type=\"3\" value=\"-2147483648\" />"},
        {Bool(7), "<parameter type=\"4\" value=\"1\" />"},
        {Bool(0), "<parameter type=\"4\" value=\"0\" />"},
        {Typed(eptNone), "<parameter type=\"5\" />"},
        {Typed(0xFFFFFFFFu), "<parameter type=\"-1\" />"},
    };
    for (const Case& c : cases) {
        CEffectPreset preset = Record("n", "l", "e", {c.parameter});
        std::memset(preset.Params[0].value.bytes + 4, 0x77, 4);   // bytes without meaning are not written
        if (c.parameter.dwType == eptPoint)
            preset.Params[0].value.ptValue.y = c.parameter.value.ptValue.y;
        const std::string path = files.Path("types.fxpunka");
        ASSERT_TRUE(serializer.Save(path.c_str(), &preset));
        EXPECT_NE(ReadFile(path).find(std::string("    ") + c.line + "\n"), std::string::npos) << c.line;
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
        {"<parameter type=\"2\" value=\"0.200000\" />", Float(0.2f)},
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
        {"<parameter type=\"4\" value=\"1\" />", Bool(1)},
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
        CEffectPreset preset = Untouched();
        ASSERT_TRUE(LoadText(PresetWith(c.element), &preset)) << c.element;
        EXPECT_EQ(preset.nCount, 1) << c.element;
        EXPECT_TRUE(SameBytes(preset.Params[0], c.expected)) << c.element;
        EXPECT_EQ(preset.Params[1].dwType, 0xA5A5A5A5u) << "records past the count are left alone";
    }
}

TEST_F(PresetSerializerTest, CountsSiblingsAfterTheFirstParameterAndStopsAtAHundred)
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
}

TEST_F(PresetSerializerTest, SavesNoMoreThanAHundredAndNothingForANegativeCount)
{
    struct Case {
        int32_t count;
        int written;
    };
    for (const Case& c : {Case{-1, 0}, Case{INT_MIN, 0}, Case{0, 0}, Case{100, 100}, Case{101, 100},
                          Case{INT_MAX, 100}}) {
        CEffectPreset preset = Record("n", "l", "e", {});
        for (int index = 0; index < kPresetMaxParams; ++index)
            preset.Params[index] = Integer(index);
        preset.nCount = c.count;
        CEffectPreset loaded;
        std::string text;
        EXPECT_EQ(RoundTrip(preset, &loaded, &text), c.written > 0) << c.count;
        EXPECT_EQ(loaded.nCount, c.written) << c.count;
        size_t elements = 0;
        for (size_t at = text.find("<parameter"); at != std::string::npos; at = text.find("<parameter", at + 1))
            ++elements;
        EXPECT_EQ(elements, static_cast<size_t>(c.written)) << c.count;
    }
}

TEST_F(PresetSerializerTest, RoundTripsRandomRecordsWithEveryBitOfEveryValue)
{
    std::mt19937 random(20240611);
    // Texts with characters of every width, what XML must escape, control characters and an
    // entity written as text.
    const std::vector<std::string> pieces = {"a", "Z", " ", "&", "<", ">", "\"", "'", "&#x41;", "&amp;", "\t",
                                             "\n", "\r", "\x01", "\x1f", "\xc3\xa9", "\xe2\x82\xac",
                                             "\xf0\x9f\x93\xb7", "]]>", "=", "/"};
    auto randomName = [&](size_t length) {
        std::string name;
        while (true) {
            const std::string& piece = pieces[random() % pieces.size()];
            if (name.size() + piece.size() > length)
                break;
            name += piece;
        }
        name.append(length - name.size(), 'x');   // exactly `length` bytes
        return name;
    };
    for (int round = 0; round < 150; ++round) {
        const size_t nameLength = round % 3 == 0 ? 259 : random() % 260;
        CEffectPreset preset = Record(randomName(nameLength), randomName(259), randomName(random() % 40), {});
        const int count = round == 0 ? 100 : 1 + static_cast<int>(random() % 100);
        for (int index = 0; index < count; ++index) {
            // Floats that six decimals hold exactly: multiples of 1/64 up to 2^18.
            auto exactFloat = [&] {
                return static_cast<float>(static_cast<int32_t>(random() % (1u << 25)) - (1 << 24)) / 64.0f;
            };
            switch (random() % 7) {
            case 0: preset.Params[index] = Point(exactFloat(), exactFloat()); break;
            case 1: preset.Params[index] = Integer(static_cast<int32_t>(random())); break;
            case 2: preset.Params[index] = Float(exactFloat()); break;
            case 3: preset.Params[index] = Integer(static_cast<int32_t>(random()), eptInteger2); break;
            case 4: preset.Params[index] = Bool(random() % 2); break;
            case 5: preset.Params[index] = Typed(eptNone); break;
            default: preset.Params[index] = Typed(6 + random() % 1000); break;
            }
        }
        preset.nCount = count;
        CEffectPreset loaded;
        ASSERT_TRUE(RoundTrip(preset, &loaded)) << round;
        EXPECT_STREQ(loaded.Name, preset.Name) << round;
        EXPECT_STREQ(loaded.LibraryName, preset.LibraryName) << round;
        EXPECT_STREQ(loaded.EffectName, preset.EffectName) << round;
        EXPECT_EQ(0, std::memcmp(loaded.Name, preset.Name, sizeof preset.Name)) << "zeroed behind the name";
        ASSERT_EQ(loaded.nCount, count);
        EXPECT_EQ(0, std::memcmp(loaded.Params, preset.Params, count * sizeof(EffectParam))) << round;
    }
}

TEST_F(PresetSerializerTest, FloatsKeepSixDecimals)
{
    std::mt19937 random(7);
    std::vector<float> values = {0.7f, 0.2f, 1.0f / 3.0f, 1e-7f, -1e-7f, FLT_MAX, -FLT_MAX, FLT_MIN, 123456.789f,
                                 16777217.0f, 0.0f, -0.0f};
    for (int index = 0; index < 200; ++index) {
        uint32_t bits = static_cast<uint32_t>(random());
        float value;
        std::memcpy(&value, &bits, sizeof value);
        if (std::isfinite(value))
            values.push_back(value);
    }
    // A hundred values to a file, each as a float and as a point.
    for (size_t first = 0; first < values.size(); first += 50) {
        CEffectPreset preset = Record("n", "l", "e", {});
        for (size_t index = first; index < values.size() && index < first + 50; ++index) {
            preset.Params[preset.nCount++] = Float(values[index]);
            preset.Params[preset.nCount++] = Point(values[index], -values[index]);
        }
        CEffectPreset loaded;
        ASSERT_TRUE(RoundTrip(preset, &loaded));
        ASSERT_EQ(loaded.nCount, preset.nCount);
        for (int index = 0; index < preset.nCount; index += 2) {
            const float value = preset.Params[index].value.fValue;
            EXPECT_EQ(Bits(loaded.Params[index].value.fValue), Bits(ThroughText(value))) << value;
            EXPECT_EQ(Bits(loaded.Params[index + 1].value.ptValue.x), Bits(ThroughText(value))) << value;
            EXPECT_EQ(Bits(loaded.Params[index + 1].value.ptValue.y), Bits(ThroughText(-value))) << value;
            EXPECT_NEAR(loaded.Params[index].value.fValue, value, 5e-7 + std::fabs(value) * 1e-7) << value;
        }
    }
    // Not a number and the infinities are written as they print but come back as 0.
    for (float odd : {NAN, INFINITY, -INFINITY}) {
        CEffectPreset loaded;
        ASSERT_TRUE(RoundTrip(Record("n", "l", "e", {Float(odd)}), &loaded));
        EXPECT_EQ(Bits(loaded.Params[0].value.fValue), 0u);
    }
}

TEST_F(PresetSerializerTest, CutsNamesToTheirFieldsAtWholeCharacters)
{
    const std::string e = "\xc3\xa9";       // 2 bytes
    const std::string euro = "\xe2\x82\xac";  // 3 bytes
    struct Case {
        std::string attribute;
        std::string expected;
    };
    const Case cases[] = {
        {std::string(259, 'x'), std::string(259, 'x')},
        {std::string(260, 'x'), std::string(259, 'x')},
        {std::string(5000, 'x'), std::string(259, 'x')},
        {[&] { std::string s; for (int i = 0; i < 200; ++i) s += e; return s; }(),
         [&] { std::string s; for (int i = 0; i < 129; ++i) s += e; return s; }()},
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
        CEffectPreset preset = Untouched();
        std::string file = "<?xml version=\"1.0\" ?><Preset Name=\"" + c.attribute + "\" LibraryName=\"" +
                           c.attribute + "\"><parameter type=\"1\" value=\"1\"/></Preset>";
        ASSERT_TRUE(LoadText(file, &preset)) << c.attribute.size();
        EXPECT_EQ(std::string(preset.Name), c.expected) << c.attribute.size();
        EXPECT_EQ(std::string(preset.LibraryName), c.expected);
        EXPECT_EQ(std::string(preset.EffectName), "") << "a missing attribute is an empty name";
        for (size_t at = c.expected.size(); at < sizeof preset.Name; ++at)
            ASSERT_EQ(preset.Name[at], '\0') << "the rest of the field is zeroed";
    }
}

TEST_F(PresetSerializerTest, SavesNamesThatTheFileCanGiveBack)
{
    // A field filled to the last byte, and names with bytes that would break the file's text.
    CEffectPreset preset = Record("", "", "", {Integer(1)});
    std::memset(preset.Name, 'n', sizeof preset.Name);
    std::strcpy(preset.LibraryName, "abc\xc3");   // the lead byte would take the closing quote along
    std::strcpy(preset.EffectName, "\xff\xfe");
    CEffectPreset loaded;
    ASSERT_TRUE(RoundTrip(preset, &loaded));
    EXPECT_EQ(std::string(loaded.Name), std::string(259, 'n'));
    EXPECT_STREQ(loaded.LibraryName, "abc?");
    EXPECT_STREQ(loaded.EffectName, "??");
}

TEST_F(PresetSerializerTest, TheLargestFileThisSystemWritesLoads)
{
    CEffectPreset preset = Record(std::string(259, '\x01'), std::string(259, '"'), std::string(259, '&'), {});
    for (int index = 0; index < kPresetMaxParams; ++index)
        preset.Params[index] = Point(-FLT_MAX, -FLT_MAX);
    preset.nCount = kPresetMaxParams;
    CEffectPreset loaded;
    std::string text;
    ASSERT_TRUE(RoundTrip(preset, &loaded, &text));
    EXPECT_LT(text.size(), CPresetSerializer::kMaxFileBytes / 3 * 2);
    EXPECT_EQ(0, std::memcmp(&loaded, &preset, sizeof preset));
}

TEST_F(PresetSerializerTest, RefusesWhatCantBeWrittenAndKeepsTheOldFile)
{
    CEffectPreset preset = Record("n", "l", "e", {Integer(1)});
    EXPECT_FALSE(serializer.Save(files.Path("missing/dir/p.fxpunka").c_str(), &preset));
    EXPECT_FALSE(serializer.Save(nullptr, &preset));
    EXPECT_FALSE(serializer.Save("", &preset));
    EXPECT_FALSE(serializer.Save(files.Path("p.fxpunka").c_str(), nullptr));
    EXPECT_FALSE(serializer.Save(std::string(5000, 'p').c_str(), &preset));

    // A directory where the file should go stays as it was.
    const std::string directory = files.Path("taken.fxpunka");
    std::filesystem::create_directory(directory);
    files.Write("taken.fxpunka/inside", "kept");
    EXPECT_FALSE(serializer.Save(directory.c_str(), &preset));
    EXPECT_EQ(ReadFile(directory + "/inside"), "kept");
    size_t entries = 0;
    for (const auto& entry : std::filesystem::directory_iterator(files.Root())) {
        (void)entry;
        ++entries;
    }
    EXPECT_EQ(entries, 1u) << "no temporary file stays behind";
}

TEST_F(PresetSerializerTest, NullArgumentsAreRefused)
{
    CEffectPreset preset = Untouched();
    const std::string path = files.Write("p.fxpunka", PresetWith("<parameter type=\"1\" value=\"1\"/>"));
    EXPECT_FALSE(serializer.Load(path.c_str(), nullptr));
    EXPECT_FALSE(serializer.Load(nullptr, &preset));
    EXPECT_FALSE(serializer.Load("", &preset));
    EXPECT_TRUE(SameBytes(preset, Untouched()));
    EXPECT_EQ(CPresetSerializer::Add(nullptr, &preset, nullptr), 0);
    EXPECT_FALSE(CPresetSerializer::Get(nullptr, &preset, nullptr));
    TiXmlElement element("Preset");
    EXPECT_EQ(CPresetSerializer::Add(&element, nullptr, nullptr), 0);
    EXPECT_FALSE(CPresetSerializer::Get(&element, nullptr, nullptr));
    EXPECT_TRUE(SameBytes(preset, Untouched()));
}

TEST_F(PresetSerializerTest, GetAppendsBehindTheUsedRecordsAndHoldsTheCount)
{
    TiXmlDocument document;
    document.Parse(PresetWith("<parameter type=\"1\" value=\"5\"/><parameter type=\"1\" value=\"6\"/>").c_str());
    TiXmlElement* root = document.FirstChildElement("Preset");
    ASSERT_NE(root, nullptr);
    struct Case {
        int32_t countBefore;
        int32_t countAfter;
    };
    for (const Case& c : {Case{0, 2}, Case{1, 3}, Case{99, 100}, Case{100, 100}, Case{-5, 2}, Case{INT_MIN, 2},
                          Case{5000, 100}}) {
        CEffectPreset preset = Untouched();
        preset.nCount = c.countBefore;
        EXPECT_TRUE(CPresetSerializer::Get(root, &preset, nullptr));
        EXPECT_EQ(preset.nCount, c.countAfter) << c.countBefore;
        if (c.countBefore == 1) {
            EXPECT_EQ(preset.Params[1].value.nValue, 5);
            EXPECT_EQ(preset.Params[0].dwType, 0xA5A5A5A5u);
        }
    }
}

} // namespace
