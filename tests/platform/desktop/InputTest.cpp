// Keys, mouse capture, tab order and timers.
#include <gtest/gtest.h>

#include <string>

#include "Harness.h"
#include "MessageLog.h"

namespace {

std::string DlgCode(HWND parent, const char* className, DWORD style) {
    HWND control = MakeChild(className, style, parent, 1, 0, 0, 10, 10);
    char text[32];
    std::snprintf(text, sizeof text, "0x%X", static_cast<unsigned>(SendMessageA(control, WM_GETDLGCODE, 0, 0)));
    DestroyWindow(control);
    return text;
}

class TabOrderTest : public testing::Test {
protected:
    void SetUp() override {
        main = MakeTestWindow("main", WS_OVERLAPPEDWINDOW);
        for (int i = 0; i < 6; ++i) {
            MakeChild("BUTTON", BS_PUSHBUTTON, main, 100 + i, 10, 10 + 20 * i, 50, 20);
        }
        ShowWindow(main, SW_SHOW);
    }
    void TearDown() override { DestroyWindow(main); }

    HWND Child(int id) { return GetDlgItem(main, id); }
    int Next(int id) { return GetDlgCtrlID(GetNextDlgTabItem(main, id == 0 ? nullptr : Child(id), FALSE)); }
    int Previous(int id) { return GetDlgCtrlID(GetNextDlgTabItem(main, Child(id), TRUE)); }
    void Place(int id, HWND behind) { SetWindowPos(Child(id), behind, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE); }

    // The children from the front to the back.
    std::string Order() {
        std::string order;
        for (HWND child = GetWindow(main, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
            order += (order.empty() ? "" : " ") + std::to_string(GetDlgCtrlID(child));
        }
        return order;
    }

    HWND main = nullptr;
};

}  // namespace

TEST_F(TabOrderTest, FollowsTheOrderOfTheChildren) {
    EXPECT_EQ(Order(), "100 101 102 103 104 105") << "later children are behind earlier ones";
    EXPECT_EQ(Next(100), 101);
    EXPECT_EQ(Next(105), 100);
    EXPECT_EQ(Previous(101), 100);
    EXPECT_EQ(Previous(100), 105);
    EXPECT_EQ(Next(0), 100);

    Place(105, HWND_TOP);
    EXPECT_EQ(Order(), "105 100 101 102 103 104");
    Place(100, HWND_BOTTOM);
    EXPECT_EQ(Order(), "105 101 102 103 104 100");
    Place(105, Child(104));
    EXPECT_EQ(Order(), "101 102 103 104 105 100");
    BringWindowToTop(Child(103));
    EXPECT_EQ(Order(), "103 101 102 104 105 100");
    EXPECT_EQ(Next(103), 101);
    EXPECT_EQ(Next(100), 103);
    EXPECT_EQ(Previous(103), 100);
    EXPECT_EQ(GetWindow(Child(103), GW_HWNDPREV), nullptr);
}

TEST_F(TabOrderTest, LeavesOutWhatCannotHaveTheFocus) {
    EnableWindow(Child(101), FALSE);
    ShowWindow(Child(102), SW_HIDE);
    const LONG_PTR style = GetWindowLongPtrA(Child(103), GWL_STYLE);
    SetWindowLongPtrA(Child(103), GWL_STYLE, style & ~static_cast<LONG_PTR>(WS_TABSTOP));
    EXPECT_EQ(Next(100), 104);
    EXPECT_EQ(Next(102), 104) << "from one of them, too";
    EXPECT_EQ(Previous(104), 100);
    EXPECT_EQ(Previous(102), 100);
    DestroyWindow(Child(104));
    EXPECT_EQ(Next(100), 105);
    EnableWindow(Child(105), FALSE);
    EXPECT_EQ(Next(100), 100) << "there is no other";
    EnableWindow(Child(100), FALSE);
    EXPECT_EQ(Next(100), 100);
    EXPECT_EQ(GetNextDlgTabItem(main, nullptr, FALSE), nullptr);
}

TEST(DlgCodeTest, ControlsTellWhichKeysTheyWant) {
    HWND main = MakeTestWindow("main", WS_OVERLAPPEDWINDOW);
    EXPECT_EQ(DlgCode(main, "EDIT", 0), "0x89");
    EXPECT_EQ(DlgCode(main, "LISTBOX", LBS_NOTIFY | LBS_OWNERDRAWVARIABLE | LBS_HASSTRINGS), "0x81");
    EXPECT_EQ(DlgCode(main, "BUTTON", BS_PUSHBUTTON), "0x2020");
    EXPECT_EQ(DlgCode(main, "BUTTON", BS_DEFPUSHBUTTON), "0x2010");
    EXPECT_EQ(DlgCode(main, "BUTTON", BS_GROUPBOX), "0x100");
    EXPECT_EQ(DlgCode(main, "STATIC", SS_LEFT), "0x100");
    EXPECT_EQ(SendMessageA(main, WM_GETDLGCODE, 0, 0), 0);
    DestroyWindow(main);
}

TEST(KeyTest, MessagesOfKeys) {
    MessageLog log({WM_KEYDOWN, WM_KEYUP, WM_CHAR, WM_SYSKEYDOWN, WM_SYSKEYUP, WM_SYSCHAR, WM_SYSCOMMAND});
    HWND main = MakeTestWindow("main", WS_OVERLAPPEDWINDOW);
    ShowWindow(main, SW_SHOW);
    ASSERT_TRUE(BringForward(main));
    ASSERT_TRUE(PumpAll());
    // The system menu would wait for its user.
    SetMessageHook([](HWND, UINT message, WPARAM, LPARAM, LRESULT&) { return message == WM_SYSCOMMAND; });
    const struct {
        std::initializer_list<int> keys;
        std::string lines;
    } cases[] = {
        {{'1'}, Lines({"* main WM_KEYDOWN 0x31", "* main WM_CHAR 0x31", "* main WM_KEYUP 0x31"})},
        {{VK_SHIFT, 'A'},
         Lines({"* main WM_KEYDOWN 0x10", "* main WM_KEYDOWN 0x41", "* main WM_CHAR 0x41", "* main WM_KEYUP 0x41",
                "* main WM_KEYUP 0x10"})},
        {{VK_CONTROL, 'C'},
         Lines({"* main WM_KEYDOWN 0x11", "* main WM_KEYDOWN 0x43", "* main WM_CHAR 0x03", "* main WM_KEYUP 0x43",
                "* main WM_KEYUP 0x11"})},
        {{VK_TAB}, Lines({"* main WM_KEYDOWN 0x09", "* main WM_CHAR 0x09", "* main WM_KEYUP 0x09"})},
        {{VK_ESCAPE}, Lines({"* main WM_KEYDOWN 0x1B", "* main WM_CHAR 0x1B", "* main WM_KEYUP 0x1B"})},
        {{VK_RETURN}, Lines({"* main WM_KEYDOWN 0x0D", "* main WM_CHAR 0x0D", "* main WM_KEYUP 0x0D"})},
        {{VK_BACK}, Lines({"* main WM_KEYDOWN 0x08", "* main WM_CHAR 0x08", "* main WM_KEYUP 0x08"})},
        {{VK_DELETE}, Lines({"* main WM_KEYDOWN 0x2E", "* main WM_KEYUP 0x2E"})},
        {{VK_LEFT}, Lines({"* main WM_KEYDOWN 0x25", "* main WM_KEYUP 0x25"})},
        {{VK_MENU, 'X'},
         Lines({"* main WM_SYSKEYDOWN 0x12", "* main WM_SYSKEYDOWN 0x58", "* main WM_SYSCHAR 0x78",
                "main WM_SYSCOMMAND 0xF100", "* main WM_SYSKEYUP 0x58", "* main WM_KEYUP 0x12"})},
        {{VK_MENU}, Lines({"* main WM_SYSKEYDOWN 0x12", "* main WM_SYSKEYUP 0x12", "main WM_SYSCOMMAND 0xF100"})},
        {{VK_F10}, Lines({"* main WM_SYSKEYDOWN 0x79", "* main WM_SYSKEYUP 0x79", "main WM_SYSCOMMAND 0xF100"})},
        {{VK_MENU, VK_F4},
         Lines({"* main WM_SYSKEYDOWN 0x12", "* main WM_SYSKEYDOWN 0x73", "* main WM_SYSCOMMAND 0xF060",
                "* main WM_SYSKEYUP 0x73", "* main WM_KEYUP 0x12"})},
    };
    for (const auto& keyCase : cases) {
        PressKeys(keyCase.keys);
        std::string seen;
        PumpUntil([&] { return (seen += log.Take()).size() >= keyCase.lines.size(); });
        EXPECT_EQ(seen, keyCase.lines);
    }
    DestroyWindow(main);
}

TEST(KeyTest, StateOfAHeldKey) {
    MessageLog log({WM_KEYDOWN});
    HWND main = MakeTestWindow("main", WS_OVERLAPPEDWINDOW);
    ShowWindow(main, SW_SHOW);
    ASSERT_TRUE(BringForward(main));
    {
        HeldKey shift(VK_SHIFT);
        ASSERT_TRUE(PumpUntil([&] { return log.Take().find("main WM_KEYDOWN 0x10") != std::string::npos; }));
        EXPECT_LT(GetKeyState(VK_SHIFT), 0);
        EXPECT_LT(GetAsyncKeyState(VK_SHIFT), 0);
        EXPECT_GE(GetKeyState(VK_CONTROL), 0);
    }
    const auto isReleased = [] { return GetKeyState(VK_SHIFT) >= 0 && GetAsyncKeyState(VK_SHIFT) >= 0; };
    EXPECT_TRUE(PumpUntil(isReleased));
    {
        HeldKey shift(VK_SHIFT);
        DestroyWindow(main);
    }
    EXPECT_TRUE(PumpUntil(isReleased)) << "where no window hears of it";
}

TEST(CaptureTest, MovesAndGoes) {
    MessageLog log({WM_CAPTURECHANGED});
    HWND main = MakeTestWindow("main", WS_OVERLAPPEDWINDOW);
    HWND child = MakeTestWindow("child", WS_CHILD | WS_VISIBLE, main, 50, 50);
    ShowWindow(main, SW_SHOW);
    EXPECT_EQ(SetCapture(child), nullptr);
    EXPECT_EQ(GetCapture(), child);
    EXPECT_EQ(SetCapture(main), child);
    EXPECT_EQ(log.Take(), Lines({"child WM_CAPTURECHANGED to main"}));
    ReleaseCapture();
    EXPECT_EQ(GetCapture(), nullptr);
    EXPECT_EQ(log.Take(), Lines({"main WM_CAPTURECHANGED to nobody"}));
    ReleaseCapture();
    EXPECT_EQ(log.Take(), "");

    SetCapture(child);
    EnableWindow(child, FALSE);
    EXPECT_EQ(GetCapture(), nullptr) << "what is disabled lets go";
    EnableWindow(child, TRUE);
    SetCapture(child);
    DestroyWindow(child);
    EXPECT_EQ(GetCapture(), nullptr);
    DestroyWindow(main);
}

TEST(TimerTest, ComeBehindEverythingElse) {
    MessageLog log({WM_TIMER, WM_PAINT, WM_USER});
    HWND main = MakeTestWindow("main", WS_OVERLAPPEDWINDOW);
    ShowWindow(main, SW_SHOW);
    UpdateWindow(main);
    ASSERT_TRUE(PumpAll());
    log.Take();
    SetTimer(main, 7, USER_TIMER_MINIMUM, nullptr);
    // A due timer makes the wait end; nothing is taken from the queue by that.
    const DWORD begin = GetTickCount();
    while (GetTickCount() - begin < 5 * USER_TIMER_MINIMUM) {
        MsgWaitForMultipleObjects(0, nullptr, FALSE, USER_TIMER_MINIMUM, QS_TIMER);
    }
    InvalidateRect(main, nullptr, FALSE);
    PostMessageA(main, WM_USER, 0, 0);
    EXPECT_TRUE(PumpUntil([&log, seen = std::string()]() mutable {
        seen += log.Take();
        return seen == Lines({"* main WM_USER", "* main WM_PAINT", "* main WM_TIMER 7"});
    })) << "missed ticks add up to one";
    KillTimer(main, 7);
    DestroyWindow(main);
}
