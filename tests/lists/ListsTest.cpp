// The rows of both lists: what they say, which are there, and which is selected after a refill.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "Harness.h"
#include "ListsHost.h"
#include "MessageLog.h"
#include "PaneRequests.h"

TEST(ListsTest, RowsSayWhatTheStoreHolds) {
    ListsHost host;
    host.AddDisc(2, 3);
    host.store.StoreReceived(2, 2, nullptr);
    host.store.EditTitle(2, 3, "&&a &");
    host.store.StoreReceived(5, 0, "");
    host.store.StoreReceived(6, 0, nullptr);
    host.store.StoreReceived(999, 0, "&&&&&&&&&&&&&&&&&&&&&&&&&&&&&&&&");
    host.AddAlbum(1, 1);
    host.AddAlbum(999, 0);
    ASSERT_TRUE(host.Refill(2));
    EXPECT_EQ(RowsOf(host.Groups()),
              "Dsc|2|Disc 2\nDsc|5|\nDsc|999|" + std::string(64, '&') + "\nAlb|1|Album 1\nAlb|999|Album 999\n")
        << "blanks are a title, none is no row";
    EXPECT_EQ(RowsOf(host.Tracks()), "Tr|1|Disc 2, Track 1\nTr|3|&&&&a &&\n");
    EXPECT_EQ(host.groupList.FindGroupRow(5), 1);
    EXPECT_EQ(host.groupList.FindGroupRow(AlbumGroup(999)), 4);
    EXPECT_EQ(host.groupList.FindGroupRow(6), -1);
    EXPECT_EQ(host.groupList.FindGroupRow(0), -1);
    EXPECT_EQ(host.trackList.FindTrackRow(2, 3), 1);
    EXPECT_EQ(host.trackList.FindTrackRow(2, 2), -1);
    EXPECT_EQ(host.trackList.FindTrackRow(3, 3), -1);
    GroupId group = 0;
    TrackNo track = 0;
    EXPECT_TRUE(host.trackList.GetSelectedIds(&group, &track) == 1 && group == 2 && track == 1);
}

TEST(ListsTest, ARefillKeepsTheGroupWhereverItsRowIs) {
    ListsHost host;
    for (const int disc : {10, 20, 30}) {
        host.AddDisc(disc, 2);
    }
    ASSERT_TRUE(host.Refill(30));
    host.AddDisc(5, 1);
    ASSERT_TRUE(host.Refill(30));
    EXPECT_EQ(SelectedRowOf(host.Groups()), 3);
    EXPECT_EQ(host.groupList.SelectedRow(), 3);
    EXPECT_EQ(RowsOf(host.Tracks()), "Tr|1|Disc 30, Track 1\nTr|2|Disc 30, Track 2\n");

    // A group that is gone leaves the first row selected, and the tracks follow.
    host.store.ClearGroup(30);
    ASSERT_TRUE(host.Refill(30));
    EXPECT_EQ(SelectedRowOf(host.Groups()), 0);
    EXPECT_EQ(RowsOf(host.Tracks()), "Tr|1|Disc 5, Track 1\n");

    host.store.ResetAll();
    ASSERT_TRUE(host.Refill(5));
    EXPECT_EQ(RowsOf(host.Groups()), "");
    EXPECT_EQ(host.groupList.SelectedRow(), 0);
    EXPECT_EQ(host.groupList.GetSelectedIds(nullptr, nullptr), 0);
    EXPECT_EQ(host.groupList.BeginEdit(), 0);
}

TEST(ListsTest, RangesChooseTheRows) {
    ListsHost host;
    for (int number = 1; number <= 5; ++number) {
        host.AddDisc(number, 5);
        host.AddAlbum(number, 1);
    }
    const DisplayRanges ranges{.discFrom = 2, .discTo = 3, .albumFrom = 0, .albumTo = 0, .trackFrom = 4, .trackTo = 4};
    host.groupList.SetDisplayRanges(ranges);
    host.trackList.SetDisplayRanges(ranges);
    ASSERT_TRUE(host.Refill(5));
    EXPECT_EQ(RowsOf(host.Groups()), "Dsc|2|Disc 2\nDsc|3|Disc 3\n");
    EXPECT_EQ(RowsOf(host.Tracks()), "Tr|4|Disc 2, Track 4\n");
    host.groupList.SetDisplayRanges({.discFrom = 0, .discTo = 0, .albumFrom = 5, .albumTo = 999});
    ASSERT_TRUE(host.Refill(2));
    EXPECT_EQ(RowsOf(host.Groups()), "Alb|5|Album 5\n");
}

TEST(ListsTest, TheTracksFollowTheSelectedGroup) {
    ListsHost host;
    host.AddDisc(1, 2);
    host.AddDisc(2, 1);
    host.AddDisc(3, 0);
    ASSERT_TRUE(host.Refill(1));
    host.requests.clear();
    SetFocus(host.Groups());
    PressKeys({VK_DOWN});
    ASSERT_TRUE(PumpUntil([&] { return RowsOf(host.Tracks()) == "Tr|1|Disc 2, Track 1\n"; }));
    ASSERT_TRUE(PumpAll());
    ASSERT_FALSE(host.requests.empty());
    EXPECT_TRUE(host.requests[0].code == UC_GROUP_CHANGED && host.requests[0].argument == 2);

    PressKeys({VK_UP});
    ASSERT_TRUE(PumpUntil([&] { return RowsOf(host.Tracks()) == "Tr|1|Disc 1, Track 1\nTr|2|Disc 1, Track 2\n"; }) &&
                host.Settle());

    // The selection in the tracks is nobody else's business, and stays where it is as long as the group does.
    host.trackList.SelectRow(1);
    host.trackList.OnSelChange();
    ASSERT_TRUE(host.Refill(1));
    EXPECT_EQ(SelectedRowOf(host.Tracks()), 1);
    EXPECT_EQ(host.groupList.SelectedRow(), 0);
    SetFocus(host.Groups());
    PressKeys({VK_END});
    ASSERT_TRUE(PumpUntil([&] { return host.groupList.SelectedRow() == 2; }) && host.Settle());
    EXPECT_EQ(RowsOf(host.Tracks()), "");
    EXPECT_EQ(host.requests.back().code, UC_MESSAGE_LINE) << "also where there is nothing to show";
}

// --- Refills that are overtaken

TEST(RefillTest, ARequestOvertakesTheOneBefore) {
    ListsHost host;
    for (int disc = 1; disc <= 200; ++disc) {
        host.AddDisc(disc, 99);
    }
    ASSERT_TRUE(host.Refill(1));
    host.groupList.RequestRefill(150);
    ASSERT_TRUE(host.WhileFilling(host.Groups(), 50, [&] {
        host.store.ClearGroup(1);
        host.groupList.RequestRefill(120);
    }));
    ASSERT_TRUE(host.Settle());
    EXPECT_EQ(SendMessageA(host.Groups(), LB_GETCOUNT, 0, 0), 199);
    EXPECT_EQ(host.groupList.SelectedRow(), 118);
    EXPECT_EQ(RowsOf(host.Tracks()).substr(0, 14), "Tr|1|Disc 120,");

    // Another group leaves no rows of the old, and a list that can be painted though no refill follows.
    host.fillsTracks = false;
    host.trackList.RequestRefill(120);
    ASSERT_TRUE(host.WhileFilling(host.Tracks(), 50, [&] {
        host.groupList.SelectRow(1);
        host.groupList.OnSelChange();
    }));
    ASSERT_TRUE(host.Settle());
    EXPECT_EQ(RowsOf(host.Tracks()), "");
    EXPECT_TRUE(IsWindowVisible(host.Tracks()));
    host.trackList.RequestRefill(3);
    ASSERT_TRUE(host.Settle());
    EXPECT_EQ(RowsOf(host.Tracks()).substr(0, 12), "Tr|1|Disc 3,");
}

TEST(RefillTest, StoreAndWindowMayGoInTheMiddle) {
    auto store = std::make_unique<TitleStore>();
    ListsHost host;
    for (int disc = 1; disc <= 500; ++disc) {
        AddDisc(*store, disc, 0);
        host.AddDisc(disc, 0);
    }
    host.groupList.SetStore(store.get());
    host.groupList.RequestRefill(1);
    ASSERT_TRUE(host.WhileFilling(host.Groups(), 50, [] {}));
    host.groupList.SetStore(nullptr);
    store.reset();
    EXPECT_FALSE(host.groupList.IsRefilling());
    host.groupList.RequestRefill(1);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(host.groupList.ApplyTitle(0, "x"), 0);
    EXPECT_EQ(host.groupList.BeginEdit(), 0);

    host.groupList.SetStore(&host.store);
    host.groupList.RequestRefill(1);
    ASSERT_TRUE(host.WhileFilling(host.Groups(), 50, [] {}));
    DestroyWindow(host.Main());
}
