// Fills the group list with all of its 1998 rows and steps through them by the step arrow, and prints how long that takes.
//
//   refill      for run, which puts both platforms side by side: on the layer, and as a Windows program
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <vector>

#include "Harness.h"
#include "ListsHost.h"
#include "Shared.h"
#include "Watch.h"

namespace {

constexpr int kRounds = 11;
constexpr UINT kPulse = WM_USER + 40;
constexpr DWORD kPulseMs = 2;

struct Pulse {
    HWND window;
    Shared<int> isOver;
    Shared<int> isOnItsWay;
};

// Posts a message as soon as the one before was taken: how long one waits is how long the user's thread was busy.
DWORD WINAPI Beat(LPVOID parameter) {
    auto& pulse = *static_cast<Pulse*>(parameter);
    while (pulse.isOver == 0) {
        if (pulse.isOnItsWay == 0) {
            pulse.isOnItsWay = 1;
            PostMessageA(pulse.window, kPulse, 0, 0);
        }
        Sleep(kPulseMs);
    }
    return 0;
}

// Serves messages until nothing is asked for and everything is painted; the longest time between two of the pulses' turns.
double ServeRefill(ListsHost& host, Pulse& pulse) {
    double longest = 0;
    Watch sinceTurn;
    MSG message;
    bool isPainted = false;
    while (!isPainted) {
        if (!PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
            isPainted = !host.groupList.IsRefilling();
            if (!isPainted) {
                MsgWaitForMultipleObjects(0, nullptr, FALSE, 1, QS_ALLINPUT);
            }
            longest = std::max(longest, sinceTurn.Milliseconds());
            sinceTurn = Watch();
        } else if (message.message == kPulse) {
            longest = std::max(longest, sinceTurn.Milliseconds());
            sinceTurn = Watch();
            pulse.isOnItsWay = 0;
        } else {
            DispatchMessageA(&message);
        }
    }
    return longest;
}

void MeasureRefill(ListsHost& host) {
    Pulse pulse;
    pulse.window = host.Main();
    HANDLE beat = CreateThread(nullptr, 0, Beat, &pulse, 0, nullptr);
    std::vector<double> times;
    double longest = 0;
    for (int round = 0; round < kRounds; ++round) {
        const Watch watch;
        host.groupList.RequestRefill(1 + round);
        longest = std::max(longest, ServeRefill(host, pulse));
        times.push_back(watch.Milliseconds());
        PumpAll();
    }
    pulse.isOver = 1;
    WaitForSingleObject(beat, INFINITE);
    CloseHandle(beat);
    std::printf("refill %.1f\nblocked %.1f\n", Median(times), longest);
}

// Each step with its painting, until the arrow has come to the last row.
void MeasureSteps(ListsHost& host) {
    host.groupList.RequestRefill(1);
    host.Settle();
    RECT client = {};
    GetClientRect(host.Groups(), &client);
    const LPARAM place = MAKELPARAM(static_cast<WORD>(client.right / 2), static_cast<WORD>(client.bottom + 10));
    SetFocus(host.Tracks());
    SendMessageA(host.Groups(), WM_LBUTTONDOWN, MK_LBUTTON, place);
    // Some list boxes select a row by that press.
    SendMessageA(host.Groups(), LB_SETCURSEL, 0, 0);
    std::vector<double> times;
    for (int ticks = 0; ticks < 10 * kGroups && SelectedRowOf(host.Groups()) < kGroups - 1; ++ticks) {
        const int before = SelectedRowOf(host.Groups());
        const Watch watch;
        SendMessageA(host.Groups(), WM_TIMER, 0, 0);
        MSG message;
        while (PeekMessageA(&message, host.Pane(), WM_COMMAND, WM_COMMAND, PM_REMOVE) ||
               PeekMessageA(&message, host.Groups(), LB_SETCURSEL, LB_SETCURSEL, PM_REMOVE)) {
            DispatchMessageA(&message);
        }
        UpdateWindow(host.Groups());
        UpdateWindow(host.Tracks());
        if (SelectedRowOf(host.Groups()) != before) {
            times.push_back(watch.Milliseconds());
        }
    }
    SendMessageA(host.Groups(), WM_LBUTTONUP, 0, place);
    EXPECT_GE(times.size(), static_cast<std::size_t>(kGroups) - 2);
    if (!times.empty()) {
        std::printf("step %.2f\nslowest-step %.1f\n", Median(times), *std::max_element(times.begin(), times.end()));
    }
}

}  // namespace

TEST(Lists, AllRows) {
    ListsHost host;
    for (int number = 1; number <= kDiscs; ++number) {
        host.AddDisc(number, 0);
        host.AddAlbum(number, 0);
    }
    ASSERT_TRUE(host.Refill(1));
    ASSERT_EQ(SendMessageA(host.Groups(), LB_GETCOUNT, 0, 0), kGroups);
    MeasureRefill(host);
    MeasureSteps(host);
}
