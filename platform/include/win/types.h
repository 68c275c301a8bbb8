// The basic types of Win32, with Microsoft's sizes: LONG and DWORD have 32 bits, handles and message parameters are as wide
// as a pointer.
#pragma once

#include <cstddef>
#include <cstdint>

#define WINAPI
#define CALLBACK

using BOOL = int;
using CHAR = char;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using SHORT = std::int16_t;
using INT = int;
using UINT = unsigned int;
using LONG = std::int32_t;
using DWORD = std::uint32_t;
using SIZE_T = std::size_t;

using INT_PTR = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using LONG_PTR = std::intptr_t;
using ULONG_PTR = std::uintptr_t;
using DWORD_PTR = std::uintptr_t;

using WPARAM = UINT_PTR;
using LPARAM = LONG_PTR;
using LRESULT = LONG_PTR;
using ATOM = WORD;

using LPSTR = CHAR*;
using LPCSTR = const CHAR*;
using LPVOID = void*;
using LPCVOID = const void*;
using LPDWORD = DWORD*;
using LPBYTE = BYTE*;

using HANDLE = void*;
using HLOCAL = void*;

// Handles of different kinds are different types, so that the compiler finds a mix-up.
using HWND = struct HwndTag*;
using HINSTANCE = struct HinstanceTag*;
using HICON = struct HiconTag*;
using HMENU = struct HmenuTag*;
using HACCEL = struct HaccelTag*;
using HRSRC = struct HrsrcTag*;
using HDC = struct HdcTag*;
using HKEY = struct HkeyTag*;
using HIMC = struct HimcTag*;
using HMONITOR = struct HmonitorTag*;

// What SelectObject and DeleteObject take: a pen, a brush, a font or a region.
using HGDIOBJ = void*;
using HPEN = struct HpenTag*;
using HBRUSH = struct HbrushTag*;
using HFONT = struct HfontTag*;
using HRGN = struct HrgnTag*;

using HMODULE = HINSTANCE;
using HCURSOR = HICON;
using HGLOBAL = HANDLE;
using FARPROC = INT_PTR(WINAPI*)();
using COLORREF = DWORD;

inline constexpr BOOL FALSE = 0;
inline constexpr BOOL TRUE = 1;

// Windows defines this as a macro around a cast, and so do we: a constant expression cannot hold such a pointer.
#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1)))

inline constexpr DWORD INFINITE = 0xFFFFFFFF;

constexpr WORD LOWORD(DWORD_PTR value) {
    return static_cast<WORD>(value & 0xFFFF);
}
constexpr WORD HIWORD(DWORD_PTR value) {
    return static_cast<WORD>((value >> 16) & 0xFFFF);
}
constexpr LONG MAKELONG(DWORD_PTR low, DWORD_PTR high) {
    return static_cast<LONG>(static_cast<DWORD>(low & 0xFFFF) | (static_cast<DWORD>(high & 0xFFFF) << 16));
}
// Zero-extends, as on 64-bit Windows: a packed pair of coordinates is never a negative LPARAM.
constexpr LPARAM MAKELPARAM(DWORD_PTR low, DWORD_PTR high) {
    return static_cast<LPARAM>(static_cast<DWORD>(MAKELONG(low, high)));
}
constexpr WPARAM MAKEWPARAM(DWORD_PTR low, DWORD_PTR high) {
    return static_cast<WPARAM>(static_cast<DWORD>(MAKELONG(low, high)));
}

struct POINT {
    LONG x;
    LONG y;
};
using LPPOINT = POINT*;

struct SIZE {
    LONG cx;
    LONG cy;
};
using LPSIZE = SIZE*;

struct RECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};
using LPRECT = RECT*;

struct SECURITY_ATTRIBUTES;
struct OVERLAPPED;
using LPSECURITY_ATTRIBUTES = SECURITY_ATTRIBUTES*;
using LPOVERLAPPED = OVERLAPPED*;

static_assert(sizeof(LONG) == 4 && sizeof(DWORD) == 4 && sizeof(WPARAM) == sizeof(void*));
