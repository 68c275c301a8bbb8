// The link to the main unit: its queue of requests, its replies, and the operations that read and write titles.
#pragma once

#include <windows.h>

#include <cassert>
#include <cstdint>
#include <memory>
#include <string_view>

#include "FrameCutter.h"
#include "LinkMessages.h"
#include "Lock.h"
#include "OperationSteps.h"
#include "RequestRing.h"
#include "SerialPort.h"
#include "Shared.h"
#include "StatusCheck.h"
#include "TimerPeriod.h"
#include "TitleNumbers.h"
#include "WorkerThread.h"

class TitleStore;

// The outcome of one received frame.
struct LinkResult {
    std::uint32_t posted = 0;     // the pane is told if the status says failure
    std::uint16_t operation = 0;  // 0 for a void frame
    std::uint8_t code = 0;        // RC_
    std::uint8_t status = ST_OK;  // ST_
    std::uint32_t data = 0;       // depends on the code: model, status, map kind or title
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
// What a thread decides under it and carries out later is tied to queueNumber, and dropped if that has moved on.
//
// Replies: a frame is a reply only if it is of the kind that answers the request on the line, and the first such frame.
// Every other one is ST_FOREIGN and does nothing; the repeat and the time-out do the rest. A refusal of a write counts at
// any time until the next map is answered, since the answer to a TitleData can pass for the acceptance of a write.
class DeviceLink : public SerialPort {
public:
    DeviceLink();
    ~DeviceLink() override;

    // Null is allowed: nothing is posted then.
    void SetPaneWindow(HWND window) { paneWindow = window; }
    // Null is allowed. When this returns, the link has let go of the store that it had before.
    void SetTitleStore(TitleStore* store);
    // Numbers outside what a unit can hold are brought to its bounds.
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

private:
    // What the reader decides under the lock and carries out without it.
    struct Outbox {
        UINT message = 0;  // 0 for none
        WPARAM wParam = 0;
        LPARAM lParam = 0;
        DWORD pauseMs = 0;
    };

    // --- Starting and stopping (DeviceLink.cpp)
    bool StartWorker(std::unique_ptr<WorkerThread>& worker, WorkerThread::Proc proc);
    bool StartOperation(WORD newOperation, GroupId group);
    bool AcceptsGroup(std::uint32_t group);
    void StopHoldingStartLock();
    bool MustWaitForStop() const;
    void ReleaseIdleTimerPeriod();
    void Post(UINT message, WPARAM wParam, LPARAM lParam);

    // --- The queue, the sender and the driver (DeviceLinkQueue.cpp)
    void ResetQueue();
    void ArmQueue();
    void ClearRequest();
    void BeginOperation(WORD newOperation, GroupId group);
    bool IsSend() const { return operation == OP_SEND_ALL || operation == OP_SEND_GROUP; }
    void SenderTick();
    WPARAM TimeOut();
    void SendCurrent(std::uint32_t number);
    void DriverTick();
    bool FillStep(Action action);

    // --- Replies (DeviceLinkReplies.cpp)
    static void FrameArrived(void* link, std::string_view frame);
    void HandleFrame(std::string_view frame);
    bool ReadFrame(FrameKind kind, std::string_view frame);
    bool ReadModelReply(std::string_view frame);
    bool ReadMapReply(const LinkRequest& query, std::string_view frame);
    bool ReadTitleReply(const LinkRequest& read, std::string_view frame);
    bool ReadWriteReply(const LinkRequest& write, std::string_view frame);
    void TakeRefusal(bool onLine);
    bool SendTitleData();
    void React(bool accepted, Outbox& outbox);
    void ReactToStatus(Outbox& outbox);
    void ReactToMap();
    void ReactToTitle(Outbox& outbox);

    Shared<HWND> paneWindow = nullptr;  // written by the user thread, read by all that post
    Shared<LONG> operationActive = 0;   // an operation is open; written under queueLock, read by anyone
    Shared<std::uint16_t> model = 0;    // written by the reader, read by anyone

    CriticalSection startLock;
    std::unique_ptr<WorkerThread> senderWorker;  // made on connect; under startLock
    std::unique_ptr<WorkerThread> driverWorker;  // made on connect; under startLock

    FrameCutter cutter;  // belongs to the reader
    LinkResult result;   // outcome of the frame in hand; belongs to the reader

    CriticalSection queueLock;
    TitleStore* titleStore = nullptr;
    DisplayRanges ranges;

    // The operation and its step.
    WORD operation = 0;
    GroupId operationGroup = 0;       // 0 for all
    LinkStep step = LinkStep::kNone;  // the step that runs, or has just run
    bool stepBusy = false;            // it waits for replies
    StatusCheck statusCheck;          // counts the unit's waiting answers
    bool writesOpen = false;          // this send has begun to write, and the unit may still refuse a title
    bool writeRefused = false;        // it has done so, and nothing of this send is forgotten

    // The queue and its current request.
    RequestRing ring;
    RequestRing nextRing;           // what a MapReply has planned
    std::uint32_t queueNumber = 0;  // another one whenever the queue is emptied or armed
    bool sending = false;           // the sender works
    std::int32_t tick = -1;         // the sender's ticks for the current request; -1 before the first
    bool sendPending = false;       // the sender stands between choosing a request and having written its frame
    bool requestSent = false;       // the current request is on the line
    bool replyAccepted = false;     // and has got its reply

    // What a stop waits for, besides the reply.
    bool handlingFrame = false;  // the reader is inside the handling of a frame
    int posting = 0;             // workers between deciding a message and having posted it

    bool stopping = false;    // a stop waits
    TimerPeriod timerPeriod;  // held while an operation runs or a stop waits
};
