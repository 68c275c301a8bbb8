// The keys of a dialog: Tab and the arrows, Enter, Escape, and the letters that texts mark.
#include <cctype>

#include "Desktop.h"
#include "Dialogs.h"
#include "Text.h"

using desktop::HasStyle;

namespace desktop {

void FocusControl(HWND control) {
    if (control == nullptr) {
        return;
    }
    SetFocus(control);
    if (IsWindow(control) && (SendMessageA(control, WM_GETDLGCODE, 0, 0) & DLGC_HASSETSEL) != 0) {
        SendMessageA(control, EM_SETSEL, 0, -1);
    }
}

}  // namespace desktop

using desktop::FocusControl;

namespace {

// The next control of the group that the control stands in: a group runs from a control with WS_GROUP to the next one.
HWND NextInGroup(HWND control, bool previous) {
    std::vector<HWND> group;
    HWND first = control;
    for (HWND each = control; each != nullptr && !HasStyle(each, WS_GROUP); each = GetWindow(each, GW_HWNDPREV)) {
        first = GetWindow(each, GW_HWNDPREV) != nullptr ? GetWindow(each, GW_HWNDPREV) : each;
    }
    for (HWND each = first; each != nullptr && (each == first || !HasStyle(each, WS_GROUP));
         each = GetWindow(each, GW_HWNDNEXT)) {
        const bool usable = HasStyle(each, WS_VISIBLE) && !HasStyle(each, WS_DISABLED) &&
                            (SendMessageA(each, WM_GETDLGCODE, 0, 0) & DLGC_STATIC) == 0;
        if (usable || each == control) {
            group.push_back(each);
        }
    }
    const auto own = static_cast<std::size_t>(std::find(group.begin(), group.end(), control) - group.begin());
    return group.empty() ? nullptr : group[(own + (previous ? group.size() - 1 : 1)) % group.size()];
}

void Command(HWND dialog, int id) {
    HWND control = GetDlgItem(dialog, id);
    if (control != nullptr && !IsWindowEnabled(control)) {
        MessageBeep(0);
        return;
    }
    SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(static_cast<WORD>(id), BN_CLICKED), reinterpret_cast<LPARAM>(control));
}

// A push button with the focus is the one that Enter presses.
void PressDefault(HWND dialog) {
    HWND focus = GetFocus();
    constexpr LRESULT kPushButton = DLGC_DEFPUSHBUTTON | DLGC_UNDEFPUSHBUTTON;
    if (IsChild(dialog, focus) && (SendMessageA(focus, WM_GETDLGCODE, 0, 0) & kPushButton) != 0) {
        Command(dialog, GetDlgCtrlID(focus));
        return;
    }
    const LRESULT known = SendMessageA(dialog, DM_GETDEFID, 0, 0);
    Command(dialog, HIWORD(static_cast<DWORD_PTR>(known)) == DC_HASDEFID ? LOWORD(static_cast<DWORD_PTR>(known)) : IDOK);
}

bool HandleKey(HWND dialog, const MSG& message) {
    const LRESULT code = SendMessageA(message.hwnd, WM_GETDLGCODE, message.wParam, reinterpret_cast<LPARAM>(&message));
    const bool shift = GetKeyState(VK_SHIFT) < 0;
    switch (message.wParam) {
        case VK_TAB:
            if ((code & DLGC_WANTTAB) == 0) {
                FocusControl(GetNextDlgTabItem(dialog, GetFocus(), shift));
                return true;
            }
            return false;
        case VK_LEFT:
        case VK_UP:
        case VK_RIGHT:
        case VK_DOWN:
            if ((code & DLGC_WANTARROWS) == 0) {
                FocusControl(NextInGroup(GetFocus(), message.wParam == VK_LEFT || message.wParam == VK_UP));
                return true;
            }
            return false;
        case VK_ESCAPE: Command(dialog, IDCANCEL); return true;
        case VK_RETURN: PressDefault(dialog); return true;
        default: return false;
    }
}

bool IsMarked(HWND control, char letter) {
    char text[256] = "";
    GetWindowTextA(control, text, sizeof text);
    const LRESULT code = SendMessageA(control, WM_GETDLGCODE, 0, 0);
    return (code & (DLGC_BUTTON | DLGC_STATIC)) != 0 && HasStyle(control, WS_VISIBLE) && desktop::MarkOf(text) == letter;
}

bool HandleLetter(HWND dialog, const MSG& message) {
    const bool plain = message.message == WM_CHAR;
    if (plain && (SendMessageA(message.hwnd, WM_GETDLGCODE, 0, 0) & DLGC_WANTCHARS) != 0) {
        return false;
    }
    const auto letter = static_cast<char>(std::tolower(static_cast<int>(message.wParam & 0xFF)));
    for (HWND control = GetWindow(dialog, GW_CHILD); control != nullptr; control = GetWindow(control, GW_HWNDNEXT)) {
        if (!IsMarked(control, letter)) {
            continue;
        }
        if ((SendMessageA(control, WM_GETDLGCODE, 0, 0) & DLGC_BUTTON) != 0) {
            FocusControl(control);
            SendMessageA(control, BM_CLICK, 0, 0);
        } else {
            FocusControl(GetNextDlgTabItem(dialog, control, FALSE));
        }
        return true;
    }
    return false;
}

}  // namespace

BOOL IsDialogMessageA(HWND dialog, LPMSG message) {
    if (message->hwnd != dialog && !IsChild(dialog, message->hwnd)) {
        return FALSE;
    }
    const bool key = message->message == WM_KEYDOWN;
    const bool letter = message->message == WM_CHAR || message->message == WM_SYSCHAR;
    if ((key && HandleKey(dialog, *message)) || (letter && HandleLetter(dialog, *message))) {
        return TRUE;
    }
    TranslateMessage(message);
    DispatchMessageA(message);
    return TRUE;
}
