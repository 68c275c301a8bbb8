// Where windows are: their frames, their client areas, and moving, sizing and showing them.
#include "Placement.h"

#include <QGuiApplication>
#include <QMenuBar>
#include <QScreen>
#include <QWidget>
#include <QWindow>
#include <algorithm>

#include "Desktop.h"
#include "LastError.h"
#include "Painting.h"
#include "Widgets.h"

namespace desktop {

namespace {

constexpr int kClientEdge = 2;
constexpr int kBorder = 1;
// What a title bar leaves of a window that may be sized.
constexpr int kLeastWidth = 120;
constexpr int kLeastHeight = 30;
// A window may be as large as all screens together and its own frame.
constexpr int kMostFrame = 24;

bool SameSize(const RECT& a, const RECT& b) {
    return a.right - a.left == b.right - b.left && a.bottom - a.top == b.bottom - b.top;
}

bool SamePlace(const RECT& a, const RECT& b) {
    return a.left == b.left && a.top == b.top;
}

ScreenWindow* Find(HWND window) {
    return Desktop::Get().Find(window);
}

}  // namespace

QMargins FrameOf(const ScreenWindow& window) {
    if (window.parent != nullptr || window.widget == nullptr || window.widget->windowHandle() == nullptr) {
        return {};
    }
    const QWindow& screenWindow = *window.widget->windowHandle();
    const QMargins frame = screenWindow.frameMargins();
    if (!window.widget->isMaximized()) {
        return frame;
    }
    // It fills the work area and no more, though some window managers tell of borders that they leave out then.
    const QRect inner = window.widget->geometry();
    const QRect outer = inner.marginsAdded(frame) & screenWindow.screen()->availableGeometry();
    return {std::max(inner.left() - outer.left(), 0), std::max(inner.top() - outer.top(), 0),
            std::max(outer.right() - inner.right(), 0), std::max(outer.bottom() - inner.bottom(), 0)};
}

RECT WidgetRect(const ScreenWindow& window) {
    const QMargins frame = window.frame;
    const QSize size = window.Size();
    return {frame.left(), frame.top(), std::max(size.width() - frame.right(), frame.left()),
            std::max(size.height() - frame.bottom(), frame.top())};
}

QRect WindowOnScreen(const ScreenWindow& window) {
    const QRect place = ToQt(window.place);
    return window.parent == nullptr ? place : place.translated(ClientOnScreen(*window.parent).topLeft());
}

QRect ClientOnScreen(const ScreenWindow& window) {
    return ToQt(window.client).translated(WindowOnScreen(window).topLeft());
}

bool IsVisibleOnScreen(const ScreenWindow& window) {
    for (const ScreenWindow* each = &window; each != nullptr; each = each->parent) {
        if (!HasStyle(each->handle, WS_VISIBLE)) {
            return false;
        }
    }
    return true;
}

void DefaultClient(const ScreenWindow& window, RECT& rect) {
    int edge = 0;
    if (window.parent == nullptr) {
        const RECT widget = WidgetRect(window);
        const QSize size = window.Size();
        rect.left += widget.left;
        rect.top += widget.top;
        rect.right -= size.width() - widget.right;
        rect.bottom -= size.height() - widget.bottom;
        rect.top += window.menuBar != nullptr ? window.menuBar->heightForWidth(rect.right - rect.left) : 0;
    } else if (HasStyle(window.handle, WS_BORDER)) {
        edge = kBorder;
    }
    if ((GetWindowLongPtrA(window.handle, GWL_EXSTYLE) & static_cast<LONG_PTR>(WS_EX_CLIENTEDGE)) != 0) {
        edge += kClientEdge;
    }
    InflateRect(&rect, -edge, -edge);
    rect.right = std::max(rect.right, rect.left);
    rect.bottom = std::max(rect.bottom, rect.top);
}

void CalculateClient(ScreenWindow& window, bool asNew, const RECT* before) {
    const HWND handle = window.handle;
    const RECT place = window.place;
    NCCALCSIZE_PARAMS parameters{};
    parameters.rgrc[0] = place;
    if (asNew) {
        SendMessageA(handle, WM_NCCALCSIZE, FALSE, reinterpret_cast<LPARAM>(&parameters.rgrc[0]));
    } else {
        WINDOWPOS position{handle, nullptr, place.left, place.top, place.right - place.left, place.bottom - place.top, 0};
        parameters.rgrc[1] = before != nullptr ? *before : place;
        parameters.rgrc[2] = parameters.rgrc[1];
        parameters.lppos = &position;
        SendMessageA(handle, WM_NCCALCSIZE, TRUE, reinterpret_cast<LPARAM>(&parameters));
    }
    if (ScreenWindow* after = Find(handle)) {
        const RECT& result = parameters.rgrc[0];
        after->client = {result.left - place.left, result.top - place.top, std::max(result.right, result.left) - place.left,
                         std::max(result.bottom, result.top) - place.top};
        for (ScreenWindow* child : after->children) {
            PlaceWidget(*child);
        }
    }
}

void AskMinMax(HWND window, MINMAXINFO& info) {
    const RECT screen = WorkAreaAround(window);
    info = {};
    info.ptMaxSize = {screen.right - screen.left, screen.bottom - screen.top};
    info.ptMaxPosition = {screen.left, screen.top};
    info.ptMinTrackSize = {kLeastWidth, kLeastHeight};
    const QSize screens = QGuiApplication::primaryScreen()->virtualSize();
    info.ptMaxTrackSize = {screens.width() + kMostFrame, screens.height() + kMostFrame};
    SendMessageA(window, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&info));
}

void TellMove(HWND handle) {
    if (const ScreenWindow* window = Find(handle)) {
        const int x = window->place.left + window->client.left;
        const int y = window->place.top + window->client.top;
        SendMessageA(handle, WM_MOVE, 0, MAKELPARAM(static_cast<WORD>(x), static_cast<WORD>(y)));
    }
}

void TellSize(HWND handle) {
    if (ScreenWindow* window = Find(handle)) {
        const QSize size = window->sizeKind == SIZE_MINIMIZED ? QSize(0, 0) : window->ClientSize();
        SendMessageA(handle, WM_SIZE, window->sizeKind,
                     MAKELPARAM(static_cast<WORD>(size.width()), static_cast<WORD>(size.height())));
    }
}

void Desktop::HideForGood(ScreenWindow& window) {
    const HWND handle = window.handle;
    if (window.parent != nullptr) {
        ShowWindow(handle, SW_HIDE);
        return;
    }
    SetWindowPos(handle, nullptr, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_HIDEWINDOW);
    if (ScreenWindow* hidden = Find(handle)) {
        LeaveFocus(*hidden);
    }
}

namespace {

// Takes over a place that the window system has given, or a frame that it has put around the old one.
void TakeOver(HWND handle, const RECT& place, const QMargins& frame, bool newKind) {
    ScreenWindow* window = Find(handle);
    const RECT before = window->place;
    const RECT clientBefore = window->client;
    window->frame = frame;
    window->place = place;
    CalculateClient(*window, false, &before);
    window = Find(handle);
    if (window == nullptr) {
        return;
    }
    PlaceWidget(*window);
    const bool moved = !SamePlace(place, before);
    const bool sized = !SameSize(window->client, clientBefore);
    // What is drawn so far lies in the old frame.
    if (!EqualRect(&window->client, &clientBefore)) {
        InvalidateWhole(*window);
    }
    if (moved) {
        TellMove(handle);
    }
    if ((sized || newKind) && Find(handle) != nullptr) {
        TellSize(handle);
    }
}

// The frame comes around a window with its first showing, and the window manager may have a place or a size of its own for
// it. The window keeps its outer size, and what is inside shrinks, unless the size that it was given fits on the screen.
RECT InFirstFrame(const ScreenWindow& window, const RECT& outer, bool hasOwnPlace, bool sized) {
    const QSize screen = window.widget->screen()->availableSize();
    if (sized && outer.right - outer.left <= screen.width() && outer.bottom - outer.top <= screen.height()) {
        return outer;
    }
    const RECT& corner = hasOwnPlace ? outer : window.place;
    return {corner.left, corner.top, corner.left + window.Size().width(), corner.top + window.Size().height()};
}

bool TakeOverKind(ScreenWindow& window) {
    const QWidget& widget = *window.widget;
    const WPARAM kind = widget.isMinimized() ? SIZE_MINIMIZED : widget.isMaximized() ? SIZE_MAXIMIZED : SIZE_RESTORED;
    if (kind == window.sizeKind) {
        return false;
    }
    window.sizeKind = kind;
    SetStyleBits(window.handle, WS_MINIMIZE, kind == SIZE_MINIMIZED);
    SetStyleBits(window.handle, WS_MAXIMIZE, kind == SIZE_MAXIMIZED);
    return true;
}

}  // namespace

void FollowGeometry(HWND handle) {
    ScreenWindow* window = Find(handle);
    if (window == nullptr || window->widget == nullptr || !window->widget->isVisible()) {
        return;
    }
    const bool newKind = TakeOverKind(*window);
    const QMargins frame = FrameOf(*window);
    const QRect now = window->widget->geometry();
    const bool moved = now.topLeft() != window->widgetPlace.topLeft();
    const bool sized = now.size() != window->widgetPlace.size();
    if (window->sizeKind == SIZE_MINIMIZED) {
        if (newKind) {
            TellSize(handle);
        }
    } else if (moved || sized || frame != window->frame) {
        const bool hasOwnPlace = moved || window->movedUnframed;
        window->movedUnframed = hasOwnPlace && frame.isNull();
        window->widgetPlace = now;
        RECT outer = ToRect(now.marginsAdded(frame));
        if (!window->wasFramed && !frame.isNull() && HasStyle(handle, WS_THICKFRAME)) {
            window->wasFramed = true;
            outer = InFirstFrame(*window, outer, hasOwnPlace, sized);
            LimitSize(*window);
        }
        TakeOver(handle, outer, frame, newKind);
    } else if (newKind) {
        TellSize(handle);
    }
}

}  // namespace desktop

using desktop::Desktop;
using desktop::Find;
using desktop::HasStyle;
using desktop::ScreenWindow;
using desktop::SetStyleBits;

namespace {

RECT NewPlace(const ScreenWindow& window, const WINDOWPOS& position) {
    RECT place = window.place;
    if ((position.flags & SWP_NOMOVE) == 0) {
        OffsetRect(&place, position.x - place.left, position.y - place.top);
    }
    if ((position.flags & SWP_NOSIZE) == 0) {
        place.right = place.left + std::max(position.cx, 0);
        place.bottom = place.top + std::max(position.cy, 0);
    }
    return place;
}

// Changes what the window is, and gives the flags for WM_WINDOWPOSCHANGED; the window may be gone afterwards.
UINT ChangePosition(HWND handle, const WINDOWPOS& position) {
    ScreenWindow* window = Find(handle);
    const RECT before = window->place;
    const RECT clientBefore = window->client;
    UINT flags = position.flags;
    const bool wasVisible = HasStyle(handle, WS_VISIBLE);
    window->place = NewPlace(*window, position);
    const bool moved = !desktop::SamePlace(window->place, before);
    const bool sized = !desktop::SameSize(window->place, before);
    flags |= (moved ? 0 : SWP_NOMOVE) | (sized ? 0 : SWP_NOSIZE);
    if ((flags & SWP_NOZORDER) == 0) {
        Desktop::Get().PutBehind(*window, position.hwndInsertAfter);
    }
    if (sized || (flags & SWP_FRAMECHANGED) != 0) {
        CalculateClient(*window, false, &before);
        window = Find(handle);
        if (window == nullptr) {
            return flags;
        }
    }
    const bool clientSized = !desktop::SameSize(window->client, clientBefore);
    const bool clientMoved = moved || !desktop::SamePlace(window->client, clientBefore);
    flags |= (clientMoved ? 0 : desktop::kNoClientMove) | (clientSized ? 0 : desktop::kNoClientSize);
    if ((flags & SWP_SHOWWINDOW) != 0) {
        SetStyleBits(handle, WS_VISIBLE, true);
    } else if ((flags & SWP_HIDEWINDOW) != 0) {
        SetStyleBits(handle, WS_VISIBLE, false);
    }
    PlaceWidget(*window);
    if ((flags & (SWP_SHOWWINDOW | SWP_HIDEWINDOW)) != 0) {
        ShowWidget(*window);
    }
    // What the window has left of its parent is to be painted by that.
    if (window->parent != nullptr && wasVisible && (flags & SWP_NOREDRAW) == 0 &&
        (moved || sized || (flags & SWP_HIDEWINDOW) != 0)) {
        Invalidate(*window->parent, desktop::ToQt(before), true);
    }
    if ((flags & SWP_NOREDRAW) == 0 && (sized || (flags & (SWP_FRAMECHANGED | SWP_SHOWWINDOW)) != 0)) {
        InvalidateWhole(*window);
    }
    return flags;
}

}  // namespace

BOOL SetWindowPos(HWND handle, HWND insertAfter, int x, int y, int width, int height, UINT flags) {
    ScreenWindow* window = Find(handle);
    if (window == nullptr) {
        return kernel::Fail(ERROR_INVALID_WINDOW_HANDLE);
    }
    WINDOWPOS position{handle, insertAfter, x, y, width, height, flags};
    SendMessageA(handle, WM_WINDOWPOSCHANGING, 0, reinterpret_cast<LPARAM>(&position));
    window = Find(handle);
    if (window == nullptr) {
        return FALSE;
    }
    if (position.hwndInsertAfter == HWND_TOP && Desktop::Get().Siblings(*window).front() == window) {
        position.flags |= SWP_NOZORDER;
    }
    const bool topLevel = window->parent == nullptr;
    const UINT changed = ChangePosition(handle, position);
    if (Find(handle) == nullptr) {
        return TRUE;
    }
    if (topLevel && (changed & (SWP_NOACTIVATE | SWP_HIDEWINDOW)) == 0 && HasStyle(handle, WS_VISIBLE)) {
        Desktop::Get().Activate(handle, WA_ACTIVE);
    }
    constexpr UINT kNothing = SWP_NOSIZE | SWP_NOMOVE | SWP_NOZORDER | desktop::kNoClientMove | desktop::kNoClientSize;
    const bool nothing =
        (changed & kNothing) == kNothing && (changed & (SWP_SHOWWINDOW | SWP_HIDEWINDOW | SWP_FRAMECHANGED)) == 0;
    if (!nothing && Find(handle) != nullptr) {
        window = Find(handle);
        const QSize size = window->Size();
        WINDOWPOS done{handle, position.hwndInsertAfter, window->place.left, window->place.top, size.width(), size.height(),
                       changed};
        SendMessageA(handle, WM_WINDOWPOSCHANGED, 0, reinterpret_cast<LPARAM>(&done));
    }
    return TRUE;
}

BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint) {
    return SetWindowPos(window, nullptr, x, y, width, height, SWP_NOZORDER | SWP_NOACTIVATE | (repaint ? 0U : SWP_NOREDRAW));
}

BOOL BringWindowToTop(HWND window) {
    return SetWindowPos(window, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
}

namespace {

// The window system does the rest, and FollowGeometry hears of it.
void SetSizeKind(ScreenWindow& window, WPARAM kind) {
    QWidget& widget = *window.widget;
    if (kind == SIZE_MINIMIZED) {
        widget.showMinimized();
    } else if (kind == SIZE_MAXIMIZED) {
        widget.showMaximized();
    } else {
        widget.showNormal();
    }
    desktop::FollowGeometry(window.handle);
}

void ShowFirst(HWND handle) {
    ScreenWindow* window = Find(handle);
    if (window == nullptr || window->shownOnce || window->parent != nullptr) {
        return;
    }
    window->shownOnce = true;
    desktop::TellSize(handle);
    desktop::TellMove(handle);
}

void ChangeVisibility(HWND handle, bool show, bool activate) {
    SendMessageA(handle, WM_SHOWWINDOW, show, 0);
    ScreenWindow* window = Find(handle);
    if (window == nullptr) {
        return;
    }
    const bool quiet = window->parent != nullptr || !activate;
    SetWindowPos(
        handle, HWND_TOP, 0, 0, 0, 0,
        SWP_NOMOVE | SWP_NOSIZE | (show ? SWP_SHOWWINDOW : SWP_HIDEWINDOW) | (quiet ? SWP_NOZORDER | SWP_NOACTIVATE : 0U));
    window = Find(handle);
    if (window != nullptr && !show) {
        Desktop::Get().LeaveFocus(*window);
    }
    ShowFirst(handle);
}

}  // namespace

BOOL ShowWindow(HWND handle, int command) {
    ScreenWindow* window = Find(handle);
    if (window == nullptr) {
        return kernel::Fail(ERROR_INVALID_WINDOW_HANDLE);
    }
    const bool before = HasStyle(handle, WS_VISIBLE);
    const bool show = command != SW_HIDE;
    if (show != before) {
        ChangeVisibility(handle, show, command != SW_SHOWNOACTIVATE && command != SW_SHOWMINIMIZED);
    }
    window = Find(handle);
    if (window == nullptr || window->parent != nullptr || !show) {
        return before;
    }
    if (command == SW_SHOWMINIMIZED || command == SW_MINIMIZE) {
        SetSizeKind(*window, SIZE_MINIMIZED);
    } else if (command == SW_SHOWMAXIMIZED) {
        SetSizeKind(*window, SIZE_MAXIMIZED);
    } else if (command != SW_SHOW && command != SW_SHOWNOACTIVATE && window->sizeKind != SIZE_RESTORED) {
        SetSizeKind(*window, SIZE_RESTORED);
    }
    return before;
}

BOOL GetWindowRect(HWND handle, LPRECT rect) {
    if (handle == Desktop::Get().DesktopWindow()) {
        *rect = desktop::WorkArea();
        return TRUE;
    }
    const ScreenWindow* window = Find(handle);
    if (window == nullptr) {
        return kernel::Fail(ERROR_INVALID_WINDOW_HANDLE);
    }
    *rect = desktop::ToRect(desktop::WindowOnScreen(*window));
    return TRUE;
}

BOOL GetClientRect(HWND handle, LPRECT rect) {
    if (handle == Desktop::Get().DesktopWindow()) {
        *rect = desktop::WorkArea();
        OffsetRect(rect, -rect->left, -rect->top);
        return TRUE;
    }
    const ScreenWindow* window = Find(handle);
    if (window == nullptr) {
        return kernel::Fail(ERROR_INVALID_WINDOW_HANDLE);
    }
    const QSize size = window->ClientSize();
    *rect = {0, 0, size.width(), size.height()};
    return TRUE;
}

BOOL ClientToScreen(HWND handle, LPPOINT point) {
    const ScreenWindow* window = Find(handle);
    if (window == nullptr) {
        return kernel::Fail(ERROR_INVALID_WINDOW_HANDLE);
    }
    const QPoint origin = desktop::ClientOnScreen(*window).topLeft();
    point->x += origin.x();
    point->y += origin.y();
    return TRUE;
}

BOOL ScreenToClient(HWND handle, LPPOINT point) {
    POINT origin{0, 0};
    if (!ClientToScreen(handle, &origin)) {
        return FALSE;
    }
    point->x -= origin.x;
    point->y -= origin.y;
    return TRUE;
}

BOOL IsWindowVisible(HWND handle) {
    const ScreenWindow* window = Find(handle);
    return window != nullptr && desktop::IsVisibleOnScreen(*window);
}

BOOL IsIconic(HWND window) {
    return HasStyle(window, WS_MINIMIZE);
}
