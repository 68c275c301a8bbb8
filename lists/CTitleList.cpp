// What the group list and the track list have in common: the list's life, its rows and its selection.
#include "CTitleList.h"

#include <cassert>
#include <cstdio>
#include <cstring>

#include "PaneRequests.h"
#include "RowText.h"
#include "TitleStore.h"

namespace {

// From the refresher to its own list, sent: a refill is through. The argument is a RefillEnd.
constexpr WPARAM kRefillThrough = 1;

constexpr DWORD kServeMs = 1;

struct RefillEnd {
    Refill refill;
    bool isHeard;
};

}  // namespace

CTitleList::CTitleList(const RECT& frameRect, const RECT& clientInset, const char* sample)
    : frameRect(frameRect), clientInset(clientInset) {
    std::snprintf(widthSample, sizeof widthSample, "%s", sample);
}

CTitleList::~CTitleList() {
    Shutdown();
}

// The refresher goes first, while the control that it sends its messages to is still there.
void CTitleList::Shutdown() {
    worker.Stop();
    if (hwnd == nullptr) {
        return;
    }
    if (repeatTimer != 0) {
        KillTimer(hwnd, 0);
        repeatTimer = 0;
    }
    CloseEditor();
    if (listFont != nullptr) {
        DeleteObject(listFont);
        listFont = nullptr;
    }
    DestroyNative();
}

int CTitleList::StartWorker() {
    if (workerStarted || !worker.Start(RebuildProc, reinterpret_cast<LPARAM>(this))) {
        return 0;
    }
    workerStarted = true;
    return 1;
}

void CTitleList::SetStore(TitleStore* newStore) {
    requests.Cancel();
    store = newStore;
    // The refresher may stand in a message to this thread.
    while (requests.IsRebuilding()) {
        MSG message;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, kServeMs, QS_SENDMESSAGE);
        PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
    }
}

void CTitleList::SetCommitEnabled(BOOL enabled) {
    commitEnabled = enabled != FALSE;
}

void CTitleList::OnAttach() {
    SetWindowPos(hwnd, nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE | SWP_NOZORDER | SWP_FRAMECHANGED);
}

void CTitleList::OnKillFocus(HWND /*otherWindow*/) {
    PostPaneRequest(hwnd, UC_FOCUS_LOST, reinterpret_cast<LPARAM>(hwnd));
}

void CTitleList::OnUserMessage(WPARAM code, LPARAM value) {
    if (code == UC_END_EDIT) {
        EndEdit();
    } else if (code == kRefillThrough) {
        auto* end = reinterpret_cast<RefillEnd*>(value);
        end->isHeard = true;
        EndRefill(end->refill);
    }
}

// --- Rows

void CTitleList::RebuildProc(LPARAM list) {
    reinterpret_cast<CTitleList*>(list)->RebuildTick();
}

void CTitleList::RebuildTick() {
    Refill refill;
    if (store == nullptr || !requests.Begin(refill)) {
        return;
    }
    SendMessageA(hwnd, WM_SETREDRAW, FALSE, 0);
    Populate(refill);
    RefillEnd end{refill, false};
    SendMessageA(hwnd, WM_USER, kRefillThrough, reinterpret_cast<LPARAM>(&end));
    if (!end.isHeard) {
        requests.End(refill);
    }
}

// On the thread that asks for refills, so nothing overtakes this one any more once it is found to be the latest.
void CTitleList::EndRefill(const Refill& refill) {
    // The row that was pressed may be another one now.
    clickInClient = false;
    if (requests.End(refill)) {
        const LRESULT count = SendMessageA(hwnd, LB_GETCOUNT, 0, 0);
        for (int row = 0; row < count; ++row) {
            SetRowHeight(row);
            assert(row == 0 || SendMessageA(hwnd, LB_GETITEMDATA, static_cast<WPARAM>(row - 1), 0) <
                                   SendMessageA(hwnd, LB_GETITEMDATA, static_cast<WPARAM>(row), 0));
        }
        SendMessageA(hwnd, WM_SETREDRAW, TRUE, 0);
        // Selections that are still on their way mean rows of before.
        MSG selection;
        while (PeekMessageA(&selection, hwnd, LB_SETCURSEL, LB_SETCURSEL, PM_REMOVE)) {}
        OnRefilled();
        return;
    }
    SendMessageA(hwnd, LB_RESETCONTENT, 0, 0);
    // With another refill to come the list stays as it was until then.
    if (!requests.IsRequested()) {
        SendMessageA(hwnd, WM_SETREDRAW, TRUE, 0);
        RedrawAll();
    }
}

// The control measures a new row by a provisional height. Before it scrolls to the selection, and before the frame follows
// the selected row, the row gets the one that painting would give it.
void CTitleList::SetRowHeight(int rowIndex) {
    if (fontRowHeight != 0) {
        SendMessageA(hwnd, LB_SETITEMHEIGHT, static_cast<WPARAM>(rowIndex), MAKELPARAM(static_cast<WORD>(fontRowHeight), 0));
        rowHeight = fontRowHeight;
    }
}

bool CTitleList::InsertRow(int rowIndex, const char* label, int number, const char* title, GroupId group,
                           TrackNo track) const {
    assert(group >= 1 && group <= kGroups && track >= 0 && track <= kTracks && std::strchr(title, '\t') == nullptr);
    char escaped[kEscapedTitleSize];
    std::snprintf(escaped, sizeof escaped, "%s", title);
    EscapeAmpersands(escaped, sizeof escaped);
    char text[kRowTextSize];
    std::snprintf(text, sizeof text, "%s\t%d\t%s", label, number, escaped);
    const LRESULT row = SendMessageA(hwnd, LB_INSERTSTRING, static_cast<WPARAM>(rowIndex), reinterpret_cast<LPARAM>(text));
    if (row < 0) {
        return false;
    }
    SendMessageA(hwnd, LB_SETITEMDATA, static_cast<WPARAM>(row),
                 MAKELPARAM(static_cast<WORD>(track), static_cast<WORD>(group)));
    return true;
}

void CTitleList::ClearRows() {
    SendMessageA(hwnd, LB_RESETCONTENT, 0, 0);
    RedrawAll();
}

int CTitleList::ReplaceRowText(int rowIndex, const char* text) {
    if (requests.Repeat()) {
        return 1;
    }
    const auto row = static_cast<WPARAM>(rowIndex);
    char rowText[kRowTextSize] = "";
    char* field = GetRowText(rowIndex, rowText) ? TitleField(rowText) : nullptr;
    if (field == nullptr) {
        return 0;
    }
    *field = '\0';
    if (text != nullptr) {
        char escaped[kEscapedTitleSize];
        std::snprintf(escaped, sizeof escaped, "%s", text);
        EscapeAmpersands(escaped, sizeof escaped);
        std::snprintf(field, sizeof rowText - static_cast<size_t>(field - rowText), "%s", escaped);
    }

    SendMessageA(hwnd, WM_SETREDRAW, FALSE, 0);
    const auto selected = static_cast<int>(SendMessageA(hwnd, LB_GETCURSEL, 0, 0));
    const LRESULT value = SendMessageA(hwnd, LB_GETITEMDATA, row, 0);
    const bool isReplaced = SendMessageA(hwnd, LB_DELETESTRING, row, 0) != LB_ERR &&
                            SendMessageA(hwnd, LB_INSERTSTRING, row, reinterpret_cast<LPARAM>(rowText)) >= 0;
    if (isReplaced) {
        SendMessageA(hwnd, LB_SETITEMDATA, row, value);
        SetRowHeight(rowIndex);
    }
    SendMessageA(hwnd, WM_SETREDRAW, TRUE, 0);
    RECT rect = {};
    if (!isReplaced || SendMessageA(hwnd, LB_GETITEMRECT, row, reinterpret_cast<LPARAM>(&rect)) == LB_ERR) {
        return 0;
    }
    InvalidateRect(hwnd, &rect, TRUE);
    // The control has lost its selection with the row. It may be ahead of this object: it selects with the press of the
    // mouse and tells with the release.
    SelectRow(selected >= 0 ? selected : curSel);
    RedrawAll();
    return 1;
}

bool CTitleList::GetRowText(int rowIndex, char* text) const {
    const LRESULT length = SendMessageA(hwnd, LB_GETTEXTLEN, static_cast<WPARAM>(rowIndex), 0);
    return length >= 0 && length < static_cast<LRESULT>(kRowTextSize) &&
           SendMessageA(hwnd, LB_GETTEXT, static_cast<WPARAM>(rowIndex), reinterpret_cast<LPARAM>(text)) >= 0;
}

// Hands an edit to the store. 0 if the entry has no title at all.
int CTitleList::StoreTitle(GroupId group, TrackNo track, const char* text) {
    TitleStore* titles = store;
    if (titles == nullptr || titles->GetState(group, track) < TS_RECEIVED) {
        return 0;
    }
    return titles->EditTitle(group, track, text);
}

int CTitleList::FindRow(GroupId group, TrackNo track) const {
    const LPARAM wanted = MAKELPARAM(static_cast<WORD>(track), static_cast<WORD>(group));
    const LRESULT count = SendMessageA(hwnd, LB_GETCOUNT, 0, 0);
    for (LRESULT row = 0; group > 0 && row < count; ++row) {
        if (SendMessageA(hwnd, LB_GETITEMDATA, static_cast<WPARAM>(row), 0) == wanted) {
            return static_cast<int>(row);
        }
    }
    return -1;
}

// --- Selection

void CTitleList::SelectRow(int rowIndex) {
    SendMessageA(hwnd, LB_SETCURSEL, static_cast<WPARAM>(rowIndex), 0);
}

int CTitleList::GetSelectedIds(GroupId* group, TrackNo* track) const {
    const LRESULT value = curSel < 0 ? LB_ERR : SendMessageA(hwnd, LB_GETITEMDATA, static_cast<WPARAM>(curSel), 0);
    if (value == LB_ERR) {
        return 0;
    }
    if (group != nullptr) {
        *group = HIWORD(static_cast<DWORD_PTR>(value));
    }
    if (track != nullptr) {
        *track = LOWORD(static_cast<DWORD_PTR>(value));
    }
    return 1;
}

// The editor is closed first, so that it commits while the row that it was opened on still counts as selected. Rows that are
// only just being filled stand for other titles than those that the user sees; the end of the refill selects again.
void CTitleList::OnSelChange() {
    if (IsRefilling()) {
        return;
    }
    const auto selected = static_cast<int>(SendMessageA(hwnd, LB_GETCURSEL, 0, 0));
    if (selected == curSel) {
        return;
    }
    EndEdit();
    if (selected >= 0) {
        curSel = selected;
    }
    editArmed = !clickInClient;
    // An edit that Enter ended has moved the control's selection on.
    PostMessageA(hwnd, LB_SETCURSEL, static_cast<WPARAM>(selected), 0);
}
