// Menus and accelerators.
#pragma once

#include "win/types.h"

#include "win/messages.h"

inline constexpr UINT MF_BYCOMMAND = 0x0000;
inline constexpr UINT MF_ENABLED = 0x0000;
inline constexpr UINT MF_GRAYED = 0x0001;
inline constexpr UINT MF_DISABLED = 0x0002;
inline constexpr UINT MF_CHECKED = 0x0008;
inline constexpr UINT MF_POPUP = 0x0010;
inline constexpr UINT MF_HILITE = 0x0080;
inline constexpr UINT MF_BYPOSITION = 0x0400;
inline constexpr UINT MF_SEPARATOR = 0x0800;
inline constexpr UINT MF_HELP = 0x4000;

inline constexpr UINT MIIM_STATE = 0x0001;
inline constexpr UINT MFS_CHECKED = MF_CHECKED;

struct MENUITEMINFOA {
    UINT cbSize;
    UINT fMask;
    UINT fType;
    UINT fState;
    UINT wID;
    HMENU hSubMenu;
    void* hbmpChecked;
    void* hbmpUnchecked;
    ULONG_PTR dwItemData;
    LPSTR dwTypeData;
    UINT cch;
    void* hbmpItem;
};
static_assert(sizeof(void*) != 8 || sizeof(MENUITEMINFOA) == 80);

HMENU LoadMenuA(HINSTANCE instance, LPCSTR resource);
BOOL DestroyMenu(HMENU menu);
HMENU GetMenu(HWND window);
HMENU GetSubMenu(HMENU menu, int position);
// By command or by position; a command is looked for in the popups below as well.
UINT GetMenuState(HMENU menu, UINT item, UINT flags);
// The state alone (MIIM_STATE).
BOOL GetMenuItemInfoA(HMENU menu, UINT item, BOOL byPosition, MENUITEMINFOA* info);
BOOL SetMenuItemInfoA(HMENU menu, UINT item, BOOL byPosition, const MENUITEMINFOA* info);
// The state before, or -1 if there is no such item.
BOOL EnableMenuItem(HMENU menu, UINT item, UINT flags);

inline constexpr BYTE FVIRTKEY = 0x01;
inline constexpr BYTE FNOINVERT = 0x02;
inline constexpr BYTE FSHIFT = 0x04;
inline constexpr BYTE FCONTROL = 0x08;
inline constexpr BYTE FALT = 0x10;

struct ACCEL {
    BYTE fVirt;
    WORD key;
    WORD cmd;
};
static_assert(sizeof(ACCEL) == 6);

HACCEL LoadAcceleratorsA(HINSTANCE instance, LPCSTR resource);
// Keys by FVIRTKEY alone. Sends WM_COMMAND; a command of the window's menu only after WM_INITMENU and WM_INITMENUPOPUP, and
// not while it is grey, the mouse is captured, or the window is disabled or minimized.
int TranslateAcceleratorA(HWND window, HACCEL table, LPMSG message);
