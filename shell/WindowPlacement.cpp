#include "WindowPlacement.h"

RECT DesktopWithoutBar(const RECT& desktop, const RECT& bar) {
    RECT rest = desktop;
    if (bar.left < 0 && bar.top < 0) {
        if (bar.right < rest.right) {
            rest.left = bar.right;
        }
        if (bar.bottom < rest.bottom) {
            rest.top = bar.bottom;
        }
    } else if (bar.left < 0) {
        rest.bottom = bar.top;
    } else if (bar.top < 0) {
        rest.right = bar.left;
    }
    return rest;
}

void PlaceWindow(HWND window, int width, int height, int x, int y) {
    RECT desktop = {};
    if (!GetWindowRect(GetDesktopWindow(), &desktop)) {
        return;
    }
    HWND bar = FindWindowA("Shell_TrayWnd", nullptr);
    RECT barRect = {};
    if (bar != nullptr && GetWindowRect(bar, &barRect)) {
        desktop = DesktopWithoutBar(desktop, barRect);
    }
    // The numbers were stored by whoever may write there, and any of them may come.
    const long long centerX = static_cast<long long>(x) + width / 2;
    const long long centerY = static_cast<long long>(y) + height / 2;
    if (centerX >= desktop.left && centerX <= desktop.right && centerY >= desktop.top && centerY <= desktop.bottom) {
        MoveWindow(window, x, y, width, height, TRUE);
    } else {
        CenterWindow(window, width, height);
    }
}

void CenterWindow(HWND window, int width, int height) {
    MONITORINFO primary = {};
    primary.cbSize = sizeof primary;
    if (GetMonitorInfoA(MonitorFromWindow(nullptr, MONITOR_DEFAULTTOPRIMARY), &primary)) {
        const RECT& screen = primary.rcMonitor;
        MoveWindow(window, (screen.left + screen.right - width) / 2, (screen.top + screen.bottom - height) / 2, width,
                   height, TRUE);
    }
}
