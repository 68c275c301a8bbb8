// The frame of the lists: its step arrows under the mouse, and what it looks like.
#include <gtest/gtest.h>

#include <string>

#include "Harness.h"
#include "ListsHost.h"
#include "MessageLog.h"

namespace {

class StepArrowTest : public testing::Test {
protected:
    void SetUp() override {
        for (int disc = 1; disc <= 30; ++disc) {
            host.AddDisc(disc, 1);
        }
        ASSERT_TRUE(host.Refill(5));
        RECT client = {};
        GetClientRect(list, &client);
        inUp = {client.right / 2, -10};
        inDown = {client.right / 2, client.bottom + 10};
        // A press on the frame reaches the control as well. One that selects a row for it leaves nothing to step from.
        Send(WM_LBUTTONDOWN, {-8, 5});
        Send(WM_LBUTTONUP, {-8, 5}, 0);
        if (SelectedRowOf(list) != 4) {
            GTEST_SKIP() << "this system's list box selects rows by presses outside of its client area";
        }
        SetFocus(host.Tracks());
        ASSERT_TRUE(PumpAll());
    }

    void Send(UINT message, POINT place, WPARAM keys = MK_LBUTTON) {
        SendMessageA(list, message, keys, MAKELPARAM(static_cast<WORD>(place.x), static_cast<WORD>(place.y)));
        KillTimer(list, 0);
        Follow();
    }
    // What was posted; the ticks are the test's own.
    static void Follow() {
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
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
    static constexpr POINT kInClient = {40, 40};
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
    Send(WM_MOUSEMOVE, kInClient);
    EXPECT_EQ(StepsIn(30), "") << "the pointer has left the arrow";
    Send(WM_MOUSEMOVE, inUp);
    EXPECT_EQ(StepsIn(3), "1 2 3 ") << "the time went on meanwhile";
    EXPECT_EQ(Row(), 0);
    EXPECT_EQ(StepsIn(5), "");
    Send(WM_LBUTTONUP, inUp, 0);
    Send(WM_LBUTTONUP, kInClient, 0);
    EXPECT_EQ(host.groupList.OwnsEditor(nullptr), 0) << "no click";

    // Above the arrow and on the left band there is nothing to press; a press there ends a step whose release went
    // elsewhere.
    for (const POINT& place : {POINT{inUp.x, -19}, POINT{-8, 40}}) {
        Send(WM_LBUTTONDOWN, inDown);
        const int row = Row();
        ReleaseCapture();
        Send(WM_LBUTTONDOWN, place);
        Send(WM_MOUSEMOVE, inDown);
        EXPECT_EQ(StepsIn(40), "");
        Send(WM_LBUTTONUP, inDown, 0);
        EXPECT_EQ(Row(), row);
    }

    // An empty list has nowhere to go.
    host.store.ResetAll();
    ASSERT_TRUE(host.Refill(1));
    Send(WM_LBUTTONDOWN, inDown);
    EXPECT_EQ(GetCapture(), list);
    EXPECT_EQ(StepsIn(20), "");
    Send(WM_LBUTTONUP, inDown, 0);
}

TEST_F(StepArrowTest, APressClosesTheEditorAndSteps) {
    SetFocus(list);
    ASSERT_EQ(host.groupList.BeginEdit(), 1);
    SetWindowTextA(GetFocus(), "By the arrow");
    Send(WM_LBUTTONDOWN, inDown);
    EXPECT_EQ(Row(), 5) << "the first step";
    Send(WM_LBUTTONUP, inDown, 0);
    EXPECT_EQ(TitleOf(host.store, 5, 0), "By the arrow");

    // The other list's arrow takes the tracks away that an edit is about.
    ASSERT_TRUE(host.Refill(5));
    SetFocus(host.Tracks());
    ASSERT_EQ(host.trackList.BeginEdit(), 1);
    SetWindowTextA(GetFocus(), "Before the arrow");
    PostClick(list, inUp.x, inUp.y);
    ASSERT_TRUE(PumpAll());
    EXPECT_EQ(host.trackList.OwnsEditor(nullptr), 0);
    EXPECT_EQ(TitleOf(host.store, 5, 1), "Before the arrow");
    EXPECT_EQ(Row(), 3);
}

// --- What the lists look like: letters for colours

namespace {

// The smoothed edges of letters have colours of their own.
char LetterOf(COLORREF color) {
    return color == GetSysColor(COLOR_BTNTEXT)   ? '#'
           : color == GetSysColor(COLOR_WINDOW)  ? '.'
           : color == GetSysColor(COLOR_BTNFACE) ? ' '
                                                 : static_cast<char>('A' + color % 25);
}

// In the coordinates of the window or of its client area.
std::string Picture(HWND window, const RECT& part, bool isClient = false) {
    std::string picture;
    HDC dc = isClient ? GetDC(window) : GetWindowDC(window);
    for (int y = part.top; y < part.bottom; ++y) {
        for (int x = part.left; x < part.right; ++x) {
            picture += LetterOf(GetPixel(dc, x, y));
        }
        picture += '\n';
    }
    ReleaseDC(window, dc);
    return picture;
}

struct Stretch {
    int times;
    const char* line;
};

template <std::size_t Count>
std::string Draw(const Stretch (&lines)[Count]) {
    std::string picture;
    for (const auto& [times, line] : lines) {
        for (int i = 0; i < times; ++i) {
            picture += std::string(line) + '\n';
        }
    }
    return picture;
}

// clang-format off
constexpr Stretch kCorner[] = {
    {1, "   #######"},
    {1, "  #......."},
    {1, " #........"},
    {5, "#........."},
};

// The left and the right edge of the groups and the left edge of the tracks, from 17 pixels above a selected row of 17.
constexpr Stretch kTabTop[] = {
    {5, "#.........|........# |          #........."},
    {3, "#.........|........# |         #.........."},
    {2, "#.........|........# |        #..........."},
    {1, "#.........|........# |       #............"},
    {1, "#.........|........# |      #............."},
    {1, "#.........|........# |     #.............."},
    {1, "#.........|........# |    #..............."},
    {1, "#.........|........# |   #................"},
    {1, "#.........|........# |  #................."},
    {1, "#.........|........# | #.................."},
    {1, "#......###|##########|#..................."},
    {1, "#.....#...|..........|...................."},
    {1, "#....#....|..........|...................."},
    {1, "#...#.....|..........|...................."},
    {2, "#..#......|..........|...................."},
    {5, "#.#.......|..........|...................."},
    {2, "#..#......|..........|...................."},
};

constexpr Stretch kTabBottom[] = {
    {1, "#...#.....|..........|...................."},
    {1, "#....#....|..........|...................."},
    {1, "#.....#...|..........|...................."},
    {1, "#......###|##########|##.................."},
    {1, "#.........|........# |  #................."},
    {1, "#.........|........# |   #................"},
    {1, "#.........|........# |    #..............."},
    {1, "#.........|........# |     #.............."},
    {1, "#.........|........# |      #............."},
    {1, "#.........|........# |       #............"},
    {2, "#.........|........# |        #..........."},
    {3, "#.........|........# |         #.........."},
    {6, "#.........|........# |          #........."},
};

// Where the window ends 19 pixels below the upper edge of the row.
constexpr Stretch kTabCut[] = {
    {1, "#...#.....|..........|.#########.........."},
    {1, "#.........|........# |          #........."},
    {1, " #........|.......#  |           #........"},
    {1, "  #.......|......#   |            #......."},
    {1, "   #######|######    |             #######"},
    {1, "          |          |                    "},
};
// clang-format on

constexpr int kRowHeight = 17;
// The selected row is the fourth.
constexpr int kRowTop = 71;

class PictureTest : public testing::Test {
protected:
    // Finds the font size at which rows are kRowHeight high, since machines have different fonts.
    void SetUp() override {
        for (int disc = 101; disc <= 130; ++disc) {
            host.AddDisc(disc, 4);
        }
        LOGFONTA font = FontOf(groups);
        for (font.lfHeight = 8; SendMessageA(groups, LB_GETITEMHEIGHT, 0, 0) != kRowHeight; ++font.lfHeight) {
            ASSERT_LT(font.lfHeight, 30) << "no size of the font has such rows";
            host.groupList.SetListFont(&font);
            host.trackList.SetListFont(&font);
            ASSERT_TRUE(host.Refill(104));
        }
        Repaint();
        width = PlaceOf(groups).right - PlaceOf(groups).left;
    }

    void Repaint() {
        RedrawWindow(host.Pane(), nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME | RDW_ALLCHILDREN | RDW_UPDATENOW);
        ASSERT_TRUE(PumpAll());
    }
    // As in the tables. The lists overlap by a column, and the end of a rule there is theirs who painted last.
    std::string Edges(int top, int bottom) {
        std::string edges;
        for (int y = top; y < bottom; ++y) {
            for (const auto& [list, left, right] :
                 {Span{groups, 0, 10}, Span{groups, width - 10, width}, Span{tracks, 0, 20}}) {
                edges += Picture(list, {left, y, right, y + 1});
                edges.back() = left == 0 && right == 20 ? '\n' : '|';
            }
            if (const std::size_t end = edges.size() - 31; edges.compare(end, 8, "########") == 0) {
                edges.replace(end + 8, 3, "#|#");
            }
        }
        return edges;
    }

    struct Span {
        HWND list;
        int left;
        int right;
    };
    ListsHost host;
    HWND groups = host.Groups();
    HWND tracks = host.Tracks();
    int width = 0;
};

struct RowCase {
    const char* name;
    bool isSelected;
    bool hasFocus;
    int background;
    int text;
    int rules;
};

// A row as it has to look. `widest` is what the head is as wide as.
void DrawExpected(HWND list, const RECT& row, const RowCase& look, bool hasRules, const std::string& widest,
                  const char* label, const char* number) {
    HDC dc = GetDC(list);
    SelectObject(dc, reinterpret_cast<HGDIOBJ>(SendMessageA(list, WM_GETFONT, 0, 0)));
    RECT inner = {row.left, row.top + (hasRules ? 1 : 0), row.right, row.bottom - (hasRules ? 1 : 0)};
    FillRect(dc, &row, GetSysColorBrush(look.rules));
    FillRect(dc, &inner, GetSysColorBrush(COLOR_WINDOW));
    SetBkColor(dc, GetSysColor(look.background));
    SetTextColor(dc, GetSysColor(look.text));
    const auto draw = [&](const char* text, int left, int right, UINT format) {
        RECT cell = {left, row.top + 1, right, row.bottom - 2};
        DrawTextA(dc, text, -1, &cell, DT_SINGLELINE | DT_VCENTER | format);
    };
    draw(label, 0, row.right, 0);
    draw(number, 0, TextWidth(list, widest.c_str()), DT_RIGHT);
    draw("Wg && Q", TextWidth(list, (widest + "   ").c_str()) + 1, row.right, 0);
    ReleaseDC(list, dc);
}

}  // namespace

TEST_F(PictureTest, TheSelectedGroupOpensIntoItsTracks) {
    EXPECT_EQ(Picture(groups, {0, 0, 10, 8}), Draw(kCorner));
    const auto expectTab = [this] {
        const int top = RowOf(groups, host.groupList.SelectedRow()).top + 20;
        EXPECT_EQ(Edges(top - 17, top + 34), Draw(kTabTop) + Draw(kTabBottom)) << top;
    };
    expectTab();
    // The tab goes with the row, whoever moves it.
    TurnWheel(groups, tracks, -WHEEL_DELTA);
    EXPECT_EQ(SendMessageA(groups, LB_GETTOPINDEX, 0, 0), 0);
    EXPECT_TRUE(TurnWheel(groups, groups, -WHEEL_DELTA));
    EXPECT_EQ(host.groupList.SelectedRow(), 4);
    expectTab();
    SetFocus(groups);
    SendMessageA(groups, LB_SETTOPINDEX, 2, 0);
    ASSERT_TRUE(PumpAll());
    expectTab();
}

TEST_F(PictureTest, ATabIsCutAtTheBottomOfTheFrame) {
    constexpr int kLow = kRowTop + 19;
    for (HWND list : {groups, tracks}) {
        SetWindowPos(list, nullptr, 0, 0, PlaceOf(list).right - PlaceOf(list).left, kLow,
                     SWP_NOMOVE | SWP_NOZORDER | SWP_FRAMECHANGED);
    }
    Repaint();
    EXPECT_EQ(Edges(kRowTop - 17, kLow), Draw(kTabTop) + Draw(kTabCut));
}

TEST_F(PictureTest, RowsShowTheirFieldsAndTheirState) {
    const RowCase cases[] = {
        {"not selected", false, true, COLOR_WINDOW, COLOR_BTNSHADOW, COLOR_WINDOW},
        {"selected", true, false, COLOR_WINDOW, COLOR_BTNTEXT, COLOR_BTNTEXT},
        {"selected, with the focus", true, true, COLOR_BTNFACE, COLOR_BTNTEXT, COLOR_BTNTEXT},
    };
    host.store.EditTitle(103, 0, "Wg & Q");
    host.store.EditTitle(104, 3, "Wg & Q");
    ASSERT_TRUE(host.Refill(104));
    for (const auto& [list, window] : {host.TrackSide(), host.GroupSide()}) {
        for (const RowCase& look : cases) {
            SetFocus(look.hasFocus ? window : host.Main());
            list.SelectRow(look.isSelected ? 2 : 1);
            list.OnSelChange();
            ASSERT_TRUE(PumpAll());
            const RECT row = RowOf(window, 2);
            const std::string painted = Picture(window, row, true);
            const bool isGroups = window == groups;
            DrawExpected(window, row, look, isGroups, isGroups ? "ZZZ 999" : "ZZ 99", isGroups ? "Dsc" : "Tr",
                         isGroups ? "103" : "3");
            EXPECT_EQ(painted, Picture(window, row, true)) << look.name;
        }
    }
}

TEST_F(PictureTest, APressedArrowStaysPressedUntilItIsReleased) {
    const int height = PlaceOf(groups).bottom - PlaceOf(groups).top;
    for (const RECT& arrow : {RECT{10, 5, width - 10, 18}, RECT{10, height - 18, width - 10, height - 5}}) {
        const auto after = [&](UINT message, int y) {
            SendMessageA(groups, message, MK_LBUTTON, MAKELPARAM(50, static_cast<WORD>(y)));
            return Picture(groups, arrow);
        };
        const int inArrow = arrow.top + 5 - 20;
        const std::string plain = Picture(groups, arrow);
        const std::string pressed = after(WM_LBUTTONDOWN, inArrow);
        EXPECT_NE(pressed, plain);
        Repaint();
        EXPECT_EQ(Picture(groups, arrow), pressed);
        EXPECT_EQ(after(WM_MOUSEMOVE, 30), plain) << "the pointer is elsewhere";
        EXPECT_EQ(after(WM_MOUSEMOVE, inArrow), pressed);
        EXPECT_EQ(after(WM_LBUTTONUP, inArrow), plain);
    }
}
