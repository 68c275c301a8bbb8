// The line above the lists that tells what is going on with the main unit.
#pragma once

#include <windows.h>

#include "TitleNumbers.h"

// Setting it never waits: it is drawn when the thread of the windows has nothing else to do. All on that thread.
class MessageLine {
public:
    static constexpr int kEmpty = 0;
    // The dialog hands on its WM_TIMER of this id.
    static constexpr UINT_PTR kTimer = 1;

    // Shows nothing of its own until it is first set.
    void Attach(HWND dialog, int controlId);

    // A text by its string id, a negative one draws nothing; and which title it is about: 0 or below for none.
    void Set(int textId, GroupId group, TrackNo track);
    // Another text about the same title.
    void SetText(int textId) { Set(textId, lineGroup, lineTrack); }

    void OnTimer();

private:
    HWND hDlg = nullptr;
    int id = 0;
    int lineTextId = kEmpty;
    GroupId lineGroup = -1;
    TrackNo lineTrack = -1;
    bool lineDirty = false;
};
