// Message boxes: their buttons and answers, and what they do to their owner.
#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <string>

#include "Harness.h"
#include "MessageLog.h"

namespace {

// Whether a box has the buttons named, and no other of those that there are.
void ExpectButtons(HWND box, std::initializer_list<int> wanted) {
    for (const int id : {IDOK, IDCANCEL, IDYES, IDNO}) {
        const bool isWanted = std::find(wanted.begin(), wanted.end(), id) != wanted.end();
        EXPECT_EQ(GetDlgItem(box, id) != nullptr, isWanted) << "button " << id;
    }
}

const std::initializer_list<int>* answerKeys = nullptr;

void CALLBACK PressAnswerKeys(HWND, UINT, UINT_PTR timer, DWORD) {
    HWND box = FindDialog("Question");
    if (box == nullptr || GetForegroundWindow() != box) {
        return;
    }
    KillTimer(nullptr, timer);
    for (const int key : *answerKeys) {
        PressKeys({key});
    }
}

}  // namespace

TEST(MessageBoxTest, GivesTheButtonThatWasPressed) {
    for (const int pressed : {IDYES, IDNO}) {
        DialogAnswer answer("Question", pressed, [](HWND box) {
            ExpectButtons(box, {IDYES, IDNO});
            char className[16] = "";
            GetClassNameA(box, className, sizeof className);
            EXPECT_STREQ(className, "#32770");
            EXPECT_EQ(GetFocus(), GetDlgItem(box, IDYES)) << "the first button is the default";
        });
        EXPECT_EQ(MessageBoxA(nullptr, "Go on?", "Question", MB_YESNO | MB_ICONQUESTION), pressed);
    }
    DialogAnswer answer("Note", IDOK, [](HWND box) { ExpectButtons(box, {IDOK}); });
    EXPECT_EQ(MessageBoxA(nullptr, "Done.", "Note", MB_OK | MB_ICONINFORMATION), IDOK);
}

TEST(MessageBoxTest, DisablesItsOwnerAndServesItsMessages) {
    MessageLog log({WM_USER, WM_ENABLE, WM_ACTIVATE, WM_SETFOCUS});
    HWND main = MakeTestWindow("main", WS_OVERLAPPEDWINDOW);
    HWND button = MakeChild("BUTTON", BS_PUSHBUTTON, main, 1, 10, 10, 50, 20);
    log.Watch(button, "button");
    ShowWindow(main, SW_SHOW);
    ASSERT_TRUE(BringForward(main));
    SetFocus(button);
    PostMessageA(main, WM_USER, 0, 0);
    std::string before;
    log.Take();
    {
        DialogAnswer answer("Question", IDNO, [&](HWND box) {
            EXPECT_FALSE(IsWindowEnabled(main));
            EXPECT_EQ(GetWindow(box, GW_OWNER), main);
            EXPECT_EQ(GetActiveWindow(), box);
            before = log.Take();
        });
        EXPECT_EQ(MessageBoxA(main, "Go on?", "Question", MB_YESNO), IDNO);
    }
    EXPECT_TRUE(IsWindowEnabled(main));
    EXPECT_NE(before.find("main WM_ENABLE off"), std::string::npos) << before;
    EXPECT_NE(before.find("main WM_USER"), std::string::npos) << "posted messages flow on: " << before;
    EXPECT_EQ(GetActiveWindow(), main);
    const std::string after = log.Take();
    const size_t enabled = after.find("main WM_ENABLE on");
    ASSERT_NE(enabled, std::string::npos) << after;
    EXPECT_LT(enabled, after.find("main WM_ACTIVATE state 1"))
        << "an owner still disabled could not come forward: " << after;
    DestroyWindow(main);
}

TEST(MessageBoxTest, KeysAnswerIt) {
    const struct {
        UINT style;
        std::initializer_list<int> keys;
        int answer;
    } cases[] = {
        {MB_YESNO, {VK_RETURN}, IDYES},
        {MB_YESNO, {VK_TAB, VK_RETURN}, IDNO},
        {MB_YESNO, {VK_RIGHT, VK_SPACE}, IDNO},
        {MB_OK, {VK_SPACE}, IDOK},
    };
    for (const auto& box : cases) {
        answerKeys = &box.keys;
        const UINT_PTR timer = SetTimer(nullptr, 0, USER_TIMER_MINIMUM, PressAnswerKeys);
        EXPECT_EQ(MessageBoxA(nullptr, "Go on?", "Question", box.style), box.answer);
        KillTimer(nullptr, timer);
    }
}

TEST(MessageBoxTest, ASecondOneMayOpenOnTop) {
    HWND main = MakeTestWindow("main", WS_OVERLAPPEDWINDOW);
    ShowWindow(main, SW_SHOW);
    {
        DialogAnswer outer("Outer", IDNO, [main](HWND box) {
            DialogAnswer inner("Inner", IDYES);
            EXPECT_EQ(MessageBoxA(box, "Sure?", "Inner", MB_YESNO), IDYES);
            EXPECT_FALSE(IsWindowEnabled(main)) << "the outer box still stands";
            EXPECT_TRUE(IsWindowEnabled(box));
        });
        EXPECT_EQ(MessageBoxA(main, "Go on?", "Outer", MB_YESNO), IDNO);
    }
    EXPECT_TRUE(IsWindowEnabled(main));
    DestroyWindow(main);
}
