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

std::ptrdiff_t TimesSent(const LinkHarness& run, const std::string& text) {
    const Texts sent = SentTexts(run);
    return std::count(sent.begin(), sent.end(), text);
}

std::vector<WPARAM> ProgressNumbers(const LinkHarness& run) {
    std::vector<WPARAM> numbers;
    for (const Posted& each : run.Progress()) {
        numbers.push_back(each.wParam);
    }
    return numbers;
}

constexpr DisplayRanges kSmallRanges{.discTo = 3, .albumTo = 3, .trackTo = 3};
const std::string kProbe = MapQuery(kMapTracks, kProbeCode);

TEST(GetAll, SkipsTheKindsWhoseRangeIsOff) {
    RunConnected([](LinkHarness& run) {
        DisplayRanges ranges = kSmallRanges;
        ranges.discFrom = ranges.discTo = 0;
        run.link.SetDisplayRanges(ranges);
        run.unit.Answer(MapQuery(kMapAlbums, 0), {UnitMap({1, 2})});
        ASSERT_TRUE(run.Ends(run.link.GetAllTitles(), OP_GET_ALL));
        EXPECT_EQ(run.FramesSinceConnect(),
                  After(kStatusCheck, {"50100301000000000000", "50100520010000000000", "50100520020000000000"}));
        // An Album that is through has another number than a Disc.
        EXPECT_EQ(ProgressNumbers(run), (std::vector<WPARAM>{139265, 401409, 466945, 0x72001}));

        ranges.albumFrom = ranges.albumTo = 0;
        run.link.SetDisplayRanges(ranges);
        run.posted.clear();
        ASSERT_TRUE(run.Ends(run.link.GetAllTitles(), OP_GET_ALL));
        EXPECT_EQ(ProgressNumbers(run), std::vector<WPARAM>{139265});
    });
}

TEST(GetAll, GoesOnWhenTheUnitRefusesTheMaps) {
    RunConnected([](LinkHarness& run) {
        run.unit.Answer(MapQuery(kMapDiscs, 0), {UnitBlock("0302")});
        ASSERT_TRUE(run.Ends(run.link.GetAllTitles(), OP_GET_ALL));
        EXPECT_EQ(run.FramesSinceConnect(),
                  After(kStatusCheck, {"50100300000000000000", "50100301000000000000", "50100520010000000000"}));
        EXPECT_EQ(run.Results(), 1U);
        EXPECT_EQ(ProgressNumbers(run), (std::vector<WPARAM>{139265, 270337, 401409, 466945}));
    });
}

TEST(GetGroup, ReadsTheOwnTitleUnlessItIsKnown) {
    RunConnected([](LinkHarness& run) {
        ASSERT_TRUE(run.Ends(run.link.GetOneGroup(AlbumGroup(2)), OP_GET_GROUP));
        EXPECT_EQ(run.FramesSinceConnect(), After(kStatusCheck, {"50100520020000000000"}));
        EXPECT_EQ(ProgressNumbers(run), (std::vector<WPARAM>{139265, 598018}));

        run.posted.clear();
        ASSERT_TRUE(run.Ends(run.link.GetOneGroup(AlbumGroup(2)), OP_GET_GROUP));
        EXPECT_EQ(run.FramesSinceConnect().size(), 5U);
        run.posted.clear();
        run.link.SetDisplayRanges({.trackFrom = 0, .trackTo = 0});
        ASSERT_TRUE(run.Ends(run.link.GetOneGroup(AlbumGroup(3)), OP_GET_GROUP));
        EXPECT_EQ(ProgressNumbers(run), std::vector<WPARAM>{139265});
    });
}

TEST(GetTracks, AsksForTheBitmapWhenTheProbeIsRefused) {
    RunConnected([](LinkHarness& run) {
        ASSERT_TRUE(run.Ends(run.link.GetGroupTracks(2), OP_GET_TRACKS));
        EXPECT_EQ(run.FramesSinceConnect(),
                  After(kStatusCheck, {"50100302FFFF00000000", "50100302000200000000", "50100500020100000000",
                                       "50100500020200000000", "50100500020300000000"}));
        EXPECT_EQ(run.Progress(), (std::vector<Posted>{{LM_PROGRESS, 139265, 0},
                                                       {LM_PROGRESS, 598019, 0},
                                                       {LM_PROGRESS, 0x92003, 0x20001},
                                                       {LM_PROGRESS, 0x92003, 0x20002}}));
        // All of them are known now: the bitmap leaves nothing to read.
        run.posted.clear();
        ASSERT_TRUE(run.Ends(run.link.GetGroupTracks(2), OP_GET_TRACKS));
        EXPECT_EQ(run.FramesSinceConnect().size(), 7U + 4U);
    });
}

TEST(GetTracks, GoesByTheRangeWhenTheProbeIsAccepted) {
    RunConnected([](LinkHarness& run) {
        run.link.SetDisplayRanges({.trackFrom = 2, .trackTo = 3});
        run.unit.Answer(kProbe, {UnitBlock("0300")});
        ASSERT_TRUE(run.Ends(run.link.GetGroupTracks(3), OP_GET_TRACKS));
        ASSERT_TRUE(run.link.GetGroupTracks(AlbumGroup(3)));
        run.posted.clear();
        ASSERT_TRUE(run.WaitForResult(OP_GET_TRACKS));
        // A Disc from the range's first track, an Album from its own title on.
        EXPECT_EQ(run.FramesSinceConnect(),
                  (Texts{"52060", "52000", "50100302FFFF00000000", "50100500030200000000", "50100500030300000000", "52060",
                         "52000", "50100302FFFF00000000", "50100520030000000000", "50100520030100000000",
                         "50100520030200000000", "50100520030300000000"}));

        run.link.SetDisplayRanges({.trackFrom = 0, .trackTo = 0});
        run.posted.clear();
        ASSERT_TRUE(run.Ends(run.link.GetGroupTracks(4), OP_GET_TRACKS));
        EXPECT_EQ(run.FramesSinceConnect().size(), 12U);
        EXPECT_TRUE(run.Progress().empty());
    });
}

TEST(GetTracks, OfMoreThanTheRingHoldsEndsWithTheRing) {
    RunConnected([](LinkHarness& run) {
        run.link.SetDisplayRanges({.discTo = 21, .albumFrom = 0, .albumTo = 0});
        run.unit.Answer(kProbe, {UnitBlock("0300")});
        ASSERT_TRUE(run.Ends(run.link.GetGroupTracks(0), OP_GET_TRACKS, 3600 * 1000));
        EXPECT_TRUE(run.store.IsKnown(21, 18));
        EXPECT_FALSE(run.store.IsKnown(21, 19));
        ASSERT_TRUE(run.link.GetGroupTracks(0));
        EXPECT_TRUE(run.WaitUntil([&] { return run.store.IsKnown(21, kTracks) != 0; }, 3600 * 1000));
    });
}

TEST(SendGroup, WritesTheEditsAndReadsTheGroupTitlesBack) {
    RunConnected([](LinkHarness& run) {
        run.link.SetDisplayRanges(kSmallRanges);
        ASSERT_TRUE(run.Ends(run.link.GetAllTitles(), OP_GET_ALL));
        ASSERT_TRUE(run.Ends(run.link.GetGroupTracks(2), OP_GET_TRACKS));
        run.store.StoreReceived(AlbumGroup(1), 2, "album track");
        run.store.EditTitle(2, 0, "own");
        run.store.EditTitle(2, 1, "one");
        run.store.EditTitle(2, 3, "three");
        run.store.EditTitle(1, 0, "of another group");
        run.posted.clear();
        const std::size_t before = run.FramesSinceConnect().size();
        ASSERT_TRUE(run.Ends(run.link.SendGroup(2), OP_SEND_GROUP));
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
        EXPECT_EQ(run.store.GetState(AlbumGroup(1), 2), -1);
        EXPECT_EQ(run.store.GetState(AlbumGroup(1), 0), TS_RECEIVED);
    });
}

TEST(GetGroup, OfAllGroupsKeepsToTheRangesAtBothEnds) {
    RunConnected([](LinkHarness& run) {
        run.link.SetDisplayRanges({.discFrom = 2, .discTo = 4, .albumFrom = 2, .albumTo = 4});
        run.store.StoreReceived(3, 0, "known");
        run.store.StoreReceived(AlbumGroup(2), 0, "known");
        ASSERT_TRUE(run.Ends(run.link.GetOneGroup(0), OP_GET_GROUP));
        EXPECT_EQ(run.FramesSinceConnect(), After(kStatusCheck, {"50100500020000000000", "50100500040000000000",
                                                                 "50100520030000000000", "50100520040000000000"}));
    });
}

TEST(SendAll, KeepsToTheRangesAtBothEnds) {
    RunConnected([](LinkHarness& run) {
        run.link.SetDisplayRanges({.discFrom = 2, .discTo = 4, .albumFrom = 2, .albumTo = 4, .trackFrom = 2, .trackTo = 4});
        run.store.StoreReceived(3, 0, "its tracks can be edited");
        for (int number = 1; number <= 5; ++number) {
            run.Edit(number, 0, "Disc " + std::to_string(number));
            run.Edit(AlbumGroup(number), 0, "Album " + std::to_string(number));
            run.Edit(3, number, "Track " + std::to_string(number));
        }
        ASSERT_TRUE(run.Ends(run.link.SendAllTitles(), OP_SEND_GROUP));
        EXPECT_EQ(SentTexts(run),
                  (Texts{"Disc 2", "Disc 3", "Track 2", "Track 3", "Track 4", "Disc 4", "Album 2", "Album 3", "Album 4"}));
    });
}

TEST(SendAll, WritesAlbumsByTheirOwnTitleOnly) {
    RunConnected([](LinkHarness& run) {
        run.link.SetDisplayRanges(kSmallRanges);
        for (const TrackNo track : {0, 1}) {
            run.Edit(AlbumGroup(1), track, "new");
        }
        run.store.StoreReceived(4, 0, "outside");
        run.store.EditTitle(4, 0, "the range");
        ASSERT_TRUE(run.Ends(run.link.SendAllTitles(), OP_SEND_GROUP));
        Texts frames = run.FramesSinceConnect();
        frames.resize(5);
        EXPECT_EQ(frames, After(kStatusCheck, {"50100520010000000000", "50100620010000000000", DataText("new")}));
        EXPECT_TRUE(run.store.IsEdited(AlbumGroup(1), 1));
        EXPECT_TRUE(run.store.IsEdited(4, 0));
        EXPECT_FALSE(run.HasResult(OP_SEND_ALL));
    });
}

TEST(SendAll, WithNothingEditedReadsOnlyWhatIsUnknown) {
    RunConnected([](LinkHarness& run) {
        ASSERT_TRUE(run.Ends(run.link.SendAllTitles(), OP_SEND_GROUP));
        EXPECT_EQ(run.FramesSinceConnect().size(), 2U + 5U);
        EXPECT_EQ(run.store.GetState(1, 0), TS_RECEIVED);
    });
}

TEST(SendAll, ForgetsNothingWithoutDiscsAndSendsNothingWithoutTracks) {
    RunConnected([](LinkHarness& run) {
        DisplayRanges ranges = kSmallRanges;
        run.link.SetDisplayRanges(ranges);
        // What the maps of this fetch have planned is none of the send's business.
        ASSERT_TRUE(run.Ends(run.link.GetAllTitles(), OP_GET_ALL));
        ranges.discFrom = ranges.discTo = 0;
        run.link.SetDisplayRanges(ranges);
        run.store.EditTitle(AlbumGroup(1), 0, "new");
        std::size_t before = run.FramesSinceConnect().size();
        ASSERT_TRUE(run.Ends(run.link.SendAllTitles(), OP_SEND_GROUP));
        EXPECT_EQ(
            From(before, run.FramesSinceConnect()),
            After(kStatusCheck, {"50100520010000000000", "50100620010000000000", DataText("new"), "50100301000000000000"}));
        EXPECT_TRUE(run.store.IsEdited(AlbumGroup(1), 0));

        ranges = kSmallRanges;
        ranges.trackFrom = ranges.trackTo = 0;
        run.link.SetDisplayRanges(ranges);
        before = run.FramesSinceConnect().size();
        run.posted.clear();
        ASSERT_TRUE(run.Ends(run.link.SendAllTitles(), OP_SEND_GROUP));
        EXPECT_EQ(run.FramesSinceConnect().size(), before + 2);
        EXPECT_TRUE(run.store.IsEdited(AlbumGroup(1), 0));
    });
}

TEST(SendAll, FillsTheRingAsOftenAsItTakes) {
    RunConnected([](LinkHarness& run) {
        run.link.SetDisplayRanges({.albumFrom = 0, .albumTo = 0});
        constexpr GroupId kEditedDiscs = 31;
        for (GroupId disc = 1; disc <= kEditedDiscs; ++disc) {
            for (TrackNo track = 0; track <= kTracks; ++track) {
                run.Edit(disc, track, "new");
            }
        }
        ASSERT_TRUE(run.Ends(run.link.SendAllTitles(), OP_SEND_GROUP, 3600 * 1000));
        EXPECT_EQ(TimesSent(run, "new"), kEditedDiscs * (kTracks + 1));
        for (GroupId disc = 1; disc <= kEditedDiscs; ++disc) {
            EXPECT_FALSE(run.store.IsEdited(disc, 0)) << disc;
            EXPECT_FALSE(run.store.IsEdited(disc, kTracks)) << disc;
        }
    });
}

TEST(SendGroup, SendsATitleAgainThatIsEditedMeanwhile) {
    RunConnected([](LinkHarness& run) {
        run.link.SetDisplayRanges(kSmallRanges);
        for (const TrackNo track : {0, 1, 2}) {
            run.store.StoreReceived(1, track, "old");
        }
        run.store.EditTitle(1, 1, "first");
        run.store.EditTitle(1, 2, "second");
        ASSERT_TRUE(run.link.SendGroup(1));
        ASSERT_TRUE(run.WaitUntil([&] { return run.LastFrame() == DataText("first"); }, 10000));
        run.store.EditTitle(1, 1, "first, improved");
        ASSERT_TRUE(run.WaitForResult(OP_SEND_GROUP));
        EXPECT_EQ(TimesSent(run, "first, improved"), 1);
        EXPECT_EQ(TimesSent(run, "second"), 1);
        EXPECT_FALSE(run.store.IsEdited(1, 1));
    });
}

TEST(SendGroup, SendsATitleAsOftenAsItIsEdited) {
    RunConnected([](LinkHarness& run) {
        run.store.StoreReceived(1, 0, "old");
        const Texts edits = {"first", "second", "third", "fourth", "fifth"};
        run.store.EditTitle(1, 0, edits[0].c_str());
        ASSERT_TRUE(run.link.SendGroup(1));
        for (std::size_t round = 1; round < edits.size(); ++round) {
            ASSERT_TRUE(run.WaitUntil([&] { return run.unit.Count(TitleWrite(1, 0)) == round; }, 10000)) << round;
            // In the pause between the unit's acceptance and the title.
            run.Pass(60);
            run.store.EditTitle(1, 0, edits[round].c_str());
        }
        ASSERT_TRUE(run.WaitForResult(OP_SEND_GROUP));
        EXPECT_EQ(SentTexts(run), edits);
        EXPECT_FALSE(run.store.IsEdited(1, 0));
    });
}

// What the unit holds when the user has taken back an edit that had gone out.
TEST(SendGroup, SendsTheOldTextOfAnEditThatIsUndoneOnItsWay) {
    enum class When { kWhileSending, kAfterAStop, kInThePause, kInThePauseOfAReplacedSend };
    for (const When when : {When::kWhileSending, When::kAfterAStop, When::kInThePause, When::kInThePauseOfAReplacedSend}) {
        RunConnected([when](LinkHarness& run) {
            run.link.SetDisplayRanges(kSmallRanges);
            run.store.StoreReceived(1, 0, "Disc");
            for (const TrackNo track : {3, 2, 1}) {
                run.Edit(1, track, "new " + std::to_string(track));
            }
            ASSERT_TRUE(run.link.SendGroup(1));
            ASSERT_TRUE(run.WaitUntil([&] { return run.LastFrame() == "50100600010100000000"; }, 20000));
            if (when == When::kWhileSending || when == When::kAfterAStop) {
                ASSERT_TRUE(run.WaitUntil([&] { return run.LastFrame() == DataText("new 1"); }, 20000));
            } else {
                run.Pass(60);
            }
            if (when == When::kAfterAStop) {
                run.link.StopOperation();
            }
            ASSERT_TRUE(run.store.UndoEdit(nullptr, nullptr, nullptr));
            if (when == When::kInThePauseOfAReplacedSend) {
                ASSERT_TRUE(run.link.GetOneGroup(2));
                ASSERT_TRUE(run.WaitForResult(OP_GET_GROUP));
            }
            if (when == When::kAfterAStop || when == When::kInThePauseOfAReplacedSend) {
                EXPECT_EQ(SentTexts(run), Texts{"new 1"});
                EXPECT_EQ(run.store.GetState(1, 1), TS_EDITED);
                run.posted.clear();
                ASSERT_TRUE(run.link.SendGroup(1));
            }
            EXPECT_EQ(run.Title(1, 1), "old");
            ASSERT_TRUE(run.WaitForResult(OP_SEND_GROUP));
            EXPECT_EQ(TimesSent(run, "new 1"), 1);
            EXPECT_EQ(TimesSent(run, "old"), 1);
            EXPECT_FALSE(run.store.IsEdited(1, 1));
        });
    }
}

TEST(SendAll, ForgetsADiscsTitleAlthoughATrackOutsideTheRangeIsEdited) {
    RunConnected([](LinkHarness& run) {
        run.Edit(1, 0, "new");
        run.Edit(1, 5, "typed");
        run.link.SetDisplayRanges({.trackTo = 3});
        for (int i = 0; i < 2; ++i) {
            run.posted.clear();
            ASSERT_TRUE(run.Ends(run.link.SendAllTitles(), OP_SEND_GROUP));
        }
        EXPECT_EQ(SentTexts(run), Texts{"new"});
        EXPECT_EQ(run.Title(1, 5), "typed");
    });
}

TEST(SendAll, TakesRangesFromAnywhere) {
    RunConnected([](LinkHarness& run) {
        run.Edit(999, 0, "new");
        DisplayRanges wild;
        wild.discFrom = wild.albumFrom = wild.trackFrom = -5;
        wild.discTo = wild.albumTo = wild.trackTo = 2'000'000'000;
        run.link.SetDisplayRanges(wild);
        ASSERT_TRUE(run.Ends(run.link.SendAllTitles(), OP_SEND_GROUP));
        EXPECT_FALSE(run.store.IsEdited(999, 0));
    });
}

TEST(Operations, EndWithoutAStore) {
    RunLink([](LinkHarness& run) {
        run.link.SetTitleStore(nullptr);
        ASSERT_TRUE(run.ConnectQuietly());
        const Texts maps = {"50100300000000000000", "50100301000000000000"};
        EXPECT_TRUE(run.Ends(run.link.GetAllTitles(), OP_GET_ALL));
        EXPECT_EQ(run.FramesSinceConnect(), After(kStatusCheck, maps));
        EXPECT_TRUE(run.Ends(run.link.GetOneGroup(1), OP_GET_GROUP));
        EXPECT_TRUE(run.Ends(run.link.GetGroupTracks(1), OP_GET_TRACKS));
        const std::size_t before = run.FramesSinceConnect().size();
        EXPECT_TRUE(run.Ends(run.link.SendAllTitles(), OP_SEND_GROUP));
        EXPECT_EQ(From(before, run.FramesSinceConnect()), After(kStatusCheck, maps));
        EXPECT_EQ(run.Results(), 4U);
    });
}

TEST(Sending, KeepsWithinReachWhatIsEditedWhileTheTitlesAreForgotten) {
    RunConnected([](LinkHarness& run) {
        run.Edit(1, 0, "own");
        run.Edit(1, 1, "track");
        run.unit.Answer(MapQuery(kMapDiscs, 0), {""});
        ASSERT_TRUE(run.link.SendGroup(1));
        ASSERT_TRUE(run.WaitUntil([&] { return run.LastFrame() == "50100300000000000000"; }, 20000));
        run.store.EditTitle(1, 1, "typed since");
        run.unit.Line().Send(UnitMap({1}));
        ASSERT_TRUE(run.WaitForResult(OP_SEND_GROUP));
        EXPECT_TRUE(run.store.IsEdited(1, 0) && run.store.IsEdited(1, 1));
        EXPECT_EQ(run.Title(1, 1), "typed since");
    });
}

}  // namespace
