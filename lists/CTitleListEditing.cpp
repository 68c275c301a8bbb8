// How a list's editor opens and closes.
#include <algorithm>
#include <cassert>
#include <cstring>
#include <new>

#include "CTitleList.h"
#include "RowText.h"
#include "TitleStore.h"

namespace {

constexpr int kEditorId = 102;

// Marks the time in which the editor is opened or closed. What that brings about may call either once more.
class Busy {
public:
    explicit Busy(bool& flag) : flag(flag) {
        assert(!flag);
        flag = true;
    }
    ~Busy() { flag = false; }
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;

private:
    bool& flag;
};

}  // namespace

int CTitleList::OwnsEditor(HWND window) const {
    return editor != nullptr && (window == nullptr || window == editor->Window()) ? 1 : 0;
}

int CTitleList::BeginEdit() {
    if (editBusy || editor != nullptr || hwnd == nullptr || !commitEnabled || IsRefilling()) {
        return 0;
    }
    const LRESULT count = SendMessageA(hwnd, LB_GETCOUNT, 0, 0);
    if (count <= 0 || count <= curSel || !CanEditSelection()) {
        return 0;
    }
    const Busy busy(editBusy);
    return OpenEditor() ? 1 : 0;
}

bool CTitleList::CanEditSelection() const {
    const TitleStore* titles = store;
    GroupId group = -1;
    TrackNo track = 0;
    return titles != nullptr && GetSelectedIds(&group, &track) != 0 && titles->GetState(group, track) >= TS_RECEIVED &&
           IsEditable(group, track);
}

// The editor covers the gap behind the number and the title, in the row's full height.
bool CTitleList::EditorRect(RECT& rect) const {
    if (SendMessageA(hwnd, LB_GETITEMRECT, static_cast<WPARAM>(curSel), reinterpret_cast<LPARAM>(&rect)) == LB_ERR) {
        return false;
    }
    rect.left += labelWidth;
    return true;
}

bool CTitleList::OpenEditor() {
    char rowText[kRowTextSize] = "";
    RECT rect = {};
    const char* field = GetRowText(curSel, rowText) ? TitleField(rowText) : nullptr;
    if (field == nullptr || !EditorRect(rect) || GetSelectedIds(&editGroup, &editTrack) == 0) {
        return false;
    }
    editor = new (std::nothrow) InlineEdit(editor);
    if (editor == nullptr) {
        return false;
    }
    if (editor->Create(WS_CHILD | WS_VISIBLE | WS_BORDER | ES_AUTOHSCROLL, rect, hwnd, kEditorId) == 0) {
        CloseEditor();
        return false;
    }
    editor->SetEditFont(reinterpret_cast<HFONT>(SendMessageA(hwnd, WM_GETFONT, 0, 0)));
    editor->TakeFocus();
    char title[kRowTextSize];
    std::memcpy(title, field, std::strlen(field) + 1);
    UnescapeAmpersands(title);
    std::memset(originalText, 0, sizeof originalText);
    std::memcpy(originalText, title, std::min(std::strlen(title), sizeof originalText - 1));
    editor->SetText(originalText);
    editor->SelectRange(0, -1);
    return true;
}

void CTitleList::CloseEditor() {
    delete editor;
    editor = nullptr;
}

int CTitleList::EndEdit() {
    if (editBusy || editor == nullptr) {
        return 0;
    }
    {
        assert(curSel >= 0 && editGroup >= 1 && editGroup <= kGroups && editTrack >= 0 && editTrack <= kTracks);
        const Busy busy(editBusy);
        if (commitEnabled) {
            enterCommitted = editor->IsEnterPressed();
            editor->GetCleanText(editText, sizeof editText);
            if (std::strcmp(originalText, editText) != 0) {
                SetTitle(editGroup, editTrack, FindRow(editGroup, editTrack), editText);
            }
        }
        CloseEditor();
    }
    if (!commitEnabled) {
        SelectRow(curSel);
        RedrawAll();
        return 0;
    }
    RedrawAll();
    editArmed = false;
    return 1;
}

int CTitleList::ApplyTitle(int rowIndex, const char* text) {
    GroupId group = -1;
    TrackNo track = 0;
    return !IsRefilling() && GetSelectedIds(&group, &track) != 0 ? SetTitle(group, track, rowIndex, text) : 0;
}

// The title is kept where it has no row just now.
int CTitleList::SetTitle(GroupId group, TrackNo track, int rowIndex, const char* text) {
    if (!IsEditable(group, track) || StoreTitle(group, track, text) == 0) {
        return 0;
    }
    return requests.Repeat() || rowIndex < 0 || ReplaceRowText(rowIndex, text) != 0 ? 1 : 0;
}

void CTitleList::FollowEdit() {
    const int row = editor != nullptr ? FindRow(editGroup, editTrack) : -1;
    if (row < 0) {
        return;
    }
    curSel = row;
    SelectRow(row);
    RECT rect = {};
    if (EditorRect(rect)) {
        MoveWindow(editor->Window(), rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top, TRUE);
    }
}

void CTitleList::OnKeyDown(UINT virtualKey, BOOL isDown, int /*repeat*/, UINT /*flags*/) {
    if (!isDown) {
        return;
    }
    if (virtualKey == VK_RETURN) {
        BeginEdit();
    } else if (virtualKey == VK_DELETE) {
        ApplyTitle(curSel, "");
    }
}
