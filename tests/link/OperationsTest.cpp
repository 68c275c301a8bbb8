// The operations frame by frame, and what a send leaves in the store.
#include <gtest/gtest.h>

#include <algorithm>

#include "LinkHarness.h"

namespace {

using Texts = std::vector<std::string>;

const Texts kStatusCheck = {"52060", "52000"};

Texts After(const Texts& head, const Texts& tail) {
    Texts all = head;
    all.insert(all.end(), tail.begin(), tail.end());
    return all;
}

Texts From(std::size_t first, Texts all) {
    all.erase(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(std::min(first, all.size())));
    return all;
}

std::string DataText(std::string title) {
    title.resize(32, ' ');
    return "5020" + title;
}

// The texts that went out, without the blanks behind them.
Texts SentTexts(const LinkHarness& run) {
    Texts sent;
    for (const std::string& text : run.FramesSinceConnect()) {
        if (text.substr(0, 4) == "5020") {
            sent.push_back(text.substr(4, text.find_last_not_of(' ') - 3));
        }
    }
    return sent;
}

std::vector<WPARAM> ProgressNumbers(const LinkHarness& run) {
    std::vector<WPARAM> numbers;
    for (const Posted& each : run.Progress()) {
        numbers.push_back(each.wParam);
    }
    return numbers;
}

DisplayRanges SmallRanges() {
    DisplayRanges ranges;
    ranges.DiscTo = 3;
    ranges.AlbumTo = 3;
    ranges.TrackTo = 3;
    return ranges;
}

char Query[kFrameSize];

std::string Probe() {
    EncodeMapQuery(kMapTracks, kProbeCode, Query);
    return Query;
}

TEST(GetAll, SkipsTheKindsWhoseRangeIsOff) {
    RunLink([](LinkHarness& run) {
        ASSERT_TRUE(run.ConnectQuietly());
        DisplayRanges ranges = SmallRanges();
        ranges.DiscFrom = ranges.DiscTo = 0;
        run.link.SetDisplayRanges(ranges);
        EncodeMapQuery(kMapAlbums, 0, Query);
        run.unit.Answer(Query, {UnitMap({1, 2})});
        ASSERT_TRUE(run.link.GetAllTitles());
        ASSERT_TRUE(run.WaitForResult(OP_GET_ALL));
        EXPECT_EQ(run.FramesSinceConnect(),
                  After(kStatusCheck, {"50100301000000000000", "50100520010000000000", "50100520020000000000"}));
        // An Album that is through has another number than a Disc.
        EXPECT_EQ(ProgressNumbers(run), (std::vector<WPARAM>{139265, 401409, 466945, 0x72001}));

        ranges.AlbumFrom = ranges.AlbumTo = 0;
        run.link.SetDisplayRanges(ranges);
        run.posted.clear();
        ASSERT_TRUE(run.link.GetAllTitles());
        ASSERT_TRUE(run.WaitForResult(OP_GET_ALL));
        EXPECT_EQ(ProgressNumbers(run), std::vector<WPARAM>{139265});
    });
}

TEST(GetAll, GoesOnWhenTheUnitRefusesTheMaps) {
    RunLink([](LinkHarness& run) {
        ASSERT_TRUE(run.ConnectQuietly());
        EncodeMapQuery(kMapDiscs, 0, Query);
        run.unit.Answer(Query, {UnitBlock("0302")});
        ASSERT_TRUE(run.link.GetAllTitles());
        ASSERT_TRUE(run.WaitForResult(OP_GET_ALL));
        EXPECT_EQ(run.FramesSinceConnect(),
                  After(kStatusCheck, {"50100300000000000000", "50100301000000000000", "50100520010000000000"}));
        EXPECT_EQ(run.Results(), 1U);
    });
}

TEST(GetGroup, ReadsTheOwnTitleUnlessItIsKnown) {
    RunLink([](LinkHarness& run) {
        ASSERT_TRUE(run.ConnectQuietly());
        ASSERT_TRUE(run.link.GetOneGroup(AlbumGroup(2)));
        ASSERT_TRUE(run.WaitForResult(OP_GET_GROUP));
        EXPECT_EQ(run.FramesSinceConnect(), After(kStatusCheck, {"50100520020000000000"}));
        EXPECT_EQ(ProgressNumbers(run), (std::vector<WPARAM>{139265, 598018}));

        run.posted.clear();
        ASSERT_TRUE(run.link.GetOneGroup(AlbumGroup(2)));
        ASSERT_TRUE(run.WaitForResult(OP_GET_GROUP));
        EXPECT_EQ(run.FramesSinceConnect().size(), 5U);
    });
}

TEST(GetTracks, AsksForTheBitmapWhenTheProbeIsRefused) {
    RunLink([](LinkHarness& run) {
        ASSERT_TRUE(run.ConnectQuietly());
        ASSERT_TRUE(run.link.GetGroupTracks(2));
        ASSERT_TRUE(run.WaitForResult(OP_GET_TRACKS));
        EXPECT_EQ(run.FramesSinceConnect(),
                  After(kStatusCheck, {"50100302FFFF00000000", "50100302000200000000", "50100500020100000000",
                                       "50100500020200000000", "50100500020300000000"}));
        EXPECT_EQ(run.Progress(), (std::vector<Posted>{{LM_PROGRESS, 139265, 0},
                                                       {LM_PROGRESS, 598019, 0},
                                                       {LM_PROGRESS, 0x92003, 0x20001},
                                                       {LM_PROGRESS, 0x92003, 0x20002}}));
        // All of them are known now: the bitmap leaves nothing to read.
        run.posted.clear();
        ASSERT_TRUE(run.link.GetGroupTracks(2));
        ASSERT_TRUE(run.WaitForResult(OP_GET_TRACKS));
        EXPECT_EQ(run.FramesSinceConnect().size(), 7U + 4U);
    });
}

TEST(GetTracks, GoesByTheRangeWhenTheProbeIsAccepted) {
    RunLink([](LinkHarness& run) {
        ASSERT_TRUE(run.ConnectQuietly());
        DisplayRanges ranges;
        ranges.TrackFrom = 2;
        ranges.TrackTo = 3;
        run.link.SetDisplayRanges(ranges);
        run.unit.Answer(Probe(), {UnitBlock("0300")});
        ASSERT_TRUE(run.link.GetGroupTracks(3));
        ASSERT_TRUE(run.WaitForResult(OP_GET_TRACKS));
        ASSERT_TRUE(run.link.GetGroupTracks(AlbumGroup(3)));
        run.posted.clear();
        ASSERT_TRUE(run.WaitForResult(OP_GET_TRACKS));
        // A Disc from the range's first track, an Album from its own title on.
        EXPECT_EQ(run.FramesSinceConnect(),
                  (Texts{"52060", "52000", "50100302FFFF00000000", "50100500030200000000", "50100500030300000000", "52060",
                         "52000", "50100302FFFF00000000", "50100520030000000000", "50100520030100000000",
                         "50100520030200000000", "50100520030300000000"}));

        ranges.TrackFrom = ranges.TrackTo = 0;
        run.link.SetDisplayRanges(ranges);
        run.posted.clear();
        ASSERT_TRUE(run.link.GetGroupTracks(4));
        ASSERT_TRUE(run.WaitForResult(OP_GET_TRACKS));
        EXPECT_EQ(run.FramesSinceConnect().size(), 12U);
        EXPECT_TRUE(run.Progress().empty());
    });
}

TEST(GetTracks, OfAllGroupsFillsTheRingAsOftenAsItTakes) {
    RunLink([](LinkHarness& run) {
        ASSERT_TRUE(run.ConnectQuietly());
        // Three fillings: two hold what forty Discs have.
        constexpr GroupId kReadDiscs = 41;
        DisplayRanges ranges;
        ranges.DiscTo = kReadDiscs;
        ranges.AlbumFrom = ranges.AlbumTo = 0;
        run.link.SetDisplayRanges(ranges);
        run.unit.Answer(Probe(), {UnitBlock("0300")});
        ASSERT_TRUE(run.link.GetGroupTracks(0));
        EXPECT_TRUE(run.WaitForResult(OP_GET_TRACKS, 3600 * 1000));
        for (GroupId disc = 1; disc <= kReadDiscs; ++disc) {
            for (TrackNo track = 1; track <= kTracks; ++track) {
                ASSERT_EQ(run.store.GetState(disc, track), TS_RECEIVED) << disc << '/' << track;
            }
        }
        EXPECT_EQ(run.Results(), 1U);
    });
}

TEST(SendGroup, WritesTheEditsAndReadsTheGroupTitlesBack) {
    RunLink([](LinkHarness& run) {
        ASSERT_TRUE(run.ConnectQuietly());
        run.link.SetDisplayRanges(SmallRanges());
        ASSERT_TRUE(run.link.GetAllTitles());
        ASSERT_TRUE(run.WaitForResult(OP_GET_ALL));
        ASSERT_TRUE(run.link.GetGroupTracks(2));
        ASSERT_TRUE(run.WaitForResult(OP_GET_TRACKS));
        run.store.StoreReceived(AlbumGroup(1), 1, "album track");
        run.store.EditTitle(2, 0, "own");
        run.store.EditTitle(2, 1, "one");
        run.store.EditTitle(2, 3, "three");
        run.store.EditTitle(1, 0, "of another group");
        run.posted.clear();
        const std::size_t before = run.FramesSinceConnect().size();
        ASSERT_TRUE(run.link.SendGroup(2));
        ASSERT_TRUE(run.WaitForResult(OP_SEND_GROUP));
        EXPECT_EQ(From(before, run.FramesSinceConnect()),
                  After(kStatusCheck, {"50100500020000000000", "50100600020000000000", DataText("own"),
                                       "50100600020100000000", DataText("one"), "50100600020300000000", DataText("three"),
                                       "50100300000000000000", "50100500020000000000", "50100301000000000000"}));
        EXPECT_EQ(run.Progress(), (std::vector<Posted>{{LM_PROGRESS, 143362, 0},
                                                       {LM_PROGRESS, 667650, 0},
                                                       {LM_PROGRESS, 0xA3002, 0x20000},
                                                       {LM_PROGRESS, 0xA3002, 0x20001},
                                                       {LM_PROGRESS, 274434, 0},
                                                       {LM_PROGRESS, 339970, 0},
                                                       {LM_PROGRESS, 405506, 0}}));
        EXPECT_EQ(run.store.GetState(2, 0), TS_RECEIVED);
        EXPECT_EQ(run.store.IsKnown(2, 1), 0);
        EXPECT_EQ(run.store.IsKnown(2, 2), 1);
        EXPECT_EQ(run.store.IsKnown(2, 3), 0);
        EXPECT_EQ(run.store.GetState(1, 0), TS_EDITED);
        EXPECT_EQ(run.store.GetState(AlbumGroup(1), 1), -1);
        EXPECT_EQ(run.store.GetState(AlbumGroup(1), 0), TS_RECEIVED);
    });
}

TEST(GetGroup, OfAllGroupsKeepsToTheRangesAtBothEnds) {
    RunLink([](LinkHarness& run) {
        ASSERT_TRUE(run.ConnectQuietly());
        DisplayRanges ranges;
        ranges.DiscFrom = ranges.AlbumFrom = 2;
        ranges.DiscTo = ranges.AlbumTo = 4;
        run.link.SetDisplayRanges(ranges);
        run.store.StoreReceived(3, 0, "known");
        run.store.StoreReceived(AlbumGroup(2), 0, "known");
        ASSERT_TRUE(run.link.GetOneGroup(0));
        ASSERT_TRUE(run.WaitForResult(OP_GET_GROUP));
        EXPECT_EQ(run.FramesSinceConnect(), After(kStatusCheck, {"50100500020000000000", "50100500040000000000",
                                                                 "50100520030000000000", "50100520040000000000"}));
    });
}

TEST(SendAll, KeepsToTheRangesAtBothEnds) {
    RunLink([](LinkHarness& run) {
        ASSERT_TRUE(run.ConnectQuietly());
        DisplayRanges ranges;
        ranges.DiscFrom = ranges.AlbumFrom = ranges.TrackFrom = 2;
        ranges.DiscTo = ranges.AlbumTo = ranges.TrackTo = 4;
        run.link.SetDisplayRanges(ranges);
        const auto edit = [&run](GroupId group, TrackNo track, const std::string& text) {
            run.store.StoreReceived(group, track, "old");
            ASSERT_EQ(run.store.EditTitle(group, track, text.c_str()), 1) << text;
        };
        run.store.StoreReceived(3, 0, "its tracks can be edited");
        for (int number = 1; number <= 5; ++number) {
            edit(number, 0, "Disc " + std::to_string(number));
            edit(AlbumGroup(number), 0, "Album " + std::to_string(number));
            edit(3, number, "Track " + std::to_string(number));
        }
        ASSERT_TRUE(run.link.SendAllTitles());
        ASSERT_TRUE(run.WaitForResult(OP_SEND_GROUP));
        EXPECT_EQ(SentTexts(run),
                  (Texts{"Disc 2", "Disc 3", "Track 2", "Track 3", "Track 4", "Disc 4", "Album 2", "Album 3", "Album 4"}));
    });
}

TEST(SendAll, WritesAlbumsByTheirOwnTitleOnly) {
    RunLink([](LinkHarness& run) {
        ASSERT_TRUE(run.ConnectQuietly());
        run.link.SetDisplayRanges(SmallRanges());
        for (const TrackNo track : {0, 1}) {
            run.store.StoreReceived(AlbumGroup(1), track, "old");
            run.store.EditTitle(AlbumGroup(1), track, "new");
        }
        run.store.StoreReceived(4, 0, "outside");
        run.store.EditTitle(4, 0, "the range");
        ASSERT_TRUE(run.link.SendAllTitles());
        ASSERT_TRUE(run.WaitForResult(OP_SEND_GROUP));
        Texts frames = run.FramesSinceConnect();
        frames.resize(5);
        EXPECT_EQ(frames, After(kStatusCheck, {"50100520010000000000", "50100620010000000000", DataText("new")}));
        EXPECT_TRUE(run.store.IsEdited(AlbumGroup(1), 1));
        EXPECT_TRUE(run.store.IsEdited(4, 0));
        EXPECT_FALSE(run.HasResult(OP_SEND_ALL));
    });
}

TEST(SendAll, WithNothingEditedReadsOnlyWhatIsUnknown) {
    RunLink([](LinkHarness& run) {
        ASSERT_TRUE(run.ConnectQuietly());
        ASSERT_TRUE(run.link.SendAllTitles());
        ASSERT_TRUE(run.WaitForResult(OP_SEND_GROUP));
        EXPECT_EQ(run.FramesSinceConnect().size(), 2U + 5U);
        EXPECT_EQ(run.store.GetState(1, 0), TS_RECEIVED);
    });
}

TEST(SendAll, ForgetsNothingWithoutDiscsAndSendsNothingWithoutTracks) {
    RunLink([](LinkHarness& run) {
        ASSERT_TRUE(run.ConnectQuietly());
        DisplayRanges ranges = SmallRanges();
        run.link.SetDisplayRanges(ranges);
        // What the maps of this fetch have planned is none of the send's business.
        ASSERT_TRUE(run.link.GetAllTitles());
        ASSERT_TRUE(run.WaitForResult(OP_GET_ALL));
        ranges.DiscFrom = ranges.DiscTo = 0;
        run.link.SetDisplayRanges(ranges);
        run.store.EditTitle(AlbumGroup(1), 0, "new");
        std::size_t before = run.FramesSinceConnect().size();
        ASSERT_TRUE(run.link.SendAllTitles());
        ASSERT_TRUE(run.WaitForResult(OP_SEND_GROUP));
        EXPECT_EQ(
            From(before, run.FramesSinceConnect()),
            After(kStatusCheck, {"50100520010000000000", "50100620010000000000", DataText("new"), "50100301000000000000"}));
        EXPECT_TRUE(run.store.IsEdited(AlbumGroup(1), 0));

        ranges = SmallRanges();
        ranges.TrackFrom = ranges.TrackTo = 0;
        run.link.SetDisplayRanges(ranges);
        before = run.FramesSinceConnect().size();
        run.posted.clear();
        ASSERT_TRUE(run.link.SendAllTitles());
        ASSERT_TRUE(run.WaitForResult(OP_SEND_GROUP));
        EXPECT_EQ(run.FramesSinceConnect().size(), before + 2);
        EXPECT_TRUE(run.store.IsEdited(AlbumGroup(1), 0));
    });
}

TEST(SendAll, FillsTheRingAsOftenAsItTakes) {
    RunLink([](LinkHarness& run) {
        ASSERT_TRUE(run.ConnectQuietly());
        DisplayRanges ranges;
        ranges.AlbumFrom = ranges.AlbumTo = 0;
        run.link.SetDisplayRanges(ranges);
        constexpr GroupId kEditedDiscs = 31;
        for (GroupId disc = 1; disc <= kEditedDiscs; ++disc) {
            for (TrackNo track = 0; track <= kTracks; ++track) {
                run.store.StoreReceived(disc, track, "old");
                run.store.EditTitle(disc, track, "new");
            }
        }
        ASSERT_TRUE(run.link.SendAllTitles());
        ASSERT_TRUE(run.WaitForResult(OP_SEND_GROUP, 3600 * 1000));
        std::size_t data = 0;
        for (const std::string& text : run.FramesSinceConnect()) {
            data += text == DataText("new") ? 1U : 0U;
        }
        EXPECT_EQ(data, std::size_t{kEditedDiscs} * (kTracks + 1));
        for (GroupId disc = 1; disc <= kEditedDiscs; ++disc) {
            EXPECT_FALSE(run.store.IsEdited(disc, 0)) << disc;
            EXPECT_FALSE(run.store.IsEdited(disc, kTracks)) << disc;
        }
    });
}

TEST(SendGroup, SendsATitleAgainThatIsEditedMeanwhile) {
    RunLink([](LinkHarness& run) {
        ASSERT_TRUE(run.ConnectQuietly());
        run.link.SetDisplayRanges(SmallRanges());
        for (const TrackNo track : {0, 1, 2}) {
            run.store.StoreReceived(1, track, "old");
        }
        run.store.EditTitle(1, 1, "first");
        run.store.EditTitle(1, 2, "second");
        ASSERT_TRUE(run.link.SendGroup(1));
        ASSERT_TRUE(run.WaitUntil([&] { return run.LastFrame() == DataText("first"); }, 10000));
        run.store.EditTitle(1, 1, "first, improved");
        ASSERT_TRUE(run.WaitForResult(OP_SEND_GROUP));
        const Texts frames = run.FramesSinceConnect();
        EXPECT_EQ(std::count(frames.begin(), frames.end(), DataText("first, improved")), 1);
        EXPECT_EQ(std::count(frames.begin(), frames.end(), DataText("second")), 1);
        EXPECT_FALSE(run.store.IsEdited(1, 1));
    });
}

// Somebody who keeps typing is no unit that answers in vain.
TEST(SendGroup, SendsATitleAsOftenAsItIsEdited) {
    RunLink([](LinkHarness& run) {
        ASSERT_TRUE(run.ConnectQuietly());
        run.store.StoreReceived(1, 0, "old");
        const Texts edits = {"first", "second", "third", "fourth", "fifth"};
        EncodeTitleWrite(kKindDisc, 1, 0, Query);
        run.store.EditTitle(1, 0, edits[0].c_str());
        ASSERT_TRUE(run.link.SendGroup(1));
        for (std::size_t round = 1; round < edits.size(); ++round) {
            ASSERT_TRUE(run.WaitUntil([&] { return run.unit.Count(Query) == round; }, 10000)) << round;
            // In the pause between the unit's acceptance and the title.
            run.Pass(60);
            run.store.EditTitle(1, 0, edits[round].c_str());
        }
        ASSERT_TRUE(run.WaitForResult(OP_SEND_GROUP));
        EXPECT_EQ(SentTexts(run), edits);
        EXPECT_FALSE(run.store.IsEdited(1, 0));
    });
}

TEST(SendGroup, SendsATitleWhoseRequestAStrayReplyHasUsedUp) {
    RunLink([](LinkHarness& run) {
        ASSERT_TRUE(run.ConnectQuietly());
        // Each send is given its round in vain.
        for (const char* text : {"new", "newer"}) {
            run.posted.clear();
            run.store.StoreReceived(1, 0, "old");
            run.store.EditTitle(1, 0, text);
            EncodeTitleWrite(kKindDisc, 1, 0, Query);
            run.unit.Answer(Query, {"\x02@05800\x03", kWriteAccepted});
            ASSERT_TRUE(run.link.SendGroup(1));
            ASSERT_TRUE(run.WaitForResult(OP_SEND_GROUP)) << text;
            EXPECT_FALSE(run.store.IsEdited(1, 0));
        }
        EXPECT_EQ(SentTexts(run), (Texts{"new", "newer"}));
    });
}

TEST(SendGroup, TimesOutIfTheUnitAnswersAWriteWithSomethingElseForEver) {
    RunLink([](LinkHarness& run) {
        ASSERT_TRUE(run.ConnectQuietly());
        run.store.StoreReceived(1, 0, "old");
        run.store.EditTitle(1, 0, "new");
        EncodeTitleWrite(kKindDisc, 1, 0, Query);
        run.unit.Answer(Query, {"\x02@05800\x03"});
        ASSERT_TRUE(run.link.SendGroup(1));
        ASSERT_TRUE(run.WaitForResult(ResultOf(OP_SEND_GROUP, RC_TITLE_WRITE, ST_TIMEOUT)));
        EXPECT_TRUE(run.store.IsEdited(1, 0));
    });
}

TEST(SendGroup, DoesNotTakeALateAcceptanceForTheNextWrites) {
    RunLink([](LinkHarness& run) {
        ASSERT_TRUE(run.ConnectQuietly());
        run.store.StoreReceived(1, 0, "group");
        for (const TrackNo track : {1, 2}) {
            run.store.StoreReceived(1, track, "old");
            run.store.EditTitle(1, track, track == 1 ? "one" : "two");
        }
        EncodeTitleWrite(kKindDisc, 1, 1, Query);
        run.unit.Answer(Query, {"\x02@05800\x03", kWriteAccepted});
        // The first write's acceptance comes while the second one is on the line, which the unit refuses.
        EncodeTitleWrite(kKindDisc, 1, 2, Query);
        run.unit.Answer(Query, {kWriteAccepted + "\r" + UnitBlock("0601"), UnitBlock("0601")});
        ASSERT_TRUE(run.link.SendGroup(1));
        ASSERT_TRUE(run.WaitForResult(ResultOf(OP_SEND_GROUP, RC_TITLE_WRITE, ST_TIMEOUT)));
        const Texts frames = run.FramesSinceConnect();
        EXPECT_EQ(std::count(frames.begin(), frames.end(), DataText("two")), 0);
        EXPECT_TRUE(run.store.IsEdited(1, 2));
    });
}

TEST(SendAll, KeepsToTheRangesThatItBeganWith) {
    RunLink([](LinkHarness& run) {
        ASSERT_TRUE(run.ConnectQuietly());
        for (const GroupId group : {1, 2}) {
            run.store.StoreReceived(group, 0, "old");
            run.store.EditTitle(group, 0, "new");
        }
        ASSERT_TRUE(run.link.SendAllTitles());
        DisplayRanges none;
        none.DiscFrom = none.DiscTo = 0;
        run.link.SetDisplayRanges(none);
        ASSERT_TRUE(run.WaitForResult(OP_SEND_GROUP));
        const Texts frames = run.FramesSinceConnect();
        EXPECT_EQ(std::count(frames.begin(), frames.end(), DataText("new")), 2);
        EXPECT_FALSE(run.link.GetOneGroup(1));
    });
}

TEST(SendAll, TakesRangesFromAnywhere) {
    RunLink([](LinkHarness& run) {
        ASSERT_TRUE(run.ConnectQuietly());
        run.store.StoreReceived(999, 0, "old");
        run.store.EditTitle(999, 0, "new");
        DisplayRanges wild;
        wild.DiscFrom = wild.AlbumFrom = wild.TrackFrom = -5;
        wild.DiscTo = wild.AlbumTo = wild.TrackTo = 2'000'000'000;
        run.link.SetDisplayRanges(wild);
        ASSERT_TRUE(run.link.SendAllTitles());
        ASSERT_TRUE(run.WaitForResult(OP_SEND_GROUP));
        EXPECT_FALSE(run.store.IsEdited(999, 0));
    });
}

TEST(SendAll, KeepsAnEditedTrackOutsideTheRangeWithinReach) {
    RunLink([](LinkHarness& run) {
        ASSERT_TRUE(run.ConnectQuietly());
        run.store.StoreReceived(1, 0, "old");
        run.store.EditTitle(1, 0, "new");
        run.store.StoreReceived(1, 5, "old");
        run.store.EditTitle(1, 5, "typed");
        DisplayRanges ranges;
        ranges.TrackTo = 3;
        run.link.SetDisplayRanges(ranges);
        // The read-back breaks off.
        EncodeMapQuery(kMapDiscs, 0, Query);
        run.unit.Answer(Query, {""});
        ASSERT_TRUE(run.link.SendAllTitles());
        ASSERT_TRUE(run.WaitForResult(ResultOf(OP_SEND_ALL, RC_MAP, ST_TIMEOUT)));
        char text[kTitleSize];
        ASSERT_TRUE(run.store.GetTitle(1, 5, text));
        EXPECT_STREQ(text, "typed");
    });
}

TEST(Operations, EndWithoutAStore) {
    RunLink([](LinkHarness& run) {
        run.link.SetTitleStore(nullptr);
        ASSERT_TRUE(run.ConnectQuietly());
        const Texts maps = {"50100300000000000000", "50100301000000000000"};
        ASSERT_TRUE(run.link.GetAllTitles());
        EXPECT_TRUE(run.WaitForResult(OP_GET_ALL));
        EXPECT_EQ(run.FramesSinceConnect(), After(kStatusCheck, maps));
        ASSERT_TRUE(run.link.GetOneGroup(1));
        EXPECT_TRUE(run.WaitForResult(OP_GET_GROUP));
        ASSERT_TRUE(run.link.GetGroupTracks(1));
        EXPECT_TRUE(run.WaitForResult(OP_GET_TRACKS));
        const std::size_t before = run.FramesSinceConnect().size();
        ASSERT_TRUE(run.link.SendAllTitles());
        EXPECT_TRUE(run.WaitForResult(OP_SEND_GROUP));
        EXPECT_EQ(From(before, run.FramesSinceConnect()), After(kStatusCheck, maps));
        EXPECT_EQ(run.Results(), 4U);
    });
}

TEST(Sending, ThatBreaksOffKeepsEveryEdit) {
    RunLink([](LinkHarness& run) {
        ASSERT_TRUE(run.ConnectQuietly());
        for (const TrackNo track : {0, 1}) {
            run.store.StoreReceived(1, track, "old");
            run.store.EditTitle(1, track, "new");
        }
        EncodeTitleWrite(kKindDisc, 1, 1, Query);
        run.unit.Answer(Query, {""});
        ASSERT_TRUE(run.link.SendGroup(1));
        ASSERT_TRUE(run.WaitForResult(ResultOf(OP_SEND_GROUP, RC_TITLE_WRITE, ST_TIMEOUT)));
        EXPECT_TRUE(run.store.IsEdited(1, 0));
        EXPECT_TRUE(run.store.IsEdited(1, 1));
        EXPECT_TRUE(run.store.CanUndo());
    });
}

}  // namespace
