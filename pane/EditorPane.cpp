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
        case WM_DRAWITEM: return thePane->OnDrawItem(lParam);
        case WM_MEASUREITEM: return thePane->OnMeasureItem(lParam);
        case WM_COMMAND: return thePane->OnCommand(wParam);
        case WM_USER: thePane->OnPaneRequest(wParam, lParam); return TRUE;
        default: return FALSE;
    }
}

void EditorPane::OnInitDialog(HWND dialog) {
    titleStore.reset(new (std::nothrow) TitleStore);
    if (!titleStore) {
        return;
    }
    if (!Bind(syncButton, dialog, IDC_SYNC) || !Bind(stopButton, dialog, IDC_STOP)) {
        return;
    }
    // The template's word is never seen.
    SetDlgItemTextA(dialog, IDC_MESSAGE_LINE, "");
    ShowWindow(GetDlgItem(dialog, IDC_MESSAGE_LINE), SW_SHOW);
    groupList.reset(new (std::nothrow) CListLeft);
    trackList.reset(new (std::nothrow) CListRight);
    if (!groupList || !trackList || !CreateList(*groupList, dialog, IDC_GROUP_LIST) ||
        !CreateList(*trackList, dialog, IDC_TRACK_LIST)) {
        return;
    }
    groupList->ForgetSelection();
    groupList->SetTrackList(trackList.get());
    groupList->SetListFont(nullptr);
    trackList->SetListFont(nullptr);
    dialogReady = 1;
}

bool EditorPane::CreateList(CTitleList& list, HWND dialog, int id) {
    if (list.StartWorker() == 0 || list.AttachDlgItem(dialog, id) == 0) {
        return false;
    }
    list.SelectRow(0);
    ShowWindow(GetDlgItem(dialog, id), SW_SHOW);
    list.SetStore(titleStore.get());
    return true;
}

// --- What the lists' controls tell their parent

CTitleList* EditorPane::ListOf(UINT id) const {
    switch (id) {
        case IDC_GROUP_LIST: return groupList.get();
        case IDC_TRACK_LIST: return trackList.get();
        default: return nullptr;
    }
}

BOOL EditorPane::OnDrawItem(LPARAM item) {
    const auto& drawItem = *reinterpret_cast<DRAWITEMSTRUCT*>(item);
    if (drawItem.CtlType == ODT_LISTBOX && ListOf(drawItem.CtlID) != nullptr) {
        SendMessageA(GetDlgItem(hDlg, static_cast<int>(drawItem.CtlID)), WM_DRAWITEM, 0, item);
    }
    return FALSE;
}

BOOL EditorPane::OnMeasureItem(LPARAM item) {
    auto* measureItem = reinterpret_cast<MEASUREITEMSTRUCT*>(item);
    if (measureItem->CtlID != IDC_GROUP_LIST && measureItem->CtlID != IDC_TRACK_LIST) {
        return FALSE;
    }
    if (CTitleList* list = ListOf(measureItem->CtlID)) {
        list->OnMeasureItem(measureItem);
    }
    return TRUE;
}

BOOL EditorPane::OnCommand(WPARAM wParam) {
    CTitleList* list = ListOf(LOWORD(wParam));
    if (list == nullptr || HIWORD(wParam) != LBN_SELCHANGE) {
        return FALSE;
    }
    list->OnSelChange();
    return TRUE;
}

void EditorPane::OnPaneRequest(WPARAM code, LPARAM argument) {
    switch (code) {
        case UC_FOCUS_LOST: focusControl = reinterpret_cast<HWND>(argument); break;
        case UC_GROUP_CHANGED: currentGroup = static_cast<GroupId>(argument); break;
        default: break;
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
    if (groupList) {
        groupList->SetStore(nullptr);
    }
    if (trackList) {
        trackList->SetStore(nullptr);
    }
    titleStore.reset();
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
