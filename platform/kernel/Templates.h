// What the bytes of a resource say: menus, dialogs, accelerators, icons and string blocks as plain data.
//
// The bytes are those that LockResource gives (or ResourceBytes, Resources.h). Damaged bytes give nothing; none is ever read
// past their end. All texts are UTF-8. Any thread.
//
// Nothing here needs the rest of the kernel, so the tests of the resources can be built for Windows as well.
#pragma once

#include <windows.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ByteReader.h"

namespace kernel {

// --- Menus ---------------------------------------------------------------------------------------------------------------

struct MenuItem {
    std::string text;  // With "&" before the mnemonic, and a tab before the text of the key.
    WORD id = 0;       // 0 for a popup and a separator.
    // MF_POPUP, MF_SEPARATOR, MF_CHECKED, MF_GRAYED, MF_HELP as in the resource. A separator always has MF_SEPARATOR,
    // although the resource has no flag for it.
    UINT flags = 0;
    std::vector<MenuItem> items;  // Of a popup.
};

// A menu of the plain form; MENUEX is not known. Popups may be nested ten deep.
std::optional<std::vector<MenuItem>> ParseMenu(Bytes resource);

// --- Dialogs -------------------------------------------------------------------------------------------------------------

// A text, or a resource that stands in its place (the icon of a static control).
struct TextOrResource {
    std::string text;
    WORD resource = 0;  // 0: the text counts.
};

struct DialogItem {
    // The system's classes by number are "BUTTON", "EDIT", "STATIC", "LISTBOX", "SCROLLBAR" and "COMBOBOX".
    std::string className;
    TextOrResource title;
    int id = 0;  // -1 for a control that nobody looks for.
    DWORD style = 0;
    DWORD exStyle = 0;
    int x = 0, y = 0, cx = 0, cy = 0;  // In dialog units.
};

struct DialogTemplate {
    DWORD style = 0;
    DWORD exStyle = 0;
    int x = 0, y = 0, cx = 0, cy = 0;  // In dialog units.
    std::string className;             // Empty: the system's class for dialogs.
    std::string title;
    int fontPoints = 0;  // 0 without DS_SETFONT.
    std::string fontFace;
    std::vector<DialogItem> items;  // In the order of the template, which is the tab order.
};

// A dialog of the plain form; DIALOGEX and a menu in a dialog are not known.
std::optional<DialogTemplate> ParseDialog(Bytes resource);

// --- Accelerators --------------------------------------------------------------------------------------------------------

// The mark of the last entry is taken away from the flags. Nothing if that entry is missing.
std::optional<std::vector<ACCEL>> ParseAccelerators(Bytes resource);

// --- Icons ---------------------------------------------------------------------------------------------------------------

struct IconImage {
    int width = 0;
    int height = 0;
    int bitsPerPixel = 0;               // Of the resource: 4 or 8.
    std::vector<std::uint32_t> pixels;  // 0xAARRGGBB, not premultiplied, row by row from the top; the mask is in the alpha.
};

// The bytes of the icon with that number (RT_ICON), or nothing.
using IconBytes = std::function<Bytes(WORD id)>;

// The images of a group, in its order; those that are missing, damaged or of another depth are left out.
std::vector<IconImage> ParseIconGroup(Bytes group, const IconBytes& iconBytes);

// --- Strings -------------------------------------------------------------------------------------------------------------

// The block that holds a string, and the string's place in it. Strings lie in blocks of sixteen.
constexpr WORD StringBlockOf(UINT id) {
    return static_cast<WORD>(((id & 0xFFFF) >> 4) + 1);
}
constexpr unsigned StringIndexOf(UINT id) {
    return id & 15;
}

// Empty for a string that has no text.
std::u16string StringInBlock(Bytes block, unsigned index);

}  // namespace kernel
