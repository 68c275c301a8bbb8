// The program itself, in front of a real screen.
#include <gtest/gtest.h>

#include <string>

#include "LibraryFile.h"
#include "ProgramTesting.h"

// A main unit that has nothing to tell.
class FrontTest : public ProgramTest {
protected:
    void SetUp() override {
        std::string error;
        EXPECT_TRUE(library::SaveLibrary(libraryFile, {}, error)) << error;
        StartTheUnit();
        Start();
    }
};

TEST_F(FrontTest, AboutBoxAndClosingQuestion) {
    Xdotool("key alt+h key Down key Return");
    ASSERT_TRUE(WaitUntilActive("Version information"));
    Xdotool("key Escape");
    Xdotool("search --name '^" + std::string(kTitle) + "$' windowactivate");
    EXPECT_TRUE(WaitUntilActive("Version information")) << "the window behind it is not for use, nor did Escape end it";
    Xdotool("key Return");
    ASSERT_TRUE(WaitForNoWindow("Version information"));
    ASSERT_TRUE(WaitUntilActive(kTitle));

    // As most hands do it, Alt first. Its release goes to the window manager, which has taken the chord.
    Xdotool("keydown alt keydown F4 keyup alt");
    ASSERT_TRUE(WaitUntilActive("Tesselia Message"));
    Xdotool("keyup F4 key Tab key Return");
    ASSERT_TRUE(WaitForNoWindow("Tesselia Message"));
    ASSERT_TRUE(WaitUntilActive(kTitle));
    Xdotool("key alt+f key c");
    ASSERT_TRUE(WaitUntilActive("Tesselia Message"));
    Xdotool("key Return");
    EXPECT_EQ(program->End(), 0) << program->Errors();
}

TEST_F(FrontTest, ASecondCopyBringsTheFirstForward) {
    Process other("xmessage", {"-title", "elsewhere", "elsewhere"}, NextOutputs("other"));
    ASSERT_TRUE(WaitForWindow("elsewhere"));
    // The window itself, and what stands above it.
    for (const char* front : {kTitle, "Select Font"}) {
        Xdotool("search --onlyvisible --name '^elsewhere$' windowactivate");
        ASSERT_TRUE(WaitUntilActive("elsewhere"));
        const auto second = StartTested("tesselia", {});
        EXPECT_EQ(second->End(), 0) << second->Errors();
        EXPECT_TRUE(WaitUntilActive(front));
        Xdotool("search --name '^" + std::string(kTitle) + "$' windowactivate");
        EXPECT_TRUE(WaitUntilActive(front));
        Xdotool(front == kTitle ? "key alt+t key f" : "key Escape");
        ASSERT_TRUE(WaitUntilActive(front == kTitle ? "Select Font" : kTitle));
    }
}

TEST_F(FrontTest, TheWindowManagerKnowsItsLeastSize) {
    const std::string hints = Shell("xprop -id $(xdotool getactivewindow) WM_NORMAL_HINTS");
    EXPECT_NE(hints.find("minimum size: 298 by 145"), std::string::npos) << "300 by 170 with the frame: " << hints;
}

TEST(ProgramWithoutScreenTest, SaysSo) {
    Process program("env", {"-u", "DISPLAY", "-u", "QT_QPA_PLATFORM", TESSELIA_BIN "/tesselia"},
                    (theScreen->Folder() / "dark").string());
    EXPECT_EQ(program.End(), 1);
    EXPECT_NE(program.Errors().find("needs a display"), std::string::npos) << program.Errors();
}
