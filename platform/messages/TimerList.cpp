#include "TimerList.h"

#include <algorithm>

namespace {

constexpr UINT kLongestPeriodMs = 0x7FFFFFFF;

bool HasCome(DWORD dueMs, DWORD nowMs) {
    return static_cast<LONG>(nowMs - dueMs) >= 0;
}

}  // namespace

void TimerList::Set(HWND window, UINT_PTR id, UINT periodMs, TIMERPROC procedure, DWORD nowMs) {
    const DWORD period = std::clamp(periodMs, USER_TIMER_MINIMUM, kLongestPeriodMs);
    Kill(window, id);
    timers.push_back({window, id, procedure, period, nowMs + period});
}

UINT_PTR TimerList::UnusedId() {
    do {
        lastId++;
    } while (lastId == 0 || Find(nullptr, lastId) != nullptr);
    return lastId;
}

const Timer* TimerList::Find(HWND window, UINT_PTR id) const {
    for (const Timer& timer : timers) {
        if (timer.window == window && timer.id == id) {
            return &timer;
        }
    }
    return nullptr;
}

bool TimerList::Kill(HWND window, UINT_PTR id) {
    return std::erase_if(timers, [=](const Timer& timer) { return timer.window == window && timer.id == id; }) > 0;
}

void TimerList::KillAll(HWND window) {
    std::erase_if(timers, [=](const Timer& timer) { return timer.window == window; });
}

bool TimerList::Update(DWORD nowMs) {
    bool any = false;
    for (Timer& timer : timers) {
        if (!HasCome(timer.dueMs, nowMs)) {
            continue;
        }
        // The beat is kept: expiries that were slept through are skipped, not made up for.
        timer.dueMs += ((nowMs - timer.dueMs) / timer.periodMs + 1) * timer.periodMs;
        if (!timer.ready) {
            timer.ready = true;
            timer.readyNumber = ++readyCount;
            any = true;
        }
    }
    return any;
}

DWORD TimerList::UntilNextMs(DWORD nowMs) const {
    DWORD next = INFINITE;
    for (const Timer& timer : timers) {
        if (!timer.ready) {
            next = std::min(next, HasCome(timer.dueMs, nowMs) ? 0 : timer.dueMs - nowMs);
        }
    }
    return next;
}

Timer* TimerList::FirstReady(const MessageFilter& filter) {
    Timer* first = nullptr;
    for (Timer& timer : timers) {
        if (timer.ready && filter.Matches(timer.window, WM_TIMER) &&
            (first == nullptr || static_cast<int>(timer.readyNumber - first->readyNumber) < 0)) {
            first = &timer;
        }
    }
    return first;
}
