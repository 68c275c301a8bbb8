#include "PaneRequests.h"

void PostPaneRequest(HWND control, PaneRequest code, LPARAM argument) {
    PostMessageA(GetParent(control), WM_USER, code, argument);
}
