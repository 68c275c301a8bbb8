// A window for messages alone.
#pragma once

#include <windows.h>

// Null if it cannot be made. The class stays, for the next of that name.
inline HWND MakeMessageWindow(const char* className, WNDPROC procedure) {
    WNDCLASSEXA windowClass = {};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = procedure;
    windowClass.lpszClassName = className;
    RegisterClassExA(&windowClass);
    return CreateWindowExA(0, className, "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
}
