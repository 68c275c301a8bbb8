// Virtual time: sleeps, the beat of the system, lateness, ticks and callbacks.
#include <gtest/gtest.h>
#include <windows.h>

#include <set>
#include <vector>

#include "Shared.h"
#include "SimTools.h"
#include "Simulation.h"

namespace {

constexpr std::uint64_t kBeatUs = 15625;

TEST(Time, WithoutAFinePeriodSleepsEndOnTheBeat) {
    Simulation simulation({.jitterMs = 0});
    ExpectDone(simulation, [&] {
        for (const DWORD ms : {1U, 15U, 16U, 20U, 100U, 1U}) {
            const std::uint64_t asked = simulation.Now() + ms * kMs;
            Sleep(ms);
            EXPECT_GE(simulation.Now(), asked);
            EXPECT_LT(simulation.Now(), asked + kBeatUs);
            EXPECT_EQ(simulation.Now() % kBeatUs, 0U);
        }
    });
}

TEST(Time, WhileAnybodyHoldsTheFinePeriodSleepsAreExact) {
    Simulation simulation({.jitterMs = 0});
    ExpectDone(simulation, [&] {
        const auto slept = [&](DWORD ms) {
            const std::uint64_t before = simulation.Now();
            Sleep(ms);
            return simulation.Now() - before;
        };
        EXPECT_EQ(timeEndPeriod(1), TIMERR_NOCANDO);
        EXPECT_EQ(timeBeginPeriod(2), TIMERR_NOCANDO);
        EXPECT_EQ(timeBeginPeriod(1), TIMERR_NOERROR);
        EXPECT_EQ(timeBeginPeriod(1), TIMERR_NOERROR);
        EXPECT_EQ(slept(1), 1 * kMs);
        EXPECT_EQ(slept(20), 20 * kMs);
        EXPECT_EQ(timeEndPeriod(1), TIMERR_NOERROR);
        EXPECT_EQ(slept(3), 3 * kMs);
        EXPECT_EQ(timeEndPeriod(1), TIMERR_NOERROR);
        EXPECT_EQ(slept(1), kBeatUs * 2 - 24 * kMs);
        EXPECT_EQ(simulation.PeriodsHeld(), 0);
    });
}

TEST(Time, WakeUpsAreLateByUpToTheJitterAndNeverEarly) {
    Simulation simulation({.seed = 4, .jitterMs = 3});
    std::set<std::uint64_t> late;
    ExpectDone(simulation, [&] {
        timeBeginPeriod(1);
        for (int i = 0; i < 300; ++i) {
            const std::uint64_t before = simulation.Now();
            Sleep(20);
            late.insert(simulation.Now() - before - 20 * kMs);
        }
    });
    std::set<std::uint64_t> expected;
    for (std::uint64_t us = 0; us <= 3 * kMs; us += 250) {
        expected.insert(us);
    }
    EXPECT_EQ(late, expected);
}

TEST(Time, TicksCountMilliseconds) {
    Simulation simulation({.jitterMs = 0});
    ExpectDone(simulation, [&] {
        timeBeginPeriod(1);
        EXPECT_EQ(GetTickCount(), 0U);
        Sleep(50);
        EXPECT_EQ(GetTickCount(), 50U);
        Sleep(0);
        EXPECT_EQ(simulation.Now(), 50 * kMs);
    });
}

// Time jumps to the next thing that happens, and to nothing else.
TEST(Time, DaysPassAtOnce) {
    Simulation simulation({.jitterMs = 0});
    ExpectDone(simulation, [&] { Sleep(24 * 3600 * 1000); }, 25 * kHour);
    EXPECT_EQ(simulation.Now(), 24 * kHour);
    EXPECT_LE(simulation.Switches(), 3U);
}

TEST(Time, CallbacksComeInOrderAndBeforeTheThreadsOfTheirMoment) {
    Simulation simulation({.jitterMs = 0});
    std::vector<std::pair<int, std::uint64_t>> events;
    const auto event = [&](int number) { events.emplace_back(number, simulation.Now()); };
    ExpectDone(simulation, [&] {
        timeBeginPeriod(1);
        Thread sleeper([&] {
            Sleep(10);
            event(3);
        });
        Sleep(5);
        simulation.At(20 * kMs, [&] { event(4); });
        simulation.At(10 * kMs, [&] {
            event(1);
            simulation.At(1, [&] { event(2); });  // a time that has passed
        });
        Sleep(30);
    });
    const std::vector<std::pair<int, std::uint64_t>> expected = {{1, 10 * kMs}, {2, 10 * kMs}, {3, 10 * kMs}, {4, 20 * kMs}};
    EXPECT_EQ(events, expected);
}

TEST(Time, TheLimitEndsARun) {
    Simulation simulation({});
    EXPECT_FALSE(simulation.Run(
        [] {
            while (true) {
                Sleep(100);
            }
        },
        10 * kSecond));
    EXPECT_EQ(simulation.Result(), Simulation::Outcome::kTimeLimit);
    EXPECT_EQ(simulation.Now(), 10 * kSecond);
    EXPECT_NE(simulation.Report().find("(main) sleeps until"), std::string::npos) << simulation.Report();
}

TEST(Time, AThreadThatNeverLetsTimePassIsFound) {
    using Spin = void (*)(Shared<int>&);
    const Spin spins[] = {
        [](Shared<int>& flag) {
            while (flag == 0) {}
        },
        [](Shared<int>&) {
            while (true) {
                Sleep(0);
            }
        },
        [](Shared<int>&) {
            while (GetTickCount() < 100) {}
        },
    };
    for (const Spin spin : spins) {
        for (const bool alone : {true, false}) {
            Simulation simulation({.standstillPoints = 20'000});
            Shared<int> flag = 0;
            EXPECT_FALSE(simulation.Run(
                [&] {
                    const auto main = [&] { spin(flag); };
                    if (alone) {
                        main();
                    }
                    Thread other(main);
                    main();
                },
                kHour));
            EXPECT_EQ(simulation.Result(), Simulation::Outcome::kStandstill) << simulation.Report();
        }
    }
}

}  // namespace
