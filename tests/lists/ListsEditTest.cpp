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
            host.AddDisc(disc, 3);
        }
        host.AddAlbum(1, 2);
        ASSERT_TRUE(host.Refill(2));
        SetFocus(host.Groups());
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

    std::string Title(GroupId group, TrackNo track) { return TitleOf(host.store, group, track); }

    ListsHost host;
};

}  // namespace

TEST_F(ListsEditTest, AClickOnTheSelectedRowOpensTheEditor) {
    Click(host.Groups(), 1);
    EXPECT_TRUE(IsOpen(host.Groups())) << "the list has just got the focus";
    EndEdit(host.Groups());
    EXPECT_FALSE(IsOpen(host.Groups()));
    Click(host.Groups(), 1);
    EXPECT_FALSE(IsOpen(host.Groups())) << "the first click after an edit arms only";
    Click(host.Groups(), 1);
    EXPECT_TRUE(IsOpen(host.Groups()));
    EndEdit(host.Groups());

    Click(host.Groups(), 2);
    EXPECT_EQ(host.groupList.SelectedRow(), 2);
    EXPECT_FALSE(IsOpen(host.Groups())) << "a click on another row selects";
    Click(host.Groups(), 2);
    EXPECT_TRUE(IsOpen(host.Groups()));
    EndEdit(host.Groups());

    Click(host.Groups(), 0);
    Click(host.Groups(), 0, true);
    EXPECT_TRUE(IsOpen(host.Groups())) << "a double click selects and opens";
    EndEdit(host.Groups());
}

TEST_F(ListsEditTest, AReleaseElsewhereArmsOnly) {
    const RECT row = RowOf(host.Groups(), 1);
    SendMessageA(host.Groups(), WM_LBUTTONDOWN, MK_LBUTTON,
                 MAKELPARAM(static_cast<WORD>(row.left + 5), static_cast<WORD>(row.top + 5)));
    SendMessageA(host.Groups(), WM_LBUTTONUP, 0, MAKELPARAM(static_cast<WORD>(-5), static_cast<WORD>(row.top + 5)));
    ASSERT_TRUE(PumpAll());
    EXPECT_FALSE(IsOpen(host.Groups()));
    Click(host.Groups(), 1);
    EXPECT_TRUE(IsOpen(host.Groups()));
}

TEST_F(ListsEditTest, TheEditorStandsOverTheTitle) {
    host.store.EditTitle(2, 0, "Rock & Roll");
    ASSERT_TRUE(host.Refill(2));
    ASSERT_EQ(host.groupList.BeginEdit(), 1);
    HWND editor = Editor(host.Groups());
    EXPECT_EQ(GetFocus(), editor);
    EXPECT_EQ(WindowText(editor), "Rock & Roll");
    DWORD start = 9;
    DWORD end = 0;
    SendMessageA(editor, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
    EXPECT_EQ(start, 0U);
    EXPECT_EQ(end, 11U) << "the first key replaces it";
    EXPECT_EQ(SendMessageA(editor, WM_GETFONT, 0, 0), SendMessageA(host.Groups(), WM_GETFONT, 0, 0));
    RECT place = {};
    RECT list = {};
    GetWindowRect(editor, &place);
    GetClientRect(host.Groups(), &list);
    POINT corner = {place.left, place.top};
    ScreenToClient(host.Groups(), &corner);
    const RECT row = RowOf(host.Groups(), 1);
    EXPECT_EQ(corner.y, row.top);
    EXPECT_EQ(place.bottom - place.top, row.bottom - row.top);
    EXPECT_EQ(corner.x + place.right - place.left, list.right);
    EXPECT_GT(corner.x, row.left + 20);
    EXPECT_EQ(host.groupList.OwnsEditor(editor), 1);
    EXPECT_EQ(host.groupList.OwnsEditor(nullptr), 1);
    EXPECT_EQ(host.groupList.OwnsEditor(host.Groups()), 0);
    EXPECT_EQ(host.trackList.OwnsEditor(nullptr), 0);
    EXPECT_EQ(host.groupList.BeginEdit(), 0) << "one at a time";
}

TEST_F(ListsEditTest, EnterCommitsAndWalksOn) {
    Edit(host.groupList, host.Groups(), "Renamed & more");
    EXPECT_FALSE(IsOpen(host.Groups()));
    EXPECT_EQ(Title(2, 0), "Renamed & more");
    EXPECT_EQ(host.store.IsEdited(2, 0), 1);
    EXPECT_NE(ListsHost::Rows(host.Groups()).find("Dsc|2|Renamed && more\n"), std::string::npos);
    EXPECT_EQ(host.groupList.SelectedRow(), 1);
    EXPECT_EQ(GetFocus(), host.Tracks()) << "on to the first track";
    EXPECT_EQ(host.trackList.SelectedRow(), 0);

    Edit(host.trackList, host.Tracks(), "One");
    EXPECT_EQ(GetFocus(), host.Tracks());
    EXPECT_EQ(host.trackList.SelectedRow(), 1);
    EXPECT_FALSE(IsOpen(host.Tracks())) << "it is Enter that opens the next one";
    host.store.DeleteTitle(2, 3);
    Edit(host.trackList, host.Tracks(), "Two");
    EXPECT_EQ(Title(2, 1), "One");
    EXPECT_EQ(Title(2, 2), "Two");
    EXPECT_EQ(host.trackList.SelectedRow(), 1) << "the last track has no title any more";
    EXPECT_EQ(GetFocus(), host.Groups()) << "behind the last track the groups come again";
}

TEST_F(ListsEditTest, AnUnchangedTextIsNoEdit) {
    host.store.StoreReceived(2, 0, "&&");
    ASSERT_TRUE(host.Refill(2));
    ASSERT_EQ(host.groupList.BeginEdit(), 1);
    EXPECT_EQ(WindowText(Editor(host.Groups())), "&&");
    Enter(host.Groups());
    EXPECT_EQ(host.store.IsEdited(2, 0), 0);
    EXPECT_EQ(host.store.CanUndo(), 0);
    EXPECT_EQ(GetFocus(), host.Tracks()) << "Enter walks on all the same";
}

TEST_F(ListsEditTest, OtherWaysToEndAnEditCommitAndStay) {
    Type(host.groupList, host.Groups(), "By focus");
    SetFocus(host.Tracks());
    ASSERT_TRUE(PumpAll());
    EXPECT_FALSE(IsOpen(host.Groups()));
    EXPECT_EQ(Title(2, 0), "By focus");
    EXPECT_EQ(GetFocus(), host.Tracks());
    EXPECT_EQ(host.groupList.SelectedRow(), 1);

    SetFocus(host.Groups());
    Type(host.groupList, host.Groups(), "By another row");
    Click(host.Groups(), 2);
    EXPECT_FALSE(IsOpen(host.Groups()));
    EXPECT_EQ(Title(2, 0), "By another row") << "the row that the editor stood on";
    EXPECT_EQ(Title(3, 0), "Disc 3");
    EXPECT_EQ(host.groupList.SelectedRow(), 2);
    EXPECT_EQ(ListsHost::Selected(host.Groups()), 2);

    // Escape is no key of the editor.
    Type(host.groupList, host.Groups(), "Still there");
    PressKeys({VK_ESCAPE});
    PressKeys({VK_TAB});
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(GetFocus(), Editor(host.Groups()));
    EndEdit(host.Groups());
    EXPECT_EQ(Title(3, 0), "Still there");
    EXPECT_EQ(host.groupList.EndEdit(), 0) << "nothing is open any more";
}

TEST_F(ListsEditTest, WithoutCommitAnEditIsThrownAway) {
    Type(host.groupList, host.Groups(), "Lost");
    host.groupList.SetCommitEnabled(FALSE);
    EXPECT_EQ(host.groupList.EndEdit(), 0);
    EXPECT_FALSE(IsOpen(host.Groups()));
    EXPECT_EQ(host.groupList.BeginEdit(), 0);
    host.groupList.SetCommitEnabled(TRUE);
    EXPECT_EQ(Title(2, 0), "Disc 2");
    EXPECT_EQ(host.store.CanUndo(), 0);
    EXPECT_EQ(host.groupList.BeginEdit(), 1);
}

TEST_F(ListsEditTest, DeleteClearsATitle) {
    SendMessageA(host.Groups(), WM_KEYDOWN, VK_DELETE, 0);
    EXPECT_EQ(Title(2, 0), "");
    EXPECT_EQ(host.store.IsEdited(2, 0), 1);
    EXPECT_EQ(host.store.CanUndo(), 1);
    EXPECT_NE(ListsHost::Rows(host.Groups()).find("Dsc|2|\n"), std::string::npos);
    EXPECT_EQ(ListsHost::Selected(host.Groups()), 1);

    // In the editor it is the editor's own key.
    Type(host.groupList, host.Groups(), "Two words");
    SendMessageA(Editor(host.Groups()), EM_SETSEL, 0, 4);
    PressKeys({VK_DELETE});
    ASSERT_TRUE(PumpUntil([&] { return WindowText(Editor(host.Groups())) == "words"; }));
    // Without a state there is nothing to clear.
    EndEdit(host.Groups());
    host.store.ResetAll();
    SendMessageA(host.Groups(), WM_KEYDOWN, VK_DELETE, 0);
    EXPECT_EQ(host.store.CanUndo(), 0);
    EXPECT_NE(ListsHost::Rows(host.Groups()).find("Dsc|2|words\n"), std::string::npos);
}

TEST_F(ListsEditTest, TheTracksOfAnAlbumCannotBeEdited) {
    ASSERT_TRUE(host.Refill(AlbumGroup(1)));
    SetFocus(host.Tracks());
    EXPECT_EQ(host.trackList.GetSelectedIds(nullptr, nullptr), 1);
    EXPECT_EQ(host.trackList.BeginEdit(), 0);
    SendMessageA(host.Tracks(), WM_KEYDOWN, VK_DELETE, 0);
    EXPECT_EQ(Title(AlbumGroup(1), 1), "Album 1, Track 1");
    EXPECT_EQ(host.groupList.BeginEdit(), 1) << "its own title can";
}

TEST_F(ListsEditTest, OnlyPrintableTextOfThirtyTwoBytesComesBack) {
    const auto committed = [&](const char* text) {
        EXPECT_EQ(host.groupList.BeginEdit(), 1);
        SetWindowTextA(Editor(host.Groups()), text);
        EndEdit(host.Groups());
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

    ASSERT_EQ(host.groupList.BeginEdit(), 1);
    for (int i = 0; i < 40; ++i) {
        SendMessageA(Editor(host.Groups()), WM_CHAR, 'z', 1);
    }
    EXPECT_EQ(WindowText(Editor(host.Groups())), std::string(32, 'z')) << "the 33rd byte cannot be typed";
}

TEST_F(ListsEditTest, AnEditorDiesOnceWithItsList) {
    ASSERT_EQ(host.trackList.BeginEdit(), 1);
    DestroyWindow(host.Tracks());
    EXPECT_EQ(host.trackList.OwnsEditor(nullptr), 0);
    EXPECT_EQ(host.trackList.EndEdit(), 0);
    ASSERT_EQ(host.groupList.BeginEdit(), 1);
}

TEST_F(ListsEditTest, KeysOpenTheEditor) {
    SendMessageA(host.Groups(), WM_KEYDOWN, VK_RETURN, 0);
    EXPECT_TRUE(IsOpen(host.Groups()));
    Enter(host.Groups());
    host.groupList.SetStore(nullptr);
    SetFocus(host.Groups());
    SendMessageA(host.Groups(), WM_KEYDOWN, VK_RETURN, 0);
    EXPECT_FALSE(IsOpen(host.Groups()));
    EXPECT_EQ(host.groupList.ReplaceRowText(1, "x"), 1);
    EXPECT_EQ(host.groupList.ReplaceRowText(99, "x"), 0);
    EXPECT_EQ(host.groupList.ReplaceRowText(1, nullptr), 1);
    EXPECT_NE(ListsHost::Rows(host.Groups()).find("Dsc|2|\n"), std::string::npos);
}

TEST_F(ListsEditTest, AnEditStaysWithItsTitleWhenTheRowsChange) {
    SetFocus(host.Tracks());
    SendMessageA(host.Tracks(), LB_SETCURSEL, 2, 0);
    host.trackList.OnSelChange();
    Type(host.trackList, host.Tracks(), "For track 3");
    // The first track is gone, so that the others move up.
    host.store.StoreReceived(2, 1, nullptr);
    ASSERT_TRUE(host.Refill(2));
    RECT editor = {};
    GetWindowRect(Editor(host.Tracks()), &editor);
    POINT corner = {editor.left, editor.top};
    ScreenToClient(host.Tracks(), &corner);
    EXPECT_EQ(corner.y, RowOf(host.Tracks(), 1).top) << "the editor stands on its title's row";
    EXPECT_EQ(ListsHost::Selected(host.Tracks()), 1);
    EndEdit(host.Tracks());
    EXPECT_EQ(Title(2, 3), "For track 3");
    EXPECT_EQ(Title(2, 2), "Disc 2, Track 2");
    EXPECT_EQ(ListsHost::Rows(host.Tracks()), "Tr|2|Disc 2, Track 2\nTr|3|For track 3\n");
}

TEST_F(ListsEditTest, AnEditIsKeptWithoutARow) {
    SetFocus(host.Tracks());
    Type(host.trackList, host.Tracks(), "Typed at once");
    host.trackList.ClearRows();
    EndEdit(host.Tracks());
    EXPECT_EQ(Title(2, 1), "Typed at once");

    // The arrow of the other list takes the tracks away that the edit is about.
    ASSERT_TRUE(host.Refill(2));
    SetFocus(host.Tracks());
    Type(host.trackList, host.Tracks(), "Before the arrow");
    RECT client = {};
    GetClientRect(host.Groups(), &client);
    const LPARAM place = MAKELPARAM(static_cast<WORD>(client.right / 2), static_cast<WORD>(client.bottom + 10));
    PostMessageA(host.Groups(), WM_LBUTTONDOWN, MK_LBUTTON, place);
    PostMessageA(host.Groups(), WM_LBUTTONUP, 0, place);
    ASSERT_TRUE(PumpAll());
    EXPECT_FALSE(IsOpen(host.Tracks()));
    EXPECT_EQ(Title(2, 1), "Before the arrow");
}

TEST_F(ListsEditTest, AnUnchangedTextDoesNotOverrideWhatHasArrived) {
    ASSERT_EQ(host.groupList.BeginEdit(), 1);
    host.store.StoreReceived(2, 0, "From the unit");
    Enter(host.Groups());
    EXPECT_EQ(Title(2, 0), "From the unit");
    EXPECT_EQ(host.store.CanUndo(), 0);
}

TEST_F(ListsEditTest, ARowWithANewTitleKeepsTheFontsHeight) {
    LOGFONTA font = {};
    GetObjectA(reinterpret_cast<HFONT>(SendMessageA(host.Groups(), WM_GETFONT, 0, 0)), sizeof font, &font);
    font.lfHeight = 40;
    host.groupList.SetListFont(&font);
    ASSERT_TRUE(host.Refill(2));
    const LRESULT height = SendMessageA(host.Groups(), LB_GETITEMHEIGHT, 1, 0);
    ASSERT_GT(height, 30);
    // Before anything is painted.
    EXPECT_EQ(host.groupList.ReplaceRowText(1, "Another"), 1);
    EXPECT_EQ(SendMessageA(host.Groups(), LB_GETITEMHEIGHT, 1, 0), height);
}

TEST_F(ListsEditTest, TheWheelMovesTheSelection) {
    const auto turn = [this](int by) {
        SendMessageA(host.Groups(), WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(by)), 0);
        ASSERT_TRUE(PumpAll());
    };
    turn(-WHEEL_DELTA / 2);
    EXPECT_EQ(host.groupList.SelectedRow(), 1) << "half a notch";
    turn(-WHEEL_DELTA / 2);
    EXPECT_EQ(host.groupList.SelectedRow(), 2);
    turn(3 * WHEEL_DELTA);
    EXPECT_EQ(host.groupList.SelectedRow(), 0);
    turn(WHEEL_DELTA);
    EXPECT_EQ(host.groupList.SelectedRow(), 0);
    EXPECT_EQ(SendMessageA(host.Groups(), LB_GETTOPINDEX, 0, 0), 0);
}
