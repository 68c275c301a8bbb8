// Refills, changes of group, edits and titles that arrive, all at random and at once.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>

#include "Harness.h"
#include "ListsHost.h"
#include "Shared.h"

namespace {

constexpr int kSomeDiscs = 60;
constexpr int kSomeAlbums = 20;
constexpr int kSomeTracks = 12;
constexpr DWORD kDurationMs = 3000;

// What a thread draws its numbers from.
struct Dice {
    int Throw(int sides) { return static_cast<int>(engine() % static_cast<unsigned>(sides)); }
    GroupId Group() { return Throw(4) == 0 ? AlbumGroup(1 + Throw(kSomeAlbums)) : 1 + Throw(kSomeDiscs); }
    std::mt19937 engine;
};

struct Stress {
    ListsHost host;
    Dice dice;  // of the user
    Shared<int> isOver;
    Shared<int> threads;
    CriticalSection typing;  // held while an edit is open, so that no title comes over it
    // What the user typed into it, for each title by its row's value.
    std::map<LPARAM, std::string> typed;
    int edits = 0;
};

Stress* stress = nullptr;

// Whether the main unit may come to have no title of that number. Nothing can be typed into one that is gone.
bool MayVanish(TrackNo track) {
    return track > 0 && track % 2 == 0;
}

// The titles as they come from the line. What the user has edited stays his.
DWORD WINAPI Receive(LPVOID number) {
    Dice dice{std::mt19937(static_cast<unsigned>(reinterpret_cast<ULONG_PTR>(number)))};
    while (stress->isOver == 0) {
        const GroupId group = dice.Group();
        const TrackNo track = dice.Throw(kSomeTracks + 1);
        const std::string title = "Received " + std::to_string(dice.Throw(1000));
        {
            LockGuard guard(stress->typing);
            if (stress->host.store.GetState(group, track) != TS_EDITED) {
                stress->host.store.StoreReceived(group, track,
                                                 MayVanish(track) && dice.Throw(8) == 0 ? nullptr : title.c_str());
            }
        }
        if (dice.Throw(50) == 0) {
            Sleep(1);
        }
    }
    stress->threads.Add(-1);
    return 0;
}

// Opens the editor, types, and ends the edit.
void Type(CTitleList& list) {
    Stress& all = *stress;
    PumpUntil([&] { return !list.IsRefilling(); }, nullptr, 100);
    LockGuard guard(all.typing);
    if (list.BeginEdit() != 1) {
        return;
    }
    const std::string text = "Typed " + std::to_string(++all.edits);
    SetWindowTextA(GetFocus(), text.c_str());
    GroupId group = 0;
    TrackNo track = 0;
    if (list.GetSelectedIds(&group, &track) == 1 && list.EndEdit() == 1 && !MayVanish(track)) {
        all.typed[MAKELPARAM(static_cast<WORD>(track), static_cast<WORD>(group))] = text;
    }
}

void Act() {
    Dice& dice = stress->dice;
    const auto [list, control] = dice.Throw(2) == 0 ? stress->host.GroupSide() : stress->host.TrackSide();
    switch (dice.Throw(8)) {
        case 0: list.RequestRefill(dice.Group()); break;
        case 1: {
            const int from = 1 + dice.Throw(5);
            list.SetDisplayRanges({.discFrom = from, .discTo = from + dice.Throw(kSomeDiscs), .trackTo = from + 6});
            break;
        }
        case 2: Type(list); break;
        case 3: list.ClearRows(); break;
        case 4: RedrawWindow(stress->host.Pane(), nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME | RDW_ALLCHILDREN); break;
        default: SetFocus(control); SendMessageA(control, WM_KEYDOWN, dice.Throw(2) == 0 ? VK_DOWN : VK_UP, 0);
    }
}

}  // namespace

TEST(ListsStressTest, NothingTypedIsLost) {
    Stress all;
    stress = &all;
    for (int number = 1; number <= kSomeDiscs; ++number) {
        all.host.AddDisc(number, kSomeTracks);
        if (number <= kSomeAlbums) {
            all.host.AddAlbum(number, kSomeTracks);
        }
    }
    for (const ULONG_PTR number : {1U, 2U}) {
        all.threads.Add(1);
        CloseHandle(CreateThread(nullptr, 0, Receive, reinterpret_cast<LPVOID>(number), 0, nullptr));
    }
    const DWORD begin = GetTickCount();
    while (GetTickCount() - begin < kDurationMs) {
        Act();
        MSG message;
        for (int served = 0; served < 20 && PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE); ++served) {
            DispatchMessageA(&message);
        }
    }
    all.isOver = 1;
    // What was asked for last may still be on its way.
    ASSERT_TRUE(PumpUntil([&] { return all.threads == 0; }) && PumpAll());
    EXPECT_FALSE(all.typed.empty());
    for (const auto& [list, window] : {all.host.GroupSide(), all.host.TrackSide()}) {
        list.EndEdit();
        list.SetDisplayRanges(DisplayRanges());
    }
    ASSERT_TRUE(all.host.Refill(1));
    EXPECT_EQ(SendMessageA(all.host.Groups(), LB_GETCOUNT, 0, 0), kSomeDiscs + kSomeAlbums) << "groups stay";
    for (const auto& [value, text] : all.typed) {
        EXPECT_EQ(TitleOf(all.host.store, HIWORD(value), LOWORD(value)), text)
            << "group " << HIWORD(value) << " track " << LOWORD(value);
    }
}
