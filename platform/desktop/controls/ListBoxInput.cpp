// What a list box does with keys and with the mouse.
#include <QString>
#include <algorithm>

#include "Controls.h"
#include "Desktop.h"
#include "ListBox.h"
#include "Text.h"

namespace desktop {

namespace {

constexpr UINT kScrollPeriodMs = 50;
constexpr UINT_PTR kScrollTimer = 0x4C42;  // a number that no program is likely to use for a timer of its own

// The rows change their look where they are; then the list scrolls, and the new row gets the focus.
void SelectByUser(HWND handle, int index) {
    DrawFocus(handle, false);
    if (FindList(handle) != nullptr) {
        ChangeSelection(handle, index);
    }
    ListBox* list = FindList(handle);
    if (list == nullptr || !list->rows.Has(index)) {
        return;
    }
    list->focusRow = index;
    ScrollIntoView(handle, index);
    DrawFocus(handle, true);
}

void SelectAndTell(HWND handle, int index) {
    SelectByUser(handle, index);
    if (FindList(handle) != nullptr) {
        NotifyParent(handle, LBN_SELCHANGE);
    }
}

// How far a page goes: one row of the last page stays in sight. A list too low for two rows goes on all the same.
int PageStep(HWND handle) {
    const ListBox& list = *FindList(handle);
    const int below = list.rows.Offset(std::min(list.top, list.rows.Count())) + ClientHeight(handle);
    return std::max(list.rows.Find(below) - list.top - 1, 1);
}

// Of what the mouse selects at a height; -1 for no row. Beyond the client area that is the next row out of sight.
int RowAt(HWND handle, int y) {
    const ListBox& list = *FindList(handle);
    const int last = list.rows.Count() - 1;
    const int height = ClientHeight(handle);
    const int top = list.rows.Offset(std::min(list.top, list.rows.Count()));
    if (y < 0) {
        return std::min(std::max(list.top - 1, 0), last);
    }
    if (y >= height) {
        return std::min(list.rows.Find(top + height), last);
    }
    const int row = list.rows.Find(top + y);
    return row <= last ? row : -1;
}

void DragTo(HWND handle, int y) {
    const int row = RowAt(handle, y);
    if (row >= 0 && row != FindList(handle)->selected) {
        SelectByUser(handle, row);
    }
}

void CALLBACK ScrollFurther(HWND handle, UINT, UINT_PTR, DWORD) {
    if (const ListBox* list = FindList(handle)) {
        DragTo(handle, list->dragY);
    }
}

}  // namespace

void ListKey(HWND handle, int virtualKey) {
    const ListBox& list = *FindList(handle);
    const int last = list.rows.Count() - 1;
    int row = list.focusRow;
    switch (virtualKey) {
        case VK_LEFT:
        case VK_UP: row -= 1; break;
        case VK_RIGHT:
        case VK_DOWN: row += list.selected < 0 ? 0 : 1; break;
        case VK_PRIOR: row -= PageStep(handle); break;
        case VK_NEXT: row += PageStep(handle); break;
        case VK_HOME: row = 0; break;
        case VK_END: row = last; break;
        case VK_SPACE:
            if (row == list.selected) {
                return;
            }
            break;
        default: return;
    }
    if (last >= 0) {
        SelectAndTell(handle, std::clamp(row, 0, last));
    }
}

void ListCharacter(HWND handle, char letter) {
    const ListBox& list = *FindList(handle);
    const QString wanted = ToQString({&letter, 1});
    for (int i = 1; i <= list.rows.Count(); ++i) {
        const int row = (list.focusRow + i) % list.rows.Count();
        if (ToQString(list.rows.Text(row)).startsWith(wanted, Qt::CaseInsensitive)) {
            SelectAndTell(handle, row);
            return;
        }
    }
}

void ListPress(HWND handle, int x, int y) {
    if (GetFocus() != handle) {
        SetFocus(handle);
    }
    const ListBox* before = FindList(handle);
    RECT client = {};
    GetClientRect(handle, &client);
    const int row = before != nullptr && PtInRect(&client, POINT{x, y}) ? RowAt(handle, y) : -1;
    if (row < 0) {
        return;
    }
    SelectByUser(handle, row);
    if (ListBox* list = FindList(handle)) {
        list->pressed = true;
        list->dragging = true;
        SetCapture(handle);
    }
}

void ListRelease(HWND handle) {
    if (!FindList(handle)->pressed) {
        return;
    }
    EndDrag(handle);
    if (GetCapture() == handle) {
        ReleaseCapture();
    }
    if (ListBox* list = FindList(handle)) {
        list->pressed = false;
        NotifyParent(handle, LBN_SELCHANGE);
    }
}

void ListDrag(HWND handle, int y) {
    ListBox& list = *FindList(handle);
    if (!list.dragging) {
        return;
    }
    list.dragY = y;
    const bool outside = y < 0 || y >= ClientHeight(handle);
    if (outside && !list.scrolling) {
        list.scrolling = SetTimer(handle, kScrollTimer, kScrollPeriodMs, ScrollFurther) != 0;
    } else if (!outside && list.scrolling) {
        list.scrolling = !KillTimer(handle, kScrollTimer);
    }
    DragTo(handle, y);
}

void EndDrag(HWND handle) {
    ListBox& list = *FindList(handle);
    list.dragging = false;
    if (list.scrolling) {
        KillTimer(handle, kScrollTimer);
        list.scrolling = false;
    }
}

}  // namespace desktop
