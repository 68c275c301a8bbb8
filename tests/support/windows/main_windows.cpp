// The window tests as a Windows program.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <io.h>
#include <stdio.h>
#include <windows.h>

#include "Harness.h"

void ClearRegistry(const char* key) {
    RegDeleteTreeA(HKEY_LOCAL_MACHINE, key);
}

int main(int argc, char** argv) {
    // Line ends as ctest expects them, which reads the list of tests from here.
    _setmode(_fileno(stdout), _O_BINARY);
    // Nor shall a window that opens below the mouse hear of it.
    SetCursorPos(GetSystemMetrics(SM_CXSCREEN) - 1, GetSystemMetrics(SM_CYSCREEN) - 1);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
