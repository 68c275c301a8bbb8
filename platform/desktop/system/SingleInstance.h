// The other copy of the program: found by its window's title, and brought forward.
#pragma once

#include <windows.h>

#include <string>

namespace desktop {

// A handle that stands for the main window of a copy in another process. A real one has a low word that is not 0.
inline HWND OtherCopy() {
    return reinterpret_cast<HWND>(ULONG_PTR{0x7FFF0000});
}
inline bool IsOtherCopy(HWND window) {
    return window == OtherCopy();
}
// Asks the first copy, if there is another one, for a window of that title. Waits for less than a second.
bool AskForOtherCopy(const std::string& title);
// Of the copy that has been found.
BOOL BringOtherCopyForward();

}  // namespace desktop
