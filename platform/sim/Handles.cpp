// Handles and their closing.
#include <utility>

#include "KernelObject.h"
#include "Scheduler.h"

namespace sim {

namespace {

// A handle holds the number of uses above its low 18 bits, and below them the slot, counted from 1, times four, as the
// system's own handles are multiples of four.
constexpr unsigned kUsesShift = 18;
constexpr std::uintptr_t kIndexMask = 0xFFFF;
constexpr std::size_t kNoSlot = SIZE_MAX;

}  // namespace

HandleTable& HandleTable::Get() {
    static HandleTable& table = *new HandleTable;
    return table;
}

HANDLE HandleTable::Add(std::shared_ptr<KernelObject> object) {
    if (freeSlots.empty()) {
        if (slots.size() == kIndexMask) {
            SetLastError(ERROR_NOT_ENOUGH_MEMORY);
            return nullptr;
        }
        freeSlots.push_back(slots.size());
        slots.emplace_back();
    }
    const std::size_t index = freeSlots.front();
    freeSlots.pop_front();
    slots[index].object = std::move(object);
    return Encode(index, slots[index].uses);
}

std::shared_ptr<KernelObject> HandleTable::Find(HANDLE handle) const {
    const std::size_t index = IndexOf(handle);
    return index == kNoSlot ? nullptr : slots[index].object;
}

bool HandleTable::Close(HANDLE handle) {
    const std::size_t index = IndexOf(handle);
    if (index == kNoSlot) {
        return false;
    }
    ++slots[index].uses;
    freeSlots.push_back(index);
    // The object's own end may ask for the table.
    const std::shared_ptr<KernelObject> last = std::move(slots[index].object);
    return true;
}

HANDLE HandleTable::Encode(std::size_t index, std::uint32_t uses) {
    return reinterpret_cast<HANDLE>((static_cast<std::uintptr_t>(uses & 0xFFF) << kUsesShift) | ((index + 1) << 2));
}

std::size_t HandleTable::IndexOf(HANDLE handle) const {
    const std::size_t number = (reinterpret_cast<std::uintptr_t>(handle) >> 2) & kIndexMask;
    if (number == 0 || number > slots.size() || slots[number - 1].object == nullptr ||
        Encode(number - 1, slots[number - 1].uses) != handle) {
        return kNoSlot;
    }
    return number - 1;
}

}  // namespace sim

BOOL CloseHandle(HANDLE handle) {
    if (sim::HandleTable::Get().Close(handle)) {
        return TRUE;
    }
    sim::Misuse("closes a handle that is not open");
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
}
