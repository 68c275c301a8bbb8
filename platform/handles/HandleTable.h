// Objects by their handles.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

// A handle holds the place of its object, from 1, in the low word and, in the high word, how often the place has been given
// out (1 to 0x7FFF, then 1 again), so that the handle of an object that is gone is recognised. It fits 32 bits, as on
// Windows, and never looks like a small number or a negative one. Has no lock.
template <class T, class Handle>
class HandleTable {
public:
    // 0, and the object is gone, if there are 65,534 already.
    Handle Add(std::unique_ptr<T> object) {
        std::size_t place = places.size();
        if (freePlaces.size() >= kFreeReserve || (place == kMostPlaces && !freePlaces.empty())) {
            place = freePlaces.front();
            freePlaces.pop_front();
        } else if (place < kMostPlaces) {
            places.emplace_back();
        } else {
            return nullptr;
        }
        Place& taken = places[place];
        taken.generation = taken.generation == kLastGeneration ? 1 : taken.generation + 1;
        taken.object = std::move(object);
        return HandleOf(place, taken.generation);
    }

    // Null for anything that is not the handle of a living object.
    T* Find(Handle handle) const {
        const std::size_t place = PlaceOf(handle);
        const bool known = place < places.size() && HandleOf(place, places[place].generation) == handle;
        return known ? places[place].object.get() : nullptr;
    }

    void Remove(Handle handle) {
        if (Find(handle) != nullptr) {
            // A destructor may call Remove.
            const std::unique_ptr<T> gone = std::move(places[PlaceOf(handle)].object);
            freePlaces.push_back(PlaceOf(handle));
        }
    }

    template <class Condition>
    std::vector<Handle> HandlesOf(Condition condition) const {
        std::vector<Handle> handles;
        for (std::size_t place = 0; place < places.size(); ++place) {
            if (places[place].object != nullptr && condition(*places[place].object)) {
                handles.push_back(HandleOf(place, places[place].generation));
            }
        }
        return handles;
    }

private:
    struct Place {
        std::unique_ptr<T> object;  // null: free
        unsigned generation = 0;
    };

    static constexpr std::size_t kMostPlaces = 0xFFFE;
    static constexpr unsigned kLastGeneration = 0x7FFF;
    // Places are taken up again only while that many are free, so that a stale handle stays stale for long.
    static constexpr std::size_t kFreeReserve = 64;

    static Handle HandleOf(std::size_t place, unsigned generation) {
        return reinterpret_cast<Handle>((static_cast<std::uintptr_t>(generation) << 16) | (place + 1));
    }
    // 0 wraps around and is beyond every place.
    static std::size_t PlaceOf(Handle handle) { return (reinterpret_cast<std::uintptr_t>(handle) & 0xFFFF) - 1; }

    std::vector<Place> places;
    std::deque<std::size_t> freePlaces;  // longest free first
};
