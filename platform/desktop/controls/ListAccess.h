// What screen readers are told of list boxes: each row by its text, which one is selected, and which one has the keys.
#pragma once

#include <windows.h>

#include <QString>

namespace desktop {

// From now on screen readers find the rows of list boxes.
void OfferListAccess();

// The selected row as it is read out; empty if there is none, or the window is no list box.
QString SelectedRowText(HWND list);

// Another row is selected, or the list has the keys from now on. Nothing for windows of other classes.
void TellSelectedRow(HWND list);
// The rows are others than before.
void TellRows(HWND list);

}  // namespace desktop
