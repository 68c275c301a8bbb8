// What screen readers are told of the fields of a dialog, which have no names of their own: the frame around a field and the
// text to the left of it.
#include <QWidget>

#include "Desktop.h"
#include "Dialogs.h"
#include "Text.h"

namespace desktop {

namespace {

constexpr DWORD kTypeMask = 0x000F;

bool IsFrameAround(const ScreenWindow& control, const RECT& field) {
    const RECT& place = control.place;
    return IsClass(control.handle, "BUTTON") && (StyleOf(control.handle) & kTypeMask) == BS_GROUPBOX &&
           place.left <= field.left && place.top <= field.top && field.right <= place.right && field.bottom <= place.bottom;
}

bool IsTextInFront(const ScreenWindow& control, const RECT& field) {
    const RECT& place = control.place;
    return IsClass(control.handle, "STATIC") && place.right <= field.left && place.top < field.bottom &&
           field.top < place.bottom;
}

QString NameOf(const ScreenWindow& dialog, const ScreenWindow& field) {
    QString frame;
    const ScreenWindow* nearest = nullptr;
    for (const ScreenWindow* control : dialog.children) {
        if (IsFrameAround(*control, field.place)) {
            frame = ToQString(control->text);
        } else if (IsTextInFront(*control, field.place) &&
                   (nearest == nullptr || control->place.right > nearest->place.right)) {
            nearest = control;
        }
    }
    return (frame + ' ' + (nearest != nullptr ? ToQString(nearest->text) : QString())).simplified();
}

}  // namespace

void NameFields(HWND dialog) {
    const ScreenWindow& window = *Desktop::Get().Find(dialog);
    for (const ScreenWindow* control : window.children) {
        if (IsClass(control->handle, "EDIT")) {
            control->widget->setAccessibleName(NameOf(window, *control));
        }
    }
}

}  // namespace desktop
