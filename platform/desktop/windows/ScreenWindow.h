// What the desktop knows of one window on the screen, beyond what every window has.
#pragma once

#include <windows.h>

#include <QImage>
#include <QMargins>
#include <QPoint>
#include <QRegion>
#include <memory>
#include <string>
#include <vector>

class QMenuBar;
class QWidget;

namespace desktop {

// What a control of a certain class keeps for itself.
struct ControlState {
    virtual ~ControlState() = default;
    // Qt has told screen readers that the control has the focus: what they are to hear besides.
    virtual void TellFocus(HWND) const {}
};

// On the thread of the desktop alone. While a procedure runs the window may be destroyed, so it is looked up again by its
// handle afterwards.
struct ScreenWindow {
    HWND handle = nullptr;
    ScreenWindow* parent = nullptr;       // of a child; null for a top-level window
    HWND owner = nullptr;                 // of a top-level window, or 0
    std::vector<ScreenWindow*> children;  // front first: order of the screen, of painting and of the Tab key

    // The whole window, frame included: of a child in its parent's client area, else on the screen.
    RECT place{0, 0, 0, 0};
    // Of a top-level window: what the window system puts around the widget, and where the widget was put last.
    QMargins frame;
    QRect widgetPlace;
    bool wasFramed = false;      // one that may be sized has got its first frame
    bool movedUnframed = false;  // the window system has moved it, and its frame is not known yet
    // The client area, from the window's corner.
    RECT client{0, 0, 0, 0};
    bool shownOnce = false;
    WPARAM sizeKind = SIZE_RESTORED;

    std::string text;
    HFONT font = nullptr;
    HMENU menu = nullptr;
    QMenuBar* menuBar = nullptr;

    // The widget belongs to this object. A native one paints itself; every other shows the surface, into which the drawing
    // calls go.
    QWidget* widget = nullptr;
    bool native = false;
    QImage surface;  // the whole window
    bool redraw = true;

    // What has to be painted, in the client area.
    QRegion invalid;
    bool eraseInvalid = false;
    bool frameInvalid = false;

    std::unique_ptr<ControlState> control;

    QSize Size() const { return {place.right - place.left, place.bottom - place.top}; }
    QSize ClientSize() const { return {client.right - client.left, client.bottom - client.top}; }
};

// For a loop in which windows may be destroyed.
inline std::vector<HWND> HandlesOf(const std::vector<ScreenWindow*>& windows) {
    std::vector<HWND> handles;
    for (const ScreenWindow* window : windows) {
        handles.push_back(window->handle);
    }
    return handles;
}

// The style bits, which any thread may read.
DWORD StyleOf(HWND window);
void SetStyleBits(HWND window, DWORD bits, bool set);

inline bool HasStyle(HWND window, DWORD bits) {
    return (StyleOf(window) & bits) == bits;
}

}  // namespace desktop
