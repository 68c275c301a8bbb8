// What the layer knows of one window.
#pragma once

#include <windows.h>

#include <vector>

class MessageQueue;
struct WindowClass;

// Every access wants the lock of MessageState. The window is never in hand while a procedure runs: the procedure may destroy
// it, so the handle is looked up again afterwards.
class Window {
public:
    Window(WindowClass& windowClass, MessageQueue& owner, const CREATESTRUCTA& create);
    ~Window();
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    WNDPROC Procedure() const { return procedure; }

    // An index of the seam (GWLP_ or GWL_), or an offset into the extra bytes that leaves room for a LONG_PTR. False, and
    // nothing done, for any other index.
    bool GetLong(int index, LONG_PTR& value) const;
    bool SetLong(int index, LONG_PTR value, LONG_PTR& previous);

    WindowClass& windowClass;
    MessageQueue& owner;  // the queue of the thread that made the window
    HWND parent;
    bool destroying = false;  // WM_DESTROY is under way or over

private:
    bool IsExtra(int index) const;

    LONG_PTR* Field(int index);

    WNDPROC procedure;
    LONG_PTR userData = 0;
    LONG_PTR style;
    LONG_PTR exStyle;
    LONG_PTR id;
    LONG_PTR instance;
    std::vector<BYTE> extra;
};
