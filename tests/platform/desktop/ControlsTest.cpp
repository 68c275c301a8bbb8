// What the window tests cannot ask of both systems: the wheel, the clipboard, and how a list draws the row with the focus.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QClipboard>
#include <QGuiApplication>
#include <QWheelEvent>
#include <QWidget>

#include "Desktop.h"
#include "DesktopTests.h"

namespace {

UINT drawnState = 0;  // of the row that was drawn last
HWND turned = nullptr;
int turn = 0;

LRESULT CALLBACK Note(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_DRAWITEM) {
        drawnState = reinterpret_cast<DRAWITEMSTRUCT*>(lParam)->itemState;
    } else if (message == WM_MOUSEWHEEL) {
        turned = window;
        turn = static_cast<SHORT>(HIWORD(wParam));
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

class Painted : public QObject {
public:
    explicit Painted(int& count) : count(count) {}
    bool eventFilter(QObject*, QEvent* event) override {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }

private:
    int& count;
};

HWND Add(HWND parent, const char* className, DWORD style, int x) {
    return CreateWindowExA(0, className, "", WS_CHILD | WS_VISIBLE | style, x, 0, 100, 100, parent, nullptr, nullptr,
                           nullptr);
}

}  // namespace

TEST(Wheel, TurnsWhatIsUnderThePointer) {
    HWND parent = MakeTopLevel("Wheel");
    HWND children[2];
    for (int i = 0; i < 2; ++i) {
        children[i] = Add(parent, "BUTTON", BS_PUSHBUTTON, 100 * i);
        SetWindowLongPtrA(children[i], GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Note));
    }
    SetFocus(children[0]);
    for (HWND child : {children[1], children[0]}) {
        RECT place = {};
        GetWindowRect(child, &place);
        QWheelEvent event({50, 50}, {place.left + 50.0, place.top + 50.0}, {}, {0, -240}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(desktop::Desktop::Get().Find(child)->widget, &event);
        ASSERT_TRUE(ServeUntil([child] { return turned == child; }));
        EXPECT_EQ(turn, -240);
    }
    DestroyWindow(parent);
}

TEST(Buttons, ShowTheFocusAndThePress) {
    HWND parent = MakeTopLevel("Buttons");
    HWND button = Add(parent, "BUTTON", BS_PUSHBUTTON, 0);
    const auto picture = [button](HWND focused) {
        SetFocus(focused);
        return desktop::Desktop::Get().Find(button)->widget->grab().toImage();
    };
    const QImage without = picture(parent);
    EXPECT_NE(picture(button), without);
    EXPECT_EQ(picture(parent), without);
    SendMessageA(button, WM_LBUTTONDOWN, 0, 0);
    for (const int x : {150, 50, 150}) {
        SendMessageA(button, WM_MOUSEMOVE, 0, MAKELPARAM(x, 50));
        EXPECT_EQ(static_cast<QAbstractButton*>(desktop::Desktop::Get().Find(button)->widget)->isDown(), x == 50);
    }
    DestroyWindow(parent);
}

TEST(Drawing, ShowsWithoutAPaintMessage) {
    HWND parent = MakeTopLevel("Drawing");
    HWND child = Add(parent, "DesktopTest", WS_BORDER, 0);
    RECT client = {};
    GetClientRect(child, &client);
    EXPECT_EQ(client.right, 98) << "within its border";
    int paints = 0;
    Painted painted(paints);
    desktop::Desktop::Get().Find(child)->widget->installEventFilter(&painted);
    ASSERT_TRUE(ServeUntil([&] { return paints > 0; }));
    QCoreApplication::processEvents();
    paints = 0;
    HDC dc = GetDC(child);
    FillRect(dc, &client, GetSysColorBrush(COLOR_BTNTEXT));
    ReleaseDC(child, dc);
    EXPECT_TRUE(ServeUntil([&] { return paints > 0; }));
    // A window without a wish of its own lies on the screen.
    HWND placed = CreateWindowExA(0, "DesktopTest", "", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, 0, CW_USEDEFAULT, 0, nullptr,
                                  nullptr, nullptr, nullptr);
    RECT place = {};
    GetWindowRect(placed, &place);
    EXPECT_TRUE(place.left > 0 && place.top > 0 && place.right > place.left);
    DestroyWindow(placed);
    DestroyWindow(parent);
}

TEST(ListFocus, IsDrawnBehindTheSelection) {
    HWND parent = MakeTopLevel("List");
    SetWindowLongPtrA(parent, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Note));
    HWND list = Add(parent, "LISTBOX", LBS_OWNERDRAWVARIABLE | LBS_HASSTRINGS, 0);
    SetFocus(list);
    for (int row = 0; row < 3; ++row) {
        SendMessageA(list, LB_INSERTSTRING, 0, reinterpret_cast<LPARAM>("row"));
    }
    for (const WPARAM row : {2U, 1U, 0U}) {
        drawnState = 0;
        SendMessageA(list, LB_SETCURSEL, row, 0);
        EXPECT_EQ(drawnState, static_cast<UINT>(ODS_SELECTED | ODS_FOCUS)) << row;
    }
    DestroyWindow(parent);
}

TEST(Input, WhatTheCodePageLacksIsABlank) {
    HWND parent = MakeTopLevel("Input");
    HWND edit = Add(parent, "EDIT", ES_AUTOHSCROLL, 0);
    QGuiApplication::clipboard()->setText(QStringLiteral("a?\u0416\U0001F600\u00E9z"));
    SendMessageA(edit, WM_PASTE, 0, 0);
    SetFocus(edit);
    QKeyEvent key(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QStringLiteral("\u0416"));
    QInputMethodEvent made;
    made.setCommitString(QStringLiteral("\u0416!"));
    for (QEvent* event : {static_cast<QEvent*>(&key), static_cast<QEvent*>(&made)}) {
        QCoreApplication::sendEvent(desktop::Desktop::Get().Find(edit)->widget, event);
    }
    char text[20] = "";
    EXPECT_TRUE(ServeUntil([&] { return GetWindowTextA(edit, text, sizeof text) == 9; }));
    EXPECT_STREQ(text, "a?  \xE9z  !");
    DestroyWindow(parent);
}
