// The entry of programs with windows.
#pragma once

// Makes the desktop, runs the body with what is left of the arguments, and takes the desktop down again. Gives the body's
// result, or 1, with a word on standard error, where there is no display.
int RunWithDesktop(int argc, char** argv, int (*body)(int argc, char** argv));
