// The choosers for files and fonts.
#pragma once

#include "windows.h"

using LPOFNHOOKPROC = UINT_PTR(CALLBACK*)(HWND, UINT, WPARAM, LPARAM);
using LPCFHOOKPROC = UINT_PTR(CALLBACK*)(HWND, UINT, WPARAM, LPARAM);

inline constexpr DWORD OFN_OVERWRITEPROMPT = 0x00000002;
inline constexpr DWORD OFN_HIDEREADONLY = 0x00000004;
inline constexpr DWORD OFN_PATHMUSTEXIST = 0x00000800;
inline constexpr DWORD OFN_FILEMUSTEXIST = 0x00001000;
inline constexpr DWORD OFN_NOTESTFILECREATE = 0x00010000;
inline constexpr DWORD OFN_LONGNAMES = 0x00200000;

struct OPENFILENAMEA {
    DWORD lStructSize;
    HWND hwndOwner;
    HINSTANCE hInstance;
    LPCSTR lpstrFilter;
    LPSTR lpstrCustomFilter;
    DWORD nMaxCustFilter;
    DWORD nFilterIndex;
    LPSTR lpstrFile;
    DWORD nMaxFile;
    LPSTR lpstrFileTitle;
    DWORD nMaxFileTitle;
    LPCSTR lpstrInitialDir;
    LPCSTR lpstrTitle;
    DWORD Flags;
    WORD nFileOffset;
    WORD nFileExtension;
    LPCSTR lpstrDefExt;
    LPARAM lCustData;
    LPOFNHOOKPROC lpfnHook;
    LPCSTR lpTemplateName;
    void* pvReserved;
    DWORD dwReserved;
    DWORD FlagsEx;
};
static_assert(sizeof(void*) != 8 || sizeof(OPENFILENAMEA) == 152);

// Both return the path alone.
BOOL GetOpenFileNameA(OPENFILENAMEA* chooser);
BOOL GetSaveFileNameA(OPENFILENAMEA* chooser);

inline constexpr DWORD CF_SCREENFONTS = 0x00000001;
inline constexpr DWORD CF_INITTOLOGFONTSTRUCT = 0x00000040;

struct CHOOSEFONTA {
    DWORD lStructSize;
    HWND hwndOwner;
    HDC hDC;
    LPLOGFONTA lpLogFont;
    INT iPointSize;
    DWORD Flags;
    COLORREF rgbColors;
    LPARAM lCustData;
    LPCFHOOKPROC lpfnHook;
    LPCSTR lpTemplateName;
    HINSTANCE hInstance;
    LPSTR lpszStyle;
    WORD nFontType;
    WORD missingAlignment;
    INT nSizeMin;
    INT nSizeMax;
};
static_assert(sizeof(void*) != 8 || sizeof(CHOOSEFONTA) == 104);

// Returns the font, not its size in points.
BOOL ChooseFontA(CHOOSEFONTA* chooser);
