// Objects on native controls: binding, the routing of messages, Tab, and the two buttons.
#include "WindowBase.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "Harness.h"
#include "MessageLog.h"
#include "PaneButtons.h"
#include "PaneRequests.h"

namespace {

constexpr int kControl = 7;

std::string story;

void Tell(const char* what, std::initializer_list<LONG_PTR> values) {
    story += what;
    for (const LONG_PTR value : values) {
        story += " " + std::to_string(value);
    }
    story += "\n";
}

std::string TakeStory() {
    std::string taken;
    taken.swap(story);
    return taken;
}

LONG_PTR Number(const void* handle) {
    return reinterpret_cast<LONG_PTR>(handle);
}

// Tells of every call.
class Control : public WindowBase {
public:
    ~Control() override { Tell("deleted", {}); }
    void OnAttach() override {
        Tell("attach", {});
        SendMessageA(hwnd, WM_USER, 1, 1);
    }
    void OnDrawItem(DRAWITEMSTRUCT* item) override { Tell("draw", {Number(item)}); }
    void OnKeyDown(UINT key, BOOL isDown, int repeat, UINT flags) override {
        Tell("key", {static_cast<LONG_PTR>(key), isDown, repeat, static_cast<LONG_PTR>(flags)});
    }
    void OnKillFocus(HWND other) override { Tell("kill focus", {Number(other)}); }
    void OnLButtonDown(BOOL isDouble, int x, int y, WPARAM keys) override {
        Tell("down", {isDouble, x, y, static_cast<LONG_PTR>(keys)});
    }
    void OnLButtonUp(int x, int y, WPARAM keys) override { Tell("up", {x, y, static_cast<LONG_PTR>(keys)}); }
    void OnMeasureItem(MEASUREITEMSTRUCT* item) override { Tell("measure", {Number(item)}); }
    void OnMouseMove(int x, int y, WPARAM keys) override { Tell("move", {x, y, static_cast<LONG_PTR>(keys)}); }
    void OnNcCalcSize(int zero, RECT* rect) override { Tell("frame size", {zero, Number(rect)}); }
    void OnNcDestroy() override {
        Tell("end", {});
        if (deletesItself) {
            delete this;
        }
    }
    void OnNcPaint(HRGN region) override { Tell("frame", {Number(region)}); }
    void OnSetFocus(HWND other) override { Tell("focus", {Number(other)}); }
    void OnSize(WPARAM kind, int width, int height) override { Tell("size", {static_cast<LONG_PTR>(kind), width, height}); }
    void OnTimer(UINT_PTR id) override { Tell("timer", {static_cast<LONG_PTR>(id)}); }
    void OnUserMessage(WPARAM code, LPARAM value) override { Tell("user", {static_cast<LONG_PTR>(code), value}); }
    void OnSelChange() override { Tell("selection", {}); }

    void Bind(HWND window) { hwnd = window; }
    void WantTab() { dialogCode = DLGC_WANTTAB; }
    bool deletesItself = false;
};

// The control's own procedure, for messages that a real one would act on.
LRESULT CALLBACK NativeProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE || message == WM_DESTROY || message == WM_NCDESTROY) {
        Tell(message == WM_NCCREATE ? "native begin" : message == WM_DESTROY ? "native destroy" : "native end", {});
        return DefWindowProcA(window, message, wParam, lParam);
    }
    if (message == WM_NCHITTEST) {
        Tell("native hit test", {static_cast<LONG_PTR>(wParam), lParam});
        return HTTRANSPARENT;
    }
    Tell("native", {static_cast<LONG_PTR>(message)});
    return 4711;
}

class WindowBaseTest : public testing::Test {
protected:
    void SetUp() override {
        WNDCLASSEXA native = {};
        native.cbSize = sizeof native;
        native.lpfnWndProc = NativeProc;
        native.hInstance = GetModuleHandleA(nullptr);
        native.lpszClassName = "NativeControl";
        RegisterClassExA(&native);
        parent = MakeTestWindow("parent", WS_OVERLAPPEDWINDOW);
        control = CreateWindowExA(0, "NativeControl", "", WS_CHILD, 0, 0, 50, 20, parent,
                                  reinterpret_cast<HMENU>(static_cast<INT_PTR>(kControl)), native.hInstance, nullptr);
        ASSERT_NE(control, nullptr);
        TakeStory();
    }
    void TearDown() override {
        DestroyWindow(parent);
        UnregisterClassA("NativeControl", GetModuleHandleA(nullptr));
    }

    // What the object and then the control were told.
    std::string Told(UINT message, WPARAM wParam, LPARAM lParam) {
        TakeStory();
        EXPECT_EQ(SendMessageA(control, message, wParam, lParam), 4711) << "the result is the control's own";
        return TakeStory();
    }

    MessageLog log{{}};
    HWND parent = nullptr;
    HWND control = nullptr;
};

// The requests that a parent gets.
std::vector<std::pair<WPARAM, LPARAM>> requests;

bool KeepRequest(HWND, UINT message, WPARAM wParam, LPARAM lParam, LRESULT&) {
    if (message == WM_USER) {
        requests.emplace_back(wParam, lParam);
    }
    return false;
}

}  // namespace

TEST_F(WindowBaseTest, AttachesOnce) {
    Control object;
    EXPECT_EQ(object.Attach(), 0) << "to nothing";
    EXPECT_EQ(object.AttachDlgItem(parent, kControl + 1), 0);
    EXPECT_EQ(TakeStory(), "");
    EXPECT_EQ(object.AttachDlgItem(parent, kControl), 1);
    EXPECT_EQ(TakeStory(), "attach\nnative 1024\n") << "the object is not tied to the window yet";
    EXPECT_EQ(object.Attach(), 0);
    EXPECT_EQ(object.AttachDlgItem(parent, kControl), 0);
    EXPECT_EQ(TakeStory(), "");
    object.Detach();
    EXPECT_EQ(Told(WM_USER, 1, 2), "native 1024\n");
    EXPECT_EQ(object.Attach(), 1) << "again, once it is detached";
    EXPECT_EQ(Told(WM_USER, 1, 2), "user 1 2\nnative 1024\n");
}

TEST_F(WindowBaseTest, EachHandlerRunsAheadOfTheControl) {
    Control object;
    ASSERT_EQ(object.AttachDlgItem(parent, kControl), 1);
    const LPARAM place = MAKELPARAM(static_cast<WORD>(-3), 40000);
    EXPECT_EQ(Told(WM_DRAWITEM, 9, 8), "draw 8\nnative 43\n");
    EXPECT_EQ(Told(WM_MEASUREITEM, 9, 8), "measure 8\nnative 44\n");
    EXPECT_EQ(Told(WM_KILLFOCUS, 9, 8), "kill focus 9\nnative 8\n");
    EXPECT_EQ(Told(WM_SETFOCUS, 9, 8), "focus 9\nnative 7\n");
    EXPECT_EQ(Told(WM_NCPAINT, 1, 8), "frame 1\nnative 133\n");
    EXPECT_EQ(Told(WM_TIMER, 9, 0), "timer 9\nnative 275\n");
    NCCALCSIZE_PARAMS frame = {};
    EXPECT_EQ(Told(WM_NCCALCSIZE, TRUE, Number(&frame)),
              "frame size 0 " + std::to_string(Number(&frame)) + "\nnative 131\n");
    EXPECT_EQ(Told(WM_SIZE, 2, place), "size 2 -3 -25536\nnative 5\n");
    EXPECT_EQ(Told(WM_USER, 103, -1), "user 103 -1\nnative 1024\n");
    EXPECT_EQ(Told(WM_MOUSEMOVE, 5, place), "move -3 -25536 5\nnative 512\n");
    EXPECT_EQ(Told(WM_LBUTTONDOWN, 5, place), "down 0 -3 -25536 5\nnative 513\n");
    EXPECT_EQ(Told(WM_LBUTTONUP, 5, place), "up -3 -25536 5\nnative 514\n");
    EXPECT_EQ(Told(WM_LBUTTONDBLCLK, 5, place), "down 1 -3 -25536 5\nnative 515\n");
    EXPECT_EQ(Told(WM_KEYDOWN, VK_F4, MAKELPARAM(0x8001, 0xC051)), "key 115 1 -32767 49233\nnative 256\n");
    EXPECT_EQ(Told(WM_KEYUP, VK_F4, 1), "native 257\n");
    EXPECT_EQ(Told(WM_USER + 1, 1, 1), "native 1025\n");

    EXPECT_EQ(SendMessageA(control, WM_GETDLGCODE, 0, 0), 0) << "no special keys, whatever the control would say";
    EXPECT_EQ(TakeStory(), "");
    EXPECT_EQ(SendMessageA(control, WM_NCHITTEST, 77, place), HTTRANSPARENT);
    EXPECT_EQ(TakeStory(), "native hit test 0 " + std::to_string(place) + "\n");
}

TEST_F(WindowBaseTest, WindowAndObjectEndTogether) {
    {
        Control object;
        ASSERT_EQ(object.AttachDlgItem(parent, kControl), 1);
        TakeStory();
        object.DestroyNative();
        EXPECT_EQ(TakeStory(), "native destroy\nnative end\n") << "the object hears nothing of it";
        EXPECT_FALSE(IsWindow(control));
        EXPECT_EQ(object.Attach(), 0) << "to what is gone";
    }
    EXPECT_EQ(TakeStory(), "deleted\n");

    HWND button = MakeChild("BUTTON", BS_PUSHBUTTON, parent, 1, 0, 0, 10, 10);
    {
        WindowBase object;
        ASSERT_EQ(object.AttachDlgItem(parent, 1), 1);
    }
    EXPECT_FALSE(IsWindow(button)) << "deleting the object is enough";
}

TEST_F(WindowBaseTest, AnObjectMayEndWithAWindowThatSomebodyElseDestroys) {
    auto* object = new Control;
    object->deletesItself = true;
    ASSERT_EQ(object->AttachDlgItem(parent, kControl), 1);
    TakeStory();
    DestroyWindow(control);
    const std::string told = TakeStory();
    EXPECT_EQ(told.substr(told.find("end\n")), "end\ndeleted\n" + told.substr(told.find("deleted\n") + 8));
    EXPECT_NE(told.find("deleted\n"), std::string::npos);
    EXPECT_FALSE(IsWindow(control));
}

TEST_F(WindowBaseTest, TabIsTheObjectsOwnKey) {
    Control object;
    for (const UINT key : {UINT{VK_RETURN}, UINT{VK_SPACE}, UINT{VK_ESCAPE}, UINT{'A'}, 0U}) {
        EXPECT_EQ(object.HandleTabKey(key, TRUE, 1, 0), 1) << key;
        EXPECT_EQ(object.HandleTabKey(key, FALSE, 1, 0), 1) << key;
    }
    ASSERT_EQ(object.AttachDlgItem(parent, kControl), 1);
    HWND first = MakeChild("BUTTON", BS_PUSHBUTTON, parent, 1, 0, 0, 10, 10);
    ShowWindow(parent, SW_SHOW);
    ASSERT_TRUE(BringForward(parent));
    SetFocus(first);
    EXPECT_EQ(object.HandleTabKey(VK_TAB, FALSE, 1, 0), 0);
    EXPECT_EQ(Told(WM_KEYDOWN, VK_TAB, 1), "native 256\n") << "the control gets the key, OnKeyDown does not";
    object.WantTab();
    EXPECT_EQ(Told(WM_KEYDOWN, VK_TAB, 1), "key 9 1 1 0\nnative 256\n");
}

class PaneButtonTest : public testing::TestWithParam<PaneRequest> {
protected:
    void SetUp() override {
        SetMessageHook(KeepRequest);
        parent = MakeTestWindow("parent", WS_OVERLAPPEDWINDOW);
        control = MakeChild("BUTTON", BS_PUSHBUTTON, parent, kControl, 10, 10, 50, 30);
        if (GetParam() == UC_SYNC) {
            button = std::make_unique<SyncButton>();
        } else {
            button = std::make_unique<StopButton>();
        }
        ASSERT_EQ(button->AttachDlgItem(parent, kControl), 1);
        ShowWindow(parent, SW_SHOW);
        ASSERT_TRUE(BringForward(parent));
        ASSERT_TRUE(PumpAll());
        requests.clear();
    }
    void TearDown() override {
        button.reset();
        DestroyWindow(parent);
    }

    // How many requests come of what the button was just told; all of them are its own.
    size_t Requests() {
        EXPECT_TRUE(requests.empty()) << "posted, not sent";
        EXPECT_TRUE(PumpAll());
        const std::vector<std::pair<WPARAM, LPARAM>> own(requests.size(), {GetParam(), 0});
        EXPECT_EQ(requests, own);
        requests.clear();
        return own.size();
    }

    MessageLog log{{}};
    std::unique_ptr<WindowBase> button;
    HWND parent = nullptr;
    HWND control = nullptr;
};

TEST_P(PaneButtonTest, AsksForEachPressOfSpace) {
    SendMessageA(control, WM_KEYDOWN, VK_SPACE, 1);
    SendMessageA(control, WM_KEYDOWN, VK_SPACE, MAKELPARAM(1, 0x4000));
    SendMessageA(control, WM_KEYDOWN, VK_SPACE, MAKELPARAM(1, 0x4000));
    EXPECT_EQ(Requests(), 3U) << "a key held down repeats";
    SendMessageA(control, WM_KEYUP, VK_SPACE, MAKELPARAM(1, 0xC000));
    SendMessageA(control, WM_KEYDOWN, VK_RETURN, 1);
    SendMessageA(control, WM_KEYUP, VK_RETURN, MAKELPARAM(1, 0xC000));
    EXPECT_EQ(Requests(), 0U);

    SetFocus(control);
    PressKeys({VK_SPACE});
    EXPECT_TRUE(PumpUntil([] { return !requests.empty(); }));
    requests.clear();
}

TEST_P(PaneButtonTest, AsksForAReleaseInside) {
    RECT client = {};
    GetClientRect(control, &client);
    const auto release = [&](LONG x, LONG y) {
        SendMessageA(control, WM_LBUTTONUP, 0, MAKELPARAM(static_cast<WORD>(x), static_cast<WORD>(y)));
        return Requests();
    };
    EXPECT_EQ(release(0, 0), 1U) << "it need not have been pressed";
    EXPECT_EQ(release(client.right - 1, client.bottom - 1), 1U);
    EXPECT_EQ(release(client.right, 0), 0U);
    EXPECT_EQ(release(0, client.bottom), 0U);
    EXPECT_EQ(release(-1, 5), 0U);
    EXPECT_EQ(release(5, -1), 0U);
}

TEST_P(PaneButtonTest, TellsThatItLostTheFocus) {
    HWND other = MakeChild("BUTTON", BS_PUSHBUTTON, parent, 1, 100, 10, 50, 30);
    SetFocus(control);
    ASSERT_TRUE(PumpAll());
    EXPECT_TRUE(requests.empty());
    SetFocus(other);
    EXPECT_TRUE(requests.empty()) << "posted, not sent";
    ASSERT_TRUE(PumpAll());
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].first, UC_FOCUS_LOST);
    EXPECT_EQ(requests[0].second, Number(control));
}

INSTANTIATE_TEST_SUITE_P(Buttons, PaneButtonTest, testing::Values(UC_SYNC, UC_STOP),
                         [](const auto& button) { return button.param == UC_SYNC ? "Sync" : "Stop"; });
