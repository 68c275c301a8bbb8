#include "ObjectTable.h"

#include <array>
#include <cassert>
#include <cstring>

#include "FontFace.h"
#include "GdiObjects.h"
#include "HandleTable.h"

namespace drawing {
namespace {

constexpr int kSystemColors = 31;
constexpr int kStockObjects = 14;

// Never destroyed: what holds a font must not outlive the application, and static objects would.
HandleTable<Object, HGDIOBJ>& Table() {
    static auto* const table = new HandleTable<Object, HGDIOBJ>;
    return *table;
}

HGDIOBJ AddPermanent(std::unique_ptr<Object> object) {
    object->permanent = true;
    return AddObject(std::move(object));
}

std::unique_ptr<Object> SystemFont() {
    LOGFONTA description{};
    description.lfHeight = 16;
    description.lfWidth = 7;
    description.lfWeight = FW_BOLD;
    description.lfPitchAndFamily = VARIABLE_PITCH | FF_SWISS;
    std::strcpy(description.lfFaceName, "System");
    return std::make_unique<FontFace>(description);
}

std::unique_ptr<Object> MakeStockObject(int object) {
    switch (object) {
        case WHITE_BRUSH: return std::make_unique<Brush>(std::optional<QRgb>(qRgb(255, 255, 255)));
        case NULL_BRUSH: return std::make_unique<Brush>(std::optional<QRgb>());
        case BLACK_PEN: return std::make_unique<Pen>(qRgb(0, 0, 0));
        case NULL_PEN: return std::make_unique<Pen>(std::nullopt);
        case SYSTEM_FONT: return SystemFont();
        default: return nullptr;
    }
}

}  // namespace

HGDIOBJ AddObject(std::unique_ptr<Object> object) {
    return Table().Add(std::move(object));
}

Object* FindObject(HGDIOBJ handle) {
    return Table().Find(handle);
}

void RemoveObject(HGDIOBJ handle) {
    Table().Remove(handle);
}

int Complexity(const QRegion& area) {
    return area.isEmpty() ? NULLREGION : area.rectCount() == 1 ? SIMPLEREGION : COMPLEXREGION;
}

std::optional<QRgb> Brush::Color() const {
    return systemColor ? ToRgb(GetSysColor(*systemColor)) : fixedColor;
}

std::optional<QRgb> ColorOf(HBRUSH brush) {
    const auto value = reinterpret_cast<UINT_PTR>(brush);
    if (value >= 1 && value <= kSystemColors) {
        return ToRgb(GetSysColor(static_cast<int>(value) - 1));
    }
    const Brush* object = Find<Brush>(brush);
    return object != nullptr ? object->Color() : std::nullopt;
}

QColor BrushColor(HBRUSH brush) {
    const std::optional<QRgb> color = ColorOf(brush);
    return color ? QColor::fromRgb(*color) : QColor();
}

QRgb ToRgb(COLORREF color) {
    return qRgb(static_cast<int>(color & 0xFF), static_cast<int>(color >> 8 & 0xFF), static_cast<int>(color >> 16 & 0xFF));
}

COLORREF ToColorRef(QRgb color) {
    return RGB(static_cast<unsigned>(qRed(color)), static_cast<unsigned>(qGreen(color)),
               static_cast<unsigned>(qBlue(color)));
}

QColor ToQColor(COLORREF color) {
    return QColor::fromRgb(ToRgb(color));
}

}  // namespace drawing

using namespace drawing;

HPEN CreatePen(int style, [[maybe_unused]] int width, COLORREF color) {
    assert(style == PS_SOLID && width >= 0 && width <= 1);
    return style == PS_SOLID ? static_cast<HPEN>(AddObject(std::make_unique<Pen>(ToRgb(color)))) : nullptr;
}

HBRUSH CreateSolidBrush(COLORREF color) {
    return static_cast<HBRUSH>(AddObject(std::make_unique<Brush>(std::optional<QRgb>(ToRgb(color)))));
}

HBRUSH GetSysColorBrush(int index) {
    static std::array<HBRUSH, kSystemColors> brushes{};
    if (index < 0 || index >= kSystemColors) {
        return nullptr;
    }
    HBRUSH& brush = brushes[static_cast<std::size_t>(index)];
    if (brush == nullptr) {
        brush = static_cast<HBRUSH>(AddPermanent(std::make_unique<Brush>(index)));
    }
    return brush;
}

HGDIOBJ GetStockObject(int object) {
    static std::array<HGDIOBJ, kStockObjects> handles{};
    if (object < 0 || object >= kStockObjects) {
        return nullptr;
    }
    HGDIOBJ& handle = handles[static_cast<std::size_t>(object)];
    if (handle == nullptr) {
        if (std::unique_ptr<Object> made = MakeStockObject(object)) {
            handle = AddPermanent(std::move(made));
        }
    }
    assert(handle != nullptr);
    return handle;
}

BOOL DeleteObject(HGDIOBJ handle) {
    const Object* object = FindObject(handle);
    if (object == nullptr || object->kind == Kind::kDeviceContext || object->selections > 0) {
        return FALSE;
    }
    if (!object->permanent) {
        RemoveObject(handle);
    }
    return TRUE;
}
