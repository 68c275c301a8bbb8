// What a window does with a message that it does not care for.
#include <QWidget>
#include <algorithm>
#include <cstring>

#include "Desktop.h"
#include "MessageState.h"
#include "Painting.h"
#include "Placement.h"
#include "Text.h"

namespace desktop {

namespace {

HBRUSH BackgroundOf(HWND window) {
    const MessageLock state;
    return state->windows.Find(window)->windowClass.background;
}

LRESULT SetText(ScreenWindow& window, const char* text) {
    window.text = text != nullptr ? text : "";
    if (window.parent == nullptr) {
        window.widget->setWindowTitle(ToQString(window.text));
    }
    return TRUE;
}

LRESULT CopyText(const ScreenWindow& window, WPARAM size, char* buffer) {
    if (size == 0) {
        return 0;
    }
    const std::size_t length = std::min(window.text.size(), size - 1);
    std::memcpy(buffer, window.text.data(), length);
    buffer[length] = '\0';
    return static_cast<LRESULT>(length);
}

LRESULT HitTest(const ScreenWindow& window, LPARAM lParam) {
    const int x = static_cast<SHORT>(LOWORD(static_cast<DWORD_PTR>(lParam)));
    const int y = static_cast<SHORT>(HIWORD(static_cast<DWORD_PTR>(lParam)));
    return ClientOnScreen(window).contains(x, y) ? HTCLIENT : HTNOWHERE;
}

LRESULT Erase(HWND handle, HDC dc) {
    HBRUSH brush = BackgroundOf(handle);
    if (brush == nullptr) {
        return 0;
    }
    // A small number stands for a system colour, and one more than it.
    const auto number = reinterpret_cast<ULONG_PTR>(brush);
    constexpr ULONG_PTR kMostColors = 32;
    if (number <= kMostColors) {
        brush = GetSysColorBrush(static_cast<int>(number) - 1);
    }
    RECT client;
    GetClientRect(handle, &client);
    FillRect(dc, &client, brush);
    return 1;
}

LRESULT Paint(HWND handle) {
    PAINTSTRUCT paint;
    if (BeginPaint(handle, &paint) != nullptr) {
        EndPaint(handle, &paint);
    }
    return 0;
}

// As on Windows a window without redrawing counts as invisible.
LRESULT SetRedraw(ScreenWindow& window, bool redraw) {
    if (window.redraw != redraw) {
        window.redraw = redraw;
        SetStyleBits(window.handle, WS_VISIBLE, redraw);
        window.widget->setUpdatesEnabled(redraw);
    }
    return 0;
}

// A window that may be sized keeps to its bounds.
LRESULT PositionChanging(HWND handle, WINDOWPOS& position) {
    if ((position.flags & SWP_NOSIZE) == 0 && HasStyle(handle, WS_THICKFRAME)) {
        MINMAXINFO bounds;
        AskMinMax(handle, bounds);
        position.cx = std::clamp<int>(position.cx, bounds.ptMinTrackSize.x, bounds.ptMaxTrackSize.x);
        position.cy = std::clamp<int>(position.cy, bounds.ptMinTrackSize.y, bounds.ptMaxTrackSize.y);
    }
    return 0;
}

LRESULT PositionChanged(HWND handle, const WINDOWPOS& position) {
    if ((position.flags & kNoClientMove) == 0) {
        TellMove(handle);
    }
    if ((position.flags & kNoClientSize) == 0) {
        TellSize(handle);
    }
    return 0;
}

LRESULT SystemCommand(const ScreenWindow& window, WPARAM wParam, LPARAM lParam) {
    constexpr WPARAM kInternalBits = 0x000F;
    const WPARAM command = wParam & ~kInternalBits;
    if (command == SC_CLOSE) {
        SendMessageA(window.handle, WM_CLOSE, 0, 0);
    } else {
        Desktop::Get().parts.openMenu(window, command, lParam);
    }
    return 0;
}

// The top-level window answers for the keys of the menu and of the title bar, whichever child has the focus.
HWND RootOf(HWND handle) {
    const ScreenWindow* root = Desktop::Get().Root(Desktop::Get().Find(handle));
    return root != nullptr ? root->handle : nullptr;
}

LRESULT SystemKey(HWND handle, UINT message, WPARAM wParam) {
    if (message == WM_SYSKEYDOWN && wParam == VK_F4 && Desktop::Get().keyboard.IsDown(VK_MENU)) {
        PostMessageA(RootOf(handle), WM_SYSCOMMAND, SC_CLOSE, 0);
    } else if (message == WM_SYSKEYUP && (wParam == VK_MENU || wParam == VK_F10)) {
        SendMessageA(RootOf(handle), WM_SYSCOMMAND, SC_KEYMENU, 0);
    }
    return 0;
}

}  // namespace

LRESULT Desktop::DefaultProcedure(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    ScreenWindow& window = *Find(handle);
    switch (message) {
        case WM_NCCREATE: return TRUE;
        case WM_CLOSE: DestroyWindow(handle); return 0;
        case WM_SETTEXT: return SetText(window, reinterpret_cast<const char*>(lParam));
        case WM_GETTEXT: return CopyText(window, wParam, reinterpret_cast<char*>(lParam));
        case WM_GETTEXTLENGTH: return static_cast<LRESULT>(window.text.size());
        case WM_NCCALCSIZE: DefaultClient(window, *reinterpret_cast<RECT*>(lParam)); return 0;
        case WM_NCHITTEST: return HitTest(window, lParam);
        case WM_NCPAINT: PaintDefaultFrame(handle); return 0;
        case WM_QUERYENDSESSION: return TRUE;
        case WM_ERASEBKGND: return Erase(handle, reinterpret_cast<HDC>(wParam));
        case WM_PAINT: return Paint(handle);
        case WM_SETREDRAW: return SetRedraw(window, wParam != 0);
        case WM_WINDOWPOSCHANGING: return PositionChanging(handle, *reinterpret_cast<WINDOWPOS*>(lParam));
        case WM_WINDOWPOSCHANGED: return PositionChanged(handle, *reinterpret_cast<const WINDOWPOS*>(lParam));
        case WM_NCACTIVATE: return TRUE;
        case WM_ACTIVATE:
            if (LOWORD(wParam) != WA_INACTIVE && !HasStyle(handle, WS_MINIMIZE)) {
                SetFocus(handle);
            }
            return 0;
        case WM_SYSCOMMAND: return SystemCommand(window, wParam, lParam);
        case WM_SYSKEYDOWN:
        case WM_SYSKEYUP: return SystemKey(handle, message, wParam);
        case WM_SYSCHAR:
            if (wParam != VK_RETURN && wParam != VK_SPACE) {
                SendMessageA(RootOf(handle), WM_SYSCOMMAND, SC_KEYMENU, static_cast<LPARAM>(wParam));
            }
            return 0;
        case WM_CTLCOLORLISTBOX: return reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_WINDOW));
        default: return 0;
    }
}

}  // namespace desktop
