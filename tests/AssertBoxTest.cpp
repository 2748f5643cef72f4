#include <gtest/gtest.h>

#include "../foundation/AssertBox.h"
#include "../platform/UserInterface.h"

namespace {

class AssertBoxTest : public ::testing::Test {
protected:
    void SetUp() override { previous = Platform::SetUserInterface(&ui); }
    void TearDown() override { Platform::SetUserInterface(previous); }
    Platform::HeadlessUserInterface ui;
    Platform::IUserInterface* previous = nullptr;
};

TEST_F(AssertBoxTest, PrintsTheLineAndShowsTheAlertWithItsMessageCutAt511Bytes)
{
    testing::internal::CaptureStdout();
    EXPECT_EQ(__TSDebug::AssertBox("a == b", "void f(int)", "x.cpp", 12, "%d items", 3), 0);
    const std::string longText(2000, 'x');
    __TSDebug::AssertBox("c", "f", "g", 1, "%s", longText.c_str());
    const std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_EQ(printed.substr(0, printed.find('\n') + 1), "Assertion failed: a == b; in void f(int) (x.cpp#12) 3 items \n");
    ASSERT_EQ(ui.Alerts().size(), 2u);
    EXPECT_EQ(ui.Alerts()[0].title, "Assertion failed");
    EXPECT_EQ(ui.Alerts()[0].message, "Condition: a == b\n\nIn void f(int)\nx.cpp#12\n\n3 items");
    EXPECT_EQ(ui.Alerts()[0].buttons, (std::vector<std::string>{"Ignore", "Debug", "Abort"}));
    EXPECT_EQ(ui.Alerts()[1].message, "Condition: c\n\nIn f\ng#1\n\n" + std::string(511, 'x'));
}

TEST_F(AssertBoxTest, MacroGoesOnBehindAnIgnoredOrDebuggedAssertion)
{
    testing::internal::CaptureStdout();
    int reached = 0;
    TS_ASSERT(reached == 1);
    ++reached;
    ui.QueueButton("Debug");
    TS_ASSERT(reached == 5);
    ++reached;
    TS_ASSERT(reached == 2);   // holds: no report
    const std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_EQ(reached, 2);
    EXPECT_EQ(ui.Alerts().size(), 2u);
    EXPECT_NE(printed.find("Assertion failed: reached == 1; in "), std::string::npos);
    EXPECT_NE(printed.find("AssertBoxTest.cpp#"), std::string::npos);
}

TEST_F(AssertBoxTest, AbortEndsTheProcess)
{
    EXPECT_EXIT(
        {
            ui.QueueButton("Abort");
            __TSDebug::AssertBox("x", "f", "g", 1, "%s", "");
        },
        testing::ExitedWithCode(1), "");
}

} // namespace
