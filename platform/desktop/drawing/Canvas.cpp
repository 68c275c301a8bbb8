#include "Canvas.h"

#include <QGlyphRun>
#include <QPainter>

#include <algorithm>
#include <cassert>
#include <cmath>
#include <vector>

#include "FontFace.h"

namespace drawing {

namespace {

constexpr qint64 kFarthest = 1 << 27;

int Limited(qint64 coordinate) {
    return static_cast<int>(std::clamp(coordinate, -kFarthest, kFarthest));
}

bool IsReady(const DrawingTarget& target) {
    return target.image != nullptr && !target.image->isNull();
}

// Where a line from `major`, `minor` is when it has gone that many steps along its longer side. Half way between two pixels
// it takes the left or upper one.
qint64 MinorAt(qint64 steps, qint64 length, qint64 minorLength, int minorSign) {
    const qint64 rounding = length - (minorSign < 0 ? 0 : 1);
    return minorSign * ((2 * steps * minorLength + rounding) / (2 * length));
}

int Sign(int value) {
    return (value > 0) - (value < 0);
}

}  // namespace

QRect Area(qint64 left, qint64 top, qint64 right, qint64 bottom) {
    const int x = Limited(left);
    const int y = Limited(top);
    return {x, y, std::max(0, Limited(right) - x), std::max(0, Limited(bottom) - y)};
}

QRect SortedArea(qint64 left, qint64 top, qint64 right, qint64 bottom) {
    return Area(std::min(left, right), std::min(top, bottom), std::max(left, right), std::max(top, bottom));
}

Canvas::Canvas(const DrawingTarget& target) : target(target), clip(target.clip) {
    assert(!IsReady(target) || target.image->format() == QImage::Format_RGB32 ||
           target.image->format() == QImage::Format_ARGB32_Premultiplied);
}

void Canvas::ClipTo(const QRegion& area) {
    clip = target.clip & area.translated(target.origin);
}

QRect Canvas::ClipBounds() const {
    return IsReady(target) ? clip.boundingRect().translated(-target.origin) : QRect();
}

// The window may have moved to another screen, and the image with it, since the device context was opened.
qreal Canvas::Scale() const {
    return target.image->devicePixelRatio();
}

int Canvas::ToDevice(int logical) const {
    return static_cast<int>(std::floor(logical * Scale() + 0.5));
}

QRect Canvas::ToDevice(const QRect& logical) const {
    const int left = ToDevice(logical.left());
    const int top = ToDevice(logical.top());
    return {left, top, ToDevice(logical.left() + logical.width()) - left, ToDevice(logical.top() + logical.height()) - top};
}

void Canvas::NoteChange(const QRect& area) {
    if (target.changed != nullptr) {
        *target.changed += area;
    }
}

void Canvas::FillTarget(const QRect& area, QRgb color) {
    const QRect device = ToDevice(area) & target.image->rect();
    if (device.isEmpty()) {
        return;
    }
    NoteChange(area);
    for (int y = device.top(); y <= device.bottom(); ++y) {
        auto* const line = reinterpret_cast<QRgb*>(target.image->scanLine(y));
        std::fill_n(line + device.left(), device.width(), color);
    }
}

void Canvas::Fill(const QRect& area, QRgb color) {
    // An intersection with a rectangle of negative size isn't empty.
    if (!IsReady(target) || area.isEmpty()) {
        return;
    }
    const QRect bounds = area.translated(target.origin) & clip.boundingRect();
    for (const QRect& part : clip) {
        FillTarget(bounds & part, color);
    }
}

void Canvas::Fill(const QRegion& area, QRgb color) {
    for (const QRect& part : area) {
        Fill(part, color);
    }
}

void Canvas::Line(QPoint from, QPoint to, QRgb color) {
    const QRect bounds = ClipBounds();
    const int width = std::abs(to.x() - from.x());
    const int height = std::abs(to.y() - from.y());
    if (bounds.isEmpty() || (width == 0 && height == 0)) {
        return;
    }
    const int right = Sign(to.x() - from.x());
    const int down = Sign(to.y() - from.y());
    if (height == 0) {
        Fill(QRect(right > 0 ? from.x() : to.x() + 1, from.y(), width, 1), color);
        return;
    }
    if (width == 0) {
        Fill(QRect(from.x(), down > 0 ? from.y() : to.y() + 1, 1, height), color);
        return;
    }
    const bool flat = width >= height;
    const int start = flat ? from.x() : from.y();
    const int sign = flat ? right : down;
    const int low = flat ? bounds.left() : bounds.top();
    const int high = flat ? bounds.right() : bounds.bottom();
    // Only the steps inside the clip, however long the line is.
    const int first = std::max(0, sign > 0 ? low - start : start - high);
    const int last = std::min(std::max(width, height) - 1, sign > 0 ? high - start : start - low);
    for (int step = first; step <= last; ++step) {
        const qint64 minor = flat ? MinorAt(step, width, height, down) : MinorAt(step, height, width, right);
        const QPoint offset =
            flat ? QPoint(step * sign, static_cast<int>(minor)) : QPoint(static_cast<int>(minor), step * sign);
        Fill(QRect(from + offset, QSize(1, 1)), color);
    }
}

void Canvas::Glyphs(FontFace& font, std::span<const PlacedGlyph> glyphs, QPoint start, const QRect& area, QRgb color) {
    const QRect bounds = area.translated(target.origin) & clip.boundingRect();
    if (!IsReady(target) || area.isEmpty() || bounds.isEmpty() || glyphs.empty()) {
        return;
    }
    // The glyphs are drawn in the image's own pixels, at their full sharpness, so the painter must not scale.
    QImage& image = *target.image;
    QImage pixels(image.bits(), image.width(), image.height(), image.bytesPerLine(), image.format());
    QPainter painter(&pixels);
    painter.setPen(QColor::fromRgb(color));
    painter.setClipRect(ToDevice(bounds));
    if (clip.rectCount() > 1) {
        QRegion device;
        for (const QRect& part : clip) {
            device += ToDevice(part & bounds);
        }
        painter.setClipRegion(device);
    }
    const QPoint origin = start + target.origin;
    std::vector<quint32> indexes;
    std::vector<QPointF> places;
    for (std::size_t i = 0; i < glyphs.size();) {
        const int face = glyphs[i].face;
        indexes.clear();
        places.clear();
        for (; i < glyphs.size() && glyphs[i].face == face; ++i) {
            indexes.push_back(glyphs[i].index);
            places.emplace_back(ToDevice(origin.x() + glyphs[i].x), ToDevice(origin.y()));
        }
        QGlyphRun run;
        run.setRawFont(font.Face(face, Scale()));
        run.setRawData(indexes.data(), places.data(), static_cast<int>(indexes.size()));
        painter.drawGlyphRun(QPointF(0, 0), run);
    }
    NoteChange(bounds);
}

std::optional<QRgb> Canvas::PixelAt(QPoint point) const {
    const QPoint logical = point + target.origin;
    if (!IsReady(target) || !clip.contains(logical)) {
        return std::nullopt;
    }
    const QPoint device(ToDevice(logical.x()), ToDevice(logical.y()));
    return target.image->rect().contains(device) ? std::optional<QRgb>(target.image->pixel(device)) : std::nullopt;
}

}  // namespace drawing
