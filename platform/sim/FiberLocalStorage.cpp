// Slots of thread-local storage. They belong to the process: a program takes its slots once, in static variables, and uses
// them in every run.
#include "FiberLocalStorage.h"

#include <windows.h>

#include <utility>
#include <vector>

#include "Scheduler.h"

namespace {

std::vector<PFLS_CALLBACK_FUNCTION>& Callbacks() {
    static auto& callbacks = *new std::vector<PFLS_CALLBACK_FUNCTION>;
    return callbacks;
}

}  // namespace

void sim::fiberlocals::ThreadEnds() {
    constexpr int kMostPasses = 4;
    for (int pass = 0; pass < kMostPasses && ClearOnce(); ++pass) {}
}

// True if there was anything to clear. By index, since a callback may set a slot again.
bool sim::fiberlocals::ClearOnce() {
    bool any = false;
    for (std::size_t i = 0; i < Self().localStorage.size(); ++i) {
        LPVOID value = std::exchange(Self().localStorage[i], nullptr);
        if (value != nullptr && Callbacks()[i] != nullptr) {
            Callbacks()[i](value);
            any = true;
        }
    }
    return any;
}

DWORD FlsAlloc(PFLS_CALLBACK_FUNCTION callback) {
    Callbacks().push_back(callback);
    return static_cast<DWORD>(Callbacks().size() - 1);
}

LPVOID FlsGetValue(DWORD index) {
    const std::vector<LPVOID>& values = sim::Self().localStorage;
    if (index < values.size()) {
        SetLastError(ERROR_SUCCESS);  // null is a value too
        return values[index];
    }
    SetLastError(index < Callbacks().size() ? ERROR_SUCCESS : ERROR_INVALID_PARAMETER);
    return nullptr;
}

BOOL FlsSetValue(DWORD index, LPVOID value) {
    if (index >= Callbacks().size()) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    std::vector<LPVOID>& values = sim::Self().localStorage;
    if (index >= values.size()) {
        values.resize(index + std::size_t{1});
    }
    values[index] = value;
    return TRUE;
}
