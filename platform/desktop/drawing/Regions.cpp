// Regions, and the shapes that they are made of.
#include <algorithm>
#include <cstdlib>
#include <utility>
#include <vector>

#include "Canvas.h"
#include "DeviceContext.h"
#include "Ellipse.h"
#include "GdiObjects.h"
#include "ObjectTable.h"

namespace drawing {

namespace {

// A rectangle whose corners are quarters of an ellipse of that size, at least 1 by 1 and no larger than the rectangle.
QRegion RoundedRectangle(const QRect& box, int cornerWidth, int cornerHeight) {
    if (cornerWidth < 2 || cornerHeight < 2) {
        return box;
    }
    const std::vector<int> insets = EllipseInsets(cornerWidth, cornerHeight);
    const int upper = (cornerHeight + 1) / 2;
    const auto insetOf = [&](int row) {
        if (row < upper) {
            return insets[static_cast<std::size_t>(row)];
        }
        const int fromBottom = box.height() - 1 - row;
        return fromBottom < upper ? insets[static_cast<std::size_t>(cornerHeight - 1 - fromBottom)] : 0;
    };
    std::vector<QRect> bands;
    for (int row = 0; row < box.height(); ++row) {
        const int inset = insetOf(row);
        const QRect line(box.left() + inset, box.top() + row, box.width() - 2 * inset, 1);
        if (!bands.empty() && bands.back().left() == line.left()) {
            bands.back().setBottom(line.bottom());
        } else {
            bands.push_back(line);
        }
    }
    QRegion region;
    region.setRects(bands.data(), static_cast<int>(bands.size()));
    return region;
}

// What lies at least that far inside a region, to the sides and up and down.
QRegion Inside(const QRegion& region, int width, int height) {
    return region.translated(width, 0) & region.translated(-width, 0) & region.translated(0, height) &
           region.translated(0, -height);
}

HRGN AddRegion(QRegion area) {
    return static_cast<HRGN>(AddObject(std::make_unique<Region>(std::move(area))));
}

}  // namespace

QRegion RegionOf(HRGN region) {
    const Region* found = Find<Region>(region);
    return found != nullptr ? found->area : QRegion();
}

HRGN MakeRegion(const QRegion& region) {
    return AddRegion(region);
}

}  // namespace drawing

using namespace drawing;

HRGN CreateRectRgn(int left, int top, int right, int bottom) {
    return AddRegion(SortedArea(left, top, right, bottom));
}

HRGN CreateRoundRectRgn(int left, int top, int right, int bottom, int cornerWidth, int cornerHeight) {
    // These regions, unlike rectangles, leave out the last column and row.
    const QRect box = SortedArea(left, top, right, bottom).adjusted(0, 0, -1, -1);
    if (box.isEmpty()) {
        return AddRegion(QRegion());
    }
    const int width = std::min(std::abs(std::max(cornerWidth, -kLargestEllipse)), box.width());
    const int height = std::min(std::abs(std::max(cornerHeight, -kLargestEllipse)), box.height());
    return width <= kLargestEllipse && height <= kLargestEllipse ? AddRegion(RoundedRectangle(box, width, height)) : nullptr;
}

HRGN CreateEllipticRgn(int left, int top, int right, int bottom) {
    const QRect box = SortedArea(left, top, right, bottom);
    return CreateRoundRectRgn(left, top, right, bottom, box.width(), box.height());
}

int CombineRgn(HRGN target, HRGN first, HRGN second, int mode) {
    Region* result = Find<Region>(target);
    const Region* one = Find<Region>(first);
    const Region* other = Find<Region>(second);
    if (result == nullptr || one == nullptr || (other == nullptr && mode != RGN_COPY)) {
        return RGN_ERROR;
    }
    switch (mode) {
        case RGN_OR: result->area = one->area | other->area; break;
        case RGN_XOR: result->area = one->area ^ other->area; break;
        case RGN_DIFF: result->area = one->area - other->area; break;
        case RGN_COPY: result->area = one->area; break;
        default: return RGN_ERROR;
    }
    return Complexity(result->area);
}

BOOL FillRgn(HDC dc, HRGN region, HBRUSH brush) {
    DeviceContext* context = ContextOf(dc);
    const Region* found = Find<Region>(region);
    if (context == nullptr || found == nullptr || Find<Brush>(brush) == nullptr) {
        return FALSE;
    }
    if (const std::optional<QRgb> color = ColorOf(brush)) {
        context->canvas.Fill(found->area, *color);
    }
    return TRUE;
}

BOOL FrameRgn(HDC dc, HRGN region, HBRUSH brush, int width, int height) {
    DeviceContext* context = ContextOf(dc);
    const Region* found = Find<Region>(region);
    if (context == nullptr || found == nullptr || Find<Brush>(brush) == nullptr) {
        return FALSE;
    }
    if (const std::optional<QRgb> color = ColorOf(brush)) {
        context->canvas.Fill(found->area - Inside(found->area, width, height), *color);
    }
    return TRUE;
}
