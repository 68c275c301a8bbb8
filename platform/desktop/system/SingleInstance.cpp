// The first copy holds a lock on a file in the runtime folder, and listens on a socket beside it. Other copies ask there.
#include "SingleInstance.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <QApplication>
#include <QLocalServer>
#include <QLocalSocket>
#include <QWidget>
#include <cerrno>
#include <memory>

#include "Desktop.h"
#include "Handles.h"
#include "RuntimeFolder.h"
#include "Text.h"

namespace desktop {

namespace {

// A copy that is stopped or busy must not keep a new one waiting for longer than a second in all, nor be kept by one.
constexpr int kFindLimitMs = 700;
constexpr int kForwardLimitMs = 200;
constexpr int kQuestionLimitMs = 100;

// A question is a line: one of these and the title in UTF-8, since the other copy may run under another code page. The
// answer is a byte if there is such a window, else the connection just ends.
constexpr char kFind = 'F';
constexpr char kForward = 'B';
constexpr int kLongestQuestion = 1024;

// Returns an empty path if no folder can be trusted.
std::string PathOf(const char* name) {
    const std::string folder = kernel::RuntimeFolder();
    return folder.empty() ? std::string() : folder + name;
}

// --- The first copy

// Not destroyed at the end: that would remove the socket's file, which a new copy may have replaced by then.
QLocalServer* server = nullptr;

// The dialog that is open above a disabled window, else the window itself.
HWND EnabledPopupOf(HWND window) {
    for (const ScreenWindow* other : Desktop::Get().TopLevel()) {
        if (other->owner == window && HasStyle(other->handle, WS_VISIBLE)) {
            return EnabledPopupOf(other->handle);
        }
    }
    return window;
}

HWND windowToForward = nullptr;

void CALLBACK BringForward(HWND, UINT, UINT_PTR timer, DWORD) {
    KillTimer(nullptr, timer);
    if (!IsWindow(windowToForward)) {
        return;
    }
    BringWindowToTop(windowToForward);
    ShowWindow(windowToForward, SW_SHOWNORMAL);
    HWND popup = EnabledPopupOf(windowToForward);
    SetForegroundWindow(popup);
    // Where the window system keeps the focus where it is, the window at least asks for attention.
    if (const ScreenWindow* shown = Desktop::Get().Find(popup)) {
        QApplication::alert(shown->widget);
    }
}

bool DoesAnswer(const QString& question) {
    for (const ScreenWindow* window : Desktop::Get().TopLevel()) {
        if (ToQString(window->text) == question.mid(1)) {
            if (question.startsWith(kForward)) {
                // Questions arrive among the window system's events, where no procedure of the program may run. The message
                // of a timer waits for the program's own loop.
                windowToForward = window->handle;
                SetTimer(nullptr, 0, 0, BringForward);
            }
            return true;
        }
    }
    return false;
}

void Answer() {
    while (const auto socket = std::unique_ptr<QLocalSocket>(server->nextPendingConnection())) {
        socket->setReadBufferSize(kLongestQuestion);
        if (socket->waitForReadyRead(kQuestionLimitMs) && socket->canReadLine() &&
            DoesAnswer(QString::fromUtf8(socket->readLine().chopped(1)))) {
            socket->putChar('Y');
            socket->flush();
        }
    }
}

// --- The lock

class Lock final : public kernel::KernelObject {
public:
    explicit Lock(int file) : KernelObject(kernel::Kind::kMutex), file(file) {}
    ~Lock() override { close(file); }

private:
    const int file;  // or -1
};

// --- The copies that ask

QString foundTitle;

bool Ask(char question, int limitMs) {
    QLocalSocket socket;
    socket.connectToServer(QString::fromStdString(PathOf("/socket")));
    if (socket.state() != QLocalSocket::ConnectedState) {
        return false;
    }
    socket.write(question + foundTitle.toUtf8() + '\n');
    socket.flush();
    return socket.waitForReadyRead(limitMs);
}

}  // namespace

bool AskForOtherCopy(const std::string& title) {
    foundTitle = ToQString(title);
    return !title.empty() && server == nullptr && Ask(kFind, kFindLimitMs);
}

BOOL BringOtherCopyForward() {
    return Ask(kForward, kForwardLimitMs);
}

}  // namespace desktop

HANDLE CreateMutexA(LPSECURITY_ATTRIBUTES, BOOL, LPCSTR) {
    // The lock belongs to the open file, so that it goes with the process, however that ends.
    const int file = open(desktop::PathOf("/lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    const bool isFirst = flock(file, LOCK_EX | LOCK_NB) == 0;
    // If locking fails, another copy cannot be detected. The program starts all the same.
    const bool existed = !isFirst && errno == EWOULDBLOCK;
    HANDLE handle = kernel::AddHandle(kernel::Ref<kernel::KernelObject>(new desktop::Lock(file)));
    if (isFirst) {
        // A socket that is there belongs to a copy that has ended.
        const QString path = QString::fromStdString(desktop::PathOf("/socket"));
        delete desktop::server;
        QLocalServer::removeServer(path);
        desktop::server = new QLocalServer;
        desktop::server->listen(path);
        QObject::connect(desktop::server, &QLocalServer::newConnection, desktop::Answer);
    }
    SetLastError(existed ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
    return handle;
}
