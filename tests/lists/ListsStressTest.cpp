// Refills, changes of group, edits and titles that arrive, all at random and at once. The same number gives the same
// actions; TESSELIA_STRESS_SEED chooses another one and TESSELIA_STRESS_SECONDS how long it goes on.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <random>
#include <string>

#include "Harness.h"
#include "ListsHost.h"
#include "MessageLog.h"
#include "Shared.h"

namespace {

constexpr int kSomeDiscs = 60;
constexpr int kSomeAlbums = 20;
constexpr int kSomeTracks = 12;
constexpr UINT kAct = WM_USER + 30;

unsigned Number(const char* name, unsigned otherwise) {
    const char* text = std::getenv(name);
    return text == nullptr ? otherwise : static_cast<unsigned>(std::strtoul(text, nullptr, 10));
}

// What a thread draws its numbers from.
class Dice {
public:
    explicit Dice(unsigned seed) : engine(seed) {}
    int Throw(int sides) { return static_cast<int>(engine() % static_cast<unsigned>(sides)); }
    GroupId Group() { return Throw(4) == 0 ? AlbumGroup(1 + Throw(kSomeAlbums)) : 1 + Throw(kSomeDiscs); }

private:
    std::mt19937 engine;
};

struct Stress {
    ListsHost host;
    Dice dice{1};  // of the user
    unsigned seed = 1;
    Shared<int> isOver;
    Shared<int> threads;
    CriticalSection typing;  // held while an edit is open, so that no title comes over it
    // What the user typed into it, for each title by its row's value.
    std::map<LPARAM, std::string> typed;
    int edits = 0;
    int refills = 0;
};

Stress* stress = nullptr;

// Whether the main unit may come to have no title of that number. Nothing can be typed into one that is gone.
bool MayVanish(TrackNo track) {
    return track > 0 && track % 2 == 0;
}

// The titles as they come from the line; what the user has edited stays his.
DWORD WINAPI Receive(LPVOID) {
    Dice dice(stress->seed + 1);
    while (stress->isOver == 0) {
        const GroupId group = dice.Group();
        const TrackNo track = dice.Throw(kSomeTracks + 1);
        char title[kTitleSize];
        std::snprintf(title, sizeof title, "Received & %d", dice.Throw(1000));
        {
            LockGuard guard(stress->typing);
            if (stress->host.store.GetState(group, track) != TS_EDITED) {
                stress->host.store.StoreReceived(group, track, MayVanish(track) && dice.Throw(8) == 0 ? nullptr : title);
            }
        }
        if (dice.Throw(50) == 0) {
            Sleep(1);
        }
    }
    stress->threads.Add(-1);
    return 0;
}

// Who asks for something in between, as the link does by its events.
DWORD WINAPI Ask(LPVOID) {
    Dice dice(stress->seed + 2);
    while (stress->isOver == 0) {
        PostMessageA(stress->host.Main(), kAct, static_cast<WPARAM>(dice.Throw(2)), dice.Group());
        Sleep(static_cast<DWORD>(dice.Throw(4)));
    }
    stress->threads.Add(-1);
    return 0;
}

bool OnAct(HWND, UINT message, WPARAM wParam, LPARAM lParam, LRESULT&) {
    if (message != kAct) {
        return false;
    }
    CTitleList& list = wParam == 0 ? static_cast<CTitleList&>(stress->host.groupList) : stress->host.trackList;
    list.RequestRefill(static_cast<GroupId>(lParam));
    ++stress->refills;
    return true;
}

// Opens the editor, types, and ends the edit in one way or another.
void Type(CTitleList& list) {
    Stress& all = *stress;
    LockGuard guard(all.typing);
    if (list.BeginEdit() != 1) {
        return;
    }
    char text[kTitleSize];
    std::snprintf(text, sizeof text, "Typed & %d", ++all.edits);
    SetWindowTextA(GetFocus(), text);
    GroupId group = 0;
    TrackNo track = 0;
    if (list.GetSelectedIds(&group, &track) == 1 && list.EndEdit() == 1 && !MayVanish(track)) {
        EXPECT_EQ(TitleOf(all.host.store, group, track), text);
        all.typed[MAKELPARAM(static_cast<WORD>(track), static_cast<WORD>(group))] = text;
    }
}

void Act() {
    Stress& all = *stress;
    CTitleList& list = all.dice.Throw(2) == 0 ? static_cast<CTitleList&>(all.host.groupList) : all.host.trackList;
    HWND control = &list == &all.host.trackList ? all.host.Tracks() : all.host.Groups();
    switch (all.dice.Throw(8)) {
        case 0: list.RequestRefill(all.dice.Group()); break;
        case 1: {
            DisplayRanges ranges;
            ranges.discFrom = 1 + all.dice.Throw(5);
            ranges.discTo = ranges.discFrom + all.dice.Throw(kSomeDiscs);
            ranges.trackTo = 1 + all.dice.Throw(kSomeTracks);
            list.SetDisplayRanges(ranges);
            break;
        }
        case 2:
        case 3:
        case 4:
            SetFocus(control);
            SendMessageA(control, WM_KEYDOWN, all.dice.Throw(2) == 0 ? VK_DOWN : VK_UP, 0);
            break;
        case 5: Type(list); break;
        case 6: list.ClearRows(); break;
        default: RedrawWindow(all.host.Pane(), nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME | RDW_ALLCHILDREN); break;
    }
}

}  // namespace

TEST(ListsStressTest, TheRowsAreTheStoresInTheEnd) {
    Stress all;
    stress = &all;
    all.seed = Number("TESSELIA_STRESS_SEED", 1);
    all.dice = Dice(all.seed);
    for (int disc = 1; disc <= kSomeDiscs; ++disc) {
        all.host.AddDisc(disc, kSomeTracks);
    }
    for (int album = 1; album <= kSomeAlbums; ++album) {
        all.host.AddAlbum(album, kSomeTracks);
    }
    SetMessageHook(OnAct);
    for (const LPTHREAD_START_ROUTINE procedure : {Receive, Receive, Ask}) {
        HANDLE thread = CreateThread(nullptr, 0, procedure, nullptr, 0, nullptr);
        ASSERT_NE(thread, nullptr);
        all.threads.Add(1);
        CloseHandle(thread);
    }
    const DWORD duration = Number("TESSELIA_STRESS_SECONDS", 3) * 1000;
    const DWORD begin = GetTickCount();
    int actions = 0;
    while (GetTickCount() - begin < duration) {
        Act();
        ++actions;
        MSG message;
        for (int served = 0; served < 20 && PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE); ++served) {
            DispatchMessageA(&message);
        }
    }
    all.isOver = 1;
    ASSERT_TRUE(PumpUntil([&] { return all.threads == 0; }));
    // What was asked for last may still be on its way.
    ASSERT_TRUE(PumpAll());
    EXPECT_GT(actions, 100);
    EXPECT_GT(all.refills, 100);
    EXPECT_GT(all.typed.size(), 2U);

    all.host.groupList.EndEdit();
    all.host.trackList.EndEdit();
    for (CTitleList* list : {static_cast<CTitleList*>(&all.host.groupList), static_cast<CTitleList*>(&all.host.trackList)}) {
        list->SetDisplayRanges(DisplayRanges());
    }
    ASSERT_TRUE(all.host.Refill(1));
    std::string groups;
    std::string tracks;
    for (GroupId group = 1; group <= AlbumGroup(kSomeAlbums); ++group) {
        if (all.host.store.GetState(group, 0) > 0) {
            groups += std::string(IsAlbum(group) ? "Alb|" : "Dsc|") +
                      std::to_string(IsAlbum(group) ? AlbumNumber(group) : group) + "|" + TitleOf(all.host.store, group, 0) +
                      "\n";
        }
    }
    GroupId shown = 0;
    ASSERT_EQ(all.host.groupList.GetSelectedIds(&shown, nullptr), 1);
    for (TrackNo track = 1; track <= kSomeTracks; ++track) {
        if (all.host.store.GetState(shown, track) > 0) {
            tracks += "Tr|" + std::to_string(track) + "|" + TitleOf(all.host.store, shown, track) + "\n";
        }
    }
    const auto asOnRows = [](const std::string& text) {
        std::string doubled;
        for (const char letter : text) {
            doubled.append(letter == '&' ? 2U : 1U, letter);
        }
        return doubled;
    };
    EXPECT_EQ(ListsHost::Rows(all.host.Groups()), asOnRows(groups));
    EXPECT_EQ(ListsHost::Rows(all.host.Tracks()), asOnRows(tracks));
    for (const auto& [value, text] : all.typed) {
        EXPECT_EQ(TitleOf(all.host.store, HIWORD(value), LOWORD(value)), text)
            << "group " << HIWORD(value) << " track " << LOWORD(value);
    }
    SetMessageHook(nullptr);
}
