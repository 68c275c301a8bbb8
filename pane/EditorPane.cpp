#include "EditorPane.h"

#include <cassert>
#include <new>

#include "MessageService.h"
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
    assert(thePane == nullptr);
    thePane = this;
    auto* instance = reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(parent, GWLP_HINSTANCE));
    hDlg = CreateDialogParamA(instance, MAKEINTRESOURCEA(IDD_PANE), parent, PaneDlgProc, 0);
    if (hDlg == nullptr || !groupList || !trackList || !dialogReady) {
        return 0;
    }
    ShowWindow(hDlg, SW_SHOW);
    return groupWorker.Start(GroupWorkerStep, reinterpret_cast<LPARAM>(this)) ? 1 : 0;
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
        case WM_TIMER: return thePane->OnTimer(wParam);
        case WM_USER: thePane->OnPaneRequest(wParam, lParam); return TRUE;
        case LM_RESULT: thePane->OnLinkResult(wParam); return TRUE;
        case LM_PROGRESS: thePane->OnLinkProgress(wParam, lParam); return TRUE;
        default: return FALSE;
    }
}

// Before the call that makes the dialog has given its handle.
void EditorPane::OnInitDialog(HWND dialog) {
    hDlg = dialog;
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
    line.Attach(dialog, IDC_MESSAGE_LINE);
    groupList.reset(new (std::nothrow) CListLeft);
    trackList.reset(new (std::nothrow) CListRight);
    if (!groupList || !trackList || !CreateList(*groupList, dialog, IDC_GROUP_LIST) ||
        !CreateList(*trackList, dialog, IDC_TRACK_LIST)) {
        return;
    }
    groupList->ForgetSelection();
    groupList->SetTrackList(trackList.get());
    InitFont();
    dialogReady = true;
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

BOOL EditorPane::OnTimer(WPARAM id) {
    if (id != MessageLine::kTimer) {
        return FALSE;
    }
    line.OnTimer();
    return TRUE;
}

void EditorPane::OnPaneRequest(WPARAM code, LPARAM argument) {
    switch (code) {
        case UC_FOCUS_LOST: focusControl = reinterpret_cast<HWND>(argument); break;
        case UC_GROUP_CHANGED: OnGroupChanged(static_cast<GroupId>(argument)); break;
        case UC_MESSAGE_LINE: line.Set(static_cast<int>(argument), -1, -1); break;
        case UC_SYNC: OnTransferCommand(IDM_SEND_GROUP); break;
        case UC_STOP: OnTransferCommand(IDM_STOP); break;
        default: break;
    }
}

// What the store has of its tracks is shown at once; the watcher sees to the rest, if the link can.
void EditorPane::OnGroupChanged(GroupId group) {
    currentGroup = group;
    if (trackList) {
        trackList->ShowTracks(group);
    }
}

// --- What is selected, and what can be used

GroupId EditorPane::GetSelectedGroup() const {
    return groupList ? groupList->SelectedGroup() : -1;
}

GroupId EditorPane::CurrentGroupForSaving() {
    if (groupList && titleStore) {
        currentGroup = GetSelectedGroup();
    }
    return currentGroup;
}

void EditorPane::EndInlineEdits() const {
    for (const int id : {IDC_GROUP_LIST, IDC_TRACK_LIST}) {
        SendMessageA(Control(id), WM_USER, UC_END_EDIT, 0);
    }
}

// Stop is never disabled. A search that goes on from port to port disables what is disabled already, and nobody has the
// focus then. A box or a dialog that stands keeps it; the pane gets it back together with the main window.
void EditorPane::SetControlsEnabled(BOOL enabled) {
    EndInlineEdits();
    HWND focus = GetFocus();
    if (!enabled && focus != nullptr && IsChild(hDlg, focus)) {
        focusControl = focus;
    }
    for (const int id : {IDC_SYNC, IDC_GROUP_LIST, IDC_TRACK_LIST}) {
        EnableWindow(Control(id), enabled);
    }
    if (enabled && focusControl != nullptr && IsWindowEnabled(GetParent(hDlg))) {
        HWND control = focusControl;
        focusControl = nullptr;
        SetFocus(control);
    }
}

void EditorPane::PushRanges() {
    if (deviceLink) {
        deviceLink->SetDisplayRanges(ranges);
    }
    for (CTitleList* list : {ListOf(IDC_GROUP_LIST), ListOf(IDC_TRACK_LIST)}) {
        if (list != nullptr) {
            list->SetDisplayRanges(ranges);
        }
    }
}

// --- Places, focus and end

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

// The watcher goes first, since it uses the link; the link before the titles, which it uses.
void EditorPane::Destroy() {
    watchArmed = 0;
    groupWorker.Stop();
    if (deviceLink) {
        deviceLink->SetPaneWindow(nullptr);
        deviceLink->SetTitleStore(nullptr);
        deviceLink->Disconnect();
        deviceLink.reset();
    }
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
