// Sleep, the tick count, and the period that makes sleeping precise.
#include "Time.h"

#include <sched.h>
#include <sys/prctl.h>
#include <time.h>

#include <atomic>
#include <cerrno>

#include "win/kernel.h"

namespace kernel {
namespace {

// 64 beats a second, which is what Windows has while nobody asks for more.
constexpr std::int64_t kBeatNs = 15'625'000;
constexpr std::int64_t kNsPerSecond = 1'000'000'000;

std::atomic<int> preciseHolders{0};

// The kernel may deliver a wake-up 50 microseconds late to join it with others, which is 5 % of the shortest sleep. Threads
// that sleep on the beat lose nothing by it: their wake-ups fall together anyway.
void AskForPreciseTimer() {
    thread_local bool asked = false;
    if (!asked) {
        prctl(PR_SET_TIMERSLACK, 1UL, 0UL, 0UL, 0UL);
    }
    asked = true;
}

void SleepUntil(std::int64_t ns) {
    const timespec until{static_cast<time_t>(ns / kNsPerSecond), static_cast<long>(ns % kNsPerSecond)};
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr) == EINTR) {}
}

}  // namespace

std::int64_t MonotonicNs() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * kNsPerSecond + now.tv_nsec;
}

}  // namespace kernel

void Sleep(DWORD milliseconds) {
    using namespace kernel;
    if (milliseconds == 0) {
        sched_yield();
        return;
    }
    std::int64_t until = MonotonicNs() + milliseconds * kNsPerMs;
    if (milliseconds == INFINITE) {
        until = INT64_MAX;
    } else if (preciseHolders.load(std::memory_order_relaxed) > 0) {
        AskForPreciseTimer();
    } else {
        // The clock's own zero is the origin of the beat: every thread has it without agreeing on one.
        until = (until + kBeatNs - 1) / kBeatNs * kBeatNs;
    }
    SleepUntil(until);
}

DWORD GetTickCount() {
    return static_cast<DWORD>(kernel::MonotonicNs() / kernel::kNsPerMs);
}

MMRESULT timeBeginPeriod(UINT periodMs) {
    if (periodMs != 1) {
        return TIMERR_NOCANDO;
    }
    kernel::preciseHolders.fetch_add(1);
    return TIMERR_NOERROR;
}

MMRESULT timeEndPeriod(UINT periodMs) {
    if (periodMs != 1) {
        return TIMERR_NOCANDO;
    }
    int holders = kernel::preciseHolders.load();
    while (holders > 0) {
        if (kernel::preciseHolders.compare_exchange_weak(holders, holders - 1)) {
            return TIMERR_NOERROR;
        }
    }
    return TIMERR_NOCANDO;
}
