#include "CListLeft.h"

#include "CListRight.h"
#include "Gdi.h"
#include "TitleStore.h"

namespace {

constexpr RECT kFrame = {0, 0, 0, 0};
constexpr RECT kInset = {10, 20, 10, 20};
constexpr char kWidthSample[] = "ZZZ 999   ";

// What of the tab would be drawn below the frame is left out.
constexpr int kTabLimit = 5;

bool InDisplayRange(const DisplayRanges& ranges, GroupId group, int isDisc) {
    if (isDisc == 1) {
        return ranges.discFrom <= group && group <= ranges.discTo;
    }
    return isDisc == 0 && ranges.albumFrom <= AlbumNumber(group) && AlbumNumber(group) <= ranges.albumTo;
}

void Line(HDC dc, int x, int y, int xEnd, int yEnd) {
    MoveToEx(dc, x, y, nullptr);
    LineTo(dc, xEnd, yEnd);
}

}  // namespace

CListLeft::CListLeft() : CTitleList(kFrame, kInset, kWidthSample) {}

CListLeft::~CListLeft() {
    Shutdown();
}

// --- Rows

void CListLeft::RequestRefill(GroupId group) {
    curGroup = group;
    requests.Request(group);
}

void CListLeft::Populate(const Refill& refill) {
    SendMessageA(hwnd, LB_RESETCONTENT, 0, 0);
    const TitleStore* titles = store;
    int rows = 0;
    for (GroupId group = 1; titles != nullptr && group <= kGroups && requests.IsLatest(refill); ++group) {
        if (!titles->IsKnown(group, 0) || titles->GetState(group, 0) < TS_RECEIVED) {
            continue;
        }
        const int isDisc = titles->IsDisc(group, 0);
        if (!InDisplayRange(refill.ranges, group, isDisc)) {
            continue;
        }
        char title[kTitleSize] = "";
        // One that has just gone from the store keeps an empty row until the next refill.
        const bool isGone = titles->GetTitle(group, 0, title) == 0;
        const char* label = isGone ? "***" : isDisc == 1 ? "Dsc" : "Alb";
        if (InsertRow(rows, label, isGone || isDisc == 1 ? group : AlbumNumber(group), title, group, 0)) {
            ++rows;
        }
    }
}

void CListLeft::OnRefilled() {
    const int row = FindGroupRow(curGroup);
    curSel = row < 0 ? 0 : row;
    curGroup = row < 0 ? -1 : curGroup;
    SelectRow(curSel);
    FollowEdit();
    PostSelChange();
    RedrawAll();
}

// --- Selection

void CListLeft::OnSelChange() {
    const int prevRow = curSel;
    CTitleList::OnSelChange();
    NotifySelectedRow(prevRow);
}

// Rows that are only just being filled stand for other groups than they will, or are not there yet.
GroupId CListLeft::SelectedGroup() const {
    if (IsRefilling()) {
        return curGroup;
    }
    GroupId group = -1;
    return GetSelectedIds(&group, nullptr) != 0 ? group : -1;
}

RECT CListLeft::SelectedRowInWindow() const {
    RECT rect = {};
    SendMessageA(hwnd, LB_GETITEMRECT, static_cast<WPARAM>(SendMessageA(hwnd, LB_GETCURSEL, 0, 0)),
                 reinterpret_cast<LPARAM>(&rect));
    OffsetRect(&rect, 0, clientInset.top);
    return rect;
}

// The track list hears of it when another row is selected, when the selected row has moved on the screen, and when the group
// was lost in a refill.
void CListLeft::NotifySelectedRow(int prevRow) {
    if (IsRefilling()) {
        return;
    }
    const RECT rect = SelectedRowInWindow();
    const bool hasMoved = !EqualRect(&rect, &selRowRect);
    selRowRect = rect;
    if (trackList == nullptr || (curSel == prevRow && !hasMoved && curGroup >= 0)) {
        return;
    }
    if (hasMoved) {
        OnNcPaint(nullptr);
    }
    // While the wheel turns, the tab moves alone: tracks are asked for at the end, not at each notch.
    const bool keepsTracks = IsTurning() && curGroup >= 0;
    GroupId group = curGroup;
    if (!keepsTracks && GetSelectedIds(&group, nullptr) == 0) {
        return;
    }
    curGroup = group;
    trackList->SetLinkedRow(selRowRect, group);
}

void CListLeft::EndTurn() {
    CTitleList::EndTurn();
    NotifySelectedRow(-1);
}

// --- Editing

// Enter carries the user on to the first track.
int CListLeft::EndEdit() {
    if (CTitleList::EndEdit() == 0) {
        return 0;
    }
    if (enterCommitted) {
        if (trackList != nullptr) {
            trackList->SelectRow(0);
            trackList->OnSelChange();
        }
        PostMessageA(hwnd, WM_KEYDOWN, VK_TAB, 0);
    }
    enterCommitted = false;
    return 1;
}

// --- Painting

void CListLeft::OnDrawItem(DRAWITEMSTRUCT* item) {
    if (!IsRowToPaint(*item)) {
        return;
    }
    PaintRow(*item, LookOf(item->itemState), true);
    // This is how a selected row that was scrolled is noticed.
    if ((item->itemState & ODS_FOCUS) != 0 && !arrowTracking) {
        NotifySelectedRow(curSel);
    }
}

void CListLeft::OnNcPaint(HRGN /*region*/) {
    const WindowDc dc(hwnd);
    const Region outline(CreateOutline());
    FillCorners(dc, outline);
    FillBand(dc, outline);
    FrameShape(dc, outline);
    const LRESULT count = SendMessageA(hwnd, LB_GETCOUNT, 0, 0);
    if (count > 0 && curSel >= 0 && curSel <= count) {
        PaintTab(dc);
    }
    DrawArrows(dc);
}

// Opens the outline along the selected row, carries the row's rules out to the window's edge, and closes its left end with a
// curve.
void CListLeft::PaintTab(HDC dc) const {
    const SIZE size = WindowSize();
    const RECT row = SelectedRowInWindow();
    const int right = size.cx + frameRect.right;
    const int limit = size.cy + frameRect.bottom - kTabLimit;
    if (row.top >= limit) {
        return;
    }
    {
        const Pen pen(CreatePen(PS_SOLID, 0, GetSysColor(COLOR_WINDOW)));
        const Selected selected(dc, pen);
        const int bottom = row.bottom < limit ? row.bottom : limit;
        Line(dc, right - 2, row.top, right - 2, bottom);
        Line(dc, right - 1, row.top, right - 1, bottom);
    }
    const Pen pen(CreatePen(PS_SOLID, 0, GetSysColor(COLOR_BTNTEXT)));
    const Selected selected(dc, pen);
    Line(dc, right - clientInset.right, row.top, right, row.top);
    if (row.bottom - 1 < limit) {
        Line(dc, right - clientInset.right, row.bottom - 1, right, row.bottom - 1);
    }
    const bool isCut = limit < row.bottom;
    const int yEnd = isCut ? limit : row.bottom;
    if (row.top < yEnd) {
        Arc(dc, 2, row.top, 2 * clientInset.left - 2, row.bottom, clientInset.left + 1, row.top,
            isCut ? clientInset.left - 3 : clientInset.left + 1, yEnd);
    }
}
