// What the user can do with the pane by menu, keys and buttons.
#include "EditorPane.h"

#include <commdlg.h>

#include <cassert>
#include <cstring>

#include "DisplayRangesDialog.h"
#include "MessageService.h"
#include "resource.h"

namespace {

bool IsBlank(const char* title) {
    return title[std::strspn(title, " ")] == '\0';
}

}  // namespace

// --- Menu

int EditorPane::IsLinkIdle() const {
    return deviceLink && !deviceLink->IsOperationActive() ? 1 : 0;
}

int EditorPane::CanUndoEdit() const {
    return titleStore ? titleStore->CanUndo() : 0;
}

void EditorPane::OnEditCommand(WORD command) {
    switch (command) {
        case IDM_UNDO: UndoLastEdit(); break;
        case IDM_CLEAR: ClearTitle(true); break;
        case IDM_ENTER: EnterKey(); break;
        default: break;
    }
}

void EditorPane::OnToolCommand(WORD command) {
    switch (command) {
        case IDM_OPTION: EditDisplayRanges(); break;
        case IDM_CONNECTION: Reconnect(); break;
        default: break;
    }
}

// --- Transfers

void EditorPane::BeginTransfer() {
    EndInlineEdits();
    Disarm();
    fetchedGroup = -1;
    currentGroup = GetSelectedGroup();
}

void EditorPane::OnTransferCommand(WORD command) {
    if (command == IDM_STOP) {
        StopTransfer();
        return;
    }
    if (!titleStore || !groupList || !trackList || !deviceLink) {
        return;
    }
    BeginTransfer();
    // The link would refuse, and what runs would have been cut off for nothing.
    if ((command == IDM_GET_GROUP || command == IDM_SEND_GROUP) && currentGroup < 0) {
        return;
    }
    // What runs is cut off before titles are thrown away, so that nothing of it arrives behind.
    CutOffLink();
    assert(watchArmed == 0 && !deviceLink->IsOperationActive());
    switch (command) {
        case IDM_GET_GROUP:
            titleStore->ClearGroup(currentGroup);
            deviceLink->GetOneGroup(currentGroup);
            break;
        case IDM_GET_ALL:
            titleStore->ResetAll();
            groupList->ClearRows();
            trackList->ClearRows();
            RequestAllGroups();
            break;
        case IDM_SEND_GROUP: deviceLink->SendGroup(currentGroup); break;
        case IDM_SEND_ALL: deviceLink->SendAllTitles(); break;
        default: break;
    }
}

// What has come so far goes on the screen. The tracks of the selected group count as fetched, so that nothing begins by
// itself.
void EditorPane::StopTransfer() {
    CutOffLink();
    currentGroup = GetSelectedGroup();
    fetchedGroup = static_cast<GroupId>(currentGroup);
    if (groupList && trackList) {
        RefreshGroups(currentGroup);
        RefreshTracks(currentGroup);
    }
    watchArmed = 1;
}

// --- Editing

// An open editor is thrown away: undo goes by what was stored.
void EditorPane::UndoLastEdit() {
    if (!groupList || !trackList || !titleStore) {
        return;
    }
    groupList->SetCommitEnabled(FALSE);
    trackList->SetCommitEnabled(FALSE);
    EndInlineEdits();
    GroupId group = -1;
    TrackNo track = 0;
    char text[kTitleSize] = "";
    if (titleStore->UndoEdit(&group, &track, text) != 0) {
        ShowUndone(group, track, text);
    }
    groupList->SetCommitEnabled(TRUE);
    trackList->SetCommitEnabled(TRUE);
}

// Nothing is shown of a group without a row, and of a track whose group is only just being shown.
void EditorPane::ShowUndone(GroupId group, TrackNo track, const char* text) {
    if (groupList->IsRefilling()) {
        RefreshGroups(group);
        return;
    }
    const int groupRow = groupList->FindGroupRow(group);
    if (groupRow < 0) {
        return;
    }
    groupList->SelectRow(groupRow);
    groupList->OnSelChange();
    if (track < 1) {
        groupList->ReplaceRowText(groupRow, text);
        SetFocus(Control(IDC_GROUP_LIST));
        return;
    }
    const int trackRow = trackList->FindTrackRow(group, track);
    trackList->SelectRow(trackRow);
    trackList->OnSelChange();
    if (trackRow >= 0) {
        trackList->ReplaceRowText(trackRow, text);
        SetFocus(Control(IDC_TRACK_LIST));
    }
}

// 1 if the title that has the focus was cleared, or could be. The tracks of Albums are read-only, and blanks are no title.
int EditorPane::ClearTitle(bool apply) {
    if (!groupList || !trackList || !titleStore) {
        return 0;
    }
    HWND focus = GetFocus();
    const GroupId group = GetSelectedGroup();
    CTitleList* list = nullptr;
    TrackNo track = 0;
    if (focus != nullptr && focus == Control(IDC_GROUP_LIST)) {
        list = groupList.get();
    } else if (focus != nullptr && focus == Control(IDC_TRACK_LIST) && trackList->GetSelectedIds(nullptr, &track) != 0) {
        list = trackList.get();
    }
    char title[kTitleSize] = "";
    if (list == nullptr || titleStore->GetState(group, track) < TS_RECEIVED ||
        (track > 0 && titleStore->IsDisc(group, track) <= 0) || titleStore->GetTitle(group, track, title) == 0 ||
        IsBlank(title)) {
        return 0;
    }
    return apply ? list->ApplyTitle(list->SelectedRow(), "") : 1;
}

// The key opens the editor of the list that has the focus. An open editor gets it itself, since the menu's keys have
// swallowed it.
void EditorPane::EnterKey() {
    HWND focus = GetFocus();
    if (!groupList || !trackList || focus == nullptr) {
        return;
    }
    if (groupList->OwnsEditor(focus) != 0 || trackList->OwnsEditor(focus) != 0) {
        SendMessageA(focus, WM_KEYDOWN, VK_RETURN, 0);
    } else if (focus == Control(IDC_GROUP_LIST)) {
        groupList->BeginEdit();
    } else if (focus == Control(IDC_TRACK_LIST)) {
        trackList->BeginEdit();
    }
}

// --- Ranges and connection

// The titles that the new ranges leave out stay in the store, edited or not.
void EditorPane::EditDisplayRanges() {
    DisplayRangesDialog dialog;
    dialog.SetRanges(ranges);
    if (dialog.Run(hDlg) == 0) {
        return;
    }
    ranges = dialog.GetRanges();
    CutOffLink();
    PushRanges();
    fetchedGroup = -1;
    currentGroup = GetSelectedGroup();
    groupList->ClearRows();
    trackList->ClearRows();
    RequestAllGroups();
}

// What runs ends with its port. A stop would wait a second for a reply that nobody needs.
void EditorPane::Reconnect() {
    scanning = false;
    firstConnect = false;
    ScanNextPort(ST_OK);
}

// --- Font

// Settings come later; a first start shows the system's font.
void EditorPane::InitFont() {
    GetObjectA(GetStockObject(SYSTEM_FONT), sizeof logFont, &logFont);
    ApplyFont();
}

void EditorPane::SetLogFont(const LOGFONTA* description) {
    if (description != nullptr) {
        logFont = *description;
    }
}

void EditorPane::GetLogFont(LOGFONTA* description) const {
    if (description != nullptr) {
        *description = logFont;
    }
}

void EditorPane::ApplyFont() {
    HFONT attempt = CreateFontIndirectA(&logFont);
    if (attempt == nullptr || !groupList || !trackList) {
        return;
    }
    DeleteObject(attempt);
    groupList->SetListFont(&logFont);
    trackList->SetListFont(&logFont);
    RedrawWindow(hDlg, nullptr, nullptr, RDW_INVALIDATE | RDW_NOINTERNALPAINT | RDW_ALLCHILDREN | RDW_UPDATENOW | RDW_FRAME);
    groupList->OnSelChange();
    RefreshGroups(GetSelectedGroup());
}

void EditorPane::ChooseDisplayFont() {
    CHOOSEFONTA chooser = {};
    chooser.lStructSize = sizeof chooser;
    chooser.hwndOwner = hDlg;
    chooser.lpLogFont = &logFont;
    chooser.Flags = CF_SCREENFONTS | CF_INITTOLOGFONTSTRUCT;
    if (ChooseFontA(&chooser)) {
        ApplyFont();
    }
}
