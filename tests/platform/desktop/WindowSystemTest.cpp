// What the layer does on its own account: how a menu shows its highlight, and the end of the user's session.
#include <gtest/gtest.h>

#include <QApplication>
#include <QMenu>
#include <string>

#include "DesktopTests.h"
#include "MenuLoop.h"
#include "Menus.h"
#include "SessionEnd.h"

namespace {

std::string story;
bool pointsAtBar = false;  // as soon as an item is highlighted
bool mayEnd = false;

LRESULT CALLBACK TellStory(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_MENUSELECT:
            story += std::to_string(LOWORD(wParam)) + (HIWORD(wParam) == 0xFFFF           ? " closed "
                                                       : (HIWORD(wParam) & MF_POPUP) != 0 ? " bar "
                                                                                          : " item ");
            if (pointsAtBar && LOWORD(wParam) == 101) {
                RECT bar = {};
                GetWindowRect(window, &bar);
                desktop::MenuLoop::Running()->MouseMoved({bar.left + 10, bar.top + 10});
            }
            return 0;
        case WM_QUERYENDSESSION: story += "query "; return mayEnd;
        case WM_ENDSESSION: story += "end " + std::to_string(wParam) + " "; return 0;
        default: return DefWindowProcA(window, message, wParam, lParam);
    }
}

class WindowSystem : public testing::Test {
protected:
    WindowSystem() {
        SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(TellStory));
        EXPECT_TRUE(SetForegroundWindow(window) && ServeUntil([this] { return GetFocus() == window; }));
        story.clear();
    }
    ~WindowSystem() override { DestroyWindow(window); }

    const HMENU menu = desktop::AddMenu({{"File", 0, MF_POPUP, {{"One", 101, MF_GRAYED, {}}, {"Two", 102, 0, {}}}}});
    const HWND window = MakeTopLevel("Window", menu);
};

TEST_F(WindowSystem, TheHighlightOfAMenuShowsAndIsToldWhereverItGoes) {
    for (const bool byMouse : {false, true}) {
        pointsAtBar = byMouse;
        story.clear();
        for (const int key : {VK_F10, VK_DOWN, VK_ESCAPE, VK_ESCAPE}) {
            keybd_event(static_cast<BYTE>(key), 0, 0, 0);
            keybd_event(static_cast<BYTE>(key), 0, KEYEVENTF_KEYUP, 0);
        }
        // Escape closes the popup first.
        const std::string expected = std::string("0 bar 101 item ") + (byMouse ? "0 bar " : "") + "0 bar 0 closed ";
        EXPECT_TRUE(ServeUntil([&] { return story == expected; })) << story;
    }
    auto* popup = desktop::FindMenu(menu)->entries[0].action->menu();
    const auto highlighted = [popup](int item) {
        QAction* action = popup->actions().at(item);
        popup->setActiveAction(action);
        return popup->grab().toImage().pixelColor(popup->actionGeometry(action).topLeft() + QPoint(4, 4)).name();
    };
    popup->setActiveAction(nullptr);
    const QImage plain = popup->grab().toImage();
    EXPECT_EQ(highlighted(0), highlighted(1)) << "greyed or not";
    EXPECT_NE(highlighted(0),
              plain.pixelColor(popup->actionGeometry(popup->actions().front()).topLeft() + QPoint(4, 4)).name());
}

TEST_F(WindowSystem, TheEndOfTheSessionIsAskedForAndTold) {
    desktop::FollowSessionEnd();
    for (const char* expected : {"query end 0 ", "query end 1 "}) {
        QEvent quit(QEvent::Quit);
        QCoreApplication::sendEvent(qApp, &quit);
        EXPECT_EQ(story, "") << "not among the window system's events";
        EXPECT_TRUE(ServeUntil([expected] { return story == expected; })) << story;
        story.clear();
        mayEnd = true;
    }
}

}  // namespace
