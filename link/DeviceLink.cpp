// The link to the main unit: starting, stopping, posting.
#include "DeviceLink.h"

#include <algorithm>

#include "TitleStore.h"

namespace {

constexpr DWORD kWorkerPeriodMs = 20;
constexpr int kStopPasses = 1000;  // of 1 ms each

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
    BeginOperation(OP_CONNECT, 0);
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
    handlingFrame = false;
    sendPending = false;
    posting = 0;
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
    return StartOperation(OP_SEND_ALL, 0);
}
bool DeviceLink::SendGroup(GroupId group) {
    return StartOperation(OP_SEND_GROUP, group);
}

bool DeviceLink::StartOperation(WORD newOperation, GroupId group) {
    LockGuard start(startLock);
    if (senderWorker == nullptr || driverWorker == nullptr || !AcceptsGroup(static_cast<std::uint32_t>(group))) {
        return false;
    }
    StopHoldingStartLock();
    LockGuard lock(queueLock);
    BeginOperation(newOperation, group);
    return true;
}

// Whether a group, 0 for all, lies in its range.
bool DeviceLink::AcceptsGroup(std::uint32_t group) {
    if (group == 0) {
        return true;
    }
    if (group > kGroups) {
        return false;
    }
    LockGuard lock(queueLock);
    const auto id = static_cast<GroupId>(group);
    const GroupId number = IsAlbum(id) ? AlbumNumber(id) : id;
    const GroupId from = IsAlbum(id) ? ranges.albumFrom : ranges.discFrom;
    const GroupId to = IsAlbum(id) ? ranges.albumTo : ranges.discTo;
    return number >= from && number <= to;
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
        stopping = true;
        timerPeriod.Hold();
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
    ResetQueue();
    stopping = false;
    ReleaseIdleTimerPeriod();
}

// The reply in flight is waited for, so that it is not taken for the answer to the next request; so is whoever stands
// between deciding and doing. The title or map of a request that takes longer finds the next operation at its status check,
// where it is foreign, since the unit answers in the order in which it was asked.
bool DeviceLink::MustWaitForStop() const {
    const bool replyAwaited = requestSent && !replyAccepted;
    return posting > 0 || (tick >= 0 && (replyAwaited || handlingFrame || sendPending));
}

void DeviceLink::ReleaseIdleTimerPeriod() {
    assert(queueLock.IsHeldByThisThread());
    const bool driverDue = operationActive && !stepBusy;
    if (!sending && !driverDue && !stopping) {
        timerPeriod.Release();
    }
}

void DeviceLink::Post(UINT message, WPARAM wParam, LPARAM lParam) {
    assert(!queueLock.IsHeldByThisThread());
    const HWND window = paneWindow;
    if (window != nullptr) {
        PostMessageA(window, message, wParam, lParam);
    }
}
