// A preset saved in one locale loads in every other: numbers in the file always have a point.
#include <gtest/gtest.h>

#include <locale.h>

#include <cstdio>
#include <string>
#include <thread>

#include "../Common/PresetSerializer.h"
#include "PresetTestRecords.h"
#include "TempDirectory.h"

namespace {

using namespace PresetTest;
using TestSupport::ReadFile;
using TestSupport::TempDirectory;

const char kGermanLocale[] = "de_DE.UTF-8";

std::string Printed(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", value);
    return text;
}

// Saves and loads a preset in whatever locale the calling thread has; checks the file and the
// values, and that the thread's locale is as it was afterwards.
void RoundTripInThisLocale(const TempDirectory& files)
{
    const std::string before = Printed(0.5);
    CPresetSerializer serializer;
    CEffectPreset preset =
        Record("Komma", kLibraryName, kEffectName, {Float(0.25f), Point(-1.5f, 2.75f), Integer(-42)});
    const std::string path = files.Path("locale.fxpunka");
    ASSERT_TRUE(serializer.Save(path.c_str(), &preset));
    const std::string text = ReadFile(path);
    EXPECT_NE(text.find("value=\"0.250000\""), std::string::npos) << text;
    EXPECT_NE(text.find("x=\"-1.500000\" y=\"2.750000\""), std::string::npos) << text;

    CEffectPreset loaded = Untouched();
    ASSERT_TRUE(serializer.Load(path.c_str(), &loaded));
    EXPECT_EQ(0, std::memcmp(loaded.Params, preset.Params, 3 * sizeof(EffectParam)));

    // A file written elsewhere with a point reads the same.
    loaded = Untouched();
    const std::string foreign = files.Write("foreign.fxpunka", PresetWith("<parameter type=\"2\" value=\"0.25\"/>"));
    ASSERT_TRUE(serializer.Load(foreign.c_str(), &loaded));
    EXPECT_EQ(loaded.Params[0].value.fValue, 0.25f);
    EXPECT_EQ(Printed(0.5), before) << "the thread's locale is given back";
}

// On a thread with its own German locale, leaving the others alone; then with German as the process's.
TEST(PresetLocale, RoundTripsUnderAGermanThreadOrProcessLocale)
{
    TempDirectory files;
    ASSERT_TRUE(files.Made());
    const locale_t german = newlocale(LC_ALL_MASK, kGermanLocale, static_cast<locale_t>(0));
    if (german == static_cast<locale_t>(0))
        GTEST_SKIP() << kGermanLocale << " is not installed (./setup.sh installs it)";
    std::thread worker([&] {
        uselocale(german);
        ASSERT_EQ(Printed(0.5), "0,50") << "the locale really writes a comma";
        RoundTripInThisLocale(files);
        uselocale(LC_GLOBAL_LOCALE);
    });
    worker.join();
    freelocale(german);
    EXPECT_EQ(Printed(0.5), "0.50");

    ASSERT_NE(setlocale(LC_ALL, kGermanLocale), nullptr);
    ASSERT_EQ(Printed(0.5), "0,50");
    RoundTripInThisLocale(files);
    setlocale(LC_ALL, "C");
}

} // namespace
