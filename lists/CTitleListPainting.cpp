// What a list looks like: its geometry, its font, and the painting that both lists share.
#include "CTitleList.h"
#include "Gdi.h"
#include "RowText.h"

namespace {

constexpr int kArrowHeight = 13;
constexpr int kArrowMargin = 5;  // between an arrow and the window's edge
constexpr int kCorner = 10;      // of the outline, across and down
constexpr int kRowGap = 3;       // what a row has more than its text
constexpr UINT kCell = DT_EXPANDTABS | DT_SINGLELINE | DT_VCENTER;
constexpr UINT kDrawActions = ODA_DRAWENTIRE | ODA_SELECT | ODA_FOCUS;

void CombineInto(HRGN target, const RECT& rect, int mode) {
    const Region other(CreateRectRgn(rect.left, rect.top, rect.right, rect.bottom));
    CombineRgn(target, target, other, mode);
}

void FillWith(HDC dc, HRGN region, int color) {
    const Brush brush(CreateSolidBrush(GetSysColor(color)));
    FillRgn(dc, region, brush);
}

int RowHeightOf(HDC dc) {
    TEXTMETRICA metrics = {};
    GetTextMetricsA(dc, &metrics);
    return metrics.tmHeight + metrics.tmExternalLeading + kRowGap;
}

}  // namespace

// --- Geometry

SIZE CTitleList::WindowSize() const {
    RECT window = {};
    GetWindowRect(hwnd, &window);
    return {window.right - window.left, window.bottom - window.top};
}

RECT CTitleList::ClientArea() const {
    const SIZE size = WindowSize();
    return {clientInset.left, clientInset.top, size.cx - clientInset.right, size.cy - clientInset.bottom};
}

RECT CTitleList::UpArrow() const {
    const RECT client = ClientArea();
    return {client.left, kArrowMargin, client.right, kArrowMargin + kArrowHeight};
}

RECT CTitleList::DownArrow() const {
    const RECT client = ClientArea();
    const int bottom = WindowSize().cy - kArrowMargin;
    return {client.left, bottom - kArrowHeight, client.right, bottom};
}

void CTitleList::OnNcCalcSize(int /*zero*/, RECT* rect) {
    rect->left += clientInset.left;
    rect->top += clientInset.top;
    rect->right -= clientInset.right;
    rect->bottom -= clientInset.bottom;
}

// So a press on the frame arrives like one on a row, with a place outside the client area.
LRESULT CTitleList::OnNcHitTest(int x, int y) {
    const LRESULT hit = DefWindowProcA(hwnd, WM_NCHITTEST, 0, MAKELPARAM(static_cast<WORD>(x), static_cast<WORD>(y)));
    return hit == HTNOWHERE ? HTCLIENT : hit;
}

// --- Font

// The height is provisional; painting a row sets the final one.
void CTitleList::OnMeasureItem(MEASUREITEMSTRUCT* item) {
    HDC dc = GetDC(hwnd);
    TEXTMETRICA metrics = {};
    GetTextMetricsA(dc, &metrics);
    ReleaseDC(hwnd, dc);
    charWidth = metrics.tmAveCharWidth;
    rowHeight = metrics.tmHeight;
    item->itemWidth = static_cast<UINT>(charWidth);
    item->itemHeight = static_cast<UINT>(rowHeight);
}

void CTitleList::SetListFont(const LOGFONTA* description) {
    if (hwnd == nullptr || !MakeFont(description)) {
        return;
    }
    MeasureColumns();
}

bool CTitleList::MakeFont(const LOGFONTA* description) {
    bool isUsable = false;
    if (description != nullptr && description->lfFaceName[0] != '\0') {
        const OwnedObject<HFONT> attempt(CreateFontIndirectA(description));
        logFont = *description;
        isUsable = attempt != nullptr;
    }
    if (!isUsable) {
        auto* present = reinterpret_cast<HFONT>(SendMessageA(hwnd, WM_GETFONT, 0, 0));
        GetObjectA(present != nullptr ? static_cast<HGDIOBJ>(present) : GetStockObject(SYSTEM_FONT), sizeof logFont,
                   &logFont);
    }
    HFONT font = CreateFontIndirectA(&logFont);
    if (font == nullptr) {
        return false;
    }
    SendMessageA(hwnd, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    if (listFont != nullptr) {
        DeleteObject(listFont);
    }
    listFont = font;
    return true;
}

void CTitleList::MeasureColumns() {
    int length = 0;
    int lengthOfHead = 0;
    for (; widthSample[length] != '\0'; ++length) {
        lengthOfHead = widthSample[length] != ' ' ? length + 1 : lengthOfHead;
    }
    HDC dc = GetDC(hwnd);
    {
        const Selected font(dc, listFont);
        SIZE extent = {};
        GetTextExtentPoint32A(dc, widthSample, length, &extent);
        labelWidth = extent.cx;
        GetTextExtentPoint32A(dc, widthSample, lengthOfHead, &extent);
        numberRight = extent.cx;
        fontRowHeight = RowHeightOf(dc);
        if (charWidth != 0 || rowHeight != 0) {
            rowHeight = fontRowHeight;
        }
    }
    ReleaseDC(hwnd, dc);
}

// --- Rows

bool CTitleList::IsRowToPaint(const DRAWITEMSTRUCT& item) const {
    return editor == nullptr && (item.itemAction & kDrawActions) != 0;
}

CTitleList::RowLook CTitleList::LookOf(UINT itemState) {
    const COLORREF window = GetSysColor(COLOR_WINDOW);
    if ((itemState & ODS_SELECTED) == 0) {
        return {window, GetSysColor(COLOR_BTNSHADOW), window};
    }
    const COLORREF text = GetSysColor(COLOR_BTNTEXT);
    return {(itemState & ODS_FOCUS) != 0 ? GetSysColor(COLOR_BTNFACE) : window, text, text};
}

int CTitleList::PaintRow(const DRAWITEMSTRUCT& item, const RowLook& look, bool hasRules) const {
    HDC dc = item.hDC;
    int height = RowHeightOf(dc);
    // Some list boxes paint anew whenever a height is set, and would never come to an end.
    if (SendMessageA(hwnd, LB_GETITEMHEIGHT, item.itemID, 0) != height &&
        SendMessageA(hwnd, LB_SETITEMHEIGHT, item.itemID, MAKELPARAM(static_cast<WORD>(height), 0)) == LB_ERR) {
        height = item.rcItem.bottom - item.rcItem.top;
    }
    RECT row = item.rcItem;
    row.bottom = row.top + height;
    const COLORREF backgroundBefore = SetBkColor(dc, look.background);
    {
        // The brush is the one that the control has chosen for its background.
        const Selected noPen(dc, GetStockObject(NULL_PEN));
        Rectangle(dc, row.left, row.top, row.right, row.bottom - 1);
    }
    if (hasRules) {
        const Pen pen(CreatePen(PS_SOLID, 0, look.rules));
        const Selected selected(dc, pen);
        MoveToEx(dc, row.left, row.top, nullptr);
        LineTo(dc, row.right, row.top);
        MoveToEx(dc, row.left, row.bottom - 1, nullptr);
        LineTo(dc, row.right, row.bottom - 1);
    }
    char text[kRowTextSize] = "";
    if (static_cast<int>(item.itemID) >= 0 && GetRowText(static_cast<int>(item.itemID), text)) {
        const COLORREF textBefore = SetTextColor(dc, look.text);
        PaintFields(dc, row, text);
        SetTextColor(dc, textBefore);
    }
    SetBkColor(dc, backgroundBefore);
    return height;
}

void CTitleList::PaintFields(HDC dc, const RECT& row, const char* text) const {
    const RowFields fields = SplitRow(text);
    RECT cell = {row.left, row.top + 1, row.right, row.bottom - 2};
    DrawTextA(dc, fields.label, fields.labelLength, &cell, kCell);
    cell.right = numberRight;
    DrawTextA(dc, fields.number, fields.numberLength, &cell, kCell | DT_RIGHT);
    cell.left = labelWidth + 1;
    cell.right = row.right;
    DrawTextA(dc, fields.title, fields.titleLength, &cell, kCell);
}

// --- Frame

HRGN CTitleList::CreateOutline() const {
    const SIZE size = WindowSize();
    return CreateRoundRectRgn(frameRect.left, frameRect.top, size.cx + frameRect.right, size.cy + frameRect.bottom, kCorner,
                              kCorner);
}

void CTitleList::FillCorners(HDC dc, HRGN shape) const {
    const SIZE size = WindowSize();
    const Region corners(CreateRectRgn(0, 0, size.cx, size.cy));
    CombineRgn(corners, corners, shape, RGN_XOR);
    FillWith(dc, corners, COLOR_BTNFACE);
}

void CTitleList::FillBand(HDC dc, HRGN shape) const {
    const Region band(CreateRectRgn(0, 0, 0, 0));
    CombineRgn(band, shape, nullptr, RGN_COPY);
    CombineInto(band, ClientArea(), RGN_XOR);
    CombineInto(band, UpArrow(), RGN_XOR);
    CombineInto(band, DownArrow(), RGN_XOR);
    FillWith(dc, band, COLOR_WINDOW);
}

void CTitleList::AddClientAndArrows(HRGN shape) const {
    CombineInto(shape, ClientArea(), RGN_OR);
    CombineInto(shape, UpArrow(), RGN_OR);
    CombineInto(shape, DownArrow(), RGN_OR);
}

void CTitleList::FrameShape(HDC dc, HRGN shape) const {
    const Brush brush(CreateSolidBrush(GetSysColor(COLOR_BTNTEXT)));
    FrameRgn(dc, shape, brush, 1, 1);
}

// While one is pressed the mouse draws it, and a repaint must not undo its look.
void CTitleList::DrawArrows(HDC dc) const {
    if (arrowTracking) {
        return;
    }
    RECT up = UpArrow();
    RECT down = DownArrow();
    DrawFrameControl(dc, &up, DFC_SCROLL, DFCS_SCROLLUP);
    DrawFrameControl(dc, &down, DFC_SCROLL, DFCS_SCROLLDOWN);
}

void CTitleList::DrawArrow(bool isPressed) const {
    const WindowDc dc(hwnd);
    RECT rect = arrowRect;
    DrawFrameControl(dc, &rect, DFC_SCROLL, static_cast<UINT>(arrowKind) | (isPressed ? DFCS_PUSHED : 0U));
}

void CTitleList::RedrawAll() const {
    RedrawWindow(hwnd, nullptr, nullptr, RDW_INVALIDATE | RDW_NOINTERNALPAINT | RDW_FRAME);
}
