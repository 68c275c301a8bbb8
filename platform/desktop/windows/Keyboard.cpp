#include "Keyboard.h"

#include <algorithm>

namespace desktop {

namespace {

struct KeyName {
    int virtualKey;
    Qt::Key key;
};

// Letters, digits and F keys follow by their order.
constexpr KeyName kNames[] = {
    {VK_BACK, Qt::Key_Backspace},  {VK_TAB, Qt::Key_Tab},       {VK_RETURN, Qt::Key_Return}, {VK_SHIFT, Qt::Key_Shift},
    {VK_CONTROL, Qt::Key_Control}, {VK_MENU, Qt::Key_Alt},      {VK_ESCAPE, Qt::Key_Escape}, {VK_SPACE, Qt::Key_Space},
    {VK_PRIOR, Qt::Key_PageUp},    {VK_NEXT, Qt::Key_PageDown}, {VK_END, Qt::Key_End},       {VK_HOME, Qt::Key_Home},
    {VK_LEFT, Qt::Key_Left},       {VK_UP, Qt::Key_Up},         {VK_RIGHT, Qt::Key_Right},   {VK_DOWN, Qt::Key_Down},
    {VK_INSERT, Qt::Key_Insert},   {VK_DELETE, Qt::Key_Delete}, {0x13, Qt::Key_Pause},       {0x14, Qt::Key_CapsLock},
    {0x2C, Qt::Key_Print},         {0x5B, Qt::Key_Super_L},     {0x5C, Qt::Key_Super_R},     {0x5D, Qt::Key_Menu},
    {0x90, Qt::Key_NumLock},       {0x91, Qt::Key_ScrollLock},  {0xBA, Qt::Key_Semicolon},   {0xBB, Qt::Key_Equal},
    {0xBC, Qt::Key_Comma},         {0xBD, Qt::Key_Minus},       {0xBE, Qt::Key_Period},      {0xBF, Qt::Key_Slash},
    {0xC0, Qt::Key_QuoteLeft},     {0xDB, Qt::Key_BracketLeft}, {0xDC, Qt::Key_Backslash},   {0xDD, Qt::Key_BracketRight},
    {0xDE, Qt::Key_Apostrophe},
};

// The shifted signs of the digits and of the keys above, where they stand on a keyboard of the United States.
constexpr char kDigitSigns[] = ")!@#$%^&*(";
struct SignKey {
    int virtualKey;
    char plain;
    char shifted;
};
constexpr SignKey kSigns[] = {
    {0xBA, ';', ':'}, {0xBB, '=', '+'}, {0xBC, ',', '<'},  {0xBD, '-', '_'}, {0xBE, '.', '>'},  {0xBF, '/', '?'},
    {0xC0, '`', '~'}, {0xDB, '[', '{'}, {0xDC, '\\', '|'}, {0xDD, ']', '}'}, {0xDE, '\'', '"'},
};

constexpr int kF1 = 0x70;
constexpr int kF24 = 0x87;
constexpr int kNumpad0 = 0x60;

// The key of a shifted sign, for layouts that tell the sign in place of the key.
int VirtualKeyOfSign(int sign) {
    const char* digit = std::find(std::begin(kDigitSigns), std::end(kDigitSigns) - 1, sign);
    if (digit != std::end(kDigitSigns) - 1) {
        return '0' + static_cast<int>(digit - kDigitSigns);
    }
    for (const SignKey& key : kSigns) {
        if (key.shifted == sign) {
            return key.virtualKey;
        }
    }
    return 0;
}

}  // namespace

int VirtualKeyOf(const QKeyEvent& event) {
    const int key = event.key();
    if ((event.modifiers() & Qt::KeypadModifier) != 0 && key >= Qt::Key_0 && key <= Qt::Key_9) {
        return kNumpad0 + key - Qt::Key_0;
    }
    if ((key >= Qt::Key_A && key <= Qt::Key_Z) || (key >= Qt::Key_0 && key <= Qt::Key_9)) {
        return key;
    }
    if (key >= Qt::Key_F1 && key <= Qt::Key_F24) {
        return kF1 + key - Qt::Key_F1;
    }
    if (key == Qt::Key_Enter) {
        return VK_RETURN;
    }
    if (key == Qt::Key_Backtab) {
        return VK_TAB;
    }
    const auto* name = std::find_if(std::begin(kNames), std::end(kNames), [key](const KeyName& n) { return n.key == key; });
    return name != std::end(kNames) ? name->virtualKey : VirtualKeyOfSign(key);
}

Qt::Key QtKeyOf(int virtualKey) {
    if ((virtualKey >= 'A' && virtualKey <= 'Z') || (virtualKey >= '0' && virtualKey <= '9')) {
        return static_cast<Qt::Key>(virtualKey);
    }
    if (virtualKey >= kF1 && virtualKey <= kF24) {
        return static_cast<Qt::Key>(Qt::Key_F1 + virtualKey - kF1);
    }
    const auto* name = std::find_if(std::begin(kNames), std::end(kNames),
                                    [virtualKey](const KeyName& n) { return n.virtualKey == virtualKey; });
    return name != std::end(kNames) ? name->key : Qt::Key_unknown;
}

void Keyboard::Press(int virtualKey, bool isDown) {
    down[static_cast<std::size_t>(virtualKey & 0xFF)] = isDown;
}

std::vector<int> Keyboard::Held() const {
    std::vector<int> held;
    for (int key = 0; key < static_cast<int>(down.size()); ++key) {
        if (IsDown(key)) {
            held.push_back(key);
        }
    }
    return held;
}

Qt::KeyboardModifiers Keyboard::Modifiers() const {
    Qt::KeyboardModifiers modifiers;
    modifiers.setFlag(Qt::ShiftModifier, IsDown(VK_SHIFT));
    modifiers.setFlag(Qt::ControlModifier, IsDown(VK_CONTROL));
    modifiers.setFlag(Qt::AltModifier, IsDown(VK_MENU));
    return modifiers;
}

std::string Keyboard::TextOf(int virtualKey) const {
    const bool shift = IsDown(VK_SHIFT);
    if (virtualKey >= 'A' && virtualKey <= 'Z') {
        if (IsDown(VK_CONTROL)) {
            return {static_cast<char>(virtualKey - 'A' + 1)};
        }
        return {static_cast<char>(shift ? virtualKey : virtualKey - 'A' + 'a')};
    }
    if (virtualKey == VK_BACK || virtualKey == VK_TAB || virtualKey == VK_RETURN || virtualKey == VK_ESCAPE ||
        virtualKey == VK_SPACE) {
        return {static_cast<char>(virtualKey)};
    }
    if (IsDown(VK_CONTROL)) {
        return {};
    }
    if (virtualKey >= '0' && virtualKey <= '9') {
        return {shift ? kDigitSigns[virtualKey - '0'] : static_cast<char>(virtualKey)};
    }
    for (const SignKey& key : kSigns) {
        if (key.virtualKey == virtualKey) {
            return {shift ? key.shifted : key.plain};
        }
    }
    return {};
}

}  // namespace desktop
