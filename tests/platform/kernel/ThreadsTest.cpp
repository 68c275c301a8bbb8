#include "win/kernel.h"

#include <atomic>
#include <vector>

#include "TestSupport.h"

namespace {

struct Identity {
    DWORD inside = 0;
    HANDLE leave = nullptr;
    std::atomic<bool> ended{false};
};

DWORD WINAPI TellIdentity(LPVOID parameter) {
    auto* identity = static_cast<Identity*>(parameter);
    identity->inside = GetCurrentThreadId();
    WaitForSingleObject(identity->leave, INFINITE);
    identity->ended = true;
    return 0;
}

TEST(Threads, IdAndEndAreTold) {
    Identity identity;
    identity.leave = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    DWORD id = 0;
    HANDLE thread = CreateThread(nullptr, 0, TellIdentity, &identity, 0, &id);
    ASSERT_NE(thread, nullptr);
    EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_TIMEOUT);
    SetEvent(identity.leave);
    EXPECT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
    EXPECT_TRUE(identity.ended);
    // An ended thread stays signalled for every waiter.
    EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_OBJECT_0);
    EXPECT_EQ(identity.inside, id);
    EXPECT_NE(id, GetCurrentThreadId());
    EXPECT_EQ(GetCurrentThreadId(), GetCurrentThreadId());
    CloseHandle(thread);
    CloseHandle(identity.leave);
}

TEST(Threads, AThreadGoesOnWithoutItsHandle) {
    Identity identity;
    identity.leave = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    HANDLE thread = CreateThread(nullptr, 0, TellIdentity, &identity, 0, nullptr);
    ASSERT_TRUE(CloseHandle(thread));
    EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_FAILED);
    SetEvent(identity.leave);
    EXPECT_TRUE(WaitUntil([&] { return identity.ended.load(); }));
    CloseHandle(identity.leave);
}

// --- The slot of thread-local storage ---

std::atomic<int> gCallbackSum{0};
DWORD gSlot = 0;
thread_local bool tRefilled = false;

// Fills the slot again once, as whoever is called at the end of a thread may do.
void WINAPI AddToSum(LPVOID value) {
    gCallbackSum += *static_cast<int*>(value);
    if (!std::exchange(tRefilled, true)) {
        static int again;
        again = *static_cast<int*>(value);
        FlsSetValue(gSlot, &again);
    }
}

DWORD WINAPI UseSlot(LPVOID parameter) {
    EXPECT_EQ(FlsGetValue(gSlot), nullptr);
    FlsSetValue(gSlot, parameter);
    EXPECT_EQ(FlsGetValue(gSlot), parameter);
    return 0;
}

DWORD WINAPI UseNoSlot(LPVOID) {
    return 0;
}

TEST(Threads, TheSlotIsOnePerThreadAndItsCallbackRunsBeforeTheThreadIsSignalled) {
    gCallbackSum = 0;
    gSlot = FlsAlloc(AddToSum);
    int mine = 1000;
    int theirs = 3;
    ASSERT_TRUE(FlsSetValue(gSlot, &mine));
    for (int i = 1; i <= 20; ++i) {
        HANDLE thread = CreateThread(nullptr, 0, UseSlot, &theirs, 0, nullptr);
        ASSERT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
        CloseHandle(thread);
        // Once for what the thread left, once for what the callback put there.
        EXPECT_EQ(gCallbackSum, i * 2 * theirs);
    }
    HANDLE thread = CreateThread(nullptr, 0, UseNoSlot, nullptr, 0, nullptr);
    ASSERT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
    CloseHandle(thread);
    EXPECT_EQ(gCallbackSum, 20 * 2 * theirs);
    EXPECT_EQ(FlsGetValue(gSlot), &mine);
}

// --- Critical sections ---

struct Counter {
    CRITICAL_SECTION lock;
    int value = 0;
};

DWORD WINAPI CountUp(LPVOID parameter) {
    auto* counter = static_cast<Counter*>(parameter);
    for (int i = 0; i < 20'000; ++i) {
        EnterCriticalSection(&counter->lock);
        EnterCriticalSection(&counter->lock);
        ++counter->value;
        LeaveCriticalSection(&counter->lock);
        // Still locked once: a lock that forgets its depth loses counts here.
        ++counter->value;
        LeaveCriticalSection(&counter->lock);
    }
    return 0;
}

TEST(Locks, RecursiveUnderContention) {
    Counter counter;
    InitializeCriticalSection(&counter.lock);
    std::vector<HANDLE> threads;
    for (int i = 0; i < 4; ++i) {
        threads.push_back(CreateThread(nullptr, 0, CountUp, &counter, 0, nullptr));
    }
    for (HANDLE thread : threads) {
        EXPECT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
        CloseHandle(thread);
    }
    EXPECT_EQ(counter.value, 4 * 2 * 20'000);
    DeleteCriticalSection(&counter.lock);
}

}  // namespace
