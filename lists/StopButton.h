// The Stop button of the pane.
#pragma once

#include "WindowBase.h"

// Asks the pane by UC_STOP, for a click and for Space; the pane takes no notice of the button's own BN_CLICKED.
class StopButton : public WindowBase {
public:
    void OnKeyDown(UINT virtualKey, BOOL isDown, int repeat, UINT flags) override;
    void OnLButtonUp(int x, int y, WPARAM keys) override;
    void OnKillFocus(HWND otherWindow) override;
};
