#include "PaneTesting.h"

#include "Harness.h"
#include "ScriptedLink.h"
#include "TitleStore.h"
#include "resource.h"

namespace {

BoxReader* innermostReader = nullptr;

constexpr UINT kLookMs = 10;
constexpr int kBoxText = 0xFFFF;

}  // namespace

BoxReader::BoxReader(UINT captionId, int atOnce) : caption(Text(captionId)), atOnce(atOnce), outer(innermostReader) {
    innermostReader = this;
    timer = SetTimer(nullptr, 0, kLookMs, OnTimer);
}

BoxReader::~BoxReader() {
    KillTimer(nullptr, timer);
    innermostReader = outer;
}

void CALLBACK BoxReader::OnTimer(HWND, UINT, UINT_PTR id, DWORD) {
    for (BoxReader* reader = innermostReader; reader != nullptr; reader = reader->outer) {
        if (reader->timer == id) {
            reader->Look();
            return;
        }
    }
}

void BoxReader::Look() {
    HWND top = nullptr;
    int boxes = 0;
    HWND box = nullptr;
    while ((box = FindWindowExA(nullptr, box, "#32770", caption.c_str())) != nullptr) {
        if (IsWindowVisible(box)) {
            top = top == nullptr ? box : top;
            ++boxes;
        }
    }
    hasBegun = hasBegun || boxes >= atOnce;
    if (top == nullptr || !hasBegun || !IsWindowEnabled(top)) {
        return;
    }
    texts += WindowText(GetDlgItem(top, kBoxText)) + "\n";
    SendMessageA(top, WM_COMMAND, IDOK, 0);
}

void PaneTest::Refill(GroupId group) {
    int row = 0;
    int rows = 0;
    for (GroupId other = 1; other <= kGroups; ++other) {
        if (scripted::Store()->GetState(other, 0) > 0) {
            row = other == group ? rows : row;
            ++rows;
        }
    }
    Command(IDM_STOP);
    ASSERT_EQ(SendMessageA(Control(IDC_GROUP_LIST), LB_GETCOUNT, 0, 0), rows);
    Select(row);
    Command(IDM_STOP);
    ASSERT_EQ(Selected(IDC_GROUP_LIST), row);
    scripted::Take();
}

void PaneTest::SelectIn(int list, int row) {
    SetFocus(Control(list));
    SendMessageA(Control(list), LB_SETCURSEL, static_cast<WPARAM>(row), 0);
    SendMessageA(Pane(), WM_COMMAND, MAKEWPARAM(static_cast<WORD>(list), LBN_SELCHANGE),
                 reinterpret_cast<LPARAM>(Control(list)));
    Settle();
}

void PaneTest::Command(WORD command) {
    SendMessageA(main, WM_COMMAND, command, 0);
    Settle();
}

void PaneTest::Hear(WORD operation, BYTE code, BYTE status) {
    scripted::PostResult(Pane(), operation, code, status);
    EXPECT_TRUE(PumpAll());
}

LOGFONTA PaneTest::FontOf(int list) const {
    LOGFONTA font = {};
    GetObjectA(reinterpret_cast<HFONT>(SendMessageA(Control(list), WM_GETFONT, 0, 0)), sizeof font, &font);
    return font;
}

std::string PaneTest::Line() const {
    EXPECT_TRUE(PumpAll());
    // The line is drawn by a timer.
    Sleep(2 * USER_TIMER_MINIMUM);
    EXPECT_TRUE(PumpAll());
    return WindowText(Control(IDC_MESSAGE_LINE));
}

bool PaneTest::Asked(const std::string& calls) {
    std::string seen;
    PumpUntil([&] { return (seen += scripted::Take()).size() >= calls.size(); });
    PumpAll();
    seen += scripted::Take();
    EXPECT_EQ(seen, calls);
    return seen == calls;
}
