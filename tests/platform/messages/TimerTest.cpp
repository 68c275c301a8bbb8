// Timers.
#include "Harness.h"

namespace {

TEST(Timer, IsNeverFasterThanTenMilliseconds) {
    constexpr int kTicks = 20;
    for (const UINT asked : {0u, 1u, USER_TIMER_MINIMUM}) {
        const TestWindow window;
        const DWORD start = GetTickCount();
        EXPECT_NE(SetTimer(window.hwnd, 0, asked, nullptr), 0u);
        MSG message;
        for (int i = 0; i < kTicks; i++) {
            ASSERT_EQ(GetMessageA(&message, window.hwnd, WM_TIMER, WM_TIMER), TRUE);
            EXPECT_EQ(message.wParam, 0u);
        }
        // The clock of some systems moves in steps of 16 ms.
        EXPECT_GE(GetTickCount() - start, kTicks * USER_TIMER_MINIMUM - 20);
        EXPECT_TRUE(KillTimer(window.hwnd, 0));
    }
}

TEST(Timer, ExpiriesThatNobodyFetchedAreOne) {
    constexpr UINT kPeriodMs = 50;
    const TestWindow window;
    SetTimer(window.hwnd, 1, kPeriodMs, nullptr);
    // Here time itself is what the test waits for: the timer expires eight times while the thread looks for no timer.
    ASSERT_EQ(MsgWaitForMultipleObjects(0, nullptr, FALSE, 8 * kPeriodMs + kPeriodMs / 4, QS_SENDMESSAGE), WAIT_TIMEOUT);
    MSG message;
    const DWORD now = GetTickCount();
    ASSERT_TRUE(PeekMessageA(&message, window.hwnd, 0, 0, PM_NOREMOVE));
    ASSERT_TRUE(PeekMessageA(&message, window.hwnd, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.message, WM_TIMER);
    int more = 0;
    while (PeekMessageA(&message, window.hwnd, 0, 0, PM_REMOVE)) {
        more++;
    }
    // One more is due only if the thread stood still for the rest of the period meanwhile.
    EXPECT_LE(more, static_cast<int>((GetTickCount() - now + kPeriodMs / 2) / kPeriodMs));
}

TEST(Timer, SameNumberReplacesAndKillTakesTheMessageAlong) {
    const TestWindow window;
    MSG message;
    EXPECT_EQ(SetTimer(window.hwnd, 3, USER_TIMER_MINIMUM, nullptr), 3u);
    ASSERT_EQ(MsgWaitForMultipleObjects(0, nullptr, FALSE, kLimitMs, QS_TIMER), WAIT_OBJECT_0);
    // Replaced when it has expired: the message waits for the new period.
    EXPECT_NE(SetTimer(window.hwnd, 3, 1000000, nullptr), 0u);
    EXPECT_FALSE(PeekMessageA(&message, window.hwnd, 0, 0, PM_REMOVE));
    EXPECT_TRUE(KillTimer(window.hwnd, 3));
    EXPECT_FALSE(KillTimer(window.hwnd, 3));
    SetTimer(window.hwnd, 4, USER_TIMER_MINIMUM, nullptr);
    ASSERT_EQ(MsgWaitForMultipleObjects(0, nullptr, FALSE, kLimitMs, QS_TIMER), WAIT_OBJECT_0);
    EXPECT_TRUE(KillTimer(window.hwnd, 4));
    EXPECT_FALSE(PeekMessageA(&message, window.hwnd, 0, 0, PM_REMOVE));
}

int procedureCalls;
void CALLBACK CountCall(HWND, UINT message, UINT_PTR, DWORD) {
    procedureCalls += message == WM_TIMER ? 1 : 100;
}

TEST(Timer, ProcedureIsCalledOnlyWhileTheTimerLives) {
    procedureCalls = 0;
    TestWindow window;
    const UINT_PTR first = SetTimer(nullptr, 0, USER_TIMER_MINIMUM, CountCall);
    const UINT_PTR second = SetTimer(nullptr, 0, 1000000, CountCall);
    EXPECT_NE(first, 0u);
    EXPECT_NE(first, second);
    MSG message;
    ASSERT_EQ(GetMessageA(&message, nullptr, WM_TIMER, WM_TIMER), TRUE);
    EXPECT_EQ(message.wParam, first);
    DispatchMessageA(&message);
    EXPECT_EQ(procedureCalls, 1);
    EXPECT_TRUE(KillTimer(nullptr, first));
    EXPECT_TRUE(KillTimer(nullptr, second));
    DispatchMessageA(&message);
    EXPECT_EQ(procedureCalls, 1) << "a message that outlived its timer";
}

TEST(Timer, EndsWithItsWindowAndYieldsToPosts) {
    TestWindow window;
    const TestWindow other;
    SetTimer(window.hwnd, 1, USER_TIMER_MINIMUM, nullptr);
    ASSERT_EQ(MsgWaitForMultipleObjects(0, nullptr, FALSE, kLimitMs, QS_TIMER), WAIT_OBJECT_0);
    PostMessageA(window.hwnd, WM_USER, 0, 0);
    MSG message;
    ASSERT_EQ(GetMessageA(&message, window.hwnd, 0, 0), TRUE);
    EXPECT_EQ(message.message, WM_USER);
    ASSERT_EQ(GetMessageA(&message, window.hwnd, 0, 0), TRUE);
    EXPECT_EQ(message.message, WM_TIMER);
    DestroyWindow(window.hwnd);
    SetTimer(other.hwnd, 2, 5 * USER_TIMER_MINIMUM, nullptr);
    ASSERT_EQ(GetMessageA(&message, nullptr, 0, 0), TRUE);
    EXPECT_EQ(message.wParam, 2u) << "the first timer would have come before";
    EXPECT_EQ(SetTimer(window.hwnd, 1, USER_TIMER_MINIMUM, nullptr), 0u);
}

}  // namespace
