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

Menu* Find(HMENU handle) {
    Menu* menu = desktop::FindMenu(handle);
    if (menu == nullptr) {
        SetLastError(ERROR_INVALID_MENU_HANDLE);
    }
    return menu;
}

MenuEntry* Find(HMENU handle, UINT item, UINT flags) {
    Menu* menu = Find(handle);
    MenuEntry* entry = menu != nullptr ? FindEntry(*menu, item, flags) : nullptr;
    if (menu != nullptr && entry == nullptr) {
        SetLastError(ERROR_MENU_ITEM_NOT_FOUND);
    }
    return entry;
}

}  // namespace

// Whatever module is named, the program's resources answer.
HMENU LoadMenuA(HINSTANCE, LPCSTR resource) {
    const kernel::Bytes bytes = kernel::ResourceBytes(resource, RT_MENU);
    if (bytes.empty()) {
        return nullptr;
    }
    const auto items = kernel::ParseMenu(bytes);
    if (!items) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    return desktop::AddMenu(*items);
}

BOOL DestroyMenu(HMENU menu) {
    return desktop::RemoveMenu(menu) ? TRUE : kernel::Fail(ERROR_INVALID_MENU_HANDLE);
}

HMENU GetMenu(HWND handle) {
    const desktop::ScreenWindow* window = desktop::Desktop::Get().Find(handle);
    if (window == nullptr) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return nullptr;
    }
    return window->menu;
}

HMENU GetSubMenu(HMENU handle, int position) {
    Menu* menu = Find(handle);
    const MenuEntry* entry = menu != nullptr ? FindEntry(*menu, static_cast<UINT>(position), MF_BYPOSITION) : nullptr;
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

// The entry that the structure is about; null, with the last error, for one that cannot be served.
MenuEntry* EntryFor(HMENU menu, UINT item, BOOL byPosition, const MENUITEMINFOA& info) {
    if (info.cbSize != sizeof info) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    if (info.fMask != MIIM_STATE) {
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
