#include "StatusBar.h"

#include <commctrl.h>

#include "resource.h"

namespace {

constexpr int kTextSize = 300;

}  // namespace

StatusBar::~StatusBar() {
    if (hWnd != nullptr) {
        DestroyWindow(hWnd);
    }
}

void StatusBar::Create(HWND parent) {
    InitCommonControls();
    auto* instance = reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(parent, GWLP_HINSTANCE));
    auto* id = reinterpret_cast<HMENU>(static_cast<UINT_PTR>(IDC_STATUS_BAR));
    hWnd = CreateWindowExA(0, STATUSCLASSNAMEA, nullptr, WS_CHILD | WS_VISIBLE | SBARS_SIZEGRIP | CCS_BOTTOM, 0, 0, 0, 0,
                           parent, id, instance, nullptr);
}

void StatusBar::OnParentSize(WPARAM kind, int width, int height) {
    SendMessageA(hWnd, SB_SETPARTS, 1, reinterpret_cast<LPARAM>(&width));
    SendMessageA(hWnd, WM_SIZE, kind, MAKELPARAM(static_cast<WORD>(width), static_cast<WORD>(height)));
}

void StatusBar::GetSize(int& width, int& height) const {
    width = 0;
    height = 0;
    // IsWindowVisible would also ask about the main window, which is laid out before it is shown.
    if ((GetWindowLongPtrA(hWnd, GWL_STYLE) & static_cast<LONG_PTR>(WS_VISIBLE)) == 0) {
        return;
    }
    RECT rect = {};
    GetWindowRect(hWnd, &rect);
    width = rect.right - rect.left;
    height = rect.bottom - rect.top;
}

void StatusBar::SetText(WPARAM part, int stringId) {
    char text[kTextSize] = " ";
    if (stringId != kNoString) {
        auto* instance = reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(hWnd, GWLP_HINSTANCE));
        LoadStringA(instance, static_cast<UINT>(stringId), text + 1, kTextSize - 1);
    }
    SendMessageA(hWnd, SB_SETTEXTA, part, reinterpret_cast<LPARAM>(text));
}

void StatusBar::Show(BOOL show) {
    ShowWindow(hWnd, show ? SW_SHOW : SW_HIDE);
}
