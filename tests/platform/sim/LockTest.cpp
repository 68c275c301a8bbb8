// Critical sections: one at a time, deadlocks found, rules enforced.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <functional>

#include "Shared.h"
#include "SimTools.h"
#include "Simulation.h"

namespace {

using Outcome = Simulation::Outcome;

TEST(Lock, OnlyOneThreadIsInside) {
    for (std::uint64_t seed = 1; seed <= 50; ++seed) {
        Simulation simulation({.seed = seed, .switchChance = 0.5});
        Lock lock;
        Shared<int> inside = 0;
        int most = 0;
        int entries = 0;
        const auto work = [&] {
            for (int i = 0; i < 20; ++i) {
                EnterCriticalSection(&lock.section);
                EnterCriticalSection(&lock.section);
                most = std::max(most, inside.Add(1));
                ++entries;
                if (i % 7 == 0) {
                    Sleep(1);
                }
                LeaveCriticalSection(&lock.section);
                most = std::max<int>(most, inside);
                inside.Add(-1);
                LeaveCriticalSection(&lock.section);
            }
        };
        ExpectDone(simulation, [&] {
            Thread a(work);
            Thread b(work);
            Thread c(work);
        });
        EXPECT_EQ(most, 1) << "seed " << seed;
        EXPECT_EQ(entries, 60) << "seed " << seed;
    }
}

// Both threads get through in some orders; where they do not, the circle is found at once, though a third still polls.
TEST(Lock, ACircleOfLocksIsFoundWhileOthersGoOn) {
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
                Shared<int> polls = 1;
                Thread poller([&] {
                    while (polls) {
                        Sleep(1);
                    }
                });
                {
                    Thread a([&] { takeBoth(first, second); });
                    Thread b([&] { takeBoth(second, first); });
                }
                polls = 0;
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
TEST(Lock, WaitingForAThreadThatWaitsForTheLockIsADeadlock) {
    for (const DWORD ownerMs : {0U, 100U}) {
        ExpectOutcome(Outcome::kDeadlock, [ownerMs] {
            Thread poller([] {
                while (true) {
                    Sleep(1);
                }
            });
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

TEST(Lock, NobodyWhoCanEverGoOnIsADeadlock) {
    Simulation simulation({});
    EXPECT_FALSE(simulation.Run([] { WaitForSingleObject(CreateEventA(nullptr, FALSE, FALSE, nullptr), INFINITE); }, kHour));
    EXPECT_EQ(simulation.Result(), Outcome::kDeadlock);
    EXPECT_NE(simulation.Report().find("(main) waits for event"), std::string::npos) << simulation.Report();
}

TEST(Lock, MisuseEndsTheRun) {
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
