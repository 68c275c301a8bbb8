// Events, and waiting for objects.
//
// A thread that waits sleeps on a word of its own. Who signals an object claims a waiter by writing the result into that
// word and wakes it: one system call, and none if nobody sleeps.
#include "Waiting.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <new>

#include "Handles.h"
#include "LastError.h"
#include "Time.h"

namespace kernel {

static_assert(sizeof(std::atomic<std::uint32_t>) == 4);

bool Waiter::Claim(DWORD result) {
    std::uint32_t unclaimed = 0;
    return word.compare_exchange_strong(unclaimed, result + 1, std::memory_order_acq_rel);
}

void Waiter::Block(DWORD milliseconds) {
    const std::int64_t end = milliseconds == INFINITE ? 0 : MonotonicNs() + milliseconds * kNsPerMs;
    const timespec until{static_cast<time_t>(end / (1000 * kNsPerMs)), static_cast<long>(end % (1000 * kNsPerMs))};
    while (!IsClaimed()) {
        // The bitset form is the one that takes a moment of the monotonic clock instead of a duration.
        const long result = syscall(SYS_futex, &word, FUTEX_WAIT_BITSET_PRIVATE, 0,
                                    milliseconds == INFINITE ? nullptr : &until, nullptr, FUTEX_BITSET_MATCH_ANY);
        if (result != 0 && errno == ETIMEDOUT) {
            return;
        }
    }
}

void Waiter::Wake(const std::atomic<std::uint32_t>* word) {
    syscall(SYS_futex, word, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
}

void Waitable::Signal() {
    // Wakes outside the lock where it can, so that the woken thread does not run into it. Only where many wait for one
    // object all but the last are woken inside.
    const std::atomic<std::uint32_t>* sleeper = nullptr;
    {
        const std::lock_guard guard(lock);
        bool used = false;
        while (first && !(used && autoReset)) {
            WaitEntry& entry = *first;
            Unlink(entry);
            if (!entry.waiter->Claim(entry.result)) {
                continue;
            }
            if (sleeper) {
                Waiter::Wake(sleeper);
            }
            sleeper = entry.waiter->Word();
            used = true;
        }
        signalled = !(used && autoReset);
    }
    if (sleeper) {
        Waiter::Wake(sleeper);
    }
}

bool Waitable::Enter(WaitEntry& entry) {
    const std::lock_guard guard(lock);
    if (signalled) {
        if (entry.waiter->Claim(entry.result) && autoReset) {
            signalled = false;
        }
        return false;
    }
    entry.next = nullptr;
    entry.previous = last;
    (last ? last->next : first) = &entry;
    last = &entry;
    entry.linked = true;
    return true;
}

void Waitable::Leave(WaitEntry& entry) {
    const std::lock_guard guard(lock);
    if (entry.linked) {
        Unlink(entry);
    }
}

void Waitable::Unlink(WaitEntry& entry) {
    (entry.previous ? entry.previous->next : first) = entry.next;
    (entry.next ? entry.next->previous : last) = entry.previous;
    entry.linked = false;
}

}  // namespace kernel

HANDLE CreateEventA(LPSECURITY_ATTRIBUTES security, BOOL manualReset, BOOL initialState, LPCSTR name) {
    using namespace kernel;
    if (security || name) {
        Unsupported("an event with a name or with security attributes");
        return nullptr;
    }
    return AddHandle(Ref<KernelObject>(new (std::nothrow) Event(manualReset != FALSE, initialState != FALSE)));
}

BOOL SetEvent(HANDLE event) {
    const auto object = kernel::FindHandle<kernel::Event>(event);
    if (!object) {
        return FALSE;
    }
    object->Signal();
    return TRUE;
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    return WaitForMultipleObjects(1, &handle, FALSE, milliseconds);
}

DWORD WaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL waitAll, DWORD milliseconds) {
    using namespace kernel;
    if (waitAll && count > 1) {
        Unsupported("waiting for all of several objects");
        return WAIT_FAILED;
    }
    if (count == 0 || count > MAXIMUM_WAIT_OBJECTS || !handles) {
        Fail(ERROR_INVALID_PARAMETER);
        return WAIT_FAILED;
    }
    std::array<Ref<Waitable>, MAXIMUM_WAIT_OBJECTS> objects;
    for (DWORD i = 0; i < count; ++i) {
        objects[i] = FindHandle<Waitable>(handles[i]);
        if (!objects[i]) {
            return WAIT_FAILED;
        }
    }
    Waiter waiter;
    std::array<WaitEntry, MAXIMUM_WAIT_OBJECTS> entries;
    DWORD entered = 0;
    for (; entered < count; ++entered) {
        entries[entered] = {&waiter, WAIT_OBJECT_0 + entered, nullptr, nullptr, false};
        if (!objects[entered]->Enter(entries[entered])) {
            break;
        }
    }
    if (entered == count && milliseconds > 0) {
        waiter.Block(milliseconds);
    }
    // An object that signals at the last moment wins over the timeout, or its signal would be lost.
    waiter.Claim(WAIT_TIMEOUT);
    for (DWORD i = 0; i < entered; ++i) {
        objects[i]->Leave(entries[i]);
    }
    return waiter.Result();
}
