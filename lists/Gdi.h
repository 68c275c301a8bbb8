// Drawing objects that go by themselves.
#pragma once

#include <windows.h>

// A pen, brush, font or region of one's own.
template <class Handle>
class OwnedObject {
public:
    explicit OwnedObject(Handle handle) : handle_(handle) {}
    ~OwnedObject() {
        if (handle_ != nullptr) {
            DeleteObject(handle_);
        }
    }
    OwnedObject(const OwnedObject&) = delete;
    OwnedObject& operator=(const OwnedObject&) = delete;
    operator Handle() const { return handle_; }

private:
    Handle handle_;
};

using Pen = OwnedObject<HPEN>;
using Brush = OwnedObject<HBRUSH>;
using Region = OwnedObject<HRGN>;

// Selected as long as it lives; it has to go before the object does.
class Selected {
public:
    Selected(HDC dc, HGDIOBJ object) : dc_(dc), before_(SelectObject(dc, object)) {}
    ~Selected() { SelectObject(dc_, before_); }
    Selected(const Selected&) = delete;
    Selected& operator=(const Selected&) = delete;

private:
    HDC dc_;
    HGDIOBJ before_;
};

// The whole window, with its origin at the window's corner.
class WindowDc {
public:
    explicit WindowDc(HWND window) : window_(window), dc_(GetWindowDC(window)) {}
    ~WindowDc() { ReleaseDC(window_, dc_); }
    WindowDc(const WindowDc&) = delete;
    WindowDc& operator=(const WindowDc&) = delete;
    operator HDC() const { return dc_; }

private:
    HWND window_;
    HDC dc_;
};
