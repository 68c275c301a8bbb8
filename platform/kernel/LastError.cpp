// GetLastError and what leads to it.
#include "LastError.h"

#include <cassert>
#include <cstdio>

namespace {

thread_local DWORD lastError = ERROR_SUCCESS;

}  // namespace

DWORD GetLastError() {
    return lastError;
}

void SetLastError(DWORD error) {
    lastError = error;
}

namespace kernel {

BOOL Fail(DWORD error) {
    SetLastError(error);
    return FALSE;
}

BOOL Unsupported(const char* what) {
    std::fprintf(stderr, "the layer does not support this: %s\n", what);
    assert(!"a call that the layer does not support");
    return Fail(ERROR_INVALID_PARAMETER);
}

}  // namespace kernel
