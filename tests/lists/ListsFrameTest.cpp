// The frame of the lists: its step arrows under the mouse, and what it looks like.
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <utility>

#include "Harness.h"
#include "ListsHost.h"
#include "MessageLog.h"

namespace {

class StepArrowTest : public testing::Test {
protected:
    void SetUp() override {
        for (int disc = 1; disc <= 30; ++disc) {
            host.AddDisc(disc, 0);
        }
        ASSERT_TRUE(host.Refill(5));
        SetFocus(host.Tracks());
        ASSERT_TRUE(PumpAll());
        RECT client = {};
        GetClientRect(list, &client);
        inUp = {client.right / 2, -10};
        inDown = {client.right / 2, client.bottom + 10};
        inClient = {client.right / 2, client.bottom / 2};
        // A press on the frame reaches the control as well. One that selects a row for it leaves nothing to step from.
        HWND plain = MakeChild("LISTBOX", LBS_NOTIFY, host.Main(), 1, 0, 0, 50, 50);
        SendMessageA(plain, LB_INSERTSTRING, 0, reinterpret_cast<LPARAM>("row"));
        SendMessageA(plain, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(10, static_cast<WORD>(-5)));
        SendMessageA(plain, WM_LBUTTONUP, 0, MAKELPARAM(10, static_cast<WORD>(-5)));
        const LRESULT selected = SendMessageA(plain, LB_GETCURSEL, 0, 0);
        DestroyWindow(plain);
        if (selected != LB_ERR) {
            GTEST_SKIP() << "this system's list box selects rows by presses outside of its client area";
        }
        SetFocus(host.Tracks());
        ASSERT_TRUE(PumpAll());
    }

    void Send(UINT message, POINT place, WPARAM keys = MK_LBUTTON) {
        SendMessageA(list, message, keys, MAKELPARAM(static_cast<WORD>(place.x), static_cast<WORD>(place.y)));
        Follow();
    }
    // The pane's part: a posted notification makes the list follow.
    void Follow() {
        MSG message;
        while (PeekMessageA(&message, host.Pane(), WM_COMMAND, WM_COMMAND, PM_REMOVE) ||
               PeekMessageA(&message, list, LB_SETCURSEL, LB_SETCURSEL, PM_REMOVE)) {
            DispatchMessageA(&message);
        }
    }
    // The numbers of the ticks on which the selection moved.
    std::string StepsIn(int ticks) {
        std::string steps;
        for (int tick = 1; tick <= ticks; ++tick) {
            const int before = Row();
            SendMessageA(list, WM_TIMER, 0, 0);
            Follow();
            if (Row() != before) {
                steps += std::to_string(tick) + " ";
            }
        }
        return steps;
    }
    int Row() { return host.groupList.SelectedRow(); }

    ListsHost host;
    HWND list = host.Groups();
    POINT inUp = {};
    POINT inDown = {};
    POINT inClient = {};
};

}  // namespace

TEST_F(StepArrowTest, StepsFasterAndFaster) {
    Send(WM_LBUTTONDOWN, inDown);
    EXPECT_EQ(Row(), 5) << "one step at once";
    EXPECT_EQ(GetCapture(), list);
    EXPECT_EQ(GetFocus(), list);
    EXPECT_EQ(StepsIn(27), "16 22 24 25 26 27 ");
    Send(WM_LBUTTONUP, inDown, 0);
    EXPECT_NE(GetCapture(), list);
    EXPECT_EQ(StepsIn(20), "");
    Send(WM_LBUTTONDOWN, inUp);
    EXPECT_EQ(Row(), 10);
    EXPECT_EQ(StepsIn(16), "16 ") << "from the beginning again";
    Send(WM_LBUTTONUP, inUp, 0);
}

TEST_F(StepArrowTest, StopsAtTheEndsAndBesideTheArrow) {
    Send(WM_LBUTTONDOWN, inUp);
    Send(WM_MOUSEMOVE, inClient);
    EXPECT_EQ(StepsIn(30), "") << "the pointer has left the arrow";
    Send(WM_MOUSEMOVE, inUp);
    EXPECT_EQ(StepsIn(3), "1 2 3 ") << "the time went on meanwhile";
    EXPECT_EQ(Row(), 0);
    EXPECT_EQ(StepsIn(5), "");
    Send(WM_LBUTTONUP, inUp, 0);
    EXPECT_EQ(Row(), 0);
    Send(WM_LBUTTONUP, inClient, 0);
    EXPECT_EQ(host.groupList.OwnsEditor(nullptr), 0) << "no click";

    // Above the arrow and on the left band there is nothing to press.
    const POINT aboveArrow = {inUp.x, -19};
    const POINT leftBand = {-8, 40};
    for (const POINT& place : {aboveArrow, leftBand}) {
        Send(WM_LBUTTONDOWN, place);
        EXPECT_EQ(StepsIn(40), "");
        Send(WM_LBUTTONUP, place, 0);
    }
    EXPECT_EQ(Row(), 0);
}

TEST_F(StepArrowTest, APressClosesTheEditor) {
    SetFocus(list);
    ASSERT_EQ(host.groupList.BeginEdit(), 1);
    SetWindowTextA(GetFocus(), "By the arrow");
    Send(WM_LBUTTONDOWN, inDown);
    ASSERT_TRUE(PumpAll());
    Send(WM_LBUTTONUP, inDown, 0);
    EXPECT_EQ(TitleOf(host.store, 5, 0), "By the arrow");
    EXPECT_EQ(Row(), 5);
}

TEST_F(StepArrowTest, APressBesideTheArrowsEndsAStepThatNobodyEnded) {
    Send(WM_LBUTTONDOWN, inDown);
    EXPECT_EQ(Row(), 5);
    // The release went to another window; the next press is on the left band.
    ReleaseCapture();
    const POINT leftBand = {-8, 40};
    Send(WM_LBUTTONDOWN, leftBand);
    Send(WM_MOUSEMOVE, inDown);
    EXPECT_EQ(StepsIn(40), "");
    Send(WM_LBUTTONUP, inDown, 0);
    EXPECT_EQ(Row(), 5);
}

TEST_F(StepArrowTest, AnEmptyListHasNowhereToGo) {
    host.store.ResetAll();
    ASSERT_TRUE(host.Refill(1));
    Send(WM_LBUTTONDOWN, inDown);
    EXPECT_EQ(GetCapture(), list);
    EXPECT_EQ(StepsIn(20), "");
    Send(WM_LBUTTONUP, inDown, 0);
}

// --- What the frame looks like: letters for colours, in window coordinates

namespace {

char LetterOf(COLORREF color) {
    if (color == GetSysColor(COLOR_BTNTEXT)) {
        return '#';
    }
    if (color == GetSysColor(COLOR_WINDOW)) {
        return '.';
    }
    return color == GetSysColor(COLOR_BTNFACE) ? ' ' : '?';
}

std::string Picture(HWND window, const RECT& part) {
    std::string picture;
    HDC dc = GetWindowDC(window);
    for (int y = part.top; y < part.bottom; ++y) {
        for (int x = part.left; x < part.right; ++x) {
            picture += LetterOf(GetPixel(dc, x, y));
        }
        picture += '\n';
    }
    ReleaseDC(window, dc);
    return picture;
}

// Each row so many times.
std::string Rows(std::initializer_list<std::pair<int, const char*>> rows) {
    std::string picture;
    for (const auto& [times, row] : rows) {
        for (int i = 0; i < times; ++i) {
            picture += std::string(row) + '\n';
        }
    }
    return picture;
}

// clang-format off
const std::string kCorner = Rows({
    {1, "   #######"},
    {1, "  #......."},
    {1, " #........"},
    {5, "#........."},
});

const std::string kTabLeft = Rows({
    {3, "#........."},
    {1, "#......###"},
    {1, "#.....#..."},
    {1, "#....#...."},
    {1, "#...#....."},
    {2, "#..#......"},
    {5, "#.#......."},
    {2, "#..#......"},
    {1, "#...#....."},
    {1, "#....#...."},
    {1, "#.....#..."},
    {1, "#......###"},
    {3, "#........."},
});

const std::string kTabRight = Rows({
    {3, "............# "},
    {1, "##############"},
    {15, ".............."},
    {1, "##############"},
    {3, "............# "},
});

const std::string kConnector = Rows({
    {5, "          #........."},
    {3, "         #.........."},
    {2, "        #..........."},
    {1, "       #............"},
    {1, "      #............."},
    {1, "     #.............."},
    {1, "    #..............."},
    {1, "   #................"},
    {1, "  #................."},
    {1, " #.................."},
    {1, "#..................."},
    {15, "...................."},
    {1, "##.................."},
    {1, "  #................."},
    {1, "   #................"},
    {1, "    #..............."},
    {1, "     #.............."},
    {1, "      #............."},
    {1, "       #............"},
    {2, "        #..........."},
    {3, "         #.........."},
    {6, "          #........."},
});

// clang-format on

constexpr int kRowHeight = 17;

// Rows of the same height everywhere, whatever fonts there are. False if no size of the font gives it.
bool SetRowHeight(ListsHost& host) {
    LOGFONTA font = {};
    GetObjectA(reinterpret_cast<HFONT>(SendMessageA(host.Groups(), WM_GETFONT, 0, 0)), sizeof font, &font);
    for (LONG size = 8; size < 30; ++size) {
        font.lfHeight = size;
        host.groupList.SetListFont(&font);
        host.trackList.SetListFont(&font);
        if (host.Refill(4) && SendMessageA(host.Groups(), LB_GETITEMHEIGHT, 0, 0) == kRowHeight) {
            return true;
        }
    }
    return false;
}

}  // namespace

TEST(FramePictureTest, TheSelectedGroupOpensIntoItsTracks) {
    ListsHost host;
    for (int disc = 1; disc <= 30; ++disc) {
        host.AddDisc(disc, 1);
    }
    ASSERT_TRUE(SetRowHeight(host));
    RedrawWindow(host.Pane(), nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME | RDW_ALLCHILDREN | RDW_UPDATENOW);
    ASSERT_TRUE(PumpAll());
    RECT window = {};
    GetWindowRect(host.Groups(), &window);
    const int width = window.right - window.left;
    // The selected row is the fourth, from 71 to 87 in the window.
    EXPECT_EQ(Picture(host.Groups(), {0, 0, 10, 8}), kCorner);
    EXPECT_EQ(Picture(host.Groups(), {0, 68, 10, 91}), kTabLeft);
    EXPECT_EQ(Picture(host.Groups(), {width - 14, 68, width, 91}), kTabRight);
    EXPECT_EQ(Picture(host.Tracks(), {0, 54, 20, 105}), kConnector);
}
