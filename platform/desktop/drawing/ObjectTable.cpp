// The pens, brushes, fonts, regions and device contexts that live, by their handles.
#include "ObjectTable.h"

#include <array>
#include <cassert>
#include <cstring>
#include <deque>
#include <utility>
#include <vector>

#include "FontFace.h"
#include "GdiObjects.h"

namespace drawing {
namespace {

constexpr std::size_t kMostObjects = 10'000;
constexpr unsigned kLastGeneration = 0x7FFF;
// Places are taken up again only while that many are free, so that a stale handle stays stale for long.
constexpr std::size_t kFreeReserve = 64;
constexpr int kSystemColors = 31;
constexpr int kStockObjects = 14;

// A handle holds the number of the object's place, from 1, in the low word and, in the high word, how often the place has
// been given out. So it never looks like a system colour's index plus one.
class ObjectTable {
public:
    HGDIOBJ Add(std::unique_ptr<Object> object) {
        if (living >= kMostObjects && !object->permanent) {
            return nullptr;
        }
        std::size_t place = places.size();
        if (freePlaces.size() >= kFreeReserve) {
            place = freePlaces.front();
            freePlaces.pop_front();
        } else {
            places.emplace_back();
        }
        Place& taken = places[place];
        taken.generation = taken.generation == kLastGeneration ? 1 : taken.generation + 1;
        taken.object = std::move(object);
        ++living;
        return HandleOf(place, taken.generation);
    }

    Object* Find(HGDIOBJ handle) const {
        const std::size_t place = PlaceOf(handle);
        if (place >= places.size() || HandleOf(place, places[place].generation) != handle) {
            return nullptr;
        }
        return places[place].object.get();
    }

    void Remove(HGDIOBJ handle) {
        if (Find(handle) != nullptr) {
            // A device context lets go of other objects while it is destroyed.
            const std::unique_ptr<Object> gone = std::move(places[PlaceOf(handle)].object);
            freePlaces.push_back(PlaceOf(handle));
            --living;
        }
    }

private:
    struct Place {
        std::unique_ptr<Object> object;  // null: free
        unsigned generation = 0;
    };

    static HGDIOBJ HandleOf(std::size_t place, unsigned generation) {
        return reinterpret_cast<HGDIOBJ>((static_cast<UINT_PTR>(generation) << 16) | (place + 1));
    }
    // 0 wraps around and is beyond every place.
    static std::size_t PlaceOf(HGDIOBJ handle) { return (reinterpret_cast<UINT_PTR>(handle) & 0xFFFF) - 1; }

    std::vector<Place> places;
    std::deque<std::size_t> freePlaces;  // longest free first
    std::size_t living = 0;
};

// Never destroyed: what holds a font must not outlive the application, and static objects would.
ObjectTable& Table() {
    static auto* const table = new ObjectTable;
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
