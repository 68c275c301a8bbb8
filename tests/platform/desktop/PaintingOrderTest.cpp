// When windows are painted: what invalidates them, and which of the paint messages come when.
#include <gtest/gtest.h>

#include "Harness.h"
#include "MessageLog.h"

namespace {

class PaintingOrderTest : public testing::Test {
protected:
    void SetUp() override {
        main_ = MakeTestWindow("main", WS_OVERLAPPEDWINDOW);
        child_ = MakeTestWindow("child", WS_CHILD | WS_VISIBLE, main_, 80, 60);
        ShowWindow(main_, SW_SHOW);
        ASSERT_TRUE(BringForward(main_));
        UpdateWindow(main_);
        ASSERT_TRUE(PumpAll());
        log_.Take();
    }
    void TearDown() override { DestroyWindow(main_); }

    MessageLog log_{{WM_PAINT, WM_ERASEBKGND, WM_NCPAINT, WM_USER}};
    HWND main_ = nullptr;
    HWND child_ = nullptr;
};

}  // namespace

TEST_F(PaintingOrderTest, RequestsAddUpAndComeBehindPostedMessages) {
    InvalidateRect(child_, nullptr, FALSE);
    InvalidateRect(child_, nullptr, FALSE);
    EXPECT_EQ(log_.Take(), "");
    PostMessageA(main_, WM_USER, 0, 0);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(log_.Take(), Lines({"* main WM_USER", "* child WM_PAINT"}));

    InvalidateRect(child_, nullptr, TRUE);
    InvalidateRect(child_, nullptr, FALSE);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(log_.Take(), Lines({"* child WM_PAINT", "child WM_ERASEBKGND"})) << "one wish to erase is enough";
}

TEST_F(PaintingOrderTest, UpdateWindowSendsAtOnce) {
    InvalidateRect(child_, nullptr, TRUE);
    UpdateWindow(child_);
    UpdateWindow(child_);
    EXPECT_EQ(log_.Take(), Lines({"child WM_PAINT", "child WM_ERASEBKGND"}));
    RedrawWindow(child_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
    EXPECT_EQ(log_.Take(), Lines({"child WM_PAINT", "child WM_ERASEBKGND"}));
    RedrawWindow(child_, nullptr, nullptr, RDW_INVALIDATE);
    EXPECT_EQ(log_.Take(), "");
    RedrawWindow(child_, nullptr, nullptr, RDW_UPDATENOW);
    EXPECT_EQ(log_.Take(), Lines({"child WM_PAINT"}));
    RedrawWindow(child_, nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME | RDW_UPDATENOW);
    EXPECT_EQ(log_.Take(), Lines({"child WM_PAINT", "child WM_NCPAINT"}));
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(log_.Take(), "");
}

TEST_F(PaintingOrderTest, ParentsArePaintedBeforeTheirChildren) {
    log_.Record({WM_PAINT, WM_ERASEBKGND});
    RedrawWindow(main_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(log_.Take(), Lines({"* main WM_PAINT", "main WM_ERASEBKGND", "* child WM_PAINT", "child WM_ERASEBKGND"}));
    RedrawWindow(main_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    EXPECT_EQ(log_.Take(), Lines({"main WM_PAINT", "main WM_ERASEBKGND", "child WM_PAINT", "child WM_ERASEBKGND"}));
    InvalidateRect(child_, nullptr, FALSE);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(log_.Take(), Lines({"* child WM_PAINT"})) << "what is painted on a child is none of its parent's";
}

TEST_F(PaintingOrderTest, WhatCannotBeSeenIsNotPainted) {
    log_.Record({WM_PAINT});
    ShowWindow(child_, SW_HIDE);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(log_.Take(), Lines({"* main WM_PAINT"})) << "the place that the child has left";
    InvalidateRect(child_, nullptr, TRUE);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(log_.Take(), "");
    ShowWindow(child_, SW_SHOW);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(log_.Take(), Lines({"* child WM_PAINT"}));

    SendMessageA(child_, WM_SETREDRAW, FALSE, 0);
    EXPECT_FALSE(IsWindowVisible(child_));
    InvalidateRect(child_, nullptr, TRUE);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(log_.Take(), "");
    SendMessageA(child_, WM_SETREDRAW, TRUE, 0);
    EXPECT_TRUE(IsWindowVisible(child_));
    RedrawWindow(child_, nullptr, nullptr, RDW_INVALIDATE);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(log_.Take(), Lines({"* child WM_PAINT"}));
}

TEST_F(PaintingOrderTest, BeginPaintTellsWhatHasToBePainted) {
    static RECT painted;
    static BOOL erase;
    SetMessageHook([](HWND window, UINT message, WPARAM wParam, LPARAM, LRESULT& result) {
        if (message == WM_ERASEBKGND && wParam != 0) {
            result = 0;
            return true;
        }
        if (message != WM_PAINT) {
            return false;
        }
        PAINTSTRUCT paint;
        EXPECT_NE(BeginPaint(window, &paint), nullptr);
        painted = paint.rcPaint;
        erase = paint.fErase;
        EndPaint(window, &paint);
        result = 0;
        return true;
    });
    const RECT first = {5, 5, 15, 25};
    const RECT second = {30, 10, 40, 20};
    const RECT outside = {50, 50, 500, 500};
    InvalidateRect(child_, &first, FALSE);
    InvalidateRect(child_, &second, FALSE);
    UpdateWindow(child_);
    const RECT both = {5, 5, 40, 25};
    EXPECT_TRUE(EqualRect(&painted, &both));
    EXPECT_FALSE(erase);

    InvalidateRect(child_, &outside, TRUE);
    UpdateWindow(child_);
    const RECT inside = {50, 50, 80, 60};
    EXPECT_TRUE(EqualRect(&painted, &inside)) << painted.right << "," << painted.bottom;
    EXPECT_TRUE(erase) << "nobody has erased it";
}
