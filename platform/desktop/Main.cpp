// Where a program with a WinMain begins.
#include <windows.h>

#include "RunWithDesktop.h"
#include "SessionEnd.h"

namespace {

int RunProgram(int, char**) {
    desktop::FollowSessionEnd();
    char noCommandLine[] = "";
    return WinMain(GetModuleHandleA(nullptr), nullptr, noCommandLine, SW_SHOWNORMAL);
}

}  // namespace

int main(int argc, char** argv) {
    return RunWithDesktop(argc, argv, RunProgram);
}
