// What counts as sent: every title that can be written has a place of its own, for one operation.
#include "SentTitles.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string Name(GroupId group, TrackNo track) {
    return std::to_string(group) + "/" + std::to_string(track);
}

std::string Found(const SentTitles& sent, std::uint32_t operation, GroupId group, TrackNo track) {
    const char* text = sent.Find(operation, group, track);
    return text != nullptr ? text : "none";
}

TEST(SentTitles, KeepsEachTitleApartFromEachOther) {
    SentTitles sent;
    ASSERT_TRUE(sent.IsReady());
    for (GroupId group = -1; group <= kGroups + 2; ++group) {
        for (TrackNo track = -1; track <= kTracks + 1; ++track) {
            sent.Record(7, group, track, Name(group, track).c_str());
        }
    }
    for (GroupId group = -1; group <= kGroups + 2; ++group) {
        for (TrackNo track = -1; track <= kTracks + 1; ++track) {
            const bool isDisc = group >= 1 && group <= kDiscs;
            const bool isAlbum = group > kDiscs && group <= kGroups;
            const bool hasPlace = (isDisc && track >= 0 && track <= kTracks) || (isAlbum && track == 0);
            ASSERT_EQ(Found(sent, 7, group, track), hasPlace ? Name(group, track) : "none") << Name(group, track);
        }
    }
}

TEST(SentTitles, BelongToTheOperationThatSentThemLast) {
    SentTitles sent;
    ASSERT_TRUE(sent.IsReady());
    EXPECT_EQ(Found(sent, 7, 1, 0), "none");
    sent.Record(7, 1, 0, "a longer text");
    EXPECT_EQ(Found(sent, 8, 1, 0), "none");
    sent.Record(8, 1, 0, "short");
    EXPECT_EQ(Found(sent, 8, 1, 0), "short");
    EXPECT_EQ(Found(sent, 7, 1, 0), "none");
    sent.Record(8, 1, 0, std::string(kTitleLength + 5, 'x').c_str());
    EXPECT_EQ(Found(sent, 8, 1, 0), std::string(kTitleLength, 'x'));
}

}  // namespace
