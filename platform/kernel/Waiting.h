// What can be waited for: the base of threads and events.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>

#include "KernelObject.h"
#include "win/kernel.h"

namespace kernel {

// One call that waits. Of all objects that it waits for only one may have it.
class Waiter {
public:
    // Ends the wait with that result if nothing has ended it yet. Any thread; while other threads can reach the waiter this
    // is called under the lock of an object that it stands in line at.
    bool Claim(DWORD result);
    // Returns when the waiter is claimed or the time is over; INFINITE is without limit.
    void Block(DWORD milliseconds);
    // The result that ended the wait. Only once it is claimed.
    DWORD Result() const { return word.load(std::memory_order_acquire) - 1; }
    // Wakes the thread in Block. The waiter may be gone by then: its address is only a name for the operating system, and
    // whoever sleeps under the same name checks its own condition again.
    static void Wake(const std::atomic<std::uint32_t>* word);
    const std::atomic<std::uint32_t>* Word() const { return &word; }

private:
    bool IsClaimed() const { return word.load(std::memory_order_acquire) != 0; }

    std::atomic<std::uint32_t> word{0};  // 0 while unclaimed, else the result plus 1.
};

// The place of a waiter in the line at one object.
struct WaitEntry {
    Waiter* waiter;
    DWORD result;
    WaitEntry* previous;
    WaitEntry* next;
    bool linked;
};

class Waitable : public KernelObject {
public:
    static constexpr Kind kKind = Kind::kWaitable;

    Waitable(Kind kind, bool autoReset, bool signalled) : KernelObject(kind), autoReset(autoReset), signalled(signalled) {}

    // Any thread. With autoReset exactly one waiter goes on, the one that waits longest; or, if there is none, the next.
    void Signal();

    // Puts the entry in line and gives true, unless the object is signalled, which claims the waiter, or the waiter is
    // claimed already.
    bool Enter(WaitEntry& entry);
    void Leave(WaitEntry& entry);

private:
    void Unlink(WaitEntry& entry);

    std::mutex lock;  // Guards all that follows. Nothing else is locked under it.
    const bool autoReset;
    bool signalled;
    WaitEntry* first = nullptr;
    WaitEntry* last = nullptr;
};

class Event final : public Waitable {
public:
    static constexpr Kind kKind = Kind::kEvent;

    Event(bool manualReset, bool signalled) : Waitable(kKind, !manualReset, signalled) {}
};

}  // namespace kernel
