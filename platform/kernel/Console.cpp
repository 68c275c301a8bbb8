// Requests to end the process, from a terminal or from another process.
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

#include "LastError.h"
#include "win/kernel.h"

namespace {

std::atomic<PHANDLER_ROUTINE> consoleHandler{nullptr};
// A signal handler may do next to nothing, so it only writes the signal's number for the thread that may do everything.
int eventPipe[2] = {-1, -1};

void WriteDown(int signal) {
    const int error = errno;
    const auto number = static_cast<unsigned char>(signal);
    [[maybe_unused]] const ssize_t put = write(eventPipe[1], &number, 1);  // A full pipe has requests enough.
    errno = error;
}

void Deliver(int signalNumber) {
    const PHANDLER_ROUTINE handler = consoleHandler.load();
    if (handler(signalNumber == SIGINT ? CTRL_C_EVENT : CTRL_BREAK_EVENT)) {
        return;
    }
    // Ends as if nobody had asked for the signal, so that the parent process sees the reason.
    signal(signalNumber, SIG_DFL);
    kill(getpid(), signalNumber);
}

void* DeliverAll(void*) {
    for (;;) {
        unsigned char number;
        const ssize_t got = read(eventPipe[0], &number, 1);
        if (got == 1) {
            Deliver(number);
        } else if (got == 0 || errno != EINTR) {
            return nullptr;
        }
    }
}

bool StartDelivery() {
    if (pipe2(eventPipe, O_CLOEXEC) != 0) {
        return false;
    }
    // Only the end that the signal handler uses must not block.
    fcntl(eventPipe[1], F_SETFL, O_NONBLOCK);
    pthread_t thread;
    if (pthread_create(&thread, nullptr, DeliverAll, nullptr) != 0) {
        return false;
    }
    pthread_detach(thread);
    struct sigaction action = {};
    action.sa_handler = WriteDown;
    action.sa_flags = SA_RESTART;
    sigfillset(&action.sa_mask);
    return sigaction(SIGINT, &action, nullptr) == 0 && sigaction(SIGTERM, &action, nullptr) == 0;
}

}  // namespace

BOOL SetConsoleCtrlHandler(PHANDLER_ROUTINE handler, BOOL add) {
    if (!handler || !add) {
        return kernel::Unsupported("removing a console handler");
    }
    consoleHandler = handler;
    static const bool started = StartDelivery();
    return started ? TRUE : kernel::Fail(ERROR_NOT_ENOUGH_MEMORY);
}
