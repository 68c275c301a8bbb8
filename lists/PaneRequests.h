// What the controls of the pane ask of it: WM_USER with one of these codes in wParam and its argument in lParam.
#pragma once

#include <windows.h>

enum PaneRequest : WPARAM {
    UC_FOCUS_LOST = 8,  // the argument is the control that has lost the focus
    UC_SYNC = 108,      // the Sync button was worked
    UC_STOP = 116,      // the Stop button was worked
};

// Posts a request from a control to its pane, which acts on it once the control is done with what it is doing.
void PostPaneRequest(HWND control, PaneRequest code, LPARAM argument);

// Posts a button's request if a mouse button was released inside the client area. Where it went down does not matter.
void PostIfReleasedInside(HWND button, int x, int y, PaneRequest code);
