// The widgets behind the windows.
#pragma once

#include <windows.h>

#include <vector>

class QObject;
class QWidget;

namespace desktop {

struct ScreenWindow;

// Gives the window its widget, by its class: a native one for the standard controls but the list box, else a plain one that
// shows the window's surface.
void MakeWidget(ScreenWindow& window);
// From now on events of the widget, which may still come, are nobody's.
void ForgetWidget(QWidget& widget);
// The window that a widget stands for, or 0.
HWND HandleOfWidget(const QObject& widget);

// Brings place, visibility and enabling of the window to its widget.
void PlaceWidget(ScreenWindow& window);
void ShowWidget(ScreenWindow& window);
// Tells the window system how small the user may make a top-level window; without a frame to size it by, it stays as it is.
void LimitSize(const ScreenWindow& window);
// Brings the order of siblings, front first, to their widgets.
void StackWidgets(const std::vector<ScreenWindow*>& siblings);

}  // namespace desktop
