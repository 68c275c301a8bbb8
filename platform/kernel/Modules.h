// The library that stands behind LoadLibraryA: a part of the layer itself.
#pragma once

#include "win/resources.h"

namespace kernel {

// From now on LoadLibraryA finds a library of that name (without a path, in capital or small letters), which stays, and
// GetProcAddress its one function by the ordinal. Before the program begins.
void RegisterLibrary(LPCSTR name, WORD ordinal, FARPROC function);

}  // namespace kernel
