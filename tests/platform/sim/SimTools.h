// What the tests of the simulation share.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdint>
#include <functional>
#include <utility>

#include "Simulation.h"

inline constexpr std::uint64_t kMs = 1000;
inline constexpr std::uint64_t kSecond = 1'000'000;
inline constexpr std::uint64_t kHour = 3600 * kSecond;

inline void ExpectDone(Simulation& simulation, std::function<void()> main, std::uint64_t limitUs = kHour) {
    EXPECT_TRUE(simulation.Run(std::move(main), limitUs)) << simulation.Report();
}

inline void ExpectOutcome(Simulation::Outcome outcome, std::function<void()> main, std::uint64_t limitUs = kHour) {
    Simulation simulation({});
    EXPECT_FALSE(simulation.Run(std::move(main), limitUs));
    EXPECT_EQ(simulation.Result(), outcome) << simulation.Report();
}

struct Lock {
    Lock() { InitializeCriticalSection(&section); }
    ~Lock() {
        if (!forgotten) {
            DeleteCriticalSection(&section);
        }
    }
    // A run that has failed leaves its locks held.
    void Forget() { forgotten = true; }

    CRITICAL_SECTION section;
    bool forgotten = false;
};

// A thread of the program that is waited for at the end of its scope.
class Thread {
public:
    explicit Thread(std::function<void()> newWork) : work(std::move(newWork)) {
        handle = CreateThread(
            nullptr, 0,
            [](LPVOID self) -> DWORD {
                static_cast<Thread*>(self)->work();
                return 0;
            },
            this, 0, &id);
    }
    ~Thread() {
        WaitForSingleObject(handle, INFINITE);
        CloseHandle(handle);
    }
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    HANDLE handle;
    DWORD id = 0;

private:
    std::function<void()> work;
};
