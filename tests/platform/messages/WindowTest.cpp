// Windows from their creation to their end, their classes, and what they keep.
#include "Harness.h"

namespace {

using List = std::vector<Seen>;

// A call on a window, and the messages that it must produce.
struct Row {
    const char* name;
    TestWindow::Handler handler;
    void (*call)(HWND);
    bool alive;
    List messages;
};

// Handles one message with an action and a result, the others by default.
TestWindow::Handler On(UINT which, std::function<LRESULT(HWND)> action) {
    return [which, action](HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        return message == which ? action(window) : DefWindowProcA(window, message, wParam, lParam);
    };
}

void Nothing(HWND) {}
void Destroy(HWND window) {
    EXPECT_TRUE(DestroyWindow(window));
}
void Send(HWND window) {
    SendMessageA(window, WM_USER, 1, 0);
}
void Post(HWND window) {
    PostMessageA(window, WM_USER, 1, 0);
    PostMessageA(window, WM_USER, 2, 0);
    Drain();
}
LRESULT DestroyAnd(HWND window, LRESULT result) {
    Destroy(window);
    return result;
}

const List kCreation = {{WM_NCCREATE}, {WM_CREATE}};
const List kEnd = {{WM_DESTROY}, {WM_NCDESTROY}};

List Joined(List first, const List& middle, const List& last = {}) {
    first.insert(first.end(), middle.begin(), middle.end());
    first.insert(first.end(), last.begin(), last.end());
    return first;
}

TEST(Window, TableOfCallsAndMessages) {
    const Row rows[] = {
        {"create", DefWindowProcA, Nothing, true, kCreation},
        {"WM_NCCREATE refused",
         On(WM_NCCREATE, [](HWND) { return FALSE; }),
         nullptr,
         false,
         {{WM_NCCREATE}, {WM_NCDESTROY}}},
        {"WM_CREATE refused", On(WM_CREATE, [](HWND) { return -1; }), nullptr, false, Joined(kCreation, kEnd)},
        {"destroyed in WM_CREATE", On(WM_CREATE, [](HWND w) { return DestroyAnd(w, 0); }), nullptr, false,
         Joined(kCreation, kEnd)},
        {"destroy", DefWindowProcA, Destroy, false, Joined(kCreation, kEnd)},
        {"close sent", DefWindowProcA, [](HWND w) { SendMessageA(w, WM_CLOSE, 0, 0); }, false,
         Joined(kCreation, {{WM_CLOSE}}, kEnd)},
        {"close posted", DefWindowProcA,
         [](HWND w) {
             PostMessageA(w, WM_CLOSE, 0, 0);
             Drain();
         },
         false, Joined(kCreation, {{WM_CLOSE, Way::kPosted}}, kEnd)},
        {"close kept away", On(WM_CLOSE, [](HWND) { return 0; }), [](HWND w) { SendMessageA(w, WM_CLOSE, 0, 0); }, true,
         Joined(kCreation, {{WM_CLOSE}})},
        {"send", DefWindowProcA, Send, true, Joined(kCreation, {{WM_USER, Way::kSent, 1}})},
        {"post", DefWindowProcA, Post, true, Joined(kCreation, {{WM_USER, Way::kPosted, 1}, {WM_USER, Way::kPosted, 2}})},
        {"destroyed in its own procedure, with a post left", On(WM_USER, [](HWND w) { return DestroyAnd(w, 0); }), Post,
         false, Joined(kCreation, {{WM_USER, Way::kPosted, 1}}, kEnd)},
        {"post in WM_DESTROY", On(WM_DESTROY, [](HWND w) { return PostMessageA(w, WM_USER, 0, 0), 0; }),
         [](HWND w) {
             Destroy(w);
             Drain();
         },
         false, Joined(kCreation, kEnd)},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        TestWindow window(row.handler);
        EXPECT_EQ(window.hwnd != nullptr, row.call != nullptr);
        if (row.call != nullptr) {
            row.call(window.hwnd);
        }
        EXPECT_EQ(window.seen, row.messages);
        EXPECT_EQ(IsWindow(window.hwnd), row.alive);
    }
}

TEST(Window, IsThereUntilItsLastMessageIsOver) {
    BOOL there = FALSE;
    TestWindow window([&there](HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
        there = message == WM_NCDESTROY ? IsWindow(hwnd) : there;
        return message == WM_USER ? 5 : DefWindowProcA(hwnd, message, wParam, lParam);
    });
    EXPECT_EQ(SendMessageA(window.hwnd, WM_USER, 0, 0), 5);
    EXPECT_TRUE(PostMessageA(window.hwnd, WM_USER, 0, 0));
    EXPECT_TRUE(DestroyWindow(window.hwnd));
    EXPECT_TRUE(there);
    MSG message{};
    EXPECT_FALSE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) << "a post that outlived its window";
    EXPECT_FALSE(DestroyWindow(window.hwnd));
    EXPECT_EQ(SendMessageA(window.hwnd, WM_USER, 0, 0), 0);
    EXPECT_FALSE(PostMessageA(window.hwnd, WM_USER, 0, 0));
    EXPECT_EQ(GetWindowThreadProcessId(window.hwnd, nullptr), 0u);
    message = {window.hwnd, WM_USER, 0, 0, 0, {0, 0}};
    EXPECT_EQ(DispatchMessageA(&message), 0);
    EXPECT_EQ(GetMessageA(&message, window.hwnd, 0, 0), -1);
}

TEST(Window, StaleHandlesStayStale) {
    std::vector<HWND> old;
    for (int i = 0; i < 1000; i++) {
        const TestWindow window;
        for (HWND handle : old) {
            ASSERT_FALSE(IsWindow(handle)) << "handle of an earlier window, at window " << i;
        }
        ASSERT_LE(reinterpret_cast<UINT_PTR>(window.hwnd), 0xFFFFFFFFu);
        old.push_back(window.hwnd);
    }
    EXPECT_FALSE(IsWindow(nullptr));
    EXPECT_FALSE(IsWindow(HWND_MESSAGE));
}

TEST(Window, BelongsToItsThread) {
    PumpingPeer peer;
    EXPECT_NE(GetWindowThreadProcessId(peer.hwnd, nullptr), GetCurrentThreadId());
    EXPECT_FALSE(DestroyWindow(peer.hwnd));
    EXPECT_TRUE(IsWindow(peer.hwnd));
    SendMessageA(peer.hwnd, WM_CLOSE, 0, 0);
    EXPECT_FALSE(IsWindow(peer.hwnd));
}

TEST(Window, ClassesAreKnownByNameInAnyCase) {
    WNDCLASSEXA description{};
    description.cbSize = sizeof description;
    description.lpfnWndProc = DefWindowProcA;
    description.lpszClassName = "TesseliaOther";
    EXPECT_EQ(CreateWindowExA(0, "TesseliaOther", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr), nullptr);
    ASSERT_NE(RegisterClassExA(&description), 0);
    description.lpszClassName = "TESSELIAOTHER";
    EXPECT_EQ(RegisterClassExA(&description), 0);
    HWND window = CreateWindowExA(0, "tesseliaOTHER", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    EXPECT_TRUE(IsWindow(window));
    EXPECT_FALSE(UnregisterClassA("tesseliaother", nullptr));
    DestroyWindow(window);
    EXPECT_TRUE(UnregisterClassA("tesseliaother", nullptr));
    EXPECT_FALSE(UnregisterClassA("tesseliaother", nullptr));
}

TEST(Window, KeepsValuesByIndex) {
    const TestWindow window;
    constexpr int kSecond = static_cast<int>(sizeof(LONG_PTR));
    EXPECT_EQ(SetWindowLongPtrA(window.hwnd, 0, 11), 0);
    EXPECT_EQ(SetWindowLongPtrA(window.hwnd, kSecond, -22), 0);
    EXPECT_EQ(SetWindowLongPtrA(window.hwnd, kSecond, -33), -22);
    EXPECT_EQ(GetWindowLongPtrA(window.hwnd, 0), 11);
    EXPECT_EQ(GetWindowLongPtrA(window.hwnd, kSecond), -33);
    for (const int outside : {kSecond + 1, kTestExtra, 1 << 30}) {
        EXPECT_EQ(SetWindowLongPtrA(window.hwnd, outside, 44), 0) << outside;
    }
    EXPECT_EQ(GetWindowLongPtrA(window.hwnd, kSecond), -33);
}

WNDPROC classProcedure;

LRESULT CALLBACK AddTen(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return 10 + CallWindowProcA(classProcedure, window, message, wParam, lParam);
}

TEST(Window, ProcedureIsLookedUpForEachMessage) {
    TestWindow window([](HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT {
        return message == WM_USER ? static_cast<LRESULT>(wParam) : DefWindowProcA(hwnd, message, wParam, lParam);
    });
    const auto addTen = reinterpret_cast<LONG_PTR>(AddTen);
    classProcedure = reinterpret_cast<WNDPROC>(SetWindowLongPtrA(window.hwnd, GWLP_WNDPROC, addTen));
    EXPECT_EQ(GetWindowLongPtrA(window.hwnd, GWLP_WNDPROC), addTen);
    EXPECT_EQ(SendMessageA(window.hwnd, WM_USER, 3, 0), 13);
    SetWindowLongPtrA(window.hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(classProcedure));
    EXPECT_EQ(SendMessageA(window.hwnd, WM_USER, 3, 0), 3);
}

}  // namespace
