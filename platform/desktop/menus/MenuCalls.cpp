// The calls for menus.
#include "Desktop.h"
#include "LastError.h"
#include "Menus.h"
#include "Resources.h"

using desktop::Menu;
using desktop::MenuEntry;

namespace {

constexpr UINT kGrayedBits = MF_GRAYED | MF_DISABLED;
constexpr UINT kStateBits = kGrayedBits | MF_CHECKED;

MenuEntry* Find(HMENU handle, UINT item, UINT flags) {
    Menu* menu = desktop::FindMenu(handle);
    return menu != nullptr ? FindEntry(*menu, item, flags) : nullptr;
}

}  // namespace

// Whatever module is named, the program's resources answer.
HMENU LoadMenuA(HINSTANCE, LPCSTR resource) {
    const auto items = kernel::ParseMenu(kernel::ResourceBytes(resource, RT_MENU));
    return items ? desktop::AddMenu(*items) : nullptr;
}

BOOL DestroyMenu(HMENU menu) {
    return desktop::RemoveMenu(menu);
}

HMENU GetMenu(HWND handle) {
    const desktop::ScreenWindow* window = desktop::Desktop::Get().Find(handle);
    return window != nullptr ? window->menu : nullptr;
}

HMENU GetSubMenu(HMENU handle, int position) {
    const MenuEntry* entry = Find(handle, static_cast<UINT>(position), MF_BYPOSITION);
    return entry != nullptr ? entry->popup : nullptr;
}

UINT GetMenuState(HMENU menu, UINT item, UINT flags) {
    constexpr UINT kLowByte = 0xFF;
    const MenuEntry* entry = Find(menu, item, flags);
    if (entry == nullptr) {
        return static_cast<UINT>(-1);
    }
    if (const Menu* popup = desktop::FindMenu(entry->popup)) {
        return ((entry->type | entry->state) & kLowByte) | static_cast<UINT>(popup->entries.size()) << 8;
    }
    return entry->type | entry->state;
}

namespace {

// The entry that the structure is about; null for one that cannot be served.
MenuEntry* EntryFor(HMENU menu, UINT item, BOOL byPosition, const MENUITEMINFOA& info) {
    if (info.cbSize != sizeof info || info.fMask != MIIM_STATE) {
        kernel::Unsupported("a menu item's information other than its state");
        return nullptr;
    }
    return Find(menu, item, byPosition ? MF_BYPOSITION : MF_BYCOMMAND);
}

}  // namespace

BOOL GetMenuItemInfoA(HMENU menu, UINT item, BOOL byPosition, MENUITEMINFOA* info) {
    const MenuEntry* entry = EntryFor(menu, item, byPosition, *info);
    if (entry == nullptr) {
        return FALSE;
    }
    info->fState = entry->state;
    return TRUE;
}

BOOL SetMenuItemInfoA(HMENU menu, UINT item, BOOL byPosition, const MENUITEMINFOA* info) {
    MenuEntry* entry = EntryFor(menu, item, byPosition, *info);
    if (entry == nullptr) {
        return FALSE;
    }
    SetEntryState(*entry, info->fState & kStateBits);
    return TRUE;
}

BOOL EnableMenuItem(HMENU menu, UINT item, UINT flags) {
    MenuEntry* entry = Find(menu, item, flags);
    if (entry == nullptr) {
        return -1;
    }
    const UINT before = entry->state & kGrayedBits;
    SetEntryState(*entry, (entry->state & ~kGrayedBits) | (flags & kGrayedBits));
    return static_cast<BOOL>(before);
}
