// Dialogs and message boxes.
#pragma once

#include "win/types.h"

#include "win/messages.h"

using DLGPROC = INT_PTR(CALLBACK*)(HWND, UINT, WPARAM, LPARAM);

inline constexpr DWORD DS_SETFONT = 0x0040;
inline constexpr DWORD DS_MODALFRAME = 0x0080;
inline constexpr DWORD DS_CENTER = 0x0800;

inline constexpr UINT DM_GETDEFID = 0x0400;
inline constexpr UINT DM_SETDEFID = 0x0401;
inline constexpr WORD DC_HASDEFID = 0x534B;

// What WM_ENTERIDLE tells.
inline constexpr WPARAM MSGF_DIALOGBOX = 0;

inline constexpr LRESULT DLGC_WANTARROWS = 0x0001;
inline constexpr LRESULT DLGC_WANTTAB = 0x0002;
inline constexpr LRESULT DLGC_HASSETSEL = 0x0008;
inline constexpr LRESULT DLGC_DEFPUSHBUTTON = 0x0010;
inline constexpr LRESULT DLGC_UNDEFPUSHBUTTON = 0x0020;
inline constexpr LRESULT DLGC_WANTCHARS = 0x0080;
inline constexpr LRESULT DLGC_STATIC = 0x0100;
inline constexpr LRESULT DLGC_BUTTON = 0x2000;

inline constexpr int DWLP_MSGRESULT = 0;
inline constexpr int DWLP_DLGPROC = DWLP_MSGRESULT + static_cast<int>(sizeof(LRESULT));

// Without an instance handle of its own: every instance means this program.
HWND CreateDialogParamA(HINSTANCE instance, LPCSTR resource, HWND parent, DLGPROC procedure, LPARAM parameter);
// Runs until EndDialog; the owner's top-level window is disabled meanwhile. Gives -1 if the dialog could not be made, 0 for
// an owner that is none.
INT_PTR DialogBoxParamA(HINSTANCE instance, LPCSTR resource, HWND owner, DLGPROC procedure, LPARAM parameter);
BOOL EndDialog(HWND dialog, INT_PTR result);
BOOL IsDialogMessageA(HWND dialog, LPMSG message);
LRESULT DefDlgProcA(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

// Direct children alone.
HWND GetDlgItem(HWND dialog, int id);
int GetDlgCtrlID(HWND window);
BOOL SetDlgItemTextA(HWND dialog, int id, LPCSTR text);
// Both unsigned. GetDlgItemInt returns 0 for any text but a number.
UINT GetDlgItemInt(HWND dialog, int id, BOOL* translated, BOOL isSigned);
BOOL SetDlgItemInt(HWND dialog, int id, UINT value, BOOL isSigned);
// The next or previous visible and enabled child with WS_TABSTOP in the order of the children, going on at the other end;
// the control itself if there is no other.
HWND GetNextDlgTabItem(HWND dialog, HWND control, BOOL previous);

inline constexpr int IDOK = 1;
inline constexpr int IDCANCEL = 2;
inline constexpr int IDYES = 6;
inline constexpr int IDNO = 7;

inline constexpr UINT MB_OK = 0x0000;
inline constexpr UINT MB_YESNO = 0x0004;
inline constexpr UINT MB_ICONHAND = 0x0010;
inline constexpr UINT MB_ICONQUESTION = 0x0020;
inline constexpr UINT MB_ICONINFORMATION = 0x0040;
// A dialog of class "#32770" with a button for each answer, by its id. Of the styles those above are known.
int MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT style);
