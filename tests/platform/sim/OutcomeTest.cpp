// How a run ends that does not end well, and what its report says.
#include <gtest/gtest.h>
#include <windows.h>

#include <functional>
#include <string>

#include "SimTools.h"
#include "Simulation.h"

namespace {

using Outcome = Simulation::Outcome;

void ExpectPart(const std::string& report, const char* part) {
    EXPECT_NE(report.find(part), std::string::npos) << part << " in:\n" << report;
}

TEST(Outcome, TheReportSaysWhoWaitsForWhat) {
    ExpectPart(ExpectOutcome(Outcome::kDeadlock,
                             [] { WaitForSingleObject(CreateEventA(nullptr, FALSE, FALSE, nullptr), INFINITE); }),
               "(main) waits for event");
    ExpectPart(ExpectOutcome(Outcome::kLeftover,
                             [] {
                                 CloseHandle(CreateThread(
                                     nullptr, 0,
                                     [](LPVOID) -> DWORD {
                                         Sleep(INFINITE);
                                         return 0;
                                     },
                                     nullptr, 0, nullptr));
                                 Sleep(100);
                             }),
               "sleeps for ever");
    ExpectPart(ExpectOutcome(Outcome::kTimeLimit, [] { Sleep(20'000); }, 10 * kSecond), "(main) sleeps until");
    bool wentOn = false;
    const std::string report = ExpectOutcome(Outcome::kFailed, [&] {
        Simulation::Current()->Trace("a mark");
        Simulation::Current()->Fail("a title is lost");
        wentOn = true;
    });
    EXPECT_FALSE(wentOn);
    for (const char* part : {"a title is lost", "seed 1", "(main) runs", "a mark"}) {
        ExpectPart(report, part);
    }
}

TEST(Outcome, AThreadThatNeverLetsTimePassIsFound) {
    using Spin = void (*)(Shared<int>&);
    const Spin spins[] = {
        [](Shared<int>& flag) {
            while (flag == 0) {}
        },
        [](Shared<int>&) {
            while (true) {
                Sleep(0);
            }
        },
        [](Shared<int>&) {
            while (GetTickCount() < 100) {}
        },
    };
    for (const Spin spin : spins) {
        for (const bool alone : {true, false}) {
            Shared<int> flag = 0;
            ExpectOutcome(Outcome::kStandstill, [&] {
                if (alone) {
                    spin(flag);
                }
                Thread other([&] { spin(flag); });
                spin(flag);
            });
        }
    }
}

// Both threads get through in some orders; where they do not, the circle is found at once, though a third still sleeps.
TEST(Outcome, ACircleOfLocksIsFoundWhileOthersGoOn) {
    int found = 0;
    for (std::uint64_t seed = 1; seed <= 100; ++seed) {
        Simulation simulation({.seed = seed});
        Lock first;
        Lock second;
        const auto takeBoth = [](Lock& one, Lock& other) {
            Sleep(1);
            EnterCriticalSection(&one.section);
            EnterCriticalSection(&other.section);
            LeaveCriticalSection(&other.section);
            LeaveCriticalSection(&one.section);
        };
        const bool done = simulation.Run(
            [&] {
                Thread sleeper([] { Sleep(2000); });
                Thread a([&] { takeBoth(first, second); });
                Thread b([&] { takeBoth(second, first); });
            },
            kHour);
        if (done) {
            continue;
        }
        ++found;
        EXPECT_EQ(simulation.Result(), Outcome::kDeadlock) << simulation.Report();
        EXPECT_LT(simulation.Now(), kSecond);
        first.Forget();
        second.Forget();
    }
    EXPECT_GT(found, 0);
    EXPECT_LT(found, 100);
}

// Whichever of the two comes to its wait last closes the circle.
TEST(Outcome, WaitingForAThreadThatWaitsForTheLockIsADeadlock) {
    for (const DWORD ownerMs : {0U, 100U}) {
        ExpectOutcome(Outcome::kDeadlock, [ownerMs] {
            Thread sleeper([] { Sleep(2 * 3600 * 1000); });
            Lock lock;
            EnterCriticalSection(&lock.section);
            Thread other([&] {
                Sleep(50);
                EnterCriticalSection(&lock.section);
                LeaveCriticalSection(&lock.section);
            });
            Sleep(ownerMs);
        });
    }
}

TEST(Outcome, MisuseEndsTheRun) {
    const std::function<void()> misuses[] = {
        [] {
            Lock lock;
            LeaveCriticalSection(&lock.section);
        },
        [] {
            Lock lock;
            EnterCriticalSection(&lock.section);
            Thread other([&] { LeaveCriticalSection(&lock.section); });
        },
        [] {
            Lock lock;
            EnterCriticalSection(&lock.section);
        },
        [] {
            CRITICAL_SECTION unmade = {};
            EnterCriticalSection(&unmade);
        },
        [] {
            CRITICAL_SECTION section;
            InitializeCriticalSection(&section);
            DeleteCriticalSection(&section);
            EnterCriticalSection(&section);
        },
        [] {
            static CRITICAL_SECTION section;
            InitializeCriticalSection(&section);
            Thread other([] { EnterCriticalSection(&section); });
        },
        [] { CloseHandle(nullptr); },
        [] { CloseHandle(INVALID_HANDLE_VALUE); },
        [] {
            const HANDLE event = CreateEventA(nullptr, FALSE, FALSE, nullptr);
            CloseHandle(event);
            const HANDLE next = CreateEventA(nullptr, FALSE, FALSE, nullptr);
            EXPECT_NE(event, next);
            CloseHandle(event);
        },
        [] {
            HANDLE self = nullptr;
            Thread thread([&] { WaitForSingleObject(self, 10); });
            self = thread.handle;
            Sleep(1);
        },
    };
    int number = 0;
    for (const auto& misuse : misuses) {
        SCOPED_TRACE(number++);
        ExpectOutcome(Outcome::kMisuse, misuse);
    }
}

}  // namespace
