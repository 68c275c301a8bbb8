// The help viewer, which is looked for when it is first wanted: not every machine has one.
#pragma once

#include <windows.h>

inline constexpr UINT HH_DISPLAY_TOC = 1;
inline constexpr UINT HH_GET_WIN_HANDLE = 6;
inline constexpr UINT HH_CLOSE_ALL = 18;
inline constexpr UINT HH_INITIALIZE = 28;
inline constexpr UINT HH_UNINITIALIZE = 29;

// HtmlHelpA, or 0 where there is no viewer. On the thread of the windows.
HWND HtmlHelpCall(HWND window, LPCSTR file, UINT command, DWORD_PTR data);

// How the viewer's library is found. A test puts its own functions here, since it has no say in what the machine has.
struct HelpLoader {
    HMODULE(WINAPI* load)(LPCSTR name);
    FARPROC(WINAPI* find)(HMODULE library, LPCSTR name);
};
// Forgets what was found with the loader before.
void UseHelpLoader(const HelpLoader& loader);
