#include <gtest/gtest.h>
#include <windows.h>

#include "Run.h"
#include "ThreadTools.h"

namespace {

TEST(Time, NeitherASleepNorATimeoutIsEarly) {
    RunProgram([] {
        const Event event(false);
        for (const bool fine : {false, true}) {
            if (fine) {
                timeBeginPeriod(1);
            }
            for (const DWORD ms : {1U, 3U, 16U}) {
                const DWORD start = GetTickCount();
                EXPECT_EQ(WaitForSingleObject(event.handle, ms), WAIT_TIMEOUT);
                const DWORD middle = GetTickCount();
                EXPECT_GE(middle - start, ms);
                Sleep(ms);
                EXPECT_GE(GetTickCount() - middle, ms);
            }
        }
        timeEndPeriod(1);
    });
}

TEST(Time, OnlyAPeriodOfAMillisecondIsHeldAndOnlyWhatIsHeldEnds) {
    RunProgram([] {
        EXPECT_EQ(timeEndPeriod(1), TIMERR_NOCANDO);
        EXPECT_EQ(timeBeginPeriod(2), TIMERR_NOCANDO);
        EXPECT_EQ(timeBeginPeriod(1), TIMERR_NOERROR);
        EXPECT_EQ(timeBeginPeriod(1), TIMERR_NOERROR);
        EXPECT_EQ(timeEndPeriod(1), TIMERR_NOERROR);
        EXPECT_EQ(timeEndPeriod(1), TIMERR_NOERROR);
        EXPECT_EQ(timeEndPeriod(1), TIMERR_NOCANDO);
    });
}

}  // namespace
