// The link with its real threads, in this process, against a main unit.
#include "UnitSession.h"

#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <string>
#include <thread>

#include "EndToEndTest.h"

namespace {

using library::GroupKind;

class UnitSessionTest : public EndToEndTest {
protected:
    static std::string TitleOf(const TitleStore& store, GroupId group, TrackNo track) {
        char text[kTitleSize];
        return store.GetTitle(group, track, text) != 0 ? text : "(none)";
    }

    // Whether every title of the store is the unit's own; how many there are goes to `count`.
    testing::AssertionResult HoldsOnlyTitlesOf(const library::UnitLibrary& library, const TitleStore& store, int& count) {
        count = 0;
        for (GroupId group = 1; group <= kGroups; ++group) {
            for (TrackNo track = 0; track <= kTracks; ++track) {
                char text[kTitleSize];
                if (store.GetTitle(group, track, text) == 0) {
                    continue;
                }
                ++count;
                const bool album = IsAlbum(group);
                const std::string* title =
                    library.Title({album ? GroupKind::kAlbum : GroupKind::kDisc, album ? AlbumNumber(group) : group, track});
                if (title == nullptr || *title != text) {
                    return testing::AssertionFailure() << "group " << group << " track " << track << ": " << text;
                }
            }
        }
        return testing::AssertionSuccess();
    }
};

TEST_F(UnitSessionTest, ReadsEditsSendsAndReadsBack) {
    const UnitProcess unit = StartUnit();
    UnitSession session;
    TitleStore& store = session.Store();
    ASSERT_EQ(session.Connect(nullptr), Outcome::kDone);
    EXPECT_STREQ(session.Port(), "COM1");
    session.Limit(0, -1);
    ASSERT_EQ(session.ReadGroupTitles(), Outcome::kDone);
    for (const GroupId group : {1, 2, AlbumGroup(7)}) {
        ASSERT_EQ(session.ReadGroup(group), Outcome::kDone);
    }
    int count = 0;
    EXPECT_TRUE(HoldsOnlyTitlesOf(Saved(), store, count));
    EXPECT_EQ(count, 8);

    library::UnitLibrary expected = Saved();
    expected.SetTitle({GroupKind::kDisc, 1, 0}, "Harbour in April");
    expected.SetTitle({GroupKind::kDisc, 1, 2}, "Spring Tide");
    store.EditTitle(1, 0, "Harbour in April");
    store.EditTitle(1, 2, "Spring Tide");
    store.EditTitle(2, 0, "Not to be sent");
    session.Limit(1, -1);
    ASSERT_EQ(session.SendGroup(1), Outcome::kDone);
    EXPECT_TRUE(Saved() == expected);
    EXPECT_EQ(unit.CountRequests("TitleData"), 2);
    EXPECT_EQ(store.IsEdited(1, 0) + store.IsEdited(1, 2), 0);
    EXPECT_EQ(store.IsEdited(2, 0), 1);

    store.ResetAll();
    ASSERT_EQ(session.ReadGroup(1), Outcome::kDone);
    EXPECT_TRUE(HoldsOnlyTitlesOf(expected, store, count));
    EXPECT_EQ(count, 3);
    EXPECT_EQ(unit.Complaints(), "");
}

TEST_F(UnitSessionTest, StopsInTheMiddleAndLeavesThePortToTheNext) {
    AddDiscs(100, 160);
    const UnitProcess unit = StartUnit();
    auto session = std::make_unique<UnitSession>();
    ASSERT_EQ(session->Connect("COM1"), Outcome::kDone);
    UnitSession next;
    EXPECT_EQ(next.Connect("COM1"), Outcome::kPortTaken);

    session->Limit(0, -1);
    std::thread stopper([&] {
        EXPECT_TRUE(WaitUntil([&] { return unit.CountRequests("TitleRead") >= 4; }));
        session->RequestStop();
    });
    EXPECT_EQ(session->ReadGroupTitles(), Outcome::kStopped);
    stopper.join();
    int count = 0;
    EXPECT_TRUE(HoldsOnlyTitlesOf(Saved(), session->Store(), count));
    EXPECT_GE(count, 2);
    EXPECT_LT(count, 60);
    session.reset();

    ASSERT_EQ(next.Connect("COM1"), Outcome::kDone);
    next.Limit(2, -1);
    EXPECT_EQ(next.ReadGroup(2), Outcome::kDone);
    EXPECT_TRUE(HoldsOnlyTitlesOf(Saved(), next.Store(), count));
    EXPECT_EQ(count, 2);
    EXPECT_EQ(unit.Complaints(), "");
}

TEST_F(UnitSessionTest, KeepsAnEditWhenTheUnitGoesAndSendsItToTheNext) {
    // At the speed of a real line.
    auto unit = std::make_unique<UnitProcess>(std::vector<std::string>{"--link", "COM1", "--library", libraryFile},
                                              NextOutputs("mainunit"));
    UnitSession session;
    TitleStore& store = session.Store();
    ASSERT_EQ(session.Connect("COM1"), Outcome::kDone);
    session.Limit(2, 0);
    ASSERT_EQ(session.ReadGroup(2), Outcome::kDone);
    store.EditTitle(2, 0, "Kept");
    unit->Signal(SIGKILL);
    EXPECT_EQ(session.SendGroup(2), Outcome::kTimeOut);
    unit.reset();
    LinkPort("COM1", "/dev/pts/none");
    EXPECT_EQ(session.Connect("COM1"), Outcome::kNoPort);
    EXPECT_EQ(session.ReadGroup(2), Outcome::kNoUnit) << "nothing can be asked without a connection";
    EXPECT_EQ(store.IsEdited(2, 0), 1);

    const UnitProcess another = StartUnit();
    ASSERT_EQ(session.Connect("COM1"), Outcome::kDone);
    EXPECT_EQ(session.SendGroup(2), Outcome::kDone);
    EXPECT_EQ(*Saved().Title({GroupKind::kDisc, 2, 0}), "Kept");
    EXPECT_EQ(store.IsEdited(2, 0), 0);
}

// Replies that get lost, come in pieces or come twice cost time and nothing else.
TEST_F(UnitSessionTest, GetsThroughFaultsThatLeaveTheRepliesWhole) {
    constexpr int kMostTries = 6;
    const UnitProcess unit =
        StartUnit({"--seed", "7", "--faults", "lost=0.1,split=0.4,split-gap-ms=10,doubled=0.4,doubled-delay-ms=20"});
    UnitSession session;
    TitleStore& store = session.Store();
    const auto getsThrough = [&](auto operation) {
        for (int i = 0; i < kMostTries; ++i) {
            if (operation() == Outcome::kDone) {
                return true;
            }
        }
        return false;
    };
    ASSERT_TRUE(getsThrough([&] { return session.Connect("COM1"); }));
    session.Limit(0, -1);
    ASSERT_TRUE(getsThrough([&] { return session.ReadGroupTitles(); }));
    ASSERT_TRUE(getsThrough([&] { return session.ReadGroup(1); }));
    int count = 0;
    EXPECT_TRUE(HoldsOnlyTitlesOf(Saved(), store, count));
    EXPECT_EQ(count, 6);

    store.EditTitle(1, 1, "Ebb");
    store.EditTitle(1, 2, "Flow");
    session.Limit(1, -1);
    ASSERT_TRUE(getsThrough([&] { return session.SendGroup(1); }));
    const library::UnitLibrary saved = Saved();
    EXPECT_EQ(*saved.Title({GroupKind::kDisc, 1, 1}), "Ebb");
    EXPECT_EQ(*saved.Title({GroupKind::kDisc, 1, 2}), "Flow");
    EXPECT_EQ(*saved.Title({GroupKind::kDisc, 1, 0}), "Harbour in March");
    EXPECT_EQ(unit.Complaints(), "");
}

}  // namespace
