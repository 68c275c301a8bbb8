// What a desktop adds to the windows and the queue of the thread that it belongs to.
#pragma once

#include <windows.h>

#include "MessageFilter.h"

// Without one a thread has message-only windows, posted and sent messages and timers alone. Everything but Wake is called on
// the screen's own thread and without the lock of MessageState; the calls may run window procedures.
class Screen {
public:
    virtual ~Screen() = default;

    // What CreateWindowExA and DestroyWindow are for windows other than message-only ones.
    virtual HWND CreateScreenWindow(const CREATESTRUCTA& create) = 0;
    virtual bool IsScreenWindow(HWND window) const = 0;
    virtual void DestroyScreenWindow(HWND window) = 0;
    virtual LRESULT DefaultProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) = 0;

    // Lets in what the window system has for the thread; what becomes of it is then found by the two below.
    virtual void Poll() = 0;
    virtual bool TakeInput(MSG& found, const MessageFilter& filter, bool remove) = 0;
    virtual bool TakePaint(MSG& found, const MessageFilter& filter) = 0;

    // Sleeps until the window system has something for the thread, until Wake, or for so long.
    virtual void Wait(DWORD milliseconds) = 0;
    // From any thread, with or without the lock. The wait that is under way, or else the next one, returns.
    virtual void Wake() = 0;
};
