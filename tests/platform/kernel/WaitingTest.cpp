#include "Waiting.h"

#include <array>
#include <atomic>
#include <vector>

#include "TestSupport.h"
#include "Time.h"

namespace {

HANDLE AutoReset(bool set = false) {
    return CreateEventA(nullptr, FALSE, set, nullptr);
}

HANDLE ManualReset(bool set = false) {
    return CreateEventA(nullptr, TRUE, set, nullptr);
}

struct Crowd {
    HANDLE event = nullptr;
    std::atomic<int> waiting{0};
    std::atomic<int> released{0};
};

DWORD WINAPI WaitInCrowd(LPVOID parameter) {
    auto* crowd = static_cast<Crowd*>(parameter);
    ++crowd->waiting;
    EXPECT_EQ(WaitForSingleObject(crowd->event, INFINITE), WAIT_OBJECT_0);
    ++crowd->released;
    return 0;
}

std::vector<HANDLE> StartCrowd(Crowd& crowd, int size) {
    std::vector<HANDLE> threads;
    for (int i = 0; i < size; ++i) {
        threads.push_back(CreateThread(nullptr, 0, WaitInCrowd, &crowd, 0, nullptr));
    }
    EXPECT_TRUE(WaitUntil([&] { return crowd.waiting == size; }));
    return threads;
}

void EndCrowd(Crowd& crowd, const std::vector<HANDLE>& threads) {
    for (HANDLE thread : threads) {
        EXPECT_EQ(WaitForSingleObject(thread, 10'000), WAIT_OBJECT_0);
        CloseHandle(thread);
    }
    CloseHandle(crowd.event);
}

TEST(Waiting, AnAutoResetEventLetsOneGo) {
    Crowd crowd;
    crowd.event = AutoReset();
    const std::vector<HANDLE> threads = StartCrowd(crowd, 4);
    for (int i = 1; i <= 4; ++i) {
        EXPECT_EQ(crowd.released, i - 1);
        SetEvent(crowd.event);
        // The next signal comes when this one has been taken: one that let two go would release more than were set.
        ASSERT_TRUE(WaitUntil([&] { return crowd.released >= i; }));
    }
    EndCrowd(crowd, threads);
}

TEST(Waiting, AManualResetEventLetsAllGo) {
    Crowd crowd;
    crowd.event = ManualReset();
    const std::vector<HANDLE> threads = StartCrowd(crowd, 4);
    EXPECT_EQ(crowd.released, 0);
    SetEvent(crowd.event);
    ASSERT_TRUE(WaitUntil([&] { return crowd.released == 4; }));
    EXPECT_EQ(WaitForSingleObject(crowd.event, 0), WAIT_OBJECT_0);
    EndCrowd(crowd, threads);
}

TEST(Waiting, SignalsAreKeptOnceUntilSomebodyWaits) {
    HANDLE event = AutoReset(true);
    SetEvent(event);
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_TIMEOUT);
    CloseHandle(event);
}

TEST(Waiting, TheFirstOfSeveralWinsAndOnlyItIsConsumed) {
    std::array<HANDLE, MAXIMUM_WAIT_OBJECTS> events;
    for (HANDLE& event : events) {
        event = AutoReset();
    }
    SetEvent(events[63]);
    SetEvent(events[5]);
    EXPECT_EQ(WaitForMultipleObjects(64, events.data(), FALSE, INFINITE), WAIT_OBJECT_0 + 5);
    EXPECT_EQ(WaitForMultipleObjects(64, events.data(), FALSE, INFINITE), WAIT_OBJECT_0 + 63);
    EXPECT_EQ(WaitForMultipleObjects(64, events.data(), FALSE, 0), WAIT_TIMEOUT);
    for (HANDLE event : events) {
        CloseHandle(event);
    }
}

TEST(Waiting, ATimeoutIsNotEarly) {
    HANDLE event = AutoReset();
    for (const DWORD ms : {1u, 3u, 20u}) {
        const std::int64_t start = kernel::MonotonicNs();
        EXPECT_EQ(WaitForSingleObject(event, ms), WAIT_TIMEOUT);
        EXPECT_GE(kernel::MonotonicNs() - start, ms * kernel::kNsPerMs);
    }
    CloseHandle(event);
}

TEST(Waiting, AWaitSurvivesTheClosingOfItsHandle) {
    HANDLE event = AutoReset();
    std::thread closer([&] { CloseHandle(event); });
    const DWORD result = WaitForSingleObject(event, 20);
    closer.join();
    // The handle may be gone before the wait begins, too.
    EXPECT_TRUE(result == WAIT_TIMEOUT || result == WAIT_FAILED);
}

// --- No signal is lost or taken twice when it meets a timeout ---

struct Exchange {
    HANDLE items = AutoReset();
    HANDLE other = AutoReset();
    std::atomic<int> taken{0};
    std::atomic<bool> stop{false};
};

DWORD WINAPI TakeItems(LPVOID parameter) {
    auto* exchange = static_cast<Exchange*>(parameter);
    const HANDLE handles[] = {exchange->other, exchange->items};
    for (DWORD i = 0; !exchange->stop; ++i) {
        const DWORD result = WaitForMultipleObjects(2, handles, FALSE, i % 2);
        EXPECT_NE(result, WAIT_FAILED);
        if (result != WAIT_TIMEOUT) {
            ++exchange->taken;
        }
    }
    return 0;
}

TEST(Waiting, SignalsThatMeetTimeoutsAreNeitherLostNorDoubled) {
    constexpr int kRounds = 3000;
    Exchange exchange;
    std::vector<HANDLE> threads;
    for (int i = 0; i < 3; ++i) {
        threads.push_back(CreateThread(nullptr, 0, TakeItems, &exchange, 0, nullptr));
    }
    for (int i = 1; i <= kRounds; ++i) {
        SetEvent(exchange.items);
        SetEvent(exchange.other);
        ASSERT_TRUE(WaitUntil([&] { return exchange.taken >= 2 * i; }));
        ASSERT_EQ(exchange.taken, 2 * i);
    }
    exchange.stop = true;
    for (HANDLE thread : threads) {
        EXPECT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
        CloseHandle(thread);
    }
    EXPECT_EQ(exchange.taken, 2 * kRounds);
    CloseHandle(exchange.items);
    CloseHandle(exchange.other);
}

}  // namespace
