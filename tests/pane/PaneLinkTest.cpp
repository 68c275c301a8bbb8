// The pane and its link: the search for the main unit, what is said of it to the user, and which tracks are fetched.
#include <gtest/gtest.h>

#include <string>

#include "Harness.h"
#include "PaneTesting.h"
#include "ScriptedLink.h"
#include "resource.h"

namespace {

// What a result brings about.
struct Outcome {
    WORD operation;
    BYTE code;
    BYTE status;
    UINT box;      // the text of the box that it shows; 0 for none
    bool isBlank;  // the line is empty afterwards
    const char* calls;
};

}  // namespace

// --- Search

class SearchTest : public PaneTest {
protected:
    void SetUp() override { StartAnew(); }

    bool AreControlsEnabled() const {
        const bool isSyncEnabled = IsWindowEnabled(Control(IDC_SYNC)) != FALSE;
        EXPECT_EQ(IsWindowEnabled(Control(IDC_GROUP_LIST)) != FALSE, isSyncEnabled);
        EXPECT_EQ(IsWindowEnabled(Control(IDC_TRACK_LIST)) != FALSE, isSyncEnabled);
        EXPECT_TRUE(IsWindowEnabled(Control(IDC_STOP))) << "Stop is never disabled";
        return isSyncEnabled;
    }
};

TEST_F(SearchTest, GoesFromPortToPortUntilAMainUnitAnswers) {
    scripted::OpenPorts({7, 8});
    Open();
    EXPECT_EQ(scripted::Take(),
              "Connect COM1\nConnect COM2\nConnect COM3\nConnect COM4\nConnect COM5\nConnect COM6\nConnect COM7\n")
        << "what does not open is passed over";
    EXPECT_FALSE(AreControlsEnabled());
    scripted::PostProgress(Pane(), OP_CONNECT, LinkStep::kFindingModel);
    EXPECT_EQ(Line(), Text(IDS_SEARCHING));
    // Each reply that cannot be read is told; the port is left once.
    scripted::PostResult(Pane(), OP_CONNECT, RC_MODEL, ST_BAD_CHECKSUM);
    scripted::PostResult(Pane(), OP_CONNECT, RC_MODEL, ST_BAD_CHECKSUM);
    Hear(OP_CONNECT, RC_MODEL, ST_TIMEOUT);
    EXPECT_EQ(scripted::Take(), "Connect COM8\n");
    Hear(OP_CONNECT, RC_MODEL, ST_OK);
    EXPECT_EQ(scripted::Take(), "") << "found, of whatever model";
    scripted::PostProgress(Pane(), OP_CONNECT, LinkStep::kCheckingStatus);
    EXPECT_EQ(Line(), Text(IDS_CHECKING_STATUS));
    EXPECT_FALSE(AreControlsEnabled());
    scripted::PostResult(Pane(), OP_CONNECT);
    EXPECT_EQ(Line(), "");
    EXPECT_TRUE(AreControlsEnabled());
    EXPECT_EQ(scripted::Take(), "GetAllTitles\n");

    SetFocus(Control(IDC_TRACK_LIST));
    Command(IDM_CONNECTION);
    Hear(OP_CONNECT, RC_MODEL, ST_TIMEOUT);
    BoxReader box(IDS_INFO_CAPTION);
    Hear(OP_CONNECT);
    EXPECT_EQ(GetFocus(), Control(IDC_TRACK_LIST)) << "behind several ports it is where it was";
    EXPECT_EQ(Line(), "");
}

TEST_F(SearchTest, ADialogThatStandsKeepsTheFocus) {
    scripted::OpenPorts({1, 2});
    Open();
    {
        HWND field = nullptr;
        const std::string caption = Text(IDS_RANGES_TITLE);
        DialogAnswer cancel(caption.c_str(), IDCANCEL, [&](HWND dialog) {
            field = GetDlgItem(dialog, IDC_DISC_TO);
            SetFocus(field);
            Hear(OP_CONNECT, RC_MODEL, ST_TIMEOUT);
            EXPECT_EQ(GetFocus(), field) << "at the next port";
            Hear(OP_CONNECT);
            EXPECT_EQ(GetFocus(), field) << "and when the main unit was found";
        });
        Command(IDM_OPTION);
        EXPECT_NE(field, nullptr);
    }
    ASSERT_TRUE(PumpUntil([this] { return GetFocus() != nullptr && GetParent(GetFocus()) == Pane(); }))
        << "where the keys are the pane's";
}

TEST_F(SearchTest, WithoutAnyPortTheUserIsToldOnceAndMayGoOn) {
    scripted::OpenPorts({});
    {
        BoxReader box(IDS_ERROR_CAPTION);
        Open();
        EXPECT_EQ(box.Texts(), Text(IDS_ERROR_NO_CONNECTION) + "\n");
    }
    EXPECT_TRUE(AreControlsEnabled());
    scripted::Take();

    // Nothing can be done now but looking again.
    BoxReader refusal(IDS_ERROR_CAPTION);
    for (const int command : {IDM_GET_GROUP, IDM_SEND_GROUP, IDM_SEND_ALL}) {
        Command(static_cast<WORD>(command));
    }
    EXPECT_EQ(refusal.Texts(), "");
    Command(IDM_GET_ALL);
    EXPECT_EQ(refusal.Texts(), Text(IDS_ERROR_NO_GROUPS) + "\n");
    scripted::Take();
    scripted::OpenPorts({8});
    Command(IDM_CONNECTION);
    EXPECT_EQ(scripted::Take(),
              "Connect COM1\nConnect COM2\nConnect COM3\nConnect COM4\nConnect COM5\n"
              "Connect COM6\nConnect COM7\nConnect COM8\n");
    const std::string told = Text(IDS_ERROR_NO_GROUPS) + "\n" + Text(IDS_ERROR_NO_CONNECTION) + "\n";
    for (const BYTE status : {ST_BAD_CHECKSUM, ST_TIMEOUT}) {
        Hear(OP_CONNECT, RC_MODEL, status);
        EXPECT_EQ(refusal.Texts(), told) << "once for the whole search";
        EXPECT_TRUE(AreControlsEnabled());
    }
    // The last port is open still, and a unit that was switched on since answers there.
    Command(IDM_GET_ALL);
    EXPECT_EQ(scripted::Take(), "StopOperation\nGetAllTitles\n");
    AddDisc(4, 1);
    scripted::PostResult(Pane(), OP_GET_ALL);
    Settle();
    EXPECT_EQ(Rows(IDC_GROUP_LIST), "Dsc|4|Disc 4\n");
    EXPECT_EQ(refusal.Texts(), told);
}

TEST_F(SearchTest, AUnitThatIsNotReadySaysWhy) {
    const struct {
        BYTE status;
        UINT text;
    } cases[] = {{ST_TIMEOUT, IDS_ERROR_TIME_OUT},       {ST_BUSY, IDS_ERROR_BUSY},
                 {ST_NO_DATA, IDS_ERROR_NO_DATA},        {ST_TRAY_OPEN, IDS_ERROR_TRAY_OPEN},
                 {ST_NOT_STOPPED, IDS_ERROR_SELECT_HDD}, {ST_MENU_MODE, IDS_ERROR_MENU_MODE},
                 {ST_FOREIGN, IDS_ERROR_NO_STATUS},      {ST_BAD_REPLY, IDS_ERROR_NO_STATUS}};
    Open();
    for (const auto& unit : cases) {
        scripted::PostProgress(Pane(), OP_CONNECT, LinkStep::kCheckingStatus);
        BoxReader box(IDS_ERROR_CAPTION);
        Hear(OP_CONNECT, unit.status == ST_BUSY ? RC_COMMAND : RC_STATUS, unit.status);
        EXPECT_EQ(box.Texts(), Text(unit.text) + "\n") << int{unit.status};
        EXPECT_EQ(Line(), "");
        EXPECT_TRUE(AreControlsEnabled());
    }
    scripted::Take();
    Command(IDM_CONNECTION);
    EXPECT_FALSE(AreControlsEnabled());
    EXPECT_EQ(scripted::Take(), "Connect COM1\n");
    BoxReader box(IDS_INFO_CAPTION);
    Hear(OP_CONNECT);
    EXPECT_EQ(box.Texts(), Text(IDS_CONNECTED) + "\n");
    EXPECT_TRUE(AreControlsEnabled());
    EXPECT_EQ(scripted::Take(), "") << "a second time no titles are fetched";
}

TEST_F(SearchTest, StopEndsItAndLeavesTheControlsAlone) {
    Open();
    scripted::Take();
    Command(IDM_STOP);
    EXPECT_EQ(scripted::Take(), "StopOperation\n");
    EXPECT_FALSE(AreControlsEnabled());
    // The time-out of the port was on its way when the search was stopped.
    Command(IDM_CONNECTION);
    scripted::Take();
    scripted::PostResult(Pane(), OP_CONNECT, RC_MODEL, ST_TIMEOUT);
    Command(IDM_STOP);
    EXPECT_EQ(scripted::Take(), "StopOperation\n") << "no further port is tried";
}

// --- What the link says

class LinkEventsTest : public PaneTest {};

TEST_F(LinkEventsTest, ProgressIsTold) {
    const std::string discs = Text(IDS_GETTING_DISCS);
    const std::string albums = Text(IDS_GETTING_ALBUMS);
    const std::string tracks = Text(IDS_GETTING_TRACKS);
    const std::string updates = Text(IDS_UPDATING_TITLES);
    const struct {
        WORD number;
        GroupId group;
        TrackNo track;
        std::string line;
    } steps[] = {{4, 0, 0, discs},
                 {5, 7, 0, discs + " ( Disc   7 )"},
                 {6, 0, 0, albums},
                 {7, AlbumGroup(12), 0, albums + " ( Album  12 )"},
                 {8, 3, 3, albums + " ( Album  12 )"},
                 {9, 999, 3, tracks + " ( Disc 999 - Track  3 )"},
                 {10, AlbumGroup(999), 99, updates + " ( Album 999 - Track 99 )"},
                 {2, 0, 0, Text(IDS_CHECKING_STATUS) + " ( Album 999 - Track 99 )"},
                 {3, 0, 0, Text(IDS_CHECKING_STATUS) + " ( Album 999 - Track 99 )"},
                 {11, 1, 1, Text(IDS_CHECKING_STATUS) + " ( Album 999 - Track 99 )"},
                 {1, 0, 0, Text(IDS_SEARCHING)}};
    for (const auto& step : steps) {
        scripted::PostProgress(Pane(), OP_GET_ALL, static_cast<LinkStep>(step.number), step.group, step.track);
        EXPECT_EQ(Line(), step.line) << step.number;
    }
    SendMessageA(Pane(), WM_USER, UC_MESSAGE_LINE, IDS_CONNECTED);
    EXPECT_EQ(Line(), Text(IDS_CONNECTED));
    SendMessageA(Pane(), WM_USER, UC_MESSAGE_LINE, -1);
    EXPECT_EQ(Line(), Text(IDS_CONNECTED)) << "no text, and not an empty one";
}

TEST_F(LinkEventsTest, ResultsAreToldAndLeadOn) {
    constexpr UINT kStatus = IDS_ERROR_NO_STATUS;
    const Outcome outcomes[] = {
        {OP_GET_ALL, RC_STATUS, ST_FOREIGN, kStatus, true, ""},
        {OP_GET_ALL, RC_MAP, ST_BAD_REPLY, IDS_ERROR_NO_GROUPS, true, ""},
        {OP_GET_ALL, RC_TITLE_READ, ST_TIMEOUT, IDS_ERROR_TIME_OUT, true, ""},
        {OP_GET_ALL, RC_TITLE_WRITE, ST_TIMEOUT, 0, false, ""},
        {OP_GET_ALL, RC_STATUS, ST_OK, 0, false, ""},
        {OP_GET_ALL, 0, ST_TIMEOUT, IDS_ERROR_TIME_OUT, true, ""},
        {OP_SEND_ALL, 0, ST_TIMEOUT, IDS_ERROR_TIME_OUT, true, ""},
        {OP_GET_ALL, 0, ST_OK, 0, true, "GetGroupTracks 2\n"},
        {OP_GET_TRACKS, RC_STATUS, ST_FOREIGN, kStatus, true, ""},
        {OP_GET_GROUP, RC_COMMAND, ST_FOREIGN, kStatus, true, ""},
        {OP_GET_TRACKS, RC_TITLE_READ, ST_FOREIGN, IDS_ERROR_NO_TRACKS, false, ""},
        {OP_SEND_GROUP, RC_TITLE_WRITE, ST_BAD_REPLY, IDS_ERROR_NOT_UPDATED, false, ""},
        {OP_GET_TRACKS, RC_MAP, ST_FOREIGN, IDS_ERROR_NO_TRACKS, true, ""},
        {OP_SEND_GROUP, RC_MAP, ST_FOREIGN, IDS_ERROR_NOT_UPDATED, true, ""},
        {OP_GET_GROUP, RC_TITLE_READ, ST_OK, 0, false, ""},
        {OP_CONNECT, RC_MAP, ST_TIMEOUT, 0, false, ""},
        {0x7777, 0, ST_OK, 0, false, ""},
        {OP_GET_TRACKS, 0, ST_OK, 0, true, ""},
        {OP_GET_GROUP, 0, ST_OK, 0, true, ""},
        {OP_SEND_ALL, 0, ST_OK, 0, true, ""},
        {OP_SEND_GROUP, 0, ST_OK, 0, true, ""},
    };
    AddDisc(1, 2);
    AddDisc(2, 2);
    Refill(2);
    scripted::Take();
    for (const Outcome& outcome : outcomes) {
        scripted::PostProgress(Pane(), OP_SEND_GROUP, LinkStep::kWriting, 2, 1);
        const std::string line = Line();
        BoxReader box(IDS_ERROR_CAPTION);
        scripted::PostResult(Pane(), outcome.operation, outcome.code, outcome.status);
        Settle();
        const std::string which =
            std::to_string(outcome.operation) + " " + std::to_string(outcome.code) + " " + std::to_string(outcome.status);
        EXPECT_EQ(box.Texts(), outcome.box == 0 ? "" : Text(outcome.box) + "\n") << which;
        EXPECT_EQ(Line(), outcome.isBlank ? "" : line) << which;
        EXPECT_EQ(scripted::Take(), outcome.calls) << which;
    }
    EXPECT_EQ(Rows(IDC_GROUP_LIST), "Dsc|1|Disc 1\nDsc|2|Disc 2\n");
    EXPECT_EQ(Rows(IDC_TRACK_LIST), "Tr|1|Disc 2, Track 1\nTr|2|Disc 2, Track 2\n");
}

TEST_F(LinkEventsTest, TheTracksOfASelectedGroupAreFetched) {
    for (const int disc : {1, 2, 3}) {
        AddDisc(disc, 1);
    }
    Refill(1);
    scripted::Take();
    scripted::PostProgress(Pane(), OP_SEND_ALL, LinkStep::kWriting, 1, 1);
    const std::string line = Line();
    Select(2);
    EXPECT_TRUE(Asked("GetGroupTracks 3\n"));
    EXPECT_EQ(Rows(IDC_TRACK_LIST), "Tr|1|Disc 3, Track 1\n") << "what is there already";
    EXPECT_EQ(Line(), line);
    scripted::Store()->StoreReceived(3, 2, "Come since");
    scripted::PostResult(Pane(), OP_GET_TRACKS);
    Settle();
    EXPECT_EQ(Rows(IDC_TRACK_LIST), "Tr|1|Disc 3, Track 1\nTr|2|Come since\n");

    // The end of a transfer has them fetched once more.
    Command(IDM_SEND_GROUP);
    EXPECT_EQ(scripted::Take(), "StopOperation\nSendGroup 3\n");
    scripted::PostResult(Pane(), OP_SEND_GROUP);
    EXPECT_TRUE(Asked("GetGroupTracks 3\n"));

    // After a failure nothing is fetched by itself until something has gone well again.
    Command(IDM_GET_GROUP);
    scripted::Take();
    BoxReader box(IDS_ERROR_CAPTION);
    Hear(OP_GET_GROUP, RC_TITLE_READ, ST_TIMEOUT);
    Select(0);
    Sleep(50);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(scripted::Take(), "");
    EXPECT_EQ(Rows(IDC_TRACK_LIST), "Tr|1|Disc 1, Track 1\n") << "what has been typed there must be seen";
    scripted::PostResult(Pane(), OP_GET_TRACKS);
    EXPECT_TRUE(Asked("GetGroupTracks 1\n"));
}

TEST_F(LinkEventsTest, TheEndOfWhatWasCutOffIsNotTheEndOfWhatFollows) {
    AddDisc(1, 1);
    Refill(1);
    scripted::PostResult(Pane(), OP_GET_TRACKS);
    scripted::PostProgress(Pane(), OP_GET_TRACKS, LinkStep::kReadingGroup, 1, 1);
    Command(IDM_GET_ALL);
    Sleep(50);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(scripted::Take(), "StopOperation\nGetAllTitles\n") << "the watcher must not cut this off";
    EXPECT_EQ(Line(), "");

    // A failure is told all the same: something was not written.
    BoxReader box(IDS_ERROR_CAPTION);
    scripted::PostResult(Pane(), OP_SEND_GROUP, RC_TITLE_WRITE, ST_BAD_REPLY);
    Command(IDM_GET_ALL);
    EXPECT_EQ(box.Texts(), Text(IDS_ERROR_NOT_UPDATED) + "\n");
}

TEST_F(LinkEventsTest, AnswersGoOnWhileABoxStands) {
    BoxReader boxes(IDS_ERROR_CAPTION, 2);
    scripted::PostResult(Pane(), OP_GET_ALL, RC_MAP, ST_TIMEOUT);
    Hear(OP_GET_TRACKS, RC_STATUS, ST_TRAY_OPEN);
    EXPECT_EQ(boxes.Texts(), Text(IDS_ERROR_TRAY_OPEN) + "\n" + Text(IDS_ERROR_TIME_OUT) + "\n") << "the later one on top";
}
