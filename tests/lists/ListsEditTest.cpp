// How a title is edited in a list: what opens the editor, what closes it, what becomes of its text, and where the user
// stands then.
#include <gtest/gtest.h>

#include <string>

#include "Harness.h"
#include "ListsHost.h"
#include "MessageLog.h"
#include "PaneRequests.h"

namespace {

constexpr int kEditorId = 102;

class ListsEditTest : public testing::Test {
protected:
    void SetUp() override {
        for (const int disc : {1, 2, 3}) {
            host_.AddDisc(disc, 3);
        }
        host_.AddAlbum(1, 2);
        ASSERT_TRUE(host_.Refill(2));
        SetFocus(host_.Groups());
        ASSERT_TRUE(PumpAll());
    }

    HWND Editor(HWND list) { return GetDlgItem(list, kEditorId); }
    bool IsOpen(HWND list) { return Editor(list) != nullptr; }

    // A click into the middle of a row. `isDouble`: as the second of two quick ones.
    void Click(HWND list, int row, bool isDouble = false) {
        const RECT rect = RowOf(list, row);
        const LPARAM place = MAKELPARAM(static_cast<WORD>(rect.left + 100), static_cast<WORD>((rect.top + rect.bottom) / 2));
        PostMessageA(list, isDouble ? WM_LBUTTONDBLCLK : WM_LBUTTONDOWN, MK_LBUTTON, place);
        PostMessageA(list, WM_LBUTTONUP, 0, place);
        ASSERT_TRUE(PumpAll());
    }
    static RECT RowOf(HWND list, int row) {
        RECT rect = {};
        SendMessageA(list, LB_GETITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&rect));
        return rect;
    }

    // Opens the editor on the selected row and replaces its text.
    void Type(CTitleList& list, HWND control, const char* text) {
        ASSERT_EQ(list.BeginEdit(), 1);
        SetWindowTextA(Editor(control), text);
    }
    // And ends it as the pane does for Enter.
    void Edit(CTitleList& list, HWND control, const char* text) {
        Type(list, control, text);
        Enter(control);
    }
    static void EndEdit(HWND control) { SendMessageA(control, WM_USER, UC_END_EDIT, 0); }
    void Enter(HWND control) {
        SendMessageA(Editor(control), WM_KEYDOWN, VK_RETURN, 0);
        ASSERT_TRUE(PumpAll());
    }

    std::string Title(GroupId group, TrackNo track) { return TitleOf(host_.store, group, track); }

    ListsHost host_;
};

}  // namespace

TEST_F(ListsEditTest, AClickOnTheSelectedRowOpensTheEditor) {
    Click(host_.Groups(), 1);
    EXPECT_TRUE(IsOpen(host_.Groups())) << "the list has just got the focus";
    EndEdit(host_.Groups());
    EXPECT_FALSE(IsOpen(host_.Groups()));
    Click(host_.Groups(), 1);
    EXPECT_FALSE(IsOpen(host_.Groups())) << "the first click after an edit arms only";
    Click(host_.Groups(), 1);
    EXPECT_TRUE(IsOpen(host_.Groups()));
    EndEdit(host_.Groups());

    Click(host_.Groups(), 2);
    EXPECT_EQ(host_.groupList.SelectedRow(), 2);
    EXPECT_FALSE(IsOpen(host_.Groups())) << "a click on another row selects";
    Click(host_.Groups(), 2);
    EXPECT_TRUE(IsOpen(host_.Groups()));
    EndEdit(host_.Groups());

    Click(host_.Groups(), 0);
    Click(host_.Groups(), 0, true);
    EXPECT_TRUE(IsOpen(host_.Groups())) << "a double click selects and opens";
    EndEdit(host_.Groups());
}

TEST_F(ListsEditTest, AReleaseElsewhereArmsOnly) {
    const RECT row = RowOf(host_.Groups(), 1);
    SendMessageA(host_.Groups(), WM_LBUTTONDOWN, MK_LBUTTON,
                 MAKELPARAM(static_cast<WORD>(row.left + 5), static_cast<WORD>(row.top + 5)));
    SendMessageA(host_.Groups(), WM_LBUTTONUP, 0, MAKELPARAM(static_cast<WORD>(-5), static_cast<WORD>(row.top + 5)));
    ASSERT_TRUE(PumpAll());
    EXPECT_FALSE(IsOpen(host_.Groups()));
    Click(host_.Groups(), 1);
    EXPECT_TRUE(IsOpen(host_.Groups()));
}

TEST_F(ListsEditTest, TheEditorStandsOverTheTitle) {
    host_.store.EditTitle(2, 0, "Rock & Roll");
    ASSERT_TRUE(host_.Refill(2));
    ASSERT_EQ(host_.groupList.BeginEdit(), 1);
    HWND editor = Editor(host_.Groups());
    EXPECT_EQ(GetFocus(), editor);
    EXPECT_EQ(WindowText(editor), "Rock & Roll");
    DWORD start = 9;
    DWORD end = 0;
    SendMessageA(editor, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
    EXPECT_EQ(start, 0U);
    EXPECT_EQ(end, 11U) << "the first key replaces it";
    EXPECT_EQ(SendMessageA(editor, WM_GETFONT, 0, 0), SendMessageA(host_.Groups(), WM_GETFONT, 0, 0));
    RECT place = {};
    RECT list = {};
    GetWindowRect(editor, &place);
    GetClientRect(host_.Groups(), &list);
    POINT corner = {place.left, place.top};
    ScreenToClient(host_.Groups(), &corner);
    const RECT row = RowOf(host_.Groups(), 1);
    EXPECT_EQ(corner.y, row.top);
    EXPECT_EQ(place.bottom - place.top, row.bottom - row.top);
    EXPECT_EQ(corner.x + place.right - place.left, list.right);
    EXPECT_GT(corner.x, row.left + 20);
    EXPECT_EQ(host_.groupList.OwnsEditor(editor), 1);
    EXPECT_EQ(host_.groupList.OwnsEditor(nullptr), 1);
    EXPECT_EQ(host_.groupList.OwnsEditor(host_.Groups()), 0);
    EXPECT_EQ(host_.trackList.OwnsEditor(nullptr), 0);
    EXPECT_EQ(host_.groupList.BeginEdit(), 0) << "one at a time";
}

TEST_F(ListsEditTest, EnterCommitsAndWalksOn) {
    Edit(host_.groupList, host_.Groups(), "Renamed & more");
    EXPECT_FALSE(IsOpen(host_.Groups()));
    EXPECT_EQ(Title(2, 0), "Renamed & more");
    EXPECT_EQ(host_.store.IsEdited(2, 0), 1);
    EXPECT_NE(ListsHost::Rows(host_.Groups()).find("Dsc|2|Renamed && more\n"), std::string::npos);
    EXPECT_EQ(host_.groupList.SelectedRow(), 1);
    EXPECT_EQ(GetFocus(), host_.Tracks()) << "on to the first track";
    EXPECT_EQ(host_.trackList.SelectedRow(), 0);

    Edit(host_.trackList, host_.Tracks(), "One");
    EXPECT_EQ(GetFocus(), host_.Tracks());
    EXPECT_EQ(host_.trackList.SelectedRow(), 1);
    EXPECT_FALSE(IsOpen(host_.Tracks())) << "it is Enter that opens the next one";
    host_.store.DeleteTitle(2, 3);
    Edit(host_.trackList, host_.Tracks(), "Two");
    EXPECT_EQ(Title(2, 1), "One");
    EXPECT_EQ(Title(2, 2), "Two");
    EXPECT_EQ(host_.trackList.SelectedRow(), 1) << "the last track has no title any more";
    EXPECT_EQ(GetFocus(), host_.Groups()) << "behind the last track the groups come again";
}

TEST_F(ListsEditTest, AnUnchangedTextIsNoEdit) {
    host_.store.StoreReceived(2, 0, "&&");
    ASSERT_TRUE(host_.Refill(2));
    ASSERT_EQ(host_.groupList.BeginEdit(), 1);
    EXPECT_EQ(WindowText(Editor(host_.Groups())), "&&");
    Enter(host_.Groups());
    EXPECT_EQ(host_.store.IsEdited(2, 0), 0);
    EXPECT_EQ(host_.store.CanUndo(), 0);
    EXPECT_EQ(GetFocus(), host_.Tracks()) << "Enter walks on all the same";
}

TEST_F(ListsEditTest, OtherWaysToEndAnEditCommitAndStay) {
    Type(host_.groupList, host_.Groups(), "By focus");
    SetFocus(host_.Tracks());
    ASSERT_TRUE(PumpAll());
    EXPECT_FALSE(IsOpen(host_.Groups()));
    EXPECT_EQ(Title(2, 0), "By focus");
    EXPECT_EQ(GetFocus(), host_.Tracks());
    EXPECT_EQ(host_.groupList.SelectedRow(), 1);

    SetFocus(host_.Groups());
    Type(host_.groupList, host_.Groups(), "By another row");
    Click(host_.Groups(), 2);
    EXPECT_FALSE(IsOpen(host_.Groups()));
    EXPECT_EQ(Title(2, 0), "By another row") << "the row that the editor stood on";
    EXPECT_EQ(Title(3, 0), "Disc 3");
    EXPECT_EQ(host_.groupList.SelectedRow(), 2);
    EXPECT_EQ(ListsHost::Selected(host_.Groups()), 2);

    // Escape is no key of the editor.
    Type(host_.groupList, host_.Groups(), "Still there");
    PressKeys({VK_ESCAPE});
    PressKeys({VK_TAB});
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(GetFocus(), Editor(host_.Groups()));
    EndEdit(host_.Groups());
    EXPECT_EQ(Title(3, 0), "Still there");
    EXPECT_EQ(host_.groupList.EndEdit(), 0) << "nothing is open any more";
}

TEST_F(ListsEditTest, WithoutCommitAnEditIsThrownAway) {
    Type(host_.groupList, host_.Groups(), "Lost");
    host_.groupList.SetCommitEnabled(FALSE);
    EXPECT_EQ(host_.groupList.EndEdit(), 0);
    EXPECT_FALSE(IsOpen(host_.Groups()));
    EXPECT_EQ(host_.groupList.BeginEdit(), 0);
    host_.groupList.SetCommitEnabled(TRUE);
    EXPECT_EQ(Title(2, 0), "Disc 2");
    EXPECT_EQ(host_.store.CanUndo(), 0);
    EXPECT_EQ(host_.groupList.BeginEdit(), 1);
}

TEST_F(ListsEditTest, DeleteClearsATitle) {
    SendMessageA(host_.Groups(), WM_KEYDOWN, VK_DELETE, 0);
    EXPECT_EQ(Title(2, 0), "");
    EXPECT_EQ(host_.store.IsEdited(2, 0), 1);
    EXPECT_EQ(host_.store.CanUndo(), 1);
    EXPECT_NE(ListsHost::Rows(host_.Groups()).find("Dsc|2|\n"), std::string::npos);
    EXPECT_EQ(ListsHost::Selected(host_.Groups()), 1);

    // In the editor it is the editor's own key.
    Type(host_.groupList, host_.Groups(), "Two words");
    SendMessageA(Editor(host_.Groups()), EM_SETSEL, 0, 4);
    PressKeys({VK_DELETE});
    ASSERT_TRUE(PumpUntil([&] { return WindowText(Editor(host_.Groups())) == "words"; }));
    // Without a state there is nothing to clear.
    EndEdit(host_.Groups());
    host_.store.ResetAll();
    SendMessageA(host_.Groups(), WM_KEYDOWN, VK_DELETE, 0);
    EXPECT_EQ(host_.store.CanUndo(), 0);
    EXPECT_NE(ListsHost::Rows(host_.Groups()).find("Dsc|2|words\n"), std::string::npos);
}

TEST_F(ListsEditTest, TheTracksOfAnAlbumCannotBeEdited) {
    ASSERT_TRUE(host_.Refill(AlbumGroup(1)));
    SetFocus(host_.Tracks());
    EXPECT_EQ(host_.trackList.GetSelectedIds(nullptr, nullptr), 1);
    EXPECT_EQ(host_.trackList.BeginEdit(), 0);
    SendMessageA(host_.Tracks(), WM_KEYDOWN, VK_DELETE, 0);
    EXPECT_EQ(Title(AlbumGroup(1), 1), "Album 1, Track 1");
    EXPECT_EQ(host_.groupList.BeginEdit(), 1) << "its own title can";
}

TEST_F(ListsEditTest, OnlyPrintableTextOfThirtyTwoBytesComesBack) {
    const auto committed = [&](const char* text) {
        EXPECT_EQ(host_.groupList.BeginEdit(), 1);
        SetWindowTextA(Editor(host_.Groups()), text);
        EndEdit(host_.Groups());
        return Title(2, 0);
    };
    EXPECT_EQ(committed("a\tb\x7Fz"), "a b z");
    EXPECT_EQ(committed("   "), "   ") << "blanks are a title";
    EXPECT_EQ(committed(""), "");
    const std::string limit(32, 'x');
    EXPECT_EQ(committed((limit + "y").c_str()), limit);
    // One character of two bytes where the code page has such, else two characters.
    const bool isDouble = IsDBCSLeadByte(0x82) != FALSE;
    EXPECT_EQ(committed("a\x82\xA0z"), isDouble ? "a z" : "a  z");
    EXPECT_EQ(committed((std::string(31, 'x') + "\x82\xA0").c_str()), std::string(31, 'x') + " ") << "cut by the limit";

    ASSERT_EQ(host_.groupList.BeginEdit(), 1);
    for (int i = 0; i < 40; ++i) {
        SendMessageA(Editor(host_.Groups()), WM_CHAR, 'z', 1);
    }
    EXPECT_EQ(WindowText(Editor(host_.Groups())), std::string(32, 'z')) << "the 33rd byte cannot be typed";
}

TEST_F(ListsEditTest, AnEditorDiesOnceWithItsList) {
    ASSERT_EQ(host_.trackList.BeginEdit(), 1);
    DestroyWindow(host_.Tracks());
    EXPECT_EQ(host_.trackList.OwnsEditor(nullptr), 0);
    EXPECT_EQ(host_.trackList.EndEdit(), 0);
    ASSERT_EQ(host_.groupList.BeginEdit(), 1);
}

TEST_F(ListsEditTest, KeysOpenTheEditor) {
    SendMessageA(host_.Groups(), WM_KEYDOWN, VK_RETURN, 0);
    EXPECT_TRUE(IsOpen(host_.Groups()));
    Enter(host_.Groups());
    host_.groupList.SetStore(nullptr);
    SetFocus(host_.Groups());
    SendMessageA(host_.Groups(), WM_KEYDOWN, VK_RETURN, 0);
    EXPECT_FALSE(IsOpen(host_.Groups()));
    EXPECT_EQ(host_.groupList.ReplaceRowText(1, "x"), 1);
    EXPECT_EQ(host_.groupList.ReplaceRowText(99, "x"), 0);
    EXPECT_EQ(host_.groupList.ReplaceRowText(1, nullptr), 1);
    EXPECT_NE(ListsHost::Rows(host_.Groups()).find("Dsc|2|\n"), std::string::npos);
}

TEST_F(ListsEditTest, AnEditStaysWithItsTitleWhenTheRowsChange) {
    SetFocus(host_.Tracks());
    SendMessageA(host_.Tracks(), LB_SETCURSEL, 2, 0);
    host_.trackList.OnSelChange();
    Type(host_.trackList, host_.Tracks(), "For track 3");
    // The first track is gone, so that the others move up.
    host_.store.StoreReceived(2, 1, nullptr);
    ASSERT_TRUE(host_.Refill(2));
    RECT editor = {};
    GetWindowRect(Editor(host_.Tracks()), &editor);
    POINT corner = {editor.left, editor.top};
    ScreenToClient(host_.Tracks(), &corner);
    EXPECT_EQ(corner.y, RowOf(host_.Tracks(), 1).top) << "the editor stands on its title's row";
    EXPECT_EQ(ListsHost::Selected(host_.Tracks()), 1);
    EndEdit(host_.Tracks());
    EXPECT_EQ(Title(2, 3), "For track 3");
    EXPECT_EQ(Title(2, 2), "Disc 2, Track 2");
    EXPECT_EQ(ListsHost::Rows(host_.Tracks()), "Tr|2|Disc 2, Track 2\nTr|3|For track 3\n");
}

TEST_F(ListsEditTest, AnEditIsKeptWithoutARow) {
    SetFocus(host_.Tracks());
    Type(host_.trackList, host_.Tracks(), "Typed at once");
    host_.trackList.ClearRows();
    EndEdit(host_.Tracks());
    EXPECT_EQ(Title(2, 1), "Typed at once");

    // The arrow of the other list takes the tracks away that the edit is about.
    ASSERT_TRUE(host_.Refill(2));
    SetFocus(host_.Tracks());
    Type(host_.trackList, host_.Tracks(), "Before the arrow");
    RECT client = {};
    GetClientRect(host_.Groups(), &client);
    const LPARAM place = MAKELPARAM(static_cast<WORD>(client.right / 2), static_cast<WORD>(client.bottom + 10));
    PostMessageA(host_.Groups(), WM_LBUTTONDOWN, MK_LBUTTON, place);
    PostMessageA(host_.Groups(), WM_LBUTTONUP, 0, place);
    ASSERT_TRUE(PumpAll());
    EXPECT_FALSE(IsOpen(host_.Tracks()));
    EXPECT_EQ(Title(2, 1), "Before the arrow");
}

TEST_F(ListsEditTest, AnUnchangedTextDoesNotOverrideWhatHasArrived) {
    ASSERT_EQ(host_.groupList.BeginEdit(), 1);
    host_.store.StoreReceived(2, 0, "From the unit");
    Enter(host_.Groups());
    EXPECT_EQ(Title(2, 0), "From the unit");
    EXPECT_EQ(host_.store.CanUndo(), 0);
}

TEST_F(ListsEditTest, ARowWithANewTitleKeepsTheFontsHeight) {
    LOGFONTA font = {};
    GetObjectA(reinterpret_cast<HFONT>(SendMessageA(host_.Groups(), WM_GETFONT, 0, 0)), sizeof font, &font);
    font.lfHeight = 40;
    host_.groupList.SetListFont(&font);
    ASSERT_TRUE(host_.Refill(2));
    const LRESULT height = SendMessageA(host_.Groups(), LB_GETITEMHEIGHT, 1, 0);
    ASSERT_GT(height, 30);
    // Before anything is painted.
    EXPECT_EQ(host_.groupList.ReplaceRowText(1, "Another"), 1);
    EXPECT_EQ(SendMessageA(host_.Groups(), LB_GETITEMHEIGHT, 1, 0), height);
}

TEST_F(ListsEditTest, TheWheelMovesTheSelection) {
    const auto turn = [this](int by) {
        SendMessageA(host_.Groups(), WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(by)), 0);
        ASSERT_TRUE(PumpAll());
    };
    turn(-WHEEL_DELTA / 2);
    EXPECT_EQ(host_.groupList.SelectedRow(), 1) << "half a notch";
    turn(-WHEEL_DELTA / 2);
    EXPECT_EQ(host_.groupList.SelectedRow(), 2);
    turn(3 * WHEEL_DELTA);
    EXPECT_EQ(host_.groupList.SelectedRow(), 0);
    turn(WHEEL_DELTA);
    EXPECT_EQ(host_.groupList.SelectedRow(), 0);
    EXPECT_EQ(SendMessageA(host_.Groups(), LB_GETTOPINDEX, 0, 0), 0);
}
