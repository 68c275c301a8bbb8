// The desktop of the thread that runs the program: its windows and its part in the queue of that thread.
#include "Desktop.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QThread>
#include <QTimer>
#include <QWidget>
#include <algorithm>

#include "MessageQueue.h"
#include "MessageState.h"
#include "Painting.h"
#include "Placement.h"
#include "Widgets.h"
#include "WindowLife.h"

namespace desktop {

namespace {

Desktop* theDesktop = nullptr;

constexpr char kDesktopClass[] = "#32769";

LRESULT CALLBACK DesktopProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == kRedrawMessage) {
        const HWND redrawn = reinterpret_cast<HWND>(wParam);
        return IsWindow(redrawn) && RedrawWindow(redrawn, nullptr, nullptr, static_cast<UINT>(lParam));
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

}  // namespace

DWORD StyleOf(HWND window) {
    return static_cast<DWORD>(GetWindowLongPtrA(window, GWL_STYLE));
}

void SetStyleBits(HWND window, DWORD bits, bool set) {
    const DWORD style = StyleOf(window);
    SetWindowLongPtrA(window, GWL_STYLE, static_cast<LONG_PTR>(set ? style | bits : style & ~bits));
}

void AddClass(LPCSTR name, WNDPROC procedure, UINT style, int extraBytes) {
    WNDCLASSEXA added{};
    added.cbSize = sizeof added;
    added.style = style;
    added.lpfnWndProc = procedure;
    added.cbWndExtra = extraBytes;
    added.lpszClassName = name;
    RegisterClassExA(&added);
}

Desktop::Desktop(const DesktopParts& parts) : parts(parts) {
    theDesktop = this;
    MessageQueue::Current()->SetScreen(this);
    AddClass(kDesktopClass, DesktopProc, 0);
    CREATESTRUCTA create{};
    create.lpszClass = kDesktopClass;
    create.style = static_cast<LONG>(WS_POPUP | WS_VISIBLE);
    desktopWindow = MakeWindow(create);
}

Desktop::~Desktop() {
    while (!topLevel.empty()) {
        DestroyWindow(topLevel.front()->handle);
    }
    ClearTrash();
    EndWindow(desktopWindow);
    MessageQueue::Current()->SetScreen(nullptr);
    theDesktop = nullptr;
}

Desktop& Desktop::Get() {
    return *theDesktop;
}

bool Desktop::IsOwnThread() {
    return theDesktop != nullptr && QThread::currentThread() == theDesktop->thread();
}

// --- Windows

bool Desktop::IsScreenWindow(HWND window) const {
    return Find(window) != nullptr;
}

ScreenWindow* Desktop::Find(HWND window) const {
    const auto found = windows.find(window);
    return found != windows.end() ? found->second.get() : nullptr;
}

ScreenWindow* Desktop::FindByWidget(const QObject* widget) const {
    return widget != nullptr ? Find(HandleOfWidget(*widget)) : nullptr;
}

ScreenWindow* Desktop::Root(ScreenWindow* window) const {
    while (window != nullptr && window->parent != nullptr) {
        window = window->parent;
    }
    return window;
}

std::vector<ScreenWindow*>& Desktop::Siblings(const ScreenWindow& window) {
    return window.parent != nullptr ? window.parent->children : topLevel;
}

void Desktop::Link(ScreenWindow& window) {
    // A new child stands behind its siblings, a new top-level window in front of them.
    std::vector<ScreenWindow*>& siblings = Siblings(window);
    siblings.insert(window.parent != nullptr ? siblings.end() : siblings.begin(), &window);
}

void Desktop::Unlink(ScreenWindow& window) {
    std::erase(Siblings(window), &window);
}

void Desktop::PutBehind(ScreenWindow& window, HWND insertAfter) {
    std::vector<ScreenWindow*>& siblings = Siblings(window);
    std::erase(siblings, &window);
    auto place = siblings.begin();
    if (insertAfter == HWND_BOTTOM) {
        place = siblings.end();
    } else if (insertAfter != HWND_TOP) {
        place = std::find_if(siblings.begin(), siblings.end(),
                             [insertAfter](const ScreenWindow* sibling) { return sibling->handle == insertAfter; });
        place = place != siblings.end() ? place + 1 : place;
    }
    siblings.insert(place, &window);
    StackWidgets(siblings);
}

HWND Desktop::CreateScreenWindow(const CREATESTRUCTA& given) {
    CREATESTRUCTA create = given;
    const auto style = static_cast<DWORD>(create.style);
    const bool isChild = (style & (WS_CHILD | WS_POPUP)) == WS_CHILD;
    ScreenWindow* parent = Find(create.hwndParent);
    if ((create.hwndParent != nullptr || isChild) && parent == nullptr && create.hwndParent != desktopWindow) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return nullptr;
    }
    auto made = std::make_unique<ScreenWindow>();
    ScreenWindow& window = *made;
    if (isChild) {
        window.parent = parent;
    } else {
        window.owner = parent != nullptr ? Root(parent)->handle : nullptr;
        create.hwndParent = window.owner;
        create.style |= static_cast<LONG>((style & WS_POPUP) == 0 ? WS_CAPTION | WS_CLIPSIBLINGS : WS_CLIPSIBLINGS);
    }
    CREATESTRUCTA hidden = create;
    hidden.style &= ~static_cast<LONG>(WS_VISIBLE);
    if (!isChild) {
        hidden.hMenu = nullptr;
    }
    window.handle = MakeWindow(hidden);
    if (window.handle == nullptr) {
        return nullptr;
    }
    const HWND handle = window.handle;
    windows[handle] = std::move(made);
    return BringUp(window, create) ? handle : nullptr;
}

// A window that is going hears it before its children do, and is told the end behind them.
void Desktop::DestroyScreenWindow(HWND handle) {
    ScreenWindow* window = Find(handle);
    std::vector<HWND> owned;
    for (const ScreenWindow* other : topLevel) {
        if (other->owner == handle) {
            owned.push_back(other->handle);
        }
    }
    for (HWND other : owned) {
        DestroyWindow(other);
    }
    if (HasStyle(handle, WS_VISIBLE)) {
        HideForGood(*window);
    }
    TellDestroy(handle);
    EndTree(handle);
}

void Desktop::TellDestroy(HWND handle) {
    ScreenWindow* window = Find(handle);
    if (window == nullptr) {
        return;
    }
    if (window->parent == nullptr || focus == handle) {
        LeaveFocus(*window);
    }
    SendMessageA(handle, WM_DESTROY, 0, 0);
    window = Find(handle);
    if (window == nullptr) {
        return;
    }
    for (HWND child : HandlesOf(window->children)) {
        TellDestroy(child);
    }
}

void Desktop::EndTree(HWND handle) {
    ScreenWindow* window = Find(handle);
    while (window != nullptr && !window->children.empty()) {
        EndTree(window->children.front()->handle);
        window = Find(handle);
    }
    if (window == nullptr) {
        return;
    }
    EndWindow(handle);
    window = Find(handle);
    if (window == nullptr) {
        return;
    }
    if (capture == handle) {
        capture = nullptr;
    }
    if (focus == handle) {
        focus = nullptr;
    }
    if (active == handle) {
        active = nullptr;
    }
    Unlink(*window);
    if (window->widget != nullptr) {
        ForgetWidget(*window->widget);
        window->widget->hide();
        window->widget->setParent(nullptr);
        trash.push_back(window->widget);
    }
    windows.erase(handle);
}

// --- Screen

void Desktop::ClearTrash() {
    // A widget may be in the middle of one of its own events as long as the window system's are handled.
    if (inWindowSystem > 0 || giving > 0) {
        return;
    }
    for (QWidget* widget : std::exchange(trash, {})) {
        delete widget;
    }
}

void Desktop::HandleEvents(bool wait) {
    ++inWindowSystem;
    QCoreApplication::processEvents(wait ? QEventLoop::WaitForMoreEvents : QEventLoop::AllEvents);
    --inWindowSystem;
    FollowWindowSystem();
    ClearTrash();
}

void Desktop::Poll() {
    // Once a millisecond is enough, and leaves the processor to the messages when there are many of them.
    const DWORD now = GetTickCount();
    if (now == lastPollMs) {
        return;
    }
    lastPollMs = now;
    HandleEvents(false);
}

void Desktop::Wait(DWORD milliseconds) {
    if (milliseconds == 0) {
        return;
    }
    QTimer limit;
    if (milliseconds != INFINITE) {
        limit.setSingleShot(true);
        limit.setTimerType(Qt::PreciseTimer);
        limit.start(static_cast<int>(std::min<DWORD>(milliseconds, INT_MAX)));
    }
    HandleEvents(true);
}

void Desktop::Wake() {
    // The dispatcher lives as long as the application object, and that longer than the desktop.
    QAbstractEventDispatcher::instance(thread())->wakeUp();
}

void Desktop::WantPaint() {
    MessageQueue::Current()->ScreenHas(QS_PAINT);
}

ScreenWindow* Desktop::FirstInvalid(const std::vector<ScreenWindow*>& among, const MessageFilter& filter) const {
    for (ScreenWindow* window : among) {
        if (!HasStyle(window->handle, WS_VISIBLE) || !window->redraw) {
            continue;
        }
        const bool wanted = !window->invalid.isEmpty() || window->frameInvalid;
        if (wanted && filter.Matches(window->handle, WM_PAINT)) {
            return window;
        }
        if (ScreenWindow* below = FirstInvalid(window->children, filter)) {
            return below;
        }
    }
    return nullptr;
}

bool Desktop::TakePaint(MSG& found, const MessageFilter& filter) {
    const ScreenWindow* window = FirstInvalid(topLevel, filter);
    if (window == nullptr) {
        return false;
    }
    found = {window->handle, WM_PAINT, 0, 0, GetTickCount(), {0, 0}};
    return true;
}

}  // namespace desktop
