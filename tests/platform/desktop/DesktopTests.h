// What several tests of the desktop need.
#pragma once

#include <windows.h>

#include <functional>

// Serves messages until the condition holds; false if it does not within ten seconds.
bool ServeUntil(const std::function<bool()>& condition);

// A visible window without a procedure of its own.
HWND MakeTopLevel(const char* title, HMENU menu = nullptr);
