// Which window is active, which has the focus, and who may be used at all. What stands here leads; the window system's own
// state follows, or tells what the user has done with it.
#include <QApplication>
#include <QWidget>
#include <algorithm>

#include "Desktop.h"
#include "LastError.h"
#include "Placement.h"
#include "Widgets.h"

namespace desktop {

namespace {

bool IsUsable(const ScreenWindow* window) {
    for (; window != nullptr; window = window->parent) {
        if ((StyleOf(window->handle) & (WS_DISABLED | WS_MINIMIZE)) != 0) {
            return false;
        }
    }
    return true;
}

// How long the window system may take to make a window the active one.
constexpr DWORD kActivationMs = 500;

bool IsWithin(const ScreenWindow* window, const ScreenWindow* ancestor) {
    while (window != nullptr && window != ancestor) {
        window = window->parent;
    }
    return window != nullptr;
}

}  // namespace

HWND Desktop::ChangeFocus(HWND window) {
    const HWND before = focus;
    if (before == window) {
        return before;
    }
    focus = window;
    if (Find(before) != nullptr) {
        SendMessageA(before, WM_KILLFOCUS, reinterpret_cast<WPARAM>(window), 0);
    }
    // Who lost it may have given it to somebody else.
    if (focus == window && Find(window) != nullptr) {
        SendMessageA(window, WM_SETFOCUS, reinterpret_cast<WPARAM>(before), 0);
    }
    SyncFocus();
    return before;
}

void Desktop::SyncFocus() {
    const ScreenWindow* window = Find(focus);
    QWidget* now = QApplication::focusWidget();
    if (window != nullptr) {
        if (now != window->widget) {
            window->widget->setFocus(Qt::OtherFocusReason);
            if (window->control != nullptr) {
                window->control->TellFocus(focus);
            }
        }
    } else if (now != nullptr && HandleOfWidget(*now) != nullptr) {
        now->clearFocus();
    }
}

bool Desktop::Activate(HWND handle, WPARAM how) {
    if (active == handle) {
        return true;
    }
    if (Find(handle) == nullptr || HasStyle(handle, WS_DISABLED)) {
        return false;
    }
    const HWND before = active;
    const bool first = before == nullptr;
    active = handle;
    if (Find(before) != nullptr) {
        SendMessageA(before, WM_NCACTIVATE, FALSE, 0);
        SendMessageA(before, WM_ACTIVATE, WA_INACTIVE, reinterpret_cast<LPARAM>(handle));
    }
    if (first && Find(handle) != nullptr) {
        SendMessageA(handle, WM_ACTIVATEAPP, TRUE, 0);
    }
    ScreenWindow* window = Find(handle);
    if (active != handle || window == nullptr) {
        return active == handle;
    }
    // The front is the user's, who may be typing in another program.
    if (!isElsewhere) {
        PutBehind(*window, HWND_TOP);
        if (window->widget->isVisible()) {
            AskForActivation(*window->widget);
        }
    }
    SendMessageA(handle, WM_NCACTIVATE, TRUE, 0);
    SendMessageA(handle, WM_ACTIVATE, how, reinterpret_cast<LPARAM>(before));
    // A window that does not care for the focus gets it all the same.
    window = Find(handle);
    if (active == handle && window != nullptr && !IsWithin(Find(focus), window)) {
        ChangeFocus(handle);
    }
    return active == handle;
}

bool Desktop::BringToFront(HWND handle) {
    ScreenWindow* root = Root(Find(handle));
    if (root == nullptr) {
        return kernel::Fail(ERROR_INVALID_WINDOW_HANDLE);
    }
    isElsewhere = false;
    root->widget->raise();
    AskForActivation(*root->widget);
    return Activate(root->handle, WA_ACTIVE);
}

void Desktop::Deactivate() {
    const HWND before = active;
    if (before == nullptr) {
        return;
    }
    active = nullptr;
    SendMessageA(before, WM_NCACTIVATE, FALSE, 0);
    SendMessageA(before, WM_ACTIVATE, WA_INACTIVE, 0);
    if (Find(before) != nullptr) {
        SendMessageA(before, WM_ACTIVATEAPP, FALSE, 0);
    }
    if (active == nullptr) {
        ChangeFocus(nullptr);
    }
}

void Desktop::LeaveFocus(ScreenWindow& window) {
    const HWND handle = window.handle;
    if (capture != nullptr && IsWithin(Find(capture), &window)) {
        ReleaseCapture();
    }
    if (window.parent != nullptr) {
        if (IsWithin(Find(focus), &window)) {
            ChangeFocus(HasStyle(handle, WS_VISIBLE) ? nullptr : window.parent->handle);
        }
        return;
    }
    if (active != handle) {
        return;
    }
    const HWND owner = window.owner;
    const auto next = std::find_if(topLevel.begin(), topLevel.end(), [&](const ScreenWindow* other) {
        return other->handle != handle && HasStyle(other->handle, WS_VISIBLE) && IsUsable(other);
    });
    if (Find(owner) != nullptr && HasStyle(owner, WS_VISIBLE) && IsUsable(Find(owner))) {
        Activate(owner, WA_ACTIVE);
    } else if (next != topLevel.end()) {
        Activate((*next)->handle, WA_ACTIVE);
    } else {
        Deactivate();
    }
}

void Desktop::KeepPopupInFront(HWND disabled) {
    if (disabled == nullptr) {
        return;
    }
    for (const ScreenWindow* other : topLevel) {
        if (other->owner == disabled && HasStyle(other->handle, WS_VISIBLE) && IsUsable(other)) {
            other->widget->raise();
            AskForActivation(*other->widget);
            return;
        }
    }
    if (chooser.owner == disabled) {
        chooser.dialog->raise();
        AskForActivation(*chooser.dialog);
    }
}

void Desktop::AskForActivation(QWidget& widget) {
    widget.activateWindow();
    awaitsActivation = QApplication::activeWindow() != &widget;
    awaitedSinceMs = GetTickCount();
}

void Desktop::FollowWindowSystem() {
    if (inWindowSystem > 0) {
        return;
    }
    for (HWND window : HandlesOf(topLevel)) {
        FollowGeometry(window);
    }
    const QWidget* widget = QApplication::activeWindow();
    const bool isAwaited = awaitsActivation && GetTickCount() - awaitedSinceMs < kActivationMs;
    // Some window systems give a menu's popup the keys.
    const bool isPassing = widget == nullptr ? isAwaited : widget->windowType() == Qt::Popup;
    if (widget == lastActiveWidget || isPassing) {
        return;
    }
    lastActiveWidget = widget;
    awaitsActivation = false;
    ScreenWindow* window = FindByWidget(widget);
    const bool wasElsewhere = isElsewhere;
    const bool isChooser = widget != nullptr && widget == chooser.dialog;
    isElsewhere = window == nullptr && !isChooser && active != nullptr && HasStyle(active, WS_VISIBLE);
    if (isChooser && !widget->isEnabled()) {
        KeepPopupInFront(chooser.owner);
    } else if (window == nullptr) {
        Deactivate();
        ReleaseKeys();
    } else if (wasElsewhere && active == window->handle) {
        // It was made active meanwhile.
        PutBehind(*window, HWND_TOP);
    } else if (HasStyle(window->handle, WS_DISABLED)) {
        KeepPopupInFront(window->handle);
    } else {
        Activate(window->handle, WA_ACTIVE);
    }
}

}  // namespace desktop

using desktop::Desktop;
using desktop::HasStyle;
using desktop::ScreenWindow;

HWND SetFocus(HWND handle) {
    Desktop& desktop = Desktop::Get();
    if (handle == nullptr) {
        return desktop.ChangeFocus(nullptr);
    }
    ScreenWindow* window = desktop.Find(handle);
    if (window == nullptr) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return nullptr;
    }
    if (!desktop::IsUsable(window)) {
        return nullptr;
    }
    const HWND before = desktop.focus;
    const HWND root = desktop.Root(window)->handle;
    if (desktop.active != root && !desktop.Activate(root, WA_ACTIVE)) {
        return nullptr;
    }
    if (desktop.Find(handle) != nullptr) {
        desktop.ChangeFocus(handle);
    }
    return before;
}

HWND GetFocus() {
    return Desktop::Get().focus;
}

HWND GetActiveWindow() {
    return Desktop::Get().active;
}

HWND GetForegroundWindow() {
    return Desktop::Get().active;
}

BOOL EnableWindow(HWND handle, BOOL enable) {
    Desktop& desktop = Desktop::Get();
    ScreenWindow* window = desktop.Find(handle);
    if (window == nullptr) {
        return kernel::Fail(ERROR_INVALID_WINDOW_HANDLE);
    }
    const bool wasDisabled = HasStyle(handle, WS_DISABLED);
    if (wasDisabled != static_cast<bool>(enable)) {
        return wasDisabled;
    }
    desktop::SetStyleBits(handle, WS_DISABLED, !enable);
    // A disabled top-level window only gets no input; its look stays.
    if (window->parent != nullptr) {
        window->widget->setEnabled(enable != FALSE);
    }
    if (!enable && desktop.focus == handle) {
        desktop.ChangeFocus(nullptr);
    }
    if (!enable && desktop.capture == handle) {
        ReleaseCapture();
    }
    if (desktop.Find(handle) != nullptr) {
        SendMessageA(handle, WM_ENABLE, enable, 0);
    }
    desktop.SyncFocus();
    return wasDisabled;
}

BOOL IsWindowEnabled(HWND handle) {
    return Desktop::Get().Find(handle) != nullptr && !HasStyle(handle, WS_DISABLED);
}

HWND SetCapture(HWND handle) {
    Desktop& desktop = Desktop::Get();
    const HWND before = desktop.capture;
    desktop.capture = desktop.Find(handle) != nullptr ? handle : nullptr;
    if (before != nullptr && before != desktop.capture && IsWindow(before)) {
        SendMessageA(before, WM_CAPTURECHANGED, 0, reinterpret_cast<LPARAM>(desktop.capture));
    }
    return before;
}

BOOL ReleaseCapture() {
    SetCapture(nullptr);
    return TRUE;
}

HWND GetCapture() {
    return Desktop::Get().capture;
}
