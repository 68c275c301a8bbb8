// CriticalSection and LockGuard: a lock of the seam that lives as long as its owner, held for the length of a block.
//
// Only calls of the seam, so that the product and the simulation share this header: the simulation sees each wait for a
// lock.
#pragma once

#include <windows.h>

#include <atomic>

// Recursive. It is neither copied nor moved, since the system knows it by its address. It must be free when it goes.
class CriticalSection {
public:
    CriticalSection() { InitializeCriticalSection(&section); }
    ~CriticalSection() { DeleteCriticalSection(&section); }
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;

#ifndef NDEBUG
    bool IsHeldByThisThread() const { return owner == GetCurrentThreadId(); }
#endif

private:
    friend class LockGuard;

    void Enter() {
        EnterCriticalSection(&section);
#ifndef NDEBUG
        owner = GetCurrentThreadId();
        ++depth;
#endif
    }
    void Leave() {
#ifndef NDEBUG
        if (--depth == 0) {
            owner = 0;
        }
#endif
        LeaveCriticalSection(&section);
    }

    CRITICAL_SECTION section;
#ifndef NDEBUG
    std::atomic<DWORD> owner = 0;  // 0 while the lock is free; no thread has that id
    int depth = 0;
#endif
};

// Waits for the lock where it is declared and lets go at the end of the block.
class [[nodiscard]] LockGuard {
public:
    explicit LockGuard(CriticalSection& lock) : lock(lock) { lock.Enter(); }
    ~LockGuard() { lock.Leave(); }
    LockGuard(const LockGuard&) = delete;
    LockGuard& operator=(const LockGuard&) = delete;

private:
    CriticalSection& lock;
};
