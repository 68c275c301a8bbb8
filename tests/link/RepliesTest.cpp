// What replies do: the status check, maps, titles, and frames that do not fit.
#include <gtest/gtest.h>

#include "LinkHarness.h"

namespace {

using Texts = std::vector<std::string>;

// The answers to the ready question when all is fetched, and what comes of them up to the first MapQuery.
struct StatusCase {
    const char* what;
    std::vector<std::string> values;
    Texts asked;      // after the menu question
    BYTE status;      // of the failure told, or ST_OK
    bool standsIdle;  // the operation stays open
};

TEST(StatusCheck, FollowsTheUnitsValues) {
    const StatusCase cases[] = {
        {"ready", {"40"}, {"52000"}, ST_OK, false},
        {"waiting, then ready", {"01", "02", "46", "40"}, {"52000", "52000", "52000", "52000"}, ST_OK, false},
        {"wants BD", {"FD", "40"}, {"52000", "07CBD", "52000"}, ST_OK, false},
        {"wants BE", {"04", "08", "40"}, {"52000", "07CBE", "52000", "07CBE", "52000"}, ST_OK, false},
        {"not stopped", {"03"}, {"52000"}, ST_NOT_STOPPED, false},
        {"not stopped, 09", {"09"}, {"52000"}, ST_NOT_STOPPED, false},
        {"not stopped, FC", {"FC"}, {"52000"}, ST_NOT_STOPPED, false},
        {"tray open", {"00"}, Texts(10, "52000"), ST_TRAY_OPEN, true},
        {"tray and data count together",
         {"46", "46", "46", "46", "46", "46", "46", "46", "46", "00"},
         Texts(10, "52000"),
         ST_TRAY_OPEN,
         true},
        {"02 does not reset", {"00", "00", "00", "00", "00", "02", "00"}, Texts(11, "52000"), ST_TRAY_OPEN, true},
        {"01 does", {"00", "00", "00", "01", "00"}, Texts(15, "52000"), ST_TRAY_OPEN, true},
        {"no data", {"46"}, Texts(50, "52000"), ST_NO_DATA, true},
        {"busy", {"FE"}, Texts(100, "52000"), ST_BUSY, true},
        {"busy FF", {"FF"}, Texts(100, "52000"), ST_BUSY, true},
    };
    for (const StatusCase& each : cases) {
        RunConnected([&](LinkHarness& run) {
            std::vector<std::string> answers;
            for (const std::string& value : each.values) {
                answers.push_back(UnitStatus(value));
            }
            run.unit.Answer(kReadyQuery, answers);
            run.unit.Answer(MapQuery(kMapDiscs, 0), {kRefusedMap});
            run.unit.Answer(MapQuery(kMapAlbums, 0), {kRefusedMap});
            ASSERT_TRUE(run.link.GetAllTitles());
            if (each.status == ST_OK) {
                EXPECT_TRUE(run.WaitForResult(OP_GET_ALL)) << each.what;
            } else {
                EXPECT_TRUE(run.WaitForResult(PackResult(OP_GET_ALL, RC_STATUS, each.status))) << each.what;
                run.Pass(10000);
                EXPECT_EQ(run.Results(), 1U) << each.what;
                EXPECT_EQ(run.link.IsOperationActive(), each.standsIdle) << each.what;
            }
            // Each question but the first waits for 100 ms, and each frame for 120; commands do not.
            const auto& frames = run.unit.Frames();
            for (std::size_t i = 1; i < frames.size(); ++i) {
                const bool poll = frames[i].frame == kReadyQuery && frames[i - 1].frame == kReadyQuery;
                EXPECT_GE(frames[i].timeUs - frames[i - 1].timeUs, poll ? 220'000U : 120'000U) << each.what;
            }
            Texts asked = run.FramesSinceConnect();
            EXPECT_EQ(asked.front(), "52060");
            asked.erase(asked.begin());
            asked.resize(each.asked.size());
            EXPECT_EQ(asked, each.asked) << each.what;
            if (each.status != ST_OK) {
                EXPECT_EQ(run.FramesSinceConnect().size(), each.asked.size() + 1) << each.what;
            }
            // Whatever the unit said, the link can be used again.
            run.unit.Answer(kReadyQuery, {UnitStatus("40")});
            run.posted.clear();
            ASSERT_TRUE(run.link.GetAllTitles()) << each.what;
            EXPECT_TRUE(run.WaitForResult(OP_GET_ALL)) << each.what;
        });
    }
}

TEST(StatusCheck, MenuModeEndsTheOperation) {
    RunConnected([](LinkHarness& run) {
        run.unit.Answer(kMenuQuery, {UnitStatus("40")});
        ASSERT_TRUE(run.Ends(run.link.GetAllTitles(), PackResult(OP_GET_ALL, RC_STATUS, ST_MENU_MODE)));
        EXPECT_EQ(run.posted.back().lParam, 0x600040);
        EXPECT_FALSE(run.link.IsOperationActive());
        run.Pass(6000);
        EXPECT_EQ(run.FramesSinceConnect(), Texts{"52060"});
    });
}

TEST(Maps, OfAnotherLengthAreAskedForAgainWithoutAWord) {
    RunConnected([](LinkHarness& run) {
        const std::string query = MapQuery(kMapDiscs, 0);
        run.unit.Answer(query, {UnitBlock("0300" + std::string(248, 'F'))});
        ASSERT_TRUE(run.Ends(run.link.GetAllTitles(), PackResult(OP_GET_ALL, RC_MAP, ST_TIMEOUT)));
        EXPECT_EQ(run.unit.Count(query), 2U);
        EXPECT_EQ(run.Results(), 1U);
    });
}

TEST(Maps, GiveWhatLiesInTheRangeAndIsNotKnown) {
    RunConnected([](LinkHarness& run) {
        run.link.SetDisplayRanges({.discFrom = 2, .discTo = 4, .albumFrom = 999, .albumTo = 999});
        run.store.StoreReceived(3, 0, "known");
        run.unit.Answer(MapQuery(kMapDiscs, 0), {UnitMap({1, 2, 3, 4, 5, 1000})});
        run.unit.Answer(MapQuery(kMapAlbums, 0), {UnitMap({1, 998, 999, 1000})});
        ASSERT_TRUE(run.Ends(run.link.GetAllTitles(), OP_GET_ALL));
        EXPECT_EQ(run.FramesSinceConnect(), (Texts{"52060", "52000", "50100300000000000000", "50100500020000000000",
                                                   "50100500040000000000", "50100301000000000000", "50100529990000000000"}));
        EXPECT_EQ(run.store.IsKnown(1998, 0), 1);
    });
}

TEST(Maps, OfATracksQueryThatIsRefusedTimeOut) {
    RunConnected([](LinkHarness& run) {
        const std::string query = MapQuery(kMapTracks, GroupCode(AlbumGroup(1)));
        run.unit.Answer(query, {kRefusedMap});
        ASSERT_TRUE(run.Ends(run.link.GetGroupTracks(AlbumGroup(1)), PackResult(OP_GET_TRACKS, RC_MAP, ST_TIMEOUT)));
        EXPECT_EQ(run.unit.Count(query), 2U);
        EXPECT_EQ(run.Results(), 1U);
    });
}

TEST(Titles, AreStoredAsTheyCome) {
    RunConnected([](LinkHarness& run) {
        run.unit.Answer(TitleRead(kKindDisc, 1, 0), {UnitBlock("0502" + std::string(32, 'x'))});
        run.unit.Answer(TitleRead(kKindDisc, 2, 0), {UnitTitle("")});
        run.unit.Answer(TitleRead(kKindAlbum, 1, 0), {UnitBlock("0500short")});
        ASSERT_TRUE(run.Ends(run.link.GetAllTitles(), OP_GET_ALL));
        EXPECT_EQ(run.store.GetState(1, 0), TS_NONE);
        EXPECT_EQ(run.store.IsKnown(1, 0), 1);
        EXPECT_EQ(run.store.GetState(2, 0), TS_RECEIVED);
        EXPECT_EQ(run.store.GetState(1000, 0), TS_NONE);
        EXPECT_EQ(run.store.IsKnown(1000, 0), 1);
        const std::vector<Posted> progress = run.Progress();
        // The last title of a queue is not told: Disc 1 is, Disc 2 and the only Album are not.
        EXPECT_EQ(progress, (std::vector<Posted>{{LM_PROGRESS, 139265, 0},
                                                 {LM_PROGRESS, 270337, 0},
                                                 {LM_PROGRESS, 335873, 0},
                                                 {LM_PROGRESS, 0x52001, 0x10000},
                                                 {LM_PROGRESS, 401409, 0},
                                                 {LM_PROGRESS, 466945, 0}}));
    });
}

// What a unit may say, one frame of each kind. A void frame is none of them.
const std::map<char, std::string> kFramesOfEachKind = {
    {'m', kModelReply},     {'s', UnitStatus("03")}, {'c', kStray},           {'b', UnitMap({7})},
    {'r', UnitTitle("no")}, {'w', kWriteAccepted},   {'i', "\x02@05340\x03"},
};

std::string AllBut(char kind) {
    std::string frames;
    for (const auto& [other, frame] : kFramesOfEachKind) {
        frames += other != kind ? frame + "\r" : "";
    }
    return frames;
}

// With frames of all other kinds in front, and of all that arrive before the next request goes out behind it.
std::string Surrounded(char kind, const std::string& answer) {
    return AllBut(kind) + answer + "\r" + AllBut('b');
}

TEST(ForeignReplies, DoNothing) {
    // Each request is answered by frames of all other kinds, then by its own, then by all kinds once more; and some come
    // while nothing is asked.
    RunLink([](LinkHarness& run) {
        const struct {
            std::string request;
            char kind;
            std::string answer;
        } dialogue[] = {
            {kModelQuery, 'm', kModelReply},
            {kMenuQuery, 's', UnitStatus("FF")},
            {Framed(kStx, "07CBD"), 'c', kStray},
            {MapQuery(kMapDiscs, 0), 'b', UnitMap({1})},
            {MapQuery(kMapAlbums, 0), 'b', kRefusedMap},
            {TitleRead(kKindDisc, 1, 0), 'r', UnitTitle("one")},
            {TitleWrite(1, 0), 'w', kWriteAccepted},
        };
        for (const auto& each : dialogue) {
            run.unit.Answer(each.request, {Surrounded(each.kind, each.answer)});
        }
        const std::string ready = Surrounded('s', UnitStatus("40"));
        const std::string command = Surrounded('s', UnitStatus("FD"));
        run.unit.Answer(kReadyQuery, {command, ready});
        ASSERT_TRUE(run.ConnectQuietly());
        run.unit.Answer(kReadyQuery, {command, ready, ready});
        ASSERT_TRUE(run.Ends(run.link.GetAllTitles(), OP_GET_ALL));
        run.unit.Line().Send(AllBut(' '));
        run.Pass(500);
        EXPECT_EQ(run.FramesSinceConnect(), (Texts{"52060", "52000", "07CBD", "52000", "50100300000000000000",
                                                   "50100500010000000000", "50100301000000000000"}));
        EXPECT_EQ(run.Title(1, 0), "one");

        run.store.EditTitle(1, 0, "new");
        ASSERT_TRUE(run.Ends(run.link.SendGroup(1), OP_SEND_GROUP));
        EXPECT_EQ(run.unit.Count(TitleWrite(1, 0)), 1U);
        EXPECT_EQ(run.unit.Count(Framed(kDc4, "5020new" + std::string(29, ' ') + "B1")), 1U);
        EXPECT_EQ(run.Results(), 2U);
        int known = 0;
        for (GroupId group = 1; group <= kGroups; ++group) {
            known += run.store.IsKnown(group, 0);
        }
        EXPECT_EQ(known, 1);
    });
}

TEST(ForeignReplies, LeaveTheRequestToItsRepeatAndTimeOut) {
    RunConnected([](LinkHarness& run) {
        const std::string read = TitleRead(kKindDisc, 1, 0);
        run.unit.Answer(read, {kStray});
        ASSERT_TRUE(run.link.GetAllTitles());
        ASSERT_TRUE(run.WaitUntil([&] { return run.unit.Count(read) == 1; }, 10000));
        run.unit.Line().Send(UnitTitle("one"), 43'000);
        ASSERT_TRUE(run.WaitForResult(OP_GET_ALL));
        EXPECT_EQ(run.Title(1, 0), "one");
        EXPECT_EQ(run.unit.Count(read), 1U);

        run.store.ResetAll();
        run.posted.clear();
        ASSERT_TRUE(run.Ends(run.link.GetAllTitles(), PackResult(OP_GET_ALL, RC_TITLE_READ, ST_TIMEOUT)));
        EXPECT_EQ(run.unit.Count(read), 3U);
        EXPECT_EQ(run.store.IsKnown(1, 0), 0);
    });
}

TEST(ForeignReplies, ComeFromReadsThatWereStoppedLongAgo) {
    // The stop waits for a second; the unit takes longer, and answers in the order in which it is asked.
    RunConnected([](LinkHarness& run) {
        run.unit.Answer(TitleRead(kKindDisc, 1, 0), {""});
        ASSERT_TRUE(run.link.GetOneGroup(1));
        ASSERT_TRUE(run.WaitUntil([&] { return run.unit.Count(TitleRead(kKindDisc, 1, 0)) == 1; }, 10000));
        run.link.StopOperation();
        run.unit.Answer(kMenuQuery, {UnitTitle("one") + "\r" + UnitStatus("FF")});
        ASSERT_TRUE(run.Ends(run.link.GetOneGroup(2), OP_GET_GROUP));
        EXPECT_EQ(run.Title(2, 0), "Title 000200");
    });
}

TEST(StrayFrames, ThatAreVoidTakeTheOperationAwayAndTheQueueGoesOn) {
    const std::string voids[] = {"\x06", Framed(kDc3, "abc"), UnitBlock("053F"), "\x02@15\x03"};
    for (const std::string& bad : voids) {
        RunConnected([&](LinkHarness& run) {
            run.unit.Answer(TitleRead(kKindDisc, 1, 0), {bad + "\r" + UnitTitle("one")});
            ASSERT_TRUE(run.link.GetAllTitles());
            ASSERT_TRUE(run.WaitUntil([&] { return run.store.IsKnown(2, 0) != 0; }, 20000));
            EXPECT_FALSE(run.link.IsOperationActive());
            run.Pass(3000);
            EXPECT_EQ(run.Results(), 0U);
            EXPECT_EQ(run.FramesSinceConnect().back(), "50100500020000000000");
            EXPECT_TRUE(run.Ends(run.link.GetAllTitles(), OP_GET_ALL));
        });
    }
}

// Tracks 1 to 3 of Disc 1, edited and on their way; the unit answers each TitleData, too, after a while.
void SendThreeTracks(LinkHarness& run, std::uint64_t answerDataAfterUs) {
    run.link.SetDisplayRanges({.discTo = 1, .albumFrom = 0, .albumTo = 0, .trackTo = 3});
    run.store.StoreReceived(1, 0, "Disc");
    for (const TrackNo track : {1, 2, 3}) {
        run.Edit(1, track, "new " + std::to_string(track));
    }
    ASSERT_TRUE(run.link.SendGroup(1));
    for (const TrackNo track : {1, 2}) {
        const std::string data = "5020new " + std::to_string(track) + std::string(27, ' ');
        ASSERT_TRUE(run.WaitUntil([&] { return run.LastFrame() == data; }, 20000));
        run.unit.Line().Send(kWriteAccepted + "\r", answerDataAfterUs);
    }
}

TEST(Writing, KeepsWhatIsRefusedBehindAnAnswerToTheTitleBefore) {
    for (std::uint64_t afterMs = 90; afterMs <= 260; afterMs += 10) {
        RunConnected([&](LinkHarness& run) {
            run.unit.Answer(TitleWrite(1, 3), {UnitBlock("0601")});
            SendThreeTracks(run, afterMs * 1000);
            ASSERT_TRUE(run.WaitUntil([&] { return !run.link.IsOperationActive(); }, 60000));
            EXPECT_TRUE(run.HasResult(PackResult(OP_SEND_GROUP, RC_TITLE_WRITE, ST_BAD_REPLY))) << afterMs;
            EXPECT_TRUE(run.store.IsEdited(1, 3)) << afterMs;
            EXPECT_EQ(run.Title(1, 3), "new 3") << afterMs;
        });
    }
}

TEST(Writing, HearsARefusalUntilTheNextMap) {
    for (const bool discs : {true, false}) {
        RunConnected([discs](LinkHarness& run) {
            const std::string map = MapQuery(discs ? kMapDiscs : kMapAlbums, 0);
            run.unit.Answer(map, {"", UnitMap({})});
            run.Edit(AlbumGroup(1), 0, "new");
            run.link.SetDisplayRanges({.discFrom = discs ? 1 : 0, .discTo = discs ? 1 : 0});
            ASSERT_TRUE(run.link.SendAllTitles());
            ASSERT_TRUE(run.WaitUntil([&] { return run.unit.Count(map) == 1; }, 20000));
            run.unit.Line().Send(UnitBlock("0602"));
            ASSERT_TRUE(run.WaitForResult(OP_SEND_GROUP));
            EXPECT_TRUE(run.HasResult(PackResult(OP_SEND_ALL, RC_TITLE_WRITE, ST_BAD_REPLY)));
            EXPECT_TRUE(run.store.IsEdited(AlbumGroup(1), 0));

            // Of a send that was cut off nothing is told any more.
            run.unit.Answer(map, {""});
            ASSERT_TRUE(run.link.SendAllTitles());
            ASSERT_TRUE(run.WaitUntil([&] { return run.unit.Count(map) == 3; }, 20000));
            run.unit.Answer(kReadyQuery, {UnitBlock("0602") + "\r" + UnitStatus("40")});
            run.posted.clear();
            ASSERT_TRUE(run.Ends(run.link.GetOneGroup(AlbumGroup(2)), OP_GET_GROUP));
            EXPECT_EQ(run.Results(), 1U);
        });
    }
}

TEST(Writing, TellsARefusalAtEachTryAndKeepsTheEdit) {
    RunConnected([](LinkHarness& run) {
        run.Edit(1, 0, "new");
        run.unit.Answer(TitleWrite(1, 0), {UnitBlock("0601"), UnitBlock("06000")});
        ASSERT_TRUE(run.Ends(run.link.SendAllTitles(), PackResult(OP_SEND_ALL, RC_TITLE_WRITE, ST_TIMEOUT)));
        EXPECT_EQ(run.Results(), 3U);
        EXPECT_EQ(run.posted[run.posted.size() - 2],
                  (Posted{LM_RESULT, PackResult(OP_SEND_ALL, RC_TITLE_WRITE, ST_BAD_REPLY), 0x10000}));
        EXPECT_TRUE(run.store.IsEdited(1, 0));
    });
}

TEST(Writing, WithoutATitleInTheStoreIsTold) {
    RunConnected([](LinkHarness& run) {
        run.Edit(1, 0, "new");
        run.unit.SetDelay(200'000);
        ASSERT_TRUE(run.link.SendGroup(1));
        ASSERT_TRUE(run.WaitUntil([&] { return run.unit.Count(TitleWrite(1, 0)) == 1; }, 10000));
        run.store.ClearGroup(1);
        EXPECT_TRUE(run.WaitForResult(PackResult(OP_SEND_GROUP, RC_TITLE_WRITE, ST_NO_TITLE)));
    });
}

}  // namespace
