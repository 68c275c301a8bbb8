// The link's queue of requests and the sender that works it.
//
// All but SenderTick and SendBuiltFrame run under queueLock.
#include <algorithm>
#include <cstring>

#include "DeviceLink.h"

namespace {

constexpr DWORD kPauseBeforeFrameMs = 120;
constexpr std::int32_t kRepeatTicks = 100;   // a request goes out at each multiple of this
constexpr std::int32_t kTimeOutTicks = 200;  // and has failed at this

}  // namespace

void DeviceLink::ResetQueue() {
    assert(queueLock.IsHeldByThisThread());
    sending = false;
    txFrame[0] = '\0';
    ring.fill({});
    ringIndex = 0;
    planCount = 0;
    replyAccepted = false;
    dataOwed = false;
    usedUp = false;
    tick = -1;
    ++queueNumber;
}

void DeviceLink::ArmQueue() {
    assert(queueLock.IsHeldByThisThread() && stepBusy && !ring[ringIndex].IsFree());
    txFrame[0] = '\0';
    replyAccepted = false;
    dataOwed = false;
    usedUp = false;
    tick = -1;
    sending = true;
    ++queueNumber;
}

// Before the request leaves the line: if it has no reply of its own, that may still come.
void DeviceLink::NoteOwedReply() {
    const bool open = !replyAccepted || usedUp;
    readOwed = readOwed || (open && IsTitleRead(SentFrame()));
    writeOwed = writeOwed || (open && IsTitleWrite(SentFrame()));
}

void DeviceLink::ForgetOwedReplies() {
    readOwed = false;
    writeOwed = false;
}

void DeviceLink::AdvanceQueue() {
    NoteOwedReply();
    txFrame[0] = '\0';
    // The reply belonged to the frame that is gone: if this tick cannot send the next one, the next tick must not skip it.
    replyAccepted = false;
    dataOwed = false;
    usedUp = false;
    ring[ringIndex] = {};
    ringIndex = NextIndex(ringIndex);
}

void DeviceLink::BeginOperation(std::uint32_t newOperation, std::uint32_t group, std::uint32_t arg) {
    operation = newOperation;
    operationGroup = group;
    operationArg = arg;
    step = 0;
    stepBusy = false;
    planCut = false;
    BeginStep();
    statusRepeats = 0;
    operationRanges = ranges;
    ++operationNumber;
    HoldTimerPeriod();
    operationActive = 1;
}

void DeviceLink::BeginStep() {
    stepFailed = false;
    askedAgain = false;
    gotOn = false;
    roundsInVain = 0;
}

void DeviceLink::SenderTick() {
    char frame[kFrameSize] = {};
    std::uint32_t number = 0;
    WPARAM timedOut = 0;
    {
        LockGuard lock(queueLock);
        if (!sending || handlingFrame) {
            return;
        }
        ++tick;
        if (replyAccepted && !MoveOn()) {
            return;
        }
        if (tick % kRepeatTicks != 0) {
            return;
        }
        if (tick >= kTimeOutTicks) {
            timedOut = TimeOut();
        } else {
            EncodeRequest(ring[ringIndex], frame);
            sendPending = true;
            number = queueNumber;
        }
    }
    if (timedOut != 0) {
        Post(LM_RESULT, timedOut, 0);
        EndPosting();
    } else {
        SendBuiltFrame(frame, number);
    }
}

// Goes on to the next entry; false if the queue is through.
bool DeviceLink::MoveOn() {
    const LinkRequest answered = ring[ringIndex];
    tick = 0;
    AdvanceQueue();
    if (!ring[ringIndex].IsFree()) {
        askedAgain = false;
        return true;
    }
    assert(stepFailed || std::all_of(ring.begin(), ring.end(), [](const LinkRequest& entry) { return entry.IsFree(); }));
    QueueThrough(answered);
    return false;
}

// The last entry got its reply. If that was a stray reply of another kind, the step still waits: titles that it left out are
// planned again or stay as they were, but a question that a step depends on is put once more, and then times out.
void DeviceLink::QueueThrough(const LinkRequest& answered) {
    ResetQueue();
    if (!stepBusy || !operationActive) {
        return;
    }
    if (step == 5 || step == 7 || step == 9 || step == 10) {
        stepBusy = false;
        return;
    }
    if (stepFailed) {
        return;
    }
    ring[ringIndex] = answered;
    ArmQueue();
    if (askedAgain) {
        FailAtNextTick();
    }
    askedAgain = true;
}

void DeviceLink::FailAtNextTick() {
    tick = kTimeOutTicks - 1;
}

// Ends the operation; gives the message to post. A later driver tick finds operation 0 and closes it.
WPARAM DeviceLink::TimeOut() {
    const WPARAM message = operation | static_cast<WPARAM>(CodeForStep(step)) << 16 | static_cast<WPARAM>(ST_TIMEOUT) << 24;
    BeginOperation(0, 0, 0);
    ResetQueue();
    // A unit that was silent for so long owes nothing any more.
    ForgetOwedReplies();
    ++posting;
    return message;
}

void DeviceLink::SendBuiltFrame(const char* frame, std::uint32_t number) {
    assert(!queueLock.IsHeldByThisThread());
    Sleep(kPauseBeforeFrameMs);
    bool write = false;
    {
        LockGuard lock(queueLock);
        // A queue that was filled anew meanwhile sends nothing of the old one, and a request that has got its reply is not
        // repeated.
        write = sending && !handlingFrame && !replyAccepted && number == queueNumber;
        if (write) {
            std::memcpy(txFrame, frame, kFrameSize);
            dataOwed = ring[ringIndex].kind == LinkRequest::kTitleWrite;
        }
    }
    if (write) {
        DWORD written = 0;
        Write(frame, static_cast<DWORD>(std::strlen(frame)), written);
    }
    LockGuard lock(queueLock);
    sendPending = false;
}

void DeviceLink::EncodeRequest(const LinkRequest& request, char* out) {
    assert(!request.IsFree());
    switch (request.kind) {
        case LinkRequest::kModelQuery: EncodeModelQuery(out); break;
        case LinkRequest::kStatusQuery: EncodeStatusQuery(static_cast<std::uint8_t>(request.arg1), out); break;
        case LinkRequest::kUnitCommand: EncodeUnitCommand(static_cast<std::uint8_t>(request.arg1), out); break;
        case LinkRequest::kMapQuery:
            EncodeMapQuery(static_cast<std::uint8_t>(request.arg1), static_cast<std::uint16_t>(request.arg2), out);
            break;
        case LinkRequest::kTitleRead:
            EncodeTitleRead(static_cast<std::uint8_t>(request.arg1), request.arg2, request.arg3, out);
            break;
        case LinkRequest::kTitleWrite:
            EncodeTitleWrite(static_cast<std::uint8_t>(request.arg1), request.arg2, request.arg3, out);
            break;
        default: break;
    }
}

BYTE DeviceLink::CodeForStep(BYTE step) {
    switch (step) {
        case 1: return RC_MODEL;
        case 2: return RC_STATUS;
        case 4:
        case 8: return RC_MAP;
        case 5:
        case 7:
        case 9: return RC_TITLE_READ;
        case 10: return RC_TITLE_WRITE;
        default: return 0;
    }
}
