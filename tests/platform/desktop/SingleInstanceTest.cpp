// Copies of a program in several processes, of which one is the first.
#include "SingleInstance.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLocalSocket>
#include <QProcess>
#include <QSocketNotifier>
#include <cstdio>

#include "CodePage.h"
#include "DesktopTests.h"
#include "OtherCopy.h"
#include "RuntimeFolder.h"

namespace {

constexpr char kReadyLine[] = "ready\n";
constexpr char kForwardLine[] = "forward\n";
constexpr int kLimitMs = 10000;

void Say(const char* line) {
    std::fputs(line, stdout);
    std::fflush(stdout);
}

HWND Find(const char* title) {
    return FindWindowExA(nullptr, nullptr, nullptr, title);
}

HWND OpenDialog(HWND owner) {
    EnableWindow(owner, FALSE);
    return CreateWindowExA(0, "DesktopTest", "Dialog", WS_POPUP | WS_VISIBLE, 60, 60, 99, 99, owner, nullptr, nullptr,
                           nullptr);
}

}  // namespace

int RunOtherCopy(int, char** argv) {
    CreateMutexA(nullptr, TRUE, "copies");
    if (GetLastError() == ERROR_ALREADY_EXISTS) {
        return 0;
    }
    QElapsedTimer timer;
    timer.start();
    if (Find("Nobody's") != nullptr || timer.elapsed() > 400) {
        return 1;  // it waits for an answer from itself
    }
    HWND window = MakeTopLevel(kernel::FromUtf8(argv[2]).value_or("").c_str());
    HWND box = OpenDialog(OpenDialog(window));
    ShowWindow(window, SW_MINIMIZE);
    HWND elsewhere = MakeTopLevel("Elsewhere");
    if (!ServeUntil([&] { return IsIconic(window) && GetForegroundWindow() == elsewhere; })) {
        return 1;
    }
    bool ended = false;
    const QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [&ended] { ended = true; });
    Say(kReadyLine);
    bool forward = false;
    ServeUntil([&] {
        if (!forward && !IsIconic(window) && GetForegroundWindow() == box) {
            forward = true;
            Say(kForwardLine);
        }
        return ended;
    });
    return 0;
}

namespace {

class Copy {
public:
    explicit Copy(const char* title) { process.start(QCoreApplication::applicationFilePath(), {kOtherCopyOption, title}); }
    ~Copy() { Crash(); }
    Copy(const Copy&) = delete;
    Copy& operator=(const Copy&) = delete;

    // False if it ends without.
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

TEST(SingleInstance, TheFirstCopyIsFoundByItsTitleAndBroughtForward) {
    EXPECT_EQ(Find("Titles, \xE9 and all"), nullptr);
    Copy copy("Titles, \xC3\xA9 and all");
    ASSERT_TRUE(copy.HasWritten(kReadyLine));
    EXPECT_EQ(Find("Titles"), nullptr);
    EXPECT_EQ(Find(""), nullptr);
    HWND found = Find("Titles, \xE9 and all");
    ASSERT_NE(found, nullptr);
    // It is nobody's window here.
    EXPECT_FALSE(IsWindow(found));
    EXPECT_TRUE(SetForegroundWindow(found));
    EXPECT_TRUE(copy.HasWritten(kForwardLine));
}

TEST(SingleInstance, OneOfSeveralIsFirstHoweverCloseTheyStart) {
    Copy copies[] = {Copy("Same"), Copy("Same"), Copy("Same"), Copy("Same")};
    int first = 0;
    for (Copy& copy : copies) {
        first += copy.HasWritten(kReadyLine) ? 1 : 0;
    }
    EXPECT_EQ(first, 1);
    EXPECT_NE(Find("Same"), nullptr);
}

TEST(SingleInstance, ACrashedCopyBlocksNobody) {
    Copy copy("A copy that crashes");
    ASSERT_TRUE(copy.HasWritten(kReadyLine));
    ASSERT_TRUE(ServeUntil([] { return Find("A copy that crashes") != nullptr; })) << "however busy the machine is";
    copy.Crash();
    EXPECT_FALSE(SetForegroundWindow(desktop::OtherCopy()));
    EXPECT_EQ(Find("A copy that crashes"), nullptr);
    Copy next("The next copy");
    ASSERT_TRUE(next.HasWritten(kReadyLine));
    EXPECT_NE(Find("The next copy"), nullptr);
}

TEST(SingleInstance, AStoppedCopyHoldsNobodyUp) {
    Copy copy("A copy that hangs");
    ASSERT_TRUE(copy.HasWritten(kReadyLine));
    copy.Signal(SIGSTOP);
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(Find("A copy that hangs"), nullptr);
    EXPECT_LT(timer.elapsed(), 3000);
    copy.Signal(SIGCONT);
    EXPECT_NE(Find("A copy that hangs"), nullptr);
}

TEST(SingleInstance, NonsenseDoesNoHarm) {
    Copy copy("A copy that is pestered");
    ASSERT_TRUE(copy.HasWritten(kReadyLine));
    for (const QByteArray& nonsense :
         {QByteArray(100000, 'x'), QByteArray("\n"), QByteArray("F\n"), QByteArray("Zwhat\n")}) {
        QLocalSocket socket;
        socket.connectToServer(QString::fromStdString(kernel::RuntimeFolder()) + "/socket");
        ASSERT_TRUE(socket.waitForConnected(kLimitMs));
        socket.write(nonsense);
        EXPECT_TRUE(socket.waitForDisconnected(kLimitMs) || socket.state() == QLocalSocket::UnconnectedState);
    }
    EXPECT_NE(Find("A copy that is pestered"), nullptr);
}

}  // namespace
