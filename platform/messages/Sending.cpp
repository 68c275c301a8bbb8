// Posting, sending and the default procedure.
#include <windows.h>

#include "MessageQueue.h"
#include "MessageState.h"

BOOL PostMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    MessageQueue* own = nullptr;
    if (window == nullptr) {
        own = MessageQueue::Current();
        if (own == nullptr) {
            return FALSE;
        }
    }
    const MessageLock state;
    Window* target = state->windows.Find(window);
    if (own == nullptr && target == nullptr) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return FALSE;
    }
    MessageQueue& queue = own != nullptr ? *own : target->owner;
    if (!queue.Post(window, message, wParam, lParam)) {
        SetLastError(ERROR_NOT_ENOUGH_QUOTA);
        return FALSE;
    }
    return TRUE;
}

namespace {

LRESULT SendToOtherThread(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    MessageQueue* own = MessageQueue::Current();
    if (own == nullptr) {
        return 0;
    }
    SentMessage sent{window, message, wParam, lParam, *own};
    {
        const MessageLock state;
        Window* target = state->windows.Find(window);
        if (target == nullptr) {
            SetLastError(ERROR_INVALID_WINDOW_HANDLE);
            return 0;
        }
        target->owner.AddSent(sent);
    }
    return own->WaitForAnswer(sent);
}

}  // namespace

LRESULT SendMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    WNDPROC procedure = nullptr;
    {
        const MessageLock state;
        const Window* target = state->windows.Find(window);
        if (target == nullptr) {
            SetLastError(ERROR_INVALID_WINDOW_HANDLE);
            return 0;
        }
        if (target->owner.IsCurrent()) {
            procedure = target->Procedure();
        }
    }
    return procedure != nullptr ? procedure(window, message, wParam, lParam)
                                : SendToOtherThread(window, message, wParam, lParam);
}

LRESULT CallWindowProcA(WNDPROC procedure, HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return procedure != nullptr ? procedure(window, message, wParam, lParam) : 0;
}

LRESULT DefWindowProcA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const MessageQueue* queue = MessageQueue::Current();
    Screen* screen = queue != nullptr ? queue->GetScreen() : nullptr;
    if (screen != nullptr && screen->IsScreenWindow(window)) {
        return screen->DefaultProcedure(window, message, wParam, lParam);
    }
    switch (message) {
        case WM_NCCREATE: return TRUE;
        case WM_CLOSE: DestroyWindow(window); return 0;
        default: return 0;
    }
}
