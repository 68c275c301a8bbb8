// Where windows are: their frames, their client areas and the points in them.
#pragma once

#include <windows.h>

#include <QMargins>
#include <QRect>

#include "ScreenWindow.h"

namespace desktop {

// Flags beside those of the seam, in what WM_WINDOWPOSCHANGED tells.
inline constexpr UINT kNoClientSize = 0x0800;
inline constexpr UINT kNoClientMove = 0x1000;

inline QRect ToQt(const RECT& rect) {
    return {QPoint(rect.left, rect.top), QPoint(rect.right - 1, rect.bottom - 1)};
}
inline RECT ToRect(const QRect& rect) {
    return {rect.left(), rect.top(), rect.right() + 1, rect.bottom() + 1};
}

// The window, and its client area, on the screen.
QRect WindowOnScreen(const ScreenWindow& window);
QRect ClientOnScreen(const ScreenWindow& window);
// What the window system puts around the widget of a top-level window, as far as it is known.
QMargins FrameOf(const ScreenWindow& window);
// The part of the window that its widget covers: all but that frame.
RECT WidgetRect(const ScreenWindow& window);

// Asks the window what of its whole area is client area. `asNew` while it is being made.
void CalculateClient(ScreenWindow& window, bool asNew, const RECT* before);
// Takes frame, menu bar and edges off: what a window without a wish of its own gets.
void DefaultClient(const ScreenWindow& window, RECT& rect);
void AskMinMax(HWND window, MINMAXINFO& info);

// Sends WM_MOVE and WM_SIZE.
void TellSize(HWND window);
void TellMove(HWND window);
// The window system has moved or sized a top-level window, or has told the size of its frame.
void FollowGeometry(HWND window);

// What the desktop leaves of all screens, and of the one that a window is on, as MonitorFromWindow tells it.
RECT WorkArea();
RECT WorkAreaAround(HWND window);

bool IsVisibleOnScreen(const ScreenWindow& window);

}  // namespace desktop
