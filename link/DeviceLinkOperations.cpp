// The six operations: their steps as tables, and the driver that takes them.
#include <span>

#include "DeviceLink.h"

// What a row puts into the queue.
enum class DeviceLink::Action {
    kNothing,
    kAskModel,
    kAskStatus,
    kMapDiscs,
    kForgetAndMapDiscs,
    kMapAlbums,
    kProbe,
    kReadMapped,
    kReadGroupTitle,
    kReadGroupTracks,
    kWriteTitles,
    kEnd,
};

struct DeviceLink::StepRow {
    BYTE step;
    Condition condition;
    WPARAM message;  // of the LM_PROGRESS or, at the end, of the LM_RESULT; 0 for none
    BYTE newStep;
    Action action;
};

// The low 16 bits of the messages are fixed numbers and not always the operation's own: every reading operation checks the
// status as OP_GET_ALL, both sending operations report as OP_SEND_GROUP.
const DeviceLink::StepRow* DeviceLink::FindRow() const {
    assert(queueLock.IsHeldByThisThread());
    using enum Condition;
    using enum Action;
    static constexpr StepRow kConnect[] = {
        {0, kAlways, 0x11001, 1, kAskModel},
        {1, kAlways, 0x21001, 2, kAskStatus},
        {2, kAlways, OP_CONNECT, 2, kEnd},
    };
    static constexpr StepRow kGetAll[] = {
        {0, kAlways, 0x22001, 2, kAskStatus}, {2, kDiscsOff, 0, 5, kNothing},        {2, kAlways, 0x42001, 4, kMapDiscs},
        {4, kNoneMapped, 0, 5, kNothing},     {4, kAlways, 0x52001, 5, kReadMapped}, {5, kAlbumsOff, 0, 7, kNothing},
        {5, kAlways, 0x62001, 6, kMapAlbums}, {6, kNoneMapped, 0, 7, kNothing},      {6, kAlways, 0x72001, 7, kReadMapped},
        {7, kAlways, OP_GET_ALL, 7, kEnd},
    };
    static constexpr StepRow kGetGroup[] = {
        {0, kAlways, 0x22001, 2, kAskStatus},
        {2, kTracksOff, 0, 9, kNothing},
        {2, kAlways, 0x92002, 9, kReadGroupTitle},
        {9, kAlways, OP_GET_GROUP, 9, kEnd},
    };
    static constexpr StepRow kGetTracks[] = {
        {0, kTracksOff, 0, 9, kNothing},          {0, kAlways, 0x22001, 2, kAskStatus}, {2, kAlways, 0x92003, 8, kProbe},
        {8, kNoneMapped, 0, 9, kReadGroupTracks}, {8, kAlways, 0, 9, kReadMapped},      {9, kAlways, OP_GET_TRACKS, 9, kEnd},
    };
    static constexpr StepRow kSend[] = {
        {0, kAlways, 0x23002, 2, kAskStatus},          {2, kTracksOff, 0, 7, kNothing},
        {2, kAlways, 0xA3002, 10, kWriteTitles},       {10, kDiscsOff, 0, 5, kNothing},
        {10, kAlways, 0x43002, 4, kForgetAndMapDiscs}, {4, kNoneMapped, 0, 5, kNothing},
        {4, kAlways, 0x53002, 5, kReadMapped},         {5, kAlbumsOff, 0, 7, kNothing},
        {5, kAlways, 0x63002, 6, kMapAlbums},          {6, kNoneMapped, 0, 7, kNothing},
        {6, kAlways, 0x73002, 7, kReadMapped},         {7, kAlways, OP_SEND_GROUP, 7, kEnd},
    };
    std::span<const StepRow> rows;
    switch (operation) {
        case OP_CONNECT: rows = kConnect; break;
        case OP_GET_ALL: rows = kGetAll; break;
        case OP_GET_GROUP: rows = kGetGroup; break;
        case OP_GET_TRACKS: rows = kGetTracks; break;
        case OP_SEND_ALL:
        case OP_SEND_GROUP: rows = kSend; break;
        default: break;
    }
    for (const StepRow& row : rows) {
        if (row.step == step && Holds(row.condition)) {
            return &row;
        }
    }
    return nullptr;
}

bool DeviceLink::Holds(Condition condition) const {
    switch (condition) {
        case Condition::kAlways: return true;
        case Condition::kDiscsOff: return operationRanges.discFrom == 0 && operationRanges.discTo == 0;
        case Condition::kAlbumsOff: return operationRanges.albumFrom == 0 && operationRanges.albumTo == 0;
        case Condition::kTracksOff: return operationRanges.trackFrom == 0 && operationRanges.trackTo == 0;
        case Condition::kNoneMapped: return nextRing[0].IsFree();
    }
    return false;
}

// The queue is filled before the message is posted and armed after it, so that the pane hears of a step before its first
// frame goes out.
void DeviceLink::DriverTick() {
    const StepRow* row = nullptr;
    std::uint32_t number = 0;
    bool wait = false;
    {
        LockGuard lock(queueLock);
        ReleaseIdleTimerPeriod();
        if (!operationActive || stepBusy || handlingFrame) {
            return;
        }
        ResetQueue();
        if (FillAgain()) {
            stepBusy = true;
            ArmQueue();
            // A unit that answers everything, and nothing as it was asked, is given one more round.
            roundsInVain = gotOn ? 0 : roundsInVain + 1;
            gotOn = false;
            if (roundsInVain > 1) {
                FailAtNextTick();
            }
            return;
        }
        row = FindRow();
        if (row == nullptr) {
            operationActive = 0;
            return;
        }
        step = row->newStep;
        BeginStep();
        wait = FillStep(row->action);
        stepBusy = wait;
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
    assert(posting > 0);
    --posting;
    if (wait && number == queueNumber) {
        ArmQueue();
        if (row->action == Action::kAskModel) {
            // A port without a main unit is to cost two seconds, not four: the query goes out at once and is not repeated.
            tick = 99;
        }
    }
}

// True if the step that is through has more for the ring: titles that did not fit, or that were edited since they went out.
bool DeviceLink::FillAgain() {
    if (step == 10 && (operation == OP_SEND_ALL || operation == OP_SEND_GROUP)) {
        return PlanWrites(static_cast<GroupId>(operationGroup));
    }
    if (step == 9 && planCut) {
        return PlanReads(static_cast<GroupId>(operationGroup), operation == OP_GET_TRACKS ? -1 : 0);
    }
    return false;
}

// True if there is something to wait for.
bool DeviceLink::FillStep(Action action) {
    const auto group = static_cast<GroupId>(operationGroup);
    switch (action) {
        case Action::kNothing:
        case Action::kEnd: return false;
        case Action::kAskModel: PlaceRequest({LinkRequest::kModelQuery, 0, 0, 0}); return true;
        case Action::kAskStatus: PlaceRequest({LinkRequest::kStatusQuery, kStatusMenu, 0, 0}); return true;
        case Action::kForgetAndMapDiscs: ForgetSentTitles(group); [[fallthrough]];
        case Action::kMapDiscs: PlaceRequest({LinkRequest::kMapQuery, kMapDiscs, 0, 0}); return true;
        case Action::kMapAlbums: PlaceRequest({LinkRequest::kMapQuery, kMapAlbums, 0, 0}); return true;
        case Action::kProbe: PlaceRequest({LinkRequest::kMapQuery, kMapTracks, kProbeCode, 0}); return true;
        case Action::kReadMapped: ring = nextRing; return true;
        case Action::kReadGroupTitle: return PlanReads(group, 0);
        case Action::kReadGroupTracks: return PlanReads(group, -1);
        case Action::kWriteTitles: return PlanWrites(group);
    }
    return false;
}
