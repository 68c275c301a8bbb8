// Device contexts, pens, brushes, fonts, regions and text. Coordinates are pixels; nothing is anti-aliased but text. All on
// the thread that owns the windows.
#pragma once

#include "win/types.h"

constexpr COLORREF RGB(unsigned red, unsigned green, unsigned blue) {
    return (red & 0xFF) | (green & 0xFF) << 8 | (blue & 0xFF) << 16;
}
inline constexpr COLORREF CLR_INVALID = 0xFFFFFFFF;

// --- System colours ------------------------------------------------------------------------------------------------------

inline constexpr int COLOR_WINDOW = 5;
inline constexpr int COLOR_WINDOWTEXT = 8;
inline constexpr int COLOR_BTNFACE = 15;
inline constexpr int COLOR_BTNSHADOW = 16;
inline constexpr int COLOR_BTNTEXT = 18;
inline constexpr int COLOR_BTNHIGHLIGHT = 20;
// From the desktop's palette, light or dark.
DWORD GetSysColor(int index);
HBRUSH GetSysColorBrush(int index);

// --- Device contexts -----------------------------------------------------------------------------------------------------

struct PAINTSTRUCT {
    HDC hdc;
    BOOL fErase;
    RECT rcPaint;
    BOOL fRestore;
    BOOL fIncUpdate;
    BYTE rgbReserved[32];
};

// Clips to what has to be painted.
HDC BeginPaint(HWND window, PAINTSTRUCT* paint);
BOOL EndPaint(HWND window, const PAINTSTRUCT* paint);
HDC GetDC(HWND window);
// The whole window, frame included, with its origin at the window's corner.
HDC GetWindowDC(HWND window);
int ReleaseDC(HWND window, HDC dc);

// --- Objects -------------------------------------------------------------------------------------------------------------

inline constexpr int PS_SOLID = 0;
inline constexpr int WHITE_BRUSH = 0;
inline constexpr int NULL_BRUSH = 5;
inline constexpr int BLACK_PEN = 7;
inline constexpr int NULL_PEN = 8;
inline constexpr int SYSTEM_FONT = 13;

// Solid, one pixel wide (width 0 or 1).
HPEN CreatePen(int style, int width, COLORREF color);
HBRUSH CreateSolidBrush(COLORREF color);
HGDIOBJ GetStockObject(int object);
// The object that was selected before; a region is copied into the clip instead.
HGDIOBJ SelectObject(HDC dc, HGDIOBJ object);
// False for an object that is selected somewhere. Stock objects stay.
BOOL DeleteObject(HGDIOBJ object);
// Fonts alone: fills a LOGFONTA.
int GetObjectA(HANDLE object, int size, LPVOID buffer);

// --- Fonts and text ------------------------------------------------------------------------------------------------------

inline constexpr int LF_FACESIZE = 32;
inline constexpr LONG FW_NORMAL = 400;
inline constexpr LONG FW_BOLD = 700;
inline constexpr BYTE ANSI_CHARSET = 0;
inline constexpr BYTE DEFAULT_CHARSET = 1;
inline constexpr BYTE SHIFTJIS_CHARSET = 128;
inline constexpr BYTE FIXED_PITCH = 0x01;
inline constexpr BYTE VARIABLE_PITCH = 0x02;
inline constexpr BYTE FF_SWISS = 0x20;
inline constexpr BYTE FF_MODERN = 0x30;

struct LOGFONTA {
    LONG lfHeight;
    LONG lfWidth;
    LONG lfEscapement;
    LONG lfOrientation;
    LONG lfWeight;
    BYTE lfItalic;
    BYTE lfUnderline;
    BYTE lfStrikeOut;
    BYTE lfCharSet;
    BYTE lfOutPrecision;
    BYTE lfClipPrecision;
    BYTE lfQuality;
    BYTE lfPitchAndFamily;
    CHAR lfFaceName[LF_FACESIZE];
};
using LPLOGFONTA = LOGFONTA*;
static_assert(sizeof(LOGFONTA) == 60);

struct TEXTMETRICA {
    LONG tmHeight;
    LONG tmAscent;
    LONG tmDescent;
    LONG tmInternalLeading;
    LONG tmExternalLeading;
    LONG tmAveCharWidth;
    LONG tmMaxCharWidth;
    LONG tmWeight;
    LONG tmOverhang;
    LONG tmDigitizedAspectX;
    LONG tmDigitizedAspectY;
    BYTE tmFirstChar;
    BYTE tmLastChar;
    BYTE tmDefaultChar;
    BYTE tmBreakChar;
    BYTE tmItalic;
    BYTE tmUnderlined;
    BYTE tmStruckOut;
    BYTE tmPitchAndFamily;
    BYTE tmCharSet;
};

// A face that the desktop lacks is replaced by one that it has. Escapement and width are not followed.
HFONT CreateFontIndirectA(const LOGFONTA* description);
// Of the measures the height and its parts, the leading and the average width are filled in.
BOOL GetTextMetricsA(HDC dc, TEXTMETRICA* metrics);
BOOL GetTextExtentPoint32A(HDC dc, LPCSTR text, int length, LPSIZE size);
COLORREF SetTextColor(HDC dc, COLORREF color);
COLORREF SetBkColor(HDC dc, COLORREF color);

inline constexpr UINT DT_RIGHT = 0x0002;
inline constexpr UINT DT_VCENTER = 0x0004;
inline constexpr UINT DT_SINGLELINE = 0x0020;
inline constexpr UINT DT_EXPANDTABS = 0x0040;
// One line. "&" marks the next character, "&&" is one "&". A length of -1: up to the terminator.
int DrawTextA(HDC dc, LPCSTR text, int length, LPRECT rect, UINT format);

// --- Lines and shapes ----------------------------------------------------------------------------------------------------

BOOL MoveToEx(HDC dc, int x, int y, LPPOINT previous);
// Without its end point.
BOOL LineTo(HDC dc, int x, int y);
// Counter-clockwise from the ray to the start to the ray to the end.
BOOL Arc(HDC dc, int left, int top, int right, int bottom, int xStart, int yStart, int xEnd, int yEnd);
BOOL Rectangle(HDC dc, int left, int top, int right, int bottom);
int FillRect(HDC dc, const RECT* rect, HBRUSH brush);
COLORREF GetPixel(HDC dc, int x, int y);

inline constexpr UINT DFC_SCROLL = 3;
inline constexpr UINT DFCS_SCROLLUP = 0x0000;
inline constexpr UINT DFCS_SCROLLDOWN = 0x0001;
inline constexpr UINT DFCS_PUSHED = 0x0200;
// Scroll arrows up and down, plain and pushed.
BOOL DrawFrameControl(HDC dc, LPRECT rect, UINT kind, UINT state);

// --- Regions -------------------------------------------------------------------------------------------------------------

inline constexpr int RGN_OR = 2;
inline constexpr int RGN_XOR = 3;
inline constexpr int RGN_DIFF = 4;
inline constexpr int RGN_COPY = 5;
inline constexpr int RGN_ERROR = 0;
inline constexpr int NULLREGION = 1;
inline constexpr int SIMPLEREGION = 2;
inline constexpr int COMPLEXREGION = 3;

HRGN CreateRectRgn(int left, int top, int right, int bottom);
HRGN CreateRoundRectRgn(int left, int top, int right, int bottom, int cornerWidth, int cornerHeight);
HRGN CreateEllipticRgn(int left, int top, int right, int bottom);
int CombineRgn(HRGN target, HRGN first, HRGN second, int mode);
BOOL FillRgn(HDC dc, HRGN region, HBRUSH brush);
// A border inside the region, as wide and as high as told.
BOOL FrameRgn(HDC dc, HRGN region, HBRUSH brush, int width, int height);
