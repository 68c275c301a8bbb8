// What the tests of the simulation share.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdint>
#include <functional>
#include <string>
#include <utility>

#include "Simulation.h"
#include "ThreadTools.h"

inline constexpr std::uint64_t kMs = 1000;
inline constexpr std::uint64_t kSecond = 1'000'000;
inline constexpr std::uint64_t kHour = 3600 * kSecond;

inline void ExpectDone(Simulation& simulation, std::function<void()> main, std::uint64_t limitUs = kHour) {
    EXPECT_TRUE(simulation.Run(std::move(main), limitUs)) << simulation.Report();
}

// The report of a run that has to end so.
inline std::string ExpectOutcome(Simulation::Outcome outcome, std::function<void()> main, std::uint64_t limitUs = kHour) {
    Simulation simulation({.standstillPoints = 20'000});
    EXPECT_FALSE(simulation.Run(std::move(main), limitUs));
    EXPECT_EQ(simulation.Result(), outcome) << simulation.Report();
    return simulation.Report();
}
