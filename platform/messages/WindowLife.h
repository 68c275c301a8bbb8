// The two ends of a window's life, for whoever sends the messages in between.
#pragma once

#include <windows.h>

// Returns the handle of a new window that has received no message yet, or 0.
HWND MakeWindow(const CREATESTRUCTA& create);

// Sends the last message, WM_NCDESTROY. The handle is stale afterwards.
void EndWindow(HWND window);
