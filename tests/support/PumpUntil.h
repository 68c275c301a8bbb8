// Waiting for a condition on a thread with windows.
#pragma once

#include <windows.h>

#include <functional>

// Serves the calling thread's messages until the condition holds; false when the limit is over. The condition is looked at
// behind each message and at least every few milliseconds.
inline bool PumpUntil(const std::function<bool()>& condition, DWORD limitMs) {
    constexpr DWORD kLookMs = 5;
    const DWORD begin = GetTickCount();
    while (true) {
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
            DispatchMessageA(&message);
        }
        if (condition()) {
            return true;
        }
        if (GetTickCount() - begin >= limitMs) {
            return false;
        }
        MsgWaitForMultipleObjects(0, nullptr, FALSE, kLookMs, QS_ALLINPUT);
    }
}
