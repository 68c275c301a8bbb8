// The owner-drawn list box: its rows, its selection, what it tells its parent, and how it has its rows drawn.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "Harness.h"
#include "MessageLog.h"

namespace {

constexpr int kListId = 1000;
constexpr int kWidth = 120;
constexpr int kHeight = 100;
constexpr int kRowHeight = 20;

MessageLog* rowLog = nullptr;
bool areFieldsRight = true;

// Notes what the parent is asked to measure and to draw: "draw 3 entire state 0x1 at 60 to 80".
bool ParentHook(HWND, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    char line[100];
    if (message == WM_MEASUREITEM) {
        auto* row = reinterpret_cast<MEASUREITEMSTRUCT*>(lParam);
        row->itemHeight = kRowHeight;
        std::snprintf(line, sizeof line, "measure %u", row->itemID);
        areFieldsRight = areFieldsRight && wParam == kListId && row->CtlID == kListId && row->CtlType == ODT_LISTBOX;
    } else if (message == WM_DRAWITEM) {
        const auto* row = reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
        const char* action = row->itemAction == ODA_DRAWENTIRE ? "entire"
                             : row->itemAction == ODA_SELECT   ? "select"
                                                               : "focus";
        std::snprintf(line, sizeof line, "draw %u %s state 0x%X at %d to %d", row->itemID, action, row->itemState,
                      static_cast<int>(row->rcItem.top), static_cast<int>(row->rcItem.bottom));
        areFieldsRight = areFieldsRight && wParam == kListId && row->CtlID == kListId && row->CtlType == ODT_LISTBOX &&
                         GetDlgCtrlID(row->hwndItem) == kListId && row->hDC != nullptr && row->rcItem.left == 0 &&
                         row->rcItem.right == kWidth && row->itemData == 100 + row->itemID;
    } else {
        return false;
    }
    rowLog->Note(line);
    result = TRUE;
    return true;
}

// A window with a list of five visible rows, and a button.
class ListBoxTest : public testing::Test {
protected:
    void SetUp() override {
        rowLog = &log;
        SetMessageHook(ParentHook);
        main = MakeTestWindow("main", WS_OVERLAPPEDWINDOW);
        list = MakeChild("LISTBOX", LBS_NOTIFY | LBS_OWNERDRAWVARIABLE | LBS_HASSTRINGS | LBS_NOINTEGRALHEIGHT, main,
                         kListId, 10, 10, kWidth, kHeight);
        log.Watch(list, "list");
    }

    void TearDown() override { DestroyWindow(main); }

    void Fill(int count) {
        for (int i = 0; i < count; ++i) {
            const std::string text = "row " + std::to_string(i);
            Send(LB_INSERTSTRING, i, text.c_str());
            Send(LB_SETITEMDATA, i, 100 + i);
        }
        log.Take();
    }

    void FillAndShow(int count) {
        Fill(count);
        ShowWindow(main, SW_SHOW);
        ASSERT_TRUE(BringForward(main));
        UpdateWindow(main);
        ASSERT_TRUE(PumpAll());
        log.Take();
    }

    int Send(UINT message, int wParam = 0, LPARAM lParam = 0) {
        return static_cast<int>(SendMessageA(list, message, static_cast<WPARAM>(wParam), lParam));
    }
    int Send(UINT message, int wParam, const char* text) { return Send(message, wParam, reinterpret_cast<LPARAM>(text)); }

    std::string Text(int index) {
        char text[64] = "";
        EXPECT_NE(Send(LB_GETTEXT, index, text), LB_ERR);
        return text;
    }

    // The place of a row, "top to bottom", or "none".
    std::string Place(int index) {
        RECT rect = {};
        if (Send(LB_GETITEMRECT, index, reinterpret_cast<LPARAM>(&rect)) == LB_ERR) {
            return "none";
        }
        EXPECT_EQ(rect.left, 0);
        EXPECT_EQ(rect.right, kWidth);
        return std::to_string(rect.top) + " to " + std::to_string(rect.bottom);
    }

    // Selects, and tells the selection and the row at the top: "12 top 8".
    std::string Select(int index) {
        Send(LB_SETCURSEL, index);
        return Selected();
    }
    std::string Press(int key) {
        Send(WM_KEYDOWN, key);
        return Selected();
    }
    std::string Selected() { return std::to_string(Send(LB_GETCURSEL)) + " top " + std::to_string(Send(LB_GETTOPINDEX)); }

    MessageLog log{{WM_COMMAND}};
    HWND main = nullptr;
    HWND list = nullptr;
};

}  // namespace

TEST_F(ListBoxTest, RowsAreInsertedAndDeleted) {
    EXPECT_EQ(Send(LB_GETCOUNT), 0);
    EXPECT_EQ(Send(LB_INSERTSTRING, 0, "b"), 0);
    EXPECT_EQ(Send(LB_INSERTSTRING, 0, "a"), 0);
    EXPECT_EQ(Send(LB_INSERTSTRING, -1, "d"), 2) << "-1 appends";
    EXPECT_EQ(Send(LB_INSERTSTRING, 2, "c"), 2);
    EXPECT_EQ(Send(LB_INSERTSTRING, 5, "x"), LB_ERR);
    EXPECT_EQ(Send(LB_GETCOUNT), 4);
    EXPECT_EQ(log.Take(), Lines({"measure 0", "measure 0", "measure 2", "measure 2"}));
    EXPECT_TRUE(areFieldsRight);
    EXPECT_EQ(Text(0) + Text(1) + Text(2) + Text(3), "abcd");
    EXPECT_EQ(Send(LB_GETTEXTLEN, 3), 1);
    EXPECT_EQ(Send(LB_GETTEXTLEN, 4), LB_ERR);

    EXPECT_EQ(Send(LB_GETITEMDATA, 1), 0);
    EXPECT_NE(Send(LB_SETITEMDATA, 1, 0x00070005), LB_ERR);
    EXPECT_EQ(Send(LB_GETITEMDATA, 1), 0x00070005);
    EXPECT_EQ(Send(LB_SETITEMDATA, 4, 1), LB_ERR);
    EXPECT_EQ(Send(LB_GETITEMDATA, 4), LB_ERR);
    EXPECT_EQ(Send(LB_GETITEMDATA, -1), LB_ERR);

    EXPECT_EQ(Send(LB_DELETESTRING, 0), 3);
    EXPECT_EQ(Send(LB_GETITEMDATA, 0), 0x00070005) << "a row's value moves with it";
    EXPECT_EQ(Send(LB_DELETESTRING, 3), LB_ERR);
    EXPECT_EQ(Send(LB_SETCURSEL, 1), 1);
    Send(LB_RESETCONTENT);
    EXPECT_EQ(Send(LB_GETCOUNT), 0);
    EXPECT_EQ(Send(LB_GETCURSEL), LB_ERR);
    EXPECT_EQ(log.Take(), "") << "the parent hears of the user's doings alone";
}

TEST_F(ListBoxTest, SelectionByMessageScrollsAndTellsNobody) {
    Fill(20);
    EXPECT_EQ(Selected(), "-1 top 0");
    EXPECT_EQ(Send(LB_SETCURSEL, 10), 10);
    EXPECT_EQ(Selected(), "10 top 6");
    EXPECT_EQ(Select(8), "8 top 6");
    EXPECT_EQ(Select(3), "3 top 3");
    EXPECT_EQ(Send(LB_SETCURSEL, 20), LB_ERR);
    EXPECT_EQ(Selected(), "3 top 3");
    EXPECT_EQ(Send(LB_SETCURSEL, -1), LB_ERR);
    EXPECT_EQ(Selected(), "-1 top 3");
    EXPECT_EQ(log.Take(), "");

    Send(LB_SETCURSEL, 3);
    Send(LB_INSERTSTRING, 0, "new");
    EXPECT_EQ(Send(LB_GETCURSEL), 4) << "a row above moves the selection with its row";
    Send(LB_DELETESTRING, 0);
    EXPECT_EQ(Send(LB_GETCURSEL), 3);
    Send(LB_DELETESTRING, 4);
    EXPECT_EQ(Send(LB_GETCURSEL), 3);
    Send(LB_DELETESTRING, 3);
    EXPECT_EQ(Send(LB_GETCURSEL), LB_ERR);
}

TEST_F(ListBoxTest, PlacesOfRows) {
    Fill(20);
    EXPECT_EQ(Place(0), "0 to 20");
    EXPECT_EQ(Place(19), "380 to 400") << "out of sight too";
    Send(LB_SETCURSEL, 10);
    EXPECT_EQ(Place(0), "-120 to -100");
    EXPECT_EQ(Place(10), "80 to 100");
    EXPECT_EQ(Place(20), "none");

    Send(LB_SETTOPINDEX, 0);
    EXPECT_EQ(Send(LB_SETITEMHEIGHT, 1, 30), LB_OKAY);
    EXPECT_EQ(Send(LB_SETITEMHEIGHT, 20, 30), LB_ERR);
    EXPECT_EQ(Place(1), "20 to 50");
    EXPECT_EQ(Place(2), "50 to 70");
    EXPECT_EQ(Send(LB_GETITEMHEIGHT, 1), 30);
    EXPECT_EQ(Send(LB_GETITEMHEIGHT, 2), kRowHeight);
    Send(LB_SETITEMHEIGHT, 1, kRowHeight);

    Send(LB_SETTOPINDEX, 17);
    EXPECT_EQ(Send(LB_GETTOPINDEX), 15) << "no room is left below the last row";
    EXPECT_EQ(Place(19), "80 to 100");

    // Where the last row in sight is cut off, the list scrolls far enough to show a selected row whole.
    MoveWindow(list, 10, 10, kWidth, kHeight - 5, TRUE);
    Send(LB_SETTOPINDEX, 0);
    Send(LB_SETCURSEL, 4);
    EXPECT_EQ(Place(4), "60 to 80");
    Send(LB_SETTOPINDEX, 19);
    EXPECT_EQ(Place(19), "60 to 80");
}

TEST_F(ListBoxTest, KeysMoveTheSelection) {
    FillAndShow(20);
    SetFocus(list);
    log.Take();
    EXPECT_EQ(Press(VK_DOWN), "0 top 0");
    EXPECT_EQ(Press(VK_DOWN), "1 top 0");
    EXPECT_EQ(Press(VK_NEXT), "5 top 1") << "a page less one row";
    EXPECT_EQ(Press(VK_NEXT), "9 top 5");
    EXPECT_EQ(Press(VK_END), "19 top 15");
    EXPECT_EQ(Press(VK_DOWN), "19 top 15");
    EXPECT_EQ(Press(VK_UP), "18 top 15");
    EXPECT_EQ(Press(VK_PRIOR), "14 top 14");
    EXPECT_EQ(Press(VK_HOME), "0 top 0");
    EXPECT_EQ(Press(VK_UP), "0 top 0");
    EXPECT_EQ(Press(VK_RIGHT), "1 top 0");
    EXPECT_EQ(Press(VK_LEFT), "0 top 0");

    log.Take();
    Press(VK_DOWN);
    EXPECT_NE(log.Take().find("main WM_COMMAND id 1000 code 1 from list"), std::string::npos);
    Press(VK_SPACE);
    Press(VK_RETURN);
    EXPECT_EQ(log.Take(), "");

    Send(LB_SETTOPINDEX, 12);
    EXPECT_EQ(Press(VK_DOWN), "2 top 2") << "the list comes back to a selection that is out of sight";
    Send(WM_CHAR, 'R');
    EXPECT_EQ(Selected(), "3 top 2") << "a letter looks for the next row that begins with it";
    Send(WM_CHAR, 'x');
    EXPECT_EQ(Selected(), "3 top 2");
}

TEST_F(ListBoxTest, MouseSelectsAndTellsOnRelease) {
    FillAndShow(20);
    SetMessageHook(nullptr);
    log.Record({WM_COMMAND, WM_SETFOCUS, WM_CAPTURECHANGED, WM_LBUTTONDOWN, WM_LBUTTONUP});
    PostClick(list, 10, 45);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(log.Take(), Lines({"* list WM_LBUTTONDOWN keys 0x1 at 10,45", "list WM_SETFOCUS from main",
                                 "main WM_COMMAND id 1000 code 4 from list", "* list WM_LBUTTONUP keys 0x0 at 10,45",
                                 "list WM_CAPTURECHANGED to nobody", "main WM_COMMAND id 1000 code 1 from list"}));
    EXPECT_EQ(Selected(), "2 top 0");

    log.Record({WM_COMMAND});
    Send(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(10, 5));
    EXPECT_EQ(Selected(), "0 top 0") << "selected with the press already";
    EXPECT_EQ(log.Take(), "");
    Send(WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(10, 25));
    EXPECT_EQ(Selected(), "1 top 0");
    Send(WM_LBUTTONUP, 0, MAKELPARAM(10, 25));
    EXPECT_EQ(log.Take(), Lines({"main WM_COMMAND id 1000 code 1 from list"}));

    Send(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(10, 25));
    Send(WM_LBUTTONUP, 0, MAKELPARAM(10, 25));
    EXPECT_EQ(log.Take(), Lines({"main WM_COMMAND id 1000 code 1 from list"})) << "told for the selected row as well";
    Send(WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(10, 25));
    Send(WM_LBUTTONUP, 0, MAKELPARAM(10, 25));
    EXPECT_EQ(log.Take(), Lines({"main WM_COMMAND id 1000 code 2 from list"}));

    Send(LB_RESETCONTENT);
    Send(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(10, 5));
    Send(WM_LBUTTONUP, 0, MAKELPARAM(10, 5));
    EXPECT_EQ(Selected(), "-1 top 0");
    EXPECT_EQ(log.Take(), "");
}

TEST_F(ListBoxTest, RowsAreDrawnByTheParent) {
    FillAndShow(3);
    Send(LB_SETCURSEL, 1);
    EXPECT_EQ(log.Take(), Lines({"draw 1 select state 0x1 at 20 to 40"}));
    SetFocus(list);
    EXPECT_EQ(log.Take(), Lines({"draw 1 focus state 0x11 at 20 to 40", "main WM_COMMAND id 1000 code 4 from list"}));
    ASSERT_TRUE(PumpAll());
    log.Take();

    InvalidateRect(list, nullptr, TRUE);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(log.Take(), Lines({"draw 0 entire state 0x0 at 0 to 20", "draw 1 entire state 0x1 at 20 to 40",
                                 "draw 2 entire state 0x0 at 40 to 60", "draw 1 focus state 0x11 at 20 to 40"}))
        << "the focus is drawn behind all rows";

    Send(WM_KEYDOWN, VK_UP);
    EXPECT_EQ(log.Take(), Lines({"draw 1 focus state 0x1 at 20 to 40", "draw 1 select state 0x0 at 20 to 40",
                                 "draw 0 select state 0x1 at 0 to 20", "draw 0 focus state 0x11 at 0 to 20",
                                 "main WM_COMMAND id 1000 code 1 from list"}));
    SetFocus(main);
    EXPECT_EQ(log.Take(), Lines({"draw 0 focus state 0x1 at 0 to 20", "main WM_COMMAND id 1000 code 5 from list"}));

    EnableWindow(list, FALSE);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(log.Take(), Lines({"draw 0 entire state 0x5 at 0 to 20", "draw 1 entire state 0x4 at 20 to 40",
                                 "draw 2 entire state 0x4 at 40 to 60"}));
    EXPECT_TRUE(areFieldsRight);
}

TEST_F(ListBoxTest, NothingIsDrawnWhileRedrawingIsOff) {
    FillAndShow(3);
    Send(WM_SETREDRAW, FALSE);
    EXPECT_TRUE(IsWindowVisible(list));
    Send(LB_SETCURSEL, 1);
    Send(LB_DELETESTRING, 2);
    Send(LB_INSERTSTRING, 2, "other");
    Send(LB_SETITEMDATA, 2, 102);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(log.Take(), Lines({"measure 2"}));
    Send(WM_SETREDRAW, TRUE);
    EXPECT_TRUE(IsWindowVisible(list));
    InvalidateRect(list, nullptr, TRUE);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(log.Take(), Lines({"draw 0 entire state 0x0 at 0 to 20", "draw 1 entire state 0x1 at 20 to 40",
                                 "draw 2 entire state 0x0 at 40 to 60"}));
}

TEST_F(ListBoxTest, ChangesAreDrawnLater) {
    FillAndShow(3);
    Send(LB_INSERTSTRING, 3, "row 3");
    Send(LB_SETITEMDATA, 3, 103);
    EXPECT_EQ(log.Take(), Lines({"measure 3"}));
    ASSERT_TRUE(PumpAll());
    EXPECT_NE(log.Take().find("draw 3 entire state 0x0 at 60 to 80"), std::string::npos);

    // A row may get its height while it is drawn; what is below it then has another place.
    SetMessageHook([](HWND window, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
        const bool isDone = ParentHook(window, message, wParam, lParam, result);
        const auto* row = reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
        if (message == WM_DRAWITEM && SendMessageA(row->hwndItem, LB_GETITEMHEIGHT, row->itemID, 0) != 25) {
            SendMessageA(row->hwndItem, LB_SETITEMHEIGHT, row->itemID, 25);
        }
        return isDone;
    });
    InvalidateRect(list, nullptr, TRUE);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(Place(3), "75 to 100");
    EXPECT_NE(log.Take().find("draw 3 entire state 0x0 at 75 to 100"), std::string::npos);
}
