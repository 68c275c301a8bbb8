// The registered window classes of the process.
#include "WindowClasses.h"

#include <algorithm>

namespace {

constexpr std::size_t kLongestName = 255;
constexpr ATOM kFirstAtom = 0xC000;
constexpr ATOM kLastAtom = 0xFFFF;

bool IsAtom(LPCSTR name) {
    return reinterpret_cast<UINT_PTR>(name) < 0x10000;
}

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

bool IsUsable(const WNDCLASSEXA& description) {
    if (description.cbSize != sizeof(WNDCLASSEXA) || description.lpfnWndProc == nullptr || description.cbWndExtra < 0 ||
        IsAtom(description.lpszClassName)) {
        return false;
    }
    const std::size_t length = std::char_traits<char>::length(description.lpszClassName);
    return length > 0 && length <= kLongestName;
}

}  // namespace

ATOM WindowClasses::Add(const WNDCLASSEXA& description) {
    if (!IsUsable(description)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    if (Find(description.lpszClassName) != nullptr) {
        SetLastError(ERROR_CLASS_ALREADY_EXISTS);
        return 0;
    }
    const auto taken = [this](unsigned atom) {
        return std::any_of(classes.begin(), classes.end(), [atom](const auto& known) { return known->atom == atom; });
    };
    unsigned atom = kFirstAtom;
    while (atom <= kLastAtom && taken(atom)) {
        atom++;
    }
    if (atom > kLastAtom) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return 0;
    }
    auto added = std::make_unique<WindowClass>();
    added->name = Folded(description.lpszClassName);
    added->shownName = description.lpszClassName;
    added->atom = static_cast<ATOM>(atom);
    added->procedure = description.lpfnWndProc;
    added->windowExtra = description.cbWndExtra;
    added->style = description.style;
    added->icon = description.hIcon;
    added->background = description.hbrBackground;
    added->menuName = description.lpszMenuName;
    classes.push_back(std::move(added));
    return static_cast<ATOM>(atom);
}

WindowClass* WindowClasses::Find(LPCSTR name) const {
    const bool byAtom = IsAtom(name);
    const std::string folded = byAtom ? std::string() : Folded(name);
    for (const auto& known : classes) {
        if (byAtom ? known->atom == reinterpret_cast<UINT_PTR>(name) : known->name == folded) {
            return known.get();
        }
    }
    return nullptr;
}

bool WindowClasses::Remove(LPCSTR name) {
    const WindowClass* found = Find(name);
    if (found == nullptr) {
        SetLastError(ERROR_CLASS_DOES_NOT_EXIST);
        return false;
    }
    if (found->windows > 0) {
        SetLastError(ERROR_CLASS_HAS_WINDOWS);
        return false;
    }
    std::erase_if(classes, [found](const auto& known) { return known.get() == found; });
    return true;
}
