#include "MenuLoop.h"

#include <QApplication>
#include <algorithm>
#include <cctype>

#include "Desktop.h"
#include "MenuWidgets.h"
#include "Menus.h"

namespace desktop {

namespace {

MenuLoop* running = nullptr;

int Around(int item, int count) {
    return (item % count + count) % count;
}

}  // namespace

MenuLoop::MenuLoop(HWND window) : window(window), menu(GetMenu(window)), activeBefore(GetActiveWindow()) {
    running = this;
    qApp->installEventFilter(this);
}

MenuLoop::~MenuLoop() {
    qApp->removeEventFilter(this);
    running = nullptr;
}

MenuLoop* MenuLoop::Running() {
    return running;
}

// --- What is there

bool MenuLoop::IsThere() const {
    const Desktop& desktop = Desktop::Get();
    const ScreenWindow* found = desktop.Find(window);
    return found != nullptr && found->menuBar != nullptr && FindMenu(menu) != nullptr && !HasStyle(window, WS_DISABLED);
}

MenuBarWidget* MenuLoop::Bar() const {
    const ScreenWindow* found = Desktop::Get().Find(window);
    return found != nullptr ? static_cast<MenuBarWidget*>(found->menuBar) : nullptr;
}

PopupWidget* MenuLoop::OpenPopup() const {
    const MenuBarWidget* bar = Bar();
    return isOpen && bar != nullptr ? bar->PopupOf(barItem) : nullptr;
}

MenuEntry* MenuLoop::BarEntry() const {
    return barItem >= 0 ? &FindMenu(menu)->entries[static_cast<std::size_t>(barItem)] : nullptr;
}

Menu* MenuLoop::PopupMenu() const {
    const MenuEntry* entry = BarEntry();
    return entry != nullptr ? FindMenu(entry->popup) : nullptr;
}

int MenuLoop::CountOfBar() const {
    return static_cast<int>(FindMenu(menu)->entries.size());
}

bool MenuLoop::Tell(UINT message, WPARAM wParam, LPARAM lParam) {
    SendMessageA(window, message, wParam, lParam);
    ended = ended || !IsThere();
    return !ended;
}

// --- Highlighting, opening, closing

void MenuLoop::TellSelected(const MenuEntry& entry, UINT number, HMENU from) {
    // A separator cannot be highlighted; the mouse tells of it all the same.
    const UINT flags = entry.type | entry.state | (entry.IsSeparator() ? 0 : MF_HILITE);
    Tell(WM_MENUSELECT, MAKEWPARAM(static_cast<WORD>(number), static_cast<WORD>(flags)), reinterpret_cast<LPARAM>(from));
}

void MenuLoop::SelectBar(int item) {
    barItem = item;
    Bar()->Highlight(item);
    const MenuEntry& entry = *BarEntry();
    TellSelected(entry, entry.popup != nullptr ? static_cast<UINT>(item) : entry.id, menu);
}

// The window hears of it before the popup shows, so that it shows the items as the window then wants them.
void MenuLoop::Open(bool selectFirst) {
    const MenuEntry* entry = ended ? nullptr : BarEntry();
    if (entry == nullptr) {
        return;
    }
    if (entry->popup == nullptr) {
        Choose();
        return;
    }
    if (!entry->IsUsable() ||
        !Tell(WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(entry->popup), MAKELPARAM(static_cast<WORD>(barItem), FALSE))) {
        return;
    }
    isOpen = true;
    popupItem = -1;
    MenuBarWidget* bar = Bar();
    const QRect below = bar->ItemRect(barItem);
    OpenPopup()->popup(bar->mapToGlobal(QPoint(below.left(), below.bottom() + 1)));
    if (selectFirst) {
        Step(-1, 1);
    }
}

void MenuLoop::Close() {
    PopupWidget* popup = OpenPopup();
    isOpen = false;
    popupItem = -1;
    if (popup != nullptr) {
        isHiding = true;
        popup->hide();
        isHiding = false;
        if (GetActiveWindow() == activeBefore && IsWindow(activeBefore)) {
            Desktop::Get().AskForActivation(*Desktop::Get().Find(activeBefore)->widget);
        }
    }
}

void MenuLoop::SelectItem(int item) {
    if (ended || item == popupItem || OpenPopup() == nullptr) {
        return;
    }
    popupItem = item;
    OpenPopup()->Highlight(item);
    if (item >= 0) {
        const MenuEntry& entry = PopupMenu()->entries[static_cast<std::size_t>(item)];
        TellSelected(entry, entry.id, PopupMenu()->handle);
    } else {
        // What the window shows about an item must not outlast its highlight.
        SelectBar(barItem);
    }
}

void MenuLoop::MoveOnBar(int item) {
    const bool open = isOpen;
    Close();
    SelectBar(Around(item, CountOfBar()));
    if (open) {
        Open(true);
    }
}

// A greyed item closes the menu and does nothing.
void MenuLoop::Choose() {
    const MenuEntry* entry = BarEntry();
    if (isOpen) {
        entry = popupItem >= 0 ? &PopupMenu()->entries[static_cast<std::size_t>(popupItem)] : nullptr;
    }
    if (entry != nullptr) {
        chosen = entry->IsUsable() ? static_cast<WORD>(entry->id) : WORD{0};
        ended = true;
    }
}

// --- The loop

void MenuLoop::Begin() {
    if (Tell(WM_ENTERMENULOOP, FALSE, 0)) {
        Tell(WM_INITMENU, reinterpret_cast<WPARAM>(menu), 0);
    }
}

void MenuLoop::End() {
    Close();
    if (MenuBarWidget* bar = Bar()) {
        bar->Highlight(-1);
    }
    constexpr WORD kClosed = 0xFFFF;
    SendMessageA(window, WM_MENUSELECT, MAKEWPARAM(0, kClosed), 0);
    SendMessageA(window, WM_EXITMENULOOP, FALSE, 0);
    if (chosen != 0) {
        PostMessageA(window, WM_COMMAND, MAKEWPARAM(chosen, 0), 0);
    }
}

void MenuLoop::RunByKey(char letter) {
    Begin();
    if (!ended && letter == 0) {
        SelectBar(0);
    } else if (!ended) {
        Letter(letter);
        ended = ended || barItem < 0;
    }
    Serve();
    End();
}

void MenuLoop::RunByMouse(QPoint screen) {
    Begin();
    const int item = ended ? -1 : Bar()->ItemAt(Bar()->mapFromGlobal(screen));
    ended = ended || item < 0;
    if (!ended) {
        SelectBar(item);
        Open(false);
    }
    Serve();
    End();
}

void MenuLoop::Serve() {
    while (!ended) {
        while (!ended && !mouse.empty()) {
            const MouseEntry entry = mouse.front();
            mouse.pop_front();
            TakeMouse(entry);
        }
        MSG message;
        // A press in a window closes the menu and means what it always does.
        if (!ended && PeekMessageA(&message, nullptr, WM_LBUTTONDOWN, WM_MBUTTONDBLCLK, PM_NOREMOVE) &&
            IsPress(message.message)) {
            ended = true;
        }
        if (ended) {
            break;
        }
        if (GetMessageA(&message, nullptr, 0, 0) <= 0) {
            PostQuitMessage(static_cast<int>(message.wParam));
            break;
        }
        ended = ended || !IsThere();
        if (!ended && !TakeMessage(message)) {
            DispatchMessageA(&message);
        }
        ended = ended || !IsThere() || GetActiveWindow() != activeBefore;
    }
}

// A window that opens meanwhile, such as a dialog that a timer brings, could not be used below a popup.
bool MenuLoop::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show && watched->isWidgetType()) {
        const auto* widget = static_cast<const QWidget*>(watched);
        if (widget->windowType() == Qt::Window || widget->windowType() == Qt::Dialog) {
            ended = true;
            Close();
        }
    }
    return false;
}

// --- Keys

bool MenuLoop::TakeMessage(const MSG& message) {
    switch (message.message) {
        case WM_KEYDOWN:
        case WM_SYSKEYDOWN: KeyDown(message); return true;
        case WM_KEYUP:
        case WM_SYSKEYUP:
            // Not before, or its release would open the menu anew.
            ended = ended || (f10Pressed && message.wParam == VK_F10);
            return true;
        case WM_CHAR:
        case WM_SYSCHAR: Letter(static_cast<char>(message.wParam)); return true;
        case WM_MOUSEMOVE: return true;
        default: return false;
    }
}

void MenuLoop::KeyDown(const MSG& message) {
    switch (message.wParam) {
        case VK_MENU:
            Desktop::Get().keyboard.altAlone = false;
            ended = true;
            break;
        case VK_F10: f10Pressed = true; break;
        default:
            if (isOpen) {
                PopupKey(message);
            } else {
                BarKey(message);
            }
            break;
    }
}

void MenuLoop::BarKey(const MSG& message) {
    switch (message.wParam) {
        case VK_LEFT: MoveOnBar(barItem - 1); break;
        case VK_RIGHT: MoveOnBar(barItem + 1); break;
        case VK_UP:
        case VK_DOWN:
        case VK_RETURN: Open(true); break;
        case VK_ESCAPE: ended = true; break;
        default: TranslateMessage(&message); break;
    }
}

// There is no menu of the window itself between the last popup and the first one; it belongs to the window system here.
void MenuLoop::PopupKey(const MSG& message) {
    const int count = static_cast<int>(PopupMenu()->entries.size());
    switch (message.wParam) {
        case VK_LEFT: MoveOnBar(barItem - 1); break;
        case VK_RIGHT: MoveOnBar(barItem + 1); break;
        case VK_UP: Step(popupItem < 0 ? count : popupItem, -1); break;
        case VK_DOWN: Step(popupItem, 1); break;
        case VK_HOME: Step(-1, 1); break;
        case VK_END: Step(count, -1); break;
        case VK_RETURN: Choose(); break;
        case VK_ESCAPE:
            Close();
            SelectBar(barItem);
            break;
        default: TranslateMessage(&message); break;
    }
}

// Highlights the next item that is no separator, from `from` on and round.
void MenuLoop::Step(int from, int by) {
    const Menu* popup = PopupMenu();
    const int count = popup != nullptr ? static_cast<int>(popup->entries.size()) : 0;
    for (int i = 1; i <= count; ++i) {
        const int item = Around(from + by * i, count);
        if (!popup->entries[static_cast<std::size_t>(item)].IsSeparator()) {
            SelectItem(item);
            return;
        }
    }
}

void MenuLoop::Letter(char letter) {
    const auto lower = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    const Menu* among = isOpen ? PopupMenu() : FindMenu(menu);
    const auto& entries = among->entries;
    const auto found =
        std::find_if(entries.begin(), entries.end(), [lower](const MenuEntry& entry) { return LetterOf(entry) == lower; });
    if (found == entries.end() || lower == 0) {
        MessageBeep(0);
        return;
    }
    const int item = static_cast<int>(found - entries.begin());
    if (isOpen) {
        SelectItem(item);
        if (!ended) {
            Choose();
        }
        return;
    }
    if (item != barItem) {
        SelectBar(item);
    }
    Open(true);
}

// --- The mouse

void MenuLoop::Remember(MouseKind kind, QPoint screen) {
    if (kind == MouseKind::kMove && !mouse.empty() && mouse.back().kind == kind) {
        mouse.back().screen = screen;
        return;
    }
    mouse.push_back({kind, screen});
    // The loop looks behind the next message.
    PostMessageA(window, WM_NULL, 0, 0);
}

bool MenuLoop::MousePressed(QPoint screen) {
    const MenuBarWidget* bar = Bar();
    const PopupWidget* popup = OpenPopup();
    const bool onBar = bar != nullptr && bar->ItemAt(bar->mapFromGlobal(screen)) >= 0;
    const bool onPopup = popup != nullptr && popup->rect().contains(popup->mapFromGlobal(screen));
    if (onBar || onPopup) {
        Remember(MouseKind::kPress, screen);
        return true;
    }
    ended = true;
    Close();
    PostMessageA(window, WM_NULL, 0, 0);
    return false;
}

void MenuLoop::MouseReleased(QPoint screen) {
    Remember(MouseKind::kRelease, screen);
}

void MenuLoop::MouseMoved(QPoint screen) {
    Remember(MouseKind::kMove, screen);
}

void MenuLoop::PopupHidden(const PopupWidget& popup) {
    if (!isHiding && &popup == OpenPopup()) {
        ended = true;
        PostMessageA(window, WM_NULL, 0, 0);
    }
}

void MenuLoop::TakeMouse(const MouseEntry& entry) {
    PopupWidget* popup = OpenPopup();
    if (popup != nullptr && popup->rect().contains(popup->mapFromGlobal(entry.screen))) {
        MouseOnPopup(entry.kind, popup->ItemAt(popup->mapFromGlobal(entry.screen)));
        return;
    }
    const int item = Bar()->ItemAt(Bar()->mapFromGlobal(entry.screen));
    if (item >= 0) {
        MouseOnBar(entry.kind, item);
    } else if (entry.kind == MouseKind::kRelease && popup != nullptr) {
        ended = true;
    } else if (entry.kind == MouseKind::kMove) {
        SelectItem(-1);
    }
}

void MenuLoop::MouseOnBar(MouseKind kind, int item) {
    if (kind == MouseKind::kRelease) {
        return;
    }
    if (item == barItem) {
        if (kind == MouseKind::kPress && isOpen) {
            ended = true;
        } else if (kind == MouseKind::kPress) {
            Open(false);
        } else {
            SelectItem(-1);
        }
        return;
    }
    const bool open = isOpen || kind == MouseKind::kPress;
    Close();
    SelectBar(item);
    if (open && !ended) {
        Open(false);
    }
}

void MenuLoop::MouseOnPopup(MouseKind kind, int item) {
    SelectItem(item);
    if (kind == MouseKind::kRelease && !ended && item >= 0 &&
        PopupMenu()->entries[static_cast<std::size_t>(item)].IsUsable()) {
        Choose();
    }
}

}  // namespace desktop
