// Text: where it stands, how wide it is, and what its cell covers.
#include <gtest/gtest.h>

#include <QtMath>

#include <climits>
#include <cstring>

#include "CodePage.h"
#include "Surface.h"

namespace {

constexpr COLORREF kCell = RGB(255, 255, 0);
constexpr UINT kRow = DT_SINGLELINE | DT_VCENTER | DT_EXPANDTABS;

class Text : public testing::Test {
protected:
    Text() {
        LOGFONTA description{};
        description.lfHeight = -16;
        std::strcpy(description.lfFaceName, "MS Sans Serif");
        font = CreateFontIndirectA(&description);
        SelectObject(measure, font);
        GetTextMetricsA(measure, &metrics);
    }
    ~Text() override {
        SelectObject(measure, GetStockObject(SYSTEM_FONT));
        DeleteObject(font);
        kernel::SetCodePage(kernel::kWesternPage);
    }

    int Width(const char* text) const {
        SIZE size{-1, -1};
        EXPECT_TRUE(GetTextExtentPoint32A(measure, text, static_cast<int>(std::strlen(text)), &size));
        return size.cx;
    }

    struct Drawn {
        int result;
        QRect touched;   // all that was drawn
        QImage picture;  // for comparing
    };
    Drawn Draw(const char* text, UINT format, RECT rect = {20, 10, 280, 60}, int length = -1) const {
        Surface surface(300, 80);
        SelectObject(surface.dc, font);
        SetBkColor(surface.dc, kCell);
        const int result = DrawTextA(surface.dc, text, length, &rect, format);
        const QRect touched = surface.Touched();
        EXPECT_TRUE(touched.isEmpty() || surface.changed.boundingRect().contains(touched));
        return {result, touched, surface.image};
    }

    HFONT font;
    Measure measure;
    TEXTMETRICA metrics{};
};

TEST_F(Text, FillsItsCellExactly) {
    const int height = metrics.tmHeight;
    // The letters of this text leave no pixel outside their cells.
    for (const char* text : {"H", "ZZZ 999", "ZZZ 999   ", "   H"}) {
        EXPECT_EQ(Draw(text, 0).touched, QRect(20, 10, Width(text), height)) << text;
        EXPECT_EQ(Draw(text, DT_RIGHT).touched, QRect(280 - Width(text), 10, Width(text), height)) << text;
    }
    EXPECT_GT(Width("ZZZ 999   "), Width("ZZZ 999"));
    EXPECT_EQ(Width("ab"), Width("a") + Width("b"));
    EXPECT_EQ(Width(""), 0);
    SIZE size{};
    EXPECT_TRUE(GetTextExtentPoint32A(measure, "Hxyz", 1, &size));
    EXPECT_EQ(size.cx, Width("H"));
    EXPECT_EQ(size.cy, height);
    EXPECT_EQ(Draw("Hxyz", 0, {20, 10, 280, 60}, 1).touched.width(), Width("H"));
}

TEST_F(Text, StandsWhereTheFormatSays) {
    const int height = metrics.tmHeight;
    const int half = height / 2;
    for (const int space : {50, 51, 8, 1}) {
        const RECT rect = {20, 10, 280, 10 + space};
        const Drawn drawn = Draw("H", kRow, rect);
        const int top = 10 + space / 2 - half;
        EXPECT_EQ(drawn.touched, QRect(20, top, Width("H"), height) & QRect(20, 10, 260, space)) << space;
        EXPECT_EQ(drawn.result, top + height - 10) << space;
    }
    EXPECT_EQ(Draw("H", 0).result, height);
    EXPECT_EQ(Draw("H", DT_VCENTER).touched.top(), 10) << "only a single line is centred";
    EXPECT_EQ(Draw("", kRow).result, height);
    EXPECT_EQ(Draw("H", kRow, {20, 10, 280, 60}, 0).result, 0);
    EXPECT_TRUE(Draw("", kRow).touched.isEmpty());
}

TEST_F(Text, StaysInItsRectangle) {
    const RECT narrow = {20, 10, 27, 17};
    EXPECT_EQ(Draw("HHH", kRow, narrow).touched, QRect(20, 10, 7, 7));
    EXPECT_EQ(Draw("HHH", kRow | DT_RIGHT, narrow).touched, QRect(20, 10, 7, 7));
    EXPECT_TRUE(Draw("H", kRow, {50, 10, 50, 40}).touched.isEmpty());
    EXPECT_TRUE(Draw("H", kRow, {50, 50, 10, 10}).touched.isEmpty());
    for (const RECT& rect :
         {RECT{INT_MIN, 10, INT_MIN + 9, 60}, RECT{20, INT_MAX - 50, 280, INT_MAX}, RECT{INT_MAX - 5, 0, INT_MAX, 60},
          RECT{INT_MIN, INT_MIN, INT_MIN, INT_MIN}, RECT{INT_MAX, INT_MAX, INT_MIN, INT_MIN}}) {
        EXPECT_TRUE(Draw("H", kRow, rect).touched.isEmpty());
        EXPECT_TRUE(Draw("H", kRow | DT_RIGHT, rect).touched.isEmpty());
    }
    // The middle of the highest rectangle is 1 above 0.
    EXPECT_EQ(Draw("H", kRow, {20, INT_MIN, 280, INT_MAX}).touched.bottom(), metrics.tmHeight - metrics.tmHeight / 2 - 2);
    const Drawn wide = Draw("H", kRow, {20, 10, INT_MAX, 60});
    EXPECT_EQ(wide.touched.left(), 20);
}

TEST_F(Text, MarksTheCharacterBehindAnAmpersand) {
    EXPECT_EQ(Draw("R&&B", kRow).touched.width(), Width("R") + Width("&") + Width("B"));
    EXPECT_EQ(Draw("R&", kRow).touched.width(), Width("R&"));
    EXPECT_EQ(Draw("R&&", kRow).touched.width(), Width("R&"));
    const Drawn plain = Draw("RHB", kRow);
    const Drawn marked = Draw("R&HB", kRow);
    EXPECT_EQ(marked.touched, plain.touched);
    QRect differing;
    for (int y = 0; y < 80; ++y) {
        for (int x = 0; x < 300; ++x) {
            if (plain.picture.pixel(x, y) != marked.picture.pixel(x, y)) {
                differing |= QRect(x, y, 1, 1);
            }
        }
    }
    EXPECT_EQ(differing.left(), 20 + Width("R"));
    EXPECT_EQ(differing.width(), Width("H"));
    EXPECT_GE(differing.top(), marked.touched.top() + metrics.tmAscent);
}

TEST_F(Text, TabsLeadToMultiplesOfEightColumns) {
    const int stop = 8 * metrics.tmAveCharWidth;
    ASSERT_LT(Width("H"), stop);
    const Drawn drawn = Draw("H\tH", kRow);
    EXPECT_EQ(drawn.touched.width(), stop + Width("H"));
    EXPECT_EQ(drawn.picture.pixel(20 + stop - 1, drawn.touched.center().y()), Surface::kUntouched) << "the gap isn't filled";
    EXPECT_EQ(Draw("H\t\tH", kRow).touched.width(), 2 * stop + Width("H"));
    EXPECT_EQ(Draw("H\tH", kRow | DT_RIGHT).touched, drawn.touched.translated(260 - stop - Width("H"), 0));
    EXPECT_LT(Draw("H\tH", DT_SINGLELINE).touched.width(), stop);
}

// In code page 932 a character has one or two bytes; the second one of these three is also a backslash, a bar or a letter.
TEST_F(Text, IsInTheCodePage) {
    kernel::SetCodePage(kernel::kJapanesePage);
    const int wide = Width("\x83\x5C");
    EXPECT_GT(wide, Width("\xBF")) << "half-width katakana are narrower";
    EXPECT_EQ(Width("\x83\x5C\x83\x7C\x83\x41"), wide + Width("\x83\x7C") + Width("\x83\x41"));
    EXPECT_EQ(Draw("\x83\x5C\x83\x7C", kRow).touched.width(), wide + Width("\x83\x7C"));
    EXPECT_NE(Draw("\x83\x5C", kRow).picture, Draw("\x83\x7C", kRow).picture)
        << "real characters, no signs for missing ones";
    kernel::SetCodePage(kernel::kWesternPage);
    EXPECT_EQ(Draw("\xC4", kRow).touched.width(), Width("\xC4"));
    EXPECT_NE(Draw("\xC4", kRow).picture, Draw("\xD6", kRow).picture);
    // Control characters and what the page lacks are blanks.
    EXPECT_EQ(Draw("\x01\x81", kRow).picture, Draw("  ", kRow).picture);
}

// The cells keep their places, and text its size, on a scaled screen.
TEST_F(Text, ScalesWithTheScreen) {
    for (const qreal scale : {1.25, 1.5, 2.0}) {
        Surface surface(300, 80, scale);
        SelectObject(surface.dc, font);
        SetBkColor(surface.dc, kCell);
        RECT rect = {20, 12, 280, 60};
        DrawTextA(surface.dc, "HEH", -1, &rect, 0);
        const auto scaled = [scale](int value) { return qFloor(value * scale + 0.5); };
        const QRect cell(QPoint(scaled(20), scaled(12)),
                         QPoint(scaled(20 + Width("HEH")) - 1, scaled(12 + metrics.tmHeight) - 1));
        EXPECT_EQ(surface.Touched(), cell) << scale;
        QRect ink;
        for (int y = cell.top(); y <= cell.bottom(); ++y) {
            for (int x = cell.left(); x <= cell.right(); ++x) {
                if (qGray(surface.image.pixel(x, y)) < 100) {
                    ink |= QRect(x, y, 1, 1);
                }
            }
        }
        EXPECT_GT(ink.width(), 0.7 * cell.width()) << scale;
        EXPECT_GT(ink.height(), 0.5 * cell.height()) << scale;
    }
}

}  // namespace
