// Device contexts: where they draw, and what they remember between two calls.
#pragma once

#include <windows.h>

#include <QImage>
#include <QPoint>
#include <QRegion>

#include <optional>

#include "Canvas.h"
#include "ObjectTable.h"

namespace drawing {

class FontFace;

// With the state of a new device context of Windows: black pen, white brush, system font, black text in opaque white cells,
// position 0, 0. What the caller shall find instead is selected into it by SelectObject. Without an image ({}) it measures
// text and draws nothing. Null if there are too many objects.
HDC OpenDeviceContext(const DrawingTarget& target);
// Lets go of what is selected. Nothing happens if it isn't one.
void CloseDeviceContext(HDC dc);
// For a target that goes before the device context: from now on nothing is drawn.
void DropTarget(HDC dc);

// The fields are the state that the calls of win/drawing.h read and set one by one.
class DeviceContext : public Object {
public:
    static constexpr Kind kKind = Kind::kDeviceContext;
    explicit DeviceContext(const DrawingTarget& target);
    ~DeviceContext() override;

    // As SelectObject.
    HGDIOBJ Select(HGDIOBJ object);

    // None: draws nothing.
    std::optional<QRgb> PenColor() const;
    std::optional<QRgb> BrushColor() const;
    FontFace& Font() const;

    Canvas canvas;
    QPoint position{0, 0};
    COLORREF textColor = RGB(0, 0, 0);
    COLORREF backgroundColor = RGB(255, 255, 255);

private:
    HGDIOBJ pen;
    HGDIOBJ brush;
    HGDIOBJ font;
};

// Null for what is no device context.
inline DeviceContext* ContextOf(HDC dc) {
    return Find<DeviceContext>(dc);
}

}  // namespace drawing
