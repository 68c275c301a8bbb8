// The link to the main unit: its queue of requests, its replies, and the operations that read and write titles.
#pragma once

#include <windows.h>

#include <array>
#include <cassert>
#include <cstdint>
#include <memory>
#include <string_view>

#include "FrameCutter.h"
#include "Lock.h"
#include "SentTitles.h"
#include "SerialPort.h"
#include "Shared.h"
#include "TitleNumbers.h"
#include "WorkerThread.h"

class TitleStore;

// Posted to the pane's window. LM_RESULT tells an end or a failure: wParam holds the operation (bits 0 to 15), the reply
// code (16 to 23, 0 at the end of an operation) and the status (24 to 31), lParam the data of the reply. LM_PROGRESS tells
// the start of a step (lParam 0) or one title that is through (lParam: GroupId in the high, TrackNo in the low 16 bits):
// wParam holds the operation (bits 0 to 15) and a progress number (16 to 31).
inline constexpr UINT LM_RESULT = 1025;
inline constexpr UINT LM_PROGRESS = 1026;

inline constexpr WORD OP_CONNECT = 4097;
inline constexpr WORD OP_GET_ALL = 8193;
inline constexpr WORD OP_GET_GROUP = 8194;
inline constexpr WORD OP_GET_TRACKS = 8195;
inline constexpr WORD OP_SEND_ALL = 12289;
inline constexpr WORD OP_SEND_GROUP = 12290;  // also the end code of both send operations

inline constexpr BYTE RC_MODEL = 17;
inline constexpr BYTE RC_STATUS = 18;
inline constexpr BYTE RC_COMMAND = 19;
inline constexpr BYTE RC_MAP = 20;
inline constexpr BYTE RC_TITLE_READ = 21;
inline constexpr BYTE RC_TITLE_WRITE = 22;

inline constexpr BYTE ST_OK = 0;
inline constexpr BYTE ST_BAD_REPLY = 4;     // wrong length, or a refused write
inline constexpr BYTE ST_BAD_CHECKSUM = 5;  // ModelReply with a wrong check field
inline constexpr BYTE ST_NO_TITLE = 7;      // the store has no title for the TitleData
inline constexpr BYTE ST_TIMEOUT = 17;      // no accepted reply to a request and its repeat
inline constexpr BYTE ST_BUSY = 18;         // too many busy values in a row
inline constexpr BYTE ST_NO_DATA = 33;      // the HDD holds no data
inline constexpr BYTE ST_TRAY_OPEN = 34;    // the disc tray is open
inline constexpr BYTE ST_NOT_STOPPED = 35;  // HDD not selected, or not stopped
inline constexpr BYTE ST_MENU_MODE = 36;    // the unit is in MENU mode
inline constexpr BYTE ST_FOREIGN = 225;     // the reply does not fit the frame last sent
inline constexpr BYTE ST_LAST = 255;        // success, and the last reply of the queue; never posted

// One entry of the queue; all zero is a free entry, and a free entry ends the queue.
struct LinkRequest {
    enum Kind : std::uint32_t { kFree, kModelQuery, kStatusQuery, kUnitCommand, kMapQuery, kTitleRead, kTitleWrite };

    std::uint32_t kind = kFree;
    std::uint32_t arg1 = 0;  // parameter, command, MapKind or GroupKind
    std::uint32_t arg2 = 0;  // group code, or group number within its kind
    std::uint32_t arg3 = 0;  // track

    bool IsFree() const { return kind == kFree; }
};

// The outcome of one received frame.
struct LinkResult {
    std::uint32_t posted = 0;  // the pane is told if the status says failure
    std::uint16_t operation = 0;
    std::uint8_t code = 0;
    std::uint8_t status = ST_OK;
    std::uint32_t data = 0;
};

// Order of calling: SetPaneWindow, SetTitleStore and SetDisplayRanges, then Connect, then, once the connect has ended with
// LM_RESULT, the other operations in any order. Each starts one operation, ends the one before it without a message, and
// returns; results come as posted messages. A start that answers false has changed nothing (Connect apart, which disconnects
// first).
//
// Threads: the public operations come from the user thread and the pane's group watcher. SenderTick runs on the sender
// worker, DriverTick on the driver worker, OnReceive on the serial reader.
//
// Locks, in the order in which they may be taken: startLock, queueLock, the store's. startLock makes two starts follow
// each other, whole. queueLock guards every field below it; it is never held across a sleep, a write to the port or a post.
// What a thread decides under it and carries out later is tied to queueNumber or operationNumber, and dropped if that has
// moved on.
class DeviceLink : public SerialPort {
public:
    static constexpr std::uint32_t kRingSize = 1998;

    DeviceLink();
    ~DeviceLink() override;

    // Null is allowed: nothing is posted then.
    void SetPaneWindow(HWND window) { paneWindow = window; }
    // Null is allowed. When this returns, the link has let go of the store that it had before.
    void SetTitleStore(TitleStore* store);
    // Numbers outside what a unit can hold are brought to its bounds. An operation that runs keeps its ranges.
    void SetDisplayRanges(const DisplayRanges& newRanges);

    bool IsOperationActive() const { return operationActive; }
    // The last model number read, 1 or 2; 0 until a known unit has answered.
    std::uint16_t Model() const { return model; }

    // True if the port opened and both workers run; the unit has not answered yet then.
    bool Connect(LPCSTR portName);
    void Disconnect();

    // The operations on one group are false for a group outside its range, all of them without a connection.
    bool GetAllTitles();
    bool GetOneGroup(GroupId group);
    bool GetGroupTracks(GroupId group);
    bool SendAllTitles();
    bool SendGroup(GroupId group);

    // Leaves about a second at most for a reply in flight, which is then still handled.
    void StopOperation();

    void OnReceive(char*& chunk, DWORD length) override;

protected:
    // Whether a group, 0 for all, and a track, 0 for the group's own title, take part by number and range.
    bool AcceptsGroup(std::uint32_t group, std::uint32_t track);

    void SenderTick();
    void DriverTick();

private:
    // When a row of a step holds. The first row of the step that holds is taken.
    enum class Condition {
        kAlways,
        kDiscsOff,   // the Disc range is both 0
        kAlbumsOff,  // the Album range is both 0
        kTracksOff,  // the Track range is both 0
        kNoneMapped  // the last MapReply left nothing to read
    };
    enum class Action;
    struct StepRow;
    struct Bounds;
    struct Outbox;

    // --- Starting and stopping (DeviceLink.cpp)
    bool StartWorker(std::unique_ptr<WorkerThread>& worker, WorkerThread::Proc proc);
    bool HasWorkers() const { return senderWorker != nullptr && driverWorker != nullptr; }
    bool StartOperation(std::uint32_t newOperation, GroupId group);
    void StopHoldingStartLock();
    bool MustWaitForStop() const;
    void HoldTimerPeriod();
    void ReleaseIdleTimerPeriod();
    void Post(UINT message, WPARAM wParam, LPARAM lParam);
    void EndPosting();

    // --- The queue and the sender (DeviceLinkQueue.cpp)
    static std::uint32_t NextIndex(std::uint32_t index) { return index + 1 < kRingSize ? index + 1 : 0; }
    void ResetQueue();
    void ArmQueue();
    void NoteOwedReply();
    void ForgetOwedReplies();
    void AdvanceQueue();
    void BeginOperation(std::uint32_t newOperation, std::uint32_t group, std::uint32_t arg);
    void BeginStep();
    bool MoveOn();
    void QueueThrough(const LinkRequest& answered);
    void FailAtNextTick();
    WPARAM TimeOut();
    void SendBuiltFrame(const char* frame, std::uint32_t number);
    static void EncodeRequest(const LinkRequest& request, char* out);
    static BYTE CodeForStep(BYTE step);
    LinkRequest& NextEntry() {
        assert(queueLock.IsHeldByThisThread());
        return ring[NextIndex(ringIndex)];
    }

    // --- Replies (DeviceLinkReplies.cpp)
    static void FrameArrived(void* link, std::string_view frame);
    void HandleFrame(std::string_view frame);
    bool ReadFrame(FrameKind kind, std::string_view frame);
    bool ReadModelReply(std::string_view frame);
    bool ReadStatusReply(std::string_view frame);
    void CountStatusRepeats(std::uint32_t value);
    bool ReadCommandReply();
    bool ReadMapReply(std::string_view frame);
    void PlanMapGroups(std::uint32_t mapKind, std::string_view frame);
    void PlanMapTracks(std::uint32_t groupCode, std::string_view frame);
    bool ReadTitleReply(std::string_view frame);
    bool ReadWriteReply(std::string_view frame);
    bool SendTitleData(GroupId group, TrackNo track);
    bool AddressedTitle(GroupId& group, TrackNo& track);
    bool Foreign();
    std::string_view SentFrame() const { return std::string_view(txFrame); }

    // --- Reactions (DeviceLinkReactions.cpp)
    void React(Outbox& outbox);
    void ReactCommon(Outbox& outbox);
    void ReactToStatus(Outbox& outbox);
    void ReactReading(Outbox& outbox);
    void ReactGroup(Outbox& outbox);
    void ReactSending(Outbox& outbox);
    void TitleThrough(BYTE progress, Outbox& outbox);

    // --- Operations (DeviceLinkOperations.cpp, DeviceLinkPlans.cpp)
    const StepRow* FindRow() const;
    bool Holds(Condition condition) const;
    bool FillStep(Action action);
    bool FillAgain();
    void PlaceRequest(const LinkRequest& request) { ring[ringIndex] = request; }
    Bounds BoundsOf(GroupId group) const;
    bool AddToPlan(const LinkRequest& request);
    bool PlanReads(GroupId group, TrackNo track);
    bool PlanGroupReads(std::uint32_t kind, std::uint32_t number, TrackNo first, TrackNo last);
    bool PlanWrites(GroupId group);
    bool PlanGroupWrites(std::uint32_t kind, std::uint32_t number);
    bool MustSend(GroupId group, TrackNo track) const;
    void ForgetSentTitles(GroupId group);
    bool ForgetTitle(GroupId group, TrackNo track);
    bool ForgetDisc(GroupId disc);
    void DropAlbumTracksInRange();

    Shared<HWND> paneWindow = nullptr;  // written by the user thread, read by all that post
    Shared<LONG> operationActive = 0;   // an operation is open; written under queueLock, read by anyone
    Shared<std::uint16_t> model = 0;    // written by the reader, read by anyone

    CriticalSection startLock;
    std::unique_ptr<WorkerThread> senderWorker;  // made on connect; under startLock
    std::unique_ptr<WorkerThread> driverWorker;  // made on connect; under startLock

    FrameCutter cutter;  // belongs to the reader
    LinkResult result;   // outcome of the frame in hand; belongs to the reader

    mutable CriticalSection queueLock;
    TitleStore* titleStore = nullptr;
    DisplayRanges ranges;
    DisplayRanges operationRanges;  // those of the operation, which keeps to what it began with
    char txFrame[kFrameSize] = {};  // the current request as sent; empty while nothing was sent for it
    std::uint32_t operation = 0;
    std::uint32_t operationGroup = 0;
    std::uint32_t operationArg = 0;
    std::uint32_t operationNumber = 0;  // counts the operations begun and stopped
    BYTE step = 0;
    bool stepBusy = false;       // the step waits for replies
    bool stepFailed = false;     // the unit is busy, empty or open: the operation stands idle until it is stopped
    bool planCut = false;        // the last read plan did not fit into the ring
    bool askedAgain = false;     // this question was put a second time
    bool gotOn = false;          // a title was stored or sent since the ring was last filled
    bool sending = false;        // the sender works
    bool sendPending = false;    // the sender stands between building a frame and having written it
    bool replyAccepted = false;  // the current request got its reply
    bool handlingFrame = false;  // the reader is inside the handling of a frame
    bool dataOwed = false;       // the TitleWrite on the line has not had its TitleData
    bool usedUp = false;         // the current request, if it is a TitleRead or TitleWrite, got a reply of another kind only
    bool readOwed = false;       // a TitleRead that is off the line without a reply of its own may still get it
    bool writeOwed = false;      // the same of a TitleWrite
    bool fastTimer = false;      // timeBeginPeriod(1) is held
    int roundsInVain = 0;        // fillings of the ring in a row that got nothing on
    int posting = 0;             // workers between deciding a message and having posted it
    int stopping = 0;            // stops that wait
    std::int32_t tick = -1;      // the sender's ticks for the current request
    std::int32_t statusRepeats = 0;
    std::uint32_t queueNumber = 0;  // counts the fillings of the queue
    std::uint32_t planCount = 0;    // entries planned into the ring
    std::uint32_t ringIndex = 0;
    std::array<LinkRequest, kRingSize> ring;
    std::array<LinkRequest, kRingSize> nextRing;  // what a MapReply has planned
    SentTitles sent;
};
