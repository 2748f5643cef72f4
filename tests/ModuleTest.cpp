// Plays a host that was built apart from the library: the module is loaded with dlopen and
// reached only through its exported entry points and the slots of its interfaces.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <cstring>
#include <memory>
#include <string>

#include "../host/CallSlot.h"
#include "../host/Clip.h"
#include "../host/InProcessHost.h"
#include "../host/ModuleLoader.h"
#include "../include/InterfaceIds.h"
#include "../include/VideoEffect.h"

namespace {

using TestHost::CallSlot;
using TestHost::ModuleLoader;

class ModuleTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        module.reset(new ModuleLoader(ModuleLoader::ModuleInBundle(DEGLARER_BUNDLE_PATH)));
        ASSERT_TRUE(module->Loaded()) << module->Error();
    }
    std::unique_ptr<ModuleLoader> module;
};

TEST_F(ModuleTest, BundleHoldsModuleAndResources)
{
    struct stat info;
    EXPECT_EQ(stat(DEGLARER_BUNDLE_PATH "/Contents/Resources", &info), 0);
    EXPECT_TRUE(S_ISDIR(info.st_mode));
    EXPECT_EQ(stat(DEGLARER_BUNDLE_PATH "/Contents/Linux-x86-64/DeglarerPro.so", &info), 0);
}

TEST_F(ModuleTest, CanUnloadFollowsLiveLibraryObjects)
{
    EXPECT_TRUE(module->CanUnload());
    IEffectLibrary* first = module->GetEffectsLibrary();
    IEffectLibrary* second = module->GetEffectsLibrary();
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(first, second);
    EXPECT_FALSE(module->CanUnload());
    IVideoEffect* effect = first->CreateEffect(0);
    ASSERT_NE(effect, nullptr);
    EXPECT_EQ(first->Release(), 0u);
    EXPECT_FALSE(module->CanUnload());
    EXPECT_EQ(second->Release(), 0u);
    EXPECT_TRUE(module->CanUnload());   // effects still held don't keep the module
    EXPECT_EQ(effect->Release(), 0u);
}

TEST_F(ModuleTest, LibrarySlotsInOrder)
{
    IEffectLibrary* library = module->GetEffectsLibrary();
    // 0 QueryInterface, 1 AddRef, 2 Release, 3-4 destructors, 5 GetName, 6 CreateEffect,
    // 7 OpenHelp, 8 GetLibraryServices, 9 GetFrameProcessor, 10 GetPresetSaver.
    EXPECT_STREQ(CallSlot<const char*>(library, 5), "Tessarel Deglarer Pro");
    EXPECT_EQ(CallSlot<uint32_t>(library, 1), 2u);
    EXPECT_EQ(CallSlot<uint32_t>(library, 2), 1u);
    EXPECT_EQ(CallSlot<void*>(library, 8), nullptr);   // no services offered yet
    void* effect = CallSlot<void*>(library, 6, 0u);
    ASSERT_NE(effect, nullptr);
    EXPECT_EQ(CallSlot<void*>(library, 6, 1u), nullptr);
    void* unknown = nullptr;
    EXPECT_EQ(CallSlot<int32_t>(library, 0, &IID_IUnknown, &unknown), 0);
    EXPECT_EQ(unknown, static_cast<void*>(library));
    void* translator = library;
    EXPECT_EQ(CallSlot<int32_t>(library, 0, &IID_IMultiLingual, &translator), static_cast<int32_t>(0x80004002u));
    EXPECT_EQ(translator, nullptr);
    EXPECT_EQ(CallSlot<uint32_t>(library, 2), 1u);

    // The effect: 5 GetName, 6 GetCaps, 7 EnumParam, 8 Render, 9 EnumPreset, 10 EnumPresetData.
    EXPECT_STREQ(CallSlot<const char*>(effect, 5), "Deglarer Pro");
    EXPECT_EQ(CallSlot<uint32_t>(effect, 6), 993u);
    EffectParamSetup setup = {};
    EXPECT_TRUE(CallSlot<bool>(effect, 7, 1u, &setup));
    EXPECT_STREQ(setup.szName, "Max Frames");
    EXPECT_STREQ(CallSlot<const char*>(effect, 9, 3u), "Heavy Flashes");
    EffectParam value = {};
    EXPECT_TRUE(CallSlot<bool>(effect, 10, 3u, 1u, &value));
    EXPECT_EQ(value.value.fValue, 1.0f);

    void* toolTips = nullptr;
    ASSERT_EQ(CallSlot<int32_t>(effect, 0, &IID_ParamToolTip, &toolTips), 0);
    EXPECT_STREQ(CallSlot<const char*>(toolTips, 5, 2u), "Shows what frames have been detected as flash");
    void* uniqueId = nullptr;
    ASSERT_EQ(CallSlot<int32_t>(toolTips, 0, &IID_EffectUniqueId, &uniqueId), 0);
    CallSlot<void>(uniqueId, 5, 1234u);
    EXPECT_EQ(CallSlot<uint32_t>(uniqueId, 6), 1234u);
    EXPECT_EQ(CallSlot<uint32_t>(uniqueId, 2), 2u);
    EXPECT_EQ(CallSlot<uint32_t>(toolTips, 2), 1u);
    EXPECT_EQ(CallSlot<uint32_t>(effect, 2), 0u);
    EXPECT_EQ(CallSlot<uint32_t>(library, 2), 0u);
    EXPECT_TRUE(module->CanUnload());
}

TEST_F(ModuleTest, RendersThroughTheModuleOnBothPathsAndBalancesTheHost)
{
    IEffectLibrary* library = module->GetEffectsLibrary();
    IVideoEffect* effect = library->CreateEffect(0);
    for (bool timeAccess : {true, false}) {
        TestHost::Clip clip(33, 7, pfVideoSampleSwapped, 4, 30.0, 33 * 4 + 4);
        for (int index = 0; index < clip.FrameCount(); ++index)
            clip.Fill(index, 0.2f, 0.3f, 0.4f + 0.01f * index);
        TestHost::InProcessHost::Options options;
        options.timeAccess = timeAccess;
        TestHost::InProcessHost host(clip, options);
        for (int index = 0; index < clip.FrameCount(); ++index) {
            TestHost::Picture output(33, 7, pfVideoSampleSwapped);
            FrameParams destination = output.Params();
            ASSERT_TRUE(host.RenderFrame(effect, index, &destination));
            EXPECT_TRUE(output.SameAs(clip, index)) << index;
        }
        EXPECT_EQ(host.Leaks(), "");
    }
    FrameParams nothing = {};
    TestHost::Clip clip(2, 2, pfVideoSample, 1, 25.0);
    TestHost::InProcessHost host(clip);
    RenderInfo info = host.MakeRenderInfo(0);
    FrameParams source = clip.Params(0);
    EXPECT_FALSE(effect->Render(&host, &source, nullptr, &nothing, &info));
    EXPECT_FALSE(effect->Render(nullptr, &source, nullptr, &source, &info));
    effect->Release();
    library->Release();
}

} // namespace
