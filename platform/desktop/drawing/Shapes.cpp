// Lines, rectangles and arcs.
#include <vector>

#include "Canvas.h"
#include "DeviceContext.h"
#include "Ellipse.h"
#include "ObjectTable.h"

namespace drawing {

namespace {

// A point inside the range that Area keeps to.
QPoint Point(int x, int y) {
    return Area(x, y, x, y).topLeft();
}

void DrawOutline(Canvas& canvas, const QRect& box, QRgb color) {
    // A closed line through a single pixel has no length: nothing is drawn, as on Windows.
    if (box.width() == 1 && box.height() == 1) {
        return;
    }
    const QRegion inside(box.adjusted(1, 1, -1, -1));
    canvas.Fill(QRegion(box) - inside, color);
}

}  // namespace

}  // namespace drawing

using namespace drawing;

BOOL MoveToEx(HDC dc, int x, int y, LPPOINT previous) {
    DeviceContext* context = ContextOf(dc);
    if (context == nullptr) {
        return FALSE;
    }
    if (previous != nullptr) {
        *previous = {context->position.x(), context->position.y()};
    }
    context->position = Point(x, y);
    return TRUE;
}

BOOL LineTo(HDC dc, int x, int y) {
    DeviceContext* context = ContextOf(dc);
    if (context == nullptr) {
        return FALSE;
    }
    const QPoint to = Point(x, y);
    if (const std::optional<QRgb> color = context->PenColor()) {
        context->canvas.Line(context->position, to, *color);
    }
    context->position = to;
    return TRUE;
}

BOOL Arc(HDC dc, int left, int top, int right, int bottom, int xStart, int yStart, int xEnd, int yEnd) {
    DeviceContext* context = ContextOf(dc);
    const QRect box = SortedArea(left, top, right, bottom);
    if (context == nullptr || box.width() > kLargestEllipse || box.height() > kLargestEllipse) {
        return FALSE;
    }
    const std::optional<QRgb> color = context->PenColor();
    if (box.isEmpty() || !color) {
        return TRUE;
    }
    const QPoint corner = box.topLeft();
    const std::vector<QPoint> arc =
        EllipseArc(box.width(), box.height(), Point(xStart, yStart) - corner, Point(xEnd, yEnd) - corner);
    for (std::size_t i = 1; i < arc.size(); ++i) {
        context->canvas.Line(corner + arc[i - 1], corner + arc[i], *color);
    }
    return TRUE;
}

BOOL Rectangle(HDC dc, int left, int top, int right, int bottom) {
    DeviceContext* context = ContextOf(dc);
    if (context == nullptr) {
        return FALSE;
    }
    const QRect box = SortedArea(left, top, right, bottom);
    const std::optional<QRgb> pen = context->PenColor();
    if (box.isEmpty()) {
        return TRUE;
    }
    if (const std::optional<QRgb> brush = context->BrushColor()) {
        // Without a pen the shape loses its last column and row all the same.
        context->canvas.Fill(pen ? box.adjusted(1, 1, -1, -1) : box.adjusted(0, 0, -1, -1), *brush);
    }
    if (pen) {
        DrawOutline(context->canvas, box, *pen);
    }
    return TRUE;
}

int FillRect(HDC dc, const RECT* rect, HBRUSH brush) {
    DeviceContext* context = ContextOf(dc);
    if (context == nullptr || rect == nullptr) {
        return 0;
    }
    if (const std::optional<QRgb> color = ColorOf(brush)) {
        context->canvas.Fill(Area(rect->left, rect->top, rect->right, rect->bottom), *color);
    }
    return 1;
}

COLORREF GetPixel(HDC dc, int x, int y) {
    const DeviceContext* context = ContextOf(dc);
    const std::optional<QRgb> color = context != nullptr ? context->canvas.PixelAt(Point(x, y)) : std::nullopt;
    return color ? ToColorRef(*color) : CLR_INVALID;
}
