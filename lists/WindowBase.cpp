#include "WindowBase.h"

namespace {

constexpr SHORT kHeldDown = static_cast<SHORT>(0xFF00);

int SignedLow(LPARAM lParam) {
    return static_cast<SHORT>(LOWORD(static_cast<DWORD_PTR>(lParam)));
}

int SignedHigh(LPARAM lParam) {
    return static_cast<SHORT>(HIWORD(static_cast<DWORD_PTR>(lParam)));
}

}  // namespace

WindowBase::~WindowBase() {
    DestroyNative();
}

int WindowBase::Attach() {
    if (hwnd == nullptr || prevWndProc != nullptr) {
        return 0;
    }
    OnAttach();
    SetWindowLongPtrA(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    prevWndProc = reinterpret_cast<WNDPROC>(GetWindowLongPtrA(hwnd, GWLP_WNDPROC));
    if (prevWndProc == nullptr) {
        return 0;
    }
    if (SetWindowLongPtrA(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&StaticWndProc)) == 0) {
        prevWndProc = nullptr;
        return 0;
    }
    return 1;
}

int WindowBase::AttachDlgItem(HWND dialog, int id) {
    hwnd = GetDlgItem(dialog, id);
    return hwnd == nullptr ? 0 : Attach();
}

void WindowBase::Detach() {
    if (prevWndProc != nullptr && hwnd != nullptr) {
        SetWindowLongPtrA(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(prevWndProc));
        prevWndProc = nullptr;
    }
}

void WindowBase::DestroyNative() {
    if (hwnd != nullptr) {
        Detach();
        DestroyWindow(hwnd);
        hwnd = nullptr;
    }
}

int WindowBase::HandleTabKey(UINT virtualKey, BOOL isDown, int /*repeat*/, UINT /*flags*/) {
    if (virtualKey != VK_TAB) {
        return 1;
    }
    if ((SendMessageA(hwnd, WM_GETDLGCODE, 0, 0) & DLGC_WANTTAB) != 0) {
        return 1;
    }
    if (isDown == 0) {
        return 0;
    }
    // The pane keeps its children in the order in which Shift+Tab shall visit them, so Tab goes backwards.
    const bool isShiftHeld = (GetAsyncKeyState(VK_SHIFT) & kHeldDown) != 0;
    HWND next = GetNextDlgTabItem(GetParent(hwnd), hwnd, isShiftHeld ? FALSE : TRUE);
    if (next != nullptr) {
        SetFocus(next);
    }
    return 0;
}

LRESULT CALLBACK WindowBase::StaticWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* object = reinterpret_cast<WindowBase*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    if (object->prevWndProc == nullptr) {
        return 0;
    }
    return object->WindowProc(window, message, wParam, lParam);
}

LRESULT WindowBase::WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCHITTEST) {
        return OnNcHitTest(SignedLow(lParam), SignedHigh(lParam));
    }
    if (message == WM_GETDLGCODE) {
        return OnGetDlgCode(lParam);
    }
    if (message == WM_MOUSEWHEEL) {
        // On Windows a list box scrolls by the wheel, wherever the pointer is.
        OnMouseWheel(SignedHigh(static_cast<LPARAM>(wParam)), SignedLow(lParam), SignedHigh(lParam));
        return 0;
    }
    // The handler may detach the object or delete it.
    WNDPROC controlProc = prevWndProc;
    Route(message, wParam, lParam);
    return CallWindowProcA(controlProc, window, message, wParam, lParam);
}

void WindowBase::Route(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_DRAWITEM: OnDrawItem(reinterpret_cast<DRAWITEMSTRUCT*>(lParam)); break;
        case WM_MEASUREITEM: OnMeasureItem(reinterpret_cast<MEASUREITEMSTRUCT*>(lParam)); break;
        case WM_KILLFOCUS: OnKillFocus(reinterpret_cast<HWND>(wParam)); break;
        case WM_SETFOCUS: OnSetFocus(reinterpret_cast<HWND>(wParam)); break;
        case WM_NCPAINT: OnNcPaint(reinterpret_cast<HRGN>(wParam)); break;
        case WM_TIMER: OnTimer(wParam); break;
        case WM_NCCALCSIZE: OnNcCalcSize(0, reinterpret_cast<RECT*>(lParam)); break;
        case WM_NCDESTROY: OnNcDestroy(); break;
        case WM_SIZE: OnSize(wParam, SignedLow(lParam), SignedHigh(lParam)); break;
        case WM_USER: OnUserMessage(wParam, lParam); break;
        case WM_KEYDOWN: {
            const auto virtualKey = static_cast<UINT>(wParam);
            const UINT flags = HIWORD(static_cast<DWORD_PTR>(lParam));
            if (HandleTabKey(virtualKey, TRUE, SignedLow(lParam), flags) == 1) {
                OnKeyDown(virtualKey, TRUE, SignedLow(lParam), flags);
            }
            break;
        }
        default: RouteMouse(message, wParam, lParam);
    }
}

void WindowBase::RouteMouse(UINT message, WPARAM wParam, LPARAM lParam) {
    const int x = SignedLow(lParam);
    const int y = SignedHigh(lParam);
    switch (message) {
        case WM_MOUSEMOVE: OnMouseMove(x, y, wParam); break;
        case WM_LBUTTONDOWN: OnLButtonDown(FALSE, x, y, wParam); break;
        case WM_LBUTTONDBLCLK: OnLButtonDown(TRUE, x, y, wParam); break;
        case WM_LBUTTONUP: OnLButtonUp(x, y, wParam); break;
        default: break;
    }
}

LRESULT WindowBase::OnGetDlgCode(LPARAM /*lParam*/) {
    return static_cast<LRESULT>(dialogCode);
}

LRESULT WindowBase::OnNcHitTest(int x, int y) {
    return CallWindowProcA(prevWndProc, hwnd, WM_NCHITTEST, 0, MAKELPARAM(static_cast<WORD>(x), static_cast<WORD>(y)));
}
