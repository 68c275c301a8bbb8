// Threads of the program.
#include <windows.h>

#include "Scheduler.h"

HANDLE CreateThread(LPSECURITY_ATTRIBUTES security, SIZE_T, LPTHREAD_START_ROUTINE start, LPVOID parameter, DWORD flags,
                    LPDWORD threadId) {
    sim::Scheduler* scheduler = sim::Scheduler::Current();
    if (scheduler == nullptr) {
        sim::Misuse("makes a thread");
        return nullptr;
    }
    if (security != nullptr || flags != 0 || start == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    auto thread = scheduler->Start([start, parameter] { start(parameter); }, "");
    if (thread == nullptr) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    if (threadId != nullptr) {
        *threadId = thread->id;
    }
    HANDLE handle = sim::HandleTable::Get().Add(std::move(thread));
    sim::SchedulingPoint();
    return handle;
}

DWORD GetCurrentThreadId() {
    return sim::Self().id;
}
