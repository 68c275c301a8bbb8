#include "MessageLog.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "Harness.h"

namespace {

constexpr char kTestClass[] = "TestWindow";

MessageLog* theLog = nullptr;
MessageHook theHook = nullptr;

struct Named {
    UINT message;
    const char* name;
};

#define NAMED(message) {message, #message}

constexpr Named kNames[] = {
    NAMED(WM_CREATE),        NAMED(WM_DESTROY),           NAMED(WM_MOVE),           NAMED(WM_SIZE),
    NAMED(WM_ACTIVATE),      NAMED(WM_SETFOCUS),          NAMED(WM_KILLFOCUS),      NAMED(WM_ENABLE),
    NAMED(WM_SETREDRAW),     NAMED(WM_SETTEXT),           NAMED(WM_GETTEXT),        NAMED(WM_PAINT),
    NAMED(WM_CLOSE),         NAMED(WM_ERASEBKGND),        NAMED(WM_SHOWWINDOW),     NAMED(WM_ACTIVATEAPP),
    NAMED(WM_GETMINMAXINFO), NAMED(WM_DRAWITEM),          NAMED(WM_MEASUREITEM),    NAMED(WM_SETFONT),
    NAMED(WM_GETFONT),       NAMED(WM_WINDOWPOSCHANGING), NAMED(WM_NCCREATE),       NAMED(WM_NCDESTROY),
    NAMED(WM_NCCALCSIZE),    NAMED(WM_WINDOWPOSCHANGED),  NAMED(WM_NCPAINT),        NAMED(WM_NCACTIVATE),
    NAMED(WM_GETDLGCODE),    NAMED(WM_KEYDOWN),           NAMED(WM_KEYUP),          NAMED(WM_CHAR),
    NAMED(WM_SYSKEYDOWN),    NAMED(WM_SYSKEYUP),          NAMED(WM_SYSCHAR),        NAMED(WM_INITDIALOG),
    NAMED(WM_COMMAND),       NAMED(WM_SYSCOMMAND),        NAMED(WM_TIMER),          NAMED(WM_INITMENU),
    NAMED(WM_INITMENUPOPUP), NAMED(WM_MENUSELECT),        NAMED(WM_MOUSEMOVE),      NAMED(WM_LBUTTONDOWN),
    NAMED(WM_LBUTTONUP),     NAMED(WM_LBUTTONDBLCLK),     NAMED(WM_CAPTURECHANGED), NAMED(WM_CTLCOLORLISTBOX),
    NAMED(WM_ENTERIDLE),     NAMED(WM_ENTERMENULOOP),     NAMED(WM_EXITMENULOOP),   NAMED(WM_NCHITTEST),
    NAMED(WM_USER),
};

#undef NAMED

const char* MessageName(UINT message) {
    const Named* found = std::find_if(std::begin(kNames), std::end(kNames),
                                      [message](const Named& named) { return named.message == message; });
    return found != std::end(kNames) ? found->name : "(message without a name here)";
}

template <class... Values>
std::string Format(const char* format, Values... values) {
    char text[200];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

std::string PositionFlags(UINT flags) {
    constexpr Named kFlags[] = {
        {SWP_NOSIZE, "nosize"},   {SWP_NOMOVE, "nomove"},   {SWP_NOZORDER, "nozorder"}, {SWP_NOACTIVATE, "noactivate"},
        {SWP_SHOWWINDOW, "show"}, {SWP_HIDEWINDOW, "hide"}, {SWP_NOREDRAW, "noredraw"}, {SWP_FRAMECHANGED, "framechanged"}};
    std::string text;
    for (const Named& flag : kFlags) {
        if ((flags & flag.message) != 0) {
            text += std::string(text.empty() ? "" : " ") + flag.name;
        }
    }
    return text;
}

LRESULT CALLBACK TestProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    MessageLog::Add(window, message, wParam, lParam);
    LRESULT result = 0;
    if (theHook != nullptr && theHook(window, message, wParam, lParam, result)) {
        return result;
    }
    if (message == WM_PAINT) {
        PAINTSTRUCT paint;
        BeginPaint(window, &paint);
        EndPaint(window, &paint);
        return 0;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

}  // namespace

MessageLog::MessageLog(std::initializer_list<UINT> messages) : messages(messages) {
    theLog = this;
}

MessageLog::~MessageLog() {
    theLog = nullptr;
    theHook = nullptr;
}

void MessageLog::Watch(HWND window, const char* name) {
    names[window] = name;
    procedures[window] = reinterpret_cast<WNDPROC>(GetWindowLongPtrA(window, GWLP_WNDPROC));
    SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&WatchProc));
}

void MessageLog::Record(std::initializer_list<UINT> newMessages) {
    messages = newMessages;
}

void MessageLog::Note(const std::string& line) {
    lines += line + "\n";
}

std::string MessageLog::Take() {
    return std::exchange(lines, {});
}

LRESULT CALLBACK MessageLog::WatchProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    Add(window, message, wParam, lParam);
    return CallWindowProcA(theLog->procedures[window], window, message, wParam, lParam);
}

void MessageLog::Add(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const bool isDispatched = IsDispatched(window, message, wParam, lParam);
    if (theLog == nullptr) {
        return;
    }
    if (message == WM_NCCREATE) {
        theLog->names[window] = reinterpret_cast<const CREATESTRUCTA*>(lParam)->lpszName;
    }
    const std::vector<UINT>& wanted = theLog->messages;
    if (std::find(wanted.begin(), wanted.end(), message) == wanted.end()) {
        return;
    }
    theLog->lines += isDispatched ? "* " : "";
    theLog->lines += theLog->NameOf(window) + " " + MessageName(message);
    const std::string details = theLog->Describe(message, wParam, lParam);
    theLog->lines += (details.empty() ? "" : " ") + details + "\n";
}

std::string MessageLog::NameOf(HWND window) const {
    if (window == nullptr) {
        return "nobody";
    }
    const auto found = names.find(window);
    return found != names.end() ? found->second : "(new)";
}

std::string MessageLog::Describe(UINT message, WPARAM wParam, LPARAM lParam) const {
    const unsigned low = LOWORD(static_cast<DWORD_PTR>(lParam));
    const unsigned high = HIWORD(static_cast<DWORD_PTR>(lParam));
    switch (message) {
        case WM_SIZE: return Format("kind %u, %ux%u", static_cast<unsigned>(wParam), low, high);
        case WM_SHOWWINDOW: return wParam != 0 ? "show" : "hide";
        case WM_ENABLE: return wParam != 0 ? "on" : "off";
        case WM_NCACTIVATE:
        case WM_ACTIVATEAPP: return wParam != 0 ? "active" : "inactive";
        case WM_ACTIVATE:
            return Format("state %u, other ", static_cast<unsigned>(LOWORD(wParam))) +
                   NameOf(reinterpret_cast<HWND>(lParam));
        case WM_SETFOCUS: return "from " + NameOf(reinterpret_cast<HWND>(wParam));
        case WM_KILLFOCUS: return "to " + NameOf(reinterpret_cast<HWND>(wParam));
        case WM_CAPTURECHANGED: return "to " + NameOf(reinterpret_cast<HWND>(lParam));
        case WM_WINDOWPOSCHANGING:
        case WM_WINDOWPOSCHANGED: return PositionFlags(reinterpret_cast<const WINDOWPOS*>(lParam)->flags);
        case WM_NCCALCSIZE: return wParam != 0 ? "with old and new" : "new alone";
        case WM_COMMAND:
            return Format("id %u code %u from ", static_cast<unsigned>(LOWORD(wParam)),
                          static_cast<unsigned>(HIWORD(wParam))) +
                   NameOf(reinterpret_cast<HWND>(lParam));
        case WM_MENUSELECT:
            return Format("item %u flags 0x%04X", static_cast<unsigned>(LOWORD(wParam)),
                          static_cast<unsigned>(HIWORD(wParam))) +
                   (lParam != 0 ? "" : " no menu");
        case WM_INITMENUPOPUP: return Format("position %u", low);
        case WM_SYSCOMMAND: return Format("0x%X", static_cast<unsigned>(wParam & 0xFFF0));
        case WM_KEYDOWN:
        case WM_KEYUP:
        case WM_SYSKEYDOWN:
        case WM_SYSKEYUP:
        case WM_CHAR:
        case WM_SYSCHAR: return Format("0x%02X", static_cast<unsigned>(wParam));
        case WM_TIMER: return Format("%u", static_cast<unsigned>(wParam));
        case WM_LBUTTONDOWN:
        case WM_LBUTTONUP:
        case WM_LBUTTONDBLCLK:
        case WM_MOUSEMOVE: return Format("keys 0x%X at %u,%u", static_cast<unsigned>(wParam), low, high);
        default: return "";
    }
}

std::string Lines(std::initializer_list<const char*> lines) {
    std::string text;
    for (const char* line : lines) {
        text += line;
        text += "\n";
    }
    return text;
}

HWND MakeTestWindow(const char* title, DWORD style, HWND parent, int width, int height, HMENU menu) {
    static const ATOM atom = [] {
        WNDCLASSEXA windowClass = {};
        windowClass.cbSize = sizeof windowClass;
        windowClass.lpfnWndProc = TestProc;
        windowClass.hInstance = GetModuleHandleA(nullptr);
        windowClass.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
        windowClass.lpszClassName = kTestClass;
        return RegisterClassExA(&windowClass);
    }();
    if (atom == 0) {
        return nullptr;
    }
    return CreateWindowExA(0, kTestClass, title, style, 50, 50, width, height, parent, menu, GetModuleHandleA(nullptr),
                           nullptr);
}

HWND MakeChild(const char* className, DWORD style, HWND parent, int id, int x, int y, int width, int height) {
    return CreateWindowExA(0, className, "", WS_CHILD | WS_VISIBLE | WS_TABSTOP | style, x, y, width, height, parent,
                           reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleA(nullptr), nullptr);
}

void SetMessageHook(MessageHook hook) {
    theHook = hook;
}
