// What the choosers for files and fonts share: Qt's dialogs, waited for in the one pump.
#pragma once

#include <windows.h>

#include <QDialog>
#include <functional>

namespace desktop {

// Has the loop that waits for a dialog look at it, which it does behind each message.
void WakeLoop();

// Shows the dialog and serves messages until it is closed; its result is Accepted or Rejected. `look` is called behind each
// message, outside of all events. The end of the program, or of the owner, closes the dialog.
bool ShowAndWait(QDialog& dialog, HWND owner, const std::function<void()>& look = {});

}  // namespace desktop
