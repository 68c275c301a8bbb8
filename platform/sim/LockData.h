// What a CRITICAL_SECTION holds.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace sim {

struct SimThread;

// A lock that is let go goes to whoever comes first: a waiter, drawn from the seed, is only woken to try again.
struct LockData {
    std::uint32_t magic;  // kMagic between Initialize and Delete
    std::uint32_t number;
    std::uint64_t owner;  // the serial of its thread, or 0
    SimThread* firstWaiter;
    std::uint32_t waiterCount;
    std::uint32_t depth;

    static constexpr std::uint32_t kMagic = 0x4C4F434B;

    // Null, after a Misuse, for a lock that was never made or is deleted.
    static LockData* Of(CRITICAL_SECTION* section, std::string_view action);

    void AddWaiter(SimThread& thread);
    void RemoveWaiter(SimThread& thread);
    SimThread& WaiterAt(std::uint64_t index);
    std::string Name() const;
};
static_assert(sizeof(LockData) <= sizeof(CRITICAL_SECTION));
static_assert(alignof(CRITICAL_SECTION) % alignof(LockData) == 0);

}  // namespace sim
