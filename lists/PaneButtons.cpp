#include "PaneButtons.h"

void PaneButton::OnKeyDown(UINT virtualKey, BOOL isDown, int /*repeat*/, UINT /*flags*/) {
    if (virtualKey == VK_SPACE && isDown) {
        PostPaneRequest(hwnd, request, 0);
    }
}

// Where the mouse button went down does not matter.
void PaneButton::OnLButtonUp(int x, int y, WPARAM /*keys*/) {
    RECT client = {};
    if (GetClientRect(hwnd, &client) && PtInRect(&client, POINT{x, y})) {
        PostPaneRequest(hwnd, request, 0);
    }
}

void PaneButton::OnKillFocus(HWND /*otherWindow*/) {
    PostPaneRequest(hwnd, UC_FOCUS_LOST, reinterpret_cast<LPARAM>(hwnd));
}
