#include "WindowClasses.h"

#include <algorithm>

namespace {

constexpr ATOM kAnyAtom = 0xC000;

// Scans forward, since the second byte of a double-byte character may look like a letter.
std::string Folded(std::string text) {
    for (std::size_t i = 0; i < text.size(); i++) {
        if (IsDBCSLeadByte(static_cast<BYTE>(text[i]))) {
            i++;
        } else if (text[i] >= 'A' && text[i] <= 'Z') {
            text[i] = static_cast<char>(text[i] - 'A' + 'a');
        }
    }
    return text;
}

}  // namespace

ATOM WindowClasses::Add(const WNDCLASSEXA& description) {
    if (description.cbSize != sizeof description || description.lpfnWndProc == nullptr ||
        Find(description.lpszClassName) != nullptr) {
        return 0;
    }
    auto added = std::make_unique<WindowClass>();
    added->name = Folded(description.lpszClassName);
    added->shownName = description.lpszClassName;
    added->procedure = description.lpfnWndProc;
    added->windowExtra = description.cbWndExtra;
    added->style = description.style;
    added->icon = description.hIcon;
    added->background = description.hbrBackground;
    added->menuName = description.lpszMenuName;
    classes.push_back(std::move(added));
    return kAnyAtom;
}

WindowClass* WindowClasses::Find(LPCSTR name) const {
    const std::string folded = Folded(name);
    const auto found =
        std::find_if(classes.begin(), classes.end(), [&](const auto& known) { return known->name == folded; });
    return found != classes.end() ? found->get() : nullptr;
}

bool WindowClasses::Remove(LPCSTR name) {
    const WindowClass* found = Find(name);
    if (found == nullptr || found->windows > 0) {
        return false;
    }
    std::erase_if(classes, [found](const auto& known) { return known.get() == found; });
    return true;
}
