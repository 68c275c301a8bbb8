// A copy of a program in a process of its own, which does no more than to have windows.
#pragma once

// The test program with this option and a title is such a copy. If it is the first, it has a minimized window of that title
// with a dialog and a box on that; it writes a line when it may be asked for it, and another when the box has come forward.
// It ends with its standard input.
inline constexpr char kOtherCopyOption[] = "--other-copy";

int RunOtherCopy(int argc, char** argv);
