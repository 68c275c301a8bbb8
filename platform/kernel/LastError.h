// The error code of the last failed call, for the layer's own use.
#pragma once

#include "win/kernel.h"

namespace kernel {

// Sets the last error. Gives FALSE, so that a failing call ends with `return Fail(...)`.
BOOL Fail(DWORD error);

// For a call that Windows would serve and this layer does not: says so on standard error and stops a debug build; a release
// build sees ERROR_INVALID_PARAMETER. Gives FALSE.
BOOL Unsupported(const char* what);

}  // namespace kernel
