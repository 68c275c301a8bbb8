// What a handle stands for.
#pragma once

#include <windows.h>

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace sim {

struct SimThread;

class KernelObject {
public:
    enum class Kind { kEvent, kThread, kPort };

    explicit KernelObject(Kind kind) : kind(kind) {}
    virtual ~KernelObject() = default;
    KernelObject(const KernelObject&) = delete;
    KernelObject& operator=(const KernelObject&) = delete;

    // Whether a wait for the object would end at once, and what the end of such a wait does to it.
    virtual bool IsSignalled() const { return false; }
    virtual void WaitEnded() {}
    virtual std::string Name() const = 0;

    const Kind kind;
    std::vector<SimThread*> waiters;  // in order of arrival; a thread stands once for each handle that it waits for
};

// Handles carry the number of times that their slot was used before, so that a handle that was closed is known as such.
// The table outlives a run: the program's static state may hold handles.
class HandleTable {
public:
    static HandleTable& Get();

    HANDLE Add(std::shared_ptr<KernelObject> object);
    // Null for a handle that is none or was closed.
    std::shared_ptr<KernelObject> Find(HANDLE handle) const;
    bool Close(HANDLE handle);

private:
    struct Slot {
        std::shared_ptr<KernelObject> object;
        std::uint32_t uses = 0;
    };

    static HANDLE Encode(std::size_t index, std::uint32_t uses);
    std::size_t IndexOf(HANDLE handle) const;

    std::vector<Slot> slots;
    std::deque<std::size_t> freeSlots;  // longest free first, so that a stale handle stays recognisable
};

// The object of a kind that a handle stands for, or null with the last error set.
template <class Object>
std::shared_ptr<Object> FindObject(HANDLE handle, KernelObject::Kind kind) {
    std::shared_ptr<KernelObject> object = HandleTable::Get().Find(handle);
    if (object == nullptr || object->kind != kind) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    return std::static_pointer_cast<Object>(std::move(object));
}

}  // namespace sim
