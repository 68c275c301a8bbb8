#include "Handles.h"

#include <array>
#include <cstdint>
#include <mutex>

#include "LastError.h"

namespace kernel {
namespace {

constexpr unsigned kIndexBits = 14;
constexpr std::uint32_t kSlots = 1u << kIndexBits;
constexpr std::uint32_t kGenerations = 1u << 15;
// Slots are taken up again only while that many are free, so that a stale handle stays stale for millions of openings.
constexpr std::uint32_t kFreeReserve = 64;

struct Slot {
    std::mutex lock;  // Guards the two fields behind it; one lock a slot, so that busy handles do not meet.
    KernelObject* object = nullptr;
    std::uint32_t generation = 0;
    std::uint32_t nextFree = 0;  // Guarded by the lock of the free list.
};

// The table is never destroyed: threads may still use it while the process ends.
std::array<Slot, kSlots> slots;

// The queue of free slots: what was freed first is used first.
std::mutex freeLock;
std::uint32_t firstFree = 0;
std::uint32_t lastFree = 0;
std::uint32_t freeCount = 0;
std::uint32_t usedSlots = 0;

// The index of a slot to use, or kSlots.
std::uint32_t TakeSlot() {
    const std::lock_guard guard(freeLock);
    if (usedSlots < kSlots && freeCount < kFreeReserve) {
        return usedSlots++;
    }
    if (freeCount == 0) {
        return kSlots;
    }
    const std::uint32_t index = firstFree;
    firstFree = slots[index].nextFree;
    --freeCount;
    return index;
}

void GiveSlotBack(std::uint32_t index) {
    const std::lock_guard guard(freeLock);
    if (freeCount++ == 0) {
        firstFree = index;
    } else {
        slots[lastFree].nextFree = index;
    }
    lastFree = index;
}

HANDLE MakeHandle(std::uint32_t index, std::uint32_t generation) {
    // Index 0 of generation 0 would be the handle 0, which means none: generations begin at 1.
    return reinterpret_cast<HANDLE>(static_cast<std::uintptr_t>(((generation << kIndexBits) | index) << 2));
}

// The slot that the value points to, or none if no handle has such a value.
Slot* SlotOf(HANDLE handle, std::uint32_t& index, std::uint32_t& generation) {
    const auto value = reinterpret_cast<std::uintptr_t>(handle);
    if (value % 4 != 0 || value > INT32_MAX) {
        return nullptr;
    }
    index = static_cast<std::uint32_t>(value >> 2) % kSlots;
    generation = static_cast<std::uint32_t>(value >> 2) >> kIndexBits;
    return &slots[index];
}

}  // namespace

HANDLE AddHandle(Ref<KernelObject> object) {
    const std::uint32_t index = object ? TakeSlot() : kSlots;
    if (index == kSlots) {
        Fail(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    Slot& slot = slots[index];
    const std::lock_guard guard(slot.lock);
    slot.generation = slot.generation + 1 < kGenerations ? slot.generation + 1 : 1;
    slot.object = object.Detach();
    return MakeHandle(index, slot.generation);
}

Ref<KernelObject> FindHandle(HANDLE handle, Kind kind) {
    std::uint32_t index;
    std::uint32_t generation;
    if (Slot* slot = SlotOf(handle, index, generation)) {
        const std::lock_guard guard(slot->lock);
        if (slot->object && slot->generation == generation && slot->object->Is(kind)) {
            slot->object->AddReference();
            return Ref<KernelObject>(slot->object);
        }
    }
    Fail(ERROR_INVALID_HANDLE);
    return {};
}

}  // namespace kernel

BOOL CloseHandle(HANDLE handle) {
    using namespace kernel;
    std::uint32_t index;
    std::uint32_t generation;
    Ref<KernelObject> object;
    if (Slot* slot = SlotOf(handle, index, generation)) {
        const std::lock_guard guard(slot->lock);
        if (slot->object && slot->generation == generation) {
            object = Ref<KernelObject>(std::exchange(slot->object, nullptr));
        }
    }
    if (!object) {
        return Fail(ERROR_INVALID_HANDLE);
    }
    GiveSlotBack(index);
    object->HandleClosed();
    return TRUE;
}
