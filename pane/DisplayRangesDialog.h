// The box in which the user says which Discs, Albums and Tracks are shown and fetched.
#pragma once

#include <windows.h>

#include "TitleNumbers.h"

// Only checks and hands back six numbers. On the thread of the windows.
class DisplayRangesDialog {
public:
    DisplayRangesDialog() = default;
    virtual ~DisplayRangesDialog() = default;
    DisplayRangesDialog(const DisplayRangesDialog&) = delete;
    DisplayRangesDialog& operator=(const DisplayRangesDialog&) = delete;

    // What the box begins with.
    void SetRanges(const DisplayRanges& newRanges) { ranges = newRanges; }
    // As they were set, or what the user has entered once Run has given 1.
    const DisplayRanges& GetRanges() const { return ranges; }

    // Stands until it is ended: 1 by OK with numbers that are in order, 0 otherwise.
    int Run(HWND owner);

private:
    // The two fields of one kind.
    struct Pair {
        int from;
        int to;
    };

    static INT_PTR CALLBACK DialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
    void OnInitDialog(HWND dialog);
    void OnOk();
    int Number(int id) const;
    bool IsProper(const Pair& pair, int highest) const;
    bool IsOff(const Pair& pair) const;
    void Refuse(const Pair& pair) const;

    HWND hDlg = nullptr;
    DisplayRanges ranges;
};
