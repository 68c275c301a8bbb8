#include "PaneRequests.h"

void PostPaneRequest(HWND control, PaneRequest code, LPARAM argument) {
    PostMessageA(GetParent(control), WM_USER, code, argument);
}

void PostIfReleasedInside(HWND button, int x, int y, PaneRequest code) {
    RECT client = {};
    if (GetClientRect(button, &client) && PtInRect(&client, POINT{x, y})) {
        PostPaneRequest(button, code, 0);
    }
}
