// Several threads and one window at full load, both ways at once.
#include <memory>

#include "Harness.h"

namespace {

constexpr int kWorkers = 4;
constexpr WPARAM kEach = 25000;      // messages from each worker, and as many to it
constexpr WPARAM kMostAhead = 2000;  // unanswered posts of a worker, so that no queue is ever full
constexpr UINT kSent = WM_USER + 1;
constexpr UINT kPosted = WM_USER + 2;
constexpr UINT kDone = WM_USER + 3;

// Both ways, sent and posted messages count on their own and must each come in order.
struct Counts {
    WPARAM sent = 0;
    WPARAM posted = 0;

    bool Take(UINT message, WPARAM wParam) { return wParam == (message == kSent ? sent++ : posted++); }
};

struct Worker {
    HWND centre = nullptr;
    LPARAM number = 0;
    HWND window = nullptr;  // set before the first message goes out
    Counts out;             // used by the worker
    Counts back;            // used by the worker
    Counts arrived;         // used by the centre
    bool inOrder = true;    // used by the worker

    LRESULT Handle(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message != kSent && message != kPosted) {
            return DefWindowProcA(hwnd, message, wParam, lParam);
        }
        inOrder = back.Take(message, wParam) && inOrder;
        return static_cast<LRESULT>(wParam) + 1;
    }

    void Run() {
        const TestWindow own([this](HWND h, UINT m, WPARAM w, LPARAM l) { return Handle(h, m, w, l); });
        window = own.hwnd;
        for (WPARAM i = 0; i < kEach; i++) {
            if (i % 2 == 0) {
                const WPARAM next = out.sent++;
                ASSERT_EQ(SendMessageA(centre, kSent, next, number), static_cast<LRESULT>(next) + 1);
            } else {
                ASSERT_TRUE(PostMessageA(centre, kPosted, out.posted++, number));
            }
            PumpWhile([this] { return out.posted - back.posted > kMostAhead; });
        }
        PumpWhile([this] { return back.posted < out.posted; });
        ASSERT_TRUE(PostMessageA(centre, kDone, 0, 0));
    }

    template <class Condition>
    static void PumpWhile(Condition condition) {
        MSG message;
        while (condition() && GetMessageA(&message, nullptr, 0, 0) > 0) {
            DispatchMessageA(&message);
        }
    }
};

TEST(Storm, NothingIsLostAndOrderIsKept) {
    Worker workers[kWorkers];
    int done = 0;
    bool inOrder = true;
    const TestWindow centre([&](HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT {
        if (message == kDone) {
            done++;
        }
        if (message != kSent && message != kPosted) {
            return DefWindowProcA(hwnd, message, wParam, lParam);
        }
        Worker& worker = workers[lParam];
        inOrder = worker.arrived.Take(message, wParam) && inOrder;
        // A sent message is answered by one that is sent while its sender waits, a posted one by a post.
        if (message == kSent) {
            EXPECT_EQ(SendMessageA(worker.window, kSent, wParam, 0), static_cast<LRESULT>(wParam) + 1);
        } else {
            EXPECT_TRUE(PostMessageA(worker.window, kPosted, wParam, 0));
        }
        return static_cast<LRESULT>(wParam) + 1;
    });
    std::vector<std::unique_ptr<TestThread>> threads;
    for (int i = 0; i < kWorkers; i++) {
        workers[i].centre = centre.hwnd;
        workers[i].number = i;
        threads.push_back(std::make_unique<TestThread>([&worker = workers[i]] { worker.Run(); }));
    }
    Worker::PumpWhile([&done] { return done < kWorkers; });
    threads.clear();
    EXPECT_TRUE(inOrder);
    for (const Worker& worker : workers) {
        EXPECT_TRUE(worker.inOrder);
        for (const Counts& counts : {worker.out, worker.back, worker.arrived}) {
            EXPECT_EQ(counts.sent, kEach / 2);
            EXPECT_EQ(counts.posted, kEach / 2);
        }
    }
}

}  // namespace
