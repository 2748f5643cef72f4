#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <string>

#include "../Common/PresetSaver.h"
#include "../Common/PresetSerializer.h"
#include "../DeglarerPro/Deglarer.h"
#include "../DeglarerPro/DeglarerPro.h"
#include "../platform/HomeDirectory.h"
#include "../platform/UserInterface.h"
#include "PresetTestRecords.h"
#include "TempDirectory.h"

namespace {

using namespace PresetTest;
using TestSupport::ReadFile;
using TestSupport::TempDirectory;

const char kSaveFailedTitle[] = "Couldn't save preset";
const char kSaveFailedText[] = "An unexpected error occured. Your preset was unable to be saved.";
const char kLoadFailedTitle[] = "Couldn't load preset";
const char kLoadFailedText[] = "An unexpected error occured. The preset was unable to be loaded.";
const char kMismatchText[] = "The saved preset doesn't match the current version of the effect.";

// The effect's own parameters as a preset for it would hold them.
CEffectPreset EffectPreset(const std::string& name = "Mine")
{
    return Record(name, kLibraryName, kEffectName, {Float(0.7f), Float(0.2f), Bool(1)});
}

class PresetSaverTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(files.Made());
        previous = Platform::SetUserInterface(&ui);
        testing::internal::CaptureStdout();   // the headless alerts print
    }
    void TearDown() override
    {
        testing::internal::GetCapturedStdout();
        saver->Release();
        library->Release();
        Platform::SetUserInterface(previous);
    }

    // The saver's Save or Load with the panel answering `path` (none: it cancels); alerts start
    // afresh.
    int Save(CEffectPreset* preset, const std::string& path = "", IEffectLibrary* from = nullptr, unsigned effect = 0)
    {
        ui.ClearAlerts();
        ui.QueuePath(path);
        return saver->Save(nullptr, from != nullptr ? from : library, effect, preset, nullptr);
    }
    int Load(CEffectPreset* preset, const std::string& path = "", IEffectLibrary* from = nullptr)
    {
        ui.ClearAlerts();
        ui.QueuePath(path);
        return saver->Load(nullptr, from != nullptr ? from : library, 0, preset, nullptr);
    }

    // Exactly one alert was shown, with `title`, `text` and the one button "OK".
    void ExpectOneAlert(const char* title, const char* text)
    {
        ASSERT_EQ(ui.Alerts().size(), 1u);
        EXPECT_EQ(ui.Alerts()[0].title, title);
        EXPECT_EQ(ui.Alerts()[0].message, text);
        EXPECT_EQ(ui.Alerts()[0].buttons, std::vector<std::string>{"OK"});
    }

    TempDirectory files;
    Platform::HeadlessUserInterface ui;
    Platform::IUserInterface* previous = nullptr;
    CDeglarerPro* library = new CDeglarerPro();
    CPresetSaver* saver = new CPresetSaver();
};

TEST_F(PresetSaverTest, NamesTheFileTypeAfterLibraryAndEffect)
{
    struct Case {
        const char* library;
        unsigned int effect;
        const char* extension;
    };
    const Case cases[] = {
        {kLibraryName, 0, "fxpunka"}, {kLibraryName, 1, "fxpunkb"},  {kLibraryName, 25, "fxpunkz"},
        {kLibraryName, 26, "prs"},    {kLibraryName, UINT_MAX, "prs"}, {"tessarel deglarer pro", 0, "fxpunka"},
        {"", 2, "fxpunkc"},           {nullptr, 0, "prs"},           {nullptr, 7, "prs"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.library ? c.library : "null") + " " + std::to_string(c.effect));
        char out[CPresetSaver::kExtensionBufferSize + 8];
        std::memset(out, '#', sizeof out);
        CPresetSaver::GetEffectExtension(c.library, c.effect, out);
        EXPECT_STREQ(out, c.extension);
        EXPECT_EQ(std::string(out + CPresetSaver::kExtensionBufferSize, 8), "########");
    }
    CPresetSaver::GetEffectExtension(kLibraryName, 0, nullptr);
}

TEST_F(PresetSaverTest, SavesUnderTheLibraryAndEffectNamesAndLoadsItBack)
{
    // A cancelled panel, and no panel at all without a preset or a library: nothing changes.
    CEffectPreset preset = EffectPreset("Evening");
    std::strcpy(preset.LibraryName, "stale");
    std::memset(preset.EffectName, 'z', sizeof preset.EffectName);
    const CEffectPreset before = preset;
    EXPECT_EQ(Save(&preset), 1);
    EXPECT_TRUE(SameBytes(preset, before));
    EXPECT_EQ(saver->Save(nullptr, library, 0, nullptr, nullptr), 1);
    EXPECT_EQ(saver->Save(nullptr, nullptr, 0, &preset, nullptr), 1);
    EXPECT_EQ(saver->Load(nullptr, library, 0, nullptr, nullptr), 1);
    EXPECT_EQ(saver->Load(nullptr, nullptr, 0, &preset, nullptr), 1);
    ASSERT_EQ(ui.Panels().size(), 1u);
    EXPECT_TRUE(ui.Alerts().empty());

    const std::string path = files.Path("evening.fxpunka");
    ASSERT_EQ(Save(&preset, path), 0);
    EXPECT_EQ(std::string(preset.LibraryName, sizeof preset.LibraryName),
              kLibraryName + std::string(sizeof preset.LibraryName - std::strlen(kLibraryName), '\0'));
    EXPECT_EQ(std::string(preset.EffectName, sizeof preset.EffectName),
              kEffectName + std::string(sizeof preset.EffectName - std::strlen(kEffectName), '\0'));
    EXPECT_NE(ReadFile(path).find("<Preset Name=\"Evening\" LibraryName=\"Tessarel Deglarer Pro\" "
                                  "EffectName=\"Deglarer Pro\">"),
              std::string::npos);
    CEffectPreset loaded = Untouched();
    ASSERT_EQ(Load(&loaded, path), 0);
    EXPECT_TRUE(ui.Alerts().empty());
    EXPECT_STREQ(loaded.Name, "Evening");
    ASSERT_EQ(loaded.nCount, 3);
    EXPECT_EQ(0, std::memcmp(loaded.Params, preset.Params, 3 * sizeof(EffectParam)));

    // Both panels start in the home directory, filtered by the extension; the save panel offers
    // "MyPreset".
    ASSERT_EQ(ui.Panels().size(), 3u);
    for (size_t panel = 0; panel < 3; ++panel) {
        EXPECT_EQ(ui.Panels()[panel].save, panel < 2);
        EXPECT_EQ(ui.Panels()[panel].extension, "fxpunka");
        EXPECT_EQ(ui.Panels()[panel].directory, Platform::HomeDirectory());
    }
    EXPECT_FALSE(Platform::HomeDirectory().empty());
    EXPECT_EQ(ui.Panels()[0].defaultName, "MyPreset.fxpunka");
}

TEST_F(PresetSaverTest, RoundTripsEveryStockPresetThroughTheSaver)
{
    CDeglarer effect;
    for (unsigned int stock = 0; stock < CDeglarer::kPresetCount; ++stock) {
        SCOPED_TRACE(effect.EnumPreset(stock));
        CEffectPreset preset = Record(effect.EnumPreset(stock), "", "", {});
        CEffectPreset expected = Untouched();
        for (unsigned int index = 0; index < CDeglarer::kParamCount; ++index) {
            EffectParamSetup setup;
            std::memset(&setup, 0, sizeof setup);
            ASSERT_TRUE(effect.EnumParam(index, &setup));
            EffectParam& parameter = preset.Params[preset.nCount++];
            ASSERT_TRUE(effect.EnumPresetData(stock, index, &parameter));
            parameter.dwType = setup.dwType;
            expected.Params[index] = setup.dwType == eptFloat ? Float(ThroughText(parameter.value.fValue))
                                                               : Bool(parameter.value.bValue);
        }
        const std::string path = files.Path("stock" + std::to_string(stock) + ".fxpunka");
        ASSERT_EQ(Save(&preset, path), 0);
        CEffectPreset loaded = Untouched();
        ASSERT_EQ(Load(&loaded, path), 0);
        EXPECT_STREQ(loaded.Name, effect.EnumPreset(stock));
        ASSERT_EQ(loaded.nCount, 3);
        EXPECT_EQ(0, std::memcmp(loaded.Params, expected.Params, sizeof loaded.Params));
    }
    EXPECT_TRUE(ui.Alerts().empty());
}

TEST_F(PresetSaverTest, ShowsTheSaveAlertWhenTheFileCantBeWritten)
{
    // A path that fits the 255-byte buffer with its terminator, and one that doesn't, though its
    // folders exist.
    auto pathOfLength = [this](size_t length) {
        std::string directory = files.Root();
        while (directory.size() + 1 + 100 + 1 + 9 < length)
            directory += "/" + std::string(100, 'd');
        directory += "/" + std::string(length - directory.size() - 1 - 9 - 1, 'e');
        std::filesystem::create_directories(directory);
        return directory + "/p.fxpunka";
    };
    const std::string fits = pathOfLength(CPresetSaver::kPathBufferSize - 1);
    const std::string tooLong = pathOfLength(CPresetSaver::kPathBufferSize);
    ASSERT_EQ(fits.size(), 254u);
    ASSERT_EQ(tooLong.size(), 255u);
    CEffectPreset preset = EffectPreset();
    EXPECT_EQ(Save(&preset, fits), 0);
    EXPECT_TRUE(ui.Alerts().empty());

    struct Case {
        const char* what;
        std::string path;
        unsigned int effect;
    };
    const Case cases[] = {
        {"a missing folder", files.Path("no/such/folder/p.fxpunka"), 0},
        {"a path beyond the buffer", tooLong, 0},
        {"an effect the library hasn't: no name, no file that could load", files.Path("b.fxpunkb"), 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(Save(&preset, c.path, nullptr, c.effect), 1);
        ExpectOneAlert(kSaveFailedTitle, kSaveFailedText);
        EXPECT_FALSE(std::filesystem::exists(c.path));
    }
    EXPECT_EQ(ui.Panels().back().defaultName, "MyPreset.fxpunkb");

    // The same on loading: a file at a path beyond the buffer is not read.
    std::filesystem::copy_file(fits, tooLong);
    CEffectPreset loaded = Untouched();
    EXPECT_EQ(Load(&loaded, tooLong), 1);
    ExpectOneAlert(kLoadFailedTitle, kLoadFailedText);
    EXPECT_TRUE(SameBytes(loaded, Untouched()));
    EXPECT_EQ(Load(&loaded, fits), 0);
}

TEST_F(PresetSaverTest, LoadShowsWhyAFileWasRefused)
{
    auto fileWith = [](const std::string& library, const std::string& effect, const std::string& parameters) {
        return "<Preset Name=\"x\" LibraryName=\"" + library + "\" EffectName=\"" + effect + "\">" + parameters +
               "</Preset>";
    };
    const std::string three = "<parameter type=\"2\" value=\"0.5\"/><parameter type=\"2\" value=\"0.5\"/>"
                              "<parameter type=\"4\" value=\"1\"/>";
    struct Case {
        const char* what;
        std::string file;   // empty: no file at the path
        const char* text;   // null: loaded
        bool changesRecord;
    };
    const Case cases[] = {
        {"no file", "", kLoadFailedText, false},
        {"not XML", "garbage", kLoadFailedText, false},
        {"no parameters", fileWith(kLibraryName, kEffectName, ""), kLoadFailedText, true},
        {"another effect", fileWith(kLibraryName, "Deglarer", three), kMismatchText, true},
        {"another library", fileWith("Tessarel Deglarer", kEffectName, three), kMismatchText, true},
        {"a wrong type", fileWith(kLibraryName, kEffectName,
                                  "<parameter type=\"2\" value=\"0.5\"/><parameter type=\"4\" value=\"1\"/>"
                                  "<parameter type=\"4\" value=\"1\"/>"),
         kMismatchText, true},
        {"too few", fileWith(kLibraryName, kEffectName, "<parameter type=\"2\" value=\"0.5\"/>"), kMismatchText, true},
        {"more than the effect has are taken", fileWith(kLibraryName, kEffectName, three + three), nullptr, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        CEffectPreset preset = Untouched();
        const std::string path = c.file.empty() ? files.Path("gone.fxpunka") : files.Write("refused.fxpunka", c.file);
        EXPECT_EQ(Load(&preset, path), c.text != nullptr ? 1 : 0);
        if (c.text != nullptr)
            ExpectOneAlert(kLoadFailedTitle, c.text);
        else
            EXPECT_TRUE(ui.Alerts().empty());
        EXPECT_EQ(!SameBytes(preset, Untouched()), c.changesRecord);
        EXPECT_EQ(Load(&preset), 1) << "a cancel";
        EXPECT_TRUE(ui.Alerts().empty()) << "a cancel says nothing";
    }
}

TEST_F(PresetSaverTest, ValidatesNamesAndTheTypesOfTheEffectsOwnParameters)
{
    struct Case {
        const char* what;
        std::function<void(CEffectPreset&)> change;
        bool valid;
        unsigned int effect = 0;
    };
    const Case cases[] = {
        {"the effect's own", [](CEffectPreset&) {}, true},
        {"one more", [](CEffectPreset& p) { p.Params[p.nCount++] = Integer(5); }, true},
        {"a hundred", [](CEffectPreset& p) { p.nCount = 100; }, true},
        {"a count beyond the records", [](CEffectPreset& p) { p.nCount = INT_MAX; }, true},
        {"one fewer", [](CEffectPreset& p) { p.nCount = 2; }, false},
        {"none", [](CEffectPreset& p) { p.nCount = 0; }, false},
        {"a negative count", [](CEffectPreset& p) { p.nCount = -3; }, false},
        {"second a boolean", [](CEffectPreset& p) { p.Params[1] = Bool(1); }, false},
        {"third a float", [](CEffectPreset& p) { p.Params[2] = Float(1); }, false},
        {"values are not checked", [](CEffectPreset& p) { p.Params[0].value.fValue = -1e30f; }, true},
        {"another library", [](CEffectPreset& p) { std::strcpy(p.LibraryName, "Tessarel Deglarer"); }, false},
        {"another effect", [](CEffectPreset& p) { std::strcpy(p.EffectName, "Deglarer pro"); }, false},
        {"a longer effect name", [](CEffectPreset& p) { std::strcpy(p.EffectName, "Deglarer Pro "); }, false},
        {"a name without terminator", [](CEffectPreset& p) { std::memset(p.EffectName, 'D', 260); }, false},
        {"an effect the library hasn't", [](CEffectPreset&) {}, false, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        CEffectPreset preset = EffectPreset();
        c.change(preset);
        const CEffectPreset before = preset;
        EXPECT_EQ(CPresetSaver::ValidatePreset(library, c.effect, &preset), c.valid);
        EXPECT_TRUE(SameBytes(preset, before)) << "validation writes nothing";
    }

    CEffectPreset preset = EffectPreset();
    EXPECT_FALSE(CPresetSaver::ValidatePreset(library, 0, nullptr));
    for (int32_t count : {0, 1, -1}) {
        preset.nCount = count;
        EXPECT_EQ(CPresetSaver::ValidatePreset(nullptr, 0, &preset), count == 1) << "no library, count " << count;
    }
}

// A library that misbehaves as a host's plug-ins might: an effect with no end of parameters,
// names that are null, calls that throw. It counts the effects alive.
class OddLibrary : public IEffectLibrary {
public:
    enum Behaviour { kEndlessParameters, kNullNames, kThrows };
    explicit OddLibrary(Behaviour behaviour) : m_behaviour(behaviour) {}

    class Effect : public IVideoEffect {
    public:
        explicit Effect(OddLibrary* owner) : m_owner(owner) { ++m_owner->m_liveEffects; }
        ~Effect() override { --m_owner->m_liveEffects; }
        HRESULT QueryInterface(const _GUID&, void**) override { return E_NOINTERFACE; }
        ULONG AddRef() override { return ++m_references; }
        ULONG Release() override
        {
            const ULONG left = --m_references;
            if (left == 0)
                delete this;
            return left;
        }
        const char* GetName() override
        {
            if (m_owner->m_behaviour == kThrows)
                throw std::runtime_error("no name");
            return m_owner->m_behaviour == kNullNames ? nullptr : "Odd";
        }
        unsigned int GetCaps() override { return 0; }
        bool EnumParam(unsigned int, EffectParamSetup* setup) override { return (setup->dwType = eptFloat), true; }
        bool Render(IVideoHost*, FrameParams*, FrameParams*, FrameParams*, RenderInfo*) override { return false; }
        const char* EnumPreset(unsigned int) override { return nullptr; }
        bool EnumPresetData(unsigned int, unsigned int, EffectParam*) override { return false; }

    private:
        OddLibrary* m_owner;
        ULONG m_references = 1;
    };

    HRESULT QueryInterface(const _GUID&, void**) override { return E_NOINTERFACE; }
    ULONG AddRef() override { return 1; }
    ULONG Release() override { return 1; }
    const char* GetName() override { return m_behaviour == kNullNames ? nullptr : "Odd Library"; }
    IVideoEffect* CreateEffect(unsigned int) override { return new Effect(this); }
    bool OpenHelp(OpaqueWindowPtr*, unsigned int) override { return false; }
    ILibraryServices* GetLibraryServices() override { return nullptr; }
    IFrameProcessor* GetFrameProcessor() override { return nullptr; }
    IPresetSaver* GetPresetSaver() override { return nullptr; }

    Behaviour m_behaviour;
    int m_liveEffects = 0;
};

TEST_F(PresetSaverTest, OddLibrariesGetResultsAndTheirEffectsBack)
{
    // Endless parameters: no record past the hundredth is read.
    OddLibrary endless(OddLibrary::kEndlessParameters);
    CEffectPreset preset = Record("p", "Odd Library", "Odd", {});
    for (int index = 0; index < kPresetMaxParams; ++index)
        preset.Params[index] = Float(0.5f);
    for (int32_t count : {3, 100, 101, INT_MAX}) {
        preset.nCount = count;
        EXPECT_FALSE(CPresetSaver::ValidatePreset(&endless, 0, &preset)) << count;
    }
    EXPECT_EQ(endless.m_liveEffects, 0);

    // Null names: an extension of its own, empty names, and a file that loads back.
    OddLibrary nameless(OddLibrary::kNullNames);
    const std::string path = files.Path("nameless.prs");
    preset.nCount = 1;
    EXPECT_EQ(Save(&preset, path, &nameless), 0);
    EXPECT_EQ(ui.Panels().back().extension, "prs");
    EXPECT_STREQ(preset.LibraryName, "");
    EXPECT_STREQ(preset.EffectName, "");
    CEffectPreset loaded = Untouched();
    EXPECT_EQ(Load(&loaded, path, &nameless), 1) << "its one parameter is too few";
    EXPECT_EQ(loaded.nCount, 1);
    EXPECT_EQ(nameless.m_liveEffects, 0);

    // A throwing effect: the slots return 1, say so, and nothing escapes.
    OddLibrary throwing(OddLibrary::kThrows);
    preset = Record("p", "Odd Library", "Odd", {Float(0.5f)});
    EXPECT_FALSE(CPresetSaver::ValidatePreset(&throwing, 0, &preset));
    EXPECT_EQ(Save(&preset, files.Path("throwing.fxpunka"), &throwing), 1);
    ExpectOneAlert(kSaveFailedTitle, kSaveFailedText);
    EXPECT_FALSE(std::filesystem::exists(files.Path("throwing.fxpunka")));
    EXPECT_EQ(Load(&preset, path, &throwing), 1);
    ExpectOneAlert(kLoadFailedTitle, kMismatchText);
    EXPECT_EQ(throwing.m_liveEffects, 0);
}

} // namespace
