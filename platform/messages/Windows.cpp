// Window classes, and the life of a window from its creation to its end.
#include <windows.h>

#include <cassert>
#include <memory>

#include "MessageQueue.h"
#include "MessageState.h"
#include "WindowLife.h"

ATOM RegisterClassExA(const WNDCLASSEXA* windowClass) {
    const MessageLock state;
    return state->classes.Add(*windowClass);
}

BOOL UnregisterClassA(LPCSTR className, HINSTANCE) {
    const MessageLock state;
    return state->classes.Remove(className);
}

HWND MakeWindow(const CREATESTRUCTA& create) {
    MessageQueue* queue = MessageQueue::Current();
    if (queue == nullptr) {
        return nullptr;
    }
    const MessageLock state;
    WindowClass* windowClass = state->classes.Find(create.lpszClass);
    return windowClass != nullptr ? state->windows.Add(std::make_unique<Window>(*windowClass, *queue, create)) : nullptr;
}

void EndWindow(HWND window) {
    {
        const MessageLock state;
        if (Window* ending = state->windows.Find(window)) {
            ending->destroying = true;
        }
    }
    SendMessageA(window, WM_NCDESTROY, 0, 0);
    const MessageLock state;
    if (Window* ended = state->windows.Find(window)) {
        ended->owner.Purge(window);
        state->windows.Remove(window);
    }
}

namespace {

HWND CreateMessageWindow(const CREATESTRUCTA& create) {
    HWND window = MakeWindow(create);
    if (window == nullptr) {
        return nullptr;
    }
    const auto createParam = reinterpret_cast<LPARAM>(&create);
    if (!SendMessageA(window, WM_NCCREATE, 0, createParam)) {
        // A window that has not come up hears no WM_DESTROY.
        EndWindow(window);
        return nullptr;
    }
    if (SendMessageA(window, WM_CREATE, 0, createParam) == -1) {
        DestroyWindow(window);
        return nullptr;
    }
    return IsWindow(window) ? window : nullptr;
}

}  // namespace

HWND CreateWindowExA(DWORD exStyle, LPCSTR className, LPCSTR windowName, DWORD style, int x, int y, int width, int height,
                     HWND parent, HMENU menu, HINSTANCE instance, LPVOID parameter) {
    const CREATESTRUCTA create{parameter,  instance,  menu,   parent, height, width, y, x, static_cast<LONG>(style),
                               windowName, className, exStyle};
    if (parent == HWND_MESSAGE) {
        return CreateMessageWindow(create);
    }
    MessageQueue* queue = MessageQueue::Current();
    Screen* screen = queue != nullptr ? queue->GetScreen() : nullptr;
    assert(screen != nullptr);
    return screen != nullptr ? screen->CreateScreenWindow(create) : nullptr;
}

BOOL DestroyWindow(HWND window) {
    {
        const MessageLock state;
        Window* found = state->windows.Find(window);
        if (found == nullptr || !found->owner.IsCurrent()) {
            return FALSE;
        }
        // The call that is under way ends the window.
        if (found->destroying) {
            return TRUE;
        }
        found->destroying = true;
    }
    Screen* screen = MessageQueue::Current()->GetScreen();
    if (screen != nullptr && screen->IsScreenWindow(window)) {
        screen->DestroyScreenWindow(window);
        return TRUE;
    }
    SendMessageA(window, WM_DESTROY, 0, 0);
    EndWindow(window);
    return TRUE;
}

BOOL IsWindow(HWND window) {
    const MessageLock state;
    return state->windows.Find(window) != nullptr;
}

DWORD GetWindowThreadProcessId(HWND window, [[maybe_unused]] LPDWORD processId) {
    // The kernel has no call that names the process.
    assert(processId == nullptr);
    const MessageLock state;
    const Window* found = state->windows.Find(window);
    return found != nullptr ? found->owner.ThreadId() : 0;
}

LONG_PTR GetWindowLongPtrA(HWND window, int index) {
    const MessageLock state;
    const Window* found = state->windows.Find(window);
    LONG_PTR value = 0;
    return found != nullptr && found->GetLong(index, value) ? value : 0;
}

LONG_PTR SetWindowLongPtrA(HWND window, int index, LONG_PTR value) {
    const MessageLock state;
    Window* found = state->windows.Find(window);
    LONG_PTR previous = 0;
    return found != nullptr && found->SetLong(index, value, previous) ? previous : 0;
}
