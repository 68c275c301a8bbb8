// Menus as the program knows them: handles, items and their states.
#pragma once

#include <windows.h>

#include <QAction>
#include <QPointer>
#include <QString>
#include <vector>

#include "Templates.h"

namespace desktop {

struct MenuEntry {
    QString text;  // with "&" before the mnemonic, and a tab before the text of the key
    UINT id = 0;
    UINT type = 0;   // MF_POPUP, MF_SEPARATOR and MF_HELP
    UINT state = 0;  // MF_GRAYED, MF_DISABLED and MF_CHECKED
    HMENU popup = nullptr;
    QPointer<QAction> action;  // what shows it on a bar, if the menu is on one

    bool IsSeparator() const { return (type & MF_SEPARATOR) != 0; }
    bool IsUsable() const { return (state & (MF_GRAYED | MF_DISABLED)) == 0 && !IsSeparator(); }
};

struct Menu {
    HMENU handle = nullptr;
    std::vector<MenuEntry> entries;
};

// The menu and its popups, each with a handle of its own.
HMENU AddMenu(const std::vector<kernel::MenuItem>& items);
// Null for anything that is not the handle of a living menu; a handle is never used twice.
Menu* FindMenu(HMENU handle);
// The popups go with it.
bool RemoveMenu(HMENU handle);

// By position, or by command, which is looked for in the popups as well. Null if there is none. A popup has no command.
MenuEntry* FindEntry(Menu& menu, UINT item, UINT flags);
// Where a command stands: the menu itself or the popup that holds it, and that popup's position in the menu, else 0.
struct CommandPlace {
    HMENU menu = nullptr;
    int position = 0;
};
CommandPlace PlaceOfCommand(const Menu& menu, UINT id);

// Reaches the action at once.
void SetEntryState(MenuEntry& entry, UINT state);
// Brings the entry's state to its action.
void ShowEntryState(const MenuEntry& entry);
// The letter of its mnemonic in lower case, or 0.
char LetterOf(const MenuEntry& entry);

}  // namespace desktop
