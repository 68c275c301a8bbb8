#include <gtest/gtest.h>

#include <cstdint>

#include "Run.h"
#include "Simulation.h"

void RunProgram(const std::function<void()>& body) {
    constexpr std::uint64_t kHourUs = 3'600'000'000;
    for (std::uint64_t seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE(seed);
        Simulation simulation({.seed = seed});
        // Nothing can follow a run that has not ended well.
        ASSERT_TRUE(simulation.Run(body, kHourUs)) << simulation.Report();
    }
}
