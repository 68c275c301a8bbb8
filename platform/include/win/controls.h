// The standard controls: classes "BUTTON", "EDIT", "STATIC" and "LISTBOX".
#pragma once

#include "win/types.h"

// --- Button --------------------------------------------------------------------------------------------------------------

inline constexpr DWORD BS_PUSHBUTTON = 0x0000;
inline constexpr DWORD BS_DEFPUSHBUTTON = 0x0001;
inline constexpr DWORD BS_GROUPBOX = 0x0007;
inline constexpr UINT BM_SETSTYLE = 0x00F4;
inline constexpr UINT BM_CLICK = 0x00F5;
inline constexpr WORD BN_CLICKED = 0;

// --- Static --------------------------------------------------------------------------------------------------------------

inline constexpr DWORD SS_LEFT = 0x0000;
inline constexpr DWORD SS_ICON = 0x0003;
inline constexpr DWORD SS_NOPREFIX = 0x0080;
inline constexpr DWORD SS_CENTERIMAGE = 0x0200;
inline constexpr DWORD SS_SUNKEN = 0x1000;
inline constexpr UINT STM_SETICON = 0x0170;

// --- Edit ----------------------------------------------------------------------------------------------------------------

inline constexpr DWORD ES_RIGHT = 0x0002;
inline constexpr DWORD ES_AUTOHSCROLL = 0x0080;
inline constexpr DWORD ES_NUMBER = 0x2000;
inline constexpr UINT EM_GETSEL = 0x00B0;
inline constexpr UINT EM_SETSEL = 0x00B1;
inline constexpr UINT EM_REPLACESEL = 0x00C2;
inline constexpr UINT EM_LIMITTEXT = 0x00C5;
inline constexpr WORD EN_SETFOCUS = 0x0100;
inline constexpr WORD EN_KILLFOCUS = 0x0200;
inline constexpr WORD EN_CHANGE = 0x0300;
inline constexpr WORD EN_UPDATE = 0x0400;
inline constexpr WORD EN_MAXTEXT = 0x0501;

// --- List box ------------------------------------------------------------------------------------------------------------

inline constexpr DWORD LBS_NOTIFY = 0x0001;
inline constexpr DWORD LBS_SORT = 0x0002;
inline constexpr DWORD LBS_OWNERDRAWVARIABLE = 0x0020;
inline constexpr DWORD LBS_HASSTRINGS = 0x0040;
inline constexpr DWORD LBS_USETABSTOPS = 0x0080;
inline constexpr DWORD LBS_NOINTEGRALHEIGHT = 0x0100;
inline constexpr UINT LB_INSERTSTRING = 0x0181;
inline constexpr UINT LB_DELETESTRING = 0x0182;
inline constexpr UINT LB_RESETCONTENT = 0x0184;
inline constexpr UINT LB_SETCURSEL = 0x0186;
inline constexpr UINT LB_GETCURSEL = 0x0188;
inline constexpr UINT LB_GETTEXT = 0x0189;
inline constexpr UINT LB_GETTEXTLEN = 0x018A;
inline constexpr UINT LB_GETCOUNT = 0x018B;
inline constexpr UINT LB_GETTOPINDEX = 0x018E;
inline constexpr UINT LB_SETTOPINDEX = 0x0197;
inline constexpr UINT LB_GETITEMRECT = 0x0198;
inline constexpr UINT LB_GETITEMDATA = 0x0199;
inline constexpr UINT LB_SETITEMDATA = 0x019A;
inline constexpr UINT LB_SETITEMHEIGHT = 0x01A0;
inline constexpr UINT LB_GETITEMHEIGHT = 0x01A1;
inline constexpr int LB_OKAY = 0;
inline constexpr int LB_ERR = -1;
inline constexpr WORD LBN_SELCHANGE = 1;
inline constexpr WORD LBN_DBLCLK = 2;
inline constexpr WORD LBN_SETFOCUS = 4;
inline constexpr WORD LBN_KILLFOCUS = 5;

inline constexpr UINT ODT_LISTBOX = 2;
inline constexpr UINT ODA_DRAWENTIRE = 0x0001;
inline constexpr UINT ODA_SELECT = 0x0002;
inline constexpr UINT ODA_FOCUS = 0x0004;
inline constexpr UINT ODS_SELECTED = 0x0001;
inline constexpr UINT ODS_DISABLED = 0x0004;
inline constexpr UINT ODS_FOCUS = 0x0010;

struct MEASUREITEMSTRUCT {
    UINT CtlType;
    UINT CtlID;
    UINT itemID;
    UINT itemWidth;
    UINT itemHeight;
    ULONG_PTR itemData;
};

struct DRAWITEMSTRUCT {
    UINT CtlType;
    UINT CtlID;
    UINT itemID;
    UINT itemAction;
    UINT itemState;
    HWND hwndItem;
    HDC hDC;
    RECT rcItem;
    ULONG_PTR itemData;
};
