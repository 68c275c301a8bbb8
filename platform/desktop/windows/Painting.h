// What of a window has to be painted, and the device contexts that paint it.
#pragma once

#include <windows.h>

#include <QRegion>

#include "ScreenWindow.h"

namespace desktop {

// To the desktop's window, posted: another thread wants a window (wParam) redrawn (lParam: the flags).
inline constexpr UINT kRedrawMessage = WM_USER;

// Client and frame, to be erased. A native widget paints itself when Qt has time.
void InvalidateWhole(ScreenWindow& window);
void Invalidate(ScreenWindow& window, const QRegion& area, bool erase);
// The frame as a window without a wish of its own has it: border and sunken edge.
void PaintDefaultFrame(HWND window);

}  // namespace desktop
