#include "Time.h"

#include "TestSupport.h"

namespace {

using kernel::kNsPerMs;
using kernel::MonotonicNs;

constexpr std::int64_t kBeatNs = 15'625'000;

std::int64_t NextBeat(std::int64_t ns) {
    return (ns + kBeatNs - 1) / kBeatNs * kBeatNs;
}

void ExpectEndOnTheBeat(DWORD ms) {
    const std::int64_t start = MonotonicNs();
    Sleep(ms);
    EXPECT_GE(MonotonicNs(), NextBeat(start + ms * kNsPerMs)) << ms;
}

TEST(Time, SleepsEndOnTheBeatButWhileAnybodyHoldsThePeriod) {
    ExpectEndOnTheBeat(1);
    ExpectEndOnTheBeat(16);
    timeBeginPeriod(1);
    timeBeginPeriod(1);
    timeEndPeriod(1);
    // A busy machine may delay any one wake-up, so only a sleep that ends before the next beat counts.
    EXPECT_TRUE(WaitUntil([] {
        const std::int64_t start = MonotonicNs();
        Sleep(1);
        return MonotonicNs() < NextBeat(start + kNsPerMs);
    }));
    timeEndPeriod(1);
    ExpectEndOnTheBeat(1);
}

TEST(Time, TheTickCountFollowsTheClock) {
    const std::int64_t before = MonotonicNs() / kNsPerMs;
    const DWORD ticks = GetTickCount();
    const std::int64_t after = MonotonicNs() / kNsPerMs;
    EXPECT_LE(static_cast<DWORD>(ticks - static_cast<DWORD>(before)), static_cast<DWORD>(after - before));
}

}  // namespace
