// What the desktop calls in the folders above its own.
#pragma once

#include <windows.h>

class QWidget;

namespace desktop {

struct ScreenWindow;

struct DesktopParts {
    // The widget of a standard control that paints itself, or null for windows of all other classes.
    QWidget* (*makeControlWidget)(ScreenWindow& window, QWidget* parent);
    // Sets menu and bar of a new top-level window: its own menu, or else the one that its class names. Either may be null.
    void (*attachMenu)(ScreenWindow& window, HMENU menu, LPCSTR nameInClass);
    // Carries out the WM_SYSCOMMANDs that open the menu, without their lowest bits. Others do nothing.
    void (*openMenu)(const ScreenWindow& window, WPARAM command, LPARAM lParam);
};

}  // namespace desktop
