// CriticalSection and LockGuard: a lock of the seam that lives as long as its owner, held for the length of a block.
//
// Only calls of the seam, so that the product and the simulation share this header: the simulation sees each wait for a
// lock.
#pragma once

#include <windows.h>

// Recursive. It is neither copied nor moved, since the system knows it by its address. It must be free when it goes.
class CriticalSection {
public:
    CriticalSection() { InitializeCriticalSection(&section); }
    ~CriticalSection() { DeleteCriticalSection(&section); }
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;

private:
    friend class LockGuard;

    CRITICAL_SECTION section;
};

// Waits for the lock where it is declared and lets go at the end of the block.
class [[nodiscard]] LockGuard {
public:
    explicit LockGuard(CriticalSection& lock) : section(lock.section) { EnterCriticalSection(&section); }
    ~LockGuard() { LeaveCriticalSection(&section); }
    LockGuard(const LockGuard&) = delete;
    LockGuard& operator=(const LockGuard&) = delete;

private:
    CRITICAL_SECTION& section;
};
