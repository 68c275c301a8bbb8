// Where the tests of the contract run: the one of the two sources that is linked decides.
#pragma once

#include <functional>

// Runs the body on a thread of the program until it ends: once on the kernel, under several seeds in the simulation. The
// body leaves nothing behind.
void RunProgram(const std::function<void()>& body);
