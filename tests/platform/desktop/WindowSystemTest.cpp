// What the layer does on its own account: how a menu shows its highlight, and the end of the user's session.
#include <gtest/gtest.h>

#include <QApplication>
#include <QMenu>
#include <string>

#include "DesktopTests.h"
#include "Menus.h"
#include "SessionEnd.h"

namespace {

std::string story;
bool mayEnd = false;

LRESULT CALLBACK TellStory(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_MENUSELECT:
            story += std::to_string(LOWORD(wParam)) + (HIWORD(wParam) == 0xFFFF           ? " closed "
                                                       : (HIWORD(wParam) & MF_POPUP) != 0 ? " bar "
                                                                                          : " item ");
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
    for (const int key : {VK_F10, VK_DOWN, VK_ESCAPE, VK_ESCAPE}) {
        keybd_event(static_cast<BYTE>(key), 0, 0, 0);
        keybd_event(static_cast<BYTE>(key), 0, KEYEVENTF_KEYUP, 0);
    }
    EXPECT_TRUE(ServeUntil([] { return story == "0 bar 101 item 0 bar 0 closed "; })) << story;
    auto* popup = desktop::FindMenu(menu)->entries[0].action->menu();
    const auto highlighted = [popup](int item) {
        QAction* action = popup->actions().at(item);
        popup->setActiveAction(action);
        return popup->grab().toImage().pixelColor(popup->actionGeometry(action).topLeft() + QPoint(4, 4)).name();
    };
    EXPECT_EQ(highlighted(0), highlighted(1)) << "greyed or not";
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
