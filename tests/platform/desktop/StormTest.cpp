// Messages sent from other threads while the user thread is in and out of modal loops.
#include <gtest/gtest.h>

#include <string>

#include "Harness.h"
#include "MessageLog.h"
#include "Shared.h"

namespace {

constexpr int kSenders = 2;
constexpr int kMessagesEach = TESSELIA_STORM_MESSAGES / kSenders;
constexpr UINT kStormMessage = WM_USER + 20;
constexpr DWORD kStormLimitMs = 100000;

int received[kSenders];
int outOfOrder;
HWND target;
Shared<int> wrongAnswers;
Shared<int> sendersDone;

bool CountStorm(HWND, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    if (message != kStormMessage) {
        return false;
    }
    outOfOrder += lParam == received[wParam] ? 0 : 1;
    ++received[wParam];
    result = lParam + 1;
    return true;
}

DWORD WINAPI Send(LPVOID parameter) {
    const auto sender = reinterpret_cast<WPARAM>(parameter);
    for (int i = 0; i < kMessagesEach; ++i) {
        if (SendMessageA(target, kStormMessage, sender, i) != i + 1) {
            wrongAnswers.Add(1);
        }
    }
    sendersDone.Add(1);
    return 0;
}

}  // namespace

TEST(StormTest, NothingIsLostWhileDialogsOpenAndClose) {
    target = MakeTestWindow("main", WS_OVERLAPPEDWINDOW);
    ShowWindow(target, SW_SHOW);
    SetMessageHook(CountStorm);
    HANDLE threads[kSenders];
    for (int i = 0; i < kSenders; ++i) {
        threads[i] = CreateThread(nullptr, 0, Send, reinterpret_cast<LPVOID>(static_cast<ULONG_PTR>(i)), 0, nullptr);
        ASSERT_NE(threads[i], nullptr);
    }
    int boxes = 0;
    const DWORD begin = GetTickCount();
    while (sendersDone != kSenders && GetTickCount() - begin < kStormLimitMs) {
        DialogAnswer answer("Question", IDYES);
        EXPECT_EQ(MessageBoxA(target, "Go on?", "Question", MB_YESNO), IDYES);
        ++boxes;
    }
    EXPECT_TRUE(PumpUntil([] { return sendersDone == kSenders; }));
    EXPECT_GT(boxes, 1);
    EXPECT_EQ(received[0], kMessagesEach);
    EXPECT_EQ(received[1], kMessagesEach);
    EXPECT_EQ(outOfOrder, 0);
    EXPECT_EQ(wrongAnswers, 0);
    for (HANDLE thread : threads) {
        WaitForSingleObject(thread, kLimitMs);
        CloseHandle(thread);
    }
    SetMessageHook(nullptr);
    DestroyWindow(target);
}
