// Virtual time as the program sees it.
#include <windows.h>

#include <cstdint>

#include "Scheduler.h"

namespace {

// The system's own beat, while nobody asks for a finer one.
constexpr std::uint64_t kBeatUs = 15625;
constexpr UINT kPeriodMs = 1;

}  // namespace

void Sleep(DWORD milliseconds) {
    sim::Scheduler* scheduler = sim::Scheduler::Current();
    if (scheduler == nullptr || !scheduler->IsOnThread()) {
        sim::Misuse("sleeps where no time passes");
        return;
    }
    if (milliseconds == 0) {
        scheduler->Yield();
        return;
    }
    std::uint64_t end = sim::Scheduler::kNever;
    if (milliseconds != INFINITE) {
        end = scheduler->now + std::uint64_t{milliseconds} * 1000;
        if (scheduler->periodsHeld == 0) {
            end = (end + kBeatUs - 1) / kBeatUs * kBeatUs;
        }
    }
    scheduler->BlockFor(sim::ThreadState::kSleeping, end);
}

// A scheduling point, so that a thread that waits for time to pass without sleeping is found.
DWORD GetTickCount() {
    sim::SchedulingPoint();
    const sim::Scheduler* scheduler = sim::Scheduler::Current();
    return scheduler == nullptr ? 0 : static_cast<DWORD>(scheduler->now / 1000);
}

MMRESULT timeBeginPeriod(UINT periodMs) {
    sim::Scheduler* scheduler = sim::Scheduler::Current();
    if (scheduler == nullptr || periodMs != kPeriodMs) {
        return TIMERR_NOCANDO;
    }
    ++scheduler->periodsHeld;
    return TIMERR_NOERROR;
}

MMRESULT timeEndPeriod(UINT periodMs) {
    sim::Scheduler* scheduler = sim::Scheduler::Current();
    if (scheduler == nullptr || periodMs != kPeriodMs || scheduler->periodsHeld == 0) {
        return TIMERR_NOCANDO;
    }
    --scheduler->periodsHeld;
    return TIMERR_NOERROR;
}
