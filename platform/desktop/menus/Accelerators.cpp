// Keys that stand for commands.
#include <algorithm>
#include <deque>
#include <vector>

#include "Desktop.h"
#include "Menus.h"
#include "Resources.h"

using desktop::Desktop;

namespace {

using AcceleratorTable = std::vector<ACCEL>;

bool IsHeld(int virtualKey) {
    return (GetKeyState(virtualKey) & 0x8000) != 0;
}

BYTE HeldModifiers() {
    return static_cast<BYTE>((IsHeld(VK_SHIFT) ? FSHIFT : 0) | (IsHeld(VK_CONTROL) ? FCONTROL : 0) |
                             (IsHeld(VK_MENU) ? FALT : 0));
}

bool Matches(const ACCEL& entry, const MSG& message, BYTE modifiers) {
    return (entry.fVirt & FVIRTKEY) != 0 && entry.key == message.wParam &&
           (entry.fVirt & (FSHIFT | FCONTROL | FALT)) == modifiers;
}

// A command of the window's menu goes only where the menu could be used, and after the program has had the chance to grey
// it. The window may be gone afterwards.
bool MayRun(HWND window, WORD command) {
    const HMENU handle = GetMenu(window);
    const desktop::Menu* menu = desktop::FindMenu(handle);
    const desktop::CommandPlace place = menu != nullptr ? PlaceOfCommand(*menu, command) : desktop::CommandPlace{};
    if (place.menu == nullptr) {
        return true;
    }
    if (!IsWindowEnabled(window)) {
        return false;
    }
    SendMessageA(window, WM_INITMENU, reinterpret_cast<WPARAM>(handle), 0);
    if (place.menu != handle) {
        SendMessageA(window, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(place.menu),
                     MAKELPARAM(static_cast<WORD>(place.position), FALSE));
    }
    if (!IsWindow(window) || GetCapture() != nullptr || IsIconic(window)) {
        return false;
    }
    const UINT state = GetMenuState(handle, command, MF_BYCOMMAND);
    return state != static_cast<UINT>(-1) && (state & (MF_GRAYED | MF_DISABLED)) == 0;
}

}  // namespace

HACCEL LoadAcceleratorsA(HINSTANCE, LPCSTR resource) {
    // A table lasts as long as the program; the handle is its address.
    static auto& tables = *new std::deque<AcceleratorTable>;
    auto entries = kernel::ParseAccelerators(kernel::ResourceBytes(resource, RT_ACCELERATOR));
    return entries ? reinterpret_cast<HACCEL>(&tables.emplace_back(std::move(*entries))) : nullptr;
}

int TranslateAcceleratorA(HWND window, HACCEL handle, LPMSG message) {
    const auto* table = reinterpret_cast<const AcceleratorTable*>(handle);
    const bool key = message->message == WM_KEYDOWN || message->message == WM_SYSKEYDOWN;
    if (table == nullptr || !key || Desktop::Get().Find(window) == nullptr) {
        return 0;
    }
    const BYTE modifiers = HeldModifiers();
    const auto found =
        std::find_if(table->begin(), table->end(), [&](const ACCEL& entry) { return Matches(entry, *message, modifiers); });
    if (found == table->end()) {
        return 0;
    }
    const WORD command = found->cmd;
    if (MayRun(window, command)) {
        constexpr WORD kFromAccelerator = 1;
        SendMessageA(window, WM_COMMAND, MAKEWPARAM(command, kFromAccelerator), 0);
    }
    return 1;
}
