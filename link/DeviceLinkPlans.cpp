// What an operation reads, writes and forgets: the planners that ask the store. All under queueLock.
#include <algorithm>
#include <cstring>

#include "DeviceLink.h"
#include "TitleStore.h"

// The groups of a plan, each kind by its own numbers; a kind that takes no part has its last before its first.
struct DeviceLink::Bounds {
    GroupId firstDisc = 1;
    GroupId lastDisc = 0;
    GroupId firstAlbum = 1;
    GroupId lastAlbum = 0;
};

DeviceLink::Bounds DeviceLink::BoundsOf(GroupId group) const {
    Bounds bounds;
    const bool discs = operationRanges.discFrom != 0 || operationRanges.discTo != 0;
    const bool albums = operationRanges.albumFrom != 0 || operationRanges.albumTo != 0;
    if (discs && (group == 0 || !IsAlbum(group))) {
        bounds.firstDisc = std::max(operationRanges.discFrom, 1);
        bounds.lastDisc = operationRanges.discTo;
    }
    if (albums && (group == 0 || IsAlbum(group))) {
        bounds.firstAlbum = std::max(operationRanges.albumFrom, 1);
        bounds.lastAlbum = operationRanges.albumTo;
    }
    if (group != 0) {
        const GroupId number = IsAlbum(group) ? AlbumNumber(group) : group;
        GroupId& first = IsAlbum(group) ? bounds.firstAlbum : bounds.firstDisc;
        GroupId& last = IsAlbum(group) ? bounds.lastAlbum : bounds.lastDisc;
        first = std::max(first, number);
        last = std::min(last, number);
    }
    return bounds;
}

// False if the ring is full.
bool DeviceLink::AddToPlan(const LinkRequest& request) {
    assert(queueLock.IsHeldByThisThread());
    if (planCount >= kRingSize) {
        return false;
    }
    ring[(ringIndex + planCount) % kRingSize] = request;
    ++planCount;
    return true;
}

// Plans a TitleRead for each title of the group, 0 for all, that the store does not know: track -1 for all, 0 for the
// group's own title. A Disc is read from the range's first track and without its own title, an Album always with it. True if
// something was planned.
bool DeviceLink::PlanReads(GroupId group, TrackNo track) {
    planCut = false;
    if (group < 0 || group > kGroups || track < -1 || track > kTracks || titleStore == nullptr) {
        return false;
    }
    const bool tracksOff = Holds(Condition::kTracksOff);
    TrackNo first = track;
    TrackNo last =
        track > 0 && (tracksOff || track < operationRanges.trackFrom || track > operationRanges.trackTo) ? 0 : track;
    TrackNo firstOfDisc = first;
    if (track == -1) {
        first = 0;
        last = operationRanges.trackTo;
        firstOfDisc = tracksOff ? 1 : operationRanges.trackFrom;
    }
    const Bounds bounds = BoundsOf(group);
    for (GroupId disc = bounds.firstDisc; disc <= bounds.lastDisc && !planCut; ++disc) {
        planCut = !PlanGroupReads(kKindDisc, static_cast<std::uint32_t>(disc), firstOfDisc, last);
    }
    for (GroupId album = bounds.firstAlbum; album <= bounds.lastAlbum && !planCut; ++album) {
        planCut = !PlanGroupReads(kKindAlbum, static_cast<std::uint32_t>(album), first, last);
    }
    return planCount > 0;
}

// False if the ring is full.
bool DeviceLink::PlanGroupReads(std::uint32_t kind, std::uint32_t number, TrackNo first, TrackNo last) {
    const auto own = static_cast<GroupId>(number);
    const GroupId group = kind == kKindAlbum ? AlbumGroup(own) : own;
    for (TrackNo track = first; track <= last; ++track) {
        if (!titleStore->IsKnown(group, track) &&
            !AddToPlan({LinkRequest::kTitleRead, kind, number, static_cast<std::uint32_t>(track)})) {
            return false;
        }
    }
    return true;
}

// Plans a TitleWrite for each edited title that has not gone out in this operation with its present text, behind one
// TitleRead for each group. An Album's tracks are never written. What does not fit is planned when the ring is through. True
// if something is to be written.
bool DeviceLink::PlanWrites(GroupId group) {
    if (group < 0 || group > kGroups || titleStore == nullptr) {
        return false;
    }
    const Bounds bounds = BoundsOf(group);
    bool fits = true;
    for (GroupId disc = bounds.firstDisc; disc <= bounds.lastDisc && fits; ++disc) {
        fits = PlanGroupWrites(kKindDisc, static_cast<std::uint32_t>(disc));
    }
    for (GroupId album = bounds.firstAlbum; album <= bounds.lastAlbum && fits; ++album) {
        fits = PlanGroupWrites(kKindAlbum, static_cast<std::uint32_t>(album));
    }
    return planCount > 0;
}

// False if the ring is full.
bool DeviceLink::PlanGroupWrites(std::uint32_t kind, std::uint32_t number) {
    const auto own = static_cast<GroupId>(number);
    const GroupId group = kind == kKindAlbum ? AlbumGroup(own) : own;
    const std::uint32_t candidate = planCount;
    if (!AddToPlan({LinkRequest::kTitleRead, kind, number, 0})) {
        return false;
    }
    const auto addWrite = [&](TrackNo track) {
        return !MustSend(group, track) ||
               AddToPlan({LinkRequest::kTitleWrite, kind, number, static_cast<std::uint32_t>(track)});
    };
    bool fits = addWrite(0);
    if (kind == kKindDisc && !Holds(Condition::kTracksOff)) {
        for (TrackNo track = std::max(operationRanges.trackFrom, 1); track <= operationRanges.trackTo && fits; ++track) {
            fits = addWrite(track);
        }
    }
    if (planCount == candidate + 1) {
        ring[(ringIndex + candidate) % kRingSize] = {};
        planCount = candidate;
    }
    return fits;
}

bool DeviceLink::MustSend(GroupId group, TrackNo track) const {
    if (!titleStore->IsEdited(group, track)) {
        return false;
    }
    const char* sentText = sent.Find(operationNumber, group, track);
    char text[kTitleSize];
    return sentText == nullptr || !titleStore->GetTitle(group, track, text) || std::strcmp(text, sentText) != 0;
}

// What has gone out with its present text becomes unknown, so that it is read back and the store holds what the unit holds.
void DeviceLink::ForgetSentTitles(GroupId group) {
    if (group < 0 || group > kGroups || titleStore == nullptr) {
        return;
    }
    const Bounds bounds = BoundsOf(group);
    bool trackForgotten = false;
    for (GroupId disc = bounds.firstDisc; disc <= bounds.lastDisc; ++disc) {
        trackForgotten = ForgetDisc(disc) || trackForgotten;
    }
    if (trackForgotten) {
        DropAlbumTracksInRange();
    }
    for (GroupId album = bounds.firstAlbum; album <= bounds.lastAlbum; ++album) {
        ForgetTitle(AlbumGroup(album), 0);
    }
}

// True if the title was forgotten.
bool DeviceLink::ForgetTitle(GroupId group, TrackNo track) {
    const char* sentText = sent.Find(operationNumber, group, track);
    return sentText != nullptr && titleStore->ForgetSent(group, track, sentText) != 0;
}

// True if a track was forgotten. The tracks go first, since they can be reached only while their Disc's own title is known;
// for the same reason that title stays as long as a track is edited, be it outside the range.
bool DeviceLink::ForgetDisc(GroupId disc) {
    bool trackForgotten = false;
    bool editStays = false;
    if (!Holds(Condition::kTracksOff)) {
        for (TrackNo track = operationRanges.trackTo; track >= std::max(operationRanges.trackFrom, 1); --track) {
            trackForgotten = ForgetTitle(disc, track) || trackForgotten;
        }
    }
    for (TrackNo track = 1; track <= kTracks && !editStays; ++track) {
        editStays = titleStore->IsEdited(disc, track) != 0;
    }
    if (!editStays) {
        ForgetTitle(disc, 0);
    }
    return trackForgotten;
}

// The unit's Albums are made of Disc tracks, so their track titles may have changed with them.
void DeviceLink::DropAlbumTracksInRange() {
    if (Holds(Condition::kAlbumsOff)) {
        return;
    }
    for (GroupId album = operationRanges.albumFrom; album <= operationRanges.albumTo; ++album) {
        if (titleStore->IsKnown(AlbumGroup(album), 0)) {
            titleStore->DropAlbumTracks(AlbumGroup(album));
        }
    }
}
