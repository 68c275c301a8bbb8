#include "Time.h"

#include "TestSupport.h"

namespace {

using kernel::kNsPerMs;
using kernel::MonotonicNs;

constexpr std::int64_t kBeatNs = 15'625'000;

std::int64_t NextBeat(std::int64_t ns) {
    return (ns + kBeatNs - 1) / kBeatNs * kBeatNs;
}

TEST(Time, SleepLastsAtLeastAsLongAsAskedAndEndsOnTheBeat) {
    for (const DWORD ms : {1u, 2u, 15u, 16u, 20u}) {
        const std::int64_t start = MonotonicNs();
        Sleep(ms);
        EXPECT_GE(MonotonicNs(), NextBeat(start + ms * kNsPerMs)) << ms;
    }
}

TEST(Time, SleepIsPreciseWhileAnybodyHoldsThePeriod) {
    ASSERT_EQ(timeBeginPeriod(1), TIMERR_NOERROR);
    ASSERT_EQ(timeBeginPeriod(1), TIMERR_NOERROR);
    ASSERT_EQ(timeEndPeriod(1), TIMERR_NOERROR);
    // A busy machine may delay any one wake-up, so only a sleep that ends before the next beat counts.
    EXPECT_TRUE(WaitUntil([] {
        const std::int64_t start = MonotonicNs();
        Sleep(1);
        const std::int64_t end = MonotonicNs();
        EXPECT_GE(end - start, kNsPerMs);
        return end < NextBeat(start + kNsPerMs);
    }));
    EXPECT_EQ(timeEndPeriod(1), TIMERR_NOERROR);
    EXPECT_EQ(timeEndPeriod(1), TIMERR_NOCANDO);
    EXPECT_EQ(timeBeginPeriod(5), TIMERR_NOCANDO);
    const std::int64_t start = MonotonicNs();
    Sleep(1);
    EXPECT_GE(MonotonicNs(), NextBeat(start + kNsPerMs));
}

TEST(Time, TheTickCountFollowsTheClock) {
    const std::int64_t before = MonotonicNs() / kNsPerMs;
    const DWORD ticks = GetTickCount();
    const std::int64_t after = MonotonicNs() / kNsPerMs;
    EXPECT_LE(static_cast<DWORD>(ticks - static_cast<DWORD>(before)), static_cast<DWORD>(after - before));
}

}  // namespace
