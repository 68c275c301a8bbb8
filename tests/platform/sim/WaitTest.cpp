// Events, waits with and without a time, the end of threads and their local storage.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <set>
#include <vector>

#include "SimTools.h"
#include "Simulation.h"

namespace {

struct Event {
    explicit Event(bool manualReset, bool signalled = false)
        : handle(CreateEventA(nullptr, manualReset, signalled, nullptr)) {}
    ~Event() { CloseHandle(handle); }
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

    const HANDLE handle;
};

TEST(Wait, AnEventIsTakenOnceOrStays) {
    Simulation simulation({});
    ExpectDone(simulation, [] {
        Event once(false, true);
        EXPECT_EQ(WaitForSingleObject(once.handle, INFINITE), WAIT_OBJECT_0);
        EXPECT_EQ(WaitForSingleObject(once.handle, 0), WAIT_TIMEOUT);

        Event stays(true);
        SetEvent(stays.handle);
        EXPECT_EQ(WaitForSingleObject(stays.handle, 10), WAIT_OBJECT_0);
        EXPECT_EQ(WaitForSingleObject(stays.handle, 10), WAIT_OBJECT_0);
    });
}

// How many of three waiting threads one SetEvent lets go, and that the seed draws the one.
TEST(Wait, AutomaticResetLetsOneGoAndManualAll) {
    for (const bool manual : {false, true}) {
        std::set<int> firsts;
        for (std::uint64_t seed = 1; seed <= 30; ++seed) {
            Simulation simulation({.seed = seed});
            ExpectDone(simulation, [&] {
                Event event(manual);
                std::vector<int> released;
                const auto wait = [&](int number) {
                    if (WaitForSingleObject(event.handle, 1000) == WAIT_OBJECT_0) {
                        released.push_back(number);
                    }
                };
                {
                    Thread a([&] { wait(0); });
                    Thread b([&] { wait(1); });
                    Thread c([&] { wait(2); });
                    Sleep(100);
                    SetEvent(event.handle);
                }
                ASSERT_EQ(released.size(), manual ? 3U : 1U) << "seed " << seed;
                firsts.insert(released.front());
            });
        }
        EXPECT_EQ(firsts.size(), 3U);
    }
}

TEST(Wait, ATimeoutComesAtItsTimeAndASignalBeforeIt) {
    Simulation simulation({.jitterMs = 0});
    ExpectDone(simulation, [&] {
        timeBeginPeriod(1);
        Event event(false);
        EXPECT_EQ(WaitForSingleObject(event.handle, 25), WAIT_TIMEOUT);
        EXPECT_EQ(simulation.Now(), 25 * kMs);
        Thread setter([&] {
            Sleep(10);
            SetEvent(event.handle);
        });
        EXPECT_EQ(WaitForSingleObject(event.handle, 1000), WAIT_OBJECT_0);
        EXPECT_EQ(simulation.Now(), 35 * kMs);
        // The timer of the wait that has ended must not end this one.
        EXPECT_EQ(WaitForSingleObject(event.handle, 5000), WAIT_TIMEOUT);
        EXPECT_EQ(simulation.Now(), 5035 * kMs);
    });
}

TEST(Wait, OneOfSeveralEndsAWait) {
    Simulation simulation({});
    ExpectDone(simulation, [] {
        Event first(false);
        Event second(false);
        Thread thread([] { Sleep(200); });
        const HANDLE all[] = {first.handle, thread.handle, second.handle};
        EXPECT_EQ(WaitForMultipleObjects(3, all, FALSE, 1), WAIT_TIMEOUT);
        SetEvent(second.handle);
        SetEvent(first.handle);
        EXPECT_EQ(WaitForMultipleObjects(3, all, FALSE, INFINITE), WAIT_OBJECT_0);
        EXPECT_EQ(WaitForMultipleObjects(3, all, FALSE, INFINITE), WAIT_OBJECT_0 + 2);
        EXPECT_EQ(WaitForMultipleObjects(3, all, FALSE, INFINITE), WAIT_OBJECT_0 + 1);
        Thread setter([&] {
            Sleep(10);
            SetEvent(second.handle);
        });
        const HANDLE events[] = {first.handle, second.handle};
        EXPECT_EQ(WaitForMultipleObjects(2, events, FALSE, INFINITE), WAIT_OBJECT_0 + 1);
        // The ended wait is on nobody's list any more: this one is kept for the next who asks.
        SetEvent(first.handle);
        EXPECT_EQ(WaitForSingleObject(first.handle, 0), WAIT_OBJECT_0);
    });
}

TEST(Wait, AHandleMayBeClosedWhileAThreadWaits) {
    Simulation simulation({});
    ExpectDone(simulation, [] {
        const HANDLE event = CreateEventA(nullptr, FALSE, FALSE, nullptr);
        Thread waiter([&] { EXPECT_EQ(WaitForSingleObject(event, 100), WAIT_TIMEOUT); });
        Sleep(20);
        CloseHandle(event);
    });
}

DWORD storageSlot = 0;
std::vector<DWORD> endedThreads;

TEST(Wait, CallbacksOfLocalStorageRunBeforeTheEndIsSeen) {
    storageSlot = FlsAlloc([](LPVOID value) {
        Sleep(30);
        EXPECT_EQ(*static_cast<DWORD*>(value), GetCurrentThreadId());
        endedThreads.push_back(GetCurrentThreadId());
    });
    endedThreads.clear();
    Simulation simulation({});
    DWORD ids[4] = {};
    ExpectDone(simulation, [&] {
        const auto setId = [](DWORD& id) {
            EXPECT_EQ(FlsGetValue(storageSlot), nullptr);
            id = GetCurrentThreadId();
            EXPECT_TRUE(FlsSetValue(storageSlot, &id));
            Sleep(10);
            EXPECT_EQ(FlsGetValue(storageSlot), &id);
        };
        setId(ids[0]);
        Thread first([&] { setId(ids[1]); });
        Thread second([&] { setId(ids[2]); });
        Thread without([&] { ids[3] = GetCurrentThreadId(); });
        WaitForSingleObject(first.handle, INFINITE);
        EXPECT_EQ(std::ranges::count(endedThreads, first.id), 1);
        EXPECT_EQ(ids[1], first.id);
    });
    EXPECT_EQ(endedThreads.size(), 3U);  // main's own comes last
    EXPECT_EQ(endedThreads.back(), ids[0]);
    EXPECT_EQ(std::set<DWORD>(ids, ids + 4).size(), 4U);
}

TEST(Wait, ThreadsLeftOverAreReported) {
    Simulation simulation({});
    EXPECT_FALSE(simulation.Run(
        [] {
            CloseHandle(CreateThread(
                nullptr, 0,
                [](LPVOID) -> DWORD {
                    Sleep(INFINITE);
                    return 0;
                },
                nullptr, 0, nullptr));
            Sleep(100);
        },
        kHour));
    EXPECT_EQ(simulation.Result(), Simulation::Outcome::kLeftover);
    EXPECT_NE(simulation.Report().find("sleeps for ever"), std::string::npos) << simulation.Report();
}

// The runtime of the language keeps exceptions by thread of the system, of which there is one.
TEST(Wait, ExceptionsBelongToTheirThread) {
    Simulation simulation({});
    ExpectDone(simulation, [] {
        const auto work = [](int number) {
            for (int i = 0; i < 20; ++i) {
                try {
                    try {
                        throw number;
                    } catch (int) {
                        Sleep(1);
                        throw;
                    }
                } catch (int caught) {
                    EXPECT_EQ(caught, number);
                }
            }
        };
        Thread first([&] { work(1); });
        Thread second([&] { work(2); });
    });
}

// Static objects of the program have locks and events too.
TEST(Wait, OutsideOfARunCallsWorkThatNeedNoWaiting) {
    Lock lock;
    EnterCriticalSection(&lock.section);
    LeaveCriticalSection(&lock.section);
    Event event(false, true);
    EXPECT_EQ(WaitForSingleObject(event.handle, INFINITE), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(event.handle, 0), WAIT_TIMEOUT);
    EXPECT_EQ(CreateFileA("COM1", GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
}

}  // namespace
