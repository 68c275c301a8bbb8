// GetLastError and what leads to it.
#include "LastError.h"

#include <cassert>
#include <cerrno>
#include <cstdio>

namespace {

thread_local DWORD tLastError = ERROR_SUCCESS;

}  // namespace

DWORD GetLastError() {
    return tLastError;
}

void SetLastError(DWORD error) {
    tLastError = error;
}

namespace kernel {

DWORD ErrorFromErrno(int error) {
    switch (error) {
        case 0: return ERROR_SUCCESS;
        case ENOENT:
        case ENXIO:
        case ENODEV: return ERROR_FILE_NOT_FOUND;
        case ENOTDIR:
        case ELOOP:
        case ENAMETOOLONG: return ERROR_PATH_NOT_FOUND;
        case EACCES:
        case EPERM:
        case EROFS:
        case EISDIR:
        case EBUSY:
        case EBADF: return ERROR_ACCESS_DENIED;  // EBADF: read of a file that is open for writing alone, or the reverse.
        case ETXTBSY: return ERROR_SHARING_VIOLATION;
        case EEXIST: return ERROR_FILE_EXISTS;
        case ENOSPC:
        case EDQUOT:
        case EFBIG: return ERROR_DISK_FULL;
        case ENOMEM:
        case EAGAIN:
        case EMFILE:
        case ENFILE: return ERROR_NOT_ENOUGH_MEMORY;
        case EINVAL:
        case EFAULT: return ERROR_INVALID_PARAMETER;
        default: return ERROR_GEN_FAILURE;
    }
}

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
