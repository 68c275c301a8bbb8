// What the seed draws: the order of threads, stalls and failures. That a run repeats is checked in tests/sim.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

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
    void Race(Simulation& simulation) {
        ExpectDone(simulation, [&] {
            Thread first([&] { CountUp('a'); });
            Thread second([&] { CountUp('b'); });
        });
    }
};

TEST(Schedule, SeedsBringOutDifferentOrdersAndALostUpdate) {
    std::set<std::string> orders;
    int lost = 0;
    for (std::uint64_t seed = 1; seed <= 200; ++seed) {
        Simulation simulation({.seed = seed});
        Counter counter;
        counter.Race(simulation);
        orders.insert(counter.order);
        lost += counter.value != 10 ? 1 : 0;
    }
    EXPECT_GT(orders.size(), 2U);  // whole orders one after the other are but two of them
    EXPECT_GT(lost, 0);
}

TEST(Schedule, TheSwitchChanceRulesPointsButNotSleeps) {
    const auto orderWith = [](double chance) {
        Simulation simulation({.seed = 3, .jitterMs = 0, .switchChance = chance});
        Counter counter;
        counter.Race(simulation);
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
    Simulation simulation({});
    ExpectDone(simulation, [&] {
        simulation.SetFaults({.threadFailure = 1});
        EXPECT_EQ(CreateThread(nullptr, 0, [](LPVOID) -> DWORD { return 0; }, nullptr, 0, nullptr), nullptr);
    });
}

TEST(Schedule, TheSeedDrawsWhomASignalLetsGo) {
    std::set<int> drawn;
    for (std::uint64_t seed = 1; seed <= 30; ++seed) {
        Simulation simulation({.seed = seed});
        ExpectDone(simulation, [&] {
            Event event(false);
            const auto wait = [&](int number) {
                if (WaitForSingleObject(event.handle, 1000) == WAIT_OBJECT_0) {
                    drawn.insert(number);
                }
            };
            Thread a([&] { wait(0); });
            Thread b([&] { wait(1); });
            Thread c([&] { wait(2); });
            Sleep(100);
            SetEvent(event.handle);
        });
    }
    EXPECT_EQ(drawn.size(), 3U);
}

// The C++ runtime keeps exceptions for each system thread, and all threads of a simulation share one.
TEST(Schedule, ExceptionsBelongToTheirThread) {
    Simulation simulation({});
    ExpectDone(simulation, [] {
        const auto work = [](int number) {
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
        };
        Thread first([&] { work(1); });
        Thread second([&] { work(2); });
    });
}

// Static objects of the program have locks, events and shared numbers too.
TEST(Schedule, OutsideOfARunCallsWorkThatNeedNoWaiting) {
    Lock lock;
    EnterCriticalSection(&lock.section);
    LeaveCriticalSection(&lock.section);
    Event event(false, true);
    EXPECT_EQ(WaitForSingleObject(event.handle, INFINITE), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(event.handle, 0), WAIT_TIMEOUT);
    EXPECT_EQ(CreateFileA("COM1", GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    Shared<int> value = 3;
    EXPECT_EQ(value.Add(4), 7);
    EXPECT_EQ(value.Exchange(1), 7);
    value = 2;
    EXPECT_EQ(value, 2);
    EXPECT_EQ(Simulation::Current(), nullptr);
}

}  // namespace
