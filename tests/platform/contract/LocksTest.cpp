#include <gtest/gtest.h>
#include <windows.h>

#include "Run.h"
#include "ThreadTools.h"

namespace {

TEST(Locks, OneThreadIsInsideUntilItHasLeftAsOftenAsItEntered) {
    RunProgram([] {
        constexpr int kRounds = 5000;
        Lock lock;
        Event go(true);
        int counted = 0;
        const auto count = [&] {
            WaitForSingleObject(go.handle, INFINITE);
            for (int i = 0; i < kRounds; ++i) {
                EnterCriticalSection(&lock.section);
                EnterCriticalSection(&lock.section);
                const int before = counted;
                LeaveCriticalSection(&lock.section);
                if (i % 16 == 0) {
                    Sleep(0);
                }
                counted = before + 1;
                LeaveCriticalSection(&lock.section);
            }
        };
        {
            const Thread a(count);
            const Thread b(count);
            const Thread c(count);
            SetEvent(go.handle);
        }
        EXPECT_EQ(counted, 3 * kRounds);
    });
}

}  // namespace
