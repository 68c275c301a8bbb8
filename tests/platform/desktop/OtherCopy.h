// A copy of a program in a process of its own, which does nothing but to have a window.
#pragma once

// The test program with this option and a title is such a copy. It has a minimized window of that title; it writes a line
// when it may be asked for it, and another when the window has come forward. It ends with its standard input.
inline constexpr char kOtherCopyOption[] = "--other-copy";
inline constexpr char kReadyLine[] = "ready\n";
inline constexpr char kForwardLine[] = "forward\n";

int RunOtherCopy(int argc, char** argv);
