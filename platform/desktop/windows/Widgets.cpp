#include "Widgets.h"

#include <QGuiApplication>
#include <QPaintEvent>
#include <QPainter>
#include <QScreen>
#include <QWidget>
#include <unordered_map>

#include "Desktop.h"
#include "Icons.h"
#include "MessageState.h"
#include "Placement.h"
#include "Text.h"

namespace desktop {

namespace {

std::unordered_map<const QObject*, HWND>& Handles() {
    static auto& handles = *new std::unordered_map<const QObject*, HWND>;
    return handles;
}

// Shows the part of the window's surface that the widget covers. All drawing went there before.
class SurfaceWidget : public QWidget {
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent* event) override {
        QPainter painter(this);
        const ScreenWindow* window = Desktop::Get().FindByWidget(this);
        // A widget may have grown, and the window not heard of it yet.
        painter.fillRect(event->rect(), QColor::fromRgb(QGuiApplication::palette().color(QPalette::Button).rgb()));
        if (window == nullptr || window->surface.isNull()) {
            return;
        }
        const RECT covered = WidgetRect(*window);
        const qreal ratio = window->surface.devicePixelRatio();
        const QRect area = event->rect();
        const QRectF source(QPointF(area.topLeft() + QPoint(covered.left, covered.top)) * ratio,
                            QSizeF(area.size()) * ratio);
        painter.drawImage(QRectF(area), window->surface, source);
    }
};

HICON IconOfClass(HWND window) {
    const MessageLock state;
    return state->windows.Find(window)->windowClass.icon;
}

Qt::WindowFlags FlagsOf(HWND window) {
    if (HasStyle(window, WS_POPUP)) {
        Qt::WindowFlags flags = Qt::Dialog | Qt::CustomizeWindowHint;
        if (HasStyle(window, WS_CAPTION)) {
            flags |= Qt::WindowTitleHint;
        } else {
            flags |= Qt::FramelessWindowHint;
        }
        if (HasStyle(window, WS_SYSMENU)) {
            flags |= Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;
        }
        return flags;
    }
    return Qt::Window;
}

QWidget* MakePlain(ScreenWindow& window, QWidget* parent) {
    const bool topLevel = window.parent == nullptr;
    auto* widget = new SurfaceWidget(parent, topLevel ? FlagsOf(window.handle) : Qt::WindowFlags());
    widget->setAttribute(Qt::WA_OpaquePaintEvent);
    widget->setAttribute(Qt::WA_NoSystemBackground);
    return widget;
}

}  // namespace

void MakeWidget(ScreenWindow& window) {
    Desktop& desktop = Desktop::Get();
    const ScreenWindow* above = window.parent != nullptr ? window.parent : desktop.Find(window.owner);
    QWidget* parent = above != nullptr ? above->widget : nullptr;
    window.widget = desktop.parts.makeControlWidget(window, parent);
    window.native = window.widget != nullptr;
    if (!window.native) {
        window.widget = MakePlain(window, parent);
    }
    Handles()[window.widget] = window.handle;
    window.widget->setMouseTracking(true);
    window.widget->setFocusPolicy(Qt::NoFocus);
    window.widget->installEventFilter(&desktop);
    if (window.parent == nullptr) {
        window.widget->setWindowTitle(ToQString(window.text));
        window.widget->setWindowIcon(IconOf(IconOfClass(window.handle)));
    } else {
        window.widget->setEnabled(!HasStyle(window.handle, WS_DISABLED));
    }
}

void ForgetWidget(QWidget& widget) {
    Handles().erase(&widget);
    widget.removeEventFilter(&Desktop::Get());
}

HWND HandleOfWidget(const QObject& widget) {
    const auto found = Handles().find(&widget);
    return found != Handles().end() ? found->second : nullptr;
}

RECT WorkArea() {
    QRect area;
    for (const QScreen* screen : QGuiApplication::screens()) {
        area |= screen->availableGeometry();
    }
    return ToRect(area);
}

RECT WorkAreaAround(HWND window) {
    MONITORINFO info{};
    info.cbSize = sizeof info;
    GetMonitorInfoA(MonitorFromWindow(window, MONITOR_DEFAULTTOPRIMARY), &info);
    return info.rcWork;
}

void PlaceWidget(ScreenWindow& window) {
    QWidget& widget = *window.widget;
    if (window.parent == nullptr) {
        const RECT covered = WidgetRect(window);
        const QRect place = ToQt(covered).translated(window.place.left, window.place.top);
        if (place != window.widgetPlace && window.sizeKind == SIZE_RESTORED) {
            window.widgetPlace = place;
            widget.setGeometry(place);
        }
        return;
    }
    const ScreenWindow& parent = *window.parent;
    const RECT parentWidget = WidgetRect(parent);
    RECT place = window.place;
    OffsetRect(&place, parent.client.left - parentWidget.left, parent.client.top - parentWidget.top);
    widget.setGeometry(ToQt(place));
    // Children show in the client area only.
    RECT inner = parent.client;
    OffsetRect(&inner, -parentWidget.left, -parentWidget.top);
    const QRect seen = ToQt(place) & ToQt(inner);
    if (seen == ToQt(place)) {
        widget.clearMask();
    } else {
        // An empty mask would be none.
        widget.setMask(seen.isEmpty() ? QRegion(-1, -1, 1, 1) : QRegion(seen.translated(-place.left, -place.top)));
    }
}

void LimitSize(const ScreenWindow& window) {
    if (!HasStyle(window.handle, WS_THICKFRAME)) {
        window.widget->setFixedSize(window.widget->size());
        return;
    }
    MINMAXINFO bounds;
    AskMinMax(window.handle, bounds);
    const QMargins frame = FrameOf(window);
    window.widget->setMinimumSize(bounds.ptMinTrackSize.x - frame.left() - frame.right(),
                                  bounds.ptMinTrackSize.y - frame.top() - frame.bottom());
}

void ShowWidget(ScreenWindow& window) {
    const bool show = HasStyle(window.handle, WS_VISIBLE);
    if (show && window.parent == nullptr) {
        LimitSize(window);
    }
    window.widget->setVisible(show);
}

void StackWidgets(const std::vector<ScreenWindow*>& siblings) {
    // From the back to the front, each raised above those before.
    if (siblings.empty() || siblings.front()->parent == nullptr) {
        if (!siblings.empty() && siblings.front()->widget->isVisible()) {
            siblings.front()->widget->raise();
        }
        return;
    }
    for (auto each = siblings.rbegin(); each != siblings.rend(); ++each) {
        if ((*each)->widget != nullptr) {
            (*each)->widget->raise();
        }
    }
}

}  // namespace desktop

HMONITOR MonitorFromWindow(HWND handle, DWORD) {
    const desktop::Desktop& desktop = desktop::Desktop::Get();
    const desktop::ScreenWindow* root = desktop.Root(desktop.Find(handle));
    QScreen* screen = root != nullptr ? QGuiApplication::screenAt(WindowOnScreen(*root).center()) : nullptr;
    return reinterpret_cast<HMONITOR>(screen != nullptr ? screen : QGuiApplication::primaryScreen());
}

BOOL GetMonitorInfoA(HMONITOR monitor, MONITORINFO* info) {
    auto* screen = reinterpret_cast<QScreen*>(monitor);
    // It may have been taken away.
    if (info->cbSize != sizeof *info || !QGuiApplication::screens().contains(screen)) {
        return FALSE;
    }
    info->rcMonitor = desktop::ToRect(screen->geometry());
    info->rcWork = desktop::ToRect(screen->availableGeometry());
    info->dwFlags = 0;
    return TRUE;
}
