// What the pane has to do with the link: the search for the main unit, the group watcher, and what becomes of the link's
// messages.
#include <cstdio>
#include <new>
#include <vector>

#include "EditorPane.h"
#include "MessageService.h"
#include "resource.h"

namespace {

constexpr int kLastPort = 8;

struct ErrorText {
    BYTE status;
    UINT stringId;
};

constexpr ErrorText kErrorTexts[] = {
    {ST_TIMEOUT, IDS_ERROR_TIME_OUT},       {ST_BUSY, IDS_ERROR_BUSY},
    {ST_NO_DATA, IDS_ERROR_NO_DATA},        {ST_TRAY_OPEN, IDS_ERROR_TRAY_OPEN},
    {ST_NOT_STOPPED, IDS_ERROR_SELECT_HDD}, {ST_MENU_MODE, IDS_ERROR_MENU_MODE},
};

// The text for the line while a step runs; 0 for one that tells the user nothing.
int TextOfStep(LinkStep step) {
    switch (step) {
        case LinkStep::kFindingModel: return IDS_SEARCHING;
        case LinkStep::kCheckingStatus: return IDS_CHECKING_STATUS;
        case LinkStep::kMappingDiscs:
        case LinkStep::kReadingDiscs: return IDS_GETTING_DISCS;
        case LinkStep::kMappingAlbums:
        case LinkStep::kReadingAlbums: return IDS_GETTING_ALBUMS;
        case LinkStep::kReadingGroup: return IDS_GETTING_TRACKS;
        case LinkStep::kWriting: return IDS_UPDATING_TITLES;
        default: return 0;
    }
}

bool IsStatusCode(BYTE code) {
    return code == RC_STATUS || code == RC_COMMAND;
}

}  // namespace

// --- Search

int EditorPane::StartLink() {
    if (hDlg == nullptr) {
        return 0;
    }
    deviceLink.reset(new (std::nothrow) DeviceLink);
    if (!deviceLink) {
        return 0;
    }
    deviceLink->SetPaneWindow(hDlg);
    deviceLink->SetTitleStore(titleStore.get());
    PushRanges();
    scanning = false;
    firstConnect = true;
    ScanNextPort(ST_OK);
    return 1;
}

void EditorPane::ScanNextPort(BYTE status) {
    Disarm();
    if (scanning && status == ST_OK) {
        // Whatever answers as a main unit is one. The link goes on by itself.
        return;
    }
    if (scanning && scanPortNumber > kLastPort) {
        // The user has been told.
        return;
    }
    SetControlsEnabled(FALSE);
    if (!scanning) {
        scanning = true;
        scanPortNumber = 0;
    }
    // A port may have failed more than once; that is not the next one's failure. The last port stays open, so that a unit
    // that is switched on later can be asked for its titles.
    if (deviceLink && scanPortNumber < kLastPort) {
        deviceLink->Disconnect();
        DropLinkMessages();
    }
    while (++scanPortNumber <= kLastPort) {
        char name[16];
        std::snprintf(name, sizeof name, "COM%d", scanPortNumber);
        if (deviceLink && deviceLink->Connect(name)) {
            return;
        }
    }
    ShowLinkError(ST_OK, IDS_ERROR_NO_CONNECTION);
    ClearLine();
    SetControlsEnabled(TRUE);
}

void EditorPane::RequestAllGroups() {
    Disarm();
    if (!deviceLink || !deviceLink->GetAllTitles()) {
        ShowLinkError(ST_OK, IDS_ERROR_NO_GROUPS);
        watchArmed = 1;
    }
}

void EditorPane::ShowLinkError(BYTE status, UINT defaultId) {
    if (messageService == nullptr) {
        return;
    }
    UINT id = defaultId;
    for (const ErrorText& text : kErrorTexts) {
        if (text.status == status) {
            id = text.stringId;
        }
    }
    messageService->ShowError(id);
}

// --- Group watcher

void EditorPane::GroupWorkerStep(LPARAM pane) {
    reinterpret_cast<EditorPane*>(pane)->FetchSelectedTracks();
}

// On the watcher's own thread, since the start of an operation waits for the end of the one before. The link refuses what is
// outside the ranges.
void EditorPane::FetchSelectedTracks() {
    const LockGuard guard(watchLock);
    if (watchArmed == 0 || fetchedGroup == currentGroup) {
        return;
    }
    const GroupId group = currentGroup;
    fetchedGroup = group;
    if (deviceLink) {
        deviceLink->GetGroupTracks(group);
    }
}

// When this returns the watcher starts nothing more: a fetch of tracks must not cut off what the user has asked for.
void EditorPane::Disarm() {
    watchArmed = 0;
    const LockGuard guard(watchLock);
}

// Ends what runs, and with it what it has posted already.
void EditorPane::CutOffLink() {
    Disarm();
    if (!deviceLink) {
        return;
    }
    deviceLink->StopOperation();
    DropLinkMessages();
}

// The end of an operation that was cut off must not be taken for the end of the next one. The failures of a transfer stay,
// as the user has to hear of them.
void EditorPane::DropLinkMessages() const {
    std::vector<MSG> failures;
    MSG message;
    while (PeekMessageA(&message, hDlg, LM_RESULT, LM_PROGRESS, PM_REMOVE)) {
        const bool isFailure = message.message == LM_RESULT && StatusOf(message.wParam) != ST_OK;
        if (isFailure && OperationOf(message.wParam) != OP_CONNECT) {
            failures.push_back(message);
        }
    }
    for (const MSG& failure : failures) {
        PostMessageA(hDlg, failure.message, failure.wParam, failure.lParam);
    }
}

// --- What the link says

void EditorPane::OnLinkProgress(WPARAM wParam, LPARAM lParam) {
    const LinkStep step = StepOf(wParam);
    const int textId = TextOfStep(step);
    if (textId == 0) {
        return;
    }
    if (step == LinkStep::kFindingModel) {
        line.Set(textId, -1, -1);
    } else if (step == LinkStep::kCheckingStatus) {
        line.SetText(textId);
    } else {
        line.Set(textId, GroupOfTitle(lParam), TrackOfTitle(lParam));
    }
}

void EditorPane::OnLinkResult(WPARAM wParam) {
    const WORD operation = OperationOf(wParam);
    const BYTE status = StatusOf(wParam);
    BYTE code = CodeOf(wParam);
    // The link names no reply for the map of the Albums. An end is never a failure.
    if (code == 0 && status != ST_OK) {
        code = RC_MAP;
    }
    switch (operation) {
        case OP_CONNECT: OnConnectResult(code, status); break;
        case OP_GET_ALL: OnGetAllResult(code, status); break;
        case OP_GET_GROUP:
        case OP_GET_TRACKS:
        case OP_SEND_ALL:
        case OP_SEND_GROUP: OnGroupResult(operation, code, status); break;
        default: break;
    }
}

void EditorPane::OnConnectResult(BYTE code, BYTE status) {
    if (code == 0) {
        Connected();
    } else if (code == RC_MODEL) {
        ScanNextPort(status);
    } else if (IsStatusCode(code) && status != ST_OK) {
        ShowLinkError(status, IDS_ERROR_NO_STATUS);
        ClearLine();
        SetControlsEnabled(TRUE);
    }
}

// The titles are fetched when the program starts. Later they are here, and only the line is there again.
void EditorPane::Connected() {
    if (firstConnect) {
        ClearLine();
        SetControlsEnabled(TRUE);
        RequestAllGroups();
        return;
    }
    fetchedGroup = static_cast<GroupId>(currentGroup);
    watchArmed = 1;
    if (messageService != nullptr) {
        messageService->ShowInfo(IDS_CONNECTED, MB_ICONINFORMATION);
    }
    ClearLine();
    SetControlsEnabled(TRUE);
}

void EditorPane::OnGetAllResult(BYTE code, BYTE status) {
    if (code == 0) {
        RefreshGroups(currentGroup);
        watchArmed = 1;
        ClearLine();
        deviceLink->GetGroupTracks(currentGroup);
        return;
    }
    if (status == ST_OK) {
        return;
    }
    if (IsStatusCode(code)) {
        ShowLinkError(status, IDS_ERROR_NO_STATUS);
        ClearLine();
    } else if (code == RC_MAP || code == RC_TITLE_READ) {
        ShowLinkError(status, IDS_ERROR_NO_GROUPS);
        ClearLine();
    }
}

void EditorPane::OnGroupResult(WORD operation, BYTE code, BYTE status) {
    const bool isSending = operation == OP_SEND_ALL || operation == OP_SEND_GROUP;
    if (code == 0) {
        if (operation == OP_GET_TRACKS) {
            RefreshTracks(currentGroup);
        } else {
            RefreshGroups(currentGroup);
        }
        watchArmed = 1;
        ClearLine();
        return;
    }
    if (status == ST_OK) {
        return;
    }
    // After a failure in the middle of the titles the line goes on telling which one it was.
    if (code == RC_TITLE_READ) {
        ShowLinkError(status, IDS_ERROR_NO_TRACKS);
    } else if (code == RC_TITLE_WRITE) {
        ShowLinkError(status, IDS_ERROR_NOT_UPDATED);
    } else if (IsStatusCode(code)) {
        ShowLinkError(status, IDS_ERROR_NO_STATUS);
        ClearLine();
    } else if (code == RC_MAP) {
        ShowLinkError(status, isSending ? IDS_ERROR_NOT_UPDATED : IDS_ERROR_NO_TRACKS);
        ClearLine();
    }
}
