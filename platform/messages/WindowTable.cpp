// From window handles to windows.
#include "WindowTable.h"

#include <utility>

namespace {

constexpr std::size_t kMostPlaces = 0xFFFE;
constexpr unsigned kLastGeneration = 0x7FFF;

// The first place has number 1: a low word of 0 is no window.
HWND HandleOf(std::size_t place, unsigned generation) {
    return reinterpret_cast<HWND>((static_cast<UINT_PTR>(generation) << 16) | (place + 1));
}

}  // namespace

HWND WindowTable::Add(std::unique_ptr<Window> window) {
    std::size_t place = places.size();
    if (!freePlaces.empty()) {
        place = freePlaces.front();
        freePlaces.pop_front();
    } else if (place < kMostPlaces) {
        places.emplace_back();
    } else {
        return nullptr;
    }
    Place& taken = places[place];
    taken.generation = taken.generation == kLastGeneration ? 1 : taken.generation + 1;
    taken.window = std::move(window);
    taken.window->handle = HandleOf(place, taken.generation);
    return taken.window->handle;
}

Window* WindowTable::Find(HWND handle) const {
    // 0 wraps around and is beyond every place.
    const std::size_t place = (reinterpret_cast<UINT_PTR>(handle) & 0xFFFF) - 1;
    if (place >= places.size() || places[place].window == nullptr || places[place].window->handle != handle) {
        return nullptr;
    }
    return places[place].window.get();
}

void WindowTable::Remove(HWND handle) {
    if (Find(handle) == nullptr) {
        return;
    }
    const std::size_t place = (reinterpret_cast<UINT_PTR>(handle) & 0xFFFF) - 1;
    places[place].window.reset();
    freePlaces.push_back(place);
}

std::vector<HWND> WindowTable::OwnedBy(const MessageQueue& queue) const {
    std::vector<HWND> owned;
    for (const Place& place : places) {
        if (place.window != nullptr && &place.window->owner == &queue) {
            owned.push_back(place.window->handle);
        }
    }
    return owned;
}
