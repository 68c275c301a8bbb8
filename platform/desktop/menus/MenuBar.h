// Menus, and the bar of a top-level window.
#pragma once

#include <windows.h>

namespace desktop {

struct ScreenWindow;

// WM_SYSCOMMAND for a press on the bar, with its place on the screen in lParam. The lowest bits name the part of the window.
inline constexpr WPARAM kMouseMenuCommand = 0xF090;

// Gives the window a bar for its menu, if it has one.
void AttachMenuBar(ScreenWindow& window);
// Its height at a width, 0 without a bar. PlaceMenuBar puts it there; the bar follows the widget's size by itself.
int MenuBarHeight(const ScreenWindow& window, int width);
void PlaceMenuBar(ScreenWindow& window);
// Opens the popup whose text marks the letter; without one (0) gives the bar to the keys. Serves messages until the menu is
// closed; what was chosen is then posted as WM_COMMAND. False for a window without a bar.
bool OpenMenuByKey(HWND window, char letter);
// The same from a press of the left button on the bar: kMouseMenuCommand and its lParam.
bool OpenMenuByMouse(HWND window, LPARAM place);

}  // namespace desktop
