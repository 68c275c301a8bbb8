// The restartable thread of the link, as a real one.
#include "WorkerThread.h"

#include <gtest/gtest.h>

#include <atomic>

#include "MessageWindow.h"
#include "Process.h"
#include "PumpUntil.h"

namespace {

void Count(LPARAM counter) {
    ++*reinterpret_cast<std::atomic<int>*>(counter);
}

LPARAM Param(std::atomic<int>& counter) {
    return reinterpret_cast<LPARAM>(&counter);
}

TEST(WorkerThreadTest, KeepsItsPeriodWhenZeroIsRefused) {
    constexpr DWORD kPeriodMs = 100;
    WorkerThread worker;
    ASSERT_TRUE(worker.SetPeriod(kPeriodMs));
    EXPECT_FALSE(worker.SetPeriod(0));
    std::atomic<int> calls = 0;
    const DWORD begin = GetTickCount();
    ASSERT_TRUE(worker.Start(Count, Param(calls)));
    ASSERT_TRUE(WaitUntil([&] { return calls > 0; }));
    // The tick count may be coarse.
    EXPECT_GE(GetTickCount() - begin, kPeriodMs - 16) << "the first call comes one period after the start";
}

TEST(WorkerThreadTest, StartsOnceAndAgainAfterAStop) {
    std::size_t withWorker = 0;
    std::atomic<int> first = 0;
    std::atomic<int> second = 0;
    {
        WorkerThread worker;
        worker.Stop();
        ASSERT_TRUE(worker.Start(Count, Param(first)));
        EXPECT_FALSE(worker.Start(Count, Param(second)));
        const int before = first;
        EXPECT_TRUE(WaitUntil([&] { return first > before + 3; })) << "the refused start has done nothing to the worker";
        EXPECT_EQ(second, 0);
        worker.Stop();
        worker.Stop();
        const int after = first;
        ASSERT_TRUE(worker.Start(Count, Param(second)));
        EXPECT_TRUE(WaitUntil([&] { return second > 3; }));
        EXPECT_EQ(first, after);
        withWorker = CountThreads();
    }
    const int after = second;
    EXPECT_TRUE(WaitUntil([&] { return CountThreads() == withWorker - 1; }, kThreadEndLimit))
        << "the destructor stops the worker";
    EXPECT_EQ(second, after);
}

constexpr UINT kSent = WM_USER + 1;
constexpr UINT kPosted = WM_USER + 2;
constexpr LRESULT kAnswer = 42;

int sentHandled = 0;
int postedHandled = 0;

LRESULT CALLBACK Answer(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    sentHandled += message == kSent ? 1 : 0;
    postedHandled += message == kPosted ? 1 : 0;
    return message == kSent ? kAnswer : DefWindowProcA(window, message, wParam, lParam);
}

struct Sender {
    HWND window = nullptr;
    std::atomic<int> begun = 0;
    std::atomic<int> answered = 0;
};

void SendOnce(LPARAM param) {
    auto* sender = reinterpret_cast<Sender*>(param);
    ++sender->begun;
    if (SendMessageA(sender->window, kSent, 0, 0) == kAnswer) {
        ++sender->answered;
    }
}

TEST(WorkerThreadTest, StopsAWorkerThatStandsInASendToTheStoppingThread) {
    Sender sender;
    sender.window = MakeMessageWindow("WorkerThreadTest", Answer);
    ASSERT_NE(sender.window, nullptr);
    ASSERT_TRUE(PostMessageA(sender.window, kPosted, 0, 0));

    WorkerThread worker;
    for (int round = 1; round <= 20; ++round) {
        ASSERT_TRUE(worker.Start(SendOnce, reinterpret_cast<LPARAM>(&sender)));
        // This thread serves nothing meanwhile, so the worker gets no further than its send.
        ASSERT_TRUE(WaitUntil([&] { return sender.begun == round; }));
        worker.Stop();
        ASSERT_EQ(sender.begun, round);
        ASSERT_EQ(sender.answered, round);
        ASSERT_EQ(sentHandled, round);
    }
    EXPECT_EQ(postedHandled, 0) << "a stop serves what is sent, and leaves alone what is posted";
    EXPECT_TRUE(PumpUntil([] { return postedHandled == 1; }, 10000));
    DestroyWindow(sender.window);
}

}  // namespace
