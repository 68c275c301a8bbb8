// The pens, brushes, fonts and regions of win/drawing.h as Qt knows them, for the windows that Qt draws. On the thread of
// the windows alone, with a QGuiApplication.
#pragma once

#include <windows.h>

#include <QColor>
#include <QFont>
#include <QRegion>

namespace drawing {

// Empty for what is no region.
QRegion RegionOf(HRGN region);
// The caller deletes it. Null if there are too many objects.
HRGN MakeRegion(const QRegion& region);

// Has a pixel size, and a second family for what the first lacks. The system font for what is no font.
QFont FontOf(HFONT font);
// As CreateFontIndirectA would choose it, and back. The face's name is in the code page; one that the code page cannot
// express becomes that of the desktop's own font.
QFont MakeFont(const LOGFONTA& description);
LOGFONTA DescribeFont(const QFont& font);

// Also for a system colour's index plus one. Invalid for NULL_BRUSH and for what is no brush.
QColor BrushColor(HBRUSH brush);

QColor ToQColor(COLORREF color);

}  // namespace drawing
