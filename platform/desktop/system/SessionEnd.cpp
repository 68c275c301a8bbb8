#include "SessionEnd.h"

#include <fcntl.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QEvent>
#include <QSocketNotifier>
#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>

#include "Desktop.h"

namespace desktop {

namespace {

std::array<int, 2> signalPipe;  // to read from, to write to

void OnSignal(int) {
    const int before = errno;
    [[maybe_unused]] const ssize_t written = write(signalPipe[1], "", 1);
    errno = before;
}

void CALLBACK EndSession(HWND, UINT, UINT_PTR timer, DWORD) {
    KillTimer(nullptr, timer);
    const std::vector<HWND> windows = HandlesOf(Desktop::Get().TopLevel());
    const bool ends = std::all_of(windows.begin(), windows.end(), [](HWND window) {
        return !IsWindow(window) || SendMessageA(window, WM_QUERYENDSESSION, 0, 0) != 0;
    });
    for (HWND window : windows) {
        if (IsWindow(window)) {
            SendMessageA(window, WM_ENDSESSION, ends, 0);
        }
    }
}

// Among the window system's events no procedure of the program may run. The message of a timer waits for its own loop.
void Announce() {
    SetTimer(nullptr, 0, 0, EndSession);
}

// What the session manager tells at the end becomes this event.
class QuitFilter : public QObject {
public:
    using QObject::QObject;
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() != QEvent::Quit) {
            return false;
        }
        Announce();
        return true;
    }
};

}  // namespace

void FollowSessionEnd() {
    QCoreApplication* application = QCoreApplication::instance();
    application->installEventFilter(new QuitFilter(application));
    if (pipe2(signalPipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        return;
    }
    const auto* notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, application);
    QObject::connect(notifier, &QSocketNotifier::activated, application, [] {
        std::array<char, 16> bytes;
        if (read(signalPipe[0], bytes.data(), bytes.size()) > 0) {
            Announce();
        }
    });
    for (const int signal : {SIGTERM, SIGHUP, SIGINT}) {
        struct sigaction action{};
        // Who has started the program may want it to outlive a terminal.
        if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN) {
            action.sa_handler = OnSignal;
            action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
            sigaction(signal, &action, nullptr);
        }
    }
}

}  // namespace desktop
