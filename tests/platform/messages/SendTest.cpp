// Messages sent across threads, and what releases a sender.
#include <memory>

#include "Harness.h"

namespace {

constexpr LRESULT kAnswer = 42;

// Ends when a message has been sent to the calling thread, which has not served it.
void AwaitSender() {
    ASSERT_EQ(MsgWaitForMultipleObjects(0, nullptr, FALSE, kLimitMs, QS_SENDMESSAGE), WAIT_OBJECT_0);
}

LRESULT Answering(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return message == WM_USER ? kAnswer : DefWindowProcA(window, message, wParam, lParam);
}

TEST(Send, ServesWhatIsSentBackWhileItWaits) {
    TestWindow own([](HWND window, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT {
        return message == WM_USER ? static_cast<LRESULT>(wParam) * 2 : DefWindowProcA(window, message, wParam, lParam);
    });
    // Goes back and forth until the depth is used up.
    struct Bounce {
        HWND other;
        LRESULT operator()(HWND window, UINT message, WPARAM wParam, LPARAM lParam) const {
            if (message != WM_USER) {
                return DefWindowProcA(window, message, wParam, lParam);
            }
            return 1 + SendMessageA(other, WM_USER, wParam, lParam);
        }
    };
    const PumpingPeer first(Bounce{own.hwnd});
    EXPECT_EQ(SendMessageA(first.hwnd, WM_USER, 5, 0), 11);
    const PumpingPeer second(Bounce{first.hwnd});
    PostMessageA(own.hwnd, WM_USER, 9, 0);
    EXPECT_EQ(SendMessageA(second.hwnd, WM_USER, 6, 0), 14);
    EXPECT_EQ(own.seen.back(), (Seen{WM_USER, Way::kSent, 6})) << "a waiting sender does not take posted messages";
    Drain();
    EXPECT_EQ(own.seen.back(), (Seen{WM_USER, Way::kPosted, 9}));
}

TEST(Send, GoesBeforeWhatWasPostedEarlier) {
    TestWindow window;
    PostMessageA(window.hwnd, WM_USER, 1, 0);
    TestThread sender([&window] { SendMessageA(window.hwnd, WM_USER, 2, 0); });
    AwaitSender();
    window.seen.clear();
    Drain();
    EXPECT_EQ(window.seen, (std::vector<Seen>{{WM_USER, Way::kSent, 2}, {WM_USER, Way::kPosted, 1}}));
}

TEST(Send, PassesAFloodOfPosts) {
    bool served = false;
    long posts = 0;
    TestWindow window([&](HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT {
        if (message == WM_USER && !served) {
            posts++;
            PostMessageA(hwnd, WM_USER, 0, 0);
        }
        served = served || message == WM_USER + 1;
        return DefWindowProcA(hwnd, message, wParam, lParam);
    });
    PostMessageA(window.hwnd, WM_USER, 0, 0);
    const DWORD start = GetTickCount();
    TestThread sender([&window] { SendMessageA(window.hwnd, WM_USER + 1, 0, 0); });
    MSG message;
    while (!served && GetTickCount() - start < kLimitMs && GetMessageA(&message, nullptr, 0, 0) > 0) {
        DispatchMessageA(&message);
    }
    EXPECT_TRUE(served) << "after " << posts << " posts";
    Drain();
}

TEST(Send, EndsWithTheWindowOrTheThread) {
    const struct {
        const char* name;
        TestWindow::Handler handler;
        void (*end)(TestWindow&);
        bool waits;  // the thread goes on until the sender is released
        LRESULT answer;
    } rows[] = {
        {"served", Answering, [](TestWindow&) { Drain(); }, true, kAnswer},
        {"the window is destroyed unserved", Answering, [](TestWindow& w) { DestroyWindow(w.hwnd); }, true, 0},
        {"the thread ends unserved", Answering, [](TestWindow&) {}, false, 0},
        {"the procedure destroys the window and returns",
         [](HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
             if (message == WM_USER) {
                 DestroyWindow(window);
             }
             return Answering(window, message, wParam, lParam);
         },
         [](TestWindow&) { Drain(); }, true, kAnswer},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Event made;
        const Event released;
        HWND target = nullptr;
        // Outlives the thread, so that only the end of the thread can destroy the window where no call does.
        std::unique_ptr<TestWindow> window;
        TestThread thread([&] {
            window = std::make_unique<TestWindow>(row.handler);
            target = window->hwnd;
            made.Set();
            AwaitSender();
            row.end(*window);
            if (row.waits) {
                released.Await();
            }
        });
        made.Await();
        EXPECT_EQ(SendMessageA(target, WM_USER, 0, 0), row.answer);
        released.Set();
        thread.Join();
        EXPECT_FALSE(IsWindow(target));
    }
}

TEST(Send, OneOfTwoSendersWhoseMessageDestroysTheWindow) {
    const Event made;
    HWND target = nullptr;
    LRESULT answers[2] = {-1, -1};
    TestThread owner([&] {
        const TestWindow window([](HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
            if (message == WM_USER) {
                // The second message is there before the first one ends the window.
                EXPECT_EQ(MsgWaitForMultipleObjects(0, nullptr, FALSE, kLimitMs, QS_SENDMESSAGE), WAIT_OBJECT_0);
                DestroyWindow(hwnd);
            }
            return Answering(hwnd, message, wParam, lParam);
        });
        target = window.hwnd;
        made.Set();
        AwaitSender();
        Drain();
    });
    made.Await();
    TestThread first([&] { answers[0] = SendMessageA(target, WM_USER, 0, 0); });
    TestThread second([&] { answers[1] = SendMessageA(target, WM_USER, 0, 0); });
    first.Join();
    second.Join();
    EXPECT_EQ(answers[0] + answers[1], kAnswer);
    EXPECT_EQ(answers[0] * answers[1], 0);
}

}  // namespace
