#include <gtest/gtest.h>

#include <sys/stat.h>

#include <climits>
#include <cstring>
#include <stdexcept>
#include <string>

#include "../Common/PresetSaver.h"
#include "../Common/PresetSerializer.h"
#include "../DeglarerPro/Deglarer.h"
#include "../DeglarerPro/DeglarerPro.h"
#include "../include/InterfaceIds.h"
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
        library = new CDeglarerPro();
        saver = new CPresetSaver();
        testing::internal::CaptureStdout();   // the headless alerts print
    }
    void TearDown() override
    {
        testing::internal::GetCapturedStdout();
        saver->Release();
        library->Release();
        Platform::SetUserInterface(previous);
    }

    // Checks that exactly one alert was shown, with `title`, `text` and the one button "OK".
    void ExpectOneAlert(const char* title, const char* text)
    {
        ASSERT_EQ(ui.Alerts().size(), 1u);
        EXPECT_EQ(ui.Alerts()[0].title, title);
        EXPECT_EQ(ui.Alerts()[0].message, text);
        EXPECT_EQ(ui.Alerts()[0].buttons, std::vector<std::string>{"OK"});
    }

    // A path of exactly `length` bytes inside the temporary directory, its folders made.
    std::string PathOfLength(size_t length, const std::string& file)
    {
        std::string directory = files.Root();
        while (directory.size() + 1 + 100 + 1 + file.size() < length) {
            directory += "/" + std::string(100, 'd');
        }
        const size_t rest = length - directory.size() - 1 - file.size() - 1;
        directory += "/" + std::string(rest, 'e');
        std::filesystem::create_directories(directory);
        return directory + "/" + file;
    }

    TempDirectory files;
    Platform::HeadlessUserInterface ui;
    Platform::IUserInterface* previous = nullptr;
    CDeglarerPro* library = nullptr;
    CPresetSaver* saver = nullptr;
};

TEST_F(PresetSaverTest, AnswersItsTwoInterfacesAndCountsReferences)
{
    void* unknown = nullptr;
    ASSERT_EQ(saver->QueryInterface(IID_IUnknown, &unknown), S_OK);
    EXPECT_EQ(unknown, static_cast<IPresetSaver*>(saver));
    void* presetSaver = nullptr;
    ASSERT_EQ(saver->QueryInterface(IID_PresetSaver, &presetSaver), S_OK);
    EXPECT_EQ(presetSaver, unknown);
    EXPECT_EQ(saver->AddRef(), 4u);
    EXPECT_EQ(saver->Release(), 3u);

    for (const _GUID* other : {&IID_EffectLibrary, &IID_VideoEffect, &IID_FrameProcessor, &IID_IMultiLingual}) {
        void* result = saver;
        EXPECT_EQ(saver->QueryInterface(*other, &result), E_NOINTERFACE);
        EXPECT_EQ(result, nullptr);
    }
    EXPECT_EQ(saver->QueryInterface(IID_PresetSaver, nullptr), E_POINTER);
    EXPECT_EQ(saver->Release(), 2u);
    EXPECT_EQ(saver->Release(), 1u);

    // The library hands out a new object each time, with one reference for the caller.
    IPresetSaver* first = library->GetPresetSaver();
    IPresetSaver* second = library->GetPresetSaver();
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(first, second);
    EXPECT_EQ(first->Release(), 0u);
    EXPECT_EQ(second->Release(), 0u);
}

TEST_F(PresetSaverTest, NamesTheFileTypeAfterLibraryAndEffect)
{
    struct Case {
        const char* library;
        unsigned int effect;
        const char* extension;
    };
    const Case cases[] = {
        {kLibraryName, 0, "fxpunka"},
        {kLibraryName, 1, "fxpunkb"},
        {kLibraryName, 25, "fxpunkz"},
        {kLibraryName, 26, "prs"},
        {kLibraryName, UINT_MAX, "prs"},
        {"tessarel deglarer pro", 0, "fxpunka"},
        {"", 2, "fxpunkc"},
        {nullptr, 0, "prs"},
        {nullptr, 7, "prs"},
    };
    for (const Case& c : cases) {
        char out[CPresetSaver::kExtensionBufferSize + 8];
        std::memset(out, '#', sizeof out);
        CPresetSaver::GetEffectExtension(c.library, c.effect, out);
        EXPECT_STREQ(out, c.extension) << (c.library ? c.library : "null") << " " << c.effect;
        for (size_t at = CPresetSaver::kExtensionBufferSize; at < sizeof out; ++at)
            EXPECT_EQ(out[at], '#');
    }
    CPresetSaver::GetEffectExtension(kLibraryName, 0, nullptr);
}

TEST_F(PresetSaverTest, SaveOffersMyPresetInTheHomeDirectoryAndACancelChangesNothing)
{
    CEffectPreset preset = EffectPreset();
    const CEffectPreset before = preset;
    EXPECT_EQ(saver->Save(nullptr, library, 0, &preset, nullptr), 1);
    ASSERT_EQ(ui.Panels().size(), 1u);
    const Platform::HeadlessUserInterface::Panel& panel = ui.Panels()[0];
    EXPECT_TRUE(panel.save);
    EXPECT_EQ(panel.defaultName, "MyPreset.fxpunka");
    EXPECT_EQ(panel.extension, "fxpunka");
    EXPECT_EQ(panel.directory, Platform::HomeDirectory());
    EXPECT_FALSE(panel.directory.empty());
    EXPECT_TRUE(SameBytes(preset, before));
    EXPECT_TRUE(ui.Alerts().empty());

    EXPECT_EQ(saver->Save(nullptr, library, 0, nullptr, nullptr), 1);
    EXPECT_EQ(saver->Save(nullptr, nullptr, 0, &preset, nullptr), 1);
    EXPECT_EQ(ui.Panels().size(), 1u) << "no panel without a preset or a library";
    EXPECT_TRUE(ui.Alerts().empty());
}

TEST_F(PresetSaverTest, SavesUnderTheLibraryAndEffectNamesAndLoadsItBack)
{
    CEffectPreset preset = EffectPreset("Evening");
    std::strcpy(preset.LibraryName, "stale");
    std::memset(preset.EffectName, 'z', sizeof preset.EffectName);
    const std::string path = files.Path("evening.fxpunka");
    ui.QueuePath(path);
    ASSERT_EQ(saver->Save(nullptr, library, 0, &preset, nullptr), 0);
    EXPECT_TRUE(ui.Alerts().empty());
    EXPECT_STREQ(preset.LibraryName, kLibraryName);
    EXPECT_STREQ(preset.EffectName, kEffectName);
    for (size_t at = std::strlen(kEffectName); at < sizeof preset.EffectName; ++at)
        ASSERT_EQ(preset.EffectName[at], '\0');
    EXPECT_NE(ReadFile(path).find("<Preset Name=\"Evening\" LibraryName=\"Tessarel Deglarer Pro\" "
                                  "EffectName=\"Deglarer Pro\">"),
              std::string::npos);

    CEffectPreset loaded = Untouched();
    ui.QueuePath(path);
    ASSERT_EQ(saver->Load(nullptr, library, 0, &loaded, nullptr), 0);
    EXPECT_TRUE(ui.Alerts().empty());
    EXPECT_STREQ(loaded.Name, "Evening");
    ASSERT_EQ(loaded.nCount, 3);
    EXPECT_EQ(0, std::memcmp(loaded.Params, preset.Params, 3 * sizeof(EffectParam)));
    ASSERT_EQ(ui.Panels().size(), 2u);
    EXPECT_FALSE(ui.Panels()[1].save);
    EXPECT_EQ(ui.Panels()[1].extension, "fxpunka");
    EXPECT_EQ(ui.Panels()[1].directory, Platform::HomeDirectory());
}

TEST_F(PresetSaverTest, RoundTripsEveryStockPresetThroughTheSaver)
{
    CDeglarer effect;
    for (unsigned int stock = 0; stock < CDeglarer::kPresetCount; ++stock) {
        CEffectPreset preset = Record(effect.EnumPreset(stock), "", "", {});
        for (unsigned int index = 0; index < CDeglarer::kParamCount; ++index) {
            EffectParamSetup setup;
            std::memset(&setup, 0, sizeof setup);
            ASSERT_TRUE(effect.EnumParam(index, &setup));
            EffectParam& parameter = preset.Params[preset.nCount++];
            ASSERT_TRUE(effect.EnumPresetData(stock, index, &parameter));
            parameter.dwType = setup.dwType;
        }
        const std::string path = files.Path("stock" + std::to_string(stock) + ".fxpunka");
        ui.QueuePath(path);
        ASSERT_EQ(saver->Save(nullptr, library, 0, &preset, nullptr), 0) << stock;
        CEffectPreset loaded = Untouched();
        ui.QueuePath(path);
        ASSERT_EQ(saver->Load(nullptr, library, 0, &loaded, nullptr), 0) << stock;
        EXPECT_STREQ(loaded.Name, effect.EnumPreset(stock));
        ASSERT_EQ(loaded.nCount, 3);
        for (int index = 0; index < 3; ++index) {
            const EffectParam& original = preset.Params[index];
            const EffectParam& back = loaded.Params[index];
            EXPECT_EQ(back.dwType, original.dwType);
            if (original.dwType == eptFloat) {
                // Six decimals: the float nearest the printed text.
                char text[32];
                std::snprintf(text, sizeof text, "%f", static_cast<double>(original.value.fValue));
                EXPECT_EQ(Bits(back.value.fValue), Bits(static_cast<float>(std::strtod(text, nullptr))))
                    << effect.EnumPreset(stock) << " " << index;
                EXPECT_NEAR(back.value.fValue, original.value.fValue, 5e-7);
            } else {
                EXPECT_EQ(back.value.bValue, original.value.bValue);
            }
            EXPECT_EQ(0, std::memcmp(back.value.bytes + 4, "\0\0\0\0", 4));
        }
    }
    EXPECT_TRUE(ui.Alerts().empty());
}

TEST_F(PresetSaverTest, ShowsTheSaveAlertWhenTheFileCantBeWritten)
{
    CEffectPreset preset = EffectPreset();
    ui.QueuePath(files.Path("no/such/folder/p.fxpunka"));
    EXPECT_EQ(saver->Save(nullptr, library, 0, &preset, nullptr), 1);
    ExpectOneAlert(kSaveFailedTitle, kSaveFailedText);

    // An effect the library doesn't have gives no name, and no file that could ever load.
    ui.ClearAlerts();
    const std::string path = files.Path("b.fxpunkb");
    ui.QueuePath(path);
    EXPECT_EQ(saver->Save(nullptr, library, 1, &preset, nullptr), 1);
    ExpectOneAlert(kSaveFailedTitle, kSaveFailedText);
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_EQ(ui.Panels().back().defaultName, "MyPreset.fxpunkb");
}

TEST_F(PresetSaverTest, APathThatDoesntFitTheBufferFailsWithTheAlert)
{
    // 254 bytes fit with the terminator; 255 do not, even where the folders exist.
    const std::string fits = PathOfLength(CPresetSaver::kPathBufferSize - 1, "p.fxpunka");
    const std::string tooLong = PathOfLength(CPresetSaver::kPathBufferSize, "p.fxpunka");
    ASSERT_EQ(fits.size(), 254u);
    ASSERT_EQ(tooLong.size(), 255u);
    CEffectPreset preset = EffectPreset();
    ui.QueuePath(fits);
    EXPECT_EQ(saver->Save(nullptr, library, 0, &preset, nullptr), 0);
    EXPECT_TRUE(ui.Alerts().empty());
    ui.QueuePath(tooLong);
    EXPECT_EQ(saver->Save(nullptr, library, 0, &preset, nullptr), 1);
    ExpectOneAlert(kSaveFailedTitle, kSaveFailedText);
    EXPECT_FALSE(std::filesystem::exists(tooLong));

    // The same on loading: a file at a long path is not read.
    std::filesystem::copy_file(fits, tooLong);
    ui.ClearAlerts();
    CEffectPreset loaded = Untouched();
    ui.QueuePath(tooLong);
    EXPECT_EQ(saver->Load(nullptr, library, 0, &loaded, nullptr), 1);
    ExpectOneAlert(kLoadFailedTitle, kLoadFailedText);
    EXPECT_TRUE(SameBytes(loaded, Untouched()));
    ui.QueuePath(fits);
    EXPECT_EQ(saver->Load(nullptr, library, 0, &loaded, nullptr), 0);
}

TEST_F(PresetSaverTest, LoadShowsWhyAFileWasRefused)
{
    struct Case {
        const char* what;
        std::string file;
        const char* text;
        bool changesRecord;
    };
    auto fileWith = [](const std::string& library, const std::string& effect, const std::string& parameters) {
        return "<Preset Name=\"x\" LibraryName=\"" + library + "\" EffectName=\"" + effect + "\">" + parameters +
               "</Preset>";
    };
    const std::string three = "<parameter type=\"2\" value=\"0.5\"/><parameter type=\"2\" value=\"0.5\"/>"
                              "<parameter type=\"4\" value=\"1\"/>";
    const Case cases[] = {
        {"not XML", "garbage", kLoadFailedText, false},
        {"no parameters", fileWith(kLibraryName, kEffectName, ""), kLoadFailedText, true},
        {"another effect", fileWith(kLibraryName, "Deglarer", three), kMismatchText, true},
        {"another library", fileWith("Tessarel Deglarer", kEffectName, three), kMismatchText, true},
        {"a wrong type", fileWith(kLibraryName, kEffectName,
                                  "<parameter type=\"2\" value=\"0.5\"/><parameter type=\"4\" value=\"1\"/>"
                                  "<parameter type=\"4\" value=\"1\"/>"),
         kMismatchText, true},
        {"too few", fileWith(kLibraryName, kEffectName, "<parameter type=\"2\" value=\"0.5\"/>"), kMismatchText,
         true},
    };
    for (const Case& c : cases) {
        ui.ClearAlerts();
        CEffectPreset preset = Untouched();
        ui.QueuePath(files.Write("refused.fxpunka", c.file));
        EXPECT_EQ(saver->Load(nullptr, library, 0, &preset, nullptr), 1) << c.what;
        ExpectOneAlert(kLoadFailedTitle, c.text);
        EXPECT_EQ(!SameBytes(preset, Untouched()), c.changesRecord) << c.what;
    }

    // A missing file, then a cancel: only the first says anything.
    ui.ClearAlerts();
    CEffectPreset preset = Untouched();
    ui.QueuePath(files.Path("gone.fxpunka"));
    EXPECT_EQ(saver->Load(nullptr, library, 0, &preset, nullptr), 1);
    EXPECT_EQ(saver->Load(nullptr, library, 0, &preset, nullptr), 1);
    ExpectOneAlert(kLoadFailedTitle, kLoadFailedText);
    EXPECT_TRUE(SameBytes(preset, Untouched()));
    const size_t panels = ui.Panels().size();
    EXPECT_EQ(saver->Load(nullptr, library, 0, nullptr, nullptr), 1);
    EXPECT_EQ(saver->Load(nullptr, nullptr, 0, &preset, nullptr), 1);
    EXPECT_EQ(ui.Panels().size(), panels);

    // More parameters than the effect has are taken.
    ui.ClearAlerts();
    ui.QueuePath(files.Write("more.fxpunka", fileWith(kLibraryName, kEffectName, three + three)));
    EXPECT_EQ(saver->Load(nullptr, library, 0, &preset, nullptr), 0);
    EXPECT_EQ(preset.nCount, 6);
    EXPECT_TRUE(ui.Alerts().empty());
}

TEST_F(PresetSaverTest, ValidatesNamesAndTheTypesOfTheEffectsOwnParameters)
{
    struct Case {
        const char* what;
        CEffectPreset preset;
        unsigned int effect;
        bool valid;
    };
    auto with = [](CEffectPreset preset, void (*change)(CEffectPreset*)) {
        change(&preset);
        return preset;
    };
    const Case cases[] = {
        {"the effect's own", EffectPreset(), 0, true},
        {"one more", with(EffectPreset(), [](CEffectPreset* p) { p->Params[p->nCount++] = Integer(5); }), 0, true},
        {"a hundred", with(EffectPreset(), [](CEffectPreset* p) { p->nCount = 100; }), 0, true},
        {"a count beyond the records", with(EffectPreset(), [](CEffectPreset* p) { p->nCount = INT_MAX; }), 0, true},
        {"one fewer", with(EffectPreset(), [](CEffectPreset* p) { p->nCount = 2; }), 0, false},
        {"none", with(EffectPreset(), [](CEffectPreset* p) { p->nCount = 0; }), 0, false},
        {"a negative count", with(EffectPreset(), [](CEffectPreset* p) { p->nCount = -3; }), 0, false},
        {"second a boolean", with(EffectPreset(), [](CEffectPreset* p) { p->Params[1] = Bool(1); }), 0, false},
        {"third a float", with(EffectPreset(), [](CEffectPreset* p) { p->Params[2] = Float(1); }), 0, false},
        {"values are not checked",
         with(EffectPreset(), [](CEffectPreset* p) { p->Params[0].value.fValue = -1e30f; }), 0, true},
        {"another library",
         with(EffectPreset(), [](CEffectPreset* p) { std::strcpy(p->LibraryName, "Tessarel Deglarer"); }), 0, false},
        {"another effect", with(EffectPreset(), [](CEffectPreset* p) { std::strcpy(p->EffectName, "Deglarer pro"); }),
         0, false},
        {"a longer effect name",
         with(EffectPreset(), [](CEffectPreset* p) { std::strcpy(p->EffectName, "Deglarer Pro "); }), 0, false},
        {"a name without terminator",
         with(EffectPreset(), [](CEffectPreset* p) { std::memset(p->EffectName, 'D', sizeof p->EffectName); }), 0,
         false},
        {"an effect the library hasn't", EffectPreset(), 1, false},
    };
    for (const Case& c : cases) {
        CEffectPreset preset = c.preset;
        EXPECT_EQ(CPresetSaver::ValidatePreset(library, c.effect, &preset), c.valid) << c.what;
        EXPECT_TRUE(SameBytes(preset, c.preset)) << "validation writes nothing";
    }

    CEffectPreset preset = EffectPreset();
    EXPECT_FALSE(CPresetSaver::ValidatePreset(library, 0, nullptr));
    preset.nCount = 0;
    EXPECT_FALSE(CPresetSaver::ValidatePreset(nullptr, 0, &preset));
    preset.nCount = 1;
    EXPECT_TRUE(CPresetSaver::ValidatePreset(nullptr, 0, &preset));
    preset.nCount = -1;
    EXPECT_FALSE(CPresetSaver::ValidatePreset(nullptr, 0, &preset));
}

// A library that misbehaves as a host's plug-ins might: an effect with no end of parameters,
// names that are null, calls that throw. It counts the effects alive.
class OddLibrary : public IEffectLibrary {
public:
    enum Behaviour { kEndlessParameters, kNullNames, kThrows };
    explicit OddLibrary(Behaviour behaviour) : m_behaviour(behaviour) {}

    class Effect : public IVideoEffect {
    public:
        Effect(OddLibrary* owner) : m_owner(owner) { ++m_owner->m_liveEffects; }
        ~Effect() override { --m_owner->m_liveEffects; }
        HRESULT QueryInterface(const _GUID&, void**) override { return E_NOINTERFACE; }
        ULONG AddRef() override { return ++m_references; }
        ULONG Release() override
        {
            if (--m_references == 0) {
                delete this;
                return 0;
            }
            return m_references;
        }
        const char* GetName() override
        {
            if (m_owner->m_behaviour == kThrows)
                throw std::runtime_error("no name");
            return m_owner->m_behaviour == kNullNames ? nullptr : "Odd";
        }
        unsigned int GetCaps() override { return 0; }
        bool EnumParam(unsigned int, EffectParamSetup* setup) override
        {
            setup->dwType = eptFloat;
            return true;
        }
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
    ui.QueuePath(path);
    preset.nCount = 1;
    EXPECT_EQ(saver->Save(nullptr, &nameless, 0, &preset, nullptr), 0);
    EXPECT_EQ(ui.Panels().back().extension, "prs");
    EXPECT_STREQ(preset.LibraryName, "");
    EXPECT_STREQ(preset.EffectName, "");
    EXPECT_EQ(nameless.m_liveEffects, 0);
    CEffectPreset loaded = Untouched();
    ui.QueuePath(path);
    EXPECT_EQ(saver->Load(nullptr, &nameless, 0, &loaded, nullptr), 1) << "its one parameter is too few";
    EXPECT_EQ(loaded.nCount, 1);
    EXPECT_EQ(nameless.m_liveEffects, 0);

    // A throwing effect: the slots return 1, say so, and nothing escapes.
    OddLibrary throwing(OddLibrary::kThrows);
    preset = Record("p", "Odd Library", "Odd", {Float(0.5f)});
    EXPECT_FALSE(CPresetSaver::ValidatePreset(&throwing, 0, &preset));
    ui.ClearAlerts();
    ui.QueuePath(files.Path("throwing.fxpunka"));
    EXPECT_EQ(saver->Save(nullptr, &throwing, 0, &preset, nullptr), 1);
    ExpectOneAlert(kSaveFailedTitle, kSaveFailedText);
    EXPECT_FALSE(std::filesystem::exists(files.Path("throwing.fxpunka")));
    ui.ClearAlerts();
    ui.QueuePath(path);
    EXPECT_EQ(saver->Load(nullptr, &throwing, 0, &preset, nullptr), 1);
    ExpectOneAlert(kLoadFailedTitle, kMismatchText);
    EXPECT_EQ(throwing.m_liveEffects, 0);
}

} // namespace
