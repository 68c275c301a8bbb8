// An image and a device context on it, for tests.
#pragma once

#include <windows.h>

#include <QImage>
#include <QRegion>

#include "DeviceContext.h"

class Surface {
public:
    static constexpr QRgb kUntouched = 0xFF336699;

    // The size is in logical pixels. The device context's 0, 0 lies at `origin`.
    Surface(int width, int height, qreal scale = 1, QPoint origin = QPoint(0, 0), const QRegion& clip = QRegion())
        : image((QSizeF(width, height) * scale).toSize(), QImage::Format_RGB32) {
        image.setDevicePixelRatio(scale);
        image.fill(kUntouched);
        dc = drawing::OpenDeviceContext({&image, origin, clip.isEmpty() ? QRegion(0, 0, width, height) : clip, &changed});
    }
    ~Surface() { drawing::CloseDeviceContext(dc); }
    Surface(const Surface&) = delete;
    Surface& operator=(const Surface&) = delete;

    // Everything whose colour is told, or, with `inverted`, everything else. In the image's pixels.
    QRect BoundsOf(QRgb color, bool inverted = false) const {
        QRect bounds;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if ((image.pixel(x, y) == color) != inverted) {
                    bounds |= QRect(x, y, 1, 1);
                }
            }
        }
        return bounds;
    }
    QRect Touched() const { return BoundsOf(kUntouched, true); }

    QImage image;
    QRegion changed;
    HDC dc;
};

// A device context that only measures.
class Measure {
public:
    Measure() : dc(drawing::OpenDeviceContext({})) {}
    ~Measure() { drawing::CloseDeviceContext(dc); }
    Measure(const Measure&) = delete;
    Measure& operator=(const Measure&) = delete;
    operator HDC() const { return dc; }

private:
    HDC dc;
};
