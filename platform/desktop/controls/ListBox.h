// The class "LISTBOX": rows of different heights that the parent draws, one of them selected, no scroll bar.
//
// A control's own procedure sends messages all the time, and whoever gets them may destroy the list. So nothing here keeps
// the list over a call: it is looked up by its handle again.
#pragma once

#include <windows.h>

#include "ListRows.h"
#include "ScreenWindow.h"

namespace desktop {

struct ListBox : ControlState {
    void TellFocus(HWND handle) const override;

    ListRows rows;
    int selected = -1;       // -1 for none
    int focusRow = 0;        // the one that keys go on from; need not exist
    int top = 0;             // the first one in sight
    bool hasFocus = false;   // and has its row drawn so
    bool pressed = false;    // by the mouse, whose release has to be told
    bool dragging = false;   // the mouse is captured and selects
    bool scrolling = false;  // the timer runs, since the mouse was dragged out
    int dragY = 0;           // where the mouse was last
    int textHeight = 0;      // of a row that nobody gives a height; 0 while it is not known
};

// Null for a window that is gone.
ListBox* FindList(HWND handle);
int ClientHeight(HWND handle);

// From the upper edge of the client area.
int RowTop(const ListBox& list, int index);
RECT RowRect(HWND handle, int index);

// --- Selection and scrolling (ListBox.cpp)
// The rows below the last one in sight move up as far as there are any.
void SetTop(HWND handle, int index);
void ScrollIntoView(HWND handle, int index);
// Draws both rows at once where they are in sight. Nothing scrolls.
void ChangeSelection(HWND handle, int index);

// --- Drawing (ListBoxDrawing.cpp)
// At once if the row is in sight; while redrawing is off the row is only noted. `focused` goes with ODA_FOCUS.
void DrawRow(HWND handle, int index, UINT action, bool focused = false);
// Draws the row with the focus with or without it, if the list has it.
void DrawFocus(HWND handle, bool focused);
void InvalidateFrom(HWND handle, int index);
LRESULT PaintList(HWND handle);
LRESULT EraseList(HWND handle, HDC dc);
// The height of a row of text in the list's font.
int TextHeight(HWND handle);

// --- Keys and mouse (ListBoxInput.cpp)
void ListKey(HWND handle, int virtualKey);
void ListCharacter(HWND handle, char letter);
// Outside the client area, where a window may have a frame that counts as client, a press takes the focus alone.
void ListPress(HWND handle, int x, int y);
void ListRelease(HWND handle);
void ListDrag(HWND handle, int y);
void EndDrag(HWND handle);

}  // namespace desktop
