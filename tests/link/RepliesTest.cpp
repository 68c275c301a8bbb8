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
        {"not stopped, 3F", {"3F"}, {"52000"}, ST_NOT_STOPPED, false},
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
                EXPECT_TRUE(run.WaitForResult(ResultOf(OP_GET_ALL, RC_STATUS, each.status))) << each.what;
                run.Pass(10000);
                EXPECT_EQ(run.Results(), 1U) << each.what;
                EXPECT_EQ(run.link.IsOperationActive(), each.standsIdle) << each.what;
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
        ASSERT_TRUE(run.Ends(run.link.GetAllTitles(), ResultOf(OP_GET_ALL, RC_STATUS, ST_MENU_MODE)));
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
        ASSERT_TRUE(run.Ends(run.link.GetAllTitles(), ResultOf(OP_GET_ALL, RC_MAP, ST_TIMEOUT)));
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
        ASSERT_TRUE(run.Ends(run.link.GetGroupTracks(AlbumGroup(1)), ResultOf(OP_GET_TRACKS, RC_MAP, ST_TIMEOUT)));
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

TEST(StrayFrames, OfIgnoredTypesDoNothing) {
    RunConnected([](LinkHarness& run) {
        const std::string ignored = "\x02@05340\x03\r" + UnitBlock("0900") + "\r";
        run.unit.Answer(TitleRead(kKindDisc, 1, 0), {ignored + UnitTitle("one")});
        ASSERT_TRUE(run.Ends(run.link.GetAllTitles(), OP_GET_ALL));
        EXPECT_EQ(run.Results(), 1U);
        EXPECT_EQ(run.Title(1, 0), "one");
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

TEST(StrayFrames, AreNeverFiledUnderAnotherFramesNumber) {
    RunConnected([](LinkHarness& run) {
        // A title that comes while a map is asked for, and once more while nothing is asked at all.
        run.unit.Answer(MapQuery(kMapDiscs, 0), {UnitTitle("stray") + "\r" + kWriteAccepted + "\r" + UnitMap({1})});
        run.unit.Answer(TitleRead(kKindDisc, 1, 0), {UnitMap({7}) + "\r" + UnitTitle("one")});
        ASSERT_TRUE(run.Ends(run.link.GetAllTitles(), OP_GET_ALL));
        run.unit.Line().Send(UnitTitle("late"));
        run.unit.Line().Send("\r" + kWriteAccepted);
        run.Pass(500);
        EXPECT_EQ(run.Results(), 1U);
        int known = 0;
        for (GroupId group = 1; group <= kGroups; ++group) {
            known += run.store.IsKnown(group, 0);
        }
        EXPECT_EQ(known, 2);
        EXPECT_EQ(run.Title(1, 0), "one");
        EXPECT_EQ(run.FramesSinceConnect().size(), 6U);
    });
}

TEST(StrayFrames, ThatUseUpAQuestionDoNotHangTheOperation) {
    // A command reply is an answer to whatever was asked, so it takes the place of the one that counts.
    const std::string questions[] = {kMenuQuery, kReadyQuery, MapQuery(kMapDiscs, 0), MapQuery(kMapAlbums, 0)};
    for (const std::string& question : questions) {
        RunConnected([&](LinkHarness& run) {
            run.unit.Answer(question, {kStray, question == kMenuQuery    ? UnitStatus("FF")
                                               : question == kReadyQuery ? UnitStatus("40")
                                                                         : UnitMap({1})});
            EXPECT_TRUE(run.Ends(run.link.GetAllTitles(), OP_GET_ALL));
            EXPECT_EQ(run.unit.Count(question), question[0] == kStx ? 3U : 2U);

            run.posted.clear();
            run.unit.Answer(question, {kStray});
            ASSERT_TRUE(run.link.GetAllTitles());
            ASSERT_TRUE(run.WaitUntil([&] { return run.Results() > 0; }, 60000));
            EXPECT_EQ(run.posted.back().wParam >> 24, ST_TIMEOUT);
        });
    }
}

TEST(StrayFrames, AreForgivenOnceForEachQuestion) {
    RunConnected([](LinkHarness& run) {
        run.unit.Answer(kReadyQuery, {kStray, UnitStatus("01"), UnitStatus("01"), kStray, UnitStatus("40")});
        EXPECT_TRUE(run.Ends(run.link.GetAllTitles(), OP_GET_ALL));
    });
}

TEST(StatusCheck, CountsNoCopyThatComesWhileNothingIsAsked) {
    RunConnected([](LinkHarness& run) {
        // Ten values are waited out, the menu's among them; the eleventh is a copy that comes in the pause before the next
        // question.
        std::vector<std::string> values(9, UnitStatus("00"));
        values.push_back(UnitStatus("40"));
        run.unit.Answer(kReadyQuery, values);
        run.unit.Answer(MapQuery(kMapDiscs, 0), {kStray, UnitMap({1})});
        ASSERT_TRUE(run.link.GetAllTitles());
        const std::size_t before = run.unit.Count(kReadyQuery);
        ASSERT_TRUE(run.WaitUntil([&] { return run.unit.Count(kReadyQuery) == before + 9; }, 60000));
        run.unit.Line().Send(UnitStatus("00"), 150'000);
        EXPECT_TRUE(run.WaitForResult(OP_GET_ALL));
    });
}

TEST(StrayFrames, ThatUseUpAReadEndTheStep) {
    RunConnected([](LinkHarness& run) {
        run.unit.Answer(TitleRead(kKindDisc, 2, 0), {kStray});
        EXPECT_TRUE(run.Ends(run.link.GetAllTitles(), OP_GET_ALL));
        EXPECT_EQ(run.store.IsKnown(1, 0), 1);
        EXPECT_EQ(run.store.IsKnown(2, 0), 0);
        EXPECT_EQ(run.store.IsKnown(1000, 0), 1);
    });
}

TEST(StrayFrames, ThatUseUpAReadDoNotFileItsTitleUnderTheNextNumber) {
    RunConnected([](LinkHarness& run) {
        run.link.SetDisplayRanges({.discTo = 3, .albumFrom = 0, .albumTo = 0});
        run.unit.Answer(TitleRead(kKindDisc, 1, 0), {kStray});
        // The unit answers in the order in which it was asked, if late.
        run.unit.Answer(TitleRead(kKindDisc, 2, 0), {UnitTitle("one") + "\r" + UnitTitle("Title 000200")});
        ASSERT_TRUE(run.Ends(run.link.GetOneGroup(0), OP_GET_GROUP));
        EXPECT_EQ(run.store.IsKnown(1, 0), 0);
        EXPECT_EQ(run.Title(2, 0), "Title 000200");
        EXPECT_EQ(run.Title(3, 0), "Title 000300");
    });
}

TEST(StrayFrames, DoNotFileATitleThatAStoppedReadGetsTooLate) {
    // The stop waits for a second, the unit takes longer, and the next operation reads at once.
    for (const bool usedUp : {false, true}) {
        RunConnected([usedUp](LinkHarness& run) {
            run.unit.Answer(TitleRead(kKindDisc, 1, 0), {usedUp ? kStray : ""});
            ASSERT_TRUE(run.link.GetOneGroup(1));
            ASSERT_TRUE(run.WaitUntil([&] { return run.unit.Count(TitleRead(kKindDisc, 1, 0)) == 1; }, 10000));
            run.link.StopOperation();
            run.unit.Answer(TitleRead(kKindDisc, 2, 0), {UnitTitle("one") + "\r" + UnitTitle("Title 000200")});
            ASSERT_TRUE(run.Ends(run.link.GetOneGroup(2), OP_GET_GROUP));
            EXPECT_EQ(run.Title(2, 0), "Title 000200");
        });
    }
}

TEST(StrayFrames, DoNotMoveAStepOnWhileNothingIsAsked) {
    RunLink([](LinkHarness& run) {
        // The reply to the first query comes while the second one is still in its pause.
        run.unit.Answer(kModelQuery, {UnitStatus("FF"), kModelReply});
        ASSERT_TRUE(run.link.Connect("COM1"));
        ASSERT_TRUE(run.WaitUntil([&] { return run.unit.Count(kModelQuery) == 1; }, 1000));
        run.unit.Line().Send(kModelReply, 70'000);
        ASSERT_TRUE(run.WaitForResult(1118209));
        EXPECT_EQ(run.unit.Count(kModelQuery), 2U);
        EXPECT_TRUE(run.WaitForResult(OP_CONNECT));
    });
}

TEST(Writing, SendsOneTitleDataForEachWrite) {
    RunConnected([](LinkHarness& run) {
        run.Edit(1, 0, "new");
        char data[kFrameSize];
        char text[kTitleSize];
        ASSERT_TRUE(EncodeTitleData(run.store, 1, 0, data, text));
        run.unit.Answer(TitleWrite(1, 0), {kWriteAccepted + "\r" + kWriteAccepted});
        run.unit.Answer(data, {kWriteAccepted});
        ASSERT_TRUE(run.Ends(run.link.SendGroup(1), OP_SEND_GROUP));
        EXPECT_EQ(run.unit.Count(TitleWrite(1, 0)), 1U);
        EXPECT_EQ(run.unit.Count(data), 1U);
        EXPECT_EQ(run.Results(), 1U);
    });
}

TEST(Writing, TellsARefusalAtEachTryAndKeepsTheEdit) {
    RunConnected([](LinkHarness& run) {
        run.Edit(1, 0, "new");
        run.unit.Answer(TitleWrite(1, 0), {UnitBlock("0601"), UnitBlock("06000")});
        ASSERT_TRUE(run.Ends(run.link.SendAllTitles(), ResultOf(OP_SEND_ALL, RC_TITLE_WRITE, ST_TIMEOUT)));
        EXPECT_EQ(run.Results(), 3U);
        EXPECT_EQ(run.posted[run.posted.size() - 2],
                  (Posted{LM_RESULT, ResultOf(OP_SEND_ALL, RC_TITLE_WRITE, ST_BAD_REPLY), 0x10000}));
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
        EXPECT_TRUE(run.WaitForResult(ResultOf(OP_SEND_GROUP, RC_TITLE_WRITE, ST_NO_TITLE)));
    });
}

}  // namespace
