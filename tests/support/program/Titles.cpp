#include "Titles.h"

#include <algorithm>
#include <cstdio>

namespace {

void AddGroup(TitleStore& store, GroupId group, const char* kind, int number, int tracks) {
    char title[kTitleSize];
    std::snprintf(title, sizeof title, "%s %d", kind, number);
    store.StoreReceived(group, 0, title);
    for (int track = 1; track <= tracks; ++track) {
        std::snprintf(title, sizeof title, "%s %d, Track %d", kind, number, track);
        store.StoreReceived(group, track, title);
    }
}

}  // namespace

void AddDisc(TitleStore& store, int disc, int tracks) {
    AddGroup(store, disc, "Disc", disc, tracks);
}

void AddAlbum(TitleStore& store, int album, int tracks) {
    AddGroup(store, AlbumGroup(album), "Album", album, tracks);
}

std::string TitleOf(const TitleStore& store, GroupId group, TrackNo track) {
    char title[kTitleSize] = "(none)";
    store.GetTitle(group, track, title);
    return title;
}

std::string RowsOf(HWND list) {
    std::string rows;
    const LRESULT count = SendMessageA(list, LB_GETCOUNT, 0, 0);
    for (LRESULT row = 0; row < count; ++row) {
        char text[256] = "";
        SendMessageA(list, LB_GETTEXT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(text));
        rows += text;
        rows += '\n';
    }
    std::replace(rows.begin(), rows.end(), '\t', '|');
    return rows;
}

int SelectedRowOf(HWND list) {
    return static_cast<int>(SendMessageA(list, LB_GETCURSEL, 0, 0));
}
