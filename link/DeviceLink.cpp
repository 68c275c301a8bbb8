// The link to the main unit: starting, stopping, posting.
#include "DeviceLink.h"

#include <algorithm>

#include "TitleStore.h"

namespace {

constexpr DWORD kWorkerPeriodMs = 20;
constexpr int kStopPasses = 1000;  // of 1 ms each
constexpr UINT kTimerPeriodMs = 1;

}  // namespace

DeviceLink::DeviceLink() : cutter(FrameArrived, this) {}

DeviceLink::~DeviceLink() {
    Disconnect();
}

void DeviceLink::SetTitleStore(TitleStore* store) {
    LockGuard lock(queueLock);
    titleStore = store;
}

void DeviceLink::SetDisplayRanges(const DisplayRanges& newRanges) {
    LockGuard lock(queueLock);
    ranges.discFrom = std::clamp(newRanges.discFrom, 0, kDiscs);
    ranges.discTo = std::clamp(newRanges.discTo, 0, kDiscs);
    ranges.albumFrom = std::clamp(newRanges.albumFrom, 0, kAlbums);
    ranges.albumTo = std::clamp(newRanges.albumTo, 0, kAlbums);
    ranges.trackFrom = std::clamp(newRanges.trackFrom, 0, kTracks);
    ranges.trackTo = std::clamp(newRanges.trackTo, 0, kTracks);
}

bool DeviceLink::Connect(LPCSTR portName) {
    LockGuard start(startLock);
    Disconnect();
    if (!Open(portName)) {
        return false;
    }
    const bool reading = StartReader();
    const bool sender = StartWorker(senderWorker, [](LPARAM link) { reinterpret_cast<DeviceLink*>(link)->SenderTick(); });
    const bool driver = StartWorker(driverWorker, [](LPARAM link) { reinterpret_cast<DeviceLink*>(link)->DriverTick(); });
    if (!reading || !sender || !driver) {
        Disconnect();
        return false;
    }
    LockGuard lock(queueLock);
    BeginOperation(OP_CONNECT, 0, 0);
    return true;
}

void DeviceLink::Disconnect() {
    LockGuard start(startLock);
    driverWorker.reset();
    senderWorker.reset();
    Close();
    // What the workers left half done must not go out on the next line.
    cutter.Reset();
    LockGuard lock(queueLock);
    operationActive = 0;
    ++operationNumber;
    handlingFrame = false;
    sendPending = false;
    posting = 0;
    ForgetOwedReplies();
    ResetQueue();
    ReleaseIdleTimerPeriod();
}

bool DeviceLink::StartWorker(std::unique_ptr<WorkerThread>& worker, WorkerThread::Proc proc) {
    worker = std::make_unique<WorkerThread>();
    worker->SetPeriod(kWorkerPeriodMs);
    if (!worker->Start(proc, reinterpret_cast<LPARAM>(this))) {
        worker.reset();
        return false;
    }
    return true;
}

bool DeviceLink::GetAllTitles() {
    return StartOperation(OP_GET_ALL, 0);
}
bool DeviceLink::GetOneGroup(GroupId group) {
    return StartOperation(OP_GET_GROUP, group);
}
bool DeviceLink::GetGroupTracks(GroupId group) {
    return StartOperation(OP_GET_TRACKS, group);
}
bool DeviceLink::SendAllTitles() {
    return sent.IsReady() && StartOperation(OP_SEND_ALL, 0);
}
bool DeviceLink::SendGroup(GroupId group) {
    return sent.IsReady() && StartOperation(OP_SEND_GROUP, group);
}

bool DeviceLink::StartOperation(std::uint32_t newOperation, GroupId group) {
    LockGuard start(startLock);
    const auto number = static_cast<std::uint32_t>(group);
    if (!HasWorkers() || !AcceptsGroup(number, 0)) {
        return false;
    }
    StopHoldingStartLock();
    LockGuard lock(queueLock);
    BeginOperation(newOperation, number, 0);
    return true;
}

bool DeviceLink::AcceptsGroup(std::uint32_t group, std::uint32_t track) {
    const auto within = [](std::uint32_t number, TrackNo from, TrackNo to) {
        return (from != 0 || to != 0) && static_cast<std::int64_t>(number) >= from &&
               static_cast<std::int64_t>(number) <= to;
    };
    LockGuard lock(queueLock);
    if (group > kGroups) {
        return false;
    }
    const auto id = static_cast<GroupId>(group);
    if (id != 0 && IsAlbum(id) && !within(static_cast<std::uint32_t>(AlbumNumber(id)), ranges.albumFrom, ranges.albumTo)) {
        return false;
    }
    if (id != 0 && !IsAlbum(id) && !within(group, ranges.discFrom, ranges.discTo)) {
        return false;
    }
    return track == 0 || (track <= kTracks && within(track, ranges.trackFrom, ranges.trackTo));
}

void DeviceLink::StopOperation() {
    LockGuard start(startLock);
    StopHoldingStartLock();
}

void DeviceLink::StopHoldingStartLock() {
    assert(startLock.IsHeldByThisThread() && !queueLock.IsHeldByThisThread());
    {
        LockGuard lock(queueLock);
        operationActive = 0;
        sending = false;
        ++operationNumber;
        ++stopping;
        HoldTimerPeriod();
    }
    for (int pass = 0; pass < kStopPasses; ++pass) {
        {
            LockGuard lock(queueLock);
            if (!MustWaitForStop()) {
                break;
            }
        }
        Sleep(1);
    }
    LockGuard lock(queueLock);
    NoteOwedReply();
    ResetQueue();
    --stopping;
    ReleaseIdleTimerPeriod();
}

// The reply in flight is waited for, so that it is not taken for the answer to the next request; so is whoever stands
// between deciding and doing.
bool DeviceLink::MustWaitForStop() const {
    if (posting > 0) {
        return true;
    }
    const bool replyAwaited = txFrame[0] != '\0' && !replyAccepted;
    return tick >= 0 && (replyAwaited || handlingFrame || sendPending);
}

// Sleeps of a few milliseconds are kept only while somebody asks for them; an idle program should not.
void DeviceLink::HoldTimerPeriod() {
    assert(queueLock.IsHeldByThisThread());
    if (!fastTimer) {
        fastTimer = timeBeginPeriod(kTimerPeriodMs) == TIMERR_NOERROR;
    }
}

void DeviceLink::ReleaseIdleTimerPeriod() {
    const bool driverDue = operationActive && !stepBusy;
    if (fastTimer && !sending && !driverDue && stopping == 0) {
        timeEndPeriod(kTimerPeriodMs);
        fastTimer = false;
    }
}

void DeviceLink::Post(UINT message, WPARAM wParam, LPARAM lParam) {
    assert(!queueLock.IsHeldByThisThread());
    const HWND window = paneWindow;
    if (window != nullptr) {
        PostMessageA(window, message, wParam, lParam);
    }
}

void DeviceLink::EndPosting() {
    LockGuard lock(queueLock);
    assert(posting > 0);
    --posting;
}
