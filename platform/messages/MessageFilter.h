// Which messages a caller of GetMessageA or PeekMessageA asks for.
#pragma once

#include <windows.h>

struct MessageFilter {
    HWND window;  // 0 for all
    UINT first;   // both 0: any message number
    UINT last;

    bool Matches(HWND target, UINT message) const {
        const bool numberFits = (first == 0 && last == 0) || (message >= first && message <= last);
        return numberFits && (window == nullptr || target == window);
    }
};
