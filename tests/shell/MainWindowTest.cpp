// The main window: its place, its menu, its status bar, the layout of the pane, and the way of the focus.
#include "AppWindow.h"
#include "Harness.h"
#include "HtmlHelpCall.h"
#include "ScriptedLink.h"
#include "ShellTesting.h"
#include "WindowPlacement.h"
#include "resource.h"

namespace {

constexpr UINT kAllCommands[] = {IDM_IMPORT,  IDM_EXPORT,     IDM_CLOSE,       IDM_UNDO,        IDM_CLEAR,  IDM_GET_GROUP,
                                 IDM_GET_ALL, IDM_SEND_GROUP, IDM_SEND_ALL,    IDM_STOP,        IDM_OPTION, IDM_CONNECTION,
                                 IDM_FONT,    IDM_STATUS_BAR, IDM_HELP_TOPICS, IDM_VERSION_INFO};

LRESULT SelectMenu(HWND window, UINT item, UINT flags, HMENU menu) {
    return SendMessageA(window, WM_MENUSELECT, MAKEWPARAM(item, flags), reinterpret_cast<LPARAM>(menu));
}

std::string Rect(const RECT& rect) {
    return std::to_string(rect.left) + " " + std::to_string(rect.top) + " " + std::to_string(rect.right) + " " +
           std::to_string(rect.bottom);
}

int Width(HWND window) {
    RECT rect = {};
    GetWindowRect(window, &rect);
    return rect.right - rect.left;
}

int Height(HWND window) {
    RECT rect = {};
    GetWindowRect(window, &rect);
    return rect.bottom - rect.top;
}

}  // namespace

TEST_F(MainWindowTest, StartsCentredUnderItsTitle) {
    const RECT screen = ScreenOf(nullptr);
    RECT rect = {};
    GetWindowRect(main, &rect);
    const int left = (screen.left + screen.right - 600) / 2;
    const int top = (screen.top + screen.bottom - 450) / 2;
    EXPECT_EQ(Rect(rect), Rect({left, top, left + 600, top + 450}));
    EXPECT_EQ(WindowText(main), Text(IDS_TITLE));
    const LONG_PTR style = GetWindowLongPtrA(main, GWL_STYLE);
    EXPECT_EQ(style & static_cast<LONG_PTR>(WS_OVERLAPPEDWINDOW), static_cast<LONG_PTR>(WS_OVERLAPPEDWINDOW));
    EXPECT_NE(GetWindowLongPtrA(main, GWL_EXSTYLE) & static_cast<LONG_PTR>(WS_EX_CLIENTEDGE), 0);
}

TEST_F(MainWindowTest, CannotBeMadeSmallerThanItsLeast) {
    MINMAXINFO info = {};
    info.ptMaxSize = {1, 2};
    info.ptMaxTrackSize = {3, 4};
    EXPECT_EQ(SendMessageA(main, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&info)), 0);
    EXPECT_EQ(info.ptMinTrackSize.x, 300);
    EXPECT_EQ(info.ptMinTrackSize.y, 170);
    EXPECT_EQ(info.ptMaxSize.y, 2);
    EXPECT_EQ(info.ptMaxTrackSize.x, 3);
    MoveWindow(main, 100, 100, 50, 50, TRUE);
    EXPECT_TRUE(PumpUntil([this] { return Width(main) == 300 && Height(main) == 170; }));
}

TEST_F(MainWindowTest, GreysWhatCannotBeDoneWheneverAPopupOpens) {
    HMENU menu = GetMenu(main);
    for (const UINT command : kAllCommands) {
        EXPECT_FALSE(IsGrayed(command)) << command;
    }
    EnableMenuItem(menu, IDM_OPTION, MF_BYCOMMAND | MF_GRAYED);
    EXPECT_EQ(SelectMenu(main, IDM_FONT, MF_HILITE, GetSubMenu(menu, 3)), 0);
    EXPECT_TRUE(IsGrayed(IDM_OPTION)) << "the highlight on a command changes nothing";
    for (const bool isTransferring : {false, true}) {
        scripted::StayActive(isTransferring);
        SendMessageA(main, WM_COMMAND, IDM_GET_ALL, 0);
        SelectMenu(main, 1, MF_POPUP | MF_HILITE, menu);
        for (const UINT command : kAllCommands) {
            const bool needsTitles = command == IDM_UNDO || command == IDM_CLEAR;
            const bool needsIdleLink = command == IDM_IMPORT || command == IDM_EXPORT;
            EXPECT_EQ(IsGrayed(command), needsTitles || (needsIdleLink && isTransferring)) << command;
        }
    }
    // Its key works again once the menu is closed: something may be typed before the next one opens.
    SelectMenu(main, 0, 0xFFFF, nullptr);
    EXPECT_FALSE(IsGrayed(IDM_UNDO));
    // A menu of the message's own, not just the window's.
    HMENU other = LoadMenuA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(IDR_MENU));
    SelectMenu(main, 0, MF_SEPARATOR, other);
    EXPECT_NE(GetMenuState(other, IDM_UNDO, MF_BYCOMMAND) & MF_GRAYED, 0U);
    DestroyMenu(other);
}

TEST_F(MainWindowTest, TheStatusBarHelpsWithEachCommand) {
    constexpr struct {
        UINT command;
        UINT stringId;
    } kLines[] = {{40001, 7101}, {40002, 7102}, {40003, 7103}, {40004, 7104}, {40005, 7105}, {40017, 7108},
                  {40009, 7109}, {40008, 7110}, {40010, 7111}, {40019, 7112}, {40016, 7113}, {40011, 7114},
                  {40018, 7115}, {40012, 7116}, {40013, 7117}, {40014, 7118}};
    HMENU menu = GetMenu(main);
    for (const auto& line : kLines) {
        SelectMenu(main, line.command, MF_HILITE | MF_GRAYED, menu);
        EXPECT_EQ(BarText(), " " + Text(line.stringId)) << line.command;
        EXPECT_GT(BarText().size(), 2U);
    }
    const struct {
        const char* what;
        UINT item;
        UINT flags;
        HMENU menu;
    } kBlank[] = {{"a popup", 0, MF_POPUP | MF_HILITE, menu},
                  {"a popup with a command's number", IDM_CLOSE, MF_POPUP, menu},
                  {"a separator", 0, MF_SEPARATOR, GetSubMenu(menu, 1)},
                  {"a command without a menu item", IDM_ENTER, 0, menu},
                  {"the menu has closed", 0, 0xFFFF, nullptr}};
    for (const auto& blank : kBlank) {
        SelectMenu(main, IDM_CLOSE, MF_HILITE, menu);
        SelectMenu(main, blank.item, blank.flags, blank.menu);
        EXPECT_EQ(BarText(), " ") << blank.what;
    }
}

TEST_F(MainWindowTest, TogglesItsStatusBar) {
    const auto isChecked = [this] { return (GetMenuState(GetMenu(main), IDM_STATUS_BAR, MF_BYCOMMAND) & MF_CHECKED) != 0; };
    RECT client = {};
    GetClientRect(main, &client);
    const int barHeight = Height(Bar());
    EXPECT_GT(barHeight, 0);
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(isChecked());
        EXPECT_TRUE(IsWindowVisible(Bar()));
        EXPECT_EQ(Height(Pane()), client.bottom - barHeight);
        EXPECT_EQ(Width(Pane()), client.right);
        SendMessageA(main, WM_COMMAND, IDM_STATUS_BAR, 0);
        EXPECT_FALSE(isChecked());
        EXPECT_FALSE(IsWindowVisible(Bar()));
        EXPECT_EQ(Height(Pane()), client.bottom) << "at once, without a WM_SIZE";
        SendMessageA(main, WM_COMMAND, IDM_STATUS_BAR, 0);
    }
    MoveWindow(main, 60, 60, 500, 300, TRUE);
    EXPECT_TRUE(PumpUntil([this] {
        RECT now = {};
        GetClientRect(main, &now);
        return Width(Pane()) == now.right && Width(Bar()) == now.right && Height(Pane()) + Height(Bar()) == now.bottom;
    }));
    RECT pane = {};
    RECT bar = {};
    EXPECT_TRUE(GetWindowRect(Pane(), &pane) && GetWindowRect(Bar(), &bar) && bar.left == pane.left);
}

TEST_F(MainWindowTest, LaysOutThePane) {
    const int barHeight = Height(Bar());
    const struct {
        int width;
        const char* groups;
        const char* tracks;
        const char* line;
    } cases[] = {{503, "2,40 250x260", "251,40 250x260", "120,7 378x26"},
                 {504, "2,40 251x260", "252,40 251x260", "120,7 379x26"}};
    for (const auto& size : cases) {
        SendMessageA(main, WM_SIZE, SIZE_RESTORED, MAKELPARAM(size.width, 300 + barHeight));
        EXPECT_EQ(PlaceOf(Pane()), "0,0 " + std::to_string(size.width) + "x300");
        EXPECT_EQ(PlaceOf(Control(IDC_SYNC)), "10,5 50x30");
        EXPECT_EQ(PlaceOf(Control(IDC_STOP)), "63,5 50x30");
        EXPECT_EQ(PlaceOf(Control(IDC_MESSAGE_LINE)), size.line);
        EXPECT_EQ(PlaceOf(Control(IDC_GROUP_LIST)), size.groups);
        EXPECT_EQ(PlaceOf(Control(IDC_TRACK_LIST)), size.tracks);
    }
    EXPECT_EQ(WindowText(Control(IDC_MESSAGE_LINE)), "");
    // Screen readers tell the lists apart.
    EXPECT_FALSE(WindowText(Control(IDC_GROUP_LIST)).empty() || WindowText(Control(IDC_TRACK_LIST)).empty());
    EXPECT_NE(WindowText(Control(IDC_GROUP_LIST)), WindowText(Control(IDC_TRACK_LIST)));
}

TEST_F(MainWindowTest, TabVisitsTheControlsInReadingOrder) {
    SetFocus(Control(IDC_GROUP_LIST));
    for (const int next : {IDC_TRACK_LIST, IDC_SYNC, IDC_STOP, IDC_GROUP_LIST}) {
        PressKeys({VK_TAB});
        EXPECT_TRUE(PumpUntil([&] { return GetFocus() == Control(next); })) << next;
    }
    {
        HeldKey shift(VK_SHIFT);
        for (const int next : {IDC_STOP, IDC_SYNC, IDC_TRACK_LIST, IDC_GROUP_LIST}) {
            SendMessageA(GetFocus(), WM_KEYDOWN, VK_TAB, 1);
            EXPECT_EQ(GetFocus(), Control(next)) << next;
        }
    }
    EnableWindow(Control(IDC_TRACK_LIST), FALSE);
    SendMessageA(GetFocus(), WM_KEYDOWN, VK_TAB, 1);
    EXPECT_EQ(GetFocus(), Control(IDC_SYNC)) << "what is disabled is left out";
    SetFocus(Control(IDC_STOP));
    EnableWindow(Control(IDC_SYNC), FALSE);
    EnableWindow(Control(IDC_GROUP_LIST), FALSE);
    SendMessageA(GetFocus(), WM_KEYDOWN, VK_TAB, 1);
    EXPECT_EQ(GetFocus(), Control(IDC_STOP)) << "there is nowhere to go";
}

TEST_F(MainWindowTest, TheControlThatLostTheFocusGetsItBack) {
    for (const int button : {IDC_SYNC, IDC_STOP}) {
        SetFocus(Control(button));
        SetFocus(Control(IDC_GROUP_LIST));
        ASSERT_TRUE(PumpAll());
        SetFocus(main);
        EXPECT_EQ(GetFocus(), Control(button));
        SetFocus(Control(IDC_TRACK_LIST));
        EXPECT_EQ(SendMessageA(main, WM_SETFOCUS, 0, 0), 0);
        EXPECT_EQ(GetFocus(), Control(button)) << "it stays remembered";
    }
}

TEST_F(MainWindowTest, HelpTopicsOpenOverTheDesktop) {
    int requests = 0;
    help.onRequest = [&](const HelpRequest& request) {
        ++requests;
        EXPECT_EQ(request.window, GetDesktopWindow());
        EXPECT_EQ(request.file, "Tesselia.chm");
        EXPECT_EQ(request.command, HH_DISPLAY_TOC);
        EXPECT_EQ(request.data, 0U);
        return nullptr;
    };
    SendMessageA(main, WM_COMMAND, IDM_HELP_TOPICS, 0);
    SendMessageA(main, WM_COMMAND, 40006, 0);
    EXPECT_EQ(requests, 1);
    help.onRequest = {};
}

TEST(WindowPlacementTest, TheTaskBarMayStandAtAnyEdge) {
    const RECT desktop = {0, 0, 1280, 1024};
    const struct {
        const char* edge;
        RECT bar;
        RECT rest;
    } cases[] = {{"top", {-2, -2, 1282, 28}, {0, 28, 1280, 1024}},
                 {"left", {-2, -2, 60, 1026}, {60, 0, 1280, 1024}},
                 {"bottom", {-2, 996, 1282, 1026}, {0, 0, 1280, 996}},
                 {"right", {1220, -2, 1282, 1026}, {0, 0, 1220, 1024}},
                 {"somewhere", {0, 996, 1280, 1024}, {0, 0, 1280, 1024}}};
    for (const auto& bar : cases) {
        EXPECT_EQ(Rect(DesktopWithoutBar(desktop, bar.bar)), Rect(bar.rest)) << bar.edge;
    }
}

TEST(WindowPlacementTest, AWindowStaysWhereItsCentreIsSeen) {
    HWND window =
        CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
    RECT desktop = {};
    GetWindowRect(GetDesktopWindow(), &desktop);
    RECT seen = desktop;
    RECT bar = {};
    if (GetWindowRect(FindWindowA("Shell_TrayWnd", nullptr), &bar)) {
        seen = DesktopWithoutBar(desktop, bar);
    }
    const RECT screen = ScreenOf(nullptr);
    const int left = (screen.left + screen.right - 200) / 2;
    const int top = (screen.top + screen.bottom - 100) / 2;
    const RECT centred = {left, top, left + 200, top + 100};
    const auto placed = [&](LONG x, LONG y) {
        PlaceWindow(window, 200, 100, x, y);
        RECT rect = {};
        GetWindowRect(window, &rect);
        return Rect(rect);
    };
    for (const LONG x : {seen.left - 100, seen.right - 100}) {
        EXPECT_EQ(placed(x, seen.top - 50), Rect({x, seen.top - 50, x + 200, seen.top + 50}));
        EXPECT_EQ(placed(x, seen.bottom - 50), Rect({x, seen.bottom - 50, x + 200, seen.bottom + 50}));
    }
    EXPECT_EQ(placed(seen.left - 101, 0), Rect(centred));
    EXPECT_EQ(placed(seen.right - 99, 0), Rect(centred));
    EXPECT_EQ(placed(0, seen.top - 51), Rect(centred));
    EXPECT_EQ(placed(0, seen.bottom - 49), Rect(centred));
    DestroyWindow(window);
}
