#include "Menus.h"

#include <algorithm>
#include <memory>
#include <unordered_map>

#include "Text.h"

namespace desktop {

namespace {

std::unordered_map<HMENU, std::unique_ptr<Menu>>& Menus() {
    static auto& menus = *new std::unordered_map<HMENU, std::unique_ptr<Menu>>;
    return menus;
}

// Far from the small numbers that a child window may have in the place of a menu.
HMENU NewHandle() {
    static ULONG_PTR last = 0x10000;
    last += 4;
    return reinterpret_cast<HMENU>(last);
}

MenuEntry EntryOf(const kernel::MenuItem& item) {
    MenuEntry entry;
    entry.text = QString::fromStdString(item.text);
    entry.id = item.id;
    entry.type = item.flags & (MF_POPUP | MF_SEPARATOR | MF_HELP);
    entry.state = item.flags & (MF_GRAYED | MF_DISABLED | MF_CHECKED);
    if (entry.IsSeparator()) {
        entry.state |= MF_GRAYED | MF_DISABLED;
    }
    if ((entry.type & MF_POPUP) != 0) {
        entry.popup = AddMenu(item.items);
    }
    return entry;
}

}  // namespace

HMENU AddMenu(const std::vector<kernel::MenuItem>& items) {
    auto menu = std::make_unique<Menu>();
    menu->handle = NewHandle();
    std::transform(items.begin(), items.end(), std::back_inserter(menu->entries), EntryOf);
    const HMENU handle = menu->handle;
    Menus()[handle] = std::move(menu);
    return handle;
}

Menu* FindMenu(HMENU handle) {
    const auto found = Menus().find(handle);
    return found != Menus().end() ? found->second.get() : nullptr;
}

bool RemoveMenu(HMENU handle) {
    const Menu* menu = FindMenu(handle);
    if (menu == nullptr) {
        return false;
    }
    for (const MenuEntry& entry : menu->entries) {
        RemoveMenu(entry.popup);
    }
    Menus().erase(handle);
    return true;
}

MenuEntry* FindEntry(Menu& menu, UINT item, UINT flags) {
    if ((flags & MF_BYPOSITION) != 0) {
        return item < menu.entries.size() ? &menu.entries[item] : nullptr;
    }
    for (MenuEntry& entry : menu.entries) {
        if (Menu* popup = FindMenu(entry.popup)) {
            if (MenuEntry* found = FindEntry(*popup, item, flags)) {
                return found;
            }
        } else if (entry.id == item && !entry.IsSeparator()) {
            return &entry;
        }
    }
    return nullptr;
}

CommandPlace PlaceOfCommand(const Menu& menu, UINT id) {
    for (std::size_t i = 0; i < menu.entries.size(); ++i) {
        const MenuEntry& entry = menu.entries[i];
        if (Menu* popup = FindMenu(entry.popup)) {
            if (FindEntry(*popup, id, MF_BYCOMMAND) != nullptr) {
                return {entry.popup, static_cast<int>(i)};
            }
        } else if (entry.id == id && !entry.IsSeparator()) {
            return {menu.handle, 0};
        }
    }
    return {};
}

void ShowEntryState(const MenuEntry& entry) {
    QAction* action = entry.action;
    if (action == nullptr) {
        return;
    }
    const bool checked = (entry.state & MF_CHECKED) != 0;
    // An action that may be checked shows an empty box while it is not.
    action->setCheckable(checked);
    action->setChecked(checked);
    action->setEnabled((entry.state & (MF_GRAYED | MF_DISABLED)) == 0);
}

void SetEntryState(MenuEntry& entry, UINT state) {
    if (entry.state != state) {
        entry.state = state;
        ShowEntryState(entry);
    }
}

char LetterOf(const MenuEntry& entry) {
    return MarkOf(FromQString(entry.text));
}

}  // namespace desktop
