#include <gtest/gtest.h>

#include <dlfcn.h>
#include <atomic>
#include <chrono>
#include <thread>

#include "../platform/CritSect.h"
#include "../platform/ModulePath.h"
#include "../platform/UserInterface.h"

namespace {

TEST(ModulePath, BundleIsThreeComponentsAboveTheModule)
{
    EXPECT_EQ(Platform::BundlePathOf("/opt/x/DeglarerPro.bundle/Contents/Linux-x86-64/DeglarerPro.so"),
              "/opt/x/DeglarerPro.bundle");
    EXPECT_EQ(Platform::BundlePathOf("/a/b/c"), "");
    EXPECT_EQ(Platform::BundlePathOf("DeglarerPro.so"), "");
    EXPECT_EQ(Platform::BundlePathOf(""), "");
    EXPECT_EQ(Platform::ResourcesPathOf("/opt/x/B.bundle"), "/opt/x/B.bundle/Contents/Resources");
    EXPECT_EQ(Platform::ResourcesPathOf(""), "");
}

TEST(ModulePath, FindsTheFileThatHoldsASymbol)
{
    const std::string self = Platform::ModulePathOf(reinterpret_cast<const void*>(&Platform::BundlePathOf));
    ASSERT_FALSE(self.empty());
    EXPECT_EQ(self.front(), '/');
    EXPECT_NE(self.find("deglarer_unit_tests"), std::string::npos);
    EXPECT_EQ(Platform::ModulePathOf(nullptr), "");
}

TEST(CritSect, IsReentrantAndExcludesOtherThreads)
{
    CCritSect region;
    std::atomic<bool> entered{false};
    std::thread other;
    {
        CCritSectLock outer(region);
        CCritSectLock inner(region);   // the same thread enters again without blocking
        other = std::thread([&] {
            CCritSectLock lock(region);
            entered = true;
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        EXPECT_FALSE(entered.load());
    }
    other.join();
    EXPECT_TRUE(entered.load());
}

TEST(UserInterface, HeadlessTakesDefaultUnlessScripted)
{
    Platform::HeadlessUserInterface ui;
    Platform::IUserInterface* previous = Platform::SetUserInterface(&ui);
    Platform::IUserInterface& seam = Platform::GetUserInterface();
    EXPECT_EQ(&seam, &ui);
    const std::vector<std::string> buttons = {"Ignore", "Debug", "Abort"};
    EXPECT_EQ(seam.ShowAlert("Title", "Message", buttons, 0), 0);
    ui.QueueButton("Abort");
    EXPECT_EQ(seam.ShowAlert("Title", "Second", buttons, 0), 2);
    ASSERT_EQ(ui.Alerts().size(), 2u);
    EXPECT_EQ(ui.Alerts()[1].message, "Second");

    std::string path = "unchanged";
    EXPECT_FALSE(seam.ChooseFileToOpen("Open", "fxpunka", &path));
    ui.QueuePath("/tmp/a.fxpunka");
    ui.QueuePath("");
    EXPECT_TRUE(seam.ChooseFileToSave("Save", "MyPreset.fxpunka", "fxpunka", &path));
    EXPECT_EQ(path, "/tmp/a.fxpunka");
    EXPECT_FALSE(seam.ChooseFileToOpen("Open", "fxpunka", &path));
    Platform::SetUserInterface(previous);
}

} // namespace
