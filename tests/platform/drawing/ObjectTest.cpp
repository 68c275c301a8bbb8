// Handles of drawing objects, what may be deleted when, and the system colours.
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QPalette>

#include <cmath>
#include <cstring>
#include <set>

#include "GdiObjects.h"
#include "Surface.h"

namespace {

TEST(Objects, AreNotDeletedWhileSelected) {
    Surface surface(10, 10);
    const HPEN pen = CreatePen(PS_SOLID, 0, RGB(1, 2, 3));
    const HGDIOBJ before = SelectObject(surface.dc, pen);
    EXPECT_EQ(before, GetStockObject(BLACK_PEN));
    EXPECT_FALSE(DeleteObject(pen));
    {
        const Measure other;
        SelectObject(other, pen);
        EXPECT_EQ(SelectObject(surface.dc, before), pen);
        EXPECT_FALSE(DeleteObject(pen));
    }
    // The other device context let go of it when it was closed.
    EXPECT_TRUE(DeleteObject(pen));
    EXPECT_FALSE(DeleteObject(pen));
    EXPECT_EQ(SelectObject(surface.dc, pen), nullptr);
    EXPECT_FALSE(DeleteObject(surface.dc));
    EXPECT_FALSE(DeleteObject(nullptr));
}

TEST(Objects, StartAsOnWindows) {
    const Measure dc;
    EXPECT_EQ(SelectObject(dc, GetStockObject(NULL_PEN)), GetStockObject(BLACK_PEN));
    EXPECT_EQ(SelectObject(dc, GetStockObject(NULL_BRUSH)), GetStockObject(WHITE_BRUSH));
    EXPECT_EQ(SelectObject(dc, GetStockObject(SYSTEM_FONT)), GetStockObject(SYSTEM_FONT));
    EXPECT_EQ(SetTextColor(dc, RGB(9, 9, 9)), RGB(0, 0, 0));
    EXPECT_EQ(SetBkColor(dc, RGB(9, 9, 9)), RGB(255, 255, 255));
    EXPECT_EQ(SetBkColor(dc, RGB(0, 0, 0)), RGB(9, 9, 9));
    const HRGN region = CreateRectRgn(0, 0, 5, 5);
    EXPECT_EQ(SelectObject(dc, region), reinterpret_cast<HGDIOBJ>(INT_PTR{SIMPLEREGION}));
    EXPECT_TRUE(DeleteObject(region)) << "the clip is a copy";
}

TEST(Objects, StockObjectsStay) {
    for (const int object : {WHITE_BRUSH, NULL_BRUSH, BLACK_PEN, NULL_PEN, SYSTEM_FONT}) {
        const HGDIOBJ handle = GetStockObject(object);
        ASSERT_NE(handle, nullptr) << object;
        DeleteObject(handle);
        const Measure dc;
        EXPECT_NE(SelectObject(dc, handle), nullptr) << object;
        EXPECT_EQ(GetStockObject(object), handle);
    }
    EXPECT_EQ(GetStockObject(99), nullptr);
}

TEST(Objects, StaleHandlesAreRecognised) {
    const HPEN first = CreatePen(PS_SOLID, 1, 0);
    DeleteObject(first);
    std::set<HGDIOBJ> given = {first};
    for (int i = 0; i < 30000; ++i) {
        const HBRUSH brush = CreateSolidBrush(0);
        ASSERT_TRUE(given.insert(brush).second) << "given out again after " << i;
        ASSERT_TRUE(DeleteObject(brush));
    }
    EXPECT_FALSE(DeleteObject(first));
}

TEST(Objects, FontsTellTheirDescription) {
    LOGFONTA description{};
    EXPECT_EQ(GetObjectA(GetStockObject(SYSTEM_FONT), sizeof(description), &description), 60);
    EXPECT_EQ(description.lfHeight, 16);
    EXPECT_EQ(description.lfWeight, FW_BOLD);
    EXPECT_STREQ(description.lfFaceName, "System");
    description.lfHeight = -1234567;
    std::strcpy(description.lfFaceName, "No such face");
    const HFONT font = CreateFontIndirectA(&description);
    ASSERT_NE(font, nullptr);
    LOGFONTA read{};
    EXPECT_EQ(GetObjectA(font, sizeof(read), &read), 60);
    EXPECT_EQ(std::memcmp(&read, &description, sizeof(read)), 0) << "not what the desktop made of it";
    EXPECT_EQ(GetObjectA(font, 0, nullptr), 60);
    read.lfItalic = 77;
    EXPECT_EQ(GetObjectA(font, 8, &read), 8);
    EXPECT_EQ(read.lfItalic, 77);
    EXPECT_EQ(GetObjectA(GetStockObject(BLACK_PEN), sizeof(read), &read), 0);
    EXPECT_TRUE(DeleteObject(font));
    EXPECT_EQ(CreateFontIndirectA(nullptr), nullptr);
}

double Luminance(COLORREF color) {
    const auto linear = [](COLORREF channel) { return std::pow(static_cast<double>(channel & 0xFF) / 255, 2.2); };
    return 0.21 * linear(color) + 0.72 * linear(color >> 8) + 0.07 * linear(color >> 16);
}

double Contrast(COLORREF one, COLORREF other) {
    const double first = Luminance(one) + 0.05;
    const double second = Luminance(other) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

// Light and dark alike: all texts that the program shows can be read, and a brush of a system colour follows the change.
TEST(Colors, FollowThePaletteAndStayReadable) {
    const QPalette before = QGuiApplication::palette();
    const HBRUSH window = GetSysColorBrush(COLOR_WINDOW);
    for (const bool dark : {false, true}) {
        QPalette palette(dark ? QColor(53, 53, 53) : QColor(239, 239, 239));
        palette.setColor(QPalette::Base, dark ? QColor(25, 25, 25) : QColor(255, 255, 255));
        palette.setColor(QPalette::Text, dark ? QColor(255, 255, 255) : QColor(0, 0, 0));
        QGuiApplication::setPalette(palette);
        EXPECT_EQ(drawing::ToQColor(GetSysColor(COLOR_WINDOW)), palette.color(QPalette::Base));
        EXPECT_EQ(drawing::BrushColor(window), palette.color(QPalette::Base));
        EXPECT_EQ(drawing::BrushColor(reinterpret_cast<HBRUSH>(INT_PTR{COLOR_WINDOW + 1})), palette.color(QPalette::Base));
        EXPECT_GT(Contrast(GetSysColor(COLOR_WINDOWTEXT), GetSysColor(COLOR_WINDOW)), 7) << dark;
        EXPECT_GT(Contrast(GetSysColor(COLOR_BTNTEXT), GetSysColor(COLOR_BTNFACE)), 7) << dark;
        EXPECT_GT(Contrast(GetSysColor(COLOR_BTNTEXT), GetSysColor(COLOR_WINDOW)), 7) << dark;
        EXPECT_GT(Contrast(GetSysColor(COLOR_BTNSHADOW), GetSysColor(COLOR_WINDOW)), 4.2) << dark;
        EXPECT_GT(Contrast(GetSysColor(COLOR_BTNSHADOW), GetSysColor(COLOR_BTNTEXT)), 2) << "stands back, " << dark;
    }
    QGuiApplication::setPalette(before);
    EXPECT_EQ(GetSysColorBrush(COLOR_WINDOW), window);
    EXPECT_TRUE(DeleteObject(window));
    EXPECT_TRUE(drawing::BrushColor(window).isValid());
    EXPECT_FALSE(drawing::BrushColor(static_cast<HBRUSH>(GetStockObject(NULL_BRUSH))).isValid());
    EXPECT_FALSE(drawing::BrushColor(nullptr).isValid());
}

}  // namespace
