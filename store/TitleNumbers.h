// How titles are numbered, and how long one may be.
#pragma once

#include <cstddef>
#include <cstdint>

// 1 to 999 a Disc, 1000 to 1998 an Album; 0 stands for all groups and -1 for none where a caller has a use for them.
using GroupId = std::int32_t;
// 0 the group's own title, 1 to 99 a Track; -1 stands for all of them where a caller has a use for that.
using TrackNo = std::int32_t;

inline constexpr GroupId kDiscs = 999;
inline constexpr GroupId kAlbums = 999;
inline constexpr GroupId kGroups = kDiscs + kAlbums;
inline constexpr TrackNo kTracks = 99;

// A title is 0 to 32 bytes of printable ASCII in a buffer that has room for its terminator.
inline constexpr std::size_t kTitleLength = 32;
inline constexpr std::size_t kTitleSize = kTitleLength + 1;

// The kind of a group follows from its number alone. For a GroupId of 1 to 1998.
constexpr bool IsAlbum(GroupId group) {
    return group > kDiscs;
}
// The Album's own number, 1 to 999, of a GroupId for which IsAlbum holds.
constexpr GroupId AlbumNumber(GroupId group) {
    return group - kDiscs;
}
// The GroupId of Album 1 to 999.
constexpr GroupId AlbumGroup(GroupId number) {
    return number + kDiscs;
}

// What is shown and fetched, first and last included. Albums go by their own numbers here. A pair of 0 and 0 leaves the
// whole kind out.
struct DisplayRanges {
    std::int32_t discFrom = 1;
    std::int32_t discTo = kDiscs;
    std::int32_t albumFrom = 1;
    std::int32_t albumTo = kAlbums;
    std::int32_t trackFrom = 1;
    std::int32_t trackTo = kTracks;
};
