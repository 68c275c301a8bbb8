#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <utility>

#include "Run.h"
#include "ThreadTools.h"

namespace {

TEST(Waiting, ASignalIsKeptOnceOrStays) {
    RunProgram([] {
        const Event once(false, true);
        SetEvent(once.handle);
        EXPECT_EQ(WaitForSingleObject(once.handle, INFINITE), WAIT_OBJECT_0);
        EXPECT_EQ(WaitForSingleObject(once.handle, 0), WAIT_TIMEOUT);
        const Event stays(true);
        EXPECT_EQ(WaitForSingleObject(stays.handle, 0), WAIT_TIMEOUT);
        SetEvent(stays.handle);
        EXPECT_EQ(WaitForSingleObject(stays.handle, INFINITE), WAIT_OBJECT_0);
        EXPECT_EQ(WaitForSingleObject(stays.handle, 0), WAIT_OBJECT_0);
    });
}

TEST(Waiting, ASignalLetsOneThreadGoOrAll) {
    for (const bool manualReset : {false, true}) {
        RunProgram([manualReset] {
            const Event event(manualReset);
            Count waiting;
            Count released;
            const auto wait = [&] {
                waiting.Add();
                EXPECT_EQ(WaitForSingleObject(event.handle, 10'000), WAIT_OBJECT_0);
                released.Add();
            };
            {
                const Thread a(wait);
                const Thread b(wait);
                const Thread c(wait);
                EXPECT_TRUE(waiting.Reaches(3));
                for (int i = 1; i <= (manualReset ? 1 : 3); ++i) {
                    EXPECT_EQ(released.Value(), i - 1);
                    SetEvent(event.handle);
                    EXPECT_TRUE(released.Reaches(i));
                }
            }
            // A signal that had let two go would be left over.
            EXPECT_EQ(WaitForSingleObject(event.handle, 0), manualReset ? WAIT_OBJECT_0 : WAIT_TIMEOUT);
        });
    }
}

TEST(Waiting, TheFirstOfSeveralWinsAndOnlyItIsTaken) {
    RunProgram([] {
        constexpr DWORD kThread = 30;
        const Event leave(false);
        const Thread thread([&] { WaitForSingleObject(leave.handle, INFINITE); });
        std::array<HANDLE, MAXIMUM_WAIT_OBJECTS> handles;
        for (HANDLE& handle : handles) {
            handle = CreateEventA(nullptr, FALSE, FALSE, nullptr);
        }
        CloseHandle(std::exchange(handles[kThread], thread.handle));
        const auto wait = [&](DWORD ms) { return WaitForMultipleObjects(64, handles.data(), FALSE, ms); };
        EXPECT_EQ(wait(1), WAIT_TIMEOUT);
        SetEvent(handles[63]);
        SetEvent(handles[5]);
        EXPECT_EQ(wait(INFINITE), WAIT_OBJECT_0 + 5);
        EXPECT_EQ(wait(INFINITE), WAIT_OBJECT_0 + 63);
        {
            const Thread setter([&] {
                Sleep(1);
                SetEvent(handles[63]);
            });
            EXPECT_EQ(wait(INFINITE), WAIT_OBJECT_0 + 63);
        }
        // The wait that has ended takes no signal any more.
        SetEvent(handles[5]);
        EXPECT_EQ(WaitForSingleObject(handles[5], 0), WAIT_OBJECT_0);
        EXPECT_EQ(wait(0), WAIT_TIMEOUT);
        SetEvent(leave.handle);
        EXPECT_EQ(wait(INFINITE), WAIT_OBJECT_0 + kThread);
        EXPECT_EQ(wait(0), WAIT_OBJECT_0 + kThread);
        for (HANDLE handle : handles) {
            if (handle != thread.handle) {
                CloseHandle(handle);
            }
        }
    });
}

TEST(Waiting, AWaitSurvivesTheClosingOfItsHandle) {
    RunProgram([] {
        const HANDLE event = CreateEventA(nullptr, FALSE, FALSE, nullptr);
        Count waiting;
        DWORD result = WAIT_OBJECT_0;
        {
            const Thread waiter([&] {
                waiting.Add();
                result = WaitForSingleObject(event, 50);
            });
            EXPECT_TRUE(waiting.Reaches(1));
            Sleep(1);
            CloseHandle(event);
        }
        // The handle may be gone before the wait begins, too.
        EXPECT_TRUE(result == WAIT_TIMEOUT || result == WAIT_FAILED) << result;
    });
}

TEST(Waiting, SignalsThatMeetTimeoutsAreNeitherLostNorDoubled) {
    RunProgram([] {
        constexpr int kRounds = 1000;
        const Event items(false);
        const Event others(false);
        Shared<bool> stop = false;
        Count taken;
        const auto take = [&] {
            const HANDLE handles[] = {others.handle, items.handle};
            for (DWORD i = 0; !stop; ++i) {
                const DWORD result = WaitForMultipleObjects(2, handles, FALSE, i % 2);
                EXPECT_NE(result, WAIT_FAILED);
                if (result != WAIT_TIMEOUT) {
                    taken.Add();
                }
            }
        };
        {
            const Thread a(take);
            const Thread b(take);
            const Thread c(take);
            for (int i = 1; i <= kRounds && taken.Reaches(2 * (i - 1)); ++i) {
                SetEvent(items.handle);
                SetEvent(others.handle);
            }
            EXPECT_TRUE(taken.Reaches(2 * kRounds));
            stop = true;
        }
        EXPECT_EQ(taken.Value(), 2 * kRounds);
    });
}

}  // namespace
