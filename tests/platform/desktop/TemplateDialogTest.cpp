// Dialogs from the resources: how they are made and shown, their keys, and their end.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "Harness.h"
#include "MessageLog.h"
#include "resource.h"

namespace {

constexpr LPARAM kParameter = 42;
constexpr INT_PTR kResult = 77;
constexpr UINT kEnd = WM_USER + 5;

MessageLog* dialogLog = nullptr;

INT_PTR CALLBACK DialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_SETFONT) {
        dialogLog->Name(dialog, "dialog");
    }
    MessageLog::Add(dialog, message, wParam, lParam);
    switch (message) {
        case WM_INITDIALOG:
            EXPECT_EQ(lParam, kParameter);
            dialogLog->Note("first control " + std::to_string(GetDlgCtrlID(reinterpret_cast<HWND>(wParam))));
            return TRUE;
        case kEnd:
            EndDialog(dialog, kResult);
            EXPECT_TRUE(IsWindow(dialog)) << "its loop destroys it";
            return TRUE;
        default: return FALSE;
    }
}

class TemplateDialogTest : public testing::Test {
protected:
    void SetUp() override {
        dialogLog = &log;
        main = MakeTestWindow("main", WS_OVERLAPPEDWINDOW, nullptr, 600, 400);
        ShowWindow(main, SW_SHOW);
        ASSERT_TRUE(BringForward(main));
        ASSERT_TRUE(PumpAll());
        log.Take();
    }
    void TearDown() override { DestroyWindow(main); }

    HWND Create(int id) {
        return CreateDialogParamA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(id), main, DialogProc, kParameter);
    }

    MessageLog log{{}};
    HWND main = nullptr;
};

// The id of the focus, and of an edit its selection.
std::string Focus() {
    HWND focus = GetFocus();
    char className[8] = "";
    GetClassNameA(focus, className, sizeof className);
    std::string text = std::to_string(GetDlgCtrlID(focus));
    if (std::string(className) == "Edit") {
        const LRESULT selection = SendMessageA(focus, EM_GETSEL, 0, 0);
        text += " " + std::to_string(LOWORD(static_cast<DWORD_PTR>(selection))) + "-" +
                std::to_string(HIWORD(static_cast<DWORD_PTR>(selection)));
    }
    return text;
}

}  // namespace

TEST_F(TemplateDialogTest, ModalFromBeginningToEnd) {
    log.Record({WM_ENABLE, WM_SETFONT, WM_INITDIALOG, WM_DESTROY, WM_NCDESTROY});
    // The owner hears of a modal dialog that has nothing to do.
    SetMessageHook([](HWND, UINT message, WPARAM, LPARAM lParam, LRESULT&) {
        if (message == WM_ENTERIDLE && IsWindowVisible(reinterpret_cast<HWND>(lParam))) {
            PostMessageA(reinterpret_cast<HWND>(lParam), kEnd, 0, 0);
        }
        return false;
    });
    EXPECT_EQ(DialogBoxParamA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(IDD_RANGES), main, DialogProc, kParameter),
              kResult);
    EXPECT_EQ(log.Take(), Lines({"main WM_ENABLE off", "dialog WM_SETFONT", "dialog WM_INITDIALOG", "first control 1005",
                                 "main WM_ENABLE on", "dialog WM_DESTROY", "dialog WM_NCDESTROY"}));
    EXPECT_EQ(GetActiveWindow(), main);
    EXPECT_EQ(DialogBoxParamA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(4711), main, DialogProc, kParameter), -1);
    EXPECT_TRUE(IsWindowEnabled(main));
}

TEST_F(TemplateDialogTest, Keys) {
    HWND dialog = Create(IDD_RANGES);
    ASSERT_NE(dialog, nullptr);
    SetDlgItemTextA(dialog, IDC_DISC_FROM, "12");
    SetDlgItemTextA(dialog, IDC_DISC_TO, "345");
    ShowWindow(dialog, SW_SHOW);
    ASSERT_TRUE(BringForward(dialog));
    SetFocus(GetDlgItem(dialog, IDC_DISC_FROM));
    ASSERT_TRUE(PumpAll(dialog));
    EXPECT_EQ(static_cast<DWORD>(SendMessageA(dialog, DM_GETDEFID, 0, 0)), static_cast<DWORD>(MAKELONG(IDOK, DC_HASDEFID)));
    const struct {
        std::initializer_list<int> keys;
        const char* focus;
    } steps[] = {
        {{VK_TAB}, "1006 0-3"}, {{VK_SHIFT, VK_TAB}, "1005 0-2"}, {{VK_SHIFT, VK_TAB}, "2"}, {{VK_LEFT}, "1"},
        {{VK_RIGHT}, "2"},      {{VK_TAB}, "1005 0-2"},
    };
    for (const auto& step : steps) {
        PressKeys(step.keys);
        PumpUntil([&] { return Focus() == step.focus; }, dialog);
        EXPECT_EQ(Focus(), step.focus);
    }

    log.Record({WM_COMMAND});
    log.Watch(GetDlgItem(dialog, IDOK), "OK");
    log.Watch(GetDlgItem(dialog, IDCANCEL), "Cancel");
    log.Take();
    const auto command = [&](int key) {
        PressKeys({key});
        std::string seen;
        PumpUntil([&] { return !(seen += log.Take()).empty(); }, dialog);
        return seen;
    };
    EXPECT_EQ(command(VK_RETURN), Lines({"dialog WM_COMMAND id 1 code 0 from OK"})) << "the default button, from an edit";
    EXPECT_EQ(command(VK_ESCAPE), Lines({"dialog WM_COMMAND id 2 code 0 from Cancel"}));
    PressKeys({VK_SHIFT, VK_TAB});
    ASSERT_TRUE(PumpUntil([] { return Focus() == "2"; }, dialog));
    log.Take();
    EXPECT_EQ(command(VK_RETURN), Lines({"dialog WM_COMMAND id 2 code 0 from Cancel"}))
        << "a button that the keyboard has reached is the default";
    // The focus comes back to where it was, or begins at the first control.
    SetFocus(GetDlgItem(dialog, IDC_DISC_TO));
    for (HWND front : {main, dialog}) {
        ASSERT_TRUE(BringForward(front));
    }
    EXPECT_EQ(GetDlgCtrlID(GetFocus()), IDC_DISC_TO);
    DestroyWindow(dialog);
}

TEST_F(TemplateDialogTest, EscapeWithoutACancelButton) {
    HWND dialog = Create(IDD_ABOUT);
    ASSERT_NE(dialog, nullptr);
    ShowWindow(dialog, SW_SHOW);
    ASSERT_TRUE(BringForward(dialog));
    log.Record({WM_COMMAND});
    log.Take();
    PressKeys({VK_ESCAPE});
    std::string seen;
    PumpUntil([&] { return !(seen += log.Take()).empty(); }, dialog);
    EXPECT_EQ(seen, Lines({"dialog WM_COMMAND id 2 code 0 from nobody"}));
    DestroyWindow(dialog);
}

TEST_F(TemplateDialogTest, ControlsAreWhereTheTemplateHasThem) {
    HWND dialog = Create(IDD_ABOUT);
    ASSERT_NE(dialog, nullptr);
    EXPECT_FALSE(IsWindowVisible(dialog));
    EXPECT_EQ(GetWindow(dialog, GW_OWNER), main);
    const int ids[] = {IDOK, IDC_ABOUT_NAME, IDC_ABOUT_VERSION, IDC_ABOUT_NOTICE};
    HWND child = GetWindow(dialog, GW_CHILD);
    for (const int id : ids) {
        EXPECT_EQ(GetDlgCtrlID(child), id) << "in the order of the template";
        child = GetWindow(child, GW_HWNDNEXT);
    }

    const HFONT font = reinterpret_cast<HFONT>(SendMessageA(dialog, WM_GETFONT, 0, 0));
    EXPECT_NE(font, nullptr);
    EXPECT_EQ(reinterpret_cast<HFONT>(SendMessageA(GetDlgItem(dialog, IDOK), WM_GETFONT, 0, 0)), font);
    HDC dc = GetDC(dialog);
    HGDIOBJ before = SelectObject(dc, font);
    SIZE letters = {};
    GetTextExtentPoint32A(dc, "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz", 52, &letters);
    SelectObject(dc, before);
    ReleaseDC(dialog, dc);
    const auto across = [&](int units) { return (units * ((letters.cx / 26 + 1) / 2) + 2) / 4; };
    const auto down = [&](int units) { return (units * letters.cy + 4) / 8; };
    RECT place = {};
    GetWindowRect(GetDlgItem(dialog, IDOK), &place);
    POINT corner = {place.left, place.top};
    ScreenToClient(dialog, &corner);
    EXPECT_EQ(corner.x, across(143));
    EXPECT_EQ(corner.y, down(7));
    EXPECT_EQ(place.right - place.left, across(50));
    EXPECT_EQ(place.bottom - place.top, down(14));
    RECT client = {};
    GetClientRect(dialog, &client);
    EXPECT_EQ(client.right, across(201));
    EXPECT_EQ(client.bottom, down(85));

    // In the middle of its owner's screen, as far as whole pixels allow.
    const RECT screen = ScreenOf(main);
    RECT frame = {};
    GetWindowRect(dialog, &frame);
    EXPECT_LE(std::abs(frame.left + frame.right - screen.left - screen.right), 2);
    EXPECT_LE(std::abs(frame.top + frame.bottom - screen.top - screen.bottom), 2);
    DestroyWindow(dialog);
}

TEST_F(TemplateDialogTest, AChildDialog) {
    log.Record({WM_SHOWWINDOW, WM_ACTIVATE, WM_INITDIALOG, WM_COMMAND});
    HWND pane = Create(IDD_PANE);
    ASSERT_NE(pane, nullptr);
    EXPECT_EQ(GetParent(pane), main);
    EXPECT_EQ(log.Take(), Lines({"dialog WM_INITDIALOG", "first control 1004"}));
    ShowWindow(pane, SW_SHOW);
    EXPECT_EQ(log.Take(), Lines({"dialog WM_SHOWWINDOW show"})) << "a child is not activated";
    const LONG_PTR style = GetWindowLongPtrA(GetDlgItem(pane, IDC_GROUP_LIST), GWL_STYLE);
    EXPECT_EQ(static_cast<DWORD>(style), WS_CHILD | WS_VISIBLE | WS_TABSTOP | LBS_NOTIFY | LBS_SORT | LBS_OWNERDRAWVARIABLE |
                                             LBS_HASSTRINGS | LBS_USETABSTOPS | LBS_NOINTEGRALHEIGHT);
    SendMessageA(GetDlgItem(pane, IDC_STOP), BM_CLICK, 0, 0);
    EXPECT_NE(log.Take().find("dialog WM_COMMAND id 1004 code 0"), std::string::npos);
}
