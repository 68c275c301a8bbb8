// Runs the whole program, asks its window for an answer every few milliseconds while titles come, and prints how long the
// user's thread kept others waiting, and how long a Stop took in the middle of it.
//
//   delay SECONDS     for run; a main unit has to be on COM1, and the screen is Qt's offscreen
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "AppWindow.h"
#include "RunWithDesktop.h"
#include "Watch.h"
#include "resource.h"

namespace {

constexpr DWORD kPeriodMs = 2;
constexpr DWORD kLookMs = 20;

// Everything that was sent has been served when this returns.
double Answer(HWND window, UINT message, WPARAM wParam) {
    const Watch watch;
    SendMessageA(window, message, wParam, 0);
    return watch.Milliseconds();
}

DWORD WINAPI Ask(LPVOID parameter) {
    const double seconds = *static_cast<double*>(parameter);
    HWND main = nullptr;
    while ((main = FindWindowA(kMainClassName, nullptr)) == nullptr || !IsWindowVisible(main)) {
        Sleep(kLookMs);
    }
    // The titles are on their way.
    Sleep(1000);
    std::vector<double> waits;
    const Watch watch;
    while (watch.Milliseconds() < 1000 * seconds) {
        waits.push_back(Answer(main, WM_NULL, 0));
        Sleep(kPeriodMs);
    }
    const double stop = Answer(main, WM_COMMAND, IDM_STOP);
    std::printf("answer of the window during a fetch | - | median %.2f ms, longest %.1f ms | -\n", Median(waits),
                *std::max_element(waits.begin(), waits.end()));
    std::printf("Stop in the middle of it | about a second at most | %.0f ms | -\n", stop);
    PostMessageA(main, WM_DESTROY, 0, 0);
    return 0;
}

int Run(int argc, char** argv) {
    double seconds = argc == 2 ? std::atof(argv[1]) : 0;
    if (seconds <= 0) {
        std::fprintf(stderr, "delay SECONDS\n");
        return 1;
    }
    HANDLE thread = CreateThread(nullptr, 0, Ask, &seconds, 0, nullptr);
    char noCommandLine[] = "";
    const int result = WinMain(GetModuleHandleA(nullptr), nullptr, noCommandLine, SW_SHOW);
    CloseHandle(thread);
    return result;
}

}  // namespace

int main(int argc, char** argv) {
    return RunWithDesktop(argc, argv, Run);
}
