// What the link does with a frame: reading it as the reply to the current request, and how the queue and the step react.
// Everything here runs on the reader thread.
#include <cstring>

#include "DeviceLink.h"
#include "Frames.h"
#include "TitlePlanner.h"
#include "TitleStore.h"

namespace {

constexpr DWORD kPauseBeforeDataMs = 120;

// The data of a reply to the probe.
constexpr std::uint32_t kProbeAccepted = 0x10002;
constexpr std::uint32_t kProbeRefused = 0x20002;

LinkRequest::Kind RequestOf(FrameKind reply) {
    switch (reply) {
        case FrameKind::kModel: return LinkRequest::kModelQuery;
        case FrameKind::kStatus: return LinkRequest::kStatusQuery;
        case FrameKind::kCommand: return LinkRequest::kUnitCommand;
        case FrameKind::kMap: return LinkRequest::kMapQuery;
        case FrameKind::kTitleRead: return LinkRequest::kTitleRead;
        case FrameKind::kTitleWrite: return LinkRequest::kTitleWrite;
        default: return LinkRequest::kFree;
    }
}

GroupId GroupOf(const LinkRequest& title) {
    const auto number = static_cast<GroupId>(title.arg2);
    return title.arg1 == kKindAlbum ? AlbumGroup(number) : number;
}

std::uint32_t DataOf(const LinkRequest& title) {
    return PackTitle(GroupOf(title), static_cast<TrackNo>(title.arg3));
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
    result = {};
    Outbox outbox;
    bool titleDue = false;
    std::uint32_t number = 0;
    {
        LockGuard lock(queueLock);
        handlingFrame = true;
        number = queueNumber;
        const bool accepted = ReadFrame(kind, frame);
        titleDue = accepted && kind == FrameKind::kTitleWrite;
        if (!titleDue) {
            React(accepted, outbox);
        }
    }
    if (titleDue) {
        const bool written = SendTitleData();
        LockGuard lock(queueLock);
        // A queue that was filled anew meanwhile waits for replies of its own.
        if (number == queueNumber) {
            React(written, outbox);
        }
    }
    if (outbox.message != 0) {
        Post(outbox.message, outbox.wParam, outbox.lParam);
    }
    if (outbox.pauseMs != 0) {
        Sleep(outbox.pauseMs);
    }
    LockGuard lock(queueLock);
    handlingFrame = false;
}

// --- Reading

// True if the frame is accepted as the reply to the current request.
bool DeviceLink::ReadFrame(FrameKind kind, std::string_view frame) {
    if (kind == FrameKind::kVoid) {
        return false;
    }
    result.operation = operation;
    const bool answers = requestSent && RequestOf(kind) == ring.Current().kind;
    if (kind == FrameKind::kTitleWrite && IsRefusal(frame) && writesOpen) {
        TakeRefusal(answers);
        return false;
    }
    if (!answers || replyAccepted) {
        result.status = ST_FOREIGN;
        return false;
    }
    const LinkRequest& request = ring.Current();
    result.posted = 1;
    switch (kind) {
        case FrameKind::kModel: return ReadModelReply(frame);
        case FrameKind::kStatus:
            result.code = RC_STATUS;
            result.data = request.arg1 << 16 | HexAt(frame, kStatusValueOffset, 2);
            return true;
        case FrameKind::kCommand: result.code = RC_COMMAND; return true;
        case FrameKind::kMap: return ReadMapReply(request, frame);
        case FrameKind::kTitleRead: return ReadTitleReply(request, frame);
        default: return ReadWriteReply(request, frame);
    }
}

bool DeviceLink::ReadModelReply(std::string_view frame) {
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

bool DeviceLink::ReadMapReply(const LinkRequest& query, std::string_view frame) {
    result.posted = 0;
    result.code = RC_MAP;
    if (query.arg1 == kMapTracks && query.arg2 == kProbeCode) {
        result.data = IsRefusal(frame) ? kProbeRefused : kProbeAccepted;
        return true;
    }
    // The unit answers in the order in which it was asked: no write can be refused any more.
    writesOpen = false;
    if (IsSend() && step == LinkStep::kMappingDiscs && !writeRefused && titleStore != nullptr) {
        TitlePlanner(*titleStore, ranges).ForgetSentTitles(operationGroup);
    }
    if (IsRefusal(frame)) {
        nextRing.Clear();
        return false;
    }
    result.data = query.arg1;
    if (HexAt(frame, kBlockLengthOffset, 2) != kMapReplyLength) {
        result.status = ST_BAD_REPLY;
        return false;
    }
    nextRing.Clear();
    if (titleStore != nullptr) {
        TitlePlanner(*titleStore, ranges).PlanMapped(query, frame, nextRing);
    }
    return true;
}

bool DeviceLink::ReadTitleReply(const LinkRequest& read, std::string_view frame) {
    result.code = RC_TITLE_READ;
    result.data = DataOf(read);
    result.status = ring.Next().IsFree() ? ST_LAST : ST_OK;
    // A read in front of writes is not stored: the store holds what is to be written.
    if (titleStore == nullptr || step == LinkStep::kWriting) {
        return true;
    }
    char text[kTitleSize];
    const bool hasTitle = HexAt(frame, kBlockLengthOffset, 2) == kTitleReplyLength && !IsRefusal(frame);
    if (hasTitle) {
        DecodeTitle(frame, text);
    }
    const auto track = static_cast<TrackNo>(read.arg3);
    assert(!titleStore->IsEdited(GroupOf(read), track));
    titleStore->StoreReceived(GroupOf(read), track, hasTitle ? text : nullptr);
    return true;
}

bool DeviceLink::ReadWriteReply(const LinkRequest& write, std::string_view frame) {
    result.code = RC_TITLE_WRITE;
    result.data = DataOf(write);
    if (HexAt(frame, kBlockLengthOffset, 2) != kWriteReplyLength) {
        result.status = ST_BAD_REPLY;
        return false;
    }
    result.status = ring.Next().IsFree() ? ST_LAST : ST_OK;
    return true;
}

// The unit may answer each TitleData as well. Such an answer passes for the acceptance of the next write, whose refusal then
// comes late. It may be for any of the latest writes, so all titles of this send stay edited. The write on the line is
// repeated.
void DeviceLink::TakeRefusal(bool onLine) {
    result.posted = 1;
    result.code = RC_TITLE_WRITE;
    result.status = ST_BAD_REPLY;
    writeRefused = true;
    if (onLine) {
        result.data = DataOf(ring.Current());
        replyAccepted = false;
        stepBusy = true;
    }
}

// Sends the present text of the title whose write was accepted. False if the store has none.
bool DeviceLink::SendTitleData() {
    const auto title = static_cast<LPARAM>(result.data);
    char text[kTitleSize] = {};
    std::uint32_t number = 0;
    {
        LockGuard lock(queueLock);
        number = queueNumber;
        if (titleStore == nullptr || !titleStore->GetTitle(GroupOfTitle(title), TrackOfTitle(title), text)) {
            result.status = ST_NO_TITLE;
            return false;
        }
    }
    char frame[kFrameSize] = {};
    EncodeTitleData(text, frame);
    assert(!queueLock.IsHeldByThisThread());
    Sleep(kPauseBeforeDataMs);
    DWORD written = 0;
    const auto length = static_cast<DWORD>(std::strlen(frame));
    const bool done = Write(frame, length, written) && written == length;
    LockGuard lock(queueLock);
    if (!done) {
        // As if the reply had not come.
        result.posted = 0;
        result.status = ST_FOREIGN;
        return false;
    }
    if (titleStore != nullptr) {
        titleStore->NoteSent(GroupOfTitle(title), TrackOfTitle(title), text, number == queueNumber);
    }
    return true;
}

// --- Reactions. Under queueLock.

void DeviceLink::React(bool accepted, Outbox& outbox) {
    replyAccepted = replyAccepted || accepted;
    if (sending && (result.status == ST_OK || result.status == ST_LAST)) {
        switch (result.code) {
            case RC_MODEL:
                outbox = {LM_RESULT, PackResult(OP_CONNECT, RC_MODEL), static_cast<LPARAM>(result.data), 0};
                stepBusy = false;
                break;
            case RC_STATUS: ReactToStatus(outbox); break;
            case RC_COMMAND: ring.Next() = kAskReady; break;
            case RC_MAP: ReactToMap(); break;
            case RC_TITLE_READ:
            case RC_TITLE_WRITE: ReactToTitle(outbox); break;
            default: operationActive = 0; break;  // a void frame
        }
    }
    // The driver may be filling the queue when a late refusal comes.
    const bool failed = result.status != ST_OK && result.status != ST_LAST;
    if (failed && result.posted != 0 && (sending || operationActive)) {
        outbox = {LM_RESULT, PackResult(result.operation, result.code, result.status), static_cast<LPARAM>(result.data), 0};
    }
}

void DeviceLink::ReactToStatus(Outbox& outbox) {
    // Without anybody to be told, the unit is asked on.
    const StatusVerdict verdict = statusCheck.Judge(result.data >> 16, result.data & 0xFFFF, paneWindow != nullptr);
    result.status = verdict.status;
    if (verdict.ready) {
        stepBusy = false;
    } else if (verdict.status == ST_NOT_STOPPED || verdict.status == ST_MENU_MODE) {
        operationActive = 0;
    }
    ring.Next() = verdict.next;
    outbox.pauseMs = verdict.pauseMs;
}

void DeviceLink::ReactToMap() {
    if (step != LinkStep::kProbing) {
        stepBusy = false;
    } else if (result.data == kProbeAccepted) {
        nextRing.Clear();
        stepBusy = false;
    } else if (result.data == kProbeRefused) {
        ring.Next() = {LinkRequest::kMapQuery, kMapTracks, GroupCode(operationGroup), 0};
    } else if (result.data == kMapTracks) {
        if (nextRing.Current().IsFree()) {
            step = LinkStep::kReadingGroup;
        }
        stepBusy = false;
    }
}

// One title of a queue laid out in advance: the last one ends the step, each other is told.
void DeviceLink::ReactToTitle(Outbox& outbox) {
    if (result.code == RC_TITLE_READ && step == LinkStep::kWriting) {
        return;
    }
    if (result.status == ST_LAST) {
        stepBusy = false;
    } else {
        outbox = {LM_PROGRESS, PackProgress(result.operation, step), static_cast<LPARAM>(result.data), 0};
    }
}
