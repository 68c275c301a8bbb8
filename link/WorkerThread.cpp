#include "WorkerThread.h"

#include <cassert>

WorkerThread::~WorkerThread() {
    Stop();
}

bool WorkerThread::SetPeriod(DWORD ms) {
    if (ms == 0) {
        return false;
    }
    period = ms;
    return true;
}

bool WorkerThread::Start(Proc newProc, LPARAM newParam) {
    if (thread != nullptr) {
        return false;
    }
    proc = newProc;
    param = newParam;
    running = 1;
    thread = CreateThread(nullptr, 0, ThreadMain, this, 0, &threadId);
    if (thread == nullptr) {
        running = 0;
        return false;
    }
    return true;
}

void WorkerThread::Stop() {
    if (thread == nullptr) {
        return;
    }
    assert(threadId != GetCurrentThreadId());
    running = 0;
    while (MsgWaitForMultipleObjects(1, &thread, FALSE, INFINITE, QS_SENDMESSAGE) == WAIT_OBJECT_0 + 1) {
        MSG message;
        PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
    }
    // A caller that can have no queue has no windows to serve either.
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    thread = nullptr;
}

void WorkerThread::Run() {
    proc(param);
}

DWORD WINAPI WorkerThread::ThreadMain(LPVOID object) {
    auto* worker = static_cast<WorkerThread*>(object);
    while (worker->running) {
        Sleep(worker->period);
        worker->Run();
    }
    return 0;
}
