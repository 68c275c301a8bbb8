#include "OperationSteps.h"

#include <span>

namespace {

using enum LinkStep;
using enum Condition;
using enum Action;

// The operation that a message names is not always the one that runs: every reading operation checks the status as
// OP_GET_ALL, and both sending operations report as OP_SEND_GROUP.
constexpr WPARAM kCheckToRead = PackProgress(OP_GET_ALL, kCheckingStatus);

constexpr StepRow kConnect[] = {
    {kNone, kAlways, PackProgress(OP_CONNECT, kFindingModel), kFindingModel, kAskModel},
    {kFindingModel, kAlways, PackProgress(OP_CONNECT, kCheckingStatus), kCheckingStatus, kAskStatus},
    {kCheckingStatus, kAlways, PackResult(OP_CONNECT), kCheckingStatus, kEnd},
};

constexpr StepRow kGetAll[] = {
    {kNone, kAlways, kCheckToRead, kCheckingStatus, kAskStatus},
    {kCheckingStatus, kDiscsOff, 0, kReadingDiscs, kNothing},
    {kCheckingStatus, kAlways, PackProgress(OP_GET_ALL, kMappingDiscs), kMappingDiscs, kMapDiscs},
    {kMappingDiscs, kNoneMapped, 0, kReadingDiscs, kNothing},
    {kMappingDiscs, kAlways, PackProgress(OP_GET_ALL, kReadingDiscs), kReadingDiscs, kReadMapped},
    {kReadingDiscs, kAlbumsOff, 0, kReadingAlbums, kNothing},
    {kReadingDiscs, kAlways, PackProgress(OP_GET_ALL, kMappingAlbums), kMappingAlbums, kMapAlbums},
    {kMappingAlbums, kNoneMapped, 0, kReadingAlbums, kNothing},
    {kMappingAlbums, kAlways, PackProgress(OP_GET_ALL, kReadingAlbums), kReadingAlbums, kReadMapped},
    {kReadingAlbums, kAlways, PackResult(OP_GET_ALL), kReadingAlbums, kEnd},
};

constexpr StepRow kGetGroup[] = {
    {kNone, kAlways, kCheckToRead, kCheckingStatus, kAskStatus},
    {kCheckingStatus, kTracksOff, 0, kReadingGroup, kNothing},
    {kCheckingStatus, kAlways, PackProgress(OP_GET_GROUP, kReadingGroup), kReadingGroup, kReadGroupTitle},
    {kReadingGroup, kAlways, PackResult(OP_GET_GROUP), kReadingGroup, kEnd},
};

constexpr StepRow kGetTracks[] = {
    {kNone, kTracksOff, 0, kReadingGroup, kNothing},
    {kNone, kAlways, kCheckToRead, kCheckingStatus, kAskStatus},
    {kCheckingStatus, kAlways, PackProgress(OP_GET_TRACKS, kReadingGroup), kProbing, kProbe},
    {kProbing, kNoneMapped, 0, kReadingGroup, kReadGroupTracks},
    {kProbing, kAlways, 0, kReadingGroup, kReadMapped},
    {kReadingGroup, kAlways, PackResult(OP_GET_TRACKS), kReadingGroup, kEnd},
};

constexpr StepRow kSend[] = {
    {kNone, kAlways, PackProgress(OP_SEND_GROUP, kCheckingStatus), kCheckingStatus, kAskStatus},
    {kCheckingStatus, kTracksOff, 0, kReadingAlbums, kNothing},
    {kCheckingStatus, kAlways, PackProgress(OP_SEND_GROUP, kWriting), kWriting, kWriteTitles},
    {kWriting, kDiscsOff, 0, kReadingDiscs, kNothing},
    {kWriting, kAlways, PackProgress(OP_SEND_GROUP, kMappingDiscs), kMappingDiscs, kMapDiscs},
    {kMappingDiscs, kNoneMapped, 0, kReadingDiscs, kNothing},
    {kMappingDiscs, kAlways, PackProgress(OP_SEND_GROUP, kReadingDiscs), kReadingDiscs, kReadMapped},
    {kReadingDiscs, kAlbumsOff, 0, kReadingAlbums, kNothing},
    {kReadingDiscs, kAlways, PackProgress(OP_SEND_GROUP, kMappingAlbums), kMappingAlbums, kMapAlbums},
    {kMappingAlbums, kNoneMapped, 0, kReadingAlbums, kNothing},
    {kMappingAlbums, kAlways, PackProgress(OP_SEND_GROUP, kReadingAlbums), kReadingAlbums, kReadMapped},
    {kReadingAlbums, kAlways, PackResult(OP_SEND_GROUP), kReadingAlbums, kEnd},
};

std::span<const StepRow> RowsOf(std::uint32_t operation) {
    switch (operation) {
        case OP_CONNECT: return kConnect;
        case OP_GET_ALL: return kGetAll;
        case OP_GET_GROUP: return kGetGroup;
        case OP_GET_TRACKS: return kGetTracks;
        case OP_SEND_ALL:
        case OP_SEND_GROUP: return kSend;
        default: return {};
    }
}

bool Holds(Condition condition, const DisplayRanges& ranges, bool anyMapped) {
    switch (condition) {
        case kAlways: return true;
        case kDiscsOff: return ranges.discFrom == 0 && ranges.discTo == 0;
        case kAlbumsOff: return ranges.albumFrom == 0 && ranges.albumTo == 0;
        case kTracksOff: return ranges.trackFrom == 0 && ranges.trackTo == 0;
        case kNoneMapped: return !anyMapped;
    }
    return false;
}

}  // namespace

const StepRow* FindStepRow(std::uint32_t operation, LinkStep step, const DisplayRanges& ranges, bool anyMapped) {
    for (const StepRow& row : RowsOf(operation)) {
        if (row.step == step && Holds(row.condition, ranges, anyMapped)) {
            return &row;
        }
    }
    return nullptr;
}
