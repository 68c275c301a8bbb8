// When windows are painted: what invalidates them, and which of the paint messages come when.
#include <gtest/gtest.h>

#include "Harness.h"
#include "MessageLog.h"

namespace {

class PaintingOrderTest : public testing::Test {
protected:
    void SetUp() override {
        main = MakeTestWindow("main", WS_OVERLAPPEDWINDOW);
        child = MakeTestWindow("child", WS_CHILD | WS_VISIBLE, main, 80, 60);
        ShowWindow(main, SW_SHOW);
        ASSERT_TRUE(BringForward(main));
        UpdateWindow(main);
        ASSERT_TRUE(PumpAll());
        log.Take();
    }
    void TearDown() override { DestroyWindow(main); }

    MessageLog log{{WM_PAINT, WM_ERASEBKGND, WM_NCPAINT, WM_USER}};
    HWND main = nullptr;
    HWND child = nullptr;
};

}  // namespace

TEST_F(PaintingOrderTest, RequestsAddUpAndComeBehindPostedMessages) {
    InvalidateRect(child, nullptr, FALSE);
    InvalidateRect(child, nullptr, FALSE);
    EXPECT_EQ(log.Take(), "");
    PostMessageA(main, WM_USER, 0, 0);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(log.Take(), Lines({"* main WM_USER", "* child WM_PAINT"}));

    InvalidateRect(child, nullptr, TRUE);
    InvalidateRect(child, nullptr, FALSE);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(log.Take(), Lines({"* child WM_PAINT", "child WM_ERASEBKGND"})) << "one wish to erase is enough";
}

TEST_F(PaintingOrderTest, UpdateWindowSendsAtOnce) {
    InvalidateRect(child, nullptr, TRUE);
    UpdateWindow(child);
    UpdateWindow(child);
    EXPECT_EQ(log.Take(), Lines({"child WM_PAINT", "child WM_ERASEBKGND"}));
    RedrawWindow(child, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
    EXPECT_EQ(log.Take(), Lines({"child WM_PAINT", "child WM_ERASEBKGND"}));
    RedrawWindow(child, nullptr, nullptr, RDW_INVALIDATE);
    EXPECT_EQ(log.Take(), "");
    RedrawWindow(child, nullptr, nullptr, RDW_UPDATENOW);
    EXPECT_EQ(log.Take(), Lines({"child WM_PAINT"}));
    RedrawWindow(child, nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME | RDW_UPDATENOW);
    EXPECT_EQ(log.Take(), Lines({"child WM_PAINT", "child WM_NCPAINT"}));
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(log.Take(), "");
}

TEST_F(PaintingOrderTest, ParentsArePaintedBeforeTheirChildren) {
    log.Record({WM_PAINT, WM_ERASEBKGND});
    RedrawWindow(main, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(log.Take(), Lines({"* main WM_PAINT", "main WM_ERASEBKGND", "* child WM_PAINT", "child WM_ERASEBKGND"}));
    RedrawWindow(main, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    EXPECT_EQ(log.Take(), Lines({"main WM_PAINT", "main WM_ERASEBKGND", "child WM_PAINT", "child WM_ERASEBKGND"}));
    InvalidateRect(child, nullptr, FALSE);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(log.Take(), Lines({"* child WM_PAINT"})) << "what is painted on a child is none of its parent's";
}

TEST_F(PaintingOrderTest, WhatCannotBeSeenIsNotPainted) {
    log.Record({WM_PAINT});
    ShowWindow(child, SW_HIDE);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(log.Take(), Lines({"* main WM_PAINT"})) << "the place that the child has left";
    InvalidateRect(child, nullptr, TRUE);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(log.Take(), "");
    ShowWindow(child, SW_SHOW);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(log.Take(), Lines({"* child WM_PAINT"}));

    SendMessageA(child, WM_SETREDRAW, FALSE, 0);
    EXPECT_FALSE(IsWindowVisible(child));
    InvalidateRect(child, nullptr, TRUE);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(log.Take(), "");
    SendMessageA(child, WM_SETREDRAW, TRUE, 0);
    EXPECT_TRUE(IsWindowVisible(child));
    RedrawWindow(child, nullptr, nullptr, RDW_INVALIDATE);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(log.Take(), Lines({"* child WM_PAINT"}));
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
    InvalidateRect(child, &first, FALSE);
    InvalidateRect(child, &second, FALSE);
    UpdateWindow(child);
    const RECT both = {5, 5, 40, 25};
    EXPECT_TRUE(EqualRect(&painted, &both));
    EXPECT_FALSE(erase);

    InvalidateRect(child, &outside, TRUE);
    UpdateWindow(child);
    const RECT inside = {50, 50, 80, 60};
    EXPECT_TRUE(EqualRect(&painted, &inside)) << painted.right << "," << painted.bottom;
    EXPECT_TRUE(erase) << "nobody has erased it";
}
