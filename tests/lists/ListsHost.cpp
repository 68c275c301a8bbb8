#include "ListsHost.h"

#include <gtest/gtest.h>

#include <cstring>

#include "Harness.h"
#include "MessageLog.h"
#include "PaneRequests.h"
#include "resource.h"

namespace {

ListsHost* host = nullptr;

constexpr int kListTop = 40;
constexpr int kListLeft = 2;

CTitleList* ListOf(UINT id) {
    return id == IDC_GROUP_LIST   ? static_cast<CTitleList*>(&host->groupList)
           : id == IDC_TRACK_LIST ? &host->trackList
                                  : nullptr;
}

}  // namespace

LOGFONTA FontOf(HWND list) {
    LOGFONTA font = {};
    GetObjectA(reinterpret_cast<HFONT>(SendMessageA(list, WM_GETFONT, 0, 0)), sizeof font, &font);
    return font;
}

RECT RowOf(HWND list, int row) {
    RECT rect = {};
    SendMessageA(list, LB_GETITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&rect));
    return rect;
}

RECT PlaceOf(HWND window) {
    RECT place = {};
    GetWindowRect(window, &place);
    return place;
}

bool TurnWheel(HWND list, HWND over, int turn) {
    const RECT place = PlaceOf(over);
    SendMessageA(list, WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(turn)),
                 MAKELPARAM(static_cast<WORD>(place.left + 40), static_cast<WORD>(place.top + 40)));
    const bool isTurning = KillTimer(list, kTurnTimer) != FALSE;
    EXPECT_TRUE(PumpAll());
    return isTurning;
}

int TextWidth(HWND list, const char* text) {
    HDC dc = GetDC(list);
    SelectObject(dc, reinterpret_cast<HGDIOBJ>(SendMessageA(list, WM_GETFONT, 0, 0)));
    SIZE size = {};
    GetTextExtentPoint32A(dc, text, static_cast<int>(std::strlen(text)), &size);
    ReleaseDC(list, dc);
    return size.cx;
}

ListsHost::ListsHost() {
    host = this;
    main = MakeTestWindow("main", WS_OVERLAPPEDWINDOW, nullptr, 600, 400);
    pane = CreateDialogParamA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(IDD_PANE), main, PaneProc, 0);
    RECT client = {};
    GetClientRect(main, &client);
    MoveWindow(pane, 0, 0, client.right, client.bottom, TRUE);
    ShowWindow(pane, SW_SHOW);
    for (CTitleList* list : {static_cast<CTitleList*>(&groupList), static_cast<CTitleList*>(&trackList)}) {
        EXPECT_EQ(list->StartWorker(), 1);
    }
    EXPECT_EQ(groupList.AttachDlgItem(pane, IDC_GROUP_LIST), 1);
    EXPECT_EQ(trackList.AttachDlgItem(pane, IDC_TRACK_LIST), 1);
    groupList.SetStore(&store);
    trackList.SetStore(&store);
    groupList.ForgetSelection();
    groupList.SetTrackList(&trackList);
    groupList.SetListFont(nullptr);
    trackList.SetListFont(nullptr);
    const int width = (client.right - kListLeft) / 2;
    const int height = client.bottom - kListTop;
    SetWindowPos(Groups(), HWND_TOP, kListLeft, kListTop, width, height, SWP_FRAMECHANGED | SWP_SHOWWINDOW);
    SetWindowPos(Tracks(), HWND_TOP, kListLeft + width - 1, kListTop, width, height, SWP_FRAMECHANGED | SWP_SHOWWINDOW);
    ShowWindow(main, SW_SHOW);
    EXPECT_TRUE(BringForward(main));
    EXPECT_TRUE(PumpAll());
}

ListsHost::~ListsHost() {
    groupList.SetStore(nullptr);
    trackList.SetStore(nullptr);
    groupList.SetTrackList(nullptr);
    DestroyWindow(main);
    host = nullptr;
}

bool ListsHost::Refill(GroupId group) {
    groupList.RequestRefill(group);
    trackList.RequestRefill(group);
    return Settle();
}

// The pane measures each row, which is a moment in the middle.
bool ListsHost::WhileFilling(HWND list, LRESULT rows, const std::function<void()>& action) {
    bool isDone = false;
    onMeasure = [&](HWND measured) {
        if (!isDone && measured == list && SendMessageA(list, LB_GETCOUNT, 0, 0) > rows) {
            isDone = true;
            action();
        }
    };
    PumpUntil([&] { return isDone; });
    onMeasure = nullptr;
    return isDone;
}

bool ListsHost::Settle() {
    // The end of the groups' refill may bring about one of the tracks.
    const auto isStill = [this] { return !groupList.IsRefilling() && !trackList.IsRefilling(); };
    do {
        if (!PumpUntil(isStill) || !PumpAll()) {
            return false;
        }
    } while (!isStill());
    return true;
}

INT_PTR CALLBACK ListsHost::PaneProc(HWND, UINT message, WPARAM wParam, LPARAM lParam) {
    return host != nullptr && host->pane != nullptr ? host->OnPane(message, wParam, lParam) : FALSE;
}

INT_PTR ListsHost::OnPane(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_DRAWITEM: {
            const auto& item = *reinterpret_cast<DRAWITEMSTRUCT*>(lParam);
            SendMessageA(GetDlgItem(pane, static_cast<int>(item.CtlID)), WM_DRAWITEM, 0, lParam);
            return FALSE;
        }
        case WM_MEASUREITEM: {
            auto* item = reinterpret_cast<MEASUREITEMSTRUCT*>(lParam);
            ListOf(item->CtlID)->OnMeasureItem(item);
            if (onMeasure) {
                onMeasure(GetDlgItem(pane, static_cast<int>(item->CtlID)));
            }
            return TRUE;
        }
        case WM_COMMAND:
            if (CTitleList* list = ListOf(LOWORD(wParam)); list != nullptr && HIWORD(wParam) == LBN_SELCHANGE) {
                list->OnSelChange();
                return TRUE;
            }
            return FALSE;
        case WM_USER:
            requests.push_back({wParam, lParam});
            if (wParam == UC_GROUP_CHANGED && fillsTracks) {
                trackList.RequestRefill(static_cast<GroupId>(lParam));
            }
            return TRUE;
        default: return FALSE;
    }
}
