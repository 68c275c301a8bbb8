#include "QueueWait.h"

#include <algorithm>

QueueWait::QueueWait() : wake(CreateEventA(nullptr, FALSE, FALSE, nullptr)) {}

QueueWait::~QueueWait() {
    if (wake != nullptr) {
        CloseHandle(wake);
    }
}

void QueueWait::Wake() {
    SetEvent(wake);
}

DWORD QueueWait::Wait(DWORD count, const HANDLE* handles, DWORD milliseconds) {
    HANDLE all[MAXIMUM_WAIT_OBJECTS];
    std::copy_n(handles, count, all);
    all[count] = wake;
    return WaitForMultipleObjects(count + 1, all, FALSE, milliseconds);
}
