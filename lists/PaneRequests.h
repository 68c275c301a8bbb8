// What the controls of the pane ask of it, and it of them: WM_USER with one of these codes in wParam and its argument in
// lParam.
#pragma once

#include <windows.h>

enum PaneRequest : WPARAM {
    UC_FOCUS_LOST = 8,       // the argument is the control that has lost the focus
    UC_END_EDIT = 103,       // to a list: close the editor, if one is open
    UC_GROUP_CHANGED = 104,  // the argument is the group that the track list follows now; sent, not posted
    UC_MESSAGE_LINE = 107,   // the argument is the string for the message line, 0 for none
    UC_SYNC = 108,           // the Sync button was worked
    UC_STOP = 116,           // the Stop button was worked
};

// Posts a request from a control to its pane, which acts on it once the control is done with what it is doing.
void PostPaneRequest(HWND control, PaneRequest code, LPARAM argument);
