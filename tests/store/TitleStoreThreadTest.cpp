// The store under all its threads at once: no torn title, no table freed under a reader.
#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <cstring>

#include "TitleStore.h"

namespace {

constexpr int kReadsWanted = 20000;
constexpr int kReadsAtMost = 50'000'000;
const GroupId kBusyGroups[] = {1, 2, 1000};

// A title tells its own length by its letter ('a' once, 'b' twice, ...), so a mixture of two is never a title.
void MakeTitle(int number, char* text) {
    const int length = number % 26 + 1;
    std::memset(text, 'a' + length - 1, static_cast<std::size_t>(length));
    text[length] = '\0';
}

bool IsWhole(const char* text) {
    const std::size_t length = strnlen(text, kTitleSize);
    if (length != static_cast<std::size_t>(text[0] - 'a' + 1)) {
        return false;
    }
    for (std::size_t i = 0; i < length; ++i) {
        if (text[i] != text[0]) {
            return false;
        }
    }
    return true;
}

struct Arena {
    TitleStore store;
    std::atomic<bool> stop{false};
    std::atomic<int> undone{0};
    std::atomic<int> torn{0};
};

DWORD WINAPI Receiver(LPVOID parameter) {
    auto& arena = *static_cast<Arena*>(parameter);
    char text[kTitleSize];
    for (int i = 0; !arena.stop; ++i) {
        MakeTitle(i, text);
        arena.store.StoreReceived(kBusyGroups[i % 3], 0, text);
        arena.store.StoreReceived(kBusyGroups[i % 3], i % 4 + 1, text);
        arena.store.NoteSent(kBusyGroups[i % 3], i % 5, text);
    }
    return 0;
}

DWORD WINAPI Editor(LPVOID parameter) {
    auto& arena = *static_cast<Arena*>(parameter);
    char text[kTitleSize];
    for (int i = 0; !arena.stop; ++i) {
        MakeTitle(i, text);
        arena.store.EditTitle(kBusyGroups[i % 2], i % 5, text);
        if (i % 3 == 0 && arena.store.UndoEdit(nullptr, nullptr, text)) {
            arena.torn += IsWhole(text) ? 0 : 1;
            ++arena.undone;
        }
    }
    return 0;
}

DWORD WINAPI Forgetter(LPVOID parameter) {
    auto& arena = *static_cast<Arena*>(parameter);
    char text[kTitleSize];
    for (int i = 0; !arena.stop; ++i) {
        MakeTitle(i, text);
        arena.store.ForgetSent(kBusyGroups[i % 2], i % 5);
        arena.store.DeleteTitle(kBusyGroups[i % 2], i % 5);
        arena.store.DropAlbumTracks(1000);
        if (i % 8 == 0) {
            arena.store.ClearGroup(kBusyGroups[i % 3]);
        }
        if (i % 512 == 0) {
            arena.store.ResetAll();
        }
    }
    return 0;
}

TEST(TitleStoreThreadTest, TitlesStayWhole) {
    Arena arena;
    HANDLE threads[] = {CreateThread(nullptr, 0, Receiver, &arena, 0, nullptr),
                        CreateThread(nullptr, 0, Editor, &arena, 0, nullptr),
                        CreateThread(nullptr, 0, Forgetter, &arena, 0, nullptr)};
    int reads = 0;
    char text[kTitleSize];
    for (int i = 0; i < kReadsAtMost && (reads < kReadsWanted || arena.undone == 0); ++i) {
        const GroupId group = kBusyGroups[i % 3];
        if (arena.store.GetTitle(group, i % 5, text)) {
            arena.torn += IsWhole(text) ? 0 : 1;
            ++reads;
        }
        const int count = arena.store.GetTrackCount(group);
        arena.torn += count < -1 || count > 4 ? 1 : 0;
    }
    arena.stop = true;
    for (HANDLE thread : threads) {
        ASSERT_NE(thread, nullptr);
        EXPECT_EQ(WaitForSingleObject(thread, 60000), WAIT_OBJECT_0);
        CloseHandle(thread);
    }
    EXPECT_GE(reads, kReadsWanted);
    EXPECT_GT(arena.undone, 0);
    EXPECT_EQ(arena.torn, 0);
}

}  // namespace
