#include "Shapes.h"

#include <algorithm>
#include <cstdlib>
#include <initializer_list>

namespace {

constexpr COLORREF kPaper = RGB(255, 255, 255);
constexpr COLORREF kInk = RGB(0, 0, 0);
constexpr COLORREF kFace = RGB(192, 192, 192);
constexpr COLORREF kBand = RGB(255, 255, 0);

class BrushOf {
public:
    explicit BrushOf(COLORREF color) : brush(CreateSolidBrush(color)) {}
    ~BrushOf() { DeleteObject(brush); }
    operator HBRUSH() const { return brush; }

private:
    HBRUSH brush;
};

// A pen that is in use as long as it lives.
class PenInUse {
public:
    PenInUse(HDC dc, COLORREF color) : dc(dc), pen(CreatePen(PS_SOLID, 0, color)), before(SelectObject(dc, pen)) {}
    ~PenInUse() {
        SelectObject(dc, before);
        DeleteObject(pen);
    }

private:
    HDC dc;
    HPEN pen;
    HGDIOBJ before;
};

// A region that lives as long as it is in use.
class Area {
public:
    explicit Area(HRGN region) : region(region) {}
    ~Area() { DeleteObject(region); }
    operator HRGN() const { return region; }
    void Combine(HRGN other, int mode) { CombineRgn(region, region, other, mode); }

private:
    HRGN region;
};

void DrawLine(HDC dc, int left, int top, int right, int bottom) {
    MoveToEx(dc, left, top, nullptr);
    LineTo(dc, right, bottom);
}

void FillRoundRectangles(HDC dc) {
    const BrushOf ink(kInk);
    FillRgn(dc, Area(CreateRoundRectRgn(0, 0, 134, 60, 10, 10)), ink);
    const BrushOf band(kBand);
    FillRgn(dc, Area(CreateRoundRectRgn(100, 50, 75, 10, 21, 8)), band);
    FillRgn(dc, Area(CreateRoundRectRgn(10, 10, 60, 40, 1000, 9)), band);
    FillRgn(dc, Area(CreateRoundRectRgn(104, 10, 130, 24, -7, 1)), band);
    FillRgn(dc, Area(CreateRoundRectRgn(104, 30, 106, 54, 5, 5)), band);
}

void FillEllipses(HDC dc) {
    const BrushOf ink(kInk);
    int x = 0;
    int y = 0;
    for (const SIZE& size : std::initializer_list<SIZE>{
             {2, 2},  {3, 3},  {4, 4},   {5, 5},   {6, 6},   {7, 7},   {8, 8},   {10, 10}, {11, 11}, {6, 9},  {9, 6},
             {16, 8}, {8, 16}, {17, 17}, {24, 24}, {24, 14}, {40, 10}, {13, 28}, {44, 39}, {45, 38}, {90, 30}}) {
        if (x + size.cx > 100) {
            x = 0;
            y += 40;
        }
        FillRgn(dc, Area(CreateEllipticRgn(x, y, x + size.cx, y + size.cy)), ink);
        x += size.cx;
    }
}

void DrawArcs(HDC dc) {
    const PenInUse ink(dc, kInk);
    Arc(dc, 2, 40, 18, 56, 11, 40, 11, 56);
    Arc(dc, 2, 60, 18, 77, 11, 60, 7, 68);
    Arc(dc, 2, 90, 38, 107, 21, 90, 21, 107);
    Arc(dc, 2, 110, 38, 128, 21, 110, 17, 121);
    // Whole ones; rays along the axes and through pixels; corners the wrong way round; from the lower half to the upper one.
    Arc(dc, 2, 2, 19, 20, 0, 0, 0, 0);
    Arc(dc, 20, 2, 39, 19, 60, 10, 60, 10);
    Arc(dc, 50, 2, 66, 18, 80, 10, 58, 0);
    Arc(dc, 50, 22, 67, 39, 58, 0, 0, 30);
    Arc(dc, 50, 42, 66, 58, 0, 50, 58, 90);
    Arc(dc, 50, 62, 66, 79, 58, 90, 90, 70);
    Arc(dc, 90, 110, 60, 84, 63, 88, 87, 106);
    Arc(dc, 95, 2, 70, 30, 90, 28, 90, 4);
    Arc(dc, 70, 40, 100, 44, 0, 42, 100, 42);
    Arc(dc, 50, 112, 57, 127, 53, 119, 57, 120);
    Arc(dc, 72, 50, 72, 60, 0, 0, 0, 0);
}

void DrawLines(HDC dc) {
    const PenInUse ink(dc, kInk);
    for (int x = -16; x <= 16; x += 4) {
        for (int y = -16; y <= 16; y += 4) {
            if (std::max(std::abs(x), std::abs(y)) == 16) {
                DrawLine(dc, 24, 24, 24 + x, 24 + y);
            }
        }
    }
    DrawLine(dc, 50, 2, 55, 2);
    LineTo(dc, 55, 9);
    LineTo(dc, 50, 9);
    LineTo(dc, 50, 2);
    for (int i = 1; i < 8; ++i) {
        DrawLine(dc, 60, 4 * i, 60 + i, 4 * i + 2);
        DrawLine(dc, 78, 4 * i, 78 - 2 * i, 4 * i - 1);
    }
    DrawLine(dc, -300, -101, 200, 83);
    DrawLine(dc, 41, 1000, 47, -1000);
}

void DrawRectangles(HDC dc) {
    const BrushOf band(kBand);
    const HGDIOBJ brushBefore = SelectObject(dc, band);
    const PenInUse ink(dc, kInk);
    for (int pass = 0; pass < 2; ++pass) {
        const int top = pass * 20;
        for (int size = 0; size <= 4; ++size) {
            Rectangle(dc, 2 + 6 * size, top + 2, 2 + 7 * size, top + 6);
            Rectangle(dc, 2 + 6 * size, top + 10, 2 + 7 * size, top + 10 + size);
        }
        Rectangle(dc, 49, top + 9, 40, top + 2);
        SelectObject(dc, GetStockObject(NULL_PEN));
    }
    SelectObject(dc, GetStockObject(BLACK_PEN));
    SelectObject(dc, GetStockObject(NULL_BRUSH));
    Rectangle(dc, 45, 5, 58, 30);
    SelectObject(dc, brushBefore);
}

void DrawFrames(HDC dc) {
    const BrushOf ink(kInk);
    FrameRgn(dc, Area(CreateRoundRectRgn(2, 2, 50, 30, 10, 10)), ink, 1, 1);
    const Area lowOval(CreateEllipticRgn(30, 42, 90, 90));
    Area ring(CreateRoundRectRgn(2, 34, 50, 62, 10, 10));
    ring.Combine(lowOval, RGN_XOR);
    FrameRgn(dc, ring, ink, 1, 1);
    Area halves(CreateEllipticRgn(60, 2, 120, 50));
    halves.Combine(Area(CreateRectRgn(90, 0, 93, 60)), RGN_DIFF);
    FrameRgn(dc, halves, ink, 2, 3);
    FrameRgn(dc, Area(CreateRectRgn(4, 80, 6, 82)), ink, 1, 1);
    FrameRgn(dc, Area(CreateRectRgn(10, 70, 30, 80)), ink, 5, 1);
    FrameRgn(dc, Area(CreateRectRgn(10, 84, 30, 90)), ink, 0, 2);
}

void DrawClipped(HDC dc) {
    const BrushOf ink(kInk);
    const PenInUse pen(dc, kInk);
    SelectObject(dc, Area(CreateEllipticRgn(2, 2, 40, 40)));
    const RECT all = {0, 0, 60, 20};
    FillRect(dc, &all, ink);
    DrawLine(dc, 0, 39, 39, 0);
    DrawLine(dc, 20, 0, 20, 60);
    const Area outside(CreateRectRgn(0, 0, 60, 60));
    SelectObject(dc, outside);
    DrawLine(dc, 45, 0, 59, 59);
}

// What stands around the rows of a list.
struct ListFrame {
    int width;
    int height;
    int rowTop;
    int rowHeight;
};
constexpr int kInset = 10;

void FillAround(HDC dc, const ListFrame& list, Area& shape) {
    const BrushOf face(kFace);
    Area corners(CreateRectRgn(0, 0, list.width, list.height));
    corners.Combine(shape, RGN_XOR);
    FillRgn(dc, corners, face);
    const Area rows(CreateRectRgn(2 * kInset, 2 * kInset, list.width - kInset, list.height - 2 * kInset));
    const Area up(CreateRectRgn(2 * kInset, 5, list.width - kInset, 18));
    const Area down(CreateRectRgn(2 * kInset, list.height - 18, list.width - kInset, list.height - 5));
    for (const HRGN inner : {HRGN(rows), HRGN(up), HRGN(down)}) {
        shape.Combine(inner, RGN_XOR);
    }
    const BrushOf band(kBand);
    FillRgn(dc, shape, band);
    for (const HRGN inner : {HRGN(rows), HRGN(up), HRGN(down)}) {
        shape.Combine(inner, RGN_OR);
    }
    const BrushOf ink(kInk);
    FrameRgn(dc, shape, ink, 1, 1);
}

// A rounded frame whose selected row ends in a cap at the left and runs out to the right.
void DrawListWithCap(HDC dc) {
    const ListFrame list = {134, 120, 40, 16};
    Area shape(CreateRoundRectRgn(0, 0, list.width, list.height, 10, 10));
    FillAround(dc, list, shape);
    const int bottom = list.rowTop + list.rowHeight;
    {
        const PenInUse band(dc, kBand);
        DrawLine(dc, list.width - 2, list.rowTop, list.width - 2, bottom);
        DrawLine(dc, list.width - 1, list.rowTop, list.width - 1, bottom);
    }
    const PenInUse ink(dc, kInk);
    DrawLine(dc, list.width - kInset, list.rowTop, list.width, list.rowTop);
    DrawLine(dc, list.width - kInset, bottom - 1, list.width, bottom - 1);
    Arc(dc, 2, list.rowTop, 2 * kInset - 2, bottom, kInset + 1, list.rowTop, kInset + 1, bottom);
}

// A rounded frame with a flare at the left, cut out by two ellipses.
void DrawListWithFlare(HDC dc, const ListFrame& list) {
    const int right = kInset + 1;
    const int left = -1 - kInset;
    const int bottom = list.rowTop + list.rowHeight;
    Area shape(CreateRectRgn(left, list.rowTop - 14, right, std::min(bottom + 11, list.height - 5)));
    shape.Combine(Area(CreateEllipticRgn(3 * left, list.rowTop - 35, right, list.rowTop + 4)), RGN_DIFF);
    shape.Combine(Area(CreateEllipticRgn(3 * left, bottom - 4, right, bottom + 35)), RGN_DIFF);
    shape.Combine(Area(CreateRoundRectRgn(kInset, 0, list.width, list.height, 10, 10)), RGN_OR);
    FillAround(dc, list, shape);
    const PenInUse band(dc, kBand);
    DrawLine(dc, 0, list.rowTop + 1, 0, bottom - 1);
}

}  // namespace

const std::vector<Shape>& Shapes() {
    static const std::vector<Shape> shapes = {
        {"round rectangles", 136, 62, FillRoundRectangles},
        {"ellipses", 104, 160, FillEllipses},
        {"arcs", 104, 130, DrawArcs},
        {"lines", 86, 48, DrawLines},
        {"rectangles", 60, 42, DrawRectangles},
        {"frames", 124, 92, DrawFrames},
        {"clipped", 60, 60, DrawClipped},
        {"list with cap", 134, 120, DrawListWithCap},
        {"list with flare", 134, 120, [](HDC dc) { DrawListWithFlare(dc, {134, 120, 40, 16}); }},
        {"list with a flare that is cut off", 101, 119, [](HDC dc) { DrawListWithFlare(dc, {101, 119, 92, 17}); }},
    };
    return shapes;
}

std::string DrawShape(HDC dc, const Shape& shape) {
    const RECT all = {0, 0, shape.width, shape.height};
    {
        const BrushOf paper(kPaper);
        FillRect(dc, &all, paper);
    }
    shape.draw(dc);
    const auto letter = [dc](int x, int y) {
        const COLORREF color = GetPixel(dc, x, y);
        return color == kPaper ? '.' : color == kInk ? '#' : color == kFace ? 'f' : color == kBand ? 'b' : '?';
    };
    std::vector<std::pair<int, std::string>> rows;
    for (int y = 0; y < shape.height; ++y) {
        std::string row;
        for (int x = 0; x < shape.width;) {
            const int start = x;
            const char color = letter(x, y);
            while (x < shape.width && letter(x, y) == color) {
                ++x;
            }
            row += ' ' + std::to_string(x - start) + color;
        }
        if (!rows.empty() && rows.back().second == row) {
            ++rows.back().first;
        } else {
            rows.emplace_back(1, row);
        }
    }
    std::string text;
    for (const auto& [times, row] : rows) {
        text += (times > 1 ? std::to_string(times) + " x" : "") + row + '\n';
    }
    return text;
}
