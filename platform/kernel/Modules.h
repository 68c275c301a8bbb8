// The libraries that stand behind LoadLibraryA: parts of the layer itself.
#pragma once

#include "win/resources.h"

namespace kernel {

// From now on LoadLibraryA finds a library of that name (without a path, in capital or small letters), and GetProcAddress
// the function by its ordinal. More ordinals for the same name add up. Any thread.
void RegisterLibrary(LPCSTR name, WORD ordinal, FARPROC function);

}  // namespace kernel
