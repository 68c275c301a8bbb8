// Windows on the screen: their styles, their place, their order, focus, painting requests and input state.
//
// All of these windows belong to one thread, the one that runs WinMain. Unless a line says otherwise, the functions here are
// for that thread.
#pragma once

#include "win/types.h"

#include "win/messages.h"

// --- Styles --------------------------------------------------------------------------------------------------------------

inline constexpr DWORD WS_OVERLAPPED = 0x00000000;
inline constexpr DWORD WS_POPUP = 0x80000000;
inline constexpr DWORD WS_CHILD = 0x40000000;
inline constexpr DWORD WS_MINIMIZE = 0x20000000;
inline constexpr DWORD WS_VISIBLE = 0x10000000;
inline constexpr DWORD WS_DISABLED = 0x08000000;
inline constexpr DWORD WS_CLIPSIBLINGS = 0x04000000;
inline constexpr DWORD WS_MAXIMIZE = 0x01000000;
inline constexpr DWORD WS_BORDER = 0x00800000;
inline constexpr DWORD WS_DLGFRAME = 0x00400000;
inline constexpr DWORD WS_CAPTION = WS_BORDER | WS_DLGFRAME;
inline constexpr DWORD WS_SYSMENU = 0x00080000;
inline constexpr DWORD WS_THICKFRAME = 0x00040000;
inline constexpr DWORD WS_GROUP = 0x00020000;
inline constexpr DWORD WS_TABSTOP = 0x00010000;
inline constexpr DWORD WS_MINIMIZEBOX = 0x00020000;
inline constexpr DWORD WS_MAXIMIZEBOX = 0x00010000;
inline constexpr DWORD WS_OVERLAPPEDWINDOW =
    WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MINIMIZEBOX | WS_MAXIMIZEBOX;
inline constexpr DWORD WS_EX_CLIENTEDGE = 0x00000200;
inline constexpr DWORD WS_EX_CONTROLPARENT = 0x00010000;

#define CW_USEDEFAULT (static_cast<int>(0x80000000))

inline constexpr int GWL_STYLE = -16;
inline constexpr int GWL_EXSTYLE = -20;
inline constexpr int GWLP_HINSTANCE = -6;
inline constexpr int GWLP_ID = -12;

// --- Messages ------------------------------------------------------------------------------------------------------------

inline constexpr UINT WM_MOVE = 0x0003;
inline constexpr UINT WM_SIZE = 0x0005;
inline constexpr UINT WM_ACTIVATE = 0x0006;
inline constexpr UINT WM_SETFOCUS = 0x0007;
inline constexpr UINT WM_KILLFOCUS = 0x0008;
inline constexpr UINT WM_ENABLE = 0x000A;
inline constexpr UINT WM_SETREDRAW = 0x000B;
inline constexpr UINT WM_SETTEXT = 0x000C;
inline constexpr UINT WM_GETTEXT = 0x000D;
inline constexpr UINT WM_GETTEXTLENGTH = 0x000E;
inline constexpr UINT WM_PAINT = 0x000F;
inline constexpr UINT WM_QUERYENDSESSION = 0x0011;
inline constexpr UINT WM_ERASEBKGND = 0x0014;
inline constexpr UINT WM_ENDSESSION = 0x0016;  // also when SIGTERM, SIGHUP or SIGINT asks the program to end
inline constexpr UINT WM_SHOWWINDOW = 0x0018;
inline constexpr UINT WM_ACTIVATEAPP = 0x001C;
inline constexpr UINT WM_GETMINMAXINFO = 0x0024;
inline constexpr UINT WM_DRAWITEM = 0x002B;
inline constexpr UINT WM_MEASUREITEM = 0x002C;
inline constexpr UINT WM_SETFONT = 0x0030;
inline constexpr UINT WM_GETFONT = 0x0031;
inline constexpr UINT WM_WINDOWPOSCHANGING = 0x0046;
inline constexpr UINT WM_WINDOWPOSCHANGED = 0x0047;
inline constexpr UINT WM_NCCALCSIZE = 0x0083;
inline constexpr UINT WM_NCHITTEST = 0x0084;
inline constexpr UINT WM_NCPAINT = 0x0085;
inline constexpr UINT WM_NCACTIVATE = 0x0086;
inline constexpr UINT WM_GETDLGCODE = 0x0087;
inline constexpr UINT WM_KEYDOWN = 0x0100;
inline constexpr UINT WM_KEYUP = 0x0101;
inline constexpr UINT WM_CHAR = 0x0102;
inline constexpr UINT WM_SYSKEYDOWN = 0x0104;
inline constexpr UINT WM_SYSKEYUP = 0x0105;
inline constexpr UINT WM_SYSCHAR = 0x0106;
inline constexpr UINT WM_INITDIALOG = 0x0110;
inline constexpr UINT WM_COMMAND = 0x0111;
inline constexpr UINT WM_SYSCOMMAND = 0x0112;
inline constexpr UINT WM_INITMENU = 0x0116;
inline constexpr UINT WM_INITMENUPOPUP = 0x0117;
inline constexpr UINT WM_MENUSELECT = 0x011F;
inline constexpr UINT WM_ENTERIDLE = 0x0121;  // wParam MSGF_*, lParam the dialog
inline constexpr UINT WM_CTLCOLORLISTBOX = 0x0134;
inline constexpr UINT WM_MOUSEFIRST = 0x0200;
inline constexpr UINT WM_MOUSEMOVE = 0x0200;
inline constexpr UINT WM_LBUTTONDOWN = 0x0201;
inline constexpr UINT WM_LBUTTONUP = 0x0202;
inline constexpr UINT WM_LBUTTONDBLCLK = 0x0203;
inline constexpr UINT WM_RBUTTONDOWN = 0x0204;
inline constexpr UINT WM_RBUTTONUP = 0x0205;
inline constexpr UINT WM_RBUTTONDBLCLK = 0x0206;
inline constexpr UINT WM_MBUTTONDOWN = 0x0207;
inline constexpr UINT WM_MBUTTONUP = 0x0208;
inline constexpr UINT WM_MBUTTONDBLCLK = 0x0209;
inline constexpr UINT WM_MOUSEWHEEL = 0x020A;  // to the window under the pointer
inline constexpr int WHEEL_DELTA = 120;        // one notch
inline constexpr UINT WM_MOUSELAST = 0x020E;
inline constexpr UINT WM_ENTERMENULOOP = 0x0211;
inline constexpr UINT WM_EXITMENULOOP = 0x0212;
inline constexpr UINT WM_CAPTURECHANGED = 0x0215;
inline constexpr UINT WM_CUT = 0x0300;
inline constexpr UINT WM_COPY = 0x0301;
inline constexpr UINT WM_PASTE = 0x0302;
inline constexpr UINT WM_CLEAR = 0x0303;
inline constexpr UINT WM_UNDO = 0x0304;

inline constexpr WPARAM SIZE_RESTORED = 0;
inline constexpr WPARAM SIZE_MINIMIZED = 1;
inline constexpr WPARAM SIZE_MAXIMIZED = 2;
inline constexpr WPARAM WA_INACTIVE = 0;
inline constexpr WPARAM WA_ACTIVE = 1;
inline constexpr WPARAM WA_CLICKACTIVE = 2;
inline constexpr WPARAM SC_CLOSE = 0xF060;
inline constexpr WPARAM SC_KEYMENU = 0xF100;

inline constexpr LRESULT HTTRANSPARENT = -1;
inline constexpr LRESULT HTNOWHERE = 0;
inline constexpr LRESULT HTCLIENT = 1;

inline constexpr WPARAM MK_LBUTTON = 0x0001;
inline constexpr WPARAM MK_RBUTTON = 0x0002;
inline constexpr WPARAM MK_SHIFT = 0x0004;
inline constexpr WPARAM MK_CONTROL = 0x0008;
inline constexpr WPARAM MK_MBUTTON = 0x0010;

struct MINMAXINFO {
    POINT ptReserved;
    POINT ptMaxSize;
    POINT ptMaxPosition;
    POINT ptMinTrackSize;
    POINT ptMaxTrackSize;
};

struct WINDOWPOS {
    HWND hwnd;
    HWND hwndInsertAfter;
    int x;
    int y;
    int cx;
    int cy;
    UINT flags;
};

struct NCCALCSIZE_PARAMS {
    RECT rgrc[3];
    WINDOWPOS* lppos;
};

// --- Life, place and order -----------------------------------------------------------------------------------------------

inline constexpr int SW_HIDE = 0;
inline constexpr int SW_SHOWNORMAL = 1;
inline constexpr int SW_SHOWMINIMIZED = 2;
inline constexpr int SW_SHOWMAXIMIZED = 3;
inline constexpr int SW_SHOWNOACTIVATE = 4;
inline constexpr int SW_SHOW = 5;
inline constexpr int SW_MINIMIZE = 6;
inline constexpr int SW_RESTORE = 9;

inline constexpr UINT SWP_NOSIZE = 0x0001;
inline constexpr UINT SWP_NOMOVE = 0x0002;
inline constexpr UINT SWP_NOZORDER = 0x0004;
inline constexpr UINT SWP_NOREDRAW = 0x0008;
inline constexpr UINT SWP_NOACTIVATE = 0x0010;
inline constexpr UINT SWP_FRAMECHANGED = 0x0020;
inline constexpr UINT SWP_SHOWWINDOW = 0x0040;
inline constexpr UINT SWP_HIDEWINDOW = 0x0080;

#define HWND_TOP (static_cast<HWND>(nullptr))
#define HWND_BOTTOM (reinterpret_cast<HWND>(static_cast<LONG_PTR>(1)))

// Whether it was visible before.
BOOL ShowWindow(HWND window, int command);
BOOL UpdateWindow(HWND window);
// Of the flags those above are known.
BOOL SetWindowPos(HWND window, HWND insertAfter, int x, int y, int width, int height, UINT flags);
BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint);
BOOL BringWindowToTop(HWND window);
// In screen coordinates, frame included. Before the window system has told the size of a top-level window's frame it counts
// as nothing.
BOOL GetWindowRect(HWND window, LPRECT rect);
BOOL GetClientRect(HWND window, LPRECT rect);
BOOL ClientToScreen(HWND window, LPPOINT point);
BOOL ScreenToClient(HWND window, LPPOINT point);
BOOL IsWindowVisible(HWND window);
BOOL IsIconic(HWND window);

// Whether it was disabled before.
BOOL EnableWindow(HWND window, BOOL enable);
BOOL IsWindowEnabled(HWND window);

// From any thread.
HWND GetParent(HWND window);
BOOL IsChild(HWND parent, HWND window);

inline constexpr UINT GW_HWNDNEXT = 2;
inline constexpr UINT GW_HWNDPREV = 3;
inline constexpr UINT GW_OWNER = 4;
inline constexpr UINT GW_CHILD = 5;
HWND GetWindow(HWND window, UINT relation);
// Its rectangle reaches over the work areas of all screens, where Windows tells the primary screen's alone: desktops here
// have no bar to look for, and windows keep their place on any screen.
HWND GetDesktopWindow();

struct MONITORINFO {
    DWORD cbSize;
    RECT rcMonitor;
    RECT rcWork;
    DWORD dwFlags;  // always 0 here
};
inline constexpr DWORD MONITOR_DEFAULTTOPRIMARY = 1;
// The screen that the middle of the window lies on; the primary one for no window, and for one that is on none.
HMONITOR MonitorFromWindow(HWND window, DWORD otherwise);
BOOL GetMonitorInfoA(HMONITOR monitor, MONITORINFO* info);

// Among the windows of this process. FindWindowExA without a parent and a child also finds the main window of another copy
// of the program by its title; only SetForegroundWindow knows what to do with such a handle.
HWND FindWindowA(LPCSTR className, LPCSTR title);
HWND FindWindowExA(HWND parent, HWND childAfter, LPCSTR className, LPCSTR title);

// A text for another thread's window is sent there.
BOOL SetWindowTextA(HWND window, LPCSTR text);
int GetWindowTextA(HWND window, LPSTR buffer, int size);
int GetClassNameA(HWND window, LPSTR buffer, int size);

// --- Focus and input -----------------------------------------------------------------------------------------------------

HWND SetFocus(HWND window);
HWND GetFocus();
HWND GetActiveWindow();
HWND GetForegroundWindow();
BOOL SetForegroundWindow(HWND window);
HWND SetCapture(HWND window);
BOOL ReleaseCapture();
HWND GetCapture();

inline constexpr int VK_BACK = 0x08;
inline constexpr int VK_TAB = 0x09;
inline constexpr int VK_RETURN = 0x0D;
inline constexpr int VK_SHIFT = 0x10;
inline constexpr int VK_CONTROL = 0x11;
inline constexpr int VK_MENU = 0x12;
inline constexpr int VK_ESCAPE = 0x1B;
inline constexpr int VK_SPACE = 0x20;
inline constexpr int VK_PRIOR = 0x21;
inline constexpr int VK_NEXT = 0x22;
inline constexpr int VK_END = 0x23;
inline constexpr int VK_HOME = 0x24;
inline constexpr int VK_LEFT = 0x25;
inline constexpr int VK_UP = 0x26;
inline constexpr int VK_RIGHT = 0x27;
inline constexpr int VK_DOWN = 0x28;
inline constexpr int VK_INSERT = 0x2D;
inline constexpr int VK_DELETE = 0x2E;
inline constexpr int VK_F4 = 0x73;
inline constexpr int VK_F10 = 0x79;

// The high bit: held down, as of the messages fetched so far; GetAsyncKeyState knows what has been pressed since as well.
SHORT GetKeyState(int virtualKey);
SHORT GetAsyncKeyState(int virtualKey);
inline constexpr DWORD KEYEVENTF_KEYUP = 0x0002;
// A key press or release as if it came from the keyboard. The scan code is not looked at.
void keybd_event(BYTE virtualKey, BYTE scanCode, DWORD flags, ULONG_PTR extraInfo);

BOOL TranslateMessage(const MSG* message);
BOOL MessageBeep(UINT kind);

// --- Painting requests ---------------------------------------------------------------------------------------------------

inline constexpr UINT RDW_INVALIDATE = 0x0001;
inline constexpr UINT RDW_ERASE = 0x0004;
inline constexpr UINT RDW_NOINTERNALPAINT = 0x0010;
inline constexpr UINT RDW_ALLCHILDREN = 0x0080;
inline constexpr UINT RDW_UPDATENOW = 0x0100;
inline constexpr UINT RDW_FRAME = 0x0400;
// Both from any thread. Of the flags those above are known.
BOOL RedrawWindow(HWND window, const RECT* area, HRGN region, UINT flags);
BOOL InvalidateRect(HWND window, const RECT* area, BOOL erase);

// --- Rectangles ----------------------------------------------------------------------------------------------------------

BOOL InflateRect(LPRECT rect, int dx, int dy);
BOOL OffsetRect(LPRECT rect, int dx, int dy);
BOOL EqualRect(const RECT* first, const RECT* second);
BOOL PtInRect(const RECT* rect, POINT point);
