// The program itself, in front of a real screen.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "LibraryFile.h"
#include "ProgramTesting.h"

// A main unit that has nothing to tell.
class FrontTest : public ProgramTest {
protected:
    void SetUp() override {
        std::string error;
        EXPECT_TRUE(mainunit::SaveLibrary(libraryFile_, {}, error)) << error;
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

    Xdotool("key alt+F4");
    ASSERT_TRUE(WaitUntilActive("Tesselia Message"));
    Xdotool("key n");
    ASSERT_TRUE(WaitForNoWindow("Tesselia Message"));
    ASSERT_TRUE(WaitUntilActive(kTitle));
    Xdotool("key alt+f key c");
    ASSERT_TRUE(WaitUntilActive("Tesselia Message"));
    Xdotool("key Return");
    EXPECT_EQ(program_->End(), 0) << program_->Errors();
}

TEST_F(FrontTest, ASecondCopyBringsTheFirstForward) {
    Process other("xmessage", {"-name", "elsewhere", "elsewhere"}, NextOutputs("other"));
    ASSERT_TRUE(WaitForWindow("elsewhere$|^xmessage"));
    Xdotool("search --onlyvisible --name '^elsewhere$|^xmessage$' windowactivate");
    ASSERT_TRUE(
        WaitUntil([] { return Xdotool("getactivewindow getwindowname", true).find("ORVANE") == std::string::npos; }));
    Process second(TESSELIA_PROGRAM, {}, NextOutputs("second"));
    EXPECT_EQ(second.End(), 0) << second.Errors();
    EXPECT_TRUE(WaitUntilActive(kTitle));
}

TEST_F(FrontTest, CannotBeDraggedSmallerThanItsLeast) {
    const auto size = [] { return Xdotool("getactivewindow getwindowgeometry --shell", true); };
    const std::string before = size();
    // Alt and the right button drag the nearest corner.
    Xdotool("mousemove --window $(xdotool getactivewindow) 560 400 keydown alt mousedown 3");
    Xdotool("mousemove_relative -- -20 -20");
    Xdotool("mousemove_relative -- -480 -360");
    EXPECT_TRUE(WaitUntil([&] { return size() != before; }, std::chrono::seconds(10)));
    Xdotool("mouseup 3 keyup alt");
    const std::string after = size();
    const auto number = [&](const char* name) {
        return std::atoi(after.substr(after.find(name) + std::strlen(name)).c_str());
    };
    EXPECT_GT(number("WIDTH="), 200) << after;
    EXPECT_GT(number("HEIGHT="), 150) << after;
}

TEST(ProgramWithoutScreenTest, SaysSo) {
    const std::string display = getenv("DISPLAY");
    const std::string platform = getenv("QT_QPA_PLATFORM");
    unsetenv("DISPLAY");
    unsetenv("QT_QPA_PLATFORM");
    Process program(TESSELIA_PROGRAM, {}, (theScreen->Folder() / "dark").string());
    setenv("DISPLAY", display.c_str(), 1);
    setenv("QT_QPA_PLATFORM", platform.c_str(), 1);
    EXPECT_EQ(program.End(), 1);
    EXPECT_NE(program.Errors().find("needs a display"), std::string::npos) << program.Errors();
}
