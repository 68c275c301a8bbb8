// The other copy of the program. Each process with windows listens on a socket of its own in the user's runtime folder;
// whoever looks for a window of another process asks all of them.
#include "SingleInstance.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <QRandomGenerator>
#include <QTimer>
#include <QWidget>
#include <algorithm>
#include <memory>
#include <vector>

#include "Desktop.h"
#include "RuntimeFolder.h"
#include "Text.h"

namespace desktop {

namespace {

constexpr char kSocketPrefix[] = "windows-";
constexpr int kMostCopies = 64;
constexpr int kLongestTitle = 1024;

// A copy that is stopped or busy must not keep a new one from starting.
constexpr int kAskLimitMs = 700;
constexpr int kAskPollMs = 5;
constexpr int kForwardLimitMs = 500;
constexpr int kIdleConnectionMs = 2000;

// A question is one byte, the title in UTF-8 (the other copy may run under another code page) and a zero byte. The answer is
// one byte.
constexpr char kFind = 'F';
constexpr char kForward = 'B';
constexpr char kYes = 'Y';
constexpr char kNo = 'N';

// Never the handle of a window, whose low word is not 0.
constexpr ULONG_PTR kOtherCopy = 0x7FFF0000;

// Of the copy that answered last that the window is there.
QString& FoundSocket() {
    static QString& socket = *new QString;
    return socket;
}
QByteArray& FoundQuestion() {
    static QByteArray& question = *new QByteArray;
    return question;
}

QByteArray Question(char kind, const std::string& title) {
    return QByteArray(1, kind) + ToQString(title).toUtf8() + QByteArray(1, '\0');
}

HWND FindOwn(const std::string& title) {
    for (const ScreenWindow* window : Desktop::Get().TopLevel()) {
        if (window->text == title) {
            return window->handle;
        }
    }
    return nullptr;
}

// --- The side that answers

constexpr char kForwardClass[] = "TesseliaOtherCopies";
// To the message-only window below: wParam is the window to bring forward. It is posted, since the question arrives among
// the window system's events, where no procedure of the program may run.
constexpr UINT kBringForward = WM_USER;

// The window that stands in for a disabled one, because its dialog is open; else the window itself.
HWND EnabledPopupOf(HWND window) {
    for (const ScreenWindow* other : Desktop::Get().TopLevel()) {
        if (other->owner == window && HasStyle(other->handle, WS_VISIBLE)) {
            return EnabledPopupOf(other->handle);
        }
    }
    return window;
}

void BringForward(HWND window) {
    if (!IsWindow(window)) {
        return;
    }
    BringWindowToTop(window);
    ShowWindow(window, SW_SHOWNORMAL);
    HWND popup = EnabledPopupOf(window);
    SetForegroundWindow(popup);
    // Where the window system keeps the focus where it is, the window at least asks for attention.
    if (const ScreenWindow* shown = Desktop::Get().Find(popup)) {
        QApplication::alert(shown->widget);
    }
}

LRESULT CALLBACK ForwardProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == kBringForward) {
        BringForward(reinterpret_cast<HWND>(wParam));
        return 0;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

HWND MakeForwardWindow() {
    WNDCLASSEXA forwardClass{};
    forwardClass.cbSize = sizeof forwardClass;
    forwardClass.lpfnWndProc = ForwardProc;
    forwardClass.lpszClassName = kForwardClass;
    RegisterClassExA(&forwardClass);
    return CreateWindowExA(0, kForwardClass, "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
}

class Answers : public QLocalServer {
public:
    explicit Answers(QObject* parent) : QLocalServer(parent), forwardWindow(MakeForwardWindow()) {
        setSocketOptions(QLocalServer::UserAccessOption);
        connect(this, &QLocalServer::newConnection, this, &Answers::Accept);
        const std::string folder = kernel::RuntimeFolder();
        if (!folder.empty()) {
            const QString number = QString::number(QRandomGenerator::system()->generate64(), 16);
            listen(QString::fromStdString(folder) + '/' + kSocketPrefix + number);
        }
    }

private:
    void Accept() {
        while (QLocalSocket* socket = nextPendingConnection()) {
            socket->setReadBufferSize(kLongestTitle + 2);
            connect(socket, &QLocalSocket::readyRead, this, [this, socket] { Read(*socket); });
            connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
            QTimer::singleShot(kIdleConnectionMs, socket, [socket] { socket->abort(); });
            Read(*socket);
        }
    }

    void Read(QLocalSocket& socket) {
        const QByteArray question = socket.peek(kLongestTitle + 2);
        if (question.endsWith('\0') && question.size() > 1) {
            socket.readAll();
            const QString title = QString::fromUtf8(question.constData() + 1);
            const char answer = Answer(question[0], FromQString(title));
            socket.write(&answer, 1);
            // Now: the next that this thread does may be to bring the window forward.
            socket.flush();
            socket.disconnectFromServer();
        } else if (question.size() > kLongestTitle) {
            socket.disconnectFromServer();
        }
    }

    char Answer(char kind, const std::string& title) const {
        HWND window = FindOwn(title);
        if (window != nullptr && kind == kForward) {
            PostMessageA(forwardWindow, kBringForward, reinterpret_cast<WPARAM>(window), 0);
        }
        return window != nullptr && (kind == kForward || kind == kFind) ? kYes : kNo;
    }

    const HWND forwardWindow;
};

Answers* theAnswers = nullptr;

// --- The side that asks

std::vector<QString> OtherSockets() {
    const std::string path = kernel::RuntimeFolder();
    std::vector<QString> sockets;
    if (path.empty()) {
        return sockets;
    }
    const QDir folder(QString::fromStdString(path));
    const QStringList names = folder.entryList({QString(kSocketPrefix) + '*'}, QDir::System | QDir::Files);
    const QString own = theAnswers != nullptr ? theAnswers->fullServerName() : QString();
    for (const QString& name : names) {
        if (folder.filePath(name) != own && sockets.size() < kMostCopies) {
            sockets.push_back(folder.filePath(name));
        }
    }
    return sockets;
}

std::unique_ptr<QLocalSocket> Ask(const QString& path, const QByteArray& question) {
    auto socket = std::make_unique<QLocalSocket>();
    socket->connectToServer(path);
    if (socket->error() == QLocalSocket::ConnectionRefusedError) {
        // Nobody listens: the copy has crashed.
        QFile::remove(path);
    }
    if (socket->state() != QLocalSocket::ConnectedState) {
        return nullptr;
    }
    socket->write(question);
    socket->flush();
    return socket;
}

bool HasAnswered(QLocalSocket& socket) {
    return socket.bytesAvailable() > 0 || (socket.waitForReadyRead(kAskPollMs) && socket.bytesAvailable() > 0);
}

bool IsOver(const QLocalSocket& socket) {
    return socket.state() == QLocalSocket::UnconnectedState;
}

// The first whose answer is yes, or null once all have answered otherwise or the time is over.
QLocalSocket* WaitForYes(std::vector<std::unique_ptr<QLocalSocket>>& asked, int limitMs) {
    QElapsedTimer timer;
    timer.start();
    while (!asked.empty() && timer.elapsed() < limitMs) {
        for (std::size_t i = 0; i < asked.size();) {
            char answer = 0;
            const bool answered = HasAnswered(*asked[i]) && asked[i]->getChar(&answer);
            if (answered && answer == kYes) {
                return asked[i].get();
            }
            if (answered || IsOver(*asked[i])) {
                asked.erase(asked.begin() + static_cast<std::ptrdiff_t>(i));
            } else {
                ++i;
            }
        }
    }
    return nullptr;
}

}  // namespace

bool IsOtherCopy(HWND window) {
    return reinterpret_cast<ULONG_PTR>(window) == kOtherCopy;
}

HWND OtherCopy() {
    return reinterpret_cast<HWND>(kOtherCopy);
}

bool AskForOtherCopy(const std::string& title) {
    const QByteArray question = Question(kFind, title);
    if (title.empty() || question.size() > kLongestTitle) {
        return false;
    }
    std::vector<std::unique_ptr<QLocalSocket>> asked;
    for (const QString& path : OtherSockets()) {
        if (auto socket = Ask(path, question)) {
            asked.push_back(std::move(socket));
        }
    }
    const QLocalSocket* found = WaitForYes(asked, kAskLimitMs);
    if (found == nullptr) {
        return false;
    }
    FoundSocket() = found->serverName();
    FoundQuestion() = Question(kForward, title);
    return true;
}

BOOL BringOtherCopyForward() {
    if (FoundSocket().isEmpty()) {
        return FALSE;
    }
    std::vector<std::unique_ptr<QLocalSocket>> asked;
    if (auto socket = Ask(FoundSocket(), FoundQuestion())) {
        asked.push_back(std::move(socket));
    }
    return WaitForYes(asked, kForwardLimitMs) != nullptr;
}

void AnswerOtherCopies() {
    if (theAnswers == nullptr) {
        theAnswers = new Answers(&Desktop::Get());
        QObject::connect(theAnswers, &QObject::destroyed, [] { theAnswers = nullptr; });
    }
}

}  // namespace desktop
