// Blocks of memory.
#include <cstdlib>

#include "LastError.h"
#include "win/kernel.h"

HLOCAL LocalAlloc(UINT flags, SIZE_T bytes) {
    if ((flags & ~LPTR) != 0) {
        kernel::Unsupported("movable memory");
        return nullptr;
    }
    // A block of no bytes is a block all the same: 0 means failure.
    const SIZE_T size = bytes == 0 ? 1 : bytes;
    void* block = (flags & LMEM_ZEROINIT) != 0 ? std::calloc(1, size) : std::malloc(size);
    if (!block) {
        kernel::Fail(ERROR_NOT_ENOUGH_MEMORY);
    }
    return block;
}

HLOCAL LocalFree(HLOCAL block) {
    std::free(block);
    return nullptr;
}
