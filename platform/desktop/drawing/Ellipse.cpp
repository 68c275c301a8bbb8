#include "Ellipse.h"

#include <QtGlobal>

#include <cstddef>
#include <iterator>

namespace drawing {

namespace {

// A pixel of the outline, and how it is seen from the centre (y upwards). In an even width or height the centre is two
// pixels wide, and each half of the ellipse is seen from its own.
struct OutlinePixel {
    QPoint at;
    QPoint direction;
};

std::vector<OutlinePixel> Outline(const std::vector<QPoint>& quarter, int width, int height) {
    const QPoint nearMiddle((width - 1) / 2, (height - 1) / 2);
    std::vector<OutlinePixel> outline;
    outline.reserve(4 * quarter.size());
    const auto add = [&](QPoint pixel, bool right, bool lower) {
        const QPoint away = nearMiddle - pixel;
        outline.push_back({QPoint(right ? width - 1 - pixel.x() : pixel.x(), lower ? height - 1 - pixel.y() : pixel.y()),
                           QPoint(right ? away.x() : -away.x(), lower ? -away.y() : away.y())});
    };
    for (auto pixel = quarter.begin(); pixel != quarter.end(); ++pixel) {
        add(*pixel, true, false);
    }
    for (auto pixel = quarter.rbegin(); pixel != quarter.rend(); ++pixel) {
        add(*pixel, false, false);
    }
    for (auto pixel = quarter.begin(); pixel != quarter.end(); ++pixel) {
        add(*pixel, false, true);
    }
    for (auto pixel = quarter.rbegin(); pixel != quarter.rend(); ++pixel) {
        add(*pixel, true, true);
    }
    return outline;
}

// 0 to 3, counter-clockwise from the upper right one.
std::size_t QuarterOf(QPoint direction) {
    if (direction.y() >= 0) {
        return direction.x() >= 0 ? 0 : 1;
    }
    return direction.x() < 0 ? 2 : 3;
}

// The index of the first pixel of the outline that isn't before the ray. A pixel right on the ray counts as behind it in the
// upper half and as before it in the lower one.
std::size_t FirstBehind(const std::vector<OutlinePixel>& outline, QPoint ray) {
    const std::size_t quarterSize = outline.size() / 4;
    const std::size_t quarter = QuarterOf(ray);
    std::size_t index = quarter * quarterSize;
    for (; index < (quarter + 1) * quarterSize; ++index) {
        const QPoint direction = outline[index].direction;
        const qint64 turn = static_cast<qint64>(ray.x()) * direction.y() - static_cast<qint64>(ray.y()) * direction.x();
        if (turn > 0 || (turn == 0 && quarter < 2)) {
            break;
        }
    }
    return index;
}

}  // namespace

// Bresenham's way around an ellipse in a rectangle of whole pixels: of the three next pixels it takes the one where the
// ellipse's equation errs least. All terms are scaled by the squares of the axes, so that nothing is rounded.
std::vector<QPoint> EllipseQuarter(int width, int height) {
    const qint64 a = width - 1;
    const qint64 b = height - 1;
    const qint64 odd = b % 2;
    qint64 stepX = 4 * (1 - a) * b * b;
    qint64 stepY = 4 * (1 + odd) * a * a;
    qint64 error = stepX + stepY + odd * a * a;
    QPoint pixel(0, static_cast<int>(b / 2));
    std::vector<QPoint> quarter;
    while (2LL * pixel.x() <= a) {
        quarter.push_back(pixel);
        const qint64 doubled = 2 * error;
        if (doubled >= stepX) {
            pixel.rx()++;
            stepX += 8 * b * b;
            error += stepX;
        }
        if (doubled <= stepY) {
            pixel.ry()--;
            stepY += 8 * a * a;
            error += stepY;
        }
    }
    return quarter;
}

std::vector<int> EllipseInsets(int width, int height) {
    // The rows that the outline doesn't reach hold its tip. Windows leaves them undefined.
    std::vector<int> insets(static_cast<std::size_t>(height), (width - 1) / 2);
    const std::vector<QPoint> quarter = EllipseQuarter(width, height);
    // The first pixel of a row is the outermost one, and is kept by going backwards.
    for (auto pixel = quarter.rbegin(); pixel != quarter.rend(); ++pixel) {
        if (pixel->y() >= 0) {
            insets[static_cast<std::size_t>(pixel->y())] = pixel->x();
            insets[static_cast<std::size_t>(height - 1 - pixel->y())] = pixel->x();
        }
    }
    return insets;
}

std::vector<QPoint> EllipseArc(int width, int height, QPoint start, QPoint end) {
    const std::vector<OutlinePixel> outline = Outline(EllipseQuarter(width, height), width, height);
    // The rays begin in the pixel right below the centre, if that lies between two.
    const auto ray = [&](QPoint point) { return QPoint(point.x() - width / 2, height / 2 - point.y()); };
    const std::size_t first = FirstBehind(outline, ray(start));
    const std::size_t past = FirstBehind(outline, ray(end));
    const std::size_t count = first < past ? past - first : outline.size() - first + past;
    std::vector<QPoint> arc;
    arc.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        arc.push_back(outline[(first + i) % outline.size()].at);
    }
    return arc;
}

}  // namespace drawing
