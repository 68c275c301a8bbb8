#include "SyncButton.h"

#include "PaneRequests.h"

void SyncButton::OnKeyDown(UINT virtualKey, BOOL isDown, int /*repeat*/, UINT /*flags*/) {
    if (virtualKey == VK_SPACE && isDown) {
        PostPaneRequest(hwnd, UC_SYNC, 0);
    }
}

void SyncButton::OnLButtonUp(int x, int y, WPARAM /*keys*/) {
    PostIfReleasedInside(hwnd, x, y, UC_SYNC);
}

void SyncButton::OnKillFocus(HWND /*otherWindow*/) {
    PostPaneRequest(hwnd, UC_FOCUS_LOST, reinterpret_cast<LPARAM>(hwnd));
}
