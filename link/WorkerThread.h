// A restartable thread that calls one procedure again and again, with a pause in front of each call.
#pragma once

#include <windows.h>

#include "Shared.h"

// Start, Stop and SetPeriod belong to one thread, which is never the worker itself.
class WorkerThread {
public:
    using Proc = void (*)(LPARAM param);

    WorkerThread() = default;
    virtual ~WorkerThread();
    WorkerThread(const WorkerThread&) = delete;
    WorkerThread& operator=(const WorkerThread&) = delete;

    // The pause in milliseconds, 1 at first. 0 is refused with false and changes nothing.
    bool SetPeriod(DWORD ms);

    // The first call comes one period later. False, with nothing changed, if the worker runs already; false if no thread
    // came up.
    bool Start(Proc proc, LPARAM param);

    // Returns when the thread has ended. Messages that other threads send to the caller are served meanwhile, so a worker
    // that stands in a send to the caller comes to its end.
    void Stop();

protected:
    virtual void Run();

private:
    static DWORD WINAPI ThreadMain(LPVOID worker);

    Shared<LONG> running = 0;  // written by the owner, read by the thread
    HANDLE thread = nullptr;
    DWORD threadId = 0xFFFFFFFF;
    Shared<DWORD> period = 1;  // milliseconds; written by the owner, read by the thread
    Proc proc = nullptr;
    LPARAM param = 0;
};
