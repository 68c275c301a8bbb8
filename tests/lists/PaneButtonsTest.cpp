// The pane's two buttons, and what each control tells of the focus.
#include "PaneButtons.h"

#include <gtest/gtest.h>

#include <utility>

#include "Harness.h"
#include "ListsHost.h"
#include "resource.h"

namespace {

class PaneButtonsTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(sync.AttachDlgItem(host.Pane(), IDC_SYNC), 1);
        ASSERT_EQ(stop.AttachDlgItem(host.Pane(), IDC_STOP), 1);
        ASSERT_TRUE(PumpAll());
        host.requests.clear();
    }

    struct Button {
        int id;
        PaneRequest request;
    };
    // How many requests come of a message; all of them are the button's own.
    std::ptrdiff_t Requests(const Button& button, UINT message, WPARAM wParam, LPARAM lParam) {
        SendMessageA(GetDlgItem(host.Pane(), button.id), message, wParam, lParam);
        EXPECT_TRUE(host.requests.empty()) << "posted, not sent";
        EXPECT_TRUE(PumpAll());
        const auto count = std::ssize(host.requests);
        for (const auto& made : host.requests) {
            EXPECT_TRUE(made.code == button.request && made.argument == 0);
        }
        host.requests.clear();
        return count;
    }

    ListsHost host;
    SyncButton sync;
    StopButton stop;
    static constexpr Button buttons[] = {{IDC_SYNC, UC_SYNC}, {IDC_STOP, UC_STOP}};
};

}  // namespace

TEST_F(PaneButtonsTest, AskByEachPressOfSpaceAndEachReleaseInside) {
    for (const Button& button : buttons) {
        EXPECT_EQ(Requests(button, WM_KEYDOWN, VK_SPACE, 1), 1);
        EXPECT_EQ(Requests(button, WM_KEYDOWN, VK_SPACE, MAKELPARAM(1, 0x4000)), 1) << "a key held down repeats";
        EXPECT_EQ(Requests(button, WM_KEYUP, VK_SPACE, MAKELPARAM(1, 0xC000)), 0);
        EXPECT_EQ(Requests(button, WM_KEYDOWN, VK_RETURN, 1), 0);

        RECT client = {};
        GetClientRect(GetDlgItem(host.Pane(), button.id), &client);
        const std::pair<POINT, int> releases[] = {
            {{0, 0}, 1},  // it need not have been pressed
            {{client.right - 1, client.bottom - 1}, 1},
            {{client.right, 0}, 0},
            {{0, client.bottom}, 0},
            {{-1, 5}, 0},
            {{5, -1}, 0},
        };
        for (const auto& [at, requests] : releases) {
            const LPARAM place = MAKELPARAM(static_cast<WORD>(at.x), static_cast<WORD>(at.y));
            EXPECT_EQ(Requests(button, WM_LBUTTONUP, 0, place), requests) << at.x << "," << at.y;
        }
    }
}

TEST_F(PaneButtonsTest, EachControlTellsThatItLostTheFocus) {
    for (const int id : {IDC_GROUP_LIST, IDC_TRACK_LIST, IDC_SYNC, IDC_STOP}) {
        SetFocus(GetDlgItem(host.Pane(), id));
        ASSERT_TRUE(PumpAll());
        host.requests.clear();
        SetFocus(host.Main());
        EXPECT_TRUE(host.requests.empty()) << "posted, not sent";
        ASSERT_TRUE(PumpAll());
        ASSERT_EQ(host.requests.size(), 1U) << id;
        EXPECT_EQ(host.requests[0].code, UC_FOCUS_LOST);
        EXPECT_EQ(host.requests[0].argument, reinterpret_cast<LPARAM>(GetDlgItem(host.Pane(), id)));
    }
}
