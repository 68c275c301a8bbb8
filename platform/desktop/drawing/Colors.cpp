// The system colours, from the desktop's palette.
#include <windows.h>

#include <QGuiApplication>
#include <QPalette>

#include <algorithm>
#include <cassert>
#include <cmath>

#include "ObjectTable.h"

namespace drawing {

namespace {

// What accessibility guidelines ask of text: 4.5 to 1.
constexpr double kReadableContrast = 4.5;

double Linear(double channel) {
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

// How bright a colour looks, 0 to 1.
double Luminance(const QColor& color) {
    return 0.2126 * Linear(color.redF()) + 0.7152 * Linear(color.greenF()) + 0.0722 * Linear(color.blueF());
}

double Contrast(const QColor& one, const QColor& other) {
    const double first = Luminance(one) + 0.05;
    const double second = Luminance(other) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

QColor Mix(const QColor& from, const QColor& to, double share) {
    const auto mixed = [share](double one, double other) { return static_cast<float>(one + share * (other - one)); };
    return QColor::fromRgbF(mixed(from.redF(), to.redF()), mixed(from.greenF(), to.greenF()),
                            mixed(from.blueF(), to.blueF()));
}

// The shadow is also the colour of text that stands back, on the colour of windows. The shadows of palettes, meant for
// edges, are too faint for that, so it is the first shade on the way from the paper to the ink that can be read.
QColor ReadableShadow(const QPalette& palette) {
    const QColor paper = palette.color(QPalette::Base);
    const QColor ink = palette.color(QPalette::Text);
    for (int percent = 40; percent < 100; percent += 2) {
        const QColor shade = Mix(paper, ink, percent / 100.0);
        if (Contrast(shade, paper) >= kReadableContrast) {
            return shade;
        }
    }
    return ink;
}

QColor SystemColor(int index) {
    const QPalette palette = QGuiApplication::palette();
    switch (index) {
        case COLOR_WINDOW: return palette.color(QPalette::Base);
        case COLOR_WINDOWTEXT: return palette.color(QPalette::Text);
        case COLOR_BTNFACE: return palette.color(QPalette::Window);
        case COLOR_BTNSHADOW: return ReadableShadow(palette);
        case COLOR_BTNTEXT: return palette.color(QPalette::WindowText);
        case COLOR_BTNHIGHLIGHT: return palette.color(QPalette::Light);
        default: assert(!"a system colour that the layer lacks"); return {0, 0, 0};
    }
}

}  // namespace

}  // namespace drawing

DWORD GetSysColor(int index) {
    return drawing::ToColorRef(drawing::SystemColor(index).rgb());
}
