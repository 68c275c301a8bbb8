// The class "LISTBOX": what it holds and what it answers.
#include "ListBox.h"

#include <QWidget>
#include <algorithm>
#include <cstring>

#include "Controls.h"
#include "Desktop.h"
#include "ListAccess.h"

namespace desktop {

namespace {

constexpr int kLowestRow = 1;
constexpr int kHighestRow = 255;

int LastTop(HWND handle) {
    const ListBox& list = *FindList(handle);
    return list.rows.Count() == 0 ? 0 : list.rows.FirstThatFits(list.rows.Count() - 1, ClientHeight(handle));
}

// Rows or room may have become fewer or more. While redrawing is off a row may be on its way out and in again, and the list
// would not come back to its place.
void FillUp(HWND handle) {
    const ScreenWindow* window = Desktop::Get().Find(handle);
    if (window->redraw && ClientHeight(handle) > 0 && FindList(handle)->top > LastTop(handle)) {
        SetTop(handle, LastTop(handle));
    }
}

int Measure(HWND handle, int index) {
    MEASUREITEMSTRUCT row{};
    row.CtlType = ODT_LISTBOX;
    row.CtlID = static_cast<UINT>(GetDlgCtrlID(handle));
    row.itemID = static_cast<UINT>(index);
    row.itemHeight = static_cast<UINT>(TextHeight(handle));
    SendMessageA(GetParent(handle), WM_MEASUREITEM, row.CtlID, reinterpret_cast<LPARAM>(&row));
    return static_cast<int>(std::min<UINT>(row.itemHeight, kHighestRow));
}

LRESULT InsertRow(HWND handle, int index, const char* text) {
    ListBox* list = FindList(handle);
    if (index == -1) {
        index = list->rows.Count();
    }
    if (index < 0 || index > list->rows.Count()) {
        return LB_ERR;
    }
    list->rows.Insert(index, text != nullptr ? text : "");
    if (index <= list->selected) {
        ++list->selected;
    }
    const int height = Measure(handle, index);
    list = FindList(handle);
    if (list == nullptr || !list->rows.Has(index)) {
        return LB_ERR;
    }
    list->rows.SetHeight(index, std::max(height, kLowestRow));
    InvalidateFrom(handle, index);
    return index;
}

LRESULT DeleteRow(HWND handle, int index) {
    ListBox& list = *FindList(handle);
    if (!list.rows.Has(index)) {
        return LB_ERR;
    }
    InvalidateFrom(handle, index);
    list.rows.Delete(index);
    if (index == list.selected) {
        list.selected = -1;
    } else if (index < list.selected) {
        --list.selected;
    }
    list.focusRow = std::clamp(list.focusRow, 0, std::max(list.rows.Count() - 1, 0));
    FillUp(handle);
    return list.rows.Count();
}

LRESULT Reset(HWND handle) {
    ListBox& list = *FindList(handle);
    list.rows.Clear();
    list.selected = -1;
    list.focusRow = 0;
    list.top = 0;
    InvalidateRect(handle, nullptr, TRUE);
    TellRows(handle);
    return LB_OKAY;
}

// The focus is drawn last: what draws the selection knows nothing of it.
LRESULT Select(HWND handle, int index) {
    ListBox* list = FindList(handle);
    if (index == -1) {
        ChangeSelection(handle, -1);
        return LB_ERR;
    }
    if (!list->rows.Has(index)) {
        return LB_ERR;
    }
    if (list->focusRow == index && list->selected == index) {
        ScrollIntoView(handle, index);
        return index;
    }
    DrawFocus(handle, false);
    list = FindList(handle);
    if (list == nullptr || !list->rows.Has(index)) {
        return LB_ERR;
    }
    list->focusRow = index;
    ScrollIntoView(handle, index);
    ChangeSelection(handle, index);
    DrawFocus(handle, true);
    return index;
}

LRESULT CopyRow(const ListBox& list, int index, char* buffer) {
    if (!list.rows.Has(index)) {
        return LB_ERR;
    }
    const std::string& text = list.rows.Text(index);
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return static_cast<LRESULT>(text.size());
}

LRESULT TellRect(HWND handle, int index, RECT& rect) {
    if (!FindList(handle)->rows.Has(index)) {
        rect = {0, 0, 0, 0};
        return LB_ERR;
    }
    rect = RowRect(handle, index);
    return TRUE;
}

// A program may set a row's height while the row is drawn, each time anew: the same height must not have it drawn again.
LRESULT SetRowHeight(HWND handle, int index, LPARAM height) {
    ListBox& list = *FindList(handle);
    if (!list.rows.Has(index) || height < 0 || height > kHighestRow) {
        return LB_ERR;
    }
    const int wanted = std::max(static_cast<int>(height), kLowestRow);
    if (wanted != list.rows.Height(index)) {
        InvalidateFrom(handle, index);
        list.rows.SetHeight(index, wanted);
        InvalidateFrom(handle, index);
    }
    return LB_OKAY;
}

LRESULT SetFont(HWND handle, HFONT font, bool redraw) {
    Desktop::Get().Find(handle)->font = font;
    FindList(handle)->textHeight = 0;
    if (redraw) {
        InvalidateRect(handle, nullptr, TRUE);
    }
    return 0;
}

// Unlike other windows a list stays visible meanwhile, for whoever looks for the next control, say.
LRESULT SetRedraw(HWND handle, bool redraw) {
    ScreenWindow& window = *Desktop::Get().Find(handle);
    window.redraw = redraw;
    window.widget->setUpdatesEnabled(redraw);
    FillUp(handle);
    if (redraw) {
        TellRows(handle);
    }
    return 0;
}

LRESULT GainFocus(HWND handle) {
    FindList(handle)->hasFocus = true;
    DrawFocus(handle, true);
    if (FindList(handle) != nullptr) {
        NotifyParent(handle, LBN_SETFOCUS);
    }
    return 0;
}

LRESULT LoseFocus(HWND handle) {
    DrawFocus(handle, false);
    if (ListBox* list = FindList(handle)) {
        list->hasFocus = false;
        NotifyParent(handle, LBN_KILLFOCUS);
    }
    return 0;
}

LRESULT ContentMessage(HWND handle, UINT message, int index, LPARAM lParam) {
    ListBox& list = *FindList(handle);
    switch (message) {
        case LB_INSERTSTRING: return InsertRow(handle, index, reinterpret_cast<const char*>(lParam));
        case LB_DELETESTRING: return DeleteRow(handle, index);
        case LB_RESETCONTENT: return Reset(handle);
        case LB_GETCOUNT: return list.rows.Count();
        case LB_SETCURSEL: return Select(handle, index);
        case LB_GETCURSEL: return list.selected;
        case LB_GETTEXT: return CopyRow(list, index, reinterpret_cast<char*>(lParam));
        case LB_GETTEXTLEN: return list.rows.Has(index) ? static_cast<LRESULT>(list.rows.Text(index).size()) : LB_ERR;
        case LB_GETITEMDATA: return list.rows.Has(index) ? static_cast<LRESULT>(list.rows.Value(index)) : LB_ERR;
        case LB_SETITEMDATA:
            if (!list.rows.Has(index)) {
                return LB_ERR;
            }
            list.rows.SetValue(index, static_cast<ULONG_PTR>(lParam));
            return TRUE;
        case LB_GETTOPINDEX: return list.top;
        case LB_SETTOPINDEX: SetTop(handle, index); return LB_OKAY;
        case LB_GETITEMRECT: return TellRect(handle, index, *reinterpret_cast<RECT*>(lParam));
        case LB_GETITEMHEIGHT: return list.rows.Has(index) ? list.rows.Height(index) : LB_ERR;
        case LB_SETITEMHEIGHT: return SetRowHeight(handle, index, static_cast<WORD>(lParam));
        default: return 0;
    }
}

bool IsContentMessage(UINT message) {
    return message >= LB_INSERTSTRING && message <= LB_GETITEMHEIGHT;
}

int XOf(LPARAM lParam) {
    return static_cast<SHORT>(LOWORD(static_cast<DWORD_PTR>(lParam)));
}

int YOf(LPARAM lParam) {
    return static_cast<SHORT>(HIWORD(static_cast<DWORD_PTR>(lParam)));
}

}  // namespace

ListBox* FindList(HWND handle) {
    ScreenWindow* window = Desktop::Get().Find(handle);
    if (window == nullptr) {
        return nullptr;
    }
    if (window->control == nullptr) {
        window->control = std::make_unique<ListBox>();
    }
    return static_cast<ListBox*>(window->control.get());
}

int ClientHeight(HWND handle) {
    return Desktop::Get().Find(handle)->ClientSize().height();
}

int RowTop(const ListBox& list, int index) {
    return list.rows.Offset(index) - list.rows.Offset(std::min(list.top, list.rows.Count()));
}

RECT RowRect(HWND handle, int index) {
    const ListBox& list = *FindList(handle);
    const int top = RowTop(list, index);
    return {0, top, Desktop::Get().Find(handle)->ClientSize().width(), top + list.rows.Height(index)};
}

void SetTop(HWND handle, int index) {
    ListBox& list = *FindList(handle);
    index = std::clamp(index, 0, LastTop(handle));
    if (index != list.top) {
        list.top = index;
        InvalidateRect(handle, nullptr, TRUE);
    }
}

void ScrollIntoView(HWND handle, int index) {
    const ListBox& list = *FindList(handle);
    if (index < list.top) {
        SetTop(handle, index);
    } else if (RowTop(list, index) + list.rows.Height(index) > ClientHeight(handle)) {
        SetTop(handle, list.rows.FirstThatFits(index, ClientHeight(handle)));
    }
}

void ChangeSelection(HWND handle, int index) {
    ListBox& list = *FindList(handle);
    const int before = list.selected;
    if (index == before) {
        return;
    }
    list.selected = index;
    DrawRow(handle, before, ODA_SELECT);
    DrawRow(handle, index, ODA_SELECT);
    TellSelectedRow(handle);
}

LRESULT CALLBACK ListBoxProc(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    if (FindList(handle) == nullptr) {
        return 0;
    }
    if (IsContentMessage(message)) {
        return ContentMessage(handle, message, static_cast<int>(wParam), lParam);
    }
    switch (message) {
        case WM_PAINT: return PaintList(handle);
        case WM_ERASEBKGND: return EraseList(handle, reinterpret_cast<HDC>(wParam));
        case WM_SETFONT:
            return SetFont(handle, reinterpret_cast<HFONT>(wParam), LOWORD(static_cast<DWORD_PTR>(lParam)) != 0);
        case WM_GETFONT: return reinterpret_cast<LRESULT>(Desktop::Get().Find(handle)->font);
        case WM_GETDLGCODE: return DLGC_WANTARROWS | DLGC_WANTCHARS;
        case WM_SETFOCUS: return GainFocus(handle);
        case WM_KILLFOCUS: return LoseFocus(handle);
        case WM_ENABLE: InvalidateRect(handle, nullptr, TRUE); return 0;
        case WM_SIZE: FillUp(handle); return 0;
        case WM_SETREDRAW: return SetRedraw(handle, wParam != 0);
        case WM_KEYDOWN: ListKey(handle, static_cast<int>(wParam)); return 0;
        case WM_CHAR: ListCharacter(handle, static_cast<char>(wParam)); return 0;
        case WM_LBUTTONDOWN: ListPress(handle, XOf(lParam), YOf(lParam)); return 0;
        case WM_LBUTTONDBLCLK: NotifyParent(handle, LBN_DBLCLK); return 0;
        case WM_LBUTTONUP: ListRelease(handle); return 0;
        case WM_MOUSEMOVE: ListDrag(handle, YOf(lParam)); return 0;
        case WM_CAPTURECHANGED: EndDrag(handle); return 0;
        default: return DefWindowProcA(handle, message, wParam, lParam);
    }
}

void ListBox::TellFocus(HWND handle) const {
    TellSelectedRow(handle);
}

}  // namespace desktop
