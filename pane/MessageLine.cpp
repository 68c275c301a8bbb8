#include "MessageLine.h"

#include <cassert>
#include <cstdio>
#include <string>

namespace {

constexpr int kTextSize = 500;

std::string Text(int textId) {
    char text[kTextSize] = "";
    if (textId != MessageLine::kEmpty) {
        LoadStringA(GetModuleHandleA(nullptr), static_cast<UINT>(textId), text, kTextSize);
    }
    return text;
}

// As in " ( Album  12 - Track  3 )".
std::string Title(GroupId group, TrackNo track) {
    char place[64] = "";
    char part[64] = "";
    if (group > 0) {
        std::snprintf(place, sizeof place, IsAlbum(group) ? " ( Album %3d" : " ( Disc %3d",
                      IsAlbum(group) ? AlbumNumber(group) : group);
        if (track > 0) {
            std::snprintf(part, sizeof part, " - Track %2d", track);
        }
    }
    return group > 0 ? std::string(place) + part + " )" : "";
}

}  // namespace

void MessageLine::Attach(HWND dialog, int controlId) {
    hDlg = dialog;
    id = controlId;
}

void MessageLine::Set(int textId, GroupId group, TrackNo track) {
    assert(group <= kGroups && track <= kTracks);
    lineTextId = textId;
    lineGroup = group;
    lineTrack = track;
    if (!lineDirty) {
        lineDirty = SetTimer(hDlg, kTimer, USER_TIMER_MINIMUM, nullptr) != 0;
    }
}

void MessageLine::OnTimer() {
    KillTimer(hDlg, kTimer);
    lineDirty = false;
    if (lineTextId < 0) {
        return;
    }
    const std::string text = Text(lineTextId) + Title(lineGroup, lineTrack);
    HWND control = GetDlgItem(hDlg, id);
    SendMessageA(control, WM_SETREDRAW, FALSE, 0);
    SetWindowTextA(control, text.c_str());
    SendMessageA(control, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(control, nullptr, TRUE);
}
