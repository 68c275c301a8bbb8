// The common controls: of these the status bar.
#pragma once

#include "windows.h"

#define STATUSCLASSNAMEA "msctls_statusbar32"
inline constexpr DWORD SBARS_SIZEGRIP = 0x0100;
inline constexpr DWORD CCS_BOTTOM = 0x0003;
inline constexpr UINT SB_SETTEXTA = WM_USER + 1;
inline constexpr UINT SB_GETTEXTA = WM_USER + 2;
inline constexpr UINT SB_SETPARTS = WM_USER + 4;

void InitCommonControls();
