// The preset saver as a separately built host reaches it: through the module loaded with dlopen
// and the slots of its interfaces. The module's file panels are its own headless ones, which
// cancel, so this covers what a host sees before and after a cancelled panel.
#include <gtest/gtest.h>

#include <cstring>

#include "../host/CallSlot.h"
#include "../host/ModuleLoader.h"
#include "../include/EffectPreset.h"
#include "../include/InterfaceIds.h"
#include "../include/PresetSaver.h"

namespace {

using TestHost::CallSlot;
using TestHost::ModuleLoader;

// The library's slot 10 is GetPresetSaver; the saver's IUnknown slots 0-2, two destructor slots,
// then 5 Load and 6 Save.
enum Slot { kQueryInterface = 0, kAddRef = 1, kRelease = 2, kLoad = 5, kSave = 6, kGetPresetSaver = 10 };

TEST(PresetModule, SaverComesFromTheLibraryAndAnswersThroughItsSlots)
{
    ModuleLoader module(ModuleLoader::ModuleInBundle(DEGLARER_BUNDLE_PATH));
    ASSERT_TRUE(module.Loaded()) << module.Error();
    IEffectLibrary* library = module.GetEffectsLibrary();
    ASSERT_NE(library, nullptr);

    void* saver = CallSlot<void*>(library, kGetPresetSaver);
    void* other = CallSlot<void*>(library, kGetPresetSaver);
    ASSERT_TRUE(saver != nullptr && other != nullptr && saver != other);
    EXPECT_EQ(CallSlot<uint32_t>(other, kRelease), 0u);

    void* same = nullptr;
    EXPECT_EQ(CallSlot<int32_t>(saver, kQueryInterface, &IID_PresetSaver, &same), 0);
    EXPECT_EQ(same, saver);
    EXPECT_EQ(CallSlot<int32_t>(saver, kQueryInterface, &IID_IUnknown, &same), 0);
    EXPECT_EQ(same, saver);
    EXPECT_EQ(CallSlot<uint32_t>(saver, kAddRef), 4u);
    for (uint32_t left : {3u, 2u, 1u})
        EXPECT_EQ(CallSlot<uint32_t>(saver, kRelease), left);
    for (const _GUID* other : {&IID_EffectLibrary, &IID_VideoEffect, &IID_FrameProcessor, &IID_IMultiLingual}) {
        void* refused = saver;
        EXPECT_EQ(CallSlot<int32_t>(saver, kQueryInterface, other, &refused), static_cast<int32_t>(0x80004002u));
        EXPECT_EQ(refused, nullptr);
    }
    EXPECT_EQ(CallSlot<int32_t>(saver, kQueryInterface, &IID_PresetSaver, static_cast<void**>(nullptr)),
              static_cast<int32_t>(0x80004005u));

    // Without a preset nothing is asked; with one the headless panel cancels, and the preset is
    // as it was. Nothing is shown either way.
    testing::internal::CaptureStdout();
    CEffectPreset preset;
    std::memset(&preset, 0x3C, sizeof preset);
    CEffectPreset before = preset;
    auto call = [&](int slot, CEffectPreset* record) {
        return CallSlot<int, OpaqueWindowPtr*, IEffectLibrary*, unsigned int, CEffectPreset*, char*>(
            saver, slot, nullptr, library, 0u, record, nullptr);
    };
    EXPECT_EQ(call(kSave, nullptr), 1);
    EXPECT_EQ(call(kSave, &preset), 1);
    EXPECT_EQ(call(kLoad, &preset), 1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(std::memcmp(&preset, &before, sizeof preset), 0);

    // The saver doesn't hold the module: only library objects do.
    EXPECT_EQ(library->Release(), 0u);
    EXPECT_TRUE(module.CanUnload());
    EXPECT_EQ(CallSlot<uint32_t>(saver, kRelease), 0u);
}

} // namespace
