// The Sync and the Stop button of the pane.
#pragma once

#include "PaneRequests.h"
#include "WindowBase.h"

// Asks the pane by its request, for a click and for Space; the pane takes no notice of the button's own BN_CLICKED.
class PaneButton : public WindowBase {
public:
    void OnKeyDown(UINT virtualKey, BOOL isDown, int repeat, UINT flags) override;
    void OnLButtonUp(int x, int y, WPARAM keys) override;
    void OnKillFocus(HWND otherWindow) override;

protected:
    explicit PaneButton(PaneRequest request) : request(request) {}

private:
    const PaneRequest request;
};

class SyncButton : public PaneButton {
public:
    SyncButton() : PaneButton(UC_SYNC) {}
};

class StopButton : public PaneButton {
public:
    StopButton() : PaneButton(UC_STOP) {}
};
