#include "StopButton.h"

#include "PaneRequests.h"

void StopButton::OnKeyDown(UINT virtualKey, BOOL isDown, int /*repeat*/, UINT /*flags*/) {
    if (virtualKey == VK_SPACE && isDown) {
        PostPaneRequest(hwnd, UC_STOP, 0);
    }
}

void StopButton::OnLButtonUp(int x, int y, WPARAM /*keys*/) {
    PostIfReleasedInside(hwnd, x, y, UC_STOP);
}

void StopButton::OnKillFocus(HWND /*otherWindow*/) {
    PostPaneRequest(hwnd, UC_FOCUS_LOST, reinterpret_cast<LPARAM>(hwnd));
}
