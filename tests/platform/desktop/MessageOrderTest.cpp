// The messages that one call or one piece of input makes, in their order, as a real Win32 sends them.
#include <gtest/gtest.h>

#include "Harness.h"
#include "MessageLog.h"

namespace {

constexpr int kButtonId = 101;
constexpr int kEditId = 102;

// A top-level window with a button and an edit.
class MessageOrderTest : public testing::Test {
protected:
    void Make() {
        main = MakeTestWindow("main", WS_OVERLAPPEDWINDOW);
        button = MakeChild("BUTTON", BS_PUSHBUTTON, main, kButtonId, 10, 10, 80, 24);
        edit = MakeChild("EDIT", ES_AUTOHSCROLL, main, kEditId, 10, 50, 80, 24);
        log.Watch(button, "button");
        log.Watch(edit, "edit");
    }

    void MakeAndShow() {
        Make();
        ShowWindow(main, SW_SHOW);
        ASSERT_TRUE(BringForward(main));
        UpdateWindow(main);
        ASSERT_TRUE(PumpAll());
        log.Take();
    }

    void TearDown() override {
        if (IsWindow(main)) {
            DestroyWindow(main);
        }
    }

    // A WM_SIZE line with the window's present client size.
    std::string SizeLine(const char* window, int kind) const {
        RECT client = {};
        GetClientRect(main, &client);
        return std::string(window) + " WM_SIZE kind " + std::to_string(kind) + ", " + std::to_string(client.right) + "x" +
               std::to_string(client.bottom) + "\n";
    }

    MessageLog log{{}};
    HWND main = nullptr;
    HWND button = nullptr;
    HWND edit = nullptr;
};

}  // namespace

TEST_F(MessageOrderTest, CreateAndDestroy) {
    log.Record({WM_GETMINMAXINFO, WM_NCCREATE, WM_NCCALCSIZE, WM_CREATE, WM_SIZE, WM_MOVE, WM_SHOWWINDOW, WM_CLOSE,
                WM_DESTROY, WM_NCDESTROY});
    Make();
    EXPECT_EQ(log.Take(),
              Lines({"(new) WM_GETMINMAXINFO", "main WM_NCCREATE", "main WM_NCCALCSIZE new alone", "main WM_CREATE"}));
    EXPECT_FALSE(IsWindowVisible(main));
    EXPECT_FALSE(IsWindowVisible(button)) << "a child is only as visible as its parents";

    HWND child = MakeTestWindow("child", WS_CHILD | WS_VISIBLE, main, 40, 30);
    EXPECT_EQ(log.Take(), Lines({"child WM_NCCREATE", "child WM_NCCALCSIZE new alone", "child WM_CREATE",
                                 "child WM_SIZE kind 0, 40x30", "child WM_MOVE", "child WM_SHOWWINDOW show"}));
    DestroyWindow(child);
    EXPECT_EQ(log.Take(), Lines({"child WM_SHOWWINDOW hide", "child WM_DESTROY", "child WM_NCDESTROY"}));

    DestroyWindow(main);
    EXPECT_EQ(log.Take(), Lines({"main WM_DESTROY", "button WM_DESTROY", "edit WM_DESTROY", "button WM_NCDESTROY",
                                 "edit WM_NCDESTROY", "main WM_NCDESTROY"}));
}

TEST_F(MessageOrderTest, ShowAndHide) {
    Make();
    log.Record({WM_SHOWWINDOW, WM_WINDOWPOSCHANGING, WM_ACTIVATEAPP, WM_NCACTIVATE, WM_ACTIVATE, WM_SETFOCUS, WM_KILLFOCUS,
                WM_WINDOWPOSCHANGED, WM_SIZE, WM_MOVE});
    EXPECT_FALSE(ShowWindow(main, SW_SHOW));
    EXPECT_EQ(log.Take(),
              Lines({"main WM_SHOWWINDOW show", "main WM_WINDOWPOSCHANGING nosize nomove show", "main WM_ACTIVATEAPP active",
                     "main WM_NCACTIVATE active", "main WM_ACTIVATE state 1, other nobody", "main WM_SETFOCUS from nobody",
                     "main WM_WINDOWPOSCHANGED nosize nomove nozorder show"}) +
                  SizeLine("main", 0) + Lines({"main WM_MOVE"}));
    EXPECT_TRUE(IsWindowVisible(button));
    EXPECT_TRUE(ShowWindow(main, SW_SHOW));
    EXPECT_EQ(log.Take(), "") << "it was visible already";

    EXPECT_TRUE(ShowWindow(main, SW_HIDE));
    EXPECT_EQ(log.Take(), Lines({"main WM_SHOWWINDOW hide", "main WM_WINDOWPOSCHANGING nosize nomove hide",
                                 "main WM_WINDOWPOSCHANGED nosize nomove nozorder hide", "main WM_NCACTIVATE inactive",
                                 "main WM_ACTIVATE state 0, other nobody", "main WM_ACTIVATEAPP inactive",
                                 "main WM_KILLFOCUS to nobody"}));
    EXPECT_FALSE(ShowWindow(main, SW_HIDE));
    EXPECT_EQ(log.Take(), "");

    log.Record({WM_SHOWWINDOW, WM_ACTIVATE, WM_SETFOCUS, WM_SIZE, WM_MOVE});
    EXPECT_FALSE(ShowWindow(main, SW_SHOW));
    EXPECT_EQ(log.Take(),
              Lines({"main WM_SHOWWINDOW show", "main WM_ACTIVATE state 1, other nobody", "main WM_SETFOCUS from nobody"}))
        << "place and size are told when a window is first shown";
}

TEST_F(MessageOrderTest, MoveAndSize) {
    MakeAndShow();
    log.Record({WM_WINDOWPOSCHANGING, WM_GETMINMAXINFO, WM_NCCALCSIZE, WM_WINDOWPOSCHANGED, WM_MOVE, WM_SIZE});
    MoveWindow(button, 20, 20, 90, 30, TRUE);
    EXPECT_EQ(log.Take(),
              Lines({"button WM_WINDOWPOSCHANGING nozorder noactivate", "button WM_NCCALCSIZE with old and new",
                     "button WM_WINDOWPOSCHANGED nozorder noactivate", "button WM_MOVE", "button WM_SIZE kind 0, 90x30"}));
    MoveWindow(button, 20, 20, 90, 30, TRUE);
    EXPECT_EQ(log.Take(), Lines({"button WM_WINDOWPOSCHANGING nozorder noactivate"})) << "nothing changes";
    SetWindowPos(button, nullptr, 30, 20, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    EXPECT_EQ(log.Take(), Lines({"button WM_WINDOWPOSCHANGING nosize nozorder", "button WM_WINDOWPOSCHANGED nosize nozorder",
                                 "button WM_MOVE"}));
    SetWindowPos(button, nullptr, 0, 0, 50, 20, SWP_NOMOVE | SWP_NOZORDER);
    EXPECT_EQ(log.Take(), Lines({"button WM_WINDOWPOSCHANGING nomove nozorder", "button WM_NCCALCSIZE with old and new",
                                 "button WM_WINDOWPOSCHANGED nomove nozorder", "button WM_SIZE kind 0, 50x20"}));
    SetWindowPos(button, nullptr, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_FRAMECHANGED);
    EXPECT_EQ(log.Take(), Lines({"button WM_WINDOWPOSCHANGING nosize nomove nozorder framechanged",
                                 "button WM_NCCALCSIZE with old and new",
                                 "button WM_WINDOWPOSCHANGED nosize nomove nozorder framechanged"}));

    SetWindowPos(main, nullptr, 0, 0, 320, 240, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    EXPECT_EQ(log.Take(),
              Lines({"main WM_WINDOWPOSCHANGING nomove nozorder noactivate", "main WM_GETMINMAXINFO",
                     "main WM_NCCALCSIZE with old and new", "main WM_WINDOWPOSCHANGED nomove nozorder noactivate"}) +
                  SizeLine("main", 0));
    RECT rect = {};
    GetWindowRect(main, &rect);
    EXPECT_EQ(rect.right - rect.left, 320);
    EXPECT_EQ(rect.bottom - rect.top, 240);
}

TEST_F(MessageOrderTest, FocusMovesBetweenWindows) {
    MakeAndShow();
    log.Record({WM_SETFOCUS, WM_KILLFOCUS, WM_COMMAND, WM_ENABLE});
    EXPECT_EQ(SetFocus(button), main);
    EXPECT_EQ(SetFocus(edit), button);
    EXPECT_EQ(log.Take(),
              Lines({"main WM_KILLFOCUS to button", "button WM_SETFOCUS from main", "button WM_KILLFOCUS to edit",
                     "edit WM_SETFOCUS from button", "main WM_COMMAND id 102 code 256 from edit"}));
    EXPECT_EQ(SetFocus(edit), edit);
    EXPECT_EQ(log.Take(), "");
    EXPECT_EQ(SetFocus(nullptr), edit);
    EXPECT_EQ(GetFocus(), nullptr);
    EXPECT_EQ(GetActiveWindow(), main);
    EXPECT_EQ(SetFocus(main), nullptr);
    EXPECT_EQ(log.Take(), Lines({"edit WM_KILLFOCUS to nobody", "main WM_COMMAND id 102 code 512 from edit",
                                 "main WM_SETFOCUS from nobody"}));
}

TEST_F(MessageOrderTest, FocusLeavesWhatCannotHaveIt) {
    MakeAndShow();
    log.Record({WM_SETFOCUS, WM_KILLFOCUS, WM_ENABLE});
    EXPECT_FALSE(EnableWindow(button, FALSE));
    EXPECT_TRUE(EnableWindow(button, FALSE));
    EXPECT_EQ(log.Take(), Lines({"button WM_ENABLE off"}));
    EXPECT_EQ(SetFocus(button), nullptr);
    EXPECT_EQ(GetFocus(), main) << "a disabled window gets no focus";
    EXPECT_EQ(log.Take(), "");
    EXPECT_TRUE(EnableWindow(button, TRUE));

    SetFocus(button);
    log.Take();
    EnableWindow(button, FALSE);
    EXPECT_EQ(GetFocus(), nullptr);
    EXPECT_EQ(log.Take(), Lines({"button WM_KILLFOCUS to nobody", "button WM_ENABLE off"}));

    SetFocus(edit);
    ShowWindow(edit, SW_HIDE);
    EXPECT_EQ(GetFocus(), main);
    EXPECT_EQ(log.Take(),
              Lines({"edit WM_SETFOCUS from nobody", "edit WM_KILLFOCUS to main", "main WM_SETFOCUS from edit"}));
    EXPECT_EQ(SetFocus(edit), main);
    EXPECT_EQ(GetFocus(), edit) << "a hidden window may have the focus all the same";

    ShowWindow(edit, SW_SHOW);
    DestroyWindow(edit);
    EXPECT_EQ(GetFocus(), main);
}

TEST_F(MessageOrderTest, Click) {
    MakeAndShow();
    log.Record({WM_SETFOCUS, WM_KILLFOCUS, WM_COMMAND, WM_LBUTTONDOWN, WM_LBUTTONUP, WM_MOUSEMOVE, WM_CAPTURECHANGED});
    PostClick(button, 5, 6);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(log.Take(), Lines({"* button WM_LBUTTONDOWN keys 0x1 at 5,6", "main WM_KILLFOCUS to button",
                                 "button WM_SETFOCUS from main", "* button WM_LBUTTONUP keys 0x0 at 5,6",
                                 "button WM_CAPTURECHANGED to nobody", "main WM_COMMAND id 101 code 0 from button"}));
    PostDrag(button, 5, 6, 200, 6);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(log.Take(), Lines({"* button WM_LBUTTONDOWN keys 0x1 at 5,6", "* button WM_MOUSEMOVE keys 0x1 at 200,6",
                                 "* button WM_LBUTTONUP keys 0x0 at 200,6", "button WM_CAPTURECHANGED to nobody"}))
        << "the press was taken back";
    log.Record({WM_COMMAND});
    SendMessageA(button, BM_CLICK, 0, 0);
    EXPECT_EQ(log.Take(), Lines({"main WM_COMMAND id 101 code 0 from button"}));
}

TEST_F(MessageOrderTest, KeysOnAButton) {
    MakeAndShow();
    log.Record({WM_COMMAND, WM_CAPTURECHANGED, WM_KEYDOWN, WM_KEYUP, WM_CHAR});
    SetFocus(button);
    PressKeys({VK_SPACE});
    PressKeys({VK_RETURN});
    const std::string expected = Lines({"* button WM_KEYDOWN 0x20", "* button WM_CHAR 0x20", "* button WM_KEYUP 0x20",
                                        "button WM_CAPTURECHANGED to nobody", "main WM_COMMAND id 101 code 0 from button",
                                        "* button WM_KEYDOWN 0x0D", "* button WM_CHAR 0x0D", "* button WM_KEYUP 0x0D"});
    std::string seen;
    PumpUntil([&] { return (seen += log.Take()).size() >= expected.size(); });
    EXPECT_EQ(seen, expected) << "Enter is the dialog's affair, not the button's";
}

TEST_F(MessageOrderTest, AnotherTopLevelWindow) {
    MakeAndShow();
    SetFocus(edit);
    log.Record({WM_SETFOCUS, WM_KILLFOCUS, WM_NCACTIVATE, WM_ACTIVATE, WM_ACTIVATEAPP, WM_SHOWWINDOW, WM_SYSCOMMAND,
                WM_CLOSE, WM_DESTROY, WM_NCDESTROY});
    HWND second = MakeTestWindow("second", WS_OVERLAPPEDWINDOW);
    ShowWindow(second, SW_SHOW);
    EXPECT_EQ(log.Take(),
              Lines({"second WM_SHOWWINDOW show", "main WM_NCACTIVATE inactive", "main WM_ACTIVATE state 0, other second",
                     "second WM_NCACTIVATE active", "second WM_ACTIVATE state 1, other main", "edit WM_KILLFOCUS to second",
                     "second WM_SETFOCUS from edit"}));
    ASSERT_TRUE(BringForward(second));
    PostMessageA(second, WM_SYSCOMMAND, SC_CLOSE, 0);
    ASSERT_TRUE(PumpUntil([second] { return !IsWindow(second); }));
    EXPECT_EQ(log.Take(), Lines({"* second WM_SYSCOMMAND 0xF060", "second WM_CLOSE", "second WM_NCACTIVATE inactive",
                                 "second WM_ACTIVATE state 0, other main", "main WM_NCACTIVATE active",
                                 "main WM_ACTIVATE state 1, other second", "second WM_KILLFOCUS to main",
                                 "main WM_SETFOCUS from second", "second WM_DESTROY", "second WM_NCDESTROY"}));

    second = MakeTestWindow("second", WS_OVERLAPPEDWINDOW);
    ShowWindow(second, SW_SHOWNOACTIVATE);
    EXPECT_EQ(GetActiveWindow(), main);
    DestroyWindow(second);
    EXPECT_EQ(log.Take(), Lines({"second WM_SHOWWINDOW show", "second WM_DESTROY", "second WM_NCDESTROY"}));
}

TEST_F(MessageOrderTest, MinimiseAndMaximise) {
    MakeAndShow();
    log.Record({WM_SIZE});
    ShowWindow(main, SW_SHOWMINIMIZED);
    EXPECT_TRUE(IsIconic(main));
    EXPECT_TRUE(IsWindowVisible(main));
    EXPECT_EQ(log.Take(), Lines({"main WM_SIZE kind 1, 0x0"}));
    ShowWindow(main, SW_RESTORE);
    EXPECT_FALSE(IsIconic(main));
    EXPECT_EQ(log.Take(), SizeLine("main", 0));
    ShowWindow(main, SW_SHOWMAXIMIZED);
    EXPECT_NE(GetWindowLongPtrA(main, GWL_STYLE) & static_cast<LONG_PTR>(WS_MAXIMIZE), 0);
    EXPECT_EQ(log.Take(), SizeLine("main", 2));
    ShowWindow(main, SW_RESTORE);
    EXPECT_EQ(GetWindowLongPtrA(main, GWL_STYLE) & static_cast<LONG_PTR>(WS_MAXIMIZE), 0);
    EXPECT_EQ(log.Take(), SizeLine("main", 0));
}
