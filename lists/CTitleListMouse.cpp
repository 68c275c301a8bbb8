// What the mouse does on a list: clicks that open the editor, and the step arrows of the frame.
#include <cassert>
#include <cstdlib>

#include "CTitleList.h"

namespace {

constexpr int kUp = 0;
constexpr int kDown = 1;
constexpr int kNoArrow = 8;

constexpr int kFirstInterval = 15;
constexpr int kShorter = 3;  // each interval is a third of the one before
constexpr UINT kTickMs = 1;

constexpr UINT_PTR kRepeatTimer = 0;
constexpr UINT_PTR kTurnTimer = 1;
constexpr UINT kTurnMs = 150;  // without a notch: the turn is over

}  // namespace

bool CTitleList::IsInClient(int x, int y) const {
    RECT client = {};
    GetClientRect(hwnd, &client);
    return PtInRect(&client, POINT{x, y}) != FALSE;
}

POINT CTitleList::ToWindow(int x, int y) const {
    POINT place = {x, y};
    RECT window = {};
    ClientToScreen(hwnd, &place);
    GetWindowRect(hwnd, &window);
    return {place.x - window.left, place.y - window.top};
}

// --- Click to edit

void CTitleList::OnSetFocus(HWND /*otherWindow*/) {
    editArmed = true;
}

bool CTitleList::IsClickOnSelection(int x, int y) const {
    const LRESULT selected = SendMessageA(hwnd, LB_GETCURSEL, 0, 0);
    return IsInClient(x, y) && selected != LB_ERR && selected == curSel;
}

void CTitleList::OnLButtonUp(int x, int y, WPARAM /*keys*/) {
    if (arrowTracking) {
        EndTracking();
        return;
    }
    if (!clickInClient) {
        return;
    }
    if (!editArmed || !IsClickOnSelection(x, y)) {
        clickInClient = false;
        editArmed = true;
    } else if (BeginEdit() == 1) {
        editArmed = false;
    }
}

// --- Step arrows

void CTitleList::OnLButtonDown(BOOL /*isDouble*/, int x, int y, WPARAM /*keys*/) {
    if (IsInClient(x, y)) {
        clickInClient = true;
        return;
    }
    // The release of the press before went elsewhere.
    if (arrowTracking) {
        EndTracking();
    }
    const POINT place = ToWindow(x, y);
    const RECT up = UpArrow();
    const RECT down = DownArrow();
    arrowKind = kNoArrow;
    if (PtInRect(&up, place)) {
        arrowKind = kUp;
        arrowRect = up;
    } else if (PtInRect(&down, place)) {
        arrowKind = kDown;
        arrowRect = down;
    }
    if (arrowKind == kNoArrow) {
        return;
    }
    DrawArrow(true);
    arrowPressed = true;
    arrowTracking = true;
    SetCapture(hwnd);
    StepSelection();
    repeatInterval = kFirstInterval;
    repeatCount = 0;
    if (repeatTimer == 0) {
        repeatTimer = SetTimer(hwnd, kRepeatTimer, kTickMs, nullptr);
    }
}

void CTitleList::OnTimer(UINT_PTR timerId) {
    // The control has timers of its own.
    if (timerId != kRepeatTimer) {
        if (timerId == kTurnTimer) {
            EndTurn();
        }
        return;
    }
    if (repeatInterval != repeatCount) {
        ++repeatCount;
        return;
    }
    if (repeatInterval > 0) {
        repeatInterval /= kShorter;
    }
    repeatCount = 0;
    StepSelection();
}

void CTitleList::StepSelection() {
    if (arrowTracking && arrowPressed) {
        assert(arrowKind != kNoArrow);
        MoveSelection(arrowKind == kUp ? -1 : 1);
    }
}

void CTitleList::MoveSelection(int rows) {
    const auto selected = static_cast<int>(SendMessageA(hwnd, LB_GETCURSEL, 0, 0));
    const int next = selected + rows;
    if (selected < 0 || next < 0 || next >= SendMessageA(hwnd, LB_GETCOUNT, 0, 0) || next == curSel) {
        return;
    }
    SelectRow(next);
    // As the control tells it when the user selects.
    PostSelChange();
}

// The rows move only with the selection, a row for each notch. Windows sends the wheel to the list with the focus, wherever
// the pointer is. While a title is edited the rows stand still.
void CTitleList::OnMouseWheel(int turn, int x, int y) {
    RECT window = {};
    GetWindowRect(hwnd, &window);
    if (editor != nullptr || !PtInRect(&window, POINT{x, y})) {
        return;
    }
    wheelRest += turn;
    const int rows = wheelRest / WHEEL_DELTA;
    wheelRest -= rows * WHEEL_DELTA;
    if (rows != 0) {
        turnTimer = SetTimer(hwnd, kTurnTimer, kTurnMs, nullptr);
    }
    for (int row = 0; row < std::abs(rows); ++row) {
        MoveSelection(rows > 0 ? -1 : 1);
    }
}

void CTitleList::EndTurn() {
    KillTimer(hwnd, kTurnTimer);
    turnTimer = 0;
}

void CTitleList::PostSelChange() const {
    PostMessageA(GetParent(hwnd), WM_COMMAND, MAKEWPARAM(static_cast<WORD>(GetDlgCtrlID(hwnd)), LBN_SELCHANGE),
                 reinterpret_cast<LPARAM>(hwnd));
}

void CTitleList::OnMouseMove(int x, int y, WPARAM /*keys*/) {
    if (!arrowTracking) {
        return;
    }
    arrowPressed = PtInRect(&arrowRect, ToWindow(x, y)) != FALSE;
    DrawArrow(arrowPressed);
}

void CTitleList::EndTracking() {
    if (repeatTimer != 0) {
        KillTimer(hwnd, kRepeatTimer);
        repeatTimer = 0;
        repeatInterval = -1;
        repeatCount = -1;
    }
    ReleaseCapture();
    arrowTracking = false;
    arrowPressed = false;
    DrawArrow(false);
}
