// The same seed gives the same run, other seeds give others, and what only some orders of threads bring out is found.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "Shared.h"
#include "SimTools.h"
#include "Simulation.h"

namespace {

// Two threads count one number up together, each by reading and writing it.
struct Counter {
    Shared<int> value = 0;
    std::string order;

    void CountUp(char name) {
        for (int i = 0; i < 5; ++i) {
            value = value + 1;
            order += name;
        }
    }
};

struct RacedRun {
    int value = 0;
    std::string order;
    std::uint64_t hash = 0;
    std::uint64_t endUs = 0;
};

RacedRun Race(std::uint64_t seed, bool withLock) {
    Simulation simulation({.seed = seed});
    Counter counter;
    Lock lock;
    const auto count = [&](char name) {
        Sleep(20);
        if (withLock) {
            EnterCriticalSection(&lock.section);
        }
        counter.CountUp(name);
        if (withLock) {
            LeaveCriticalSection(&lock.section);
        }
    };
    ExpectDone(simulation, [&] {
        timeBeginPeriod(1);
        Thread first([&] { count('a'); });
        Thread second([&] { count('b'); });
    });
    return {counter.value, counter.order, simulation.TraceHash(), simulation.Now()};
}

TEST(Schedule, ASeedRepeatsItsRun) {
    std::set<std::uint64_t> hashes;
    std::set<std::string> orders;
    for (std::uint64_t seed = 1; seed <= 100; ++seed) {
        const RacedRun once = Race(seed, false);
        const RacedRun again = Race(seed, false);
        EXPECT_EQ(once.hash, again.hash) << "seed " << seed;
        EXPECT_EQ(once.order, again.order) << "seed " << seed;
        EXPECT_EQ(once.endUs, again.endUs) << "seed " << seed;
        hashes.insert(once.hash);
        orders.insert(once.order);
    }
    EXPECT_GT(hashes.size(), 50U);  // a run as short as this has few ways to go
    EXPECT_GT(orders.size(), 2U);   // whole orders one after the other are but two of them
}

TEST(Schedule, ALostUpdateIsFoundWithinSomeSeeds) {
    int lost = 0;
    for (std::uint64_t seed = 1; seed <= 200; ++seed) {
        lost += Race(seed, false).value != 10 ? 1 : 0;
        EXPECT_EQ(Race(seed, true).value, 10) << "seed " << seed;
    }
    EXPECT_GT(lost, 0);
}

TEST(Schedule, TheSwitchChanceRulesPointsButNotSleeps) {
    const auto orderWith = [](double chance) {
        Simulation simulation({.seed = 3, .jitterMs = 0, .switchChance = chance});
        Counter counter;
        ExpectDone(simulation, [&] {
            Thread first([&] { counter.CountUp('a'); });
            Thread second([&] { counter.CountUp('b'); });
        });
        return counter.order;
    };
    const std::string unbroken = orderWith(0);
    EXPECT_TRUE(unbroken == "aaaaabbbbb" || unbroken == "bbbbbaaaaa") << unbroken;
    const std::string broken = orderWith(1);
    EXPECT_TRUE(broken != "aaaaabbbbb" && broken != "bbbbbaaaaa") << broken;
}

// What a test draws and traces belongs to the run, and does not disturb the scheduler.
TEST(Schedule, TheTestHasItsOwnChances) {
    const auto run = [](int draws, const char* event) {
        Simulation simulation({.seed = 9});
        std::vector<DWORD> ticks;
        ExpectDone(simulation, [&] {
            for (int i = 0; i < draws; ++i) {
                EXPECT_LT(simulation.Random(7), 7U);
            }
            simulation.Trace(event);
            for (int i = 0; i < 20; ++i) {
                Sleep(5);
                ticks.push_back(static_cast<DWORD>(simulation.Now()));
            }
        });
        return std::pair(ticks, simulation.TraceHash());
    };
    EXPECT_EQ(run(0, "event"), run(50, "event"));
    EXPECT_EQ(run(0, "event").first, run(0, "other").first);
    EXPECT_NE(run(0, "event").second, run(0, "other").second);
}

// A thread that is stalled between two accesses lets others pass that sleep meanwhile.
TEST(Schedule, AStallLetsTimePassBetweenTwoAccesses) {
    Simulation simulation({.seed = 5, .jitterMs = 0});
    Shared<int> flag = 0;
    std::uint64_t longest = 0;
    ExpectDone(simulation, [&] {
        simulation.SetFaults({.stallChance = 0.2, .stallMs = 50});
        for (int i = 0; i < 100; ++i) {
            const std::uint64_t before = simulation.Now();
            flag = i;
            longest = std::max(longest, simulation.Now() - before);
        }
        simulation.SetFaults({});
        const std::uint64_t before = simulation.Now();
        for (int i = 0; i < 1000; ++i) {
            flag = i;
        }
        EXPECT_EQ(simulation.Now(), before);
    });
    EXPECT_GT(longest, 10'000U);
    EXPECT_LE(longest, 50'000U);
}

TEST(Schedule, FailuresOfThreadsAreDrawn) {
    Simulation simulation({.seed = 1});
    ExpectDone(simulation, [&] {
        simulation.SetFaults({.threadFailure = 1});
        EXPECT_EQ(CreateThread(nullptr, 0, [](LPVOID) -> DWORD { return 0; }, nullptr, 0, nullptr), nullptr);
        simulation.SetFaults({});
        auto* block = static_cast<char*>(LocalAlloc(LPTR, 10));
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(std::string(block, 10), std::string(10, '\0'));
        EXPECT_EQ(LocalFree(block), nullptr);
    });
}

TEST(Schedule, SharedWorksOutsideOfARun) {
    Shared<int> value = 3;
    EXPECT_EQ(value.Add(4), 7);
    EXPECT_EQ(value.Exchange(1), 7);
    value = 2;
    EXPECT_EQ(value, 2);
    EXPECT_EQ(Simulation::Current(), nullptr);
}

// The reader of a failure sees who waits for what, and what came last.
TEST(Schedule, AFailedRunIsReported) {
    Simulation simulation({.seed = 77});
    Lock lock;
    bool wentOn = false;
    EXPECT_FALSE(simulation.Run(
        [&] {
            EnterCriticalSection(&lock.section);
            const HANDLE waiter = CreateThread(
                nullptr, 0,
                [](LPVOID object) -> DWORD {
                    EnterCriticalSection(static_cast<CRITICAL_SECTION*>(object));
                    return 0;
                },
                &lock.section, 0, nullptr);
            CloseHandle(waiter);
            Sleep(30);
            simulation.Trace("a mark");
            simulation.Fail("a title is lost");
            wentOn = true;
        },
        kHour));
    EXPECT_FALSE(wentOn);
    EXPECT_EQ(simulation.Result(), Simulation::Outcome::kFailed);
    const std::string report = simulation.Report();
    for (const char* part : {"a title is lost", "seed 77", "(main) runs", "a mark"}) {
        EXPECT_NE(report.find(part), std::string::npos) << part << " in:\n" << report;
    }
    lock.Forget();
}

}  // namespace
