// Posting, sending and the default procedure.
#include <windows.h>

#include "MessageQueue.h"
#include "MessageState.h"

BOOL PostMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const MessageLock state;
    Window* target = state->windows.Find(window);
    return target != nullptr && target->owner.Post(window, message, wParam, lParam);
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
