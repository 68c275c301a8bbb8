#include "Painting.h"

#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <QWidget>
#include <unordered_map>

#include "Desktop.h"
#include "DeviceContext.h"
#include "GdiObjects.h"
#include "LastError.h"
#include "MessageQueue.h"
#include "Placement.h"

namespace desktop {

namespace {

QRect ClientRect(const ScreenWindow& window) {
    return {QPoint(0, 0), window.ClientSize()};
}

// The surface in the window's present size; what was drawn before stays as far as it fits.
QImage& SurfaceOf(ScreenWindow& window) {
    const qreal ratio = window.widget->devicePixelRatioF();
    const QSize size = (QSizeF(window.Size()) * ratio).toSize().expandedTo(QSize(1, 1));
    if (window.surface.size() != size || window.surface.devicePixelRatio() != ratio) {
        QImage fresh(size, QImage::Format_RGB32);
        fresh.fill(drawing::ToQColor(GetSysColor(COLOR_BTNFACE)));
        if (!window.surface.isNull()) {
            for (int y = 0; y < std::min(size.height(), window.surface.height()); ++y) {
                std::copy_n(reinterpret_cast<const QRgb*>(window.surface.constScanLine(y)),
                            std::min(size.width(), window.surface.width()), reinterpret_cast<QRgb*>(fresh.scanLine(y)));
            }
        }
        fresh.setDevicePixelRatio(ratio);
        window.surface = std::move(fresh);
    }
    return window.surface;
}

struct OpenContext {
    HWND window;
    QRegion changed;  // in the window
};

std::unordered_map<HDC, std::unique_ptr<OpenContext>>& OpenContexts() {
    static auto& contexts = *new std::unordered_map<HDC, std::unique_ptr<OpenContext>>;
    return contexts;
}

// The clip is told from the window's corner, as the origin is.
HDC OpenContextFor(ScreenWindow& window, QPoint origin, const QRegion& clip) {
    auto context = std::make_unique<OpenContext>();
    context->window = window.handle;
    const bool shown = window.redraw && !window.native;
    const drawing::DrawingTarget target{&SurfaceOf(window), origin, shown ? clip : QRegion(), &context->changed};
    HDC dc = drawing::OpenDeviceContext(target);
    if (dc != nullptr) {
        OpenContexts()[dc] = std::move(context);
    }
    return dc;
}

QPoint Corner(const ScreenWindow& window) {
    return {window.place.left, window.place.top};
}

void UpdateWidget(ScreenWindow& window, const QRegion& changed) {
    const RECT covered = WidgetRect(window);
    window.widget->update(changed.translated(-covered.left, -covered.top));
}

// A window that does not spare its siblings draws over those in front of it as well; which of them is seen there is a matter
// of who drew last.
void DrawOnSiblings(const ScreenWindow& window, const QRegion& changed) {
    if (window.parent == nullptr || HasStyle(window.handle, WS_CLIPSIBLINGS)) {
        return;
    }
    for (ScreenWindow* sibling : window.parent->children) {
        if (sibling == &window) {
            return;
        }
        const QPoint offset = Corner(window) - Corner(*sibling);
        const QRegion common = changed.translated(offset) & QRect(QPoint(0, 0), sibling->Size());
        if (sibling->native || sibling->surface.isNull() || common.isEmpty() || !HasStyle(sibling->handle, WS_VISIBLE)) {
            continue;
        }
        QPainter painter(&sibling->surface);
        painter.setClipRegion(common);
        painter.drawImage(offset, window.surface);
        painter.end();
        UpdateWidget(*sibling, common);
    }
}

void CloseContext(HDC dc) {
    drawing::CloseDeviceContext(dc);
    const auto found = OpenContexts().find(dc);
    if (found == OpenContexts().end()) {
        return;
    }
    const std::unique_ptr<OpenContext> context = std::move(found->second);
    OpenContexts().erase(found);
    ScreenWindow* window = Desktop::Get().Find(context->window);
    if (window != nullptr && !context->changed.isEmpty()) {
        UpdateWidget(*window, context->changed);
        DrawOnSiblings(*window, context->changed);
    }
}

}  // namespace

void Invalidate(ScreenWindow& window, const QRegion& area, bool erase) {
    if (window.native) {
        const RECT covered = WidgetRect(window);
        window.widget->update(area.translated(window.client.left - covered.left, window.client.top - covered.top));
        return;
    }
    window.invalid |= area & ClientRect(window);
    window.eraseInvalid = window.eraseInvalid || erase;
    if (!window.invalid.isEmpty()) {
        Desktop::Get().WantPaint();
    }
}

void InvalidateWhole(ScreenWindow& window) {
    window.frameInvalid = !window.native;
    Invalidate(window, ClientRect(window), true);
    Desktop::Get().WantPaint();
}

}  // namespace desktop

using desktop::Desktop;
using desktop::ScreenWindow;

namespace {

void RedrawTree(ScreenWindow& window, const QRegion& area, UINT flags) {
    const HWND handle = window.handle;
    if ((flags & RDW_INVALIDATE) != 0) {
        window.frameInvalid = window.frameInvalid || ((flags & RDW_FRAME) != 0 && !window.native);
        Invalidate(window, area, (flags & RDW_ERASE) != 0);
    }
    if ((flags & RDW_UPDATENOW) != 0) {
        UpdateWindow(handle);
    }
    ScreenWindow* after = Desktop::Get().Find(handle);
    if ((flags & RDW_ALLCHILDREN) == 0 || after == nullptr) {
        return;
    }
    for (HWND child : HandlesOf(after->children)) {
        if (ScreenWindow* found = Desktop::Get().Find(child)) {
            RedrawTree(*found,
                       area.translated(-found->place.left - found->client.left, -found->place.top - found->client.top),
                       flags);
        }
    }
}

}  // namespace

BOOL RedrawWindow(HWND handle, const RECT* area, HRGN region, UINT flags) {
    if (region != nullptr || handle == nullptr) {
        return kernel::Unsupported("RedrawWindow of a region, or of all windows");
    }
    if (Desktop::IsOwnThread()) {
        if (ScreenWindow* window = Desktop::Get().Find(handle)) {
            RedrawTree(*window, area != nullptr ? desktop::ToQt(*area) : desktop::ClientRect(*window), flags);
        }
        return TRUE;
    }
    if (area != nullptr || (flags & RDW_UPDATENOW) != 0) {
        return kernel::Unsupported("RedrawWindow of a part, or at once, by another thread");
    }
    return PostMessageA(Desktop::Get().DesktopWindow(), desktop::kRedrawMessage, reinterpret_cast<WPARAM>(handle),
                        static_cast<LPARAM>(flags));
}

BOOL InvalidateRect(HWND handle, const RECT* area, BOOL erase) {
    return RedrawWindow(handle, area, nullptr, RDW_INVALIDATE | (erase ? RDW_ERASE : 0U));
}

BOOL UpdateWindow(HWND handle) {
    const ScreenWindow* window = Desktop::Get().Find(handle);
    if (window == nullptr) {
        return kernel::Fail(ERROR_INVALID_WINDOW_HANDLE);
    }
    if ((window->invalid.isEmpty() && !window->frameInvalid) || !window->redraw || !desktop::IsVisibleOnScreen(*window)) {
        return TRUE;
    }
    SendMessageA(handle, WM_PAINT, 0, 0);
    return TRUE;
}

HDC BeginPaint(HWND handle, PAINTSTRUCT* paint) {
    ScreenWindow* window = Desktop::Get().Find(handle);
    if (window == nullptr) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return nullptr;
    }
    *paint = {};
    if (std::exchange(window->frameInvalid, false)) {
        SendMessageA(handle, WM_NCPAINT, 1, 0);
        window = Desktop::Get().Find(handle);
        if (window == nullptr) {
            return nullptr;
        }
    }
    const QRegion area = std::exchange(window->invalid, {});
    const bool erase = std::exchange(window->eraseInvalid, false);
    const QPoint origin(window->client.left, window->client.top);
    paint->hdc = desktop::OpenContextFor(*window, origin, area.translated(origin));
    paint->rcPaint = desktop::ToRect(area.boundingRect());
    if (erase && paint->hdc != nullptr) {
        paint->fErase = SendMessageA(handle, WM_ERASEBKGND, reinterpret_cast<WPARAM>(paint->hdc), 0) == 0;
    }
    return paint->hdc;
}

BOOL EndPaint(HWND, const PAINTSTRUCT* paint) {
    desktop::CloseContext(paint->hdc);
    return TRUE;
}

HDC GetDC(HWND handle) {
    if (handle == nullptr) {
        // Measures text, and paints nothing.
        return drawing::OpenDeviceContext({});
    }
    ScreenWindow* window = Desktop::Get().Find(handle);
    if (window == nullptr) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return nullptr;
    }
    const QPoint origin(window->client.left, window->client.top);
    return desktop::OpenContextFor(*window, origin, QRect(origin, window->ClientSize()));
}

HDC GetWindowDC(HWND handle) {
    ScreenWindow* window = Desktop::Get().Find(handle);
    if (window == nullptr) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return nullptr;
    }
    return desktop::OpenContextFor(*window, QPoint(0, 0), QRect(QPoint(0, 0), window->Size()));
}

int ReleaseDC(HWND, HDC dc) {
    desktop::CloseContext(dc);
    return 1;
}

namespace desktop {

namespace {

// A line one pixel thick, as a filled rectangle.
void Bar(HDC dc, int left, int top, int right, int bottom, int color) {
    const RECT bar{left, top, right, bottom};
    FillRect(dc, &bar, GetSysColorBrush(color));
}

void EdgeRing(HDC dc, const RECT& rect, int upperLeft, int lowerRight) {
    Bar(dc, rect.left, rect.top, rect.right, rect.top + 1, upperLeft);
    Bar(dc, rect.left, rect.top, rect.left + 1, rect.bottom, upperLeft);
    Bar(dc, rect.left, rect.bottom - 1, rect.right, rect.bottom, lowerRight);
    Bar(dc, rect.right - 1, rect.top, rect.right, rect.bottom, lowerRight);
}

}  // namespace

void PaintDefaultFrame(HWND handle) {
    const ScreenWindow* window = Desktop::Get().Find(handle);
    const bool sunken = (GetWindowLongPtrA(handle, GWL_EXSTYLE) & static_cast<LONG_PTR>(WS_EX_CLIENTEDGE)) != 0;
    const bool bordered = window->parent != nullptr && HasStyle(handle, WS_BORDER);
    if (window->native || (!sunken && !bordered)) {
        return;
    }
    HDC dc = GetWindowDC(handle);
    RECT edge = window->client;
    if (sunken) {
        InflateRect(&edge, 1, 1);
        EdgeRing(dc, edge, COLOR_BTNTEXT, COLOR_BTNFACE);
        InflateRect(&edge, 1, 1);
        EdgeRing(dc, edge, COLOR_BTNSHADOW, COLOR_BTNHIGHLIGHT);
    }
    if (bordered) {
        InflateRect(&edge, 1, 1);
        EdgeRing(dc, edge, COLOR_BTNTEXT, COLOR_BTNTEXT);
    }
    ReleaseDC(handle, dc);
}

}  // namespace desktop
