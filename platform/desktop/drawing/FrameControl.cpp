// The scroll arrows, which the desktop's style draws only inside a scroll bar.
#include <algorithm>
#include <cassert>

#include "Canvas.h"
#include "DeviceContext.h"
#include "ObjectTable.h"

namespace drawing {

namespace {

QRgb System(int index) {
    return ToRgb(GetSysColor(index));
}

// The light comes from the upper left; a pushed button lies below its surroundings and has a dark rim alone.
void DrawButton(Canvas& canvas, const QRect& box, bool pushed) {
    canvas.Fill(box, System(COLOR_BTNSHADOW));
    if (pushed) {
        canvas.Fill(box.adjusted(1, 1, -1, -1), System(COLOR_BTNFACE));
        return;
    }
    canvas.Fill(box.adjusted(0, 0, -1, -1), System(COLOR_BTNHIGHLIGHT));
    canvas.Fill(box.adjusted(1, 1, -1, -1), System(COLOR_BTNFACE));
}

// A triangle of whole rows, each two pixels wider than the one nearer to its tip, a third as high as the button or less.
void DrawArrow(Canvas& canvas, const QRect& box, QPoint offset, bool down) {
    const int rows = std::max(1, std::min(box.width(), box.height()) / 3);
    const int middle = box.left() + (box.width() - 1) / 2;
    const int top = box.top() + (box.height() - rows) / 2;
    for (int row = 0; row < rows; ++row) {
        const int y = down ? top + rows - 1 - row : top + row;
        canvas.Fill(QRect(middle - row, y, 2 * row + 1, 1).translated(offset) & box, System(COLOR_BTNTEXT));
    }
}

}  // namespace

}  // namespace drawing

using namespace drawing;

BOOL DrawFrameControl(HDC dc, LPRECT rect, UINT kind, UINT state) {
    assert(kind == DFC_SCROLL && (state & ~(DFCS_SCROLLUP | DFCS_SCROLLDOWN | DFCS_PUSHED)) == 0);
    DeviceContext* context = ContextOf(dc);
    if (context == nullptr || rect == nullptr || kind != DFC_SCROLL) {
        return FALSE;
    }
    const QRect box = Area(rect->left, rect->top, rect->right, rect->bottom);
    if (box.isEmpty()) {
        return TRUE;
    }
    const bool pushed = (state & DFCS_PUSHED) != 0;
    DrawButton(context->canvas, box, pushed);
    // A pushed arrow moves with its button.
    DrawArrow(context->canvas, box, pushed ? QPoint(1, 1) : QPoint(0, 0), (state & DFCS_SCROLLDOWN) != 0);
    return TRUE;
}
