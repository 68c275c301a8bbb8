// How much faster than real time the simulation runs a program that does nothing but poll.
#include <windows.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>

#include "Shared.h"
#include "Simulation.h"

namespace {

constexpr std::uint64_t kVirtualSeconds = 3600;
constexpr DWORD kEndlessMs = 3'600'000;

Shared<int> running;
CRITICAL_SECTION queueLock;

double RealSeconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void Poll(DWORD periodMs) {
    while (running) {
        Sleep(periodMs);
        EnterCriticalSection(&queueLock);
        LeaveCriticalSection(&queueLock);
    }
}

// One thread as busy as the reader of a port, two as busy as a worker; an hour of that.
void ThreePollingThreads(double switchChance) {
    Simulation simulation({.seed = 1, .jitterMs = 1, .switchChance = switchChance});
    InitializeCriticalSection(&queueLock);
    const double seconds = RealSeconds([&] {
        const bool done = simulation.Run(
            [] {
                timeBeginPeriod(1);
                running = 1;
                HANDLE threads[3];
                for (int i = 0; i < 3; ++i) {
                    const auto fast = [](LPVOID) -> DWORD {
                        Poll(1);
                        return 0;
                    };
                    const auto slow = [](LPVOID) -> DWORD {
                        Poll(20);
                        return 0;
                    };
                    threads[i] = i == 0 ? CreateThread(nullptr, 0, fast, nullptr, 0, nullptr)
                                        : CreateThread(nullptr, 0, slow, nullptr, 0, nullptr);
                }
                Sleep(kEndlessMs);
                running = 0;
                for (HANDLE thread : threads) {
                    WaitForSingleObject(thread, INFINITE);
                    CloseHandle(thread);
                }
            },
            2 * kVirtualSeconds * 1'000'000);
        if (!done) {
            std::puts(simulation.Report().c_str());
        }
    });
    DeleteCriticalSection(&queueLock);
    std::printf("three polling threads, switch chance %.2f: %8.0f times real time, %6.2f million switches/s\n", switchChance,
                static_cast<double>(simulation.Now()) / 1e6 / seconds,
                static_cast<double>(simulation.Switches()) / 1e6 / seconds);
}

void Points(const char* name, bool withRival, double switchChance, const std::function<void()>& point) {
    constexpr int kCount = 20'000'000;
    Simulation simulation({.switchChance = switchChance, .standstillPoints = UINT32_MAX});
    double seconds = 0;
    const bool done = simulation.Run(
        [&] {
            HANDLE rival = CreateThread(nullptr, 0, [](LPVOID) -> DWORD { return 0; }, nullptr, 0, nullptr);
            if (!withRival) {
                WaitForSingleObject(rival, INFINITE);
            }
            seconds = RealSeconds([&] {
                for (int i = 0; i < kCount; ++i) {
                    point();
                }
            });
            WaitForSingleObject(rival, INFINITE);
            CloseHandle(rival);
        },
        1);
    std::printf("%-45s %6.1f ns%s\n", name, seconds * 1e9 / kCount, done ? "" : " (failed)");
}

}  // namespace

int main() {
    ThreePollingThreads(0.1);
    ThreePollingThreads(0);
    static Shared<int> flag = 0;
    static CRITICAL_SECTION lock;
    InitializeCriticalSection(&lock);
    const auto readFlag = [] { static_cast<void>(static_cast<int>(flag)); };
    const auto useLock = [] {
        EnterCriticalSection(&lock);
        LeaveCriticalSection(&lock);
    };
    Points("access to a Shared, nobody else can run", false, 0, readFlag);
    Points("access to a Shared, somebody else could run", true, 1e-12, readFlag);
    Points("lock and unlock, nobody else can run", false, 0, useLock);
    Points("lock and unlock, somebody else could run", true, 1e-12, useLock);
    return 0;
}
