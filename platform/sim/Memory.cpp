// Memory of the process.
#include <windows.h>

#include <cstdlib>

#include "Scheduler.h"

HLOCAL LocalAlloc(UINT flags, SIZE_T bytes) {
    sim::Scheduler* scheduler = sim::Scheduler::Current();
    void* block = nullptr;
    if (scheduler == nullptr || !scheduler->AllocationFails()) {
        const SIZE_T size = bytes == 0 ? 1 : bytes;  // a block of no bytes is a block all the same
        block = (flags & LMEM_ZEROINIT) != 0 ? std::calloc(1, size) : std::malloc(size);
    }
    if (block == nullptr) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    }
    return block;
}

HLOCAL LocalFree(HLOCAL block) {
    std::free(block);
    return nullptr;
}
