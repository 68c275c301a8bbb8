// What the link does with a frame: reading it against the frame last sent. Everything here runs on the reader thread.
#include <cstring>

#include "DeviceLink.h"
#include "Fields.h"
#include "LinkOutbox.h"
#include "TitleStore.h"

namespace {

constexpr DWORD kPauseBeforeDataMs = 120;

// How often in a row the unit may answer with a waiting value before the operation gives up.
constexpr std::int32_t kTrayLimit = 10;
constexpr std::int32_t kNoDataLimit = 50;
constexpr std::int32_t kBusyLimit = 100;

constexpr std::uint32_t kMapGroupItems = 1000;
constexpr std::uint32_t kMapTrackItems = 104;

// The statuses that leave the operation open and idle until it is stopped.
bool IsWaitedOut(std::uint8_t status) {
    return status == ST_BUSY || status == ST_NO_DATA || status == ST_TRAY_OPEN;
}

}  // namespace

void DeviceLink::OnReceive(char*& chunk, DWORD length) {
    cutter.Feed(std::string_view(chunk, length));
}

void DeviceLink::FrameArrived(void* link, std::string_view frame) {
    static_cast<DeviceLink*>(link)->HandleFrame(frame);
}

void DeviceLink::HandleFrame(std::string_view frame) {
    const FrameKind kind = ClassifyFrame(frame);
    if (kind == FrameKind::kIgnored) {
        return;
    }
    std::uint32_t number = 0;
    {
        LockGuard lock(queueLock);
        handlingFrame = true;
        number = queueNumber;
    }
    result = {};
    const bool accepted = ReadFrame(kind, frame);

    Outbox outbox;
    bool tellFailure = false;
    {
        LockGuard lock(queueLock);
        // A queue that was filled anew meanwhile waits for replies of its own, and nothing answers a request that is not out
        // yet. Only a void frame asks for no question.
        const bool current = number == queueNumber;
        const bool asked = txFrame[0] != '\0';
        if (accepted && current && asked) {
            // Short replies are taken for an answer to whatever was asked; the title that was asked for may still come.
            const bool own = kind == FrameKind::kTitleRead || kind == FrameKind::kTitleWrite;
            usedUp = !own && (usedUp || !replyAccepted);
            replyAccepted = true;
        }
        if (sending && current && (asked || kind == FrameKind::kVoid)) {
            React(outbox);
            tellFailure = result.posted != 0 && result.status != ST_OK && result.status != ST_LAST;
            if (tellFailure && IsWaitedOut(result.status)) {
                // A copy of the reply may have asked once more already.
                NextEntry() = {};
                stepFailed = true;
            }
        }
    }
    if (outbox.message != 0) {
        Post(outbox.message, outbox.wParam, outbox.lParam);
    }
    if (tellFailure) {
        Post(LM_RESULT, result.operation | static_cast<WPARAM>(result.code) << 16 | static_cast<WPARAM>(result.status) << 24,
             static_cast<LPARAM>(result.data));
    }
    assert(!queueLock.IsHeldByThisThread());
    if (outbox.pauseMs != 0) {
        Sleep(outbox.pauseMs);
    }
    LockGuard lock(queueLock);
    handlingFrame = false;
}

// True if the frame is accepted as the reply to the current request.
bool DeviceLink::ReadFrame(FrameKind kind, std::string_view frame) {
    if (kind == FrameKind::kVoid) {
        return false;
    }
    if (kind == FrameKind::kTitleWrite) {
        return ReadWriteReply(frame);
    }
    LockGuard lock(queueLock);
    result.operation = static_cast<std::uint16_t>(operation);
    switch (kind) {
        case FrameKind::kModel: return ReadModelReply(frame);
        case FrameKind::kStatus: return ReadStatusReply(frame);
        case FrameKind::kCommand: return ReadCommandReply();
        case FrameKind::kMap: return ReadMapReply(frame);
        case FrameKind::kTitleRead: return ReadTitleReply(frame);
        default: return false;
    }
}

bool DeviceLink::ReadModelReply(std::string_view frame) {
    result.posted = 1;
    result.code = RC_MODEL;
    if (!ModelSumMatches(frame)) {
        result.status = ST_BAD_CHECKSUM;
        return false;
    }
    if (const std::uint16_t number = ModelNumber(frame); number != 0) {
        model = number;
    }
    result.data = model;
    return true;
}

bool DeviceLink::ReadStatusReply(std::string_view frame) {
    result.posted = 1;
    result.code = RC_STATUS;
    const std::uint32_t value = HexAt(frame, 5, 2);
    result.data = HexAt(SentFrame(), 4, 2) << 16 | value;
    // A copy that comes while nothing is asked is no answer.
    if (!SentFrame().empty()) {
        CountStatusRepeats(value);
    }
    return true;
}

void DeviceLink::CountStatusRepeats(std::uint32_t value) {
    if (value == 0x02) {
        return;
    }
    if (value != 0x00 && value != 0x46 && value != 0xFE && value != 0xFF) {
        statusRepeats = 0;
        return;
    }
    ++statusRepeats;
    // Without anybody to be told, the unit is asked on.
    if (paneWindow == nullptr) {
        return;
    }
    if (value == 0x00 && statusRepeats > kTrayLimit) {
        result.status = ST_TRAY_OPEN;
    } else if (value == 0x46 && statusRepeats > kNoDataLimit) {
        result.status = ST_NO_DATA;
    } else if (value >= 0xFE && statusRepeats > kBusyLimit) {
        result.status = ST_BUSY;
    }
}

bool DeviceLink::ReadCommandReply() {
    result.posted = 1;
    result.code = RC_COMMAND;
    result.data = HexAt(SentFrame(), 4, 2);
    return true;
}

bool DeviceLink::ReadMapReply(std::string_view frame) {
    result.code = RC_MAP;
    const std::uint32_t mapKind = HexAt(SentFrame(), 7, 2);
    std::uint32_t groupCode = kProbeCode;
    if (mapKind != kMapTracks || HexAt(SentFrame(), 9, 4) != kProbeCode) {
        groupCode = HexAt(SentFrame(), 9, 1) << 12 | DecAt(SentFrame(), 10, 3);
    }
    const LinkRequest& current = ring[ringIndex];
    if (!IsMapQuery(SentFrame()) || current.kind != LinkRequest::kMapQuery || (current.arg1 & 0xFF) != mapKind ||
        (current.arg2 & 0xFFFF) != groupCode) {
        return Foreign();
    }
    if (mapKind == kMapTracks && groupCode == kProbeCode) {
        result.data = IsRefusal(frame) ? 0x20002 : 0x10002;
        return true;
    }
    if (IsRefusal(frame)) {
        nextRing.fill({});
        return false;
    }
    result.data = mapKind;
    if (HexAt(frame, kBlockLengthOffset, 2) != kMapReplyLength) {
        result.status = ST_BAD_REPLY;
        return false;
    }
    nextRing.fill({});
    if (titleStore != nullptr) {
        if (mapKind == kMapTracks) {
            PlanMapTracks(groupCode, frame);
        } else {
            PlanMapGroups(mapKind, frame);
        }
    }
    result.posted = 1;
    return true;
}

// Plans a read for each group that the unit has, that lies in the range and that the store does not know.
void DeviceLink::PlanMapGroups(std::uint32_t mapKind, std::string_view frame) {
    const bool albums = mapKind == kMapAlbums;
    const TrackNo from = albums ? operationRanges.albumFrom : operationRanges.discFrom;
    const TrackNo to = albums ? operationRanges.albumTo : operationRanges.discTo;
    std::size_t count = 0;
    for (std::uint32_t item = 1; item <= kMapGroupItems; ++item) {
        const auto number = static_cast<GroupId>(item);
        const GroupId group = albums ? AlbumGroup(number) : number;
        if (number >= from && number <= to && MapBit(frame, item) && !titleStore->IsKnown(group, 0)) {
            nextRing[count++] = {LinkRequest::kTitleRead, mapKind, item, 0};
        }
    }
}

void DeviceLink::PlanMapTracks(std::uint32_t groupCode, std::string_view frame) {
    const bool album = (groupCode & 0xE000) != 0;
    const std::uint32_t number = groupCode & 0xFFF;
    const GroupId group = album ? AlbumGroup(static_cast<GroupId>(number)) : static_cast<GroupId>(number);
    std::size_t count = 0;
    for (std::uint32_t item = 1; item <= kMapTrackItems; ++item) {
        const auto track = static_cast<TrackNo>(item);
        if (track >= operationRanges.trackFrom && track <= operationRanges.trackTo && MapBit(frame, item) &&
            !titleStore->IsKnown(group, track)) {
            nextRing[count++] = {LinkRequest::kTitleRead, album ? kKindAlbum : kKindDisc, number, item};
        }
    }
}

bool DeviceLink::ReadTitleReply(std::string_view frame) {
    result.posted = 1;
    result.code = RC_TITLE_READ;
    GroupId group = 0;
    TrackNo track = 0;
    // The title of a read that was given up, or that another reply has used up, must not be filed under the number of the
    // next one. If it never comes, the next one's title is dropped in its place and comes with the repeat.
    const bool owed = readOwed;
    readOwed = false;
    if (owed || !IsTitleRead(SentFrame()) || !AddressedTitle(group, track)) {
        return Foreign();
    }
    char text[kTitleSize];
    const bool hasTitle = HexAt(frame, kBlockLengthOffset, 2) == kTitleReplyLength && !IsRefusal(frame);
    if (hasTitle) {
        DecodeTitle(frame, text);
    }
    // At step 10 the read only stands in front of a write, and the store holds what is to be written.
    if (titleStore != nullptr && step != 10) {
        titleStore->StoreFetched(group, track, hasTitle ? text : nullptr);
        gotOn = true;
    }
    if (NextEntry().IsFree()) {
        result.status = ST_LAST;
    }
    return true;
}

bool DeviceLink::ReadWriteReply(std::string_view frame) {
    GroupId group = 0;
    TrackNo track = 0;
    {
        LockGuard lock(queueLock);
        result.operation = static_cast<std::uint16_t>(operation);
        result.posted = 1;
        result.code = RC_TITLE_WRITE;
        // As with a read: the acceptance of another write must not let this one's text go out, which the unit might refuse,
        // or file under the other number.
        const bool owed = writeOwed;
        writeOwed = false;
        if (owed || !IsTitleWrite(SentFrame()) || !AddressedTitle(group, track)) {
            return Foreign();
        }
        if (HexAt(frame, kBlockLengthOffset, 2) != kWriteReplyLength || IsRefusal(frame)) {
            result.status = ST_BAD_REPLY;
            return false;
        }
        // One TitleData for each TitleWrite: an answer to the TitleData itself, or a doubled reply, must not bring another.
        if (!dataOwed) {
            return Foreign();
        }
    }
    if (!SendTitleData(group, track)) {
        result.status = ST_NO_TITLE;
        return false;
    }
    LockGuard lock(queueLock);
    result.status = NextEntry().IsFree() ? ST_LAST : ST_OK;
    return true;
}

// Sends the title's present text and notes it as sent. False if the store has none.
bool DeviceLink::SendTitleData(GroupId group, TrackNo track) {
    char frame[kFrameSize] = {};
    char text[kTitleSize] = {};
    std::uint32_t number = 0;
    {
        LockGuard lock(queueLock);
        if (titleStore == nullptr || !EncodeTitleData(*titleStore, group, track, frame, text)) {
            return false;
        }
        dataOwed = false;
        number = operationNumber;
    }
    assert(!queueLock.IsHeldByThisThread());
    Sleep(kPauseBeforeDataMs);
    DWORD written = 0;
    const auto length = static_cast<DWORD>(std::strlen(frame));
    const bool done = Write(frame, length, written) && written == length;
    LockGuard lock(queueLock);
    if (done && number == operationNumber) {
        sent.Record(number, group, track, text);
        gotOn = true;
    }
    return true;
}

// The title that the frame last sent asks for. False if its group kind is none.
bool DeviceLink::AddressedTitle(GroupId& group, TrackNo& track) {
    const std::uint32_t kind = HexAt(SentFrame(), 7, 1) / 2;
    if (kind != kKindDisc && kind != kKindAlbum) {
        return false;
    }
    const auto number = static_cast<GroupId>(DecAt(SentFrame(), 8, 3));
    group = kind == kKindAlbum ? AlbumGroup(number) : number;
    track = static_cast<TrackNo>(DecAt(SentFrame(), 11, 2));
    result.data = static_cast<std::uint32_t>(group) << 16 | static_cast<std::uint32_t>(track);
    return true;
}

// The reply does not fit the frame last sent: the pane is not told, and the request stays current.
bool DeviceLink::Foreign() {
    result.posted = 0;
    result.status = ST_FOREIGN;
    result.data = 0;
    return false;
}
