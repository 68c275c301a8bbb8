// The borders of the store: numbers, the track table, the undo ring, the link's own operations.
#include "TitleStore.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace {

bool refuseMemory = false;

}  // namespace

// The store's track tables are the only arrays that are asked for in this form.
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return refuseMemory ? nullptr : ::operator new[](size);
}

namespace {

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

class TitleStoreTest : public testing::Test {
protected:
    // The text, or "<none>" if GetTitle gives 0 and has left the buffer as it was.
    std::string Text(GroupId group, TrackNo track) {
        char text[kTitleSize] = "<none>";
        const int found = store.GetTitle(group, track, text);
        EXPECT_TRUE(found == 1 || std::strcmp(text, "<none>") == 0);
        return text;
    }

    void EditTimes(GroupId group, TrackNo track, int times) {
        for (int i = 1; i <= times; ++i) {
            ASSERT_EQ(store.EditTitle(group, track, ("edit " + std::to_string(i)).c_str()), 1);
        }
    }

    // What the latest edits were made on, as "group/track text" of what came back, latest first.
    std::vector<std::string> UndoAll() {
        std::vector<std::string> undone;
        GroupId group = 0;
        TrackNo track = 0;
        char text[kTitleSize];
        while (store.UndoEdit(&group, &track, text)) {
            undone.push_back(std::to_string(group) + "/" + std::to_string(track) + " " + text);
        }
        return undone;
    }

    TitleStore store;
};

TEST_F(TitleStoreTest, NumbersThatNameNothingAreRefusedEverywhere) {
    // With every slot and table there, a number that is off by one would hit a neighbour.
    for (GroupId group = 1; group <= kGroups; ++group) {
        ASSERT_EQ(store.StoreReceived(group, 0, "group"), 1);
        ASSERT_EQ(store.StoreReceived(group, kTracks, "track"), 1);
    }
    const std::pair<GroupId, TrackNo> nothing[] = {
        {0, 0},
        {-1, 0},
        {kLowest, 0},
        {1999, 0},
        {kHighest, 0},
        {0, 1},
        {1999, 1},
        {1, 100},
        {999, 100},
        {1998, 100},
        {1998, kHighest},
        {1, 256},
        {kLowest, kLowest},
        {kHighest, kHighest},
    };
    for (const auto& [group, track] : nothing) {
        SCOPED_TRACE(testing::Message() << group << "/" << track);
        EXPECT_EQ(store.StoreReceived(group, track, "x"), 0);
        EXPECT_EQ(store.StoreReceived(group, track, nullptr), 0);
        EXPECT_EQ(store.IsKnown(group, track), 0);
        EXPECT_EQ(store.IsEdited(group, track), 0);
        EXPECT_EQ(store.IsDisc(group, track), -1);
        EXPECT_EQ(store.GetState(group, track), -1);
        EXPECT_EQ(Text(group, track), "<none>");
        EXPECT_EQ(store.EditTitle(group, track, "x"), 0);
        EXPECT_EQ(store.DeleteTitle(group, track), 0);
        EXPECT_EQ(store.NoteSent(group, track, "x"), 0);
        EXPECT_EQ(store.IsSent(group, track), 0);
        EXPECT_EQ(store.ForgetSent(group, track), 0);
    }
    for (GroupId group : {0, -1, 1999, kLowest, kHighest}) {
        EXPECT_EQ(store.GetTrackCount(group), -1);
        EXPECT_EQ(store.ClearGroup(group), 0);
        EXPECT_EQ(store.DropAlbumTracks(group), 0);
    }
    EXPECT_EQ(store.CanUndo(), 0);
    for (GroupId group = 1; group <= kGroups; ++group) {
        ASSERT_EQ(Text(group, 0), "group");
        ASSERT_EQ(Text(group, kTracks), "track");
        ASSERT_EQ(store.IsKnown(group, 1), 0);
        ASSERT_EQ(store.IsDisc(group, kTracks), group <= 999 ? 1 : 0) << group;
    }
}

TEST_F(TitleStoreTest, OverlongAndUnterminatedTextsAreCut) {
    // Exactly 32 bytes with nothing behind them, on the heap, where a sanitizer sees a read too far.
    const std::vector<char> unterminated(kTitleLength, 'u');
    const std::string full(kTitleLength, 'u');
    ASSERT_EQ(store.StoreReceived(1, 0, unterminated.data()), 1);
    EXPECT_EQ(Text(1, 0), full);
    ASSERT_EQ(store.EditTitle(1, 0, (full + "tail").c_str()), 1);
    EXPECT_EQ(store.GetState(1, 0), TS_RECEIVED);
    ASSERT_EQ(store.EditTitle(1, 0, std::string(500, 'v').c_str()), 1);
    EXPECT_EQ(Text(1, 0), std::string(kTitleLength, 'v'));
    EXPECT_EQ(UndoAll(), std::vector<std::string>{"1/0 " + full});
}

TEST_F(TitleStoreTest, RefusedMemoryIsNotStored) {
    store.StoreReceived(1, 0, "disc");
    refuseMemory = true;
    EXPECT_EQ(store.StoreReceived(1, 1, "x"), 0);
    refuseMemory = false;
    EXPECT_EQ(store.GetTrackCount(1), -1);
    EXPECT_EQ(store.GetState(1, 1), -1);
    EXPECT_EQ(store.StoreReceived(1, 1, "x"), 1);
}

TEST_F(TitleStoreTest, UndoRingKeepsTheLatestHundredEdits) {
    store.StoreReceived(1, 0, "original");
    EditTimes(1, 0, 101);
    const std::vector<std::string> undone = UndoAll();
    ASSERT_EQ(undone.size(), 100U);
    EXPECT_EQ(undone.front(), "1/0 edit 100");
    // The first edit fell out of the ring: it can neither be taken back nor forgotten.
    EXPECT_EQ(undone.back(), "1/0 edit 1");
    EXPECT_EQ(store.GetState(1, 0), TS_EDITED);
    EXPECT_EQ(store.CanUndo(), 0);
    ASSERT_EQ(store.EditTitle(1, 0, "once more"), 1);
    EXPECT_EQ(UndoAll().size(), 1U);
    EXPECT_EQ(store.GetState(1, 0), TS_EDITED);
}

TEST_F(TitleStoreTest, EditsAfterAnUndoReuseItsRoom) {
    store.StoreReceived(1, 0, "original");
    EditTimes(1, 0, 100);
    for (int i = 0; i < 50; ++i) {
        ASSERT_EQ(store.UndoEdit(nullptr, nullptr, nullptr), 1);
    }
    EditTimes(1, 0, 49);
    const std::vector<std::string> undone = UndoAll();
    ASSERT_EQ(undone.size(), 99U);
    EXPECT_EQ(undone.back(), "1/0 original");
    EXPECT_EQ(store.GetState(1, 0), TS_RECEIVED);
}

TEST_F(TitleStoreTest, EditCountSaturates) {
    for (int edits : {255, 256, 300}) {
        store.StoreReceived(1, 0, "original");
        EditTimes(1, 0, edits);
        EXPECT_EQ(UndoAll().size(), 100U);
        EXPECT_EQ(store.GetState(1, 0), TS_EDITED) << edits;
        store.ResetAll();
    }
}

TEST_F(TitleStoreTest, WhatIsForgottenLeavesTheUndo) {
    for (GroupId group : {1, 2}) {
        store.StoreReceived(group, 0, "group");
        for (TrackNo track : {1, 2, 99}) {
            store.StoreReceived(group, track, "track");
        }
    }
    store.EditTitle(1, 1, "a");
    store.EditTitle(2, 1, "b");
    store.EditTitle(1, 1, "c");
    ASSERT_EQ(store.DeleteTitle(1, 1), 1);
    EXPECT_EQ(store.IsKnown(1, 1), 0);
    EXPECT_EQ(UndoAll(), std::vector<std::string>{"2/1 track"});

    for (TrackNo track : {0, 2, 99}) {
        ASSERT_EQ(store.EditTitle(1, track, "x"), 1);
    }
    store.EditTitle(2, 99, "stays");
    ASSERT_EQ(store.ClearGroup(1), 1);
    EXPECT_EQ(UndoAll(), std::vector<std::string>{"2/99 track"});

    store.EditTitle(2, 0, "x");
    store.ResetAll();
    EXPECT_EQ(store.CanUndo(), 0);
    EXPECT_EQ(store.GetState(2, 0), TS_NONE);
    EXPECT_EQ(store.GetState(2, 1), -1);
}

TEST_F(TitleStoreTest, DropAlbumTracksLeavesDiscsAndTheAlbumsTitle) {
    for (GroupId group : {999, 1000}) {
        store.StoreReceived(group, 0, "group");
        store.StoreReceived(group, 4, "track");
    }
    store.EditTitle(1000, 0, "edited");
    store.EditTitle(1000, 4, "edited");
    EXPECT_EQ(store.DropAlbumTracks(999), 0);
    EXPECT_EQ(Text(999, 4), "track");
    EXPECT_EQ(store.DropAlbumTracks(1000), 1);
    EXPECT_EQ(store.GetState(1000, 4), -1);
    EXPECT_EQ(store.GetTrackCount(1000), -1);
    EXPECT_EQ(store.IsEdited(1000, 0), 1);
    EXPECT_EQ(UndoAll(), std::vector<std::string>{"1000/0 group"});
    EXPECT_EQ(store.DropAlbumTracks(1000), 1);
    EXPECT_EQ(store.DropAlbumTracks(1998), 1);
    store.StoreReceived(1000, 2, "new");
    EXPECT_EQ(store.GetTrackCount(1000), 2);
}

TEST_F(TitleStoreTest, OnlyWhatStandsAsItWasSentIsForgotten) {
    store.StoreReceived(1, 0, "disc");
    store.StoreReceived(1, 3, "track");
    const auto canForget = [this](TrackNo track) {
        const int sent = store.IsSent(1, track);
        return sent == store.ForgetSent(1, track) && sent == 1;
    };
    for (TrackNo track : {3, 0}) {
        store.EditTitle(1, track, "first");
        EXPECT_FALSE(canForget(track));
        EXPECT_EQ(store.NoteSent(1, track, "first"), 1);
        store.EditTitle(1, track, "second");
        EXPECT_FALSE(canForget(track)) << "typed since";
        EXPECT_EQ(store.NoteSent(1, track, "first"), 1);
        EXPECT_FALSE(canForget(track)) << "noted late";
        EXPECT_EQ(store.NoteSent(1, track, "second"), 1);
        ASSERT_EQ(store.UndoEdit(nullptr, nullptr, nullptr), 1);
        EXPECT_FALSE(canForget(track)) << "undone since";
        EXPECT_EQ(store.NoteSent(1, track, "first"), 1);
        store.ClearSent();
        EXPECT_FALSE(canForget(track)) << "of an earlier send";
        EXPECT_EQ(store.IsEdited(1, track), 1);
        EXPECT_EQ(store.NoteSent(1, track, "first"), 1);
        EXPECT_TRUE(canForget(track));
        EXPECT_EQ(store.IsKnown(1, track), 0);
    }
    EXPECT_EQ(store.CanUndo(), 0);
}

TEST_F(TitleStoreTest, AnEditThatHasGoneOutIsNeverUndoneToTheMainUnitsText) {
    store.StoreReceived(1, 0, "old");
    store.EditTitle(1, 0, "new");
    store.NoteSent(1, 0, "new");
    ASSERT_EQ(UndoAll(), std::vector<std::string>{"1/0 old"});
    EXPECT_EQ(store.GetState(1, 0), TS_EDITED);
    store.StoreReceived(1, 0, "new");
    EXPECT_EQ(store.GetState(1, 0), TS_RECEIVED);

    // It went out, and its undo was quicker than the note.
    store.EditTitle(1, 0, "newer");
    UndoAll();
    ASSERT_EQ(store.GetState(1, 0), TS_RECEIVED);
    store.NoteSent(1, 0, "newer");
    EXPECT_EQ(store.GetState(1, 0), TS_EDITED);
    EXPECT_EQ(Text(1, 0), "new");

    store.StoreReceived(1, 0, nullptr);
    EXPECT_EQ(store.NoteSent(1, 0, "late"), 0);
    EXPECT_EQ(store.GetState(1, 0), TS_NONE);
}

}  // namespace
