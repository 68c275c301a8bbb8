// Virtual time: the beat of the system, and lateness.
#include <gtest/gtest.h>
#include <windows.h>

#include <set>

#include "SimTools.h"
#include "Simulation.h"

namespace {

constexpr std::uint64_t kBeatUs = 15625;

TEST(Time, SleepsEndOnTheBeatAndAreExactWhileAnybodyHoldsThePeriod) {
    Simulation simulation({.jitterMs = 0});
    ExpectDone(simulation, [&] {
        const auto slept = [&](DWORD ms) {
            const std::uint64_t before = simulation.Now();
            Sleep(ms);
            return simulation.Now() - before;
        };
        EXPECT_EQ(slept(1), kBeatUs);
        EXPECT_EQ(slept(16), kBeatUs * 2);
        timeBeginPeriod(1);
        timeBeginPeriod(1);
        EXPECT_EQ(slept(1), 1 * kMs);
        timeEndPeriod(1);
        EXPECT_EQ(slept(20), 20 * kMs);
        EXPECT_EQ(simulation.PeriodsHeld(), 1);
        timeEndPeriod(1);
        EXPECT_EQ(slept(1), kBeatUs * 2 - 21 * kMs);
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

}  // namespace
