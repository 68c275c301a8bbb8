// Messages sent from other threads while the user thread is in and out of modal loops.
#include <gtest/gtest.h>

#include <string>

#include "Harness.h"
#include "MessageLog.h"
#include "Shared.h"

namespace {

constexpr int kSenders = 2;
constexpr int kMessagesEach = TESSELIA_STORM_MESSAGES / kSenders;
constexpr int kLeastBoxes = 2;
constexpr UINT kStormMessage = WM_USER + 20;
constexpr DWORD kStormLimitMs = 100000;

int received[kSenders];
Shared<int> sent[kSenders];
int outOfOrder;
HWND target;
Shared<int> boxes;
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
    // Not through before a box has closed and another one opened.
    for (int i = 0; i < kMessagesEach || boxes < kLeastBoxes; ++i) {
        sent[sender].Add(1);
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
    const DWORD begin = GetTickCount();
    while (sendersDone != kSenders && GetTickCount() - begin < kStormLimitMs) {
        DialogAnswer answer("Question", IDYES);
        EXPECT_EQ(MessageBoxA(target, "Go on?", "Question", MB_YESNO), IDYES);
        boxes.Add(1);
    }
    EXPECT_TRUE(PumpUntil([] { return sendersDone == kSenders; }));
    EXPECT_GE(boxes, kLeastBoxes);
    for (int i = 0; i < kSenders; ++i) {
        EXPECT_GE(received[i], kMessagesEach);
        EXPECT_EQ(received[i], sent[i]);
    }
    EXPECT_EQ(outOfOrder, 0);
    EXPECT_EQ(wrongAnswers, 0);
    for (HANDLE thread : threads) {
        WaitForSingleObject(thread, kLimitMs);
        CloseHandle(thread);
    }
    SetMessageHook(nullptr);
    DestroyWindow(target);
}
