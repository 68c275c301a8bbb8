// Lines, shapes and filled regions, pixel by pixel.
#include <gtest/gtest.h>

#include <QtMath>

#include <climits>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include "Shapes.h"
#include "Surface.h"

namespace {

// What Windows draws, by the shape's name.
std::map<std::string, std::string> Reference() {
    std::map<std::string, std::string> shapes;
    std::ifstream file(SHAPES_FILE);
    std::string name;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('[')) {
            name = line.substr(1, line.size() - 2);
        } else {
            shapes[name] += line + '\n';
        }
    }
    return shapes;
}

TEST(Shapes, AreThoseOfWindows) {
    const std::map<std::string, std::string> reference = Reference();
    ASSERT_EQ(reference.size(), Shapes().size());
    for (const Shape& shape : Shapes()) {
        Surface surface(shape.width, shape.height);
        EXPECT_EQ(DrawShape(surface.dc, shape), reference.at(shape.name)) << shape.name;
    }
}

// On a scaled screen each pixel becomes a solid block, and the blocks leave no gap.
TEST(Shapes, ScaleWithoutBlending) {
    for (const qreal scale : {1.25, 1.5, 2.0}) {
        for (const Shape& shape : Shapes()) {
            Surface plain(shape.width, shape.height);
            DrawShape(plain.dc, shape);
            Surface scaled(shape.width, shape.height, scale);
            DrawShape(scaled.dc, shape);
            int wrong = 0;
            for (int y = 0; y < shape.height; ++y) {
                for (int x = 0; x < shape.width; ++x) {
                    const QRect block(QPoint(qFloor(x * scale + 0.5), qFloor(y * scale + 0.5)),
                                      QPoint(qFloor((x + 1) * scale + 0.5) - 1, qFloor((y + 1) * scale + 0.5) - 1));
                    for (int row = block.top(); row <= std::min(block.bottom(), scaled.image.height() - 1); ++row) {
                        for (int column = block.left(); column <= std::min(block.right(), scaled.image.width() - 1);
                             ++column) {
                            wrong += scaled.image.pixel(column, row) != plain.image.pixel(x, y);
                        }
                    }
                }
            }
            EXPECT_EQ(wrong, 0) << shape.name << " at " << scale;
        }
    }
}

TEST(Shapes, StayInsideTheClipAndReportWhatChanged) {
    const QRegion clip = QRegion(20, 10, 60, 70) - QRegion(40, 30, 10, 10);
    for (const Shape& shape : Shapes()) {
        Surface whole(200, 200, 1, QPoint(7, -5));
        DrawShape(whole.dc, shape);
        Surface clipped(200, 200, 1, QPoint(7, -5), clip);
        DrawShape(clipped.dc, shape);
        EXPECT_TRUE((clipped.changed - clip).isEmpty()) << shape.name;
        int wrong = 0;
        for (int y = 0; y < 200; ++y) {
            for (int x = 0; x < 200; ++x) {
                const bool inside = clip.contains(QPoint(x, y));
                const QRgb expected = inside ? whole.image.pixel(x, y) : Surface::kUntouched;
                wrong += clipped.image.pixel(x, y) != expected;
                wrong += clipped.image.pixel(x, y) != Surface::kUntouched && !clipped.changed.contains(QPoint(x, y));
            }
        }
        EXPECT_EQ(wrong, 0) << shape.name;
    }
}

// The program's coordinates come from row positions, which nobody bounds.
TEST(Shapes, SurviveFarCoordinates) {
    Surface surface(40, 40);
    const HBRUSH brush = CreateSolidBrush(RGB(255, 0, 0));
    SelectObject(surface.dc, brush);
    SelectObject(surface.dc, GetStockObject(NULL_PEN));
    EXPECT_TRUE(Rectangle(surface.dc, INT_MIN, INT_MIN, INT_MAX, INT_MAX));
    EXPECT_EQ(surface.BoundsOf(0xFFFF0000), QRect(0, 0, 40, 40));
    SelectObject(surface.dc, GetStockObject(BLACK_PEN));
    EXPECT_TRUE(MoveToEx(surface.dc, INT_MIN, 20, nullptr));
    EXPECT_TRUE(LineTo(surface.dc, INT_MAX, 20));
    EXPECT_EQ(surface.BoundsOf(0xFF000000), QRect(0, 20, 40, 1));
    EXPECT_TRUE(LineTo(surface.dc, INT_MIN, INT_MIN));
    EXPECT_TRUE(LineTo(surface.dc, INT_MAX, INT_MAX - 7));
    EXPECT_FALSE(Arc(surface.dc, INT_MIN, INT_MIN, INT_MAX, INT_MAX, 0, 0, 0, 0));
    EXPECT_TRUE(Arc(surface.dc, 0, INT_MAX - 20, 20, INT_MAX, INT_MIN, 0, INT_MAX, INT_MIN));
    EXPECT_EQ(CreateEllipticRgn(INT_MIN, 0, INT_MAX, 50), nullptr);
    const HRGN region = CreateRectRgn(INT_MIN, INT_MIN, INT_MAX, INT_MAX);
    EXPECT_TRUE(FrameRgn(surface.dc, region, brush, 1, 1));
    EXPECT_TRUE(FillRgn(surface.dc, region, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH))));
    EXPECT_EQ(surface.BoundsOf(0xFFFFFFFF), QRect(0, 0, 40, 40));
    DeleteObject(region);
    EXPECT_EQ(GetPixel(surface.dc, INT_MAX, INT_MIN), CLR_INVALID);
}

// Calls on a device context without a target, or on none at all, draw nothing and do no harm.
TEST(Shapes, NeedATarget) {
    const Measure measure;
    for (const Shape& shape : Shapes()) {
        shape.draw(measure);
        shape.draw(nullptr);
    }
    EXPECT_EQ(GetPixel(measure, 0, 0), CLR_INVALID);
    EXPECT_FALSE(LineTo(nullptr, 1, 1));
    POINT position{};
    EXPECT_TRUE(LineTo(measure, 3, 4));
    EXPECT_TRUE(MoveToEx(measure, 0, 0, &position));
    EXPECT_EQ(position.x, 3);
    EXPECT_EQ(position.y, 4);

    Surface surface(10, 10);
    drawing::DropTarget(surface.dc);
    const RECT all = {0, 0, 10, 10};
    EXPECT_TRUE(FillRect(surface.dc, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH))));
    EXPECT_TRUE(surface.Touched().isEmpty());
}

TEST(Shapes, ScrollArrowsDifferByStateAndFillTheirRectangle) {
    const auto drawn = [](UINT state) {
        Surface surface(30, 20);
        RECT box = {4, 3, 26, 16};
        EXPECT_TRUE(DrawFrameControl(surface.dc, &box, DFC_SCROLL, state));
        EXPECT_EQ(surface.Touched(), QRect(4, 3, 22, 13));
        EXPECT_EQ(surface.BoundsOf(Surface::kUntouched, true), surface.changed.boundingRect());
        return surface.image;
    };
    const QImage up = drawn(DFCS_SCROLLUP);
    const QImage down = drawn(DFCS_SCROLLDOWN);
    EXPECT_NE(up, down);
    EXPECT_GT(qGray(up.pixel(4, 3)), qGray(drawn(DFCS_SCROLLUP | DFCS_PUSHED).pixel(4, 3))) << "light from the upper left";
    EXPECT_NE(down, drawn(DFCS_SCROLLDOWN | DFCS_PUSHED));
    EXPECT_NE(drawn(DFCS_SCROLLUP | DFCS_PUSHED), drawn(DFCS_SCROLLDOWN | DFCS_PUSHED));
}

TEST(Shapes, FillRectTakesSystemColorsByNumber) {
    Surface surface(10, 10);
    const RECT all = {0, 0, 10, 10};
    FillRect(surface.dc, &all, reinterpret_cast<HBRUSH>(INT_PTR{COLOR_BTNSHADOW + 1}));
    EXPECT_EQ(GetPixel(surface.dc, 9, 9), GetSysColor(COLOR_BTNSHADOW));
    const RECT inverted = {9, 9, 2, 2};
    FillRect(surface.dc, &inverted, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    FillRect(surface.dc, &all, static_cast<HBRUSH>(GetStockObject(NULL_BRUSH)));
    EXPECT_EQ(GetPixel(surface.dc, 5, 5), GetSysColor(COLOR_BTNSHADOW));
}

}  // namespace
