// Dialogs of any origin: how they are made, what their procedure keeps, and the loop of the modal ones.
#pragma once

#include <windows.h>

#include <QSize>
#include <memory>

#include "Templates.h"

namespace desktop {

// Room for DWLP_MSGRESULT and DWLP_DLGPROC.
inline constexpr int kDialogExtraBytes = 2 * static_cast<int>(sizeof(LONG_PTR));

// A dialog without controls, hidden. The client area has that size; `place` is its corner on the screen or in the parent's
// client area. The font goes with the dialog. 0 if it could not be made.
HWND MakeEmptyDialog(DWORD style, const char* title, POINT place, QSize client, HWND parent, HFONT font, DLGPROC procedure);
// A control of the dialog, in pixels, with the dialog's font.
HWND AddControl(HWND dialog, const char* className, const char* text, int id, DWORD style, const RECT& place);
// Gives a control the focus, and selects the text of one that has such a thing, so that typing replaces it. Null does
// nothing.
void FocusControl(HWND control);
// Sends WM_INITDIALOG, sets the focus as its result says, and shows a dialog with WS_VISIBLE in `style`.
void FinishDialog(HWND dialog, LPARAM parameter, DWORD style);

// Tells screen readers what the fields of the dialog are called (DialogAccess.cpp).
void NameFields(HWND dialog);

// While it lives, the owner's top-level window gets no input, unless it was disabled before; then nothing changes.
class OwnerDisabled {
public:
    explicit OwnerDisabled(HWND owner);
    ~OwnerDisabled() { Restore(); }
    OwnerDisabled(const OwnerDisabled&) = delete;
    OwnerDisabled& operator=(const OwnerDisabled&) = delete;
    // May be called before the end.
    void Restore();

private:
    HWND disabled = nullptr;
};

// Shows the dialog, serves messages until EndDialog, lets the owner have input again and destroys the dialog. The owner is
// disabled before the dialog is made. `idleOwner`, if not null, hears WM_ENTERIDLE whenever nothing is left to do.
INT_PTR RunModal(HWND dialog, std::unique_ptr<OwnerDisabled> ownerDisabled, HWND idleOwner);

}  // namespace desktop
