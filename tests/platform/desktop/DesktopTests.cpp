// Runs the tests on a desktop without a screen, or the other copy of a program for one of them.
#include "DesktopTests.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTimer>
#include <cstdio>
#include <cstring>

#include "CodePage.h"
#include "OtherCopy.h"
#include "RunWithDesktop.h"

bool ServeUntil(const std::function<bool()>& condition) {
    constexpr qint64 kLimitMs = 10000;
    QElapsedTimer timer;
    timer.start();
    // Wakes the wait for messages, so that a condition that none announces is seen as well.
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, [] { PostMessageA(GetDesktopWindow(), WM_NULL, 0, 0); });
    tick.start(5);
    MSG message;
    while (!condition()) {
        if (timer.elapsed() > kLimitMs || GetMessageA(&message, nullptr, 0, 0) <= 0) {
            return false;
        }
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    return true;
}

HWND MakeTopLevel(const char* title, HMENU menu) {
    WNDCLASSEXA windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = DefWindowProcA;
    windowClass.lpszClassName = "DesktopTest";
    RegisterClassExA(&windowClass);
    return CreateWindowExA(0, "DesktopTest", title, WS_OVERLAPPEDWINDOW | WS_VISIBLE, 50, 50, 300, 200, nullptr, menu,
                           nullptr, nullptr);
}

namespace {

int RunTests(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

}  // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    if (argc == 3 && std::strcmp(argv[1], kOtherCopyOption) == 0) {
        return RunWithDesktop(argc, argv, RunOtherCopy);
    }
    // For sockets, settings and what Qt remembers of its dialogs.
    const QTemporaryDir folder;
    qputenv("TESSELIA_RUNTIME_DIR", folder.path().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", folder.path().toLocal8Bit());
    kernel::SetCodePage(kernel::kWesternPage);
    return RunWithDesktop(argc, argv, RunTests);
}
