// The slot of thread-local storage. It belongs to the process: a program takes it once, in a static variable, and uses it in
// every run.
#include "FiberLocalStorage.h"

#include <windows.h>

#include "Scheduler.h"

namespace {

PFLS_CALLBACK_FUNCTION slotCallback = nullptr;

}  // namespace

void sim::fiberlocals::ThreadEnds() {
    constexpr int kMostPasses = 4;
    for (int pass = 0; pass < kMostPasses && Self().localStorage != nullptr; ++pass) {
        // The callback still finds its own value, as on Windows, and the slot is empty afterwards.
        LPVOID value = Self().localStorage;
        slotCallback(value);
        if (Self().localStorage == value) {
            Self().localStorage = nullptr;
        }
    }
}

DWORD FlsAlloc(PFLS_CALLBACK_FUNCTION callback) {
    slotCallback = callback;
    return 0;
}

LPVOID FlsGetValue(DWORD) {
    return sim::Self().localStorage;
}

BOOL FlsSetValue(DWORD, LPVOID value) {
    sim::Self().localStorage = value;
    return TRUE;
}
