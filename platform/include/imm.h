// The input method.
#pragma once

#include "windows.h"

HIMC ImmGetContext(HWND window);
// Without a context no input method composes in the window any more. Gives the context before.
HIMC ImmAssociateContext(HWND window, HIMC context);
BOOL ImmReleaseContext(HWND window, HIMC context);
