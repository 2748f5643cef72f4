#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>

#include "../Common/PresetSaver.h"
#include "../Common/PresetSerializer.h"
#include "../DeglarerPro/DeglarerPro.h"
#include "../include/VideoEffect.h"
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
        EXPECT_EQ(ui.Alerts()[0].title + "|" + ui.Alerts()[0].message, std::string(title) + "|" + text);
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
    const std::tuple<const char*, unsigned int, const char*> cases[] = {
        {kLibraryName, 0, "fxpunka"}, {kLibraryName, 25, "fxpunkz"}, {kLibraryName, 26, "prs"},
        {kLibraryName, UINT_MAX, "prs"}, {"", 2, "fxpunkc"}, {nullptr, 0, "prs"}};
    for (const auto& [name, effect, extension] : cases) {
        char out[CPresetSaver::kExtensionBufferSize + 8];
        std::memset(out, '#', sizeof out);
        CPresetSaver::GetEffectExtension(name, effect, out);
        EXPECT_STREQ(out, extension) << effect;
        EXPECT_EQ(std::string(out + CPresetSaver::kExtensionBufferSize, 8), "########");
    }
    CPresetSaver::GetEffectExtension(kLibraryName, 0, nullptr);
}

TEST_F(PresetSaverTest, SavesUnderTheLibraryAndEffectNamesAndLoadsItBack)
{
    // A cancelled panel, and no panel at all without a preset or a library: nothing changes.
    CEffectPreset preset = EffectPreset("Evening");
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
    EXPECT_EQ(std::string(preset.EffectName, sizeof preset.EffectName),
              kEffectName + std::string(sizeof preset.EffectName - std::strlen(kEffectName), '\0'));
    EXPECT_NE(ReadFile(path).find("<Preset Name=\"Evening\" LibraryName=\"Tessarel Deglarer Pro\" "
                                  "EffectName=\"Deglarer Pro\">"),
              std::string::npos);
    CEffectPreset loaded = Untouched();
    ASSERT_EQ(Load(&loaded, path), 0);
    EXPECT_TRUE(ui.Alerts().empty());
    ASSERT_EQ(loaded.nCount, 3);
    EXPECT_EQ(std::memcmp(&loaded, &preset, offsetof(CEffectPreset, Params) + 3 * sizeof(EffectParam)), 0);

    // Both panels start in the home directory, filtered by the extension; the save panel offers
    // "MyPreset".
    ASSERT_EQ(ui.Panels().size(), 3u);
    for (size_t panel = 0; panel < 3; ++panel) {
        EXPECT_EQ(ui.Panels()[panel].save, panel < 2);
        EXPECT_EQ(ui.Panels()[panel].extension, "fxpunka");
        EXPECT_EQ(ui.Panels()[panel].directory, Platform::HomeDirectory());
    }
    EXPECT_EQ(ui.Panels()[0].defaultName, "MyPreset.fxpunka");
}

TEST_F(PresetSaverTest, ShowsTheSaveAlertWhenTheFileCantBeWritten)
{
    // A path that fits the 255-byte buffer with its terminator, and one a byte longer; both
    // folders exist.
    const std::string folder = files.Root() + "/" + std::string(100, 'd');
    const std::string fits = folder + "/" + std::string(253 - folder.size() - 10, 'e') + "/p.fxpunka";
    const std::string tooLong = folder + "/" + std::string(254 - folder.size() - 10, 'e') + "/p.fxpunka";
    ASSERT_EQ(fits.size(), CPresetSaver::kPathBufferSize - 1u);
    std::filesystem::create_directories(std::filesystem::path(fits).parent_path());
    std::filesystem::create_directories(std::filesystem::path(tooLong).parent_path());
    CEffectPreset preset = EffectPreset();
    EXPECT_EQ(Save(&preset, fits), 0);
    EXPECT_TRUE(ui.Alerts().empty());

    // A missing folder, a path beyond the buffer, an effect the library hasn't (no name, so no
    // file that could load).
    const std::pair<std::string, unsigned int> refused[] = {
        {files.Path("no/such/p.fxpunka"), 0}, {tooLong, 0}, {files.Path("b.fxpunkb"), 1}};
    for (const auto& c : refused) {
        EXPECT_EQ(Save(&preset, c.first, nullptr, c.second), 1) << c.first;
        ExpectOneAlert(kSaveFailedTitle, kSaveFailedText);
        EXPECT_FALSE(std::filesystem::exists(c.first));
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
    const std::string f = "<parameter type=\"2\" value=\"0.5\"/>", b = "<parameter type=\"4\" value=\"1\"/>";
    // The file (none when empty) and the alert's text (null: loaded).
    const std::pair<std::string, const char*> cases[] = {
        {"", kLoadFailedText},
        {"garbage", kLoadFailedText},
        {fileWith(kLibraryName, kEffectName, ""), kLoadFailedText},
        {fileWith(kLibraryName, "Deglarer", f + f + b), kMismatchText},   // what mismatches: the validation test
        {fileWith(kLibraryName, kEffectName, f + b + b), kMismatchText},
        {fileWith(kLibraryName, kEffectName, f + f + b + f), nullptr},   // more than the effect has are taken
    };
    for (const auto& [file, text] : cases) {
        SCOPED_TRACE(file);
        CEffectPreset preset = Untouched();
        EXPECT_EQ(Load(&preset, file.empty() ? files.Path("gone.fxpunka") : files.Write("p.fxpunka", file)), !!text);
        if (text != nullptr)
            ExpectOneAlert(kLoadFailedTitle, text);
        else
            EXPECT_TRUE(ui.Alerts().empty());
        EXPECT_EQ(SameBytes(preset, Untouched()), file.size() < 10) << "only a file that parsed changes the record";
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
        {"a hundred", [](CEffectPreset& p) { p.nCount = 100; }, true},
        {"a count beyond the records", [](CEffectPreset& p) { p.nCount = INT_MAX; }, true},
        {"one fewer", [](CEffectPreset& p) { p.nCount = 2; }, false},
        {"a negative count", [](CEffectPreset& p) { p.nCount = -3; }, false},
        {"third a float", [](CEffectPreset& p) { p.Params[2] = Float(1); }, false},
        {"another library", [](CEffectPreset& p) { std::strcpy(p.LibraryName, "Tessarel Deglarer"); }, false},
        {"a longer effect name", [](CEffectPreset& p) { std::strcpy(p.EffectName, "Deglarer Pro "); }, false},
        {"a name without terminator", [](CEffectPreset& p) { std::memset(p.EffectName, 'D', 260); }, false},
        {"an effect the library hasn't", [](CEffectPreset&) {}, false, 1},
    };
    for (const Case& c : cases) {
        CEffectPreset preset = EffectPreset();
        c.change(preset);
        const CEffectPreset before = preset;
        EXPECT_EQ(CPresetSaver::ValidatePreset(library, c.effect, &preset), c.valid) << c.what;
        EXPECT_TRUE(SameBytes(preset, before)) << "validation writes nothing";
    }
    CEffectPreset preset = EffectPreset();
    EXPECT_FALSE(CPresetSaver::ValidatePreset(library, 0, nullptr));
    for (int32_t count : {0, 1, -1}) {
        preset.nCount = count;
        EXPECT_EQ(CPresetSaver::ValidatePreset(nullptr, 0, &preset), count == 1) << "no library, count " << count;
    }
}

// A library that misbehaves as a host's plug-ins might, and is its own one effect: no end of
// parameters, null names, names that throw. It counts the effects handed out and not released.
class OddLibrary : public IEffectLibrary, public IVideoEffect {
public:
    enum Behaviour { kEndlessParameters, kNullNames, kThrows };
    explicit OddLibrary(Behaviour behaviour) : m_behaviour(behaviour) {}
    HRESULT QueryInterface(const _GUID&, void**) override { return E_NOINTERFACE; }
    ULONG AddRef() override { return 2; }
    ULONG Release() override { return static_cast<ULONG>(--m_liveEffects); }
    const char* GetName() override
    {
        if (m_behaviour == kThrows)
            throw std::runtime_error("no name");
        return m_behaviour == kNullNames ? nullptr : "Odd";
    }
    IVideoEffect* CreateEffect(unsigned int) override { return ++m_liveEffects, this; }
    bool OpenHelp(OpaqueWindowPtr*, unsigned int) override { return false; }
    ILibraryServices* GetLibraryServices() override { return nullptr; }
    IFrameProcessor* GetFrameProcessor() override { return nullptr; }
    IPresetSaver* GetPresetSaver() override { return nullptr; }
    unsigned int GetCaps() override { return 0; }
    bool EnumParam(unsigned int, EffectParamSetup* setup) override { return (setup->dwType = eptFloat), true; }
    bool Render(IVideoHost*, FrameParams*, FrameParams*, FrameParams*, RenderInfo*) override { return false; }
    const char* EnumPreset(unsigned int) override { return nullptr; }
    bool EnumPresetData(unsigned int, unsigned int, EffectParam*) override { return false; }

    Behaviour m_behaviour;
    int m_liveEffects = 0;
};

TEST_F(PresetSaverTest, OddLibrariesGetResultsAndTheirEffectsBack)
{
    // Endless parameters: no record past the hundredth is read.
    OddLibrary endless(OddLibrary::kEndlessParameters);
    CEffectPreset preset = Record("p", "Odd", "Odd", {});
    for (int index = 0; index < kPresetMaxParams; ++index)
        preset.Params[index] = Float(0.5f);
    for (int32_t count : {3, 100, INT_MAX}) {
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

    // Throwing names: the slots return 1, say so, and nothing escapes.
    OddLibrary throwing(OddLibrary::kThrows);
    EXPECT_EQ(Save(&preset, files.Path("throwing.fxpunka"), &throwing), 1);
    ExpectOneAlert(kSaveFailedTitle, kSaveFailedText);
    EXPECT_FALSE(std::filesystem::exists(files.Path("throwing.fxpunka")));
    EXPECT_EQ(Load(&preset, path, &throwing), 1);
    ExpectOneAlert(kLoadFailedTitle, kLoadFailedText);
    EXPECT_FALSE(CPresetSaver::ValidatePreset(&throwing, 0, &preset));
    EXPECT_EQ(throwing.m_liveEffects, 0);
}

} // namespace
