// The pane's commands: transfers, editing, undo, ranges and font.
#include <gtest/gtest.h>

#include <string>

#include "AppWindow.h"
#include "Harness.h"
#include "PaneTesting.h"
#include "ScriptedChooser.h"
#include "ScriptedLink.h"
#include "TitleStore.h"
#include "resource.h"

namespace {

constexpr int kEditorId = 102;

}  // namespace

class PaneCommandsTest : public PaneTest {
protected:
    void SetUp() override {
        PaneTest::SetUp();
        AddDisc(1, 2);
        AddDisc(2, 3);
        AddAlbum(1, 2);
        Refill(2);
    }

    HWND Editor(int list) const { return GetDlgItem(Control(list), kEditorId); }
    // As the accelerator does it.
    void Enter() { Command(IDM_ENTER); }
    // Into the editor that Enter opens.
    void Type(int list, const char* text) {
        Enter();
        ASSERT_NE(Editor(list), nullptr);
        SetWindowTextA(Editor(list), text);
    }
    bool CanClear() { return IsOffered(IDM_CLEAR); }
    bool CanUndo() { return IsOffered(IDM_UNDO); }
    bool IsOffered(UINT command) {
        SendMessageA(main, WM_MENUSELECT, MAKEWPARAM(1, MF_POPUP | MF_HILITE), reinterpret_cast<LPARAM>(GetMenu(main)));
        return !IsGrayed(command);
    }
};

TEST_F(PaneCommandsTest, TransfersCutOffWhatRunsAndCommitWhatIsTyped) {
    const struct {
        WORD command;
        const char* calls;
    } transfers[] = {{IDM_SEND_GROUP, "StopOperation\nSendGroup 2\n"},
                     {IDM_SEND_ALL, "StopOperation\nSendAllTitles\n"},
                     {IDM_GET_GROUP, "StopOperation\nGetOneGroup 2\n"},
                     {IDM_GET_ALL, "StopOperation\nGetAllTitles\n"}};
    for (const auto& transfer : transfers) {
        SelectTrack(1);
        scripted::Take();
        if (transfer.command == IDM_SEND_GROUP) {
            Type(IDC_TRACK_LIST, "Typed & sent");
        }
        Command(transfer.command);
        EXPECT_EQ(scripted::Take(), transfer.calls);
        EXPECT_EQ(Editor(IDC_TRACK_LIST), nullptr);
        if (transfer.command == IDM_SEND_ALL) {
            EXPECT_EQ(Title(2, 2), "Typed & sent");
            EXPECT_EQ(scripted::Store()->IsEdited(2, 2), 1) << "until the main unit has it";
        }
        if (transfer.command == IDM_GET_GROUP) {
            EXPECT_EQ(scripted::Store()->IsKnown(2, 0), 0);
            EXPECT_EQ(Title(1, 1), "Disc 1, Track 1") << "of another group";
            EXPECT_FALSE(CanUndo());
        }
    }
    EXPECT_EQ(Rows(IDC_GROUP_LIST), "");
    EXPECT_EQ(Rows(IDC_TRACK_LIST), "");
    EXPECT_EQ(scripted::Store()->IsKnown(1, 0), 0) << "Get All Title empties the store";
}

TEST_F(PaneCommandsTest, WithoutAGroupNothingIsCutOffAndNoTracksAreFetchedFromThenOn) {
    scripted::Store()->ResetAll();
    for (const int command : {IDM_SEND_GROUP, IDM_GET_GROUP}) {
        Command(IDM_STOP);
        scripted::PostProgress(Pane(), OP_GET_ALL, LinkStep::kReadingDiscs, 1);
        const std::string line = Line();
        scripted::Take();
        Command(static_cast<WORD>(command));
        SendMessageA(Pane(), WM_USER, UC_GROUP_CHANGED, 1);
        Sleep(50);
        EXPECT_EQ(scripted::Take(), "") << command;
        EXPECT_EQ(Line(), line);
    }
}

TEST_F(PaneCommandsTest, AGroupStaysSelectedWhileItsRowIsFilledAnew) {
    Select(2);
    ASSERT_TRUE(Asked("GetGroupTracks 1000\n"));
    // The refresher has just begun.
    SendMessageA(main, WM_COMMAND, IDM_STOP, 0);
    SendMessageA(Control(IDC_GROUP_LIST), LB_RESETCONTENT, 0, 0);
    SendMessageA(main, WM_COMMAND, IDM_STOP, 0);
    SendMessageA(main, WM_COMMAND, IDM_SEND_GROUP, 0);
    EXPECT_EQ(scripted::Take(), "StopOperation\nStopOperation\nStopOperation\nSendGroup 1000\n");
    Settle();
    EXPECT_EQ(Rows(IDC_GROUP_LIST), "Dsc|1|Disc 1\nDsc|2|Disc 2\nAlb|1|Album 1\n");
    EXPECT_EQ(Selected(IDC_GROUP_LIST), 2);
}

TEST_F(PaneCommandsTest, ButtonsTakeTheSameRoad) {
    SetFocus(Control(IDC_SYNC));
    PressKeys({VK_SPACE});
    EXPECT_TRUE(Asked("StopOperation\nSendGroup 2\n"));
    SetFocus(Control(IDC_STOP));
    PressKeys({VK_SPACE});
    EXPECT_TRUE(Asked("StopOperation\n"));
    Command(IDM_ENTER);
    EXPECT_EQ(scripted::Take(), "") << "Enter presses no button";
}

TEST_F(PaneCommandsTest, StopShowsWhatHasCome) {
    AddDisc(3, 1);
    scripted::Store()->StoreReceived(2, 4, "Has come");
    scripted::PostProgress(Pane(), OP_GET_TRACKS, LinkStep::kReadingGroup, 2, 4);
    EXPECT_NE(Line(), "");
    Command(IDM_STOP);
    EXPECT_EQ(Rows(IDC_GROUP_LIST), "Dsc|1|Disc 1\nDsc|2|Disc 2\nDsc|3|Disc 3\nAlb|1|Album 1\n");
    EXPECT_EQ(Rows(IDC_TRACK_LIST), "Tr|1|Disc 2, Track 1\nTr|2|Disc 2, Track 2\nTr|3|Disc 2, Track 3\nTr|4|Has come\n");
    EXPECT_EQ(Line(), "");
    EXPECT_EQ(scripted::Take(), "StopOperation\n") << "nothing is fetched by itself";
}

TEST_F(PaneCommandsTest, UndoShowsInEitherListWhatItPutsBack) {
    const std::string groups = Rows(IDC_GROUP_LIST);
    const std::string tracks = Rows(IDC_TRACK_LIST);
    const std::string editedGroups = "Dsc|1|Disc 1\nDsc|2|One && two\nAlb|1|Album 1\n";
    const std::string editedTracks = "Tr|1|Disc 2, Track 1\nTr|2|One && two\nTr|3|Disc 2, Track 3\n";
    const struct {
        int list;
        int open;  // the list with another title's editor when Undo comes
        int openRow;
    } edits[] = {{IDC_GROUP_LIST, IDC_TRACK_LIST, 0},
                 {IDC_TRACK_LIST, IDC_GROUP_LIST, 1},
                 {IDC_GROUP_LIST, IDC_GROUP_LIST, 1},
                 {IDC_TRACK_LIST, IDC_TRACK_LIST, 2}};
    for (const auto& edit : edits) {
        SelectIn(edit.list, 1);
        Type(edit.list, "One & two");
        Enter();
        EXPECT_EQ(Rows(IDC_GROUP_LIST), edit.list == IDC_GROUP_LIST ? editedGroups : groups);
        EXPECT_EQ(Rows(IDC_TRACK_LIST), edit.list == IDC_TRACK_LIST ? editedTracks : tracks);
        SelectIn(edit.open, edit.openRow);
        Type(edit.open, "Never meant");
        EXPECT_TRUE(CanUndo());
        Command(IDM_UNDO);
        EXPECT_EQ(Editor(edit.open), nullptr);
        EXPECT_EQ(Rows(IDC_GROUP_LIST), groups);
        EXPECT_EQ(Rows(IDC_TRACK_LIST), tracks);
        EXPECT_EQ(Title(2, 0) + Title(2, 1) + Title(2, 2), "Disc 2Disc 2, Track 1Disc 2, Track 2");
        EXPECT_EQ(Selected(edit.list), 1);
        EXPECT_EQ(GetFocus(), Control(edit.list));
        EXPECT_GE(Selected(IDC_TRACK_LIST), 0);
        Enter();
        EXPECT_EQ(WindowText(Editor(edit.list)), edit.list == IDC_GROUP_LIST ? "Disc 2" : "Disc 2, Track 2");
        Enter();
        EXPECT_FALSE(CanUndo()) << "what was never meant is no edit";
    }

    // The track's group comes back, and its tracks are on their way.
    SelectTrack(2);
    Type(IDC_TRACK_LIST, "One");
    Enter();
    Refill(1);
    Command(IDM_UNDO);
    EXPECT_EQ(Title(2, 3), "Disc 2, Track 3");
    EXPECT_EQ(Selected(IDC_GROUP_LIST), 1);
    EXPECT_EQ(GetFocus(), Control(IDC_GROUP_LIST));
    EXPECT_TRUE(Asked("GetGroupTracks 2\n"));
    EXPECT_EQ(Rows(IDC_TRACK_LIST), tracks);
}

TEST_F(PaneCommandsTest, AMenuLeftByAltGivesTheKeysBack) {
    Select(0);
    PressKeys({VK_MENU, 'E'});
    PressKeys({VK_MENU});
    PressKeys({VK_DOWN});
    EXPECT_TRUE(PumpUntil([this] { return Selected(IDC_GROUP_LIST) == 1; }));
    EXPECT_EQ(BarText(), " ");
    EXPECT_FALSE(IsGrayed(IDM_UNDO)) << "its key works without the menu";
}

TEST_F(PaneCommandsTest, TheChosenFontReachesBothLists) {
    const std::string groups = Rows(IDC_GROUP_LIST);
    const std::string tracks = Rows(IDC_TRACK_LIST);
    AddDisc(3, 1);
    for (const bool isOk : {false, true}) {
        scripted::onFont = [&](CHOOSEFONTA& chooser) {
            EXPECT_TRUE(chooser.hwndOwner == Pane() && chooser.lStructSize == sizeof chooser);
            EXPECT_EQ(chooser.Flags, static_cast<DWORD>(CF_SCREENFONTS | CF_INITTOLOGFONTSTRUCT));
            EXPECT_EQ(chooser.lpLogFont->lfHeight, FontOf(IDC_GROUP_LIST).lfHeight) << "it begins with what is shown";
            chooser.lpLogFont->lfHeight = isOk ? -40 : chooser.lpLogFont->lfHeight;
            return isOk;
        };
        Command(IDM_FONT);
        scripted::onFont = {};
        for (const int list : {IDC_GROUP_LIST, IDC_TRACK_LIST}) {
            EXPECT_EQ(FontOf(list).lfHeight == -40, isOk) << list;
            EXPECT_EQ(SendMessageA(Control(list), LB_GETITEMHEIGHT, 1, 0) >= 40, isOk) << list;
        }
        EXPECT_EQ(Rows(IDC_GROUP_LIST) != groups, isOk) << "what is new in the store shows";
        EXPECT_EQ(Rows(IDC_TRACK_LIST), tracks);
        EXPECT_EQ(Selected(IDC_GROUP_LIST), 1);
    }
}

TEST_F(PaneCommandsTest, ClearActsOnTheTitleInFocus) {
    SetFocus(Control(IDC_SYNC));
    EXPECT_FALSE(CanClear());
    SetFocus(Control(IDC_GROUP_LIST));
    EXPECT_TRUE(CanClear());
    Command(IDM_CLEAR);
    EXPECT_EQ(Title(2, 0), "");
    EXPECT_EQ(Rows(IDC_GROUP_LIST), "Dsc|1|Disc 1\nDsc|2|\nAlb|1|Album 1\n");
    EXPECT_FALSE(CanClear()) << "nothing is left to clear";
    SelectTrack(1);
    EXPECT_TRUE(CanClear());
    scripted::Store()->StoreReceived(2, 2, "   ");
    EXPECT_FALSE(CanClear()) << "blanks";
    SelectTrack(0);
    Command(IDM_CLEAR);
    EXPECT_EQ(Title(2, 1), "");
    Command(IDM_UNDO);
    EXPECT_EQ(Title(2, 1), "Disc 2, Track 1");

    Select(2);
    Refill(AlbumGroup(1));
    EXPECT_TRUE(CanClear());
    SelectTrack(0);
    EXPECT_FALSE(CanClear()) << "the tracks of Albums are read-only";
    Command(IDM_CLEAR);
    EXPECT_EQ(Title(AlbumGroup(1), 1), "Album 1, Track 1");
}

// --- Ranges

class RangesTest : public PaneCommandsTest {
protected:
    struct Fields {
        int from;
        int to;
    };

    // Enters the numbers (-1: empties the field) and presses OK; then Cancel if the dialog is still there. Gives the field
    // that has the focus then, 0 if the dialog went by OK.
    int Enter(Fields discs, Fields albums, Fields tracks) {
        int focus = 0;
        bool isRefused = false;
        BoxReader box(IDS_ERROR_CAPTION);
        DialogAnswer answer(Text(IDS_RANGES_TITLE).c_str(), IDCANCEL, [&](HWND dialog) {
            const struct {
                int id;
                int number;
            } fields[] = {{IDC_DISC_FROM, discs.from}, {IDC_DISC_TO, discs.to},       {IDC_ALBUM_FROM, albums.from},
                          {IDC_ALBUM_TO, albums.to},   {IDC_TRACK_FROM, tracks.from}, {IDC_TRACK_TO, tracks.to}};
            for (const auto& field : fields) {
                SetDlgItemTextA(dialog, field.id, field.number < 0 ? "" : std::to_string(field.number).c_str());
            }
            SendMessageA(dialog, WM_COMMAND, IDOK, 0);
            isRefused = !box.Texts().empty();
            focus = isRefused ? GetDlgCtrlID(GetFocus()) : 0;
        });
        Command(IDM_OPTION);
        EXPECT_EQ(box.Texts(), isRefused ? Text(IDS_ERROR_RANGE) + "\n" : "");
        return focus;
    }
};

TEST_F(RangesTest, WrongNumbersAreRefusedPairByPair) {
    const struct {
        Fields discs;
        Fields albums;
        Fields tracks;
        int focus;
    } cases[] = {{{1, 999}, {5, 3}, {1, 99}, IDC_ALBUM_FROM},  {{0, 0}, {0, 0}, {1, 99}, IDC_DISC_FROM},
                 {{0, 5}, {1, 999}, {1, 99}, IDC_DISC_FROM},   {{5, 0}, {1, 999}, {1, 99}, IDC_DISC_FROM},
                 {{1, 999}, {0, 7}, {0, 0}, IDC_ALBUM_FROM},   {{1, 999}, {1, 999}, {0, 0}, IDC_TRACK_FROM},
                 {{1, 999}, {1, 999}, {9, 2}, IDC_TRACK_FROM}, {{5, 4}, {9, 8}, {3, 2}, IDC_ALBUM_FROM},
                 {{-1, 3}, {1, 2}, {1, 2}, IDC_DISC_FROM},     {{1, -1}, {1, 2}, {1, 2}, IDC_DISC_FROM},
                 {{1, 2}, {1, 2}, {-1, -1}, IDC_TRACK_FROM}};
    for (const auto& numbers : cases) {
        EXPECT_EQ(Enter(numbers.discs, numbers.albums, numbers.tracks), numbers.focus)
            << numbers.discs.from << "-" << numbers.discs.to << " " << numbers.albums.from << "-" << numbers.albums.to;
    }
    EXPECT_EQ(scripted::Take(), "") << "nothing has happened";
    EXPECT_EQ(scripted::Ranges().discTo, 999);
    EXPECT_EQ(scripted::Ranges().trackTo, 99);
    EXPECT_NE(Rows(IDC_GROUP_LIST), "");
}

TEST_F(RangesTest, TheNumbersReachTheLinkAndTheLists) {
    const struct {
        Fields discs;
        Fields albums;
        const char* rows;
    } cases[] = {{{2, 2}, {0, 0}, "Dsc|2|Disc 2\n"}, {{0, 0}, {1, 999}, "Alb|1|Album 1\n"}};
    for (const auto& numbers : cases) {
        EXPECT_EQ(Enter(numbers.discs, numbers.albums, {2, 3}), 0);
        EXPECT_EQ(scripted::Take(), "StopOperation\nGetAllTitles\n");
        EXPECT_EQ(scripted::Ranges().discFrom, numbers.discs.from);
        EXPECT_EQ(scripted::Ranges().albumTo, numbers.albums.to);
        EXPECT_EQ(scripted::Ranges().trackFrom, 2);
        EXPECT_EQ(Rows(IDC_GROUP_LIST), "");
        scripted::PostResult(Pane(), OP_GET_ALL);
        Settle();
        EXPECT_EQ(Rows(IDC_GROUP_LIST), numbers.rows);
        // From here the watcher has nothing left to ask for.
        Command(IDM_STOP);
        scripted::Take();
    }
    EXPECT_EQ(Title(1, 1), "Disc 1, Track 1") << "what is not shown stays in the store";

    // The box begins with what is in force, and takes no more digits than there can be.
    DialogAnswer answer(Text(IDS_RANGES_TITLE).c_str(), IDCANCEL, [](HWND dialog) {
        EXPECT_EQ(WindowText(GetDlgItem(dialog, IDC_DISC_FROM)), "0");
        EXPECT_EQ(GetFocus(), GetDlgItem(dialog, IDC_DISC_FROM));
        EXPECT_EQ(SendMessageA(GetFocus(), EM_GETSEL, 0, 0), MAKELPARAM(0, 1)) << "what is typed takes its place";
        EXPECT_EQ(WindowText(GetDlgItem(dialog, IDC_ALBUM_TO)), "999");
        EXPECT_EQ(WindowText(GetDlgItem(dialog, IDC_TRACK_TO)), "3");
        EXPECT_EQ(WindowText(GetDlgItem(dialog, IDC_TRACK_TO_LABEL)), Text(IDS_RANGES_TO));
        SendMessageA(GetDlgItem(dialog, IDC_TRACK_TO), EM_SETSEL, 0, -1);
        for (const char key : {'x', '4', '5', '6'}) {
            SendMessageA(GetDlgItem(dialog, IDC_TRACK_TO), WM_CHAR, static_cast<WPARAM>(key), 1);
        }
        EXPECT_EQ(WindowText(GetDlgItem(dialog, IDC_TRACK_TO)), "45");
    });
    Command(IDM_OPTION);
    EXPECT_EQ(scripted::Ranges().trackTo, 3);
}
