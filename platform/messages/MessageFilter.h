// Which messages a caller of GetMessageA or PeekMessageA asks for.
#pragma once

#include <windows.h>

struct MessageFilter {
    HWND window;  // 0 for all, ThreadOnly() for messages without a window
    UINT first;   // both 0: any message number
    UINT last;

    static HWND ThreadOnly() { return reinterpret_cast<HWND>(static_cast<LONG_PTR>(-1)); }

    bool NamesWindow() const { return window != nullptr && window != ThreadOnly(); }

    bool Matches(HWND target, UINT message) const {
        const bool numberFits = (first == 0 && last == 0) || (message >= first && message <= last);
        const bool windowFits = window == nullptr || target == (window == ThreadOnly() ? nullptr : window);
        return numberFits && windowFits;
    }
};
