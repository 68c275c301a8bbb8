// The road from the window system's events to messages: an event on one of the widgets becomes an entry here, and a message
// when the program asks for one.
#include <QApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <QWidget>

#include "Desktop.h"
#include "MessageQueue.h"
#include "MessageState.h"
#include "Painting.h"
#include "Placement.h"
#include "Text.h"

namespace desktop {

namespace {

constexpr LPARAM kExtended = LPARAM{1} << 24;
constexpr LPARAM kWithAlt = LPARAM{1} << 29;
constexpr LPARAM kWasDown = LPARAM{1} << 30;
constexpr LPARAM kGoesUp = LPARAM{1} << 31;
constexpr char kDeleteText = '\x7F';

bool HasDoubleClicks(HWND window) {
    const MessageLock state;
    const Window* found = state->windows.Find(window);
    return found != nullptr && (found->windowClass.style & kDoubleClicks) != 0;
}

bool IsExtendedKey(int virtualKey) {
    return (virtualKey >= VK_PRIOR && virtualKey <= VK_DOWN) || virtualKey == VK_INSERT || virtualKey == VK_DELETE;
}

WPARAM MouseKeysOf(const QMouseEvent& event) {
    WPARAM keys = 0;
    keys |= event.buttons().testFlag(Qt::LeftButton) ? MK_LBUTTON : 0;
    keys |= event.buttons().testFlag(Qt::RightButton) ? MK_RBUTTON : 0;
    keys |= event.buttons().testFlag(Qt::MiddleButton) ? MK_MBUTTON : 0;
    keys |= event.modifiers().testFlag(Qt::ShiftModifier) ? MK_SHIFT : 0;
    keys |= event.modifiers().testFlag(Qt::ControlModifier) ? MK_CONTROL : 0;
    return keys;
}

// 0 for a button that has no message.
UINT MouseMessageOf(const QMouseEvent& event) {
    UINT base = 0;
    switch (event.button()) {
        case Qt::LeftButton: base = WM_LBUTTONDOWN; break;
        case Qt::RightButton: base = WM_RBUTTONDOWN; break;
        case Qt::MiddleButton: base = WM_MBUTTONDOWN; break;
        default: return event.type() == QEvent::MouseMove ? WM_MOUSEMOVE : 0;
    }
    switch (event.type()) {
        case QEvent::MouseButtonPress: return base;
        case QEvent::MouseButtonRelease: return base + 1;
        case QEvent::MouseButtonDblClick: return base + 2;
        default: return WM_MOUSEMOVE;
    }
}

UINT PlainPress(UINT message) {
    switch (message) {
        case WM_LBUTTONDBLCLK: return WM_LBUTTONDOWN;
        case WM_RBUTTONDBLCLK: return WM_RBUTTONDOWN;
        case WM_MBUTTONDBLCLK: return WM_MBUTTONDOWN;
        default: return message;
    }
}

// The window that a point belongs to, by what the windows themselves say, and their word for it.
HWND WindowAt(HWND handle, POINT screen, LRESULT& hit) {
    const Desktop& desktop = Desktop::Get();
    const ScreenWindow* window = desktop.Find(handle);
    if (window == nullptr || !HasStyle(handle, WS_VISIBLE) || HasStyle(handle, WS_DISABLED) ||
        !WindowOnScreen(*window).contains(screen.x, screen.y)) {
        return nullptr;
    }
    if (ClientOnScreen(*window).contains(screen.x, screen.y)) {
        for (HWND child : HandlesOf(window->children)) {
            if (HWND found = WindowAt(child, screen, hit)) {
                return found;
            }
        }
    }
    hit = SendMessageA(handle, WM_NCHITTEST, 0, MAKELPARAM(static_cast<WORD>(screen.x), static_cast<WORD>(screen.y)));
    return hit != HTTRANSPARENT ? handle : nullptr;
}

}  // namespace

bool IsPress(UINT message) {
    const UINT press = PlainPress(message);
    return press == WM_LBUTTONDOWN || press == WM_RBUTTONDOWN || press == WM_MBUTTONDOWN;
}

void Desktop::AddInput(InputEvent event) {
    event.timeMs = GetTickCount();
    if (event.kind == InputEvent::Kind::kKey) {
        keyboardNow.Press(event.virtualKey, event.message == WM_KEYDOWN);
    }
    const bool moves = event.kind == InputEvent::Kind::kMouse && event.message == WM_MOUSEMOVE;
    const bool moved =
        !input.empty() && input.back().kind == InputEvent::Kind::kMouse && input.back().message == WM_MOUSEMOVE;
    if (moves && moved && input.back().topLevel == event.topLevel) {
        input.back() = std::move(event);
    } else {
        input.push_back(std::move(event));
    }
    const bool key = input.back().kind == InputEvent::Kind::kKey || input.back().kind == InputEvent::Kind::kText;
    MessageQueue::Current()->ScreenHas(key ? QS_KEY : QS_MOUSE);
}

void Desktop::AddKeyElsewhere(int virtualKey, bool down) {
    InputEvent key{};
    key.kind = InputEvent::Kind::kKey;
    key.message = down ? WM_KEYDOWN : WM_KEYUP;
    key.virtualKey = virtualKey;
    key.elsewhere = true;
    AddInput(std::move(key));
}

void Desktop::ReleaseKeys() {
    for (const int key : keyboardNow.Held()) {
        AddKeyElsewhere(key, false);
    }
}

// A window manager keeps the rest of a chord that is its own, such as the release of Alt behind Alt+F4.
void Desktop::FollowModifiers(Qt::KeyboardModifiers modifiers, int except) {
    constexpr std::pair<int, Qt::KeyboardModifier> kModifiers[] = {
        {VK_SHIFT, Qt::ShiftModifier}, {VK_CONTROL, Qt::ControlModifier}, {VK_MENU, Qt::AltModifier}};
    for (const auto& [key, modifier] : kModifiers) {
        const bool down = modifiers.testFlag(modifier);
        if (key != except && keyboardNow.IsDown(key) != down) {
            AddKeyElsewhere(key, down);
        }
    }
}

bool Desktop::TakeInput(MSG& found, const MessageFilter& filter, bool remove) {
    for (std::size_t i = 0; i < input.size();) {
        const InputEvent event = input[i];
        MSG message{};
        const bool somebodys = ToMessage(event, message);
        if (i >= input.size()) {
            return false;
        }
        if (!somebodys) {
            // A key goes up even where nobody hears of it.
            if (event.kind == InputEvent::Kind::kKey) {
                keyboard.Press(event.virtualKey, event.message == WM_KEYDOWN);
                keyboard.altAlone = false;
            }
            input.erase(input.begin() + static_cast<std::ptrdiff_t>(i));
            continue;
        }
        if (!filter.Matches(message.hwnd, message.message)) {
            ++i;
            continue;
        }
        found = message;
        if (remove) {
            if (event.kind == InputEvent::Kind::kText && event.text.size() > 1) {
                input[i].text.erase(0, 1);
            } else {
                input.erase(input.begin() + static_cast<std::ptrdiff_t>(i));
            }
            TakeOff(event, message);
        }
        return true;
    }
    return false;
}

bool Desktop::ToMessage(const InputEvent& event, MSG& message) {
    message.time = event.timeMs;
    message.pt = event.screen;
    switch (event.kind) {
        case InputEvent::Kind::kKey: return !event.elsewhere && KeyMessage(event, message);
        case InputEvent::Kind::kText:
            message.hwnd = focus;
            message.message = WM_CHAR;
            message.wParam = event.text.empty() ? 0 : static_cast<BYTE>(event.text[0]);
            message.lParam = 1;
            return focus != nullptr && !event.text.empty();
        case InputEvent::Kind::kMouse: return MouseMessage(event, message);
        case InputEvent::Kind::kWheel: {
            LRESULT hit = HTCLIENT;
            message.hwnd = WindowAt(event.topLevel, event.screen, hit);
            message.message = WM_MOUSEWHEEL;
            message.wParam = MAKEWPARAM(event.mouseKeys, static_cast<WORD>(event.wheel));
            message.lParam = MAKELPARAM(static_cast<WORD>(event.screen.x), static_cast<WORD>(event.screen.y));
            return message.hwnd != nullptr;
        }
        case InputEvent::Kind::kClose:
            message.hwnd = event.topLevel;
            message.message = WM_SYSCOMMAND;
            message.wParam = SC_CLOSE;
            return Find(event.topLevel) != nullptr && !HasStyle(event.topLevel, WS_DISABLED);
    }
    return false;
}

bool Desktop::KeyMessage(const InputEvent& event, MSG& message) const {
    const bool down = event.message == WM_KEYDOWN;
    const bool withAlt = keyboard.IsDown(VK_MENU) && !keyboard.IsDown(VK_CONTROL);
    const bool altItself = event.virtualKey == VK_MENU && (down || keyboard.altAlone);
    const bool system =
        (withAlt && event.virtualKey != VK_MENU) || altItself || event.virtualKey == VK_F10 || focus == nullptr;
    message.hwnd = focus != nullptr ? focus : active;
    ScreenWindow* window = Find(message.hwnd);
    if (window == nullptr || HasStyle(Root(window)->handle, WS_DISABLED)) {
        return false;
    }
    message.message = down ? (system ? WM_SYSKEYDOWN : WM_KEYDOWN) : (system ? WM_SYSKEYUP : WM_KEYUP);
    message.wParam = static_cast<WPARAM>(event.virtualKey);
    message.lParam = 1 | (IsExtendedKey(event.virtualKey) ? kExtended : 0) | (withAlt ? kWithAlt : 0) |
                     (!down || keyboard.IsDown(event.virtualKey) ? kWasDown : 0) | (down ? 0 : kGoesUp);
    return true;
}

bool Desktop::MouseMessage(const InputEvent& event, MSG& message) {
    LRESULT hit = HTCLIENT;
    HWND target = Find(capture) != nullptr ? capture : nullptr;
    if (target == nullptr) {
        if (Find(event.topLevel) != nullptr && HasStyle(event.topLevel, WS_DISABLED) && IsPress(event.message)) {
            KeepPopupInFront(event.topLevel);
        }
        target = WindowAt(event.topLevel, event.screen, hit);
    }
    const ScreenWindow* window = Find(target);
    if (window == nullptr || hit != HTCLIENT) {
        return false;
    }
    const QPoint origin = ClientOnScreen(*window).topLeft();
    message.hwnd = target;
    message.message = HasDoubleClicks(target) ? event.message : PlainPress(event.message);
    message.wParam = event.mouseKeys;
    message.lParam =
        MAKELPARAM(static_cast<WORD>(event.screen.x - origin.x()), static_cast<WORD>(event.screen.y - origin.y()));
    return true;
}

void Desktop::TakeOff(const InputEvent& event, const MSG& message) {
    if (event.kind == InputEvent::Kind::kKey) {
        keyboard.Press(event.virtualKey, event.message == WM_KEYDOWN);
        keyboard.altAlone = event.virtualKey == VK_MENU && event.message == WM_KEYDOWN;
        lastKey = message;
        lastText = event.text;
    } else if (event.kind == InputEvent::Kind::kMouse && IsPress(message.message)) {
        keyboard.altAlone = false;
        if (ScreenWindow* root = Root(Find(message.hwnd))) {
            Activate(root->handle, WA_CLICKACTIVE);
        }
    }
}

const std::string* Desktop::TextOf(const MSG& message) const {
    const bool last = message.hwnd == lastKey.hwnd && message.message == lastKey.message &&
                      message.wParam == lastKey.wParam && message.lParam == lastKey.lParam && message.time == lastKey.time;
    return last ? &lastText : nullptr;
}

void Desktop::GiveToWidget(HWND handle, QEvent& event) {
    const ScreenWindow* window = Find(handle);
    if (window == nullptr) {
        return;
    }
    const QEvent* before = std::exchange(given, &event);
    ++giving;
    QCoreApplication::sendEvent(window->widget, &event);
    --giving;
    given = before;
}

// --- The window system's events

bool Desktop::eventFilter(QObject* watched, QEvent* event) {
    if (event == given) {
        return false;
    }
    ScreenWindow* window = FindByWidget(watched);
    return window != nullptr && FilterEvent(*window, *event);
}

namespace {

InputEvent KeyInput(const QKeyEvent& event) {
    InputEvent input{};
    input.kind = InputEvent::Kind::kKey;
    input.message = event.type() == QEvent::KeyPress ? WM_KEYDOWN : WM_KEYUP;
    input.virtualKey = VirtualKeyOf(event);
    input.text = FromQString(event.text(), ' ');
    if (input.text == std::string(1, kDeleteText)) {
        input.text.clear();
    }
    if (input.virtualKey == 0) {
        input.kind = InputEvent::Kind::kText;
    }
    return input;
}

POINT ScreenPoint(const ScreenWindow& root, const QWidget& widget, QPointF local) {
    // By our own word for where the window is, which the window system may not have caught up with.
    const QPoint inRoot = widget.mapTo(root.widget, local.toPoint());
    const RECT covered = WidgetRect(root);
    return {root.place.left + covered.left + inRoot.x(), root.place.top + covered.top + inRoot.y()};
}

}  // namespace

bool Desktop::FilterEvent(ScreenWindow& window, QEvent& event) {
    const ScreenWindow& root = *Root(&window);
    switch (event.type()) {
        case QEvent::ShortcutOverride: event.accept(); return true;
        case QEvent::KeyPress:
        case QEvent::KeyRelease: {
            const auto& key = static_cast<QKeyEvent&>(event);
            InputEvent made = KeyInput(key);
            FollowModifiers(key.modifiers(), made.virtualKey);
            // A release belongs to the auto-repeat of the next press.
            if ((made.message == WM_KEYDOWN || !key.isAutoRepeat()) &&
                (made.kind == InputEvent::Kind::kKey || !made.text.empty())) {
                AddInput(std::move(made));
            }
            return true;
        }
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove: {
            const auto& mouse = static_cast<QMouseEvent&>(event);
            FollowModifiers(mouse.modifiers());
            InputEvent made{};
            made.kind = InputEvent::Kind::kMouse;
            made.topLevel = root.handle;
            made.message = MouseMessageOf(mouse);
            made.mouseKeys = MouseKeysOf(mouse);
            made.screen = ScreenPoint(root, *window.widget, mouse.position());
            if (made.message != 0) {
                AddInput(std::move(made));
            }
            return true;
        }
        case QEvent::Wheel: {
            const auto& wheel = static_cast<QWheelEvent&>(event);
            FollowModifiers(wheel.modifiers());
            InputEvent made{};
            made.kind = InputEvent::Kind::kWheel;
            made.topLevel = root.handle;
            made.wheel = wheel.angleDelta().y();
            made.screen = ScreenPoint(root, *window.widget, wheel.position());
            AddInput(std::move(made));
            return true;
        }
        case QEvent::InputMethod: return FilterInputMethod(window, static_cast<QInputMethodEvent&>(event));
        case QEvent::Close: {
            InputEvent made{};
            made.kind = InputEvent::Kind::kClose;
            made.topLevel = root.handle;
            AddInput(std::move(made));
            event.ignore();
            return true;
        }
        case QEvent::ContextMenu: return true;
        case QEvent::PaletteChange:
            if (window.parent == nullptr) {
                RedrawWindow(window.handle, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
            }
            return false;
        default: return false;
    }
}

// What an input method has made comes in as characters, like everything else that is typed; what it is still at shows in the
// control.
bool Desktop::FilterInputMethod(ScreenWindow& window, QInputMethodEvent& event) {
    if (!event.commitString().isEmpty()) {
        InputEvent made{};
        made.kind = InputEvent::Kind::kText;
        made.text = FromQString(event.commitString(), ' ');
        AddInput(std::move(made));
    }
    if (window.native) {
        QInputMethodEvent rest(event.preeditString(), event.attributes());
        GiveToWidget(window.handle, rest);
    }
    return true;
}

}  // namespace desktop

using desktop::Desktop;

SHORT GetKeyState(int virtualKey) {
    return Desktop::Get().keyboard.IsDown(virtualKey) ? static_cast<SHORT>(0x8000) : SHORT{0};
}

SHORT GetAsyncKeyState(int virtualKey) {
    return Desktop::Get().keyboardNow.IsDown(virtualKey) ? static_cast<SHORT>(0x8000) : SHORT{0};
}

void keybd_event(BYTE virtualKey, BYTE, DWORD flags, ULONG_PTR) {
    Desktop& desktop = Desktop::Get();
    desktop::InputEvent event{};
    event.kind = desktop::InputEvent::Kind::kKey;
    event.message = (flags & KEYEVENTF_KEYUP) != 0 ? WM_KEYUP : WM_KEYDOWN;
    event.virtualKey = virtualKey;
    event.text = desktop.keyboardNow.TextOf(virtualKey);
    desktop.AddInput(std::move(event));
}

// A key message that did not come from the queue just now means what it would on a keyboard of the United States.
BOOL TranslateMessage(const MSG* message) {
    if (message->message != WM_KEYDOWN && message->message != WM_SYSKEYDOWN) {
        return message->message == WM_KEYUP || message->message == WM_SYSKEYUP;
    }
    Desktop& desktop = Desktop::Get();
    const std::string* known = desktop.TextOf(*message);
    const std::string text = known != nullptr ? *known : desktop.keyboard.TextOf(static_cast<int>(message->wParam));
    const UINT character = message->message == WM_KEYDOWN ? WM_CHAR : WM_SYSCHAR;
    for (const char byte : text) {
        PostMessageA(message->hwnd, character, static_cast<BYTE>(byte), message->lParam);
    }
    return TRUE;
}

BOOL MessageBeep(UINT) {
    QApplication::beep();
    return TRUE;
}
