// The line at the bottom of the main window, which helps with the menu.
#pragma once

#include <windows.h>

// On the thread of the windows. Without a control, each operation does nothing.
class StatusBar {
public:
    StatusBar() = default;
    // Destroys the control.
    virtual ~StatusBar();
    StatusBar(const StatusBar&) = delete;
    StatusBar& operator=(const StatusBar&) = delete;

    // Makes the control, visible, as a child of the window.
    void Create(HWND parent);

    // The window has got a new size: the kind and the new client size in pixels, as WM_SIZE tells them.
    void OnParentSize(WPARAM kind, int width, int height);

    // In pixels; 0 and 0 while the bar is hidden.
    void GetSize(int& width, int& height) const;

    // Shows a string from the resources in a part of the bar, or nothing at all.
    static constexpr int kNoString = -1;
    void SetText(WPARAM part, int stringId);

    void Show(BOOL show);

private:
    HWND hWnd = nullptr;  // the control
};
