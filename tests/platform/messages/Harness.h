// Windows, threads and events for the tests of messages; all of it in calls that Windows has too.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <functional>
#include <ostream>
#include <utility>
#include <vector>

constexpr DWORD kLimitMs = 60000;
constexpr LPCSTR kTestClass = "TesseliaMessageTest";
constexpr int kTestExtra = 2 * static_cast<int>(sizeof(LONG_PTR));

enum class Way { kSent, kPosted };

struct Seen {
    UINT message;
    Way way = Way::kSent;
    WPARAM wParam = 0;
    bool operator==(const Seen&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Seen& seen) {
    return out << "message " << seen.message << (seen.way == Way::kPosted ? " posted" : " sent") << ", wParam "
               << seen.wParam;
}

// A window on the thread that makes it. What its procedure sees is noted; messages of a platform's own that the tests do
// not speak of are left out.
class TestWindow {
public:
    using Handler = std::function<LRESULT(HWND, UINT, WPARAM, LPARAM)>;

    explicit TestWindow(Handler handler = DefWindowProcA) : handler(std::move(handler)) {
        WNDCLASSEXA description{};
        description.cbSize = sizeof description;
        description.lpfnWndProc = Procedure;
        description.cbWndExtra = kTestExtra;
        description.lpszClassName = kTestClass;
        RegisterClassExA(&description);  // known already from the second window on
        hwnd = CreateWindowExA(0, kTestClass, "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, this);
    }
    ~TestWindow() {
        if (IsWindow(hwnd)) {
            DestroyWindow(hwnd);
        }
    }
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;

    static LRESULT Dispatch(const MSG& message) {
        if (TestWindow* target = Of(message.hwnd)) {
            target->dispatched = message.message;
        }
        return DispatchMessageA(&message);
    }

    HWND hwnd = nullptr;
    std::vector<Seen> seen;

private:
    static TestWindow* Of(HWND window) { return reinterpret_cast<TestWindow*>(GetWindowLongPtrA(window, GWLP_USERDATA)); }

    static bool IsNoted(UINT message) {
        return message == WM_NCCREATE || message == WM_CREATE || message == WM_CLOSE || message == WM_DESTROY ||
               message == WM_NCDESTROY || message == WM_TIMER || message >= WM_USER;
    }

    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == WM_NCCREATE) {
            SetWindowLongPtrA(window, GWLP_USERDATA,
                              reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTA*>(lParam)->lpCreateParams));
        }
        TestWindow* self = Of(window);
        if (self == nullptr) {
            return DefWindowProcA(window, message, wParam, lParam);
        }
        const UINT direct = std::exchange(self->dispatched, WM_NULL);
        if (IsNoted(message)) {
            const bool posted = direct == message;
            self->seen.push_back({message, posted ? Way::kPosted : Way::kSent, message >= WM_USER ? wParam : 0});
        }
        return self->handler(window, message, wParam, lParam);
    }

    Handler handler;
    UINT dispatched = WM_NULL;  // the number of a posted message on its way to the procedure
};

// Dispatches all that is there.
inline void Drain() {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        TestWindow::Dispatch(message);
    }
}

inline void PumpUntilQuit() {
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0) > 0) {
        TestWindow::Dispatch(message);
    }
}

class Event {
public:
    Event() = default;
    ~Event() { CloseHandle(handle); }
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

    void Set() const { SetEvent(handle); }
    void Await() const { ASSERT_EQ(WaitForSingleObject(handle, kLimitMs), WAIT_OBJECT_0); }

    HANDLE handle = CreateEventA(nullptr, TRUE, FALSE, nullptr);
};

class TestThread {
public:
    explicit TestThread(std::function<void()> work) : work(std::move(work)) {
        thread = CreateThread(nullptr, 0, Main, this, 0, &id);
    }
    ~TestThread() { Join(); }
    TestThread(const TestThread&) = delete;
    TestThread& operator=(const TestThread&) = delete;

    // Serves what is sent to the caller meanwhile.
    void Join() {
        if (thread == nullptr) {
            return;
        }
        DWORD result = WAIT_OBJECT_0 + 1;
        while (result == WAIT_OBJECT_0 + 1) {
            result = MsgWaitForMultipleObjects(1, &thread, FALSE, kLimitMs, QS_SENDMESSAGE);
            MSG message;
            PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
        }
        EXPECT_EQ(result, WAIT_OBJECT_0) << "a thread of the test does not end";
        CloseHandle(thread);
        thread = nullptr;
    }

    DWORD id = 0;

private:
    static DWORD WINAPI Main(LPVOID self) {
        static_cast<TestThread*>(self)->work();
        return 0;
    }

    std::function<void()> work;
    HANDLE thread = nullptr;
};

// A window on a thread of its own that pumps until the object goes.
class PumpingPeer {
public:
    explicit PumpingPeer(TestWindow::Handler handler = DefWindowProcA) : handler(std::move(handler)) { ready.Await(); }
    ~PumpingPeer() {
        PostMessageA(keeper, WM_QUIT, 0, 0);
        thread.Join();
    }

    HWND hwnd = nullptr;
    HWND keeper = nullptr;  // a second window of the thread, which no test destroys

private:
    TestWindow::Handler handler;
    Event ready;
    TestThread thread{[this] {
        const TestWindow window(handler);
        const TestWindow second;
        hwnd = window.hwnd;
        keeper = second.hwnd;
        ready.Set();
        PumpUntilQuit();
    }};
};
