// Keys that go up while another program has them.
#include <gtest/gtest.h>

#include "Desktop.h"
#include "DesktopTests.h"

namespace {

int keysUp = 0;

LRESULT CALLBACK CountKeysUp(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    keysUp += message == WM_SYSKEYUP || message == WM_KEYUP ? 1 : 0;
    return DefWindowProcA(window, message, wParam, lParam);
}

}  // namespace

TEST(KeysElsewhere, AreUpWithoutAWordToTheWindow) {
    HWND window = MakeTopLevel("Keys");
    SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(CountKeysUp));
    ASSERT_TRUE(SetForegroundWindow(window));
    ASSERT_TRUE(ServeUntil([window] { return GetFocus() == window; }));
    keybd_event(VK_MENU, 0, 0, 0);
    ASSERT_TRUE(ServeUntil([] { return GetKeyState(VK_MENU) < 0; }));
    // The user has gone and come back before the program has looked: nothing is left of the key that opens the menu.
    desktop::Desktop::Get().ReleaseKeys();
    EXPECT_TRUE(ServeUntil([] { return GetKeyState(VK_MENU) >= 0; }));
    EXPECT_EQ(keysUp, 0);
    DestroyWindow(window);
}
