// Memory of the process.
#include <windows.h>

#include <cstdlib>

HLOCAL LocalAlloc(UINT flags, SIZE_T bytes) {
    const SIZE_T size = bytes == 0 ? 1 : bytes;  // a block of no bytes is a block all the same
    return (flags & LMEM_ZEROINIT) != 0 ? std::calloc(1, size) : std::malloc(size);
}

HLOCAL LocalFree(HLOCAL block) {
    std::free(block);
    return nullptr;
}
