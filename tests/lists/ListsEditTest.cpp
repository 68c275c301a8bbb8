// How a title is edited in a list: what opens the editor, what closes it, what becomes of its text, and where the user
// stands then.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "Harness.h"
#include "ListsHost.h"
#include "MessageLog.h"
#include "PaneRequests.h"

namespace {

constexpr int kEditorId = 102;

// Disc 2 and its second track are selected.
class ListsEditTest : public testing::Test {
protected:
    using Side = ListsHost::Side;

    void SetUp() override {
        for (const int disc : {1, 2, 3}) {
            host.AddDisc(disc, 4);
        }
        host.AddAlbum(1, 2);
        ASSERT_TRUE(host.Refill(2));
        Select(tracks, 1);
        SetFocus(host.Groups());
        ASSERT_TRUE(PumpAll());
    }

    static void Select(const Side& side, int row) {
        side.list.SelectRow(row);
        side.list.OnSelChange();
    }
    static HWND Editor(const Side& side) { return GetDlgItem(side.window, kEditorId); }
    static bool IsOpen(const Side& side) { return Editor(side) != nullptr; }

    // One half of a click into the middle of a row, and what comes of it.
    static void Mouse(const Side& side, UINT message, int row) {
        const RECT rect = RowOf(side.window, row);
        PostMessageA(side.window, message, message == WM_LBUTTONUP ? 0 : MK_LBUTTON,
                     MAKELPARAM(static_cast<WORD>(rect.left + 100), static_cast<WORD>((rect.top + rect.bottom) / 2)));
        ASSERT_TRUE(PumpAll());
    }
    // Whether a click has opened the editor, which is closed then. `press`: as the second of two quick ones, say.
    static bool Click(const Side& side, int row, UINT press = WM_LBUTTONDOWN) {
        Mouse(side, press, row);
        Mouse(side, WM_LBUTTONUP, row);
        const bool isOpen = IsOpen(side);
        EndEdit(side);
        return isOpen;
    }

    // The selected row, as the list and its control know it, and what the user is at: "2 open, focus".
    static std::string Now(const Side& side) {
        const bool hasFocus = GetFocus() == side.window || side.list.OwnsEditor(GetFocus()) != 0;
        const std::string selected = std::to_string(side.list.SelectedRow());
        return (side.list.SelectedRow() == SelectedRowOf(side.window) ? selected : selected + " not in the control") +
               (IsOpen(side) ? " open" : "") + (hasFocus ? ", focus" : "");
    }

    // Opens the editor on the selected row and replaces its text.
    static void Type(const Side& side, const char* text) {
        ASSERT_EQ(side.list.BeginEdit(), 1);
        SetWindowTextA(Editor(side), text);
    }
    // And ends it as the pane does for Enter.
    static void Edit(const Side& side, const char* text) {
        Type(side, text);
        Enter(side);
    }
    static void EndEdit(const Side& side) { SendMessageA(side.window, WM_USER, UC_END_EDIT, 0); }
    static void Enter(const Side& side) {
        SendMessageA(Editor(side), WM_KEYDOWN, VK_RETURN, 0);
        ASSERT_TRUE(PumpAll());
    }
    // Of what is in that row at first, with Disc 2 selected.
    std::string Title(const Side& side, int row) {
        return side.window == host.Groups() ? Title(row + 1, 0) : Title(2, row + 1);
    }
    std::string Title(GroupId group, TrackNo track) { return TitleOf(host.store, group, track); }
    static bool HasRow(const Side& side, const char* row) { return RowsOf(side.window).find(row) != std::string::npos; }

    ListsHost host;
    Side groups = host.GroupSide();
    Side tracks = host.TrackSide();
    // A selection in the groups changes what the tracks are, so these come first.
    const Side sides[2] = {tracks, groups};
};

}  // namespace

TEST_F(ListsEditTest, AClickOnTheSelectedRowOpensTheEditor) {
    for (const Side& side : sides) {
        SetFocus(side.window);
        Type(side, "Edited");
        EndEdit(side);
        Select(side, 2);
        EXPECT_TRUE(Click(side, 2)) << "selected without a click";
        Select(side, 1);
        Mouse(side, WM_LBUTTONDOWN, 1);
        SendMessageA(side.window, WM_LBUTTONUP, 0, MAKELPARAM(static_cast<WORD>(-5), 5));
        EXPECT_FALSE(IsOpen(side)) << "released elsewhere";
        EXPECT_TRUE(Click(side, 1));
        EXPECT_FALSE(Click(side, 1)) << "the first click after an edit arms only";
        EXPECT_TRUE(Click(side, 1));
        EXPECT_FALSE(Click(side, 2)) << "a click on another row selects";
        EXPECT_EQ(side.list.SelectedRow(), 2);
        EXPECT_TRUE(Click(side, 2));
        EXPECT_FALSE(Click(side, 0));
        EXPECT_TRUE(Click(side, 0, WM_LBUTTONDBLCLK)) << "a double click selects and opens";
        SetFocus(host.Main());
        SetFocus(side.window);
        EXPECT_TRUE(Click(side, 0)) << "the list has just got the focus";
    }
}

TEST_F(ListsEditTest, TheEditorStandsOverTheTitle) {
    host.store.EditTitle(2, 0, "Rock & Roll");
    ASSERT_TRUE(host.Refill(2));
    SendMessageA(host.Groups(), WM_KEYDOWN, VK_RETURN, 0);
    HWND editor = Editor(groups);
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(GetFocus(), editor);
    EXPECT_EQ(WindowText(editor), "Rock & Roll");
    EXPECT_EQ(SendMessageA(editor, EM_GETSEL, 0, 0), MAKELONG(0, 11)) << "the first key replaces it";
    EXPECT_EQ(SendMessageA(editor, WM_GETFONT, 0, 0), SendMessageA(host.Groups(), WM_GETFONT, 0, 0));
    RECT over = RowOf(host.Groups(), 1);
    over.left += TextWidth(host.Groups(), "ZZZ 999   ");
    OffsetRect(&over, PlaceOf(host.Groups()).left + 10, PlaceOf(host.Groups()).top + 20);
    const RECT place = PlaceOf(editor);
    EXPECT_TRUE(EqualRect(&place, &over));
    EXPECT_EQ(host.groupList.OwnsEditor(editor), 1);
    EXPECT_EQ(host.groupList.OwnsEditor(nullptr), 1);
    EXPECT_EQ(host.groupList.OwnsEditor(host.Groups()), 0);
    EXPECT_EQ(host.trackList.OwnsEditor(nullptr), 0);
    EXPECT_EQ(host.groupList.BeginEdit(), 0) << "one at a time";
}

TEST_F(ListsEditTest, EnterCommitsAndWalksOn) {
    Edit(groups, "Renamed & more");
    EXPECT_EQ(Title(2, 0), "Renamed & more");
    EXPECT_EQ(host.store.IsEdited(2, 0), 1);
    EXPECT_TRUE(HasRow(groups, "Dsc|2|Renamed && more\n"));
    EXPECT_EQ(Now(groups), "1");
    EXPECT_EQ(Now(tracks), "0, focus") << "on to the first track";
    Edit(tracks, "One");
    EXPECT_EQ(Now(tracks), "1, focus") << "it is Enter that opens the next one";
    host.store.DeleteTitle(2, 3);
    host.store.DeleteTitle(2, 4);
    Edit(tracks, "Two");
    EXPECT_EQ(RowsOf(host.Tracks()).substr(0, 18), "Tr|1|One\nTr|2|Two\n");
    EXPECT_EQ(Title(2, 2), "Two");
    EXPECT_EQ(Now(tracks), "1") << "the last tracks have no title any more";
    EXPECT_EQ(Now(groups), "1, focus") << "behind the last track the groups come again";
}

TEST_F(ListsEditTest, AnUnchangedTextIsNoEdit) {
    host.store.StoreReceived(2, 0, "&&");
    ASSERT_TRUE(host.Refill(2));
    ASSERT_EQ(host.groupList.BeginEdit(), 1);
    EXPECT_EQ(WindowText(Editor(groups)), "&&");
    host.store.StoreReceived(2, 0, "From the unit");
    Enter(groups);
    EXPECT_EQ(Title(2, 0), "From the unit") << "what has arrived meanwhile stays";
    EXPECT_EQ(host.store.CanUndo(), 0);
    EXPECT_EQ(GetFocus(), host.Tracks()) << "Enter walks on all the same";
}

TEST_F(ListsEditTest, OtherWaysToEndAnEditCommitAndStay) {
    for (const Side& side : sides) {
        SetFocus(side.window);
        Type(side, "By focus");
        SetFocus(host.Main());
        ASSERT_TRUE(PumpAll());
        EXPECT_EQ(Title(side, 1), "By focus");
        EXPECT_EQ(Now(side), "1");

        const std::string other = Title(side, 2);
        SetFocus(side.window);
        Type(side, "By another row");
        EXPECT_FALSE(Click(side, 2));
        EXPECT_EQ(Title(side, 1), "By another row") << "the row that the editor stood on";
        EXPECT_EQ(Title(side, 2), other);
        EXPECT_EQ(Now(side), "2, focus") << "the row that the user clicked";

        // The editor ignores Escape.
        Type(side, "Still there");
        PressKeys({VK_ESCAPE});
        PressKeys({VK_TAB});
        ASSERT_TRUE(PumpAll());
        EXPECT_EQ(Now(side), "2 open, focus");
        EndEdit(side);
        EXPECT_EQ(Title(side, 2), "Still there");
        EXPECT_EQ(side.list.EndEdit(), 0) << "nothing is open any more";
    }
}

TEST_F(ListsEditTest, WithoutCommitAnEditIsThrownAway) {
    for (const Side& side : sides) {
        const std::string before = Title(side, 1);
        Type(side, "Lost");
        side.list.SetCommitEnabled(FALSE);
        EXPECT_EQ(side.list.EndEdit(), 0);
        EXPECT_EQ(side.list.BeginEdit(), 0);
        EXPECT_EQ(Now(side).substr(0, 1), "1");
        side.list.SetCommitEnabled(TRUE);
        EXPECT_EQ(Title(side, 1), before);
        EXPECT_EQ(host.store.CanUndo(), 0);
        EXPECT_EQ(side.list.BeginEdit(), 1);
    }
}

TEST_F(ListsEditTest, DeleteClearsATitle) {
    for (const Side& side : sides) {
        SendMessageA(side.window, WM_KEYDOWN, VK_DELETE, 0);
        EXPECT_EQ(Title(side, 1), "");
        EXPECT_EQ(host.store.CanUndo(), 1);
        EXPECT_TRUE(HasRow(side, "|2|\n"));
        EXPECT_EQ(SelectedRowOf(side.window), 1);
        // In the editor it is the editor's own key.
        Type(side, "Two words");
        SendMessageA(Editor(side), EM_SETSEL, 0, 4);
        SetFocus(Editor(side));
        PressKeys({VK_DELETE});
        ASSERT_TRUE(PumpUntil([&] { return WindowText(Editor(side)) == "words"; }));
        EndEdit(side);
    }
    EXPECT_TRUE(HasRow(groups, "Dsc|2|words\n") && HasRow(tracks, "Tr|2|words\n"));
    // Without a state there is nothing to clear.
    host.store.ResetAll();
    SendMessageA(host.Groups(), WM_KEYDOWN, VK_DELETE, 0);
    EXPECT_EQ(host.store.CanUndo(), 0);
    EXPECT_TRUE(HasRow(groups, "Dsc|2|words\n"));
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
    const std::string limit(32, 'x');
    const std::string cut = limit.substr(1);
    // One character of two bytes where the code page has such, else two characters.
    const bool isDouble = IsDBCSLeadByte(0x82) != FALSE;
    const std::pair<std::string, std::string> cases[] = {
        {"a\tb\x7Fz", "a b z"},
        {"   ", "   "},
        {"", ""},
        {limit + "y", limit},
        {"a\x82\xA0z", isDouble ? "a z" : "a  z"},
        {cut + "\x82\xA0", cut + " "},
    };
    for (const auto& [typed, title] : cases) {
        Type(groups, typed.c_str());
        EndEdit(groups);
        EXPECT_EQ(Title(2, 0), title) << typed;
    }
    Type(groups, "");
    for (int i = 0; i < 40; ++i) {
        SendMessageA(Editor(groups), WM_CHAR, 'z', 1);
    }
    EXPECT_EQ(WindowText(Editor(groups)), std::string(32, 'z')) << "the 33rd byte cannot be typed";
}

TEST_F(ListsEditTest, AnEditorDiesOnceWithItsList) {
    ASSERT_EQ(host.trackList.BeginEdit(), 1);
    DestroyWindow(host.Tracks());
    EXPECT_EQ(host.trackList.OwnsEditor(nullptr), 0);
    EXPECT_EQ(host.trackList.EndEdit(), 0);
    ASSERT_EQ(host.groupList.BeginEdit(), 1);
}

TEST_F(ListsEditTest, AnEditStaysWithItsTitleWhenTheRowsChange) {
    Select(tracks, 2);
    Type(tracks, "For track 3");
    // The first track is gone, so that the others move up, before the selection of the third is through.
    host.store.StoreReceived(2, 1, nullptr);
    host.trackList.RequestRefill(2);
    for (MSG message; host.trackList.IsRefilling();) {
        PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
    }
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(PlaceOf(Editor(tracks)).top - PlaceOf(host.Tracks()).top, 20 + RowOf(host.Tracks(), 1).top);
    EXPECT_EQ(SelectedRowOf(host.Tracks()), 1);
    EndEdit(tracks);
    EXPECT_EQ(RowsOf(host.Tracks()), "Tr|2|Disc 2, Track 2\nTr|3|For track 3\nTr|4|Disc 2, Track 4\n");
    EXPECT_EQ(Title(2, 3), "For track 3");
    // Or the title has no row any more.
    Type(tracks, "Typed at once");
    host.trackList.ClearRows();
    EndEdit(tracks);
    EXPECT_EQ(Title(2, 3), "Typed at once");
    // Or its row is only just being filled.
    ASSERT_TRUE(host.Refill(2));
    Type(tracks, "In the middle");
    host.trackList.RequestRefill(2);
    ASSERT_TRUE(host.WhileFilling(host.Tracks(), 1, [&] { EndEdit(tracks); }));
    ASSERT_TRUE(host.Settle());
    EXPECT_TRUE(HasRow(tracks, "|3|In the middle\n"));
    // Or another group is shown.
    Type(tracks, "Of Disc 2");
    TurnWheel(host.Groups(), host.Groups(), WHEEL_DELTA);
    SendMessageA(host.Groups(), WM_TIMER, kTurnTimer, 0);
    EXPECT_FALSE(IsOpen(tracks));
    EXPECT_EQ(Title(2, 3), "Of Disc 2");
    // A group moves up, too.
    Select(groups, 1);
    Type(groups, "For Disc 2");
    host.store.ClearGroup(1);
    ASSERT_TRUE(host.Refill(2));
    EXPECT_EQ(PlaceOf(Editor(groups)).top - PlaceOf(host.Groups()).top, 20 + RowOf(host.Groups(), 0).top);
}

TEST_F(ListsEditTest, NothingIsEditedWhileTheRowsAreFilled) {
    // What is in the second row now is not what was there.
    host.store.ClearGroup(1);
    host.store.StoreReceived(2, 1, nullptr);
    for (const Side& side : sides) {
        const int trackRow = host.trackList.SelectedRow();
        side.list.RequestRefill(2);
        ASSERT_TRUE(host.WhileFilling(side.window, 2, [&] {
            SendMessageA(side.window, WM_KEYDOWN, VK_DELETE, 0);
            SendMessageA(side.window, WM_KEYDOWN, VK_RETURN, 0);
            EXPECT_FALSE(IsOpen(side));
            EXPECT_EQ(side.list.ApplyTitle(1, "x"), 0);
            SendMessageA(side.window, WM_KEYDOWN, VK_END, 0);
            SendMessageA(side.window, WM_LBUTTONDOWN, MK_LBUTTON,
                         MAKELPARAM(50, static_cast<WORD>(RowOf(side.window, 1).top + 2)));
        }));
        ASSERT_TRUE(host.Settle());
        EXPECT_EQ(host.store.CanUndo(), 0);
        EXPECT_EQ(host.groupList.SelectedGroup(), 2) << "nor selected";
        EXPECT_EQ(host.trackList.SelectedRow(), trackRow);
        Mouse(side, WM_LBUTTONUP, 1);
        EXPECT_FALSE(IsOpen(side)) << "the press was on another title";
    }
}

TEST_F(ListsEditTest, UndoAndFontKeepTheRow) {
    for (const Side& side : sides) {
        LOGFONTA font = FontOf(side.window);
        LOGFONTA nameless = font;
        nameless.lfFaceName[0] = '\0';
        font.lfHeight = -40;
        side.list.SetListFont(&font);
        EXPECT_EQ(FontOf(side.window).lfHeight, -40);
        side.list.SetListFont(&nameless);
        EXPECT_EQ(FontOf(side.window).lfHeight, -40) << "one without a name changes nothing";
        ASSERT_TRUE(host.Refill(2));
        const LRESULT height = SendMessageA(side.window, LB_GETITEMHEIGHT, 2, 0);
        HDC dc = GetDC(side.window);
        SelectObject(dc, reinterpret_cast<HGDIOBJ>(SendMessageA(side.window, WM_GETFONT, 0, 0)));
        TEXTMETRICA metrics = {};
        GetTextMetricsA(dc, &metrics);
        ReleaseDC(side.window, dc);
        EXPECT_EQ(height, metrics.tmHeight + metrics.tmExternalLeading + 3);
        Select(side, 2);
        // Before anything is painted.
        EXPECT_EQ(side.list.ReplaceRowText(2, "As before"), 1);
        EXPECT_EQ(SendMessageA(side.window, LB_GETITEMHEIGHT, 2, 0), height);
        EXPECT_EQ(SelectedRowOf(side.window), 2);
        EXPECT_TRUE(HasRow(side, "|3|As before\n"));
        EXPECT_EQ(side.list.ReplaceRowText(99, "x"), 0);
        EXPECT_EQ(side.list.ReplaceRowText(2, nullptr), 1);
        EXPECT_TRUE(HasRow(side, "|3|\n"));
    }
}

TEST_F(ListsEditTest, TheWheelTurnsTheListUnderThePointer) {
    for (const Side& side : sides) {
        const auto turn = [&](int by, HWND over) {
            TurnWheel(side.window, over, by);
            return side.list.SelectedRow();
        };
        EXPECT_EQ(turn(-WHEEL_DELTA / 2, side.window), 1) << "half a notch";
        EXPECT_EQ(turn(-WHEEL_DELTA / 2, side.window), 2);
        EXPECT_EQ(turn(3 * WHEEL_DELTA, side.window), 0);
        EXPECT_EQ(turn(WHEEL_DELTA, side.window), 0);
        EXPECT_EQ(turn(-WHEEL_DELTA, side.window == host.Groups() ? host.Tracks() : host.Groups()), 0);
        ASSERT_EQ(side.list.BeginEdit(), 1);
        EXPECT_EQ(turn(-WHEEL_DELTA, side.window), 0);
        EXPECT_TRUE(IsOpen(side)) << "the rows stand still";
        EndEdit(side);

        // However fast it turns, the tracks are asked for at the end.
        host.requests.clear();
        turn(-WHEEL_DELTA, side.window);
        EXPECT_EQ(turn(-WHEEL_DELTA, side.window), 2);
        EXPECT_TRUE(host.requests.empty());
        SendMessageA(side.window, WM_TIMER, kTurnTimer, 0);
    }
    ASSERT_TRUE(host.Settle());
    EXPECT_EQ(host.requests.size(), 2U) << "the group, and the line when its tracks are there";
    EXPECT_EQ(RowsOf(host.Tracks()).substr(0, 12), "Tr|1|Disc 3,");
}
