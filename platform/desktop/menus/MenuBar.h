// Menus, and the bar of a top-level window.
#pragma once

#include <windows.h>

namespace desktop {

struct ScreenWindow;

// Both for DesktopParts. A bar follows the size of its window's widget by itself, and its menu goes with it.
void AttachMenu(ScreenWindow& window, HMENU menu, LPCSTR nameInClass);
// SC_KEYMENU opens the popup whose text marks the letter; without one (0) it gives the bar to the keys. A press on the bar
// opens its popup. Serves messages until the menu is closed; what was chosen is then posted as WM_COMMAND.
void OpenMenu(const ScreenWindow& window, WPARAM command, LPARAM lParam);

}  // namespace desktop
