// The error of a thread's last call.
#include <windows.h>

#include "Scheduler.h"

DWORD GetLastError() {
    return sim::Self().lastError;
}

void SetLastError(DWORD error) {
    sim::Self().lastError = error;
}
