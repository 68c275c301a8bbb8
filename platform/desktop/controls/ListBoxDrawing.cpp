// How a list box has its rows drawn by its parent.
#include "Desktop.h"
#include "ListBox.h"
#include "Painting.h"
#include "Placement.h"

namespace desktop {

namespace {

// The parent may name a brush for the background; rows are wiped with what is selected.
HBRUSH AskBrush(HWND handle, HDC dc) {
    SetTextColor(dc, GetSysColor(COLOR_WINDOWTEXT));
    SetBkColor(dc, GetSysColor(COLOR_WINDOW));
    const LRESULT answer =
        SendMessageA(GetParent(handle), WM_CTLCOLORLISTBOX, reinterpret_cast<WPARAM>(dc), reinterpret_cast<LPARAM>(handle));
    return answer != 0 ? reinterpret_cast<HBRUSH>(answer) : GetSysColorBrush(COLOR_WINDOW);
}

void Prepare(HWND handle, HDC dc) {
    SelectObject(dc, AskBrush(handle, dc));
    const ScreenWindow* window = Desktop::Get().Find(handle);
    if (window != nullptr && window->font != nullptr) {
        SelectObject(dc, window->font);
    }
}

void SendRow(HWND handle, HDC dc, int index, UINT action, bool focused) {
    const ListBox& list = *FindList(handle);
    DRAWITEMSTRUCT row{};
    row.CtlType = ODT_LISTBOX;
    row.CtlID = static_cast<UINT>(GetDlgCtrlID(handle));
    row.itemID = static_cast<UINT>(index);
    row.itemAction = action;
    row.itemState = (index == list.selected ? ODS_SELECTED : 0) | (HasStyle(handle, WS_DISABLED) ? ODS_DISABLED : 0) |
                    (focused ? ODS_FOCUS : 0);
    row.hwndItem = handle;
    row.hDC = dc;
    row.rcItem = RowRect(handle, index);
    row.itemData = list.rows.Value(index);
    SendMessageA(GetParent(handle), WM_DRAWITEM, row.CtlID, reinterpret_cast<LPARAM>(&row));
}

bool IsInSight(HWND handle, int index) {
    const ListBox* list = FindList(handle);
    return list != nullptr && list->rows.Has(index) && index >= list->top && RowTop(*list, index) < ClientHeight(handle);
}

}  // namespace

void DrawRow(HWND handle, int index, UINT action, bool focused) {
    if (!IsInSight(handle, index)) {
        return;
    }
    const ScreenWindow& window = *Desktop::Get().Find(handle);
    if (!window.redraw) {
        const RECT rect = RowRect(handle, index);
        InvalidateRect(handle, &rect, TRUE);
        return;
    }
    if (!IsVisibleOnScreen(window)) {
        return;
    }
    HDC dc = GetDC(handle);
    if (dc == nullptr) {
        return;
    }
    Prepare(handle, dc);
    if (IsInSight(handle, index)) {
        SendRow(handle, dc, index, action, focused);
    }
    ReleaseDC(handle, dc);
}

void DrawFocus(HWND handle, bool focused) {
    const ListBox* list = FindList(handle);
    if (list != nullptr && list->hasFocus) {
        DrawRow(handle, list->focusRow, ODA_FOCUS, focused);
    }
}

void InvalidateFrom(HWND handle, int index) {
    const ListBox& list = *FindList(handle);
    RECT rect;
    GetClientRect(handle, &rect);
    if (list.rows.Has(index) && index > list.top) {
        rect.top = RowTop(list, index);
    }
    if (rect.top < rect.bottom) {
        InvalidateRect(handle, &rect, TRUE);
    }
}

LRESULT PaintList(HWND handle) {
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(handle, &paint);
    if (dc == nullptr) {
        return 0;
    }
    if (FindList(handle) != nullptr) {
        Prepare(handle, dc);
    }
    const ListBox* list = FindList(handle);
    for (int index = list != nullptr ? list->top : 0; IsInSight(handle, index); ++index) {
        SendRow(handle, dc, index, ODA_DRAWENTIRE, false);
    }
    list = FindList(handle);
    if (list != nullptr && list->hasFocus && IsInSight(handle, list->focusRow)) {
        SendRow(handle, dc, list->focusRow, ODA_FOCUS, true);
    }
    EndPaint(handle, &paint);
    return 0;
}

LRESULT EraseList(HWND handle, HDC dc) {
    RECT client;
    GetClientRect(handle, &client);
    FillRect(dc, &client, AskBrush(handle, dc));
    return 1;
}

int TextHeight(HWND handle) {
    ListBox& list = *FindList(handle);
    if (list.textHeight == 0) {
        HDC dc = GetDC(handle);
        TEXTMETRICA metrics{};
        if (HFONT font = Desktop::Get().Find(handle)->font) {
            SelectObject(dc, font);
        }
        GetTextMetricsA(dc, &metrics);
        ReleaseDC(handle, dc);
        list.textHeight = metrics.tmHeight;
    }
    return list.textHeight;
}

}  // namespace desktop
