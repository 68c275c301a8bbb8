#include <signal.h>
#include <unistd.h>

#include <atomic>

#include "TestSupport.h"

namespace {

std::atomic<int> gInterrupts{0};
std::atomic<int> gBreaks{0};
std::atomic<DWORD> gHandlerThread{0};

BOOL WINAPI CountRequests(DWORD event) {
    gHandlerThread = GetCurrentThreadId();
    ++(event == CTRL_C_EVENT ? gInterrupts : gBreaks);
    return TRUE;
}

BOOL WINAPI LetTheProcessEnd(DWORD) {
    return FALSE;
}

TEST(Console, RequestsToEndReachTheHandlerOnAThreadOfItsOwn) {
    gInterrupts = 0;
    gBreaks = 0;
    ASSERT_TRUE(SetConsoleCtrlHandler(CountRequests, TRUE));
    kill(getpid(), SIGINT);
    EXPECT_TRUE(WaitUntil([] { return gInterrupts == 1; }));
    EXPECT_EQ(gBreaks, 0);
    kill(getpid(), SIGTERM);
    EXPECT_TRUE(WaitUntil([] { return gBreaks == 1; }));
    EXPECT_EQ(gInterrupts, 1);
    EXPECT_NE(gHandlerThread, GetCurrentThreadId());
}

TEST(ConsoleDeathTest, AHandlerThatDeclinesLetsTheProcessEnd) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            SetConsoleCtrlHandler(LetTheProcessEnd, TRUE);
            kill(getpid(), SIGTERM);
            WaitUntil([] { return false; });
        },
        testing::KilledBySignal(SIGTERM), "");
}

}  // namespace
