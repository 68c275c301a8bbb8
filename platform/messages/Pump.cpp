// Fetching and dispatching messages.
#include <windows.h>

#include <cassert>

#include "MessageQueue.h"
#include "MessageState.h"

namespace {

bool IsUsable(const MessageFilter& filter) {
    return filter.window == nullptr || IsWindow(filter.window);
}

// A message that was fetched before its timer was killed or replaced must not call a procedure that may be gone.
void CallTimerProcedure(const MSG& message) {
    const MessageQueue* queue = MessageQueue::Current();
    const auto procedure = reinterpret_cast<TIMERPROC>(message.lParam);
    const Timer* timer = queue != nullptr ? queue->timers.Find(message.hwnd, message.wParam) : nullptr;
    if (timer != nullptr && timer->procedure == procedure) {
        procedure(message.hwnd, message.message, message.wParam, GetTickCount());
    }
}

}  // namespace

BOOL GetMessageA(LPMSG message, HWND window, UINT first, UINT last) {
    MessageQueue* queue = MessageQueue::Current();
    if (queue == nullptr) {
        return -1;
    }
    const MessageFilter filter{window, first, last};
    // A message served meanwhile may destroy the window.
    while (IsUsable(filter)) {
        if (queue->Look(*message, filter, QS_ALLINPUT, true)) {
            return message->message != WM_QUIT;
        }
        if (queue->Sleep(QS_ALLINPUT, 0, nullptr, INFINITE) == WAIT_FAILED) {
            return -1;
        }
    }
    return -1;
}

BOOL PeekMessageA(LPMSG message, HWND window, UINT first, UINT last, UINT flags) {
    MessageQueue* queue = MessageQueue::Current();
    const MessageFilter filter{window, first, last};
    if (queue == nullptr || !IsUsable(filter)) {
        return FALSE;
    }
    const UINT named = flags >> 16;
    return queue->Look(*message, filter, named != 0 ? named : QS_ALLINPUT, (flags & PM_REMOVE) != 0);
}

LRESULT DispatchMessageA(const MSG* message) {
    if (message->message == WM_TIMER && message->lParam != 0) {
        CallTimerProcedure(*message);
        return 0;
    }
    WNDPROC procedure = nullptr;
    {
        const MessageLock state;
        const Window* target = state->windows.Find(message->hwnd);
        if (target != nullptr && target->owner.IsCurrent()) {
            procedure = target->Procedure();
        }
    }
    return CallWindowProcA(procedure, message->hwnd, message->message, message->wParam, message->lParam);
}

void PostQuitMessage(int exitCode) {
    if (MessageQueue* queue = MessageQueue::Current()) {
        queue->Quit(exitCode);
    }
}

DWORD MsgWaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL waitAll, DWORD milliseconds, DWORD wakeMask) {
    assert(!waitAll);
    // The queue needs one place itself.
    MessageQueue* queue = waitAll || count >= MAXIMUM_WAIT_OBJECTS ? nullptr : MessageQueue::Current();
    return queue != nullptr ? queue->Sleep(wakeMask, count, handles, milliseconds) : WAIT_FAILED;
}
