// The chooser for fonts: Qt's own.
#include <commdlg.h>

#include <QFontDatabase>
#include <QFontDialog>
#include <QFontInfo>
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "Choosers.h"
#include "GdiObjects.h"

namespace desktop {

namespace {

// A font of the family that stood in for the face at first keeps the face, which Windows may have.
void KeepFace(LOGFONTA& chosen, const LOGFONTA& before) {
    std::memcpy(chosen.lfFaceName, before.lfFaceName, sizeof chosen.lfFaceName);
    chosen.lfCharSet = before.lfCharSet;
    chosen.lfPitchAndFamily = before.lfPitchAndFamily;
}

// The dialog looks for the style by its name and takes any other where the family has none of that name: a plain style may
// be called Regular, Normal or Book.
QFont WithStyleName(QFont font) {
    const QString family = QFontInfo(font).family();
    const QStringList styles = QFontDatabase::styles(family);
    const auto distance = [&](const QString& style) {
        constexpr int kSlant = 1000;
        constexpr int kAnySize = 12;
        const QFont candidate = QFontDatabase::font(family, style, kAnySize);
        const int slant = candidate.italic() != font.italic() ? kSlant : 0;
        // Of two alike the one with the longer name is condensed.
        return std::pair(slant + std::abs(candidate.weight() - font.weight()), style.size());
    };
    const auto nearest = std::min_element(styles.begin(), styles.end(),
                                          [&](const QString& a, const QString& b) { return distance(a) < distance(b); });
    if (nearest != styles.end()) {
        font.setStyleName(*nearest);
    }
    return font;
}

}  // namespace

}  // namespace desktop

BOOL ChooseFontA(CHOOSEFONTA* chooser) {
    if (chooser == nullptr || chooser->lStructSize != sizeof *chooser || chooser->lpLogFont == nullptr) {
        return FALSE;
    }
    QFontDialog dialog;
    dialog.setOption(QFontDialog::DontUseNativeDialog);
    const bool hasFirst = (chooser->Flags & CF_INITTOLOGFONTSTRUCT) != 0;
    const LOGFONTA before = *chooser->lpLogFont;
    const QFont first = hasFirst ? drawing::MakeFont(before) : QFont();
    dialog.setCurrentFont(desktop::WithStyleName(first));
    const QString firstFamily = dialog.currentFont().family();
    const QString firstStyle = dialog.currentFont().styleName();
    if (!desktop::ShowAndWait(dialog, chooser->hwndOwner)) {
        return FALSE;
    }
    const QFont font = dialog.selectedFont();
    LOGFONTA chosen = drawing::DescribeFont(font);
    const bool isSameFamily = hasFirst && font.family() == firstFamily;
    // A family that has no bold style is drawn bold all the same.
    if (isSameFamily && font.styleName() == firstStyle) {
        chosen.lfWeight = before.lfWeight;
        chosen.lfItalic = before.lfItalic;
    }
    // An empty face is not kept: the program ignores a font without one.
    if (isSameFamily && before.lfFaceName[0] != '\0') {
        desktop::KeepFace(chosen, before);
    }
    *chooser->lpLogFont = chosen;
    return TRUE;
}
