#include "CListRight.h"

#include "Gdi.h"
#include "PaneRequests.h"
#include "TitleStore.h"

namespace {

// The ten pixels left of the frame are there for the connector to the group list.
constexpr RECT kFrame = {10, 0, 0, 0};
constexpr RECT kInset = {20, 20, 10, 20};
constexpr char kWidthSample[] = "ZZ 99   ";
constexpr char kNoData[] = "[ No Data ]";

// The connector around the selected group row: how far its span and the two ellipses that cut it reach above and below, and
// what is left out above the window's edge.
constexpr int kSpanAbove = 14;
constexpr int kSpanBelow = 11;
constexpr int kEllipseFar = 35;
constexpr int kEllipseNear = 4;
constexpr int kSpanLimit = 5;

bool InTrackRange(const DisplayRanges& ranges, TrackNo track) {
    return ranges.trackFrom <= track && track <= ranges.trackTo;
}

}  // namespace

CListRight::CListRight() : CTitleList(kFrame, kInset, kWidthSample), linkRect{0, kInset.top, 0, 0} {}

CListRight::~CListRight() {
    Shutdown();
}

void CListRight::SetLinkedRow(const RECT& rect, GroupId newGroup) {
    const bool isRectChanged = !EqualRect(&rect, &linkRect);
    const bool isGroupChanged = newGroup != group;
    linkRect = rect;
    group = newGroup;
    if (!isRectChanged && !isGroupChanged) {
        return;
    }
    if (isRectChanged) {
        OnNcPaint(nullptr);
    }
    if (isGroupChanged) {
        EndEdit();
        requests.Cancel();
        SendMessageA(hwnd, LB_RESETCONTENT, 0, 0);
        // Sent, so that the pane works on this group before anything else happens.
        SendMessageA(GetParent(hwnd), WM_USER, UC_GROUP_CHANGED, newGroup);
        curSel = 0;
        SelectRow(curSel);
    }
    RedrawAll();
}

// --- Rows

void CListRight::RequestRefill(GroupId newGroup) {
    if (newGroup != 0) {
        clearsLine = true;
        requests.Request(newGroup);
    }
}

void CListRight::ShowTracks(GroupId newGroup) {
    clearsLine = clearsLine && IsRefilling();
    requests.Request(newGroup);
}

void CListRight::Populate(const Refill& refill) {
    const TitleStore* titles = store;
    if (titles == nullptr) {
        return;
    }
    SendMessageA(hwnd, LB_RESETCONTENT, 0, 0);
    const int count = titles->GetTrackCount(refill.group);
    int rows = 0;
    for (TrackNo track = 1; track <= count && requests.IsLatest(refill); ++track) {
        if (!InTrackRange(refill.ranges, track) || !titles->IsKnown(refill.group, track) ||
            titles->GetState(refill.group, track) < TS_RECEIVED) {
            continue;
        }
        char title[kTitleSize] = "";
        const bool hasTitle = titles->GetTitle(refill.group, track, title) != 0;
        if (InsertRow(rows, "Tr", track, hasTitle ? title : kNoData, refill.group, track)) {
            ++rows;
        }
    }
}

void CListRight::OnRefilled() {
    SelectRow(curSel);
    FollowEdit();
    RedrawAll();
    if (clearsLine) {
        PostPaneRequest(hwnd, UC_MESSAGE_LINE, 0);
    }
}

// --- Editing

// The tracks of Albums are read-only.
bool CListRight::IsEditable(GroupId wantedGroup, TrackNo track) const {
    const TitleStore* titles = store;
    return titles != nullptr && titles->IsDisc(wantedGroup, track) > 0;
}

int CListRight::EndEdit() {
    if (CTitleList::EndEdit() == 0) {
        return 0;
    }
    if (enterCommitted && store != nullptr) {
        MoveOn(editGroup);
    }
    enterCommitted = false;
    return 1;
}

// To the next track with a title, and behind the last one to the groups.
void CListRight::MoveOn(GroupId editedGroup) {
    const int next = NextRowWithTitle(editedGroup);
    if (next >= 0) {
        curSel = next;
        SelectRow(next);
        OnSelChange();
        return;
    }
    HWND control = GetNextDlgTabItem(GetParent(hwnd), hwnd, FALSE);
    if (control != nullptr) {
        SetFocus(control);
    }
}

int CListRight::NextRowWithTitle(GroupId editedGroup) const {
    const TitleStore* titles = store;
    const auto count = static_cast<int>(SendMessageA(hwnd, LB_GETCOUNT, 0, 0));
    for (int row = curSel + 1; row < count; ++row) {
        const LRESULT value = SendMessageA(hwnd, LB_GETITEMDATA, static_cast<WPARAM>(row), 0);
        if (value != LB_ERR && titles->GetState(editedGroup, LOWORD(static_cast<DWORD_PTR>(value))) >= TS_RECEIVED) {
            return row;
        }
    }
    return -1;
}

// --- Painting

void CListRight::OnDrawItem(DRAWITEMSTRUCT* item) {
    if (IsRowToPaint(*item)) {
        rowHeight = PaintRow(*item, LookOf(item->itemState), false);
    }
}

// The frame, with a flare at its left that widens from the height of the selected group row to the frame.
HRGN CListRight::CreateShape() const {
    HRGN outline = CreateOutline();
    const int top = linkRect.top;
    const int limit = WindowSize().cy + frameRect.bottom - kSpanLimit;
    int spanTop = top - kSpanAbove;
    int spanBottom = top + rowHeight + kSpanBelow;
    if (spanBottom > limit) {
        spanBottom = limit;
        if (spanBottom < top) {
            spanTop = top;
            spanBottom = top;
        }
    }
    const bool isMeasured = charWidth != 0 || rowHeight != 0;
    if (!isMeasured || group <= 0 || SendMessageA(hwnd, LB_GETCOUNT, 0, 0) <= 0 || spanTop == spanBottom) {
        return outline;
    }
    const int outer = -1 - frameRect.left;
    const int inner = frameRect.left + 1;
    const Region flare(CreateRectRgn(outer, spanTop, inner, spanBottom));
    const Region above(CreateEllipticRgn(3 * outer, top - kEllipseFar, inner, top + kEllipseNear));
    const Region below(CreateEllipticRgn(3 * outer, top + rowHeight - kEllipseNear, inner, top + rowHeight + kEllipseFar));
    CombineRgn(flare, flare, above, RGN_DIFF);
    CombineRgn(flare, flare, below, RGN_DIFF);
    CombineRgn(outline, flare, outline, RGN_OR);
    return outline;
}

void CListRight::OnNcPaint(HRGN /*region*/) {
    const WindowDc dc(hwnd);
    const Region shape(CreateShape());
    FillCorners(dc, shape);
    FillBand(dc, shape);
    AddClientAndArrows(shape);
    FrameShape(dc, shape);
    {
        const Pen pen(CreatePen(PS_SOLID, 0, GetSysColor(COLOR_WINDOW)));
        const Selected selected(dc, pen);
        MoveToEx(dc, 0, linkRect.top + 1, nullptr);
        LineTo(dc, 0, linkRect.top + rowHeight - 1);
    }
    DrawArrows(dc);
}
