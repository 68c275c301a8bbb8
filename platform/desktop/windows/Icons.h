// Icons from the program's resources.
#pragma once

#include <windows.h>

#include <QIcon>
#include <QSize>
#include <QStyle>

namespace desktop {

inline constexpr QSize kLargeIcon{32, 32};

// All images of the icon; an empty one for a handle that is none.
QIcon IconOf(HICON icon);
// One of the desktop's own, for message boxes.
HICON StandardIcon(QStyle::StandardPixmap which);

}  // namespace desktop
