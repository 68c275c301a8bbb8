// Where the main window goes on the screen.
#pragma once

#include <windows.h>

// All sizes and places are in pixels of the screen, frame included.

// Where a first start begins: with its centre off the screen, so that the window is centred.
inline constexpr int kDefaultWidth = 600;
inline constexpr int kDefaultHeight = 450;
inline constexpr int kDefaultX = -600;
inline constexpr int kDefaultY = -450;

// Moves the window to that rectangle if its centre lies on the part of the desktop that the task bar leaves, edges included;
// else centres it in that size. So what was stored before a change of the display never hides the window.
void PlaceWindow(HWND window, int width, int height, int x, int y);

// Centres the window on the whole primary screen.
void CenterWindow(HWND window, int width, int height);

// What a task bar with that rectangle leaves of the desktop. The bar may stand at any edge; its rectangle reaches over that
// edge by a pixel or two, which tells where it stands.
RECT DesktopWithoutBar(const RECT& desktop, const RECT& bar);
