// Both lists in a dialog of their own, on a store that the test fills: what the pane does for them, and a log of what they
// tell it.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "CListLeft.h"
#include "CListRight.h"
#include "TitleStore.h"
#include "Titles.h"

// Of a list: its font, how wide a text is in it, a row in the client area.
LOGFONTA FontOf(HWND list);
int TextWidth(HWND list, const char* text);
RECT RowOf(HWND list, int row);
RECT PlaceOf(HWND window);
// Tells a list of the wheel, with the pointer over that window. True if the list waits for the end of the turn, which comes
// with the timer kTurnTimer, when the test says so.
bool TurnWheel(HWND list, HWND over, int turn);
inline constexpr UINT_PTR kTurnTimer = 1;

// A window of 600 by 400 pixels, in front, with the pane's dialog in it and the lists where the pane has them. On the test's
// own thread.
class ListsHost {
public:
    ListsHost();
    ~ListsHost();
    ListsHost(const ListsHost&) = delete;
    ListsHost& operator=(const ListsHost&) = delete;

    void AddDisc(int disc, int tracks) { ::AddDisc(store, disc, tracks); }
    void AddAlbum(int album, int tracks) { ::AddAlbum(store, album, tracks); }
    // Has both lists filled anew, with that group selected, and waits until the rows stand and are painted.
    bool Refill(GroupId group);
    // Does something in the middle of the refill that is asked for, as soon as the list has more than so many rows. False if
    // that never comes about.
    bool WhileFilling(HWND list, LRESULT rows, const std::function<void()>& action);
    // Waits until no refill is asked for and nothing is left to do.
    bool Settle();

    // A list with its control, for what both lists do.
    struct Side {
        CTitleList& list;
        HWND window;
    };
    Side GroupSide() { return {groupList, Groups()}; }
    Side TrackSide() { return {trackList, Tracks()}; }

    HWND Main() const { return main; }
    HWND Pane() const { return pane; }
    HWND Groups() const { return GetDlgItem(pane, 1000); }
    HWND Tracks() const { return GetDlgItem(pane, 1001); }

    TitleStore store;
    CListLeft groupList;
    CListRight trackList;

    struct Request {
        WPARAM code;
        LPARAM argument;
    };
    std::vector<Request> requests;  // WM_USER to the pane, in its order
    bool fillsTracks = true;        // a change of group is answered with a refill of the tracks, as when they are there

private:
    static INT_PTR CALLBACK PaneProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
    INT_PTR OnPane(UINT message, WPARAM wParam, LPARAM lParam);

    HWND main;
    HWND pane = nullptr;
    std::function<void(HWND list)> onMeasure;  // a row of that list is measured
};
