// The pens, brushes, fonts, regions and device contexts that live, by their handles.
#pragma once

#include <windows.h>

#include <QColor>
#include <QRegion>

#include <memory>
#include <optional>

namespace drawing {

enum class Kind { kPen, kBrush, kFont, kRegion, kDeviceContext };

class Object {
public:
    explicit Object(Kind kind) : kind(kind) {}
    virtual ~Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    const Kind kind;
    int selections = 0;      // how many device contexts it is selected into
    bool permanent = false;  // a stock object or the brush of a system colour: is never deleted
};

class Pen : public Object {
public:
    static constexpr Kind kKind = Kind::kPen;
    explicit Pen(std::optional<QRgb> color) : Object(kKind), color(color) {}
    const std::optional<QRgb> color;  // none: draws nothing
};

class Brush : public Object {
public:
    static constexpr Kind kKind = Kind::kBrush;
    explicit Brush(std::optional<QRgb> color) : Object(kKind), fixedColor(color) {}
    // Follows the desktop's palette.
    explicit Brush(int systemColor) : Object(kKind), systemColor(systemColor) {}

    // None: fills nothing.
    std::optional<QRgb> Color() const;

private:
    const std::optional<QRgb> fixedColor;
    const std::optional<int> systemColor;
};

class Region : public Object {
public:
    static constexpr Kind kKind = Kind::kRegion;
    explicit Region(QRegion area) : Object(kKind), area(std::move(area)) {}
    QRegion area;
};
// NULLREGION, SIMPLEREGION or COMPLEXREGION.
int Complexity(const QRegion& area);

// 0, and the object is gone, if there are too many.
HGDIOBJ AddObject(std::unique_ptr<Object> object);
// Null for anything that is not the handle of a living object.
Object* FindObject(HGDIOBJ handle);
void RemoveObject(HGDIOBJ handle);

// The object if it is of that kind, else null.
template <class T>
T* Find(HGDIOBJ handle) {
    Object* object = FindObject(handle);
    return object != nullptr && object->kind == T::kKind ? static_cast<T*>(object) : nullptr;
}

// The colour of a brush; also for a system colour's index plus one, which stands for its brush in FillRect and window
// classes.
std::optional<QRgb> ColorOf(HBRUSH brush);

// Opaque.
QRgb ToRgb(COLORREF color);
COLORREF ToColorRef(QRgb color);

}  // namespace drawing
