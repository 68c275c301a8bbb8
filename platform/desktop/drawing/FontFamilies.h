// Which of the desktop's font families stands in for a face of Windows.
#pragma once

#include <windows.h>

#include <QString>
#include <QStringList>

namespace drawing {

// The face's name as text, of at most 32 bytes in the code page.
QString FaceName(const LOGFONTA& description);

// The family that the desktop shows its own texts in.
QString DesktopFamily();

// What the desktop has for a font of Windows: the family that comes nearest to the face, then those that have what it lacks.
// Never empty.
QStringList FamiliesFor(const LOGFONTA& description);

}  // namespace drawing
