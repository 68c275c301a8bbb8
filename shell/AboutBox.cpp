#include "AboutBox.h"

#include "resource.h"

namespace {

constexpr int kTextSize = 100;

HINSTANCE InstanceOf(HWND window) {
    return reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(window, GWLP_HINSTANCE));
}

}  // namespace

void AboutBox::Run(HWND owner) {
    DialogBoxParamA(InstanceOf(owner), MAKEINTRESOURCEA(IDD_ABOUT), owner, DialogProc, reinterpret_cast<LPARAM>(this));
}

INT_PTR CALLBACK AboutBox::DialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    // The Cancel of the Escape key comes from no control: the box has none for it, and stays.
    if (lParam == 0) {
        return FALSE;
    }
    if (message == WM_INITDIALOG) {
        FillIn(dialog);
        return TRUE;
    }
    if (message == WM_COMMAND && LOWORD(wParam) == IDOK) {
        EndDialog(dialog, IDOK);
        return TRUE;
    }
    return FALSE;
}

void AboutBox::FillIn(HWND dialog) {
    HINSTANCE instance = InstanceOf(dialog);
    char text[kTextSize] = "";
    LoadStringA(instance, IDS_ABOUT_TITLE, text, kTextSize);
    SetWindowTextA(dialog, text);
    LoadStringA(instance, IDS_TITLE, text, kTextSize);
    SetDlgItemTextA(dialog, IDC_ABOUT_NAME, text);
    LoadStringA(instance, IDS_NOTICE, text, kTextSize);
    SetDlgItemTextA(dialog, IDC_ABOUT_NOTICE, text);

    char version[kTextSize] = "Version ";
    constexpr int kPrefix = 8;
    LoadStringA(instance, IDS_VERSION, version + kPrefix, kTextSize - kPrefix);
    SetDlgItemTextA(dialog, IDC_ABOUT_VERSION, version);
}
