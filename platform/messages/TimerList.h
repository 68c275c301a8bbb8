// The timers of one thread.
#pragma once

#include <windows.h>

#include <vector>

#include "MessageFilter.h"

struct Timer {
    HWND window;  // or 0
    UINT_PTR id;
    TIMERPROC procedure;  // or null
    DWORD periodMs;
    DWORD dueMs;               // by GetTickCount, always ahead once Update has run
    bool ready = false;        // has expired since its last message: expiries that nobody fetched are one
    unsigned readyNumber = 0;  // which of two ready timers expired first
};

// Belongs to its thread alone and has no lock. Times are those of GetTickCount and may wrap around.
class TimerList {
public:
    // Replaces the timer of the same window and number, if there is one.
    void Set(HWND window, UINT_PTR id, UINT periodMs, TIMERPROC procedure, DWORD nowMs);

    // A number that no timer without a window has, not 0.
    UINT_PTR UnusedId();

    const Timer* Find(HWND window, UINT_PTR id) const;
    bool Kill(HWND window, UINT_PTR id);
    void KillAll(HWND window);

    // Marks what has expired; true if a timer became ready that was not.
    bool Update(DWORD nowMs);

    // Milliseconds until the next timer becomes ready, INFINITE if none will.
    DWORD UntilNextMs(DWORD nowMs) const;

    // Of the ready timers that the filter lets through the one that expired first, or null. The caller that
    // takes its message sets ready to false.
    Timer* FirstReady(const MessageFilter& filter);

private:
    std::vector<Timer> timers;
    UINT_PTR lastId = 0;
    unsigned readyCount = 0;
};
