// Starting and stopping timers.
#include <windows.h>

#include "MessageQueue.h"
#include "MessageState.h"

namespace {

// The calling thread's queue if a timer may belong to it and the window; a thread has timers for its own windows alone.
MessageQueue* QueueFor(HWND window) {
    if (window == nullptr) {
        return MessageQueue::Current();
    }
    const MessageLock state;
    Window* target = state->windows.Find(window);
    return target != nullptr && target->owner.IsCurrent() ? &target->owner : nullptr;
}

}  // namespace

UINT_PTR SetTimer(HWND window, UINT_PTR id, UINT periodMs, TIMERPROC procedure) {
    MessageQueue* queue = QueueFor(window);
    if (queue == nullptr) {
        return 0;
    }
    // Without a window only a number that was given out before is a number.
    if (window == nullptr && queue->timers.Find(nullptr, id) == nullptr) {
        id = queue->timers.UnusedId();
    }
    queue->timers.Set(window, id, periodMs, procedure, GetTickCount());
    // A window may have a timer 0, and 0 would mean failure.
    return id != 0 ? id : 1;
}

BOOL KillTimer(HWND window, UINT_PTR id) {
    MessageQueue* queue = QueueFor(window);
    return queue != nullptr && queue->timers.Kill(window, id);
}
