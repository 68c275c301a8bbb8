// Windows among each other: parents, siblings, names.
#include <QString>
#include <charconv>
#include <cstring>
#include <string>

#include "Desktop.h"
#include "LastError.h"
#include "MessageState.h"
#include "SingleInstance.h"

using desktop::Desktop;
using desktop::HasStyle;
using desktop::ScreenWindow;

HWND GetParent(HWND handle) {
    const MessageLock state;
    const Window* window = state->windows.Find(handle);
    if (window == nullptr) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return nullptr;
    }
    LONG_PTR style = 0;
    window->GetLong(GWL_STYLE, style);
    const bool hasParent = (static_cast<DWORD>(style) & (WS_CHILD | WS_POPUP)) != 0;
    return hasParent ? window->parent : nullptr;
}

BOOL IsChild(HWND parent, HWND handle) {
    const ScreenWindow* window = Desktop::Get().Find(handle);
    while (window != nullptr && window->parent != nullptr) {
        window = window->parent;
        if (window->handle == parent) {
            return TRUE;
        }
    }
    return FALSE;
}

namespace {

HWND Sibling(const ScreenWindow& window, UINT relation) {
    const std::vector<ScreenWindow*>& siblings = Desktop::Get().Siblings(window);
    const auto own = std::find(siblings.begin(), siblings.end(), &window);
    switch (relation) {
        case GW_HWNDFIRST: return siblings.front()->handle;
        case GW_HWNDLAST: return siblings.back()->handle;
        case GW_HWNDNEXT: return own + 1 != siblings.end() ? (*(own + 1))->handle : nullptr;
        case GW_HWNDPREV: return own != siblings.begin() ? (*(own - 1))->handle : nullptr;
        default: return nullptr;
    }
}

bool HasClass(HWND window, LPCSTR name) {
    char actual[256] = "";
    GetClassNameA(window, actual, sizeof actual);
    return name == nullptr || qstricmp(actual, name) == 0;
}

// Not by WM_GETTEXT, which the window might take for itself.
bool HasTitle(const ScreenWindow& window, LPCSTR title) {
    return title == nullptr || window.text == title;
}

}  // namespace

HWND GetWindow(HWND handle, UINT relation) {
    const ScreenWindow* window = Desktop::Get().Find(handle);
    if (window == nullptr) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return nullptr;
    }
    if (relation == GW_OWNER) {
        return window->owner;
    }
    if (relation == GW_CHILD) {
        return window->children.empty() ? nullptr : window->children.front()->handle;
    }
    return Sibling(*window, relation);
}

HWND GetDesktopWindow() {
    return Desktop::Get().DesktopWindow();
}

HWND FindWindowA(LPCSTR className, LPCSTR title) {
    return FindWindowExA(nullptr, nullptr, className, title);
}

HWND FindWindowExA(HWND parent, HWND childAfter, LPCSTR className, LPCSTR title) {
    Desktop& desktop = Desktop::Get();
    const ScreenWindow* above = desktop.Find(parent);
    if (parent != nullptr && above == nullptr) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return nullptr;
    }
    const std::vector<ScreenWindow*>& among = above != nullptr ? above->children : desktop.TopLevel();
    bool passed = childAfter == nullptr;
    for (const ScreenWindow* window : among) {
        if (passed && HasClass(window->handle, className) && HasTitle(*window, title)) {
            return window->handle;
        }
        passed = passed || window->handle == childAfter;
    }
    const bool mayBeElsewhere = parent == nullptr && childAfter == nullptr && className == nullptr && title != nullptr;
    return mayBeElsewhere && desktop::AskForOtherCopy(title) ? desktop::OtherCopy() : nullptr;
}

BOOL SetWindowTextA(HWND window, LPCSTR text) {
    return SendMessageA(window, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text)) != 0;
}

int GetWindowTextA(HWND window, LPSTR buffer, int size) {
    if (size <= 0) {
        return 0;
    }
    *buffer = '\0';
    return static_cast<int>(SendMessageA(window, WM_GETTEXT, static_cast<WPARAM>(size), reinterpret_cast<LPARAM>(buffer)));
}

int GetClassNameA(HWND handle, LPSTR buffer, int size) {
    const MessageLock state;
    const Window* window = state->windows.Find(handle);
    if (window == nullptr || size <= 0) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return 0;
    }
    const std::string& name = window->windowClass.shownName;
    const std::size_t length = name.copy(buffer, static_cast<std::size_t>(size) - 1);
    buffer[length] = '\0';
    return static_cast<int>(length);
}

HWND GetDlgItem(HWND dialog, int id) {
    const ScreenWindow* window = Desktop::Get().Find(dialog);
    for (const ScreenWindow* child : window != nullptr ? window->children : std::vector<ScreenWindow*>()) {
        if (GetDlgCtrlID(child->handle) == id) {
            return child->handle;
        }
    }
    return nullptr;
}

int GetDlgCtrlID(HWND window) {
    return static_cast<int>(GetWindowLongPtrA(window, GWLP_ID));
}

BOOL SetDlgItemTextA(HWND dialog, int id, LPCSTR text) {
    return SetWindowTextA(GetDlgItem(dialog, id), text);
}

BOOL SetDlgItemInt(HWND dialog, int id, UINT value, BOOL isSigned) {
    const std::string text = isSigned ? std::to_string(static_cast<int>(value)) : std::to_string(value);
    return SetDlgItemTextA(dialog, id, text.c_str());
}

// Blanks in front are passed over; anything behind the digits, or a number too large, makes it no number.
UINT GetDlgItemInt(HWND dialog, int id, BOOL* translated, BOOL isSigned) {
    char text[64] = "";
    GetDlgItemTextA(dialog, id, text, sizeof text);
    const char* begin = text + std::strspn(text, " ");
    const char* end = begin + std::strlen(begin);
    int number = 0;
    UINT positive = 0;
    const std::from_chars_result read =
        isSigned ? std::from_chars(begin, end, number) : std::from_chars(begin, end, positive);
    const bool isNumber = begin != end && read.ec == std::errc() && read.ptr == end;
    if (translated != nullptr) {
        *translated = isNumber ? TRUE : FALSE;
    }
    return !isNumber ? 0 : isSigned ? static_cast<UINT>(number) : positive;
}

UINT GetDlgItemTextA(HWND dialog, int id, LPSTR buffer, int size) {
    return static_cast<UINT>(GetWindowTextA(GetDlgItem(dialog, id), buffer, size));
}

namespace {

bool IsTabStop(const ScreenWindow& window) {
    return HasStyle(window.handle, WS_VISIBLE | WS_TABSTOP) && !HasStyle(window.handle, WS_DISABLED);
}

}  // namespace

HWND GetNextDlgTabItem(HWND dialog, HWND control, BOOL previous) {
    const ScreenWindow* parent = Desktop::Get().Find(dialog);
    if (parent == nullptr || parent->children.empty()) {
        return nullptr;
    }
    const std::vector<ScreenWindow*>& children = parent->children;
    const std::size_t count = children.size();
    const auto own = std::find(children.begin(), children.end(), Desktop::Get().Find(control));
    // Without a control the search begins at the end that it comes to last.
    std::size_t place =
        own != children.end() ? static_cast<std::size_t>(own - children.begin()) : (previous ? 0 : count - 1);
    for (std::size_t i = 0; i < count; ++i) {
        place = (place + (previous ? count - 1 : 1)) % count;
        if (IsTabStop(*children[place])) {
            return children[place]->handle;
        }
    }
    return control;
}

BOOL InflateRect(LPRECT rect, int dx, int dy) {
    *rect = {rect->left - dx, rect->top - dy, rect->right + dx, rect->bottom + dy};
    return TRUE;
}

BOOL OffsetRect(LPRECT rect, int dx, int dy) {
    *rect = {rect->left + dx, rect->top + dy, rect->right + dx, rect->bottom + dy};
    return TRUE;
}

BOOL EqualRect(const RECT* first, const RECT* second) {
    return first->left == second->left && first->top == second->top && first->right == second->right &&
           first->bottom == second->bottom;
}

BOOL PtInRect(const RECT* rect, POINT point) {
    return point.x >= rect->left && point.x < rect->right && point.y >= rect->top && point.y < rect->bottom;
}
