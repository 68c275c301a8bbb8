// Drawing objects that go by themselves.
#pragma once

#include <windows.h>

// A pen, brush, font or region of one's own.
template <class Handle>
class OwnedObject {
public:
    explicit OwnedObject(Handle handle) : handle(handle) {}
    ~OwnedObject() {
        if (handle != nullptr) {
            DeleteObject(handle);
        }
    }
    OwnedObject(const OwnedObject&) = delete;
    OwnedObject& operator=(const OwnedObject&) = delete;
    operator Handle() const { return handle; }

private:
    Handle handle;
};

using Pen = OwnedObject<HPEN>;
using Brush = OwnedObject<HBRUSH>;
using Region = OwnedObject<HRGN>;

// Selected as long as it lives; it has to go before the object does.
class Selected {
public:
    Selected(HDC dc, HGDIOBJ object) : dc(dc), before(SelectObject(dc, object)) {}
    ~Selected() { SelectObject(dc, before); }
    Selected(const Selected&) = delete;
    Selected& operator=(const Selected&) = delete;

private:
    HDC dc;
    HGDIOBJ before;
};

// The whole window, with its origin at the window's corner.
class WindowDc {
public:
    explicit WindowDc(HWND window) : window(window), dc(GetWindowDC(window)) {}
    ~WindowDc() { ReleaseDC(window, dc); }
    WindowDc(const WindowDc&) = delete;
    WindowDc& operator=(const WindowDc&) = delete;
    operator HDC() const { return dc; }

private:
    HWND window;
    HDC dc;
};
