// Objects on native controls: binding, the routing of messages, and Tab.
#include "WindowBase.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "Harness.h"
#include "MessageLog.h"

namespace {

constexpr int kControl = 7;

std::string story;

template <class... Values>
void Tell(const char* what, Values... values) {
    story += what;
    ((story += " " + std::to_string(static_cast<LONG_PTR>(values))), ...);
    story += "\n";
}

std::string TakeStory() {
    return std::exchange(story, "");
}

LONG_PTR Number(const void* handle) {
    return reinterpret_cast<LONG_PTR>(handle);
}

// Tells of every call.
class Control : public WindowBase {
public:
    ~Control() override { Tell("deleted"); }
    void OnAttach() override {
        Tell("attach");
        SendMessageA(hwnd, WM_USER, 1, 1);
    }
    void OnDrawItem(DRAWITEMSTRUCT* item) override { Tell("draw", Number(item)); }
    void OnKeyDown(UINT key, BOOL isDown, int repeat, UINT flags) override { Tell("key", key, isDown, repeat, flags); }
    void OnKillFocus(HWND other) override { Tell("kill focus", Number(other)); }
    void OnLButtonDown(BOOL isDouble, int x, int y, WPARAM keys) override { Tell("down", isDouble, x, y, keys); }
    void OnLButtonUp(int x, int y, WPARAM keys) override { Tell("up", x, y, keys); }
    void OnMeasureItem(MEASUREITEMSTRUCT* item) override { Tell("measure", Number(item)); }
    void OnMouseMove(int x, int y, WPARAM keys) override { Tell("move", x, y, keys); }
    void OnNcCalcSize(int zero, RECT* rect) override { Tell("frame size", zero, Number(rect)); }
    void OnNcDestroy() override {
        Tell("end");
        if (deletesItself) {
            delete this;
        }
    }
    void OnNcPaint(HRGN region) override { Tell("frame", Number(region)); }
    void OnSetFocus(HWND other) override { Tell("focus", Number(other)); }
    void OnSize(WPARAM kind, int width, int height) override { Tell("size", kind, width, height); }
    void OnTimer(UINT_PTR id) override { Tell("timer", id); }
    void OnUserMessage(WPARAM code, LPARAM value) override { Tell("user", code, value); }
    void OnSelChange() override { Tell("selection"); }

    void Bind(HWND window) { hwnd = window; }
    void WantTab() { dialogCode = DLGC_WANTTAB; }
    bool deletesItself = false;
};

HWND control = nullptr;

// What the control itself does.
bool Native(HWND window, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    if (window != control) {
        return false;
    }
    if (message == WM_DESTROY || message == WM_NCDESTROY) {
        Tell(message == WM_DESTROY ? "native destroy" : "native end");
        return false;
    }
    result = message == WM_NCHITTEST ? HTTRANSPARENT : 4711;
    message == WM_NCHITTEST ? Tell("native hit test", wParam, lParam) : Tell("native", message);
    return true;
}

class WindowBaseTest : public testing::Test {
protected:
    void SetUp() override {
        parent = MakeTestWindow("parent", WS_OVERLAPPEDWINDOW);
        control = MakeTestWindow("control", WS_CHILD, parent, 50, 20, reinterpret_cast<HMENU>(INT_PTR{kControl}));
        ASSERT_NE(control, nullptr);
        SetMessageHook(Native);
        TakeStory();
    }
    void TearDown() override { DestroyWindow(parent); }

    // What the object and then the control were told.
    std::string Told(UINT message, WPARAM wParam, LPARAM lParam) {
        TakeStory();
        EXPECT_EQ(SendMessageA(control, message, wParam, lParam), 4711) << "the result is the control's own";
        return TakeStory();
    }

    MessageLog log{{}};
    HWND parent = nullptr;
};

}  // namespace

TEST_F(WindowBaseTest, AttachesOnce) {
    Control object;
    EXPECT_EQ(object.Attach(), 0) << "to nothing";
    EXPECT_EQ(object.AttachDlgItem(parent, kControl + 1), 0);
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
    EXPECT_EQ(TakeStory().find("native destroy\nend\ndeleted\n"), 0U);
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
