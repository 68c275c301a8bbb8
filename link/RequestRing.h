// The queue of requests to the main unit.
#pragma once

#include <array>
#include <cassert>
#include <cstdint>

// One request; all zero is a free entry.
struct LinkRequest {
    enum Kind : std::uint32_t { kFree, kModelQuery, kStatusQuery, kUnitCommand, kMapQuery, kTitleRead, kTitleWrite };

    std::uint32_t kind = kFree;
    std::uint32_t arg1 = 0;  // parameter, command, MapKind or GroupKind
    std::uint32_t arg2 = 0;  // group code, or group number within its kind
    std::uint32_t arg3 = 0;  // track

    bool IsFree() const { return kind == kFree; }
};

// A ring of entries. One of them is current, and a free one ends the queue. It is planned as a whole and then worked
// through.
class RequestRing {
public:
    static constexpr std::uint32_t kSize = 1998;

    void Clear() { *this = {}; }
    // How many more Add takes. Only between Clear and the first Advance.
    std::uint32_t Room() const { return kSize - planned; }
    // Behind what was planned; false if the ring is full.
    bool Add(const LinkRequest& request) {
        assert(index == 0 && !request.IsFree());
        if (Room() == 0) {
            return false;
        }
        entries[planned++] = request;
        return true;
    }

    // Free once the queue is through.
    const LinkRequest& Current() const { return entries[index]; }
    LinkRequest& Next() { return entries[NextIndex()]; }
    // Frees the current entry and goes on to the next.
    void Advance() {
        entries[index] = {};
        index = NextIndex();
    }

private:
    std::uint32_t NextIndex() const { return index + 1 < kSize ? index + 1 : 0; }

    std::array<LinkRequest, kSize> entries;
    std::uint32_t index = 0;    // of the current entry
    std::uint32_t planned = 0;  // entries added since Clear
};
