// The table of live handles.
//
// A handle is the number of a slot and the slot's generation, so that a stale handle is recognised instead of reaching the
// slot's next object. Like on Windows it is a multiple of four that fits in 32 bits.
#pragma once

#include "KernelObject.h"
#include "win/kernel.h"

namespace kernel {

// Gives a new handle that owns the reference, or 0 with ERROR_NOT_ENOUGH_MEMORY when 16,384 handles are open. An empty
// reference, which is what an allocation that failed leaves behind, gives the same.
HANDLE AddHandle(Ref<KernelObject> object);

// The object of a handle if it is of that kind, else none, with ERROR_INVALID_HANDLE. Any thread, any value.
Ref<KernelObject> FindHandle(HANDLE handle, Kind kind);

template <class T>
Ref<T> FindHandle(HANDLE handle) {
    return Ref<T>(static_cast<T*>(FindHandle(handle, T::kKind).Detach()));
}

}  // namespace kernel
