// The link's two workers: the sender, which works the queue of requests, and the driver, which takes an operation from step
// to step and fills the queue.
#include <cstring>

#include "DeviceLink.h"
#include "Frames.h"
#include "TitlePlanner.h"
#include "TitleStore.h"

namespace {

constexpr DWORD kPauseBeforeFrameMs = 120;
constexpr std::int32_t kRepeatTicks = 100;   // a request goes out at each multiple of this
constexpr std::int32_t kTimeOutTicks = 200;  // and has failed at this

// The reply code that a step waits for.
BYTE CodeForStep(LinkStep step) {
    switch (step) {
        case LinkStep::kFindingModel: return RC_MODEL;
        case LinkStep::kCheckingStatus: return RC_STATUS;
        case LinkStep::kMappingDiscs:
        case LinkStep::kProbing: return RC_MAP;
        case LinkStep::kReadingDiscs:
        case LinkStep::kReadingAlbums:
        case LinkStep::kReadingGroup: return RC_TITLE_READ;
        case LinkStep::kWriting: return RC_TITLE_WRITE;
        default: return 0;  // for the map of the Albums, too
    }
}

void EncodeRequest(const LinkRequest& request, char* out) {
    const auto first = static_cast<std::uint8_t>(request.arg1);
    switch (request.kind) {
        case LinkRequest::kModelQuery: EncodeModelQuery(out); break;
        case LinkRequest::kStatusQuery: EncodeStatusQuery(first, out); break;
        case LinkRequest::kUnitCommand: EncodeUnitCommand(first, out); break;
        case LinkRequest::kMapQuery: EncodeMapQuery(first, static_cast<std::uint16_t>(request.arg2), out); break;
        case LinkRequest::kTitleRead: EncodeTitleRead(first, request.arg2, request.arg3, out); break;
        case LinkRequest::kTitleWrite: EncodeTitleWrite(first, request.arg2, request.arg3, out); break;
        default: assert(false); break;
    }
}

}  // namespace

void DeviceLink::ResetQueue() {
    ring.Clear();
    ClearRequest();
    tick = -1;
    sending = false;
    ++queueNumber;
}

// The current request goes out at the sender's next tick.
void DeviceLink::ArmQueue() {
    ClearRequest();
    tick = -1;
    sending = true;
    ++queueNumber;
}

void DeviceLink::ClearRequest() {
    assert(queueLock.IsHeldByThisThread());
    requestSent = false;
    replyAccepted = false;
}

void DeviceLink::BeginOperation(WORD newOperation, GroupId group) {
    operation = newOperation;
    operationGroup = group;
    step = LinkStep::kNone;
    stepBusy = false;
    writesOpen = false;
    writeRefused = false;
    statusCheck.Begin();
    if (IsSend() && titleStore != nullptr) {
        titleStore->ClearSent();
    }
    timerPeriod.Hold();
    operationActive = 1;
}

// --- Sender

void DeviceLink::SenderTick() {
    std::uint32_t number = 0;
    WPARAM timedOut = 0;
    {
        LockGuard lock(queueLock);
        if (!sending || handlingFrame) {
            return;
        }
        assert(!stopping);
        ++tick;
        if (replyAccepted) {
            tick = 0;
            ClearRequest();
            ring.Advance();
            if (ring.Current().IsFree()) {
                ResetQueue();
                return;
            }
        }
        if (tick % kRepeatTicks != 0) {
            return;
        }
        if (tick >= kTimeOutTicks) {
            timedOut = TimeOut();
        } else {
            sendPending = true;
            number = queueNumber;
        }
    }
    if (timedOut == 0) {
        SendCurrent(number);
        return;
    }
    Post(LM_RESULT, timedOut, 0);
    LockGuard lock(queueLock);
    --posting;
}

// Ends the operation and returns the message that the caller has to post. A later driver tick finds operation 0 and closes
// it.
WPARAM DeviceLink::TimeOut() {
    const WPARAM message = PackResult(operation, CodeForStep(step), ST_TIMEOUT);
    BeginOperation(0, 0);
    ResetQueue();
    ++posting;
    return message;
}

void DeviceLink::SendCurrent(std::uint32_t number) {
    assert(!queueLock.IsHeldByThisThread());
    Sleep(kPauseBeforeFrameMs);
    char frame[kFrameSize] = {};
    {
        LockGuard lock(queueLock);
        // A queue that was filled anew meanwhile sends nothing of the old one, and a request that has got its reply is not
        // repeated.
        if (sending && !handlingFrame && !replyAccepted && number == queueNumber) {
            EncodeRequest(ring.Current(), frame);
            requestSent = true;
        }
    }
    if (frame[0] != '\0') {
        DWORD written = 0;
        Write(frame, static_cast<DWORD>(std::strlen(frame)), written);
    }
    LockGuard lock(queueLock);
    sendPending = false;
}

// --- Driver

// The queue is filled before the message is posted and armed after it, so that the pane hears of a step before its first
// frame goes out.
void DeviceLink::DriverTick() {
    const StepRow* row = nullptr;
    std::uint32_t number = 0;
    {
        LockGuard lock(queueLock);
        ReleaseIdleTimerPeriod();
        if (!operationActive || stepBusy || handlingFrame) {
            return;
        }
        ResetQueue();
        // What did not fit into the ring, or was edited or undone since it went out, is written in another round.
        if (step == LinkStep::kWriting && FillStep(Action::kWriteTitles)) {
            stepBusy = true;
            ArmQueue();
            return;
        }
        row = FindStepRow(operation, step, ranges, !nextRing.Current().IsFree());
        if (row == nullptr) {
            operationActive = 0;
            return;
        }
        step = row->newStep;
        stepBusy = FillStep(row->action);
        if (row->action == Action::kEnd) {
            operationActive = 0;
        }
        number = queueNumber;
        ++posting;
    }
    if (row->message != 0) {
        Post(row->action == Action::kEnd ? LM_RESULT : LM_PROGRESS, row->message, 0);
    }
    LockGuard lock(queueLock);
    --posting;
    // A stop that began meanwhile is not to be undone.
    if (stepBusy && operationActive && number == queueNumber) {
        ArmQueue();
        if (row->action == Action::kAskModel) {
            // A port without a main unit is to cost two seconds, not four: the query goes out at once and is not repeated.
            tick = kRepeatTicks - 1;
        }
    }
}

// True if there is something to wait for.
bool DeviceLink::FillStep(Action action) {
    assert(queueLock.IsHeldByThisThread());
    switch (action) {
        case Action::kNothing:
        case Action::kEnd: break;
        case Action::kAskModel: ring.Add({LinkRequest::kModelQuery, 0, 0, 0}); break;
        case Action::kAskStatus: ring.Add({LinkRequest::kStatusQuery, kStatusMenu, 0, 0}); break;
        case Action::kMapDiscs: ring.Add({LinkRequest::kMapQuery, kMapDiscs, 0, 0}); break;
        case Action::kMapAlbums: ring.Add({LinkRequest::kMapQuery, kMapAlbums, 0, 0}); break;
        case Action::kProbe: ring.Add({LinkRequest::kMapQuery, kMapTracks, kProbeCode, 0}); break;
        case Action::kReadMapped: ring = nextRing; break;
        case Action::kReadGroupTitle:
        case Action::kReadGroupTracks:
            if (titleStore != nullptr) {
                const TrackNo track = action == Action::kReadGroupTracks ? -1 : 0;
                TitlePlanner(*titleStore, ranges).PlanReads(operationGroup, track, ring);
            }
            break;
        case Action::kWriteTitles:
            if (titleStore != nullptr) {
                TitlePlanner(*titleStore, ranges).PlanWrites(operationGroup, ring);
                writesOpen = writesOpen || !ring.Current().IsFree();
            }
            break;
    }
    return !ring.Current().IsFree();
}
