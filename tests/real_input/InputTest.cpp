// What a user does with keyboard and mouse becomes the messages that the window tests post.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "Harness.h"
#include "MessageLog.h"
#include "RealScreen.h"
#include "resource.h"

namespace {

class InputTest : public testing::Test {
protected:
    void SetUp() override {
        menu = LoadMenuA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(IDR_MENU));
        main = MakeTestWindow("main", WS_OVERLAPPEDWINDOW, nullptr, 500, 300, menu);
        ShowWindow(main, SW_SHOW);
        ASSERT_TRUE(BringForward(main));
        ASSERT_TRUE(PumpUntil([] { return VisibleWindows("^main$") != ""; }));
        ASSERT_TRUE(PumpUntil([] { return Xdotool("getactivewindow getwindowname", true) == "main\n"; }));
        ASSERT_TRUE(PumpAll());
        log.Take();
    }
    void TearDown() override {
        DestroyWindow(main);
        PumpAll();
    }

    // Does it, and serves messages until as much has been seen as is expected.
    void ExpectFrom(const std::string& input, const std::string& lines) {
        Xdotool(input);
        std::string seen;
        PumpUntil([&] { return (seen += log.Take()).size() >= lines.size(); }, nullptr, kGestureMs);
        PumpAll();
        seen += log.Take();
        EXPECT_EQ(seen, lines) << input;
    }

    // Serves messages until such a line is there; gives all lines up to it.
    std::string SeenUntil(const std::string& text) {
        std::string seen;
        EXPECT_TRUE(PumpUntil([&] { return (seen += log.Take()).find(text) != std::string::npos; })) << seen;
        return seen;
    }

    static constexpr DWORD kGestureMs = 3000;
    MessageLog log{{}};
    HMENU menu = nullptr;
    HWND main = nullptr;
};

}  // namespace

TEST_F(InputTest, Keys) {
    log.Record({WM_KEYDOWN, WM_KEYUP, WM_CHAR, WM_SYSKEYDOWN, WM_SYSKEYUP, WM_SYSCHAR, WM_SYSCOMMAND});
    SetMessageHook([](HWND, UINT message, WPARAM, LPARAM, LRESULT&) { return message == WM_SYSCOMMAND; });
    const auto plain = [](int key) {
        char lines[100];
        std::snprintf(lines, sizeof lines, "* main WM_KEYDOWN 0x%02X\n* main WM_KEYUP 0x%02X\n", key, key);
        return std::string(lines);
    };
    ExpectFrom("key 1", Lines({"* main WM_KEYDOWN 0x31", "* main WM_CHAR 0x31", "* main WM_KEYUP 0x31"}));
    ExpectFrom("key shift+a", Lines({"* main WM_KEYDOWN 0x10", "* main WM_KEYDOWN 0x41", "* main WM_CHAR 0x41",
                                     "* main WM_KEYUP 0x10", "* main WM_KEYUP 0x41"}));
    ExpectFrom("key ctrl+c", Lines({"* main WM_KEYDOWN 0x11", "* main WM_KEYDOWN 0x43", "* main WM_CHAR 0x03",
                                    "* main WM_KEYUP 0x11", "* main WM_KEYUP 0x43"}));
    ExpectFrom("key ampersand", Lines({"* main WM_KEYDOWN 0x10", "* main WM_KEYDOWN 0x37", "* main WM_CHAR 0x26",
                                       "* main WM_KEYUP 0x10", "* main WM_KEYUP 0x37"}));
    ExpectFrom("key Tab", Lines({"* main WM_KEYDOWN 0x09", "* main WM_CHAR 0x09", "* main WM_KEYUP 0x09"}));
    ExpectFrom("key Return", Lines({"* main WM_KEYDOWN 0x0D", "* main WM_CHAR 0x0D", "* main WM_KEYUP 0x0D"}));
    ExpectFrom("key Escape", Lines({"* main WM_KEYDOWN 0x1B", "* main WM_CHAR 0x1B", "* main WM_KEYUP 0x1B"}));
    ExpectFrom("key BackSpace", Lines({"* main WM_KEYDOWN 0x08", "* main WM_CHAR 0x08", "* main WM_KEYUP 0x08"}));
    ExpectFrom("key Delete", plain(VK_DELETE));
    ExpectFrom("key Left", plain(VK_LEFT));
    ExpectFrom("key Down", plain(VK_DOWN));
    ExpectFrom("key Home", plain(VK_HOME));
    ExpectFrom("key End", plain(VK_END));
    ExpectFrom("key Prior", plain(VK_PRIOR));
    ExpectFrom("key Next", plain(VK_NEXT));
    ExpectFrom("key alt+x", Lines({"* main WM_SYSKEYDOWN 0x12", "* main WM_SYSKEYDOWN 0x58", "* main WM_SYSCHAR 0x78",
                                   "main WM_SYSCOMMAND 0xF100", "* main WM_KEYUP 0x12", "* main WM_KEYUP 0x58"}));
    ExpectFrom("key alt", Lines({"* main WM_SYSKEYDOWN 0x12", "* main WM_SYSKEYUP 0x12", "main WM_SYSCOMMAND 0xF100"}));
    ExpectFrom("key F10", Lines({"* main WM_SYSKEYDOWN 0x79", "* main WM_SYSKEYUP 0x79", "main WM_SYSCOMMAND 0xF100"}));
}

TEST_F(InputTest, Mouse) {
    log.Record({WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_MOUSEMOVE, WM_CAPTURECHANGED});
    PointAt(main, 40, 50);
    SeenUntil("at 40,50");
    ASSERT_TRUE(PumpAll());
    log.Take();
    ExpectFrom("click 1", Lines({"* main WM_LBUTTONDOWN keys 0x1 at 40,50", "* main WM_LBUTTONUP keys 0x0 at 40,50"}));
    // What is captured hears of the mouse outside, too.
    ExpectFrom("mousedown 1", Lines({"* main WM_LBUTTONDOWN keys 0x1 at 40,50"}));
    SetCapture(main);
    ExpectFrom("mousemove_relative -- -60 0", Lines({"* main WM_MOUSEMOVE keys 0x1 at 65516,50"}));
    ExpectFrom("mouseup 1", Lines({"* main WM_LBUTTONUP keys 0x0 at 65516,50"}));
    ReleaseCapture();
    Xdotool("mousemove_relative 60 0");
    SeenUntil("at 40,50");
    log.Record({WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK});
    ExpectFrom("keydown shift click 1 keyup shift",
               Lines({"* main WM_LBUTTONDOWN keys 0x5 at 40,50", "* main WM_LBUTTONUP keys 0x4 at 40,50"}));
}

TEST_F(InputTest, TheMenuByMouse) {
    log.Record({WM_ENTERMENULOOP, WM_INITMENUPOPUP, WM_MENUSELECT, WM_COMMAND, WM_EXITMENULOOP});
    EnableMenuItem(menu, IDM_IMPORT, MF_BYCOMMAND | MF_ENABLED);
    // The first popup is at the left end of the bar, right above the client area. The menu has a loop of its own, so the
    // mouse goes on by itself.
    POINT client = {0, 0};
    ClientToScreen(main, &client);
    const auto click = [&](int x, int y) {
        return "mousemove " + std::to_string(client.x + x) + " " + std::to_string(client.y + y) + " click 1 sleep 0.3 ";
    };
    const Process mouse("sh", {"-c", "xdotool " + click(10, -8) + click(20, 12)}, (theScreen->Folder() / "mouse").string());
    const std::string seen = SeenUntil("WM_COMMAND id 40001");
    EXPECT_NE(seen.find("main WM_INITMENUPOPUP position 0"), std::string::npos) << seen;
    EXPECT_NE(seen.find("main WM_MENUSELECT item 40001 flags 0x0080"), std::string::npos) << seen;
    EXPECT_NE(seen.find("main WM_MENUSELECT item 0 flags 0xFFFF no menu\nmain WM_EXITMENULOOP\n"), std::string::npos)
        << seen;
}

TEST_F(InputTest, ControlsUnderRealKeysAndMouse) {
    log.Record({WM_COMMAND});
    HWND button = MakeChild("BUTTON", BS_PUSHBUTTON, main, 1, 10, 10, 80, 30);
    HWND edit = MakeChild("EDIT", ES_AUTOHSCROLL, main, 2, 10, 50, 200, 24);
    log.Name(button, "button");
    log.Name(edit, "edit");
    ASSERT_TRUE(PumpAll());
    PointAt(button, 20, 10);
    Xdotool("click 1");
    SeenUntil("id 1 code 0 from button");
    PointAt(edit, 50, 10);
    Xdotool("click 1");
    ASSERT_TRUE(PumpUntil([&] { return GetFocus() == edit; }));
    Xdotool("type 'Blue & Green, 100%'");
    EXPECT_TRUE(PumpUntil([&] { return WindowText(edit) == "Blue & Green, 100%"; })) << WindowText(edit);
    Xdotool("key Home key shift+Right key shift+Right key Delete key End key BackSpace");
    EXPECT_TRUE(PumpUntil([&] { return WindowText(edit) == "ue & Green, 100"; })) << WindowText(edit);
    Xdotool("key Home key shift+End key ctrl+x");
    EXPECT_TRUE(PumpUntil([&] { return WindowText(edit).empty(); })) << WindowText(edit);
    Xdotool("key ctrl+v key ctrl+v");
    EXPECT_TRUE(PumpUntil([&] { return WindowText(edit) == "ue & Green, 100ue & Green, 100"; })) << WindowText(edit);
}

// With a window of another program, which the user goes to and comes back from.
class ElsewhereTest : public InputTest {
protected:
    void SetUp() override {
        InputTest::SetUp();
        const std::string outputs = (theScreen->Folder() / "other").string();
        other = std::make_unique<Process>("xmessage", std::vector<std::string>{"-name", "elsewhere", "elsewhere"}, outputs);
        ASSERT_TRUE(PumpUntil([] { return VisibleWindows(kElsewhere) != ""; }));
        ASSERT_TRUE(BringForward(main));
        ComeBack();
    }

    void GoElsewhere() {
        Xdotool("search --onlyvisible --name '" + std::string(kElsewhere) + "' windowactivate");
        ASSERT_TRUE(PumpUntil([] { return GetActiveWindow() == nullptr; }));
    }
    void ComeBack() {
        Xdotool("search --name '^main$' windowactivate");
        ASSERT_TRUE(PumpUntil([&] { return GetActiveWindow() == main && IsInFront(); }) && PumpAll());
    }
    static bool IsInFront() { return Xdotool("getactivewindow getwindowname", true) == "main\n"; }

    static constexpr char kElsewhere[] = "^elsewhere$|^xmessage$";

private:
    std::unique_ptr<Process> other;
};

TEST_F(ElsewhereTest, AKeyThatGoesUpThereIsUp) {
    Xdotool("keydown Down");
    ASSERT_TRUE(PumpUntil([] { return GetKeyState(VK_DOWN) < 0; }));
    GoElsewhere();
    Xdotool("keyup Down");
    EXPECT_TRUE(PumpUntil([] { return GetKeyState(VK_DOWN) >= 0; }));
}

// The user who types there must not be interrupted.
TEST_F(ElsewhereTest, AFocusThatIsSetMeanwhileWaits) {
    HWND edit = MakeTestWindow("edit", WS_CHILD | WS_VISIBLE, main, 200, 30, nullptr);
    GoElsewhere();
    SetFocus(edit);
    EXPECT_FALSE(PumpUntil([] { return IsInFront(); }, nullptr, 500));
    EXPECT_EQ(GetFocus(), edit);
    ComeBack();
    log.Record({WM_KEYDOWN});
    ExpectFrom("key a", Lines({"* edit WM_KEYDOWN 0x41"}));
    EXPECT_EQ(GetFocus(), edit);
}

TEST_F(ElsewhereTest, ABoxThatComesUpMeanwhileHasTheKeysOnReturn) {
    GoElsewhere();
    HWND box = MakeTestWindow("box", WS_POPUP | WS_CAPTION, main, 200, 100);
    EnableWindow(main, FALSE);
    ShowWindow(box, SW_SHOW);
    ASSERT_TRUE(PumpUntil([] { return VisibleWindows("^box$") != ""; }) && PumpAll());
    Xdotool("search --name '^main$' windowactivate");
    EXPECT_TRUE(PumpUntil([&] { return GetActiveWindow() == box; }));
    EXPECT_TRUE(PumpUntil([] { return Xdotool("getactivewindow getwindowname", true) == "box\n"; }) && PumpAll());
    log.Record({WM_KEYDOWN});
    ExpectFrom("key a", Lines({"* box WM_KEYDOWN 0x41"}));
    EnableWindow(main, TRUE);
    DestroyWindow(box);
    EXPECT_TRUE(PumpUntil([&] { return GetActiveWindow() == main && IsInFront(); }));
}

TEST_F(InputTest, TheWindowManager) {
    log.Record({WM_SIZE, WM_ACTIVATE, WM_SYSCOMMAND});
    Xdotool("getactivewindow windowminimize");
    SeenUntil("WM_SIZE kind 1, 0x0");
    EXPECT_TRUE(PumpUntil([&] { return IsIconic(main) && GetActiveWindow() == nullptr; }));
    Xdotool("search --name '^main$' windowactivate");
    SeenUntil("WM_SIZE kind 0, ");
    EXPECT_TRUE(PumpUntil([&] { return !IsIconic(main) && GetActiveWindow() == main; }));
    // The close box, or the key that the window manager has for it.
    SetMessageHook([](HWND, UINT message, WPARAM, LPARAM, LRESULT&) { return message == WM_CLOSE; });
    Xdotool("key alt+F4");
    SeenUntil("WM_SYSCOMMAND 0xF060");
    EXPECT_TRUE(IsWindowVisible(main));
    // Moved and sized by the user.
    Xdotool("getactivewindow windowsize 400 250 getactivewindow windowmove 200 150");
    EXPECT_TRUE(PumpUntil([&] {
        RECT client = {};
        POINT corner = {0, 0};
        GetClientRect(main, &client);
        ClientToScreen(main, &corner);
        return client.right == 400 && corner.x >= 200 && corner.x < 210;
    }));
    // Maximised, frame included, and back in its old place.
    RECT before = {};
    RECT now = {};
    GetWindowRect(main, &before);
    ShowWindow(main, SW_SHOWMAXIMIZED);
    EXPECT_TRUE(PumpUntil([&] { return GetWindowRect(main, &now) && now.top == 0 && now.bottom == 768; }))
        << now.top << " to " << now.bottom;
    ShowWindow(main, SW_RESTORE);
    EXPECT_TRUE(PumpUntil([&] { return GetWindowRect(main, &now) && EqualRect(&now, &before); }))
        << now.left << " " << now.top << " " << now.right << " " << now.bottom;
}
