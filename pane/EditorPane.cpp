// The child dialog that fills the main window above the status bar.
#include "EditorPane.h"

#include <new>

#include "PaneRequests.h"
#include "resource.h"

EditorPane* thePane = nullptr;

namespace {

constexpr int kListTop = 40;
constexpr int kListLeft = 2;
constexpr int kLineMargin = 125;  // what the buttons and the right edge take of the message line's row

void Place(HWND dialog, int id, int x, int y, int width, int height) {
    MoveWindow(GetDlgItem(dialog, id), x, y, width, height, TRUE);
}

void PlaceOnTop(HWND dialog, int id, int x, int y, int width, int height) {
    SetWindowPos(GetDlgItem(dialog, id), HWND_TOP, x, y, width, height, SWP_FRAMECHANGED);
}

// Ties an object of its own to a control of the dialog and shows it.
template <class Control>
bool Bind(std::unique_ptr<Control>& control, HWND dialog, int id) {
    control.reset(new (std::nothrow) Control);
    if (!control || control->AttachDlgItem(dialog, id) == 0) {
        return false;
    }
    ShowWindow(GetDlgItem(dialog, id), SW_SHOW);
    return true;
}

}  // namespace

EditorPane::~EditorPane() {
    Destroy();
    thePane = nullptr;
}

void EditorPane::SetMessageService(MessageService* service) {
    if (service != nullptr) {
        messageService = service;
    }
}

int EditorPane::Create(HWND parent) {
    hMainWnd = parent;
    thePane = this;
    auto* instance = reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(parent, GWLP_HINSTANCE));
    hDlg = CreateDialogParamA(instance, MAKEINTRESOURCEA(IDD_PANE), parent, PaneDlgProc, 0);
    if (hDlg == nullptr || !groupList || !trackList || dialogReady == 0) {
        return 0;
    }
    ShowWindow(hDlg, SW_SHOW);
    return 1;
}

INT_PTR CALLBACK EditorPane::PaneDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (thePane == nullptr) {
        return FALSE;
    }
    switch (message) {
        case WM_INITDIALOG: thePane->OnInitDialog(dialog); return TRUE;
        case WM_DESTROY: thePane->DestroyLists(); return TRUE;
        case WM_USER: thePane->OnPaneRequest(wParam, lParam); return TRUE;
        default: return FALSE;
    }
}

void EditorPane::OnInitDialog(HWND dialog) {
    if (!Bind(syncButton, dialog, IDC_SYNC) || !Bind(stopButton, dialog, IDC_STOP)) {
        return;
    }
    // The template's word is never seen.
    SetDlgItemTextA(dialog, IDC_MESSAGE_LINE, "");
    ShowWindow(GetDlgItem(dialog, IDC_MESSAGE_LINE), SW_SHOW);
    if (!Bind(groupList, dialog, IDC_GROUP_LIST) || !Bind(trackList, dialog, IDC_TRACK_LIST)) {
        return;
    }
    dialogReady = 1;
}

void EditorPane::OnPaneRequest(WPARAM code, LPARAM argument) {
    if (code == UC_FOCUS_LOST) {
        focusControl = reinterpret_cast<HWND>(argument);
    }
}

void EditorPane::Layout(int width, int height) {
    MoveWindow(hDlg, 0, 0, width, height, TRUE);
    RECT client = {};
    GetClientRect(hDlg, &client);
    Place(hDlg, IDC_SYNC, 10, 5, 50, 30);
    Place(hDlg, IDC_STOP, 63, 5, 50, 30);
    Place(hDlg, IDC_MESSAGE_LINE, 120, 7, client.right - kLineMargin, 26);

    const int left = client.left + kListLeft;
    const int listHeight = client.bottom - kListTop;
    // A window made narrower than its frame has room of less than nothing, and half of that is rounded down all the same.
    const int listWidth = (client.right - left) >> 1;
    PlaceOnTop(hDlg, IDC_GROUP_LIST, left, kListTop, listWidth, listHeight);
    // The lists share the pixel between them.
    PlaceOnTop(hDlg, IDC_TRACK_LIST, left + listWidth - 1, kListTop, listWidth, listHeight);
}

void EditorPane::RestoreFocus() {
    if (focusControl != nullptr) {
        SetFocus(focusControl);
    }
}

void EditorPane::Destroy() {
    syncButton.reset();
    stopButton.reset();
    DestroyLists();
    if (hDlg != nullptr) {
        DestroyWindow(hDlg);
        hDlg = nullptr;
    }
}

void EditorPane::DestroyLists() {
    groupList.reset();
    trackList.reset();
}
