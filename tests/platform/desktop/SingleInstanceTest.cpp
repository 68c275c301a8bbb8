// A second process that looks for the window of the first.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QLocalSocket>
#include <QProcess>
#include <QSocketNotifier>
#include <cstdio>

#include "CodePage.h"
#include "DesktopTests.h"
#include "OtherCopy.h"
#include "RuntimeFolder.h"
#include "SingleInstance.h"

namespace {

void Say(const char* line) {
    std::fputs(line, stdout);
    std::fflush(stdout);
}

}  // namespace

int RunOtherCopy(int, char** argv) {
    HWND window = MakeTopLevel(kernel::FromUtf8(argv[2]).value_or("").c_str());
    ShowWindow(window, SW_MINIMIZE);
    if (!ServeUntil([window] { return IsIconic(window); })) {
        return 1;
    }
    desktop::AnswerOtherCopies();
    bool ended = false;
    const QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [&ended] { ended = true; });
    Say(kReadyLine);
    bool forward = false;
    ServeUntil([&] {
        if (!forward && !IsIconic(window) && GetForegroundWindow() == window) {
            forward = true;
            Say(kForwardLine);
        }
        return ended;
    });
    return 0;
}

namespace {

constexpr int kLimitMs = 10000;

class Copy {
public:
    explicit Copy(const char* title) {
        process.start(QCoreApplication::applicationFilePath(), {kOtherCopyOption, title});
        EXPECT_TRUE(HasWritten(kReadyLine));
    }
    ~Copy() { Crash(); }
    Copy(const Copy&) = delete;
    Copy& operator=(const Copy&) = delete;

    bool HasWritten(const char* line) {
        while (!written.contains(line) && process.waitForReadyRead(kLimitMs)) {
            written += process.readAllStandardOutput();
        }
        return written.contains(line);
    }

    void Crash() {
        process.kill();
        process.waitForFinished();
    }

    void Signal(int number) {
        // To process 0 it would be a signal to this test itself.
        const auto id = static_cast<pid_t>(process.processId());
        ASSERT_GT(id, 0);
        kill(id, number);
    }

private:
    QProcess process;
    QByteArray written;
};

QStringList Sockets() {
    return QDir(QString::fromStdString(kernel::RuntimeFolder())).entryList({"windows-*"}, QDir::System | QDir::Files);
}

// A question takes what crashed copies have left out of the way.
QStringList LivingSockets() {
    desktop::AskForOtherCopy("Nobody's");
    return Sockets();
}

TEST(SingleInstance, AWindowOfAnotherCopyIsFoundByItsTitleAndBroughtForward) {
    EXPECT_EQ(FindWindowExA(nullptr, nullptr, nullptr, "The first copy"), nullptr);
    Copy copy("The first copy");
    EXPECT_EQ(FindWindowExA(nullptr, nullptr, nullptr, "The first"), nullptr);
    EXPECT_EQ(FindWindowExA(nullptr, nullptr, nullptr, ""), nullptr);
    HWND found = FindWindowExA(nullptr, nullptr, nullptr, "The first copy");
    ASSERT_NE(found, nullptr);
    // It is nobody's window here.
    EXPECT_FALSE(IsWindow(found));
    EXPECT_TRUE(SetForegroundWindow(found));
    EXPECT_TRUE(copy.HasWritten(kForwardLine));
}

TEST(SingleInstance, EachOfSeveralCopiesAnswersForItself) {
    Copy one("Titles, in English");
    Copy other("Titles, \xC3\xA9 and all");
    EXPECT_NE(FindWindowExA(nullptr, nullptr, nullptr, "Titles, in English"), nullptr);
    EXPECT_NE(FindWindowExA(nullptr, nullptr, nullptr, "Titles, \xE9 and all"), nullptr);
    EXPECT_TRUE(SetForegroundWindow(desktop::OtherCopy()));
    EXPECT_TRUE(other.HasWritten(kForwardLine));
}

TEST(SingleInstance, ACrashedCopyLeavesNothingThatCounts) {
    const qsizetype before = LivingSockets().size();
    Copy copy("A copy that crashes");
    ASSERT_NE(FindWindowExA(nullptr, nullptr, nullptr, "A copy that crashes"), nullptr);
    copy.Crash();
    EXPECT_EQ(Sockets().size(), before + 1);
    EXPECT_FALSE(SetForegroundWindow(desktop::OtherCopy()));
    EXPECT_EQ(FindWindowExA(nullptr, nullptr, nullptr, "A copy that crashes"), nullptr);
    EXPECT_EQ(Sockets().size(), before);
}

TEST(SingleInstance, AStoppedCopyHoldsNobodyUp) {
    Copy copy("A copy that hangs");
    copy.Signal(SIGSTOP);
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(FindWindowExA(nullptr, nullptr, nullptr, "A copy that hangs"), nullptr);
    EXPECT_LT(timer.elapsed(), 5000);
    copy.Signal(SIGCONT);
    EXPECT_NE(FindWindowExA(nullptr, nullptr, nullptr, "A copy that hangs"), nullptr);
}

TEST(SingleInstance, OnlyTheUserReachesTheSocketAndNonsenseDoesNoHarm) {
    const QStringList before = LivingSockets();
    Copy copy("A copy that is pestered");
    QStringList added = Sockets();
    added.removeIf([&](const QString& name) { return before.contains(name); });
    const QString path = QString::fromStdString(kernel::RuntimeFolder()) + '/' + added.value(0);
    struct stat status{};
    ASSERT_EQ(stat(path.toLocal8Bit().constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 077, 0u);
    for (const QByteArray& nonsense : {QByteArray(100000, 'x'), QByteArray("\0\0\0", 3), QByteArray("Zwhat\0", 6)}) {
        QLocalSocket socket;
        socket.connectToServer(path);
        ASSERT_TRUE(socket.waitForConnected(kLimitMs));
        socket.write(nonsense);
        EXPECT_TRUE(socket.waitForDisconnected(kLimitMs) || socket.state() == QLocalSocket::UnconnectedState);
    }
    EXPECT_NE(FindWindowExA(nullptr, nullptr, nullptr, "A copy that is pestered"), nullptr);
}

TEST(SingleInstance, AProcessDoesNotAskItself) {
    desktop::AnswerOtherCopies();
    EXPECT_EQ(LivingSockets().size(), 1);
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(desktop::AskForOtherCopy("Nobody's"));
    EXPECT_LT(timer.elapsed(), 400);
}

}  // namespace
