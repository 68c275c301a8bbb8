// The pixels of ellipses, exactly those that Windows sets.
#pragma once

#include <QPoint>

#include <vector>

namespace drawing {

// Wider or higher ones are not drawn.
inline constexpr int kLargestEllipse = 0x7FFF;

// The upper left quarter of the outline of an ellipse that fills width by height pixels (each 1 to kLargestEllipse), from
// the middle of the left edge, or the upper one of its two middle pixels, to the top. The other quarters mirror it. The
// outline of a very thin ellipse ends before it reaches the top.
std::vector<QPoint> EllipseQuarter(int width, int height);

// For each row of an ellipse that fills width by height pixels: how many pixels are left out at either end.
std::vector<int> EllipseInsets(int width, int height);

// The outline of an ellipse, counter-clockwise, cut between two rays from the centre. `start` and `end` are points of the
// rays relative to the top left corner of the ellipse; the same ray twice gives all of it. The last pixel isn't part of the
// arc.
std::vector<QPoint> EllipseArc(int width, int height, QPoint start, QPoint end);

}  // namespace drawing
