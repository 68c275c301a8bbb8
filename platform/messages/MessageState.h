// What all threads with windows or messages share, and the lock around it.
#pragma once

#include <windows.h>

#include "HandleTable.h"
#include "Window.h"
#include "WindowClasses.h"

// One lock guards the classes, the windows and what other threads touch of every queue: a send concerns two queues and a
// window at once, and the lock is held only for a few pointer operations.
//
// Lock order: a lock of the program, then this one, then the kernel's own inside SetEvent. While it is held nothing waits,
// and no window procedure and no timer procedure runs. It is not taken twice by one thread.
struct MessageState {
    // Made at the first use and never destroyed, since threads may still run when the process ends. The making only
    // initialises and allocates: it must not hand the processor to another thread.
    static MessageState& Get();

    CRITICAL_SECTION lock;
    WindowClasses classes;
    HandleTable<Window, HWND> windows;
    DWORD queueSlot;  // of the thread-local storage, holds the thread's MessageQueue; constant

private:
    MessageState();
};

// Holds the lock of MessageState while it lives.
class MessageLock {
public:
    MessageLock() : state(MessageState::Get()) { EnterCriticalSection(&state.lock); }
    ~MessageLock() { LeaveCriticalSection(&state.lock); }
    MessageLock(const MessageLock&) = delete;
    MessageLock& operator=(const MessageLock&) = delete;

    MessageState* operator->() const { return &state; }

private:
    MessageState& state;
};
