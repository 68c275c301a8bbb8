// Keys: which are held, and what they are called on both sides.
#pragma once

#include <windows.h>

#include <QKeyEvent>
#include <array>
#include <string>
#include <vector>

namespace desktop {

// The virtual key of a key event, 0 for one that has none.
int VirtualKeyOf(const QKeyEvent& event);
// What Qt calls a virtual key; Qt::Key_unknown for one that has no name.
Qt::Key QtKeyOf(int virtualKey);

class Keyboard {
public:
    void Press(int virtualKey, bool down);
    std::vector<int> Held() const;
    bool IsDown(int virtualKey) const { return down[static_cast<std::size_t>(virtualKey & 0xFF)]; }
    Qt::KeyboardModifiers Modifiers() const;
    // What a key means without the window system's word for it: on a keyboard of the United States. Empty for none.
    std::string TextOf(int virtualKey) const;

    // Whether Alt was pressed, and no other key and no button since: its release then opens the menu.
    bool altAlone = false;

private:
    std::array<bool, 256> down{};
};

}  // namespace desktop
