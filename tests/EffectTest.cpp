#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "../DeglarerPro/Deglarer.h"
#include "../DeglarerPro/Version.h"
#include "../host/Clip.h"
#include "../host/InProcessHost.h"
#include "../include/InterfaceIds.h"

// The effect object as the host's dialog and presets see it. Its slots, the library object and
// rendering through the module are the module tests' part.
namespace {

uint32_t FloatBits(float value)
{
    uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

TEST(Effect, DescribesItsThreeParametersWithTheirToolTips)
{
    CDeglarer effect;
    EXPECT_STREQ(effect.GetName(), "Deglarer Pro");
    EXPECT_EQ(effect.GetCaps(), 993u);
    struct Expected {
        const char* name;
        uint32_t type;
        float min, max;
        uint32_t defaultBits;
        const char* toolTip;
    };
    const Expected expected[] = {
        {"Sensitivity", 2, 0.0f, 100.0f, FloatBits(0.7f), "Control how sensitive flash detection is"},
        {"Max Frames", 2, 1.0f, 10.0f, FloatBits(0.2f), "Limit how many consecutive frames will be compensated for"},
        {"Test mode", 4, 0.0f, 0.0f, 0, "Shows what frames have been detected as flash"},
    };
    for (unsigned int index = 0; index < 3; ++index) {
        EffectParamSetup setup;
        std::memset(&setup, 0, sizeof setup);
        ASSERT_TRUE(effect.EnumParam(index, &setup));
        const Expected& e = expected[index];
        // Range word 0; layout words 66 apart, then 0, 198 and 30; the flag set.
        EXPECT_EQ(std::make_tuple(std::string(setup.szName), setup.dwType, setup.fMin, setup.fMax,
                                  FloatBits(setup.defaultValue.fValue)),
                  std::make_tuple(std::string(e.name), e.type, e.min, e.max, e.defaultBits));
        EXPECT_STREQ(effect.EnumToolTip(index), e.toolTip);
        EXPECT_EQ(std::vector<uint32_t>({setup.dwRangeWord, setup.dwLayout1, setup.dwLayout2, setup.dwLayout3,
                                         setup.dwLayout4, setup.bFlag}),
                  std::vector<uint32_t>({0, 66 * index, 0, 198, 30, 1}));
    }
    EffectParamSetup untouched;
    std::memset(&untouched, 0x5A, sizeof untouched);
    EffectParamSetup setup = untouched;
    EXPECT_FALSE(effect.EnumParam(3, &setup));
    EXPECT_EQ(0, std::memcmp(&setup, &untouched, sizeof setup));
    EXPECT_FALSE(effect.EnumParam(0, nullptr));
    EXPECT_EQ(effect.EnumToolTip(3), nullptr);
}

TEST(Effect, StockPresetsCarryTheirExactBits)
{
    CDeglarer effect;
    struct Expected {
        const char* name;
        uint32_t sensitivity, maxFrames;
        bool testMode;
    };
    const Expected expected[] = {
        {"Bright Lighting", 0x3F666666, 0x3EAAAAAB, false}, {"Dim Lighting", 0x3E19999A, 0x3EAAAAAB, false},
        {"Fine Tune", 0x3F000000, 0, true},                   {"Heavy Flashes", 0x3EE66666, 0x3F800000, true},
        {"Multi Flashes", 0x3EE66666, 0x3EAAAA9F, true},      {"Preserve Motion", 0x3F4CCCCD, 0, false},
        {"Single Flashes", 0x3DCCCCCD, 0x3DE38E2A, false},    {"Typical Lighting", 0x3F000000, 0x3EAAAAAB, false},
    };
    for (unsigned int preset = 0; preset < 8; ++preset) {
        EXPECT_STREQ(effect.EnumPreset(preset), expected[preset].name);
        EffectParam values[3];
        std::memset(values, 0xFF, sizeof values);
        uint64_t words[3];
        for (unsigned int param = 0; param < 3; ++param) {
            ASSERT_TRUE(effect.EnumPresetData(preset, param, &values[param]));
            std::memcpy(&words[param], values[param].value.bytes, 8);
        }
        EXPECT_EQ(std::make_tuple(words[0], words[1], words[2], values[0].dwType),   // only the value bytes are filled
                  std::make_tuple(uint64_t{expected[preset].sensitivity}, uint64_t{expected[preset].maxFrames},
                                  uint64_t{expected[preset].testMode}, 0xFFFFFFFFu))
            << preset;
    }
    EXPECT_EQ(effect.EnumPreset(8), nullptr);
    EffectParam value;
    std::memset(&value, 0x11, sizeof value);
    EXPECT_FALSE(effect.EnumPresetData(8, 0, &value));
    EXPECT_FALSE(effect.EnumPresetData(0, 3, &value));
    EXPECT_FALSE(effect.EnumPresetData(0, 0, nullptr));
    EXPECT_EQ(value.dwType, 0x11111111u);
}

// The sub-objects' shared count is pinned through the module's slots; here, the id they set and
// the answers to what the effect isn't.
TEST(Effect, SubObjectsSetTheEffectsIdAndRefusalsAnswerNull)
{
    CDeglarer effect;
    EXPECT_EQ(effect.GetId(), 0xFFFFFFFFu);
    IEffectUniqueId* id = nullptr;
    ASSERT_EQ(effect.QueryInterface(IID_EffectUniqueId, reinterpret_cast<void**>(&id)), S_OK);
    id->SetId(9);
    EXPECT_EQ(effect.GetId(), 9u);
    EXPECT_EQ(id->Release(), 1u);
    void* none = &effect;
    EXPECT_EQ(effect.QueryInterface(IID_FrameProcessor, &none), E_NOINTERFACE);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(effect.QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

TEST(Effect, RenderRefusesMissingArgumentsWithoutTouchingAnything)
{
    TestHost::Clip clip(4, 2, pfVideoSample, 1, 25.0);
    clip.Fill(0, 0.5f, 0.5f, 0.5f);
    TestHost::InProcessHost host(clip);
    CDeglarer effect;
    TestHost::Picture output(4, 2, pfVideoSample);
    RenderInfo info = host.MakeRenderInfo(0);
    for (int missing = 0; missing < 6; ++missing) {
        FrameParams source = clip.Params(0), destination = output.Params();
        if (missing == 4)
            source.pBuffer = nullptr;
        if (missing == 5)
            destination.pBuffer = nullptr;
        EXPECT_FALSE(effect.Render(missing == 0 ? nullptr : &host, missing == 1 ? nullptr : &source, nullptr,
                                   missing == 2 ? nullptr : &destination, missing == 3 ? nullptr : &info))
            << missing;
    }
    EXPECT_EQ(output.Bytes(), std::vector<uint8_t>(output.Bytes().size(), 0));
    EXPECT_EQ(host.ParamReads(), 0u);
    EXPECT_EQ(host.FetchCount(), 0u);
}

TEST(Version, BuildNumberFromCompileDate)
{
    EXPECT_EQ(g_TSGetCurrentBuildNumber("Nov  5 2014"), 141105);
    EXPECT_EQ(g_TSGetCurrentBuildNumber("Jan 31 2026"), 260131);
    EXPECT_EQ(g_TSGetCurrentBuildNumber("Nov  5 201"), 0);
    EXPECT_EQ(g_TSGetCurrentBuildNumber(nullptr), 0);
    EXPECT_EQ(g_VersionInf.nVersion, 3);
    EXPECT_EQ(g_VersionInf.nRevision, 0);
    EXPECT_EQ(g_VersionInf.nBuild, g_TSGetCurrentBuildNumber(__DATE__));
}

} // namespace
