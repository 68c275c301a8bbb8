// From window handles to windows.
#pragma once

#include <windows.h>

#include <deque>
#include <memory>
#include <vector>

#include "Window.h"

// A handle holds the place of its window in the low word and, in the high word, how often the place has been given out (1 to
// 0x7FFF, then 1 again), so that the handle of a window that is gone is recognised. It fits 32 bits, as on Windows, and
// never looks like one of the special values (HWND_MESSAGE and its like). Every call wants the lock of MessageState.
class WindowTable {
public:
    // Sets the window's handle and gives it; 0, and the window is gone, if there are 65,534 windows already.
    HWND Add(std::unique_ptr<Window> window);

    // Null for anything that is not the handle of a living window.
    Window* Find(HWND handle) const;

    void Remove(HWND handle);
    std::vector<HWND> OwnedBy(const MessageQueue& queue) const;

private:
    struct Place {
        std::unique_ptr<Window> window;  // null: free
        unsigned generation = 0;
    };

    std::vector<Place> places;
    std::deque<std::size_t> freePlaces;  // longest free first, so that a generation comes back as late as possible
};
