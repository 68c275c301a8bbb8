// Window classes, windows, procedures, the message queue of a thread, and timers.
#pragma once

#include "win/types.h"

using WNDPROC = LRESULT(CALLBACK*)(HWND, UINT, WPARAM, LPARAM);
using TIMERPROC = void(CALLBACK*)(HWND, UINT, UINT_PTR, DWORD);

struct WNDCLASSEXA {
    UINT cbSize;
    UINT style;
    WNDPROC lpfnWndProc;
    int cbClsExtra;
    int cbWndExtra;
    HINSTANCE hInstance;
    HICON hIcon;
    HCURSOR hCursor;
    HBRUSH hbrBackground;
    LPCSTR lpszMenuName;
    LPCSTR lpszClassName;
    HICON hIconSm;
};
static_assert(sizeof(void*) != 8 || sizeof(WNDCLASSEXA) == 80);

struct MSG {
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    DWORD time;
    POINT pt;
};
using LPMSG = MSG*;
static_assert(sizeof(void*) != 8 || sizeof(MSG) == 48);

struct CREATESTRUCTA {
    LPVOID lpCreateParams;
    HINSTANCE hInstance;
    HMENU hMenu;
    HWND hwndParent;
    int cy;
    int cx;
    int y;
    int x;
    LONG style;
    LPCSTR lpszName;
    LPCSTR lpszClass;
    DWORD dwExStyle;
};

inline constexpr UINT WM_NULL = 0x0000;
inline constexpr UINT WM_CREATE = 0x0001;
inline constexpr UINT WM_DESTROY = 0x0002;
inline constexpr UINT WM_CLOSE = 0x0010;
inline constexpr UINT WM_QUIT = 0x0012;
inline constexpr UINT WM_NCCREATE = 0x0081;
inline constexpr UINT WM_NCDESTROY = 0x0082;
inline constexpr UINT WM_TIMER = 0x0113;
inline constexpr UINT WM_USER = 0x0400;

#define HWND_MESSAGE (reinterpret_cast<HWND>(static_cast<LONG_PTR>(-3)))

inline constexpr int GWLP_WNDPROC = -4;
inline constexpr int GWLP_USERDATA = -21;

// Of the class the style, the small icon and the cursor are not looked at, apart from CS_DBLCLKS.
ATOM RegisterClassExA(const WNDCLASSEXA* windowClass);
BOOL UnregisterClassA(LPCSTR className, HINSTANCE instance);

// With HWND_MESSAGE as parent a message-only window, else one on the screen. Sends WM_NCCREATE and WM_CREATE; a window that
// refuses either is gone, and the result is 0.
HWND CreateWindowExA(DWORD exStyle, LPCSTR className, LPCSTR windowName, DWORD style, int x, int y, int width, int height,
                     HWND parent, HMENU menu, HINSTANCE instance, LPVOID parameter);
// Only on the thread that made the window. Sends WM_DESTROY and WM_NCDESTROY; posts, timers and waiting senders go with it.
BOOL DestroyWindow(HWND window);
BOOL IsWindow(HWND window);
// The process is not named: the second argument is null.
DWORD GetWindowThreadProcessId(HWND window, LPDWORD processId);
LRESULT DefWindowProcA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT CallWindowProcA(WNDPROC procedure, HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LONG_PTR GetWindowLongPtrA(HWND window, int index);
LONG_PTR SetWindowLongPtrA(HWND window, int index, LONG_PTR value);

// From any thread; keeps order and never blocks. Fails for a window that is gone and for a queue that holds 10,000 messages.
BOOL PostMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
// To another thread's window the call waits, and serves what is sent to the caller meanwhile. A window that dies answers 0.
LRESULT SendMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

inline constexpr UINT PM_NOREMOVE = 0x0000;
inline constexpr UINT PM_REMOVE = 0x0001;
inline constexpr UINT QS_KEY = 0x0001;
inline constexpr UINT QS_MOUSE = 0x0006;
inline constexpr UINT QS_POSTMESSAGE = 0x0008;
inline constexpr UINT QS_TIMER = 0x0010;
inline constexpr UINT QS_PAINT = 0x0020;
inline constexpr UINT QS_SENDMESSAGE = 0x0040;
inline constexpr UINT QS_INPUT = QS_KEY | QS_MOUSE | 0x0400;
inline constexpr UINT QS_ALLINPUT = 0x04FF;
inline constexpr UINT PM_QS_SENDMESSAGE = QS_SENDMESSAGE << 16;

// Both serve sent messages first, then look for posted ones, then for WM_QUIT, then for timers. GetMessageA gives 0 for
// WM_QUIT, else 1, or -1 for a window that is none.
BOOL GetMessageA(LPMSG message, HWND window, UINT first, UINT last);
BOOL PeekMessageA(LPMSG message, HWND window, UINT first, UINT last, UINT flags);
LRESULT DispatchMessageA(const MSG* message);
void PostQuitMessage(int exitCode);

inline constexpr UINT USER_TIMER_MINIMUM = 0x0000000A;
// The period is at least USER_TIMER_MINIMUM. The identifier replaces an earlier timer of the same number; without a window,
// one that names no timer is ignored and a new identifier is given. Gives 0 on failure.
UINT_PTR SetTimer(HWND window, UINT_PTR id, UINT periodMs, TIMERPROC procedure);
BOOL KillTimer(HWND window, UINT_PTR id);

// Waits for any one of the handles, or for input of the named kinds that the thread has not seen yet (WAIT_OBJECT_0 +
// count). Waiting for all is not supported.
DWORD MsgWaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL waitAll, DWORD milliseconds, DWORD wakeMask);
