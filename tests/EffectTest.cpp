#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "../DeglarerPro/Deglarer.h"
#include "../DeglarerPro/DeglarerPro.h"
#include "../DeglarerPro/Version.h"
#include "../host/Clip.h"
#include "../host/InProcessHost.h"
#include "../include/InterfaceIds.h"

namespace {

uint32_t FloatBits(float value)
{
    uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

TEST(Effect, DescribesItsThreeParameters)
{
    CDeglarer effect;
    struct Expected {
        const char* name;
        uint32_t type;
        float min, max;
        uint32_t defaultBits;
        uint32_t layout1;
    };
    const Expected expected[] = {
        {"Sensitivity", 2, 0.0f, 100.0f, FloatBits(0.7f), 0},
        {"Max Frames", 2, 1.0f, 10.0f, FloatBits(0.2f), 66},
        {"Test mode", 4, 0.0f, 0.0f, 0, 132},
    };
    for (unsigned int index = 0; index < 3; ++index) {
        EffectParamSetup setup;
        std::memset(&setup, 0, sizeof setup);
        ASSERT_TRUE(effect.EnumParam(index, &setup));
        EXPECT_STREQ(setup.szName, expected[index].name);
        EXPECT_EQ(setup.dwType, expected[index].type);
        EXPECT_EQ(setup.fMin, expected[index].min);
        EXPECT_EQ(setup.fMax, expected[index].max);
        uint32_t defaultBits;
        std::memcpy(&defaultBits, setup.defaultValue.bytes, 4);
        EXPECT_EQ(defaultBits, expected[index].defaultBits);
        EXPECT_EQ(setup.dwRangeWord, 0u);
        EXPECT_EQ(setup.dwLayout1, expected[index].layout1);
        EXPECT_EQ(setup.dwLayout2, 0u);
        EXPECT_EQ(setup.dwLayout3, 198u);
        EXPECT_EQ(setup.dwLayout4, 30u);
        EXPECT_TRUE(setup.bFlag);
    }
    EffectParamSetup untouched;
    std::memset(&untouched, 0x5A, sizeof untouched);
    EffectParamSetup setup = untouched;
    EXPECT_FALSE(effect.EnumParam(3, &setup));
    EXPECT_EQ(0, std::memcmp(&setup, &untouched, sizeof setup));
    EXPECT_FALSE(effect.EnumParam(0, nullptr));
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
        for (unsigned int param = 0; param < 3; ++param)
            ASSERT_TRUE(effect.EnumPresetData(preset, param, &values[param]));
        uint64_t words[3];
        for (int param = 0; param < 3; ++param)
            std::memcpy(&words[param], values[param].value.bytes, 8);
        EXPECT_EQ(words[0], expected[preset].sensitivity) << preset;
        EXPECT_EQ(words[1], expected[preset].maxFrames) << preset;
        EXPECT_EQ(words[2], expected[preset].testMode ? 1u : 0u) << preset;
        EXPECT_EQ(values[0].dwType, 0xFFFFFFFFu);   // only the value bytes are filled
    }
    EXPECT_EQ(effect.EnumPreset(8), nullptr);
    EffectParam value;
    std::memset(&value, 0x11, sizeof value);
    EXPECT_FALSE(effect.EnumPresetData(8, 0, &value));
    EXPECT_FALSE(effect.EnumPresetData(0, 3, &value));
    EXPECT_FALSE(effect.EnumPresetData(0, 0, nullptr));
    EXPECT_EQ(value.dwType, 0x11111111u);
}

TEST(Effect, ToolTipsNameAndIdentity)
{
    CDeglarer effect;
    EXPECT_STREQ(effect.GetName(), "Deglarer Pro");
    EXPECT_EQ(effect.GetCaps(), 993u);
    EXPECT_STREQ(effect.EnumToolTip(0), "Control how sensitive flash detection is");
    EXPECT_STREQ(effect.EnumToolTip(1), "Limit how many consecutive frames will be compensated for");
    EXPECT_STREQ(effect.EnumToolTip(2), "Shows what frames have been detected as flash");
    EXPECT_EQ(effect.EnumToolTip(3), nullptr);
    EXPECT_EQ(effect.GetId(), 0xFFFFFFFFu);
    effect.SetId(42);
    EXPECT_EQ(effect.GetId(), 42u);
}

TEST(Effect, SubObjectsShareOneReferenceCount)
{
    IVideoEffect* effect = new CDeglarer();
    IParamToolTip* toolTips = nullptr;
    ASSERT_EQ(effect->QueryInterface(IID_ParamToolTip, reinterpret_cast<void**>(&toolTips)), S_OK);
    EXPECT_EQ(effect->AddRef(), 3u);
    EXPECT_EQ(toolTips->Release(), 2u);
    IEffectUniqueId* id = nullptr;
    ASSERT_EQ(toolTips->QueryInterface(IID_EffectUniqueId, reinterpret_cast<void**>(&id)), S_OK);
    id->SetId(9);
    EXPECT_EQ(effect->QueryInterface(IID_VideoEffect, reinterpret_cast<void**>(&toolTips)), S_OK);
    EXPECT_EQ(static_cast<void*>(toolTips), static_cast<void*>(effect));
    EXPECT_EQ(static_cast<CDeglarer*>(effect)->GetId(), 9u);
    void* none = effect;
    EXPECT_EQ(effect->QueryInterface(IID_FrameProcessor, &none), E_NOINTERFACE);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(effect->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(id->Release(), 3u);
    EXPECT_EQ(effect->Release(), 2u);
    EXPECT_EQ(effect->Release(), 1u);
    EXPECT_EQ(effect->Release(), 0u);
}

TEST(Effect, RenderRefusesMissingArgumentsWithoutTouchingAnything)
{
    TestHost::Clip clip(4, 2, pfVideoSample, 1, 25.0);
    clip.Fill(0, 0.5f, 0.5f, 0.5f);
    TestHost::InProcessHost host(clip);
    CDeglarer effect;
    FrameParams source = clip.Params(0);
    TestHost::Picture output(4, 2, pfVideoSample);
    FrameParams destination = output.Params();
    RenderInfo info = host.MakeRenderInfo(0);
    FrameParams noBuffer = destination;
    noBuffer.pBuffer = nullptr;

    EXPECT_FALSE(effect.Render(nullptr, &source, nullptr, &destination, &info));
    EXPECT_FALSE(effect.Render(&host, nullptr, nullptr, &destination, &info));
    EXPECT_FALSE(effect.Render(&host, &source, nullptr, nullptr, &info));
    EXPECT_FALSE(effect.Render(&host, &source, nullptr, &noBuffer, &info));
    EXPECT_FALSE(effect.Render(&host, &source, nullptr, &destination, nullptr));
    FrameParams noSource = source;
    noSource.pBuffer = nullptr;
    EXPECT_FALSE(effect.Render(&host, &noSource, nullptr, &destination, &info));
    EXPECT_EQ(output.Bytes(), std::vector<uint8_t>(output.Bytes().size(), 0));
    EXPECT_EQ(host.ParamReads(), 0u);
    EXPECT_EQ(host.FetchCount(), 0u);
}

TEST(Effect, BothRenderPathsDeliverTheSourceOfAQuietClip)
{
    for (bool timeAccess : {true, false}) {
        TestHost::Clip clip(6, 3, pfVideoSampleFloat, 3, 25.0, 6 * 16 + 32);
        for (int index = 0; index < 3; ++index)
            clip.Fill(index, 0.3f, 0.4f, 0.5f);
        TestHost::InProcessHost::Options options;
        options.timeAccess = timeAccess;
        TestHost::InProcessHost host(clip, options);
        CDeglarer effect;
        TestHost::Picture output(6, 3, pfVideoSampleFloat);
        FrameParams destination = output.Params();
        ASSERT_TRUE(host.RenderFrame(&effect, 1, &destination));
        EXPECT_TRUE(output.SameAs(clip, 1)) << (timeAccess ? "time access" : "sequential");
        EXPECT_EQ(host.Leaks(), "");
    }
}

TEST(Library, CountsLiveObjectsAndMakesOneEffect)
{
    const int32_t before = DLLDependentObject::m_nInstanceCount.load();
    IEffectLibrary* first = new CDeglarerPro();
    IEffectLibrary* second = new CDeglarerPro();
    EXPECT_EQ(DLLDependentObject::m_nInstanceCount.load(), before + 2);
    EXPECT_STREQ(first->GetName(), "Tessarel Deglarer Pro");
    EXPECT_EQ(first->CreateEffect(1), nullptr);
    IVideoEffect* effect = first->CreateEffect(0);
    ASSERT_NE(effect, nullptr);
    EXPECT_EQ(effect->Release(), 0u);

    void* same = nullptr;
    ASSERT_EQ(first->QueryInterface(IID_EffectLibrary, &same), S_OK);
    EXPECT_EQ(same, first);
    void* unknown = nullptr;
    ASSERT_EQ(first->QueryInterface(IID_IUnknown, &unknown), S_OK);
    EXPECT_EQ(unknown, first);
    void* translator = first;
    EXPECT_EQ(first->QueryInterface(IID_IMultiLingual, &translator), E_NOINTERFACE);
    EXPECT_EQ(translator, nullptr);
    EXPECT_EQ(first->Release(), 2u);
    EXPECT_EQ(first->Release(), 1u);
    EXPECT_EQ(first->Release(), 0u);
    EXPECT_EQ(second->Release(), 0u);
    EXPECT_EQ(DLLDependentObject::m_nInstanceCount.load(), before);
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
    const char* copyRight = g_VersionInf.pCopyRight;   // read by value: the record is packed
    ASSERT_NE(copyRight, nullptr);
}

} // namespace
