// Opens the main window, says "painted" on standard output and stays, until it is ended from outside.
#include <windows.h>

#include <cstdio>

#include "AppWindow.h"

namespace {

// Timers come behind all paint messages. The second tick is behind the moment at which the window system took the pixels.
void CALLBACK OnTimer(HWND, UINT, UINT_PTR id, DWORD) {
    static int ticks = 0;
    if (++ticks == 2) {
        KillTimer(nullptr, id);
        std::puts("painted");
        std::fflush(stdout);
    }
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int showCommand) {
    theApp = new AppWindow;
    HWND window = AppWindow::RegisterMainClass(instance) != 0 ? AppWindow::CreateMainWindow(instance) : nullptr;
    if (window == nullptr) {
        return 1;
    }
    ShowWindow(window, showCommand);
    UpdateWindow(window);
    SetTimer(nullptr, 0, USER_TIMER_MINIMUM, OnTimer);
    MSG message = {};
    while (GetMessageA(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    return 0;
}
