// Pixels: solid rectangles and glyphs on an image of any scale.
#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QRegion>

#include <optional>
#include <span>

namespace drawing {

class FontFace;

// Where a device context draws. The image has the format RGB32 or ARGB32_Premultiplied and any device pixel ratio;
// everything else is told in its logical pixels.
struct DrawingTarget {
    QImage* image = nullptr;     // must outlive the device context; null: nothing is drawn
    QPoint origin;               // where the caller's 0, 0 lies in the image
    QRegion clip;                // in the image's coordinates, like `changed`
    QRegion* changed = nullptr;  // all that is drawn is added here; null: nobody wants to know
};

// A glyph of one of a font's faces, `x` logical pixels behind the start of its line.
struct PlacedGlyph {
    int face;
    quint32 index;
    int x;
};

// The rectangle between two corners, the second one exclusive. Empty if they are the wrong way round. Coordinates beyond
// 2^27, as far as Windows draws, are moved there.
QRect Area(qint64 left, qint64 top, qint64 right, qint64 bottom);
// The same between any two opposite corners.
QRect SortedArea(qint64 left, qint64 top, qint64 right, qint64 bottom);

// All coordinates are the caller's, from the origin. A logical pixel covers the image's pixels between its scaled and
// rounded edges: whatever the scale, neighbours meet without a gap and nothing is blended.
class Canvas {
public:
    explicit Canvas(const DrawingTarget& target);

    // Clips to an area beside the target's own clip.
    void ClipTo(const QRegion& area);
    // Nothing outside is drawn. Empty without an image.
    QRect ClipBounds() const;

    void Fill(const QRect& area, QRgb color);
    void Fill(const QRegion& area, QRgb color);
    // A line of single pixels, without its end point.
    void Line(QPoint from, QPoint to, QRgb color);
    // Glyphs on a base line that begins at `start`, cut off at the edges of `area`.
    void Glyphs(FontFace& font, std::span<const PlacedGlyph> glyphs, QPoint start, const QRect& area, QRgb color);

    // None outside the clip.
    std::optional<QRgb> PixelAt(QPoint point) const;

private:
    qreal Scale() const;
    int ToDevice(int logical) const;
    QRect ToDevice(const QRect& logical) const;
    void FillTarget(const QRect& area, QRgb color);
    void NoteChange(const QRect& area);

    DrawingTarget target;
    QRegion clip;  // in the image's logical pixels
};

}  // namespace drawing
