// The edit: text by keys, selection, limit, clipboard, and when its parent is told.
#include <gtest/gtest.h>

#include <string>

#include "Harness.h"
#include "MessageLog.h"

namespace {

constexpr int kEditId = 102;

class EditTest : public testing::Test {
protected:
    void SetUp() override {
        main = MakeTestWindow("main", WS_OVERLAPPEDWINDOW);
        edit = MakeChild("EDIT", ES_AUTOHSCROLL, main, kEditId, 10, 50, 150, 24);
        log.Watch(edit, "edit");
        ShowWindow(main, SW_SHOW);
        ASSERT_TRUE(BringForward(main));
        SetFocus(edit);
        ASSERT_TRUE(PumpAll());
        log.Take();
    }
    void TearDown() override { DestroyWindow(main); }

    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) { return SendMessageA(edit, message, wParam, lParam); }

    // Text and selection, "hello 1-3".
    std::string State() {
        DWORD start = 0;
        DWORD end = 0;
        const LRESULT packed = Send(EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
        EXPECT_EQ(LOWORD(static_cast<DWORD_PTR>(packed)), start);
        EXPECT_EQ(HIWORD(static_cast<DWORD_PTR>(packed)), end);
        return WindowText(edit) + " " + std::to_string(start) + "-" + std::to_string(end);
    }
    std::string Select(int start, int end) {
        Send(EM_SETSEL, static_cast<WPARAM>(start), end);
        return State();
    }
    std::string Type(const char* text) {
        for (; *text != '\0'; ++text) {
            Send(WM_CHAR, static_cast<BYTE>(*text), 1);
        }
        return State();
    }
    std::string Key(int key) {
        Send(WM_KEYDOWN, static_cast<WPARAM>(key), 1);
        return State();
    }
    std::string Do(UINT message) {
        Send(message);
        return State();
    }

    MessageLog log{{WM_COMMAND}};
    HWND main = nullptr;
    HWND edit = nullptr;
};

}  // namespace

TEST_F(EditTest, TheParentHearsOfEachChange) {
    const std::string change =
        Lines({"main WM_COMMAND id 102 code 1024 from edit", "main WM_COMMAND id 102 code 768 from edit"});
    EXPECT_EQ(Type("ab"), "ab 2-2");
    EXPECT_EQ(log.Take(), change + change);
    SetWindowTextA(edit, "hello");
    EXPECT_EQ(State(), "hello 0-0");
    EXPECT_EQ(log.Take(), change) << "once for a text that the program sets";
    Select(1, 3);
    Key(VK_RIGHT);
    Key(VK_HOME);
    Type("\b");
    EXPECT_EQ(Type("\r\x1b\t"), "hello 0-0");
    EXPECT_EQ(log.Take(), "") << "nothing has changed";
    SetFocus(main);
    SetFocus(edit);
    EXPECT_EQ(log.Take(), Lines({"main WM_COMMAND id 102 code 512 from edit", "main WM_COMMAND id 102 code 256 from edit"}));
}

TEST_F(EditTest, SelectionAndKeys) {
    SetWindowTextA(edit, "hello");
    EXPECT_EQ(Select(1, 3), "hello 1-3");
    EXPECT_EQ(Type("X"), "hXlo 2-2");
    EXPECT_EQ(Select(0, -1), "hXlo 0-4");
    EXPECT_EQ(Select(-1, 0), "hXlo 4-4");
    EXPECT_EQ(Select(3, 1), "hXlo 1-3");
    EXPECT_EQ(Select(2, 99), "hXlo 2-4");
    EXPECT_EQ(Select(99, 99), "hXlo 4-4");
    EXPECT_EQ(Type("\b"), "hXl 3-3");
    EXPECT_EQ(Key(VK_HOME), "hXl 0-0");
    EXPECT_EQ(Key(VK_DELETE), "Xl 0-0");
    EXPECT_EQ(Key(VK_RIGHT), "Xl 1-1");
    EXPECT_EQ(Key(VK_END), "Xl 2-2");
    EXPECT_EQ(Key(VK_DELETE), "Xl 2-2");
    EXPECT_EQ(Key(VK_LEFT), "Xl 1-1");
    Select(0, 1);
    Send(EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>("abc"));
    EXPECT_EQ(State(), "abcl 3-3");
}

TEST_F(EditTest, LimitHoldsForInputAlone) {
    const char* const maxText = "main WM_COMMAND id 102 code 1281 from edit";
    Send(EM_LIMITTEXT, 6);
    EXPECT_EQ(Type("123456"), "123456 6-6");
    EXPECT_EQ(log.Take().find(maxText), std::string::npos);
    EXPECT_EQ(Type("7"), "123456 6-6");
    EXPECT_NE(log.Take().find(maxText), std::string::npos);
    Select(0, 2);
    EXPECT_EQ(Type("ab"), "ab3456 2-2") << "a character may replace what is selected";
    Select(0, 2);
    Send(EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>("wxyz"));
    EXPECT_EQ(State(), "wx3456 2-2");
    SetWindowTextA(edit, "longer than that");
    EXPECT_EQ(State(), "longer than that 0-0") << "the program may set what it likes";
    EXPECT_EQ(Type("x"), "longer than that 0-0");
    EXPECT_EQ(Type("\b"), "longer than that 0-0");
    EXPECT_EQ(Key(VK_DELETE), "onger than that 0-0");
    Send(EM_LIMITTEXT, 0);
    EXPECT_EQ(Type("x"), "xonger than that 1-1") << "0 lifts the limit";
}

TEST_F(EditTest, Clipboard) {
    SetWindowTextA(edit, "some text");
    Select(0, 4);
    EXPECT_EQ(Do(WM_COPY), "some text 0-4");
    EXPECT_EQ(Do(WM_CUT), " text 0-0");
    Select(99, 99);
    EXPECT_EQ(Do(WM_PASTE), " textsome 9-9");
    Select(0, 5);
    EXPECT_EQ(Do(WM_CLEAR), "some 0-0");
    EXPECT_EQ(Do(WM_CLEAR), "some 0-0");
    Send(EM_LIMITTEXT, 6);
    Select(99, 99);
    EXPECT_EQ(Do(WM_PASTE), "someso 6-6");
    EXPECT_EQ(Do(WM_UNDO), "some 4-4");
}

TEST_F(EditTest, NumbersAlone) {
    HWND number = MakeChild("EDIT", ES_NUMBER, main, kEditId + 1, 10, 80, 80, 24);
    for (const char c : std::string("1a2-3")) {
        SendMessageA(number, WM_CHAR, static_cast<WPARAM>(c), 1);
    }
    EXPECT_EQ(WindowText(number), "123");
    SetWindowTextA(number, "words");
    EXPECT_EQ(WindowText(number), "words") << "the program may set what it likes";
}
