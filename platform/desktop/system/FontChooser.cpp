// The chooser for fonts: Qt's own.
#include <commdlg.h>

#include <QFontDialog>
#include <cstring>

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
    dialog.setCurrentFont(first);
    const QString firstFamily = dialog.currentFont().family();
    if (!desktop::ShowAndWait(dialog, chooser->hwndOwner)) {
        return FALSE;
    }
    const QFont font = dialog.selectedFont();
    LOGFONTA chosen = drawing::DescribeFont(font);
    if (hasFirst && font.family() == firstFamily) {
        desktop::KeepFace(chosen, before);
    }
    *chooser->lpLogFont = chosen;
    return TRUE;
}
