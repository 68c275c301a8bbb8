// Posted messages, filters, quit, and what a wait for input returns for.

#include "Harness.h"

namespace {

TEST(Post, QueueHoldsTenThousand) {
    TestWindow window;
    WPARAM count = 0;
    while (count < 20000 && PostMessageA(window.hwnd, WM_USER, count, 0)) {
        count++;
    }
    EXPECT_EQ(count, 10000u);
    MSG message;
    ASSERT_TRUE(PeekMessageA(&message, window.hwnd, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.wParam, 0u);
    EXPECT_TRUE(PostMessageA(window.hwnd, WM_USER, count, 0));
    Drain();
    EXPECT_EQ(window.seen.back(), (Seen{WM_USER, Way::kPosted, 10000}));
}

TEST(Post, FiltersByWindowAndNumber) {
    const TestWindow a;
    const TestWindow b;
    const struct {
        const char* name;
        HWND window;
        UINT first;
        UINT last;
        std::vector<WPARAM> wParams;
    } rows[] = {
        {"all", nullptr, 0, 0, {1, 2, 3}},
        {"one window", a.hwnd, 0, 0, {1, 3}},
        {"one number", nullptr, WM_USER + 1, WM_USER + 1, {3}},
        {"a range", nullptr, WM_USER, WM_USER + 1, {1, 2, 3}},
        {"window and number", b.hwnd, WM_USER, WM_USER, {2}},
        {"nothing fits", b.hwnd, WM_USER + 1, WM_USER + 5, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        PostMessageA(a.hwnd, WM_USER, 1, 0);
        PostMessageA(b.hwnd, WM_USER, 2, 0);
        PostMessageA(a.hwnd, WM_USER + 1, 3, 0);
        std::vector<WPARAM> found;
        MSG message{};
        while (PeekMessageA(&message, row.window, row.first, row.last, PM_NOREMOVE)) {
            const WPARAM looked = message.wParam;
            ASSERT_TRUE(PeekMessageA(&message, row.window, row.first, row.last, PM_REMOVE));
            EXPECT_EQ(message.wParam, looked);
            found.push_back(message.wParam);
        }
        EXPECT_EQ(found, row.wParams);
        Drain();
    }
}

TEST(Post, QuitComesWhenNothingPostedIsLeftAndBeforeTimers) {
    TestWindow window;
    PostQuitMessage(7);
    PostMessageA(window.hwnd, WM_USER, 1, 0);
    PostMessageA(window.hwnd, WM_USER, 2, 0);
    SetTimer(window.hwnd, 1, USER_TIMER_MINIMUM, nullptr);
    MSG message;
    for (const WPARAM expected : {1u, 2u}) {
        ASSERT_EQ(GetMessageA(&message, nullptr, 0, 0), TRUE);
        EXPECT_EQ(message.wParam, expected);
    }
    ASSERT_EQ(MsgWaitForMultipleObjects(0, nullptr, FALSE, kLimitMs, QS_TIMER), WAIT_OBJECT_0);
    ASSERT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE));
    EXPECT_EQ(message.message, WM_QUIT);
    EXPECT_EQ(GetMessageA(&message, nullptr, 0, 0), FALSE);
    EXPECT_EQ(message.message, WM_QUIT);
    EXPECT_EQ(message.wParam, 7u);
    ASSERT_EQ(GetMessageA(&message, nullptr, 0, 0), TRUE);
    EXPECT_EQ(message.message, WM_TIMER);
}

TEST(MsgWait, ReturnsForWhatWasNotYetLookedAt) {
    const TestWindow window;
    const auto ready = [](UINT mask) { return MsgWaitForMultipleObjects(0, nullptr, FALSE, 0, mask) == WAIT_OBJECT_0; };
    Drain();
    MSG message;
    EXPECT_FALSE(ready(QS_ALLINPUT));
    PostMessageA(window.hwnd, WM_USER, 0, 0);
    EXPECT_FALSE(ready(QS_SENDMESSAGE));
    EXPECT_TRUE(ready(QS_POSTMESSAGE));
    // A look for sent messages alone neither takes what was posted nor makes it old.
    EXPECT_FALSE(PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE));
    EXPECT_TRUE(ready(QS_ALLINPUT));
    EXPECT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE));
    EXPECT_FALSE(ready(QS_ALLINPUT)) << "the message is still there, but was seen";
    PostMessageA(window.hwnd, WM_USER, 0, 0);
    EXPECT_TRUE(ready(QS_ALLINPUT));
    Drain();
}

TEST(MsgWait, TellsHandlesFromInput) {
    const TestWindow window;
    const Event first;
    const Event second;
    const HANDLE handles[] = {first.handle, second.handle};
    EXPECT_EQ(MsgWaitForMultipleObjects(2, handles, FALSE, 0, QS_ALLINPUT), WAIT_TIMEOUT);
    PostMessageA(window.hwnd, WM_USER, 0, 0);
    EXPECT_EQ(MsgWaitForMultipleObjects(2, handles, FALSE, INFINITE, QS_ALLINPUT), WAIT_OBJECT_0 + 2);
    second.Set();
    EXPECT_EQ(MsgWaitForMultipleObjects(2, handles, FALSE, INFINITE, QS_ALLINPUT), WAIT_OBJECT_0 + 1);
    Drain();
    const std::vector<HANDLE> many(MAXIMUM_WAIT_OBJECTS, first.handle);
    EXPECT_EQ(MsgWaitForMultipleObjects(MAXIMUM_WAIT_OBJECTS, many.data(), FALSE, 0, QS_ALLINPUT), WAIT_FAILED);
}

TEST(MsgWait, ForSentMessagesAloneLeavesPostsAlone) {
    TestWindow window;
    PostMessageA(window.hwnd, WM_USER, 1, 0);
    {
        TestThread sender([&window] {
            PostMessageA(window.hwnd, WM_USER, 2, 0);
            SendMessageA(window.hwnd, WM_USER + 1, 0, 0);
        });
        sender.Join();
    }
    EXPECT_EQ(window.seen.back(), (Seen{WM_USER + 1, Way::kSent, 0}));
    window.seen.clear();
    Drain();
    EXPECT_EQ(window.seen, (std::vector<Seen>{{WM_USER, Way::kPosted, 1}, {WM_USER, Way::kPosted, 2}}));
}

}  // namespace
