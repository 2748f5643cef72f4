// The preset saver as a separately built host reaches it: through the module loaded with dlopen
// and the slots of its interfaces. The module's file panels are its own headless ones, which
// cancel, so this covers what a host sees before and after a cancelled panel.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include "../host/ModuleLoader.h"
#include "../include/EffectPreset.h"
#include "../include/InterfaceIds.h"
#include "../include/PresetSaver.h"

namespace {

using TestHost::ModuleLoader;

template <typename Result, typename... Args>
Result CallSlot(void* object, int slot, Args... args)
{
    using Function = Result (*)(void*, Args...);
    Function* table = *static_cast<Function**>(object);
    return table[slot](object, args...);
}

// IUnknown slots 0-2, two destructor slots, then 5 Load and 6 Save.
const int kQueryInterfaceSlot = 0;
const int kAddRefSlot = 1;
const int kReleaseSlot = 2;
const int kLoadSlot = 5;
const int kSaveSlot = 6;
const int kGetPresetSaverSlot = 10;

TEST(PresetModule, SaverComesFromTheLibraryAndAnswersThroughItsSlots)
{
    ModuleLoader module(ModuleLoader::ModuleInBundle(DEGLARER_BUNDLE_PATH));
    ASSERT_TRUE(module.Loaded()) << module.Error();
    IEffectLibrary* library = module.GetEffectsLibrary();
    ASSERT_NE(library, nullptr);

    void* saver = CallSlot<void*>(library, kGetPresetSaverSlot);
    void* other = CallSlot<void*>(library, kGetPresetSaverSlot);
    ASSERT_NE(saver, nullptr);
    ASSERT_NE(other, nullptr);
    EXPECT_NE(saver, other);
    EXPECT_EQ(CallSlot<uint32_t>(other, kReleaseSlot), 0u);

    void* same = nullptr;
    EXPECT_EQ(CallSlot<int32_t>(saver, kQueryInterfaceSlot, &IID_PresetSaver, &same), 0);
    EXPECT_EQ(same, saver);
    EXPECT_EQ(CallSlot<int32_t>(saver, kQueryInterfaceSlot, &IID_IUnknown, &same), 0);
    EXPECT_EQ(same, saver);
    EXPECT_EQ(CallSlot<uint32_t>(saver, kAddRefSlot), 4u);
    EXPECT_EQ(CallSlot<uint32_t>(saver, kReleaseSlot), 3u);
    EXPECT_EQ(CallSlot<uint32_t>(saver, kReleaseSlot), 2u);
    EXPECT_EQ(CallSlot<uint32_t>(saver, kReleaseSlot), 1u);
    for (const _GUID* other : {&IID_EffectLibrary, &IID_VideoEffect, &IID_FrameProcessor, &IID_IMultiLingual}) {
        void* refused = saver;
        EXPECT_EQ(CallSlot<int32_t>(saver, kQueryInterfaceSlot, other, &refused), static_cast<int32_t>(0x80004002u));
        EXPECT_EQ(refused, nullptr);
    }
    EXPECT_EQ(CallSlot<int32_t>(saver, kQueryInterfaceSlot, &IID_PresetSaver, static_cast<void**>(nullptr)),
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
    EXPECT_EQ(call(kSaveSlot, nullptr), 1);
    EXPECT_EQ(call(kSaveSlot, &preset), 1);
    EXPECT_EQ(call(kLoadSlot, &preset), 1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(std::memcmp(&preset, &before, sizeof preset), 0);

    // The saver doesn't hold the module: only library objects do.
    EXPECT_EQ(library->Release(), 0u);
    EXPECT_TRUE(module.CanUnload());
    EXPECT_EQ(CallSlot<uint32_t>(saver, kReleaseSlot), 0u);
}

} // namespace
