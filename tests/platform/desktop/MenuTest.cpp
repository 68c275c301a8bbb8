// The menu bar and its popups, by call and by key, and accelerators.
#include <gtest/gtest.h>

#include <string>

#include "Harness.h"
#include "MessageLog.h"
#include "resource.h"

namespace {

class MenuTest : public testing::Test {
protected:
    void SetUp() override {
        menu = LoadMenuA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(IDR_MENU));
        ASSERT_NE(menu, nullptr);
        main = MakeTestWindow("main", WS_OVERLAPPEDWINDOW, nullptr, 600, 400, menu);
    }
    void TearDown() override { DestroyWindow(main); }

    MessageLog log{{}};
    HMENU menu = nullptr;
    HWND main = nullptr;
};

}  // namespace

TEST_F(MenuTest, ItemsAndTheirStates) {
    EXPECT_EQ(GetMenu(main), menu);
    HMENU edit = GetSubMenu(menu, 1);
    EXPECT_NE(GetSubMenu(menu, 4), nullptr);
    EXPECT_EQ(GetSubMenu(menu, 5), nullptr);

    EXPECT_EQ(GetMenuState(menu, IDM_UNDO, MF_BYCOMMAND), 0U);
    EXPECT_EQ(EnableMenuItem(menu, IDM_UNDO, MF_BYCOMMAND | MF_GRAYED), static_cast<BOOL>(MF_ENABLED));
    EXPECT_EQ(GetMenuState(edit, 0, MF_BYPOSITION), MF_GRAYED);
    EXPECT_EQ(EnableMenuItem(menu, IDM_UNDO, MF_BYCOMMAND | MF_ENABLED), static_cast<BOOL>(MF_GRAYED));
    EXPECT_EQ(EnableMenuItem(menu, 12345, MF_BYCOMMAND | MF_GRAYED), -1);
    EXPECT_EQ(GetMenuState(menu, 12345, MF_BYCOMMAND), static_cast<UINT>(-1));
    EXPECT_EQ(GetMenuState(menu, 1, MF_BYPOSITION), MF_POPUP | 3 << 8) << "a popup tells the number of its items";
    EXPECT_NE(GetMenuState(edit, 1, MF_BYPOSITION) & MF_SEPARATOR, 0U);

    MENUITEMINFOA info = {};
    info.cbSize = sizeof info;
    info.fMask = MIIM_STATE;
    EXPECT_TRUE(GetMenuItemInfoA(menu, IDM_STATUS_BAR, FALSE, &info));
    EXPECT_EQ(info.fState, MFS_CHECKED);
    info.fState ^= MFS_CHECKED;
    EXPECT_TRUE(SetMenuItemInfoA(menu, IDM_STATUS_BAR, FALSE, &info));
    EXPECT_EQ(GetMenuState(menu, IDM_STATUS_BAR, MF_BYCOMMAND), 0U);
}

TEST_F(MenuTest, KeysOpenItAndChoose) {
    ShowWindow(main, SW_SHOW);
    ASSERT_TRUE(BringForward(main));
    ASSERT_TRUE(PumpAll());
    EnableMenuItem(menu, IDM_UNDO, MF_BYCOMMAND | MF_GRAYED);
    log.Record({WM_ENTERMENULOOP, WM_INITMENU, WM_INITMENUPOPUP, WM_MENUSELECT, WM_COMMAND, WM_EXITMENULOOP});
    const std::string begin = Lines({"main WM_ENTERMENULOOP", "main WM_INITMENU"});
    const std::string end = Lines({"main WM_MENUSELECT item 0 flags 0xFFFF no menu", "main WM_EXITMENULOOP"});
    const struct {
        const char* what;
        std::initializer_list<std::initializer_list<int>> keys;
        std::string lines;
    } cases[] = {
        {"the bar alone", {{VK_F10}, {VK_ESCAPE}}, begin + Lines({"main WM_MENUSELECT item 0 flags 0x0090"}) + end},
        {"down into the first popup",
         {{VK_F10}, {VK_DOWN}, {VK_DOWN}, {VK_RETURN}},
         begin +
             Lines({"main WM_MENUSELECT item 0 flags 0x0090", "main WM_INITMENUPOPUP position 0",
                    "main WM_MENUSELECT item 40001 flags 0x0080", "main WM_MENUSELECT item 40002 flags 0x0080"}) +
             end + Lines({"* main WM_COMMAND id 40002 code 0 from nobody"})},
        {"a popup and an item by their letters",
         {{VK_MENU, 'F'}, {'I'}},
         begin +
             Lines({"main WM_MENUSELECT item 0 flags 0x0090", "main WM_INITMENUPOPUP position 0",
                    "main WM_MENUSELECT item 40001 flags 0x0080"}) +
             end + Lines({"* main WM_COMMAND id 40001 code 0 from nobody"})},
        {"from popup to popup",
         {{VK_MENU, 'E'}, {VK_RIGHT}, {VK_DOWN}, {VK_UP}, {VK_RETURN}},
         begin +
             Lines({"main WM_MENUSELECT item 1 flags 0x0090", "main WM_INITMENUPOPUP position 1",
                    "main WM_MENUSELECT item 40004 flags 0x0081", "main WM_MENUSELECT item 2 flags 0x0090",
                    "main WM_INITMENUPOPUP position 2", "main WM_MENUSELECT item 40017 flags 0x0080",
                    "main WM_MENUSELECT item 40009 flags 0x0080", "main WM_MENUSELECT item 40017 flags 0x0080"}) +
             end + Lines({"* main WM_COMMAND id 40017 code 0 from nobody"})},
        {"past the separator and round",
         {{VK_MENU, 'E'}, {VK_DOWN}, {VK_DOWN}, {VK_DOWN}, {VK_RETURN}},
         begin +
             Lines({"main WM_MENUSELECT item 1 flags 0x0090", "main WM_INITMENUPOPUP position 1",
                    "main WM_MENUSELECT item 40004 flags 0x0081", "main WM_MENUSELECT item 40005 flags 0x0080",
                    "main WM_MENUSELECT item 40004 flags 0x0081", "main WM_MENUSELECT item 40005 flags 0x0080"}) +
             end + Lines({"* main WM_COMMAND id 40005 code 0 from nobody"})},
    };
    for (const auto& menuCase : cases) {
        for (const std::initializer_list<int>& keys : menuCase.keys) {
            PressKeys(keys);
        }
        std::string seen;
        PumpUntil([&] { return (seen += log.Take()).size() >= menuCase.lines.size(); });
        EXPECT_EQ(seen, menuCase.lines) << menuCase.what;
    }
}

TEST_F(MenuTest, AcceleratorsSendTheirCommand) {
    HACCEL table = LoadAcceleratorsA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(IDR_ACCELERATORS));
    ASSERT_NE(table, nullptr);
    log.Record({WM_COMMAND});
    MSG message = {};
    message.hwnd = main;
    const auto translate = [&](UINT kind, int key) {
        message.message = kind;
        message.wParam = static_cast<WPARAM>(key);
        return TranslateAcceleratorA(main, table, &message) != 0;
    };
    EXPECT_TRUE(translate(WM_KEYDOWN, VK_RETURN));
    EXPECT_EQ(log.Take(), Lines({"main WM_COMMAND id 40007 code 1 from nobody"}));
    EXPECT_FALSE(translate(WM_KEYUP, VK_RETURN));
    EXPECT_FALSE(translate(WM_CHAR, VK_RETURN));
    EXPECT_FALSE(translate(WM_KEYDOWN, 'U')) << "Ctrl is not held";
    EXPECT_EQ(log.Take(), "");
}
