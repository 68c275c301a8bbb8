// The other copy of the program: found by its window's title, and brought forward.
#pragma once

#include <windows.h>

#include <string>

namespace desktop {

// A handle that stands for the main window of a copy that runs in another process.
bool IsOtherCopy(HWND window);
HWND OtherCopy();
// Asks a running copy whether its main window bears the title.
bool AskForOtherCopy(const std::string& title);
BOOL BringOtherCopyForward();
// From now on this process answers for its windows.
void AnswerOtherCopies();

}  // namespace desktop
