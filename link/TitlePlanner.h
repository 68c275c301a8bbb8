// What an operation reads, writes and forgets, as the store and the ranges tell it.
#pragma once

#include <string_view>

#include "RequestRing.h"
#include "TitleNumbers.h"

class TitleStore;

// Made for one plan, under the lock that guards the ranges. A group of 0 stands for all; one outside its range plans
// nothing. What does not fit into the ring is left out.
class TitlePlanner {
public:
    TitlePlanner(TitleStore& store, const DisplayRanges& ranges) : store(store), ranges(ranges) {}

    // A read of each title that the store does not know: with track 0 the groups' own titles, with track -1 the tracks in
    // the range. An Album's own title is then read as well, a Disc's is not.
    void PlanReads(GroupId group, TrackNo track, RequestRing& ring) const;

    // A read of each group or track that a MapReply tells to be there, that lies in the range and that the store does not
    // know. `query` is the MapQuery that was answered.
    void PlanMapped(const LinkRequest& query, std::string_view frame, RequestRing& ring) const;

    // A write of each edited title that this send has not put on the line with its present text, behind one read for each
    // group. An Album's tracks are never written.
    void PlanWrites(GroupId group, RequestRing& ring) const;

    // What has gone out with its present text becomes unknown, so that it is read back and the store holds what the unit
    // holds.
    void ForgetSentTitles(GroupId group) const;

private:
    struct Span {
        GroupId first;
        GroupId last;
    };

    Span GroupsInRange(bool albums, GroupId group) const;
    bool PlanGroupWrites(GroupId group, TrackNo lastTrack, RequestRing& ring) const;
    bool ForgetDisc(GroupId disc) const;

    TitleStore& store;
    const DisplayRanges& ranges;
};
