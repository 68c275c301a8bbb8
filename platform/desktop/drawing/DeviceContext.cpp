#include "DeviceContext.h"

#include <utility>

#include "FontFace.h"

namespace drawing {

namespace {

// Returns what was selected before.
HGDIOBJ Exchange(HGDIOBJ& selected, HGDIOBJ object) {
    if (Object* before = FindObject(selected)) {
        --before->selections;
    }
    if (Object* after = FindObject(object)) {
        ++after->selections;
    }
    return std::exchange(selected, object);
}

}  // namespace

DeviceContext::DeviceContext(const DrawingTarget& target)
    : Object(kKind), canvas(target), pen(nullptr), brush(nullptr), font(nullptr) {
    Exchange(pen, GetStockObject(BLACK_PEN));
    Exchange(brush, GetStockObject(WHITE_BRUSH));
    Exchange(font, GetStockObject(SYSTEM_FONT));
}

DeviceContext::~DeviceContext() {
    Exchange(pen, nullptr);
    Exchange(brush, nullptr);
    Exchange(font, nullptr);
}

HGDIOBJ DeviceContext::Select(HGDIOBJ handle) {
    const Object* object = FindObject(handle);
    if (object == nullptr) {
        return nullptr;
    }
    switch (object->kind) {
        case Kind::kPen: return Exchange(pen, handle);
        case Kind::kBrush: return Exchange(brush, handle);
        case Kind::kFont: return Exchange(font, handle);
        case Kind::kRegion: {
            const QRegion& area = static_cast<const Region*>(object)->area;
            canvas.ClipTo(area);
            return reinterpret_cast<HGDIOBJ>(static_cast<INT_PTR>(Complexity(area)));
        }
        case Kind::kDeviceContext: break;
    }
    return nullptr;
}

std::optional<QRgb> DeviceContext::PenColor() const {
    return Find<Pen>(pen)->color;
}

std::optional<QRgb> DeviceContext::BrushColor() const {
    return Find<Brush>(brush)->Color();
}

FontFace& DeviceContext::Font() const {
    return *Find<FontFace>(font);
}

HDC OpenDeviceContext(const DrawingTarget& target) {
    return static_cast<HDC>(AddObject(std::make_unique<DeviceContext>(target)));
}

void CloseDeviceContext(HDC dc) {
    if (ContextOf(dc) != nullptr) {
        RemoveObject(dc);
    }
}

void DropTarget(HDC dc) {
    if (DeviceContext* context = ContextOf(dc)) {
        context->canvas = Canvas({});
    }
}

}  // namespace drawing

using namespace drawing;

HGDIOBJ SelectObject(HDC dc, HGDIOBJ object) {
    DeviceContext* context = ContextOf(dc);
    return context != nullptr ? context->Select(object) : nullptr;
}

COLORREF SetTextColor(HDC dc, COLORREF color) {
    DeviceContext* context = ContextOf(dc);
    return context != nullptr ? std::exchange(context->textColor, color) : CLR_INVALID;
}

COLORREF SetBkColor(HDC dc, COLORREF color) {
    DeviceContext* context = ContextOf(dc);
    return context != nullptr ? std::exchange(context->backgroundColor, color) : CLR_INVALID;
}
