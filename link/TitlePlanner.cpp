#include "TitlePlanner.h"

#include <algorithm>

#include "Frames.h"
#include "TitleStore.h"

namespace {

// The bitmap of a MapReply has bits for more than there can be.
constexpr std::uint32_t kMapGroupItems = 1000;
constexpr std::uint32_t kMapTrackItems = 104;

LinkRequest RequestFor(LinkRequest::Kind kind, GroupId group, TrackNo track) {
    const bool album = IsAlbum(group);
    return {kind, album ? kKindAlbum : kKindDisc, static_cast<std::uint32_t>(album ? AlbumNumber(group) : group),
            static_cast<std::uint32_t>(track)};
}

}  // namespace

// The groups of one kind that take part. None if the last lies before the first.
TitlePlanner::Span TitlePlanner::GroupsInRange(bool albums, GroupId group) const {
    const GroupId offset = albums ? kDiscs : 0;
    Span span = {offset + std::max(albums ? ranges.albumFrom : ranges.discFrom, 1),
                 offset + (albums ? ranges.albumTo : ranges.discTo)};
    if (group != 0) {
        span.first = std::max(span.first, group);
        span.last = std::min(span.last, group);
    }
    return span;
}

void TitlePlanner::PlanReads(GroupId group, TrackNo track, RequestRing& ring) const {
    for (const bool albums : {false, true}) {
        const TrackNo first = track == -1 && !albums ? std::max(ranges.trackFrom, 1) : 0;
        const TrackNo last = track == -1 ? ranges.trackTo : 0;
        const Span groups = GroupsInRange(albums, group);
        for (GroupId each = groups.first; each <= groups.last; ++each) {
            for (TrackNo number = first; number <= last; ++number) {
                if (!store.IsKnown(each, number) && !ring.Add(RequestFor(LinkRequest::kTitleRead, each, number))) {
                    return;
                }
            }
        }
    }
}

void TitlePlanner::PlanMapped(const LinkRequest& query, std::string_view frame, RequestRing& ring) const {
    const bool tracks = query.arg1 == kMapTracks;
    const bool albums = tracks ? (query.arg2 & kAlbumOfCode) != 0 : query.arg1 == kMapAlbums;
    const auto number = static_cast<GroupId>(query.arg2 & kNumberOfCode);
    const GroupId own = albums ? AlbumGroup(number) : number;
    const Span groups = GroupsInRange(albums, 0);
    for (std::uint32_t item = 1; item <= (tracks ? kMapTrackItems : kMapGroupItems); ++item) {
        const auto place = static_cast<std::int32_t>(item);
        const GroupId group = tracks ? own : (albums ? AlbumGroup(place) : place);
        const TrackNo track = tracks ? place : 0;
        const bool inRange =
            tracks ? track >= ranges.trackFrom && track <= ranges.trackTo : group >= groups.first && group <= groups.last;
        if (inRange && MapBit(frame, item) && !store.IsKnown(group, track)) {
            ring.Add(RequestFor(LinkRequest::kTitleRead, group, track));
        }
    }
}

void TitlePlanner::PlanWrites(GroupId group, RequestRing& ring) const {
    for (const bool albums : {false, true}) {
        const Span groups = GroupsInRange(albums, group);
        for (GroupId each = groups.first; each <= groups.last; ++each) {
            if (!PlanGroupWrites(each, albums ? 0 : ranges.trackTo, ring)) {
                return;
            }
        }
    }
}

// False if the ring is full.
bool TitlePlanner::PlanGroupWrites(GroupId group, TrackNo lastTrack, RequestRing& ring) const {
    if (!store.IsKnown(group, 0)) {
        return true;  // its tracks cannot be reached; they wait until the group is read again
    }
    bool opened = false;
    for (TrackNo track = 0; track <= lastTrack; ++track) {
        if ((track > 0 && track < ranges.trackFrom) || !store.IsEdited(group, track) || store.IsSent(group, track)) {
            continue;
        }
        // The read goes in with the write that it opens for, or the queue would end with it.
        if (!opened && (ring.Room() < 2 || !ring.Add(RequestFor(LinkRequest::kTitleRead, group, 0)))) {
            return false;
        }
        opened = true;
        if (!ring.Add(RequestFor(LinkRequest::kTitleWrite, group, track))) {
            return false;
        }
    }
    return true;
}

void TitlePlanner::ForgetSentTitles(GroupId group) const {
    const Span discs = GroupsInRange(false, group);
    bool trackForgotten = false;
    for (GroupId disc = discs.first; disc <= discs.last; ++disc) {
        trackForgotten = ForgetDisc(disc) || trackForgotten;
    }
    if (trackForgotten) {
        // The unit's Albums are made of Disc tracks, so their track titles may have changed with them.
        const Span all = GroupsInRange(true, 0);
        for (GroupId album = all.first; album <= all.last; ++album) {
            if (store.IsKnown(album, 0)) {
                store.DropAlbumTracks(album);
            }
        }
    }
    const Span albums = GroupsInRange(true, group);
    for (GroupId album = albums.first; album <= albums.last; ++album) {
        store.ForgetSent(album, 0);
    }
}

// True if a track was forgotten. The tracks go first, since they can be reached only while their Disc's own title is known;
// for the same reason that title stays if a track was edited since it went out.
bool TitlePlanner::ForgetDisc(GroupId disc) const {
    bool trackForgotten = false;
    bool editStays = false;
    for (TrackNo track = ranges.trackTo; track >= std::max(ranges.trackFrom, 1); --track) {
        trackForgotten = store.ForgetSent(disc, track) != 0 || trackForgotten;
        editStays = editStays || store.IsEdited(disc, track) != 0;
    }
    if (!editStays) {
        store.ForgetSent(disc, 0);
    }
    return trackForgotten;
}
