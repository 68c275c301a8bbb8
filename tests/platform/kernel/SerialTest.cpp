#include <fcntl.h>
#include <poll.h>
#include <pwd.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <fstream>
#include <utility>
#include <vector>

#include "PortNames.h"
#include "TestSupport.h"
#include "Time.h"
#include "UserFolders.h"

namespace {

namespace fs = std::filesystem;

// The far end of a line: the master of a pseudo terminal.
class FarEnd {
public:
    FarEnd() : file(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
        char name[64] = "";
        EXPECT_GE(file, 0);
        EXPECT_EQ(grantpt(file), 0);
        EXPECT_EQ(unlockpt(file), 0);
        EXPECT_EQ(ptsname_r(file, name, sizeof name), 0);
        device = name;
        // Somebody holds the device as long as the line stands, as a plugged-in adapter does: else the terminal looks hung
        // up to the far end between two openings.
        keeper = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    }
    ~FarEnd() { PullOut(); }
    FarEnd(const FarEnd&) = delete;
    FarEnd& operator=(const FarEnd&) = delete;

    const std::string& Device() const { return device; }
    void PullOut() {
        for (int* open : {&file, &keeper}) {
            if (*open >= 0) {
                close(*open);
            }
            *open = -1;
        }
    }
    void Send(const std::string& bytes) const {
        ASSERT_EQ(write(file, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }
    std::string Receive(std::size_t count) const {
        std::string received;
        WaitUntil([&] {
            char buffer[512];
            const ssize_t got = read(file, buffer, sizeof buffer);
            if (got > 0) {
                received.append(buffer, static_cast<std::size_t>(got));
            }
            return received.size() >= count;
        });
        return received;
    }
    // Sends bytes that wait at the near end, which nobody has opened yet, without an echo.
    void LeaveBehind(const std::string& line) const {
        termios settings = Settings();
        settings.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        ASSERT_EQ(tcsetattr(file, TCSANOW, &settings), 0);
        Send(line);
        ASSERT_TRUE(WaitUntil([&] {
            int waiting = 0;
            return ioctl(keeper, FIONREAD, &waiting) == 0 && waiting == static_cast<int>(line.size());
        }));
    }
    // The settings of the line, as both ends see them.
    termios Settings() const {
        termios settings = {};
        EXPECT_EQ(tcgetattr(file, &settings), 0);
        return settings;
    }

private:
    int file;
    int keeper = -1;
    std::string device;
};

class Serial : public testing::Test {
protected:
    Serial() : configuration("XDG_CONFIG_HOME", folder.Path().c_str()) {
        fs::create_directories(folder.Path() / "tesselia/ports");
        Link("com3", far.Device());
    }
    void TearDown() override {
        if (port != INVALID_HANDLE_VALUE) {
            CloseHandle(port);
        }
    }

    void Link(const char* name, const std::string& device) const {
        fs::create_symlink(device, folder.Path() / "tesselia/ports" / name);
    }
    static HANDLE Open(const char* name) {
        SetLastError(ERROR_SUCCESS);
        return CreateFileA(name, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    }
    void OpenPort() {
        port = Open("COM3");
        ASSERT_NE(port, INVALID_HANDLE_VALUE) << GetLastError();
    }
    DWORD Waiting() const {
        DWORD errors = 7;
        COMSTAT status;
        EXPECT_TRUE(ClearCommError(port, &errors, &status));
        EXPECT_EQ(errors, 0u);
        return status.cbInQue;
    }
    std::string Read(DWORD count) const {
        std::string bytes(count, '\0');
        DWORD read = 0;
        EXPECT_TRUE(ReadFile(port, bytes.data(), count, &read, nullptr));
        return bytes.substr(0, read);
    }
    // Every call fails, at once, and the queue looks empty.
    void ExpectDead() const {
        COMSTAT status;
        status.cbInQue = 7;
        DWORD count = 7;
        char byte = 0;
        DCB state;
        EXPECT_FALSE(ClearCommError(port, nullptr, &status));
        EXPECT_EQ(status.cbInQue, 0u);
        EXPECT_FALSE(ReadFile(port, &byte, 1, &count, nullptr));
        EXPECT_EQ(count, 0u);
        EXPECT_FALSE(WriteFile(port, &byte, 1, &count, nullptr));
        EXPECT_EQ(count, 0u);
        EXPECT_FALSE(GetCommState(port, &state));
    }

    TemporaryFolder folder;
    EnvironmentVariable configuration;
    FarEnd far;
    HANDLE port = INVALID_HANDLE_VALUE;
};

std::string EveryByte() {
    std::string bytes;
    for (int i = 0; i < 256; ++i) {
        bytes += static_cast<char>(i);
    }
    return bytes;
}

TEST_F(Serial, EveryByteComesThroughBothWays) {
    far.LeaveBehind("from before\n");
    OpenPort();
    EXPECT_EQ(Waiting(), 0u);
    const std::string bytes = EveryByte();
    DWORD count = 0;
    EXPECT_TRUE(WriteFile(port, bytes.data(), 256, &count, nullptr));
    EXPECT_EQ(count, 256u);
    EXPECT_EQ(far.Receive(256), bytes);
    far.Send(bytes);
    ASSERT_TRUE(WaitUntil([&] { return Waiting() == 256; }));
    EXPECT_EQ(Read(100), bytes.substr(0, 100));
    EXPECT_EQ(Waiting(), 156u);
    // More than there is gives what there is, without waiting.
    EXPECT_EQ(Read(1000), bytes.substr(100));
    EXPECT_EQ(Waiting(), 0u);
    EXPECT_EQ(Read(10), "");
}

TEST_F(Serial, SettingsAreCheckedSetAndPutBack) {
    const termios before = far.Settings();
    ASSERT_NE(before.c_lflag & ICANON, 0u);
    OpenPort();
    DCB state;
    ASSERT_TRUE(GetCommState(port, &state));
    EXPECT_EQ(state.DCBlength, sizeof(DCB));
    EXPECT_EQ(state.BaudRate, 9600u);
    EXPECT_EQ(state.ByteSize, 8);
    state.BaudRate = 19200;
    state.fRtsControl = 0;
    EXPECT_TRUE(SetCommState(port, &state));
    const termios changed = far.Settings();
    EXPECT_EQ(cfgetospeed(&changed), static_cast<speed_t>(B19200));
    EXPECT_TRUE(GetCommState(port, &state));
    EXPECT_EQ(state.BaudRate, 19200u);
    COMMTIMEOUTS timeouts = {1000, 0, 0, 0, 0};
    EXPECT_TRUE(SetCommTimeouts(port, &timeouts));

    const auto refused = [&](auto change) {
        DCB bad = state;
        change(bad);
        SetLastError(ERROR_SUCCESS);
        return !SetCommState(port, &bad) && GetLastError() == ERROR_INVALID_PARAMETER;
    };
    EXPECT_TRUE(refused([](DCB& bad) { bad.BaudRate = 12345; }));
    EXPECT_TRUE(refused([](DCB& bad) { bad.BaudRate = 0; }));
    EXPECT_TRUE(refused([](DCB& bad) { bad.ByteSize = 7; }));
    EXPECT_TRUE(refused([](DCB& bad) { bad.Parity = 2; }));
    EXPECT_TRUE(refused([](DCB& bad) { bad.StopBits = 2; }));
    EXPECT_TRUE(refused([](DCB& bad) { bad.fOutxCtsFlow = 1; }));
    EXPECT_TRUE(refused([](DCB& bad) { bad.fInX = 1; }));
    EXPECT_TRUE(refused([](DCB& bad) { bad.fRtsControl = 2; }));
    EXPECT_EQ(Waiting(), 0u);

    CloseHandle(std::exchange(port, INVALID_HANDLE_VALUE));
    const termios after = far.Settings();
    EXPECT_EQ(after.c_lflag, before.c_lflag);
    EXPECT_EQ(after.c_iflag, before.c_iflag);
    EXPECT_EQ(cfgetospeed(&after), cfgetospeed(&before));
}

TEST_F(Serial, APortBelongsToOneAtATime) {
    OpenPort();
    EXPECT_EQ(Open("com3"), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    // The one who was refused has not disturbed the one who has it.
    far.Send("x");
    EXPECT_TRUE(WaitUntil([&] { return Waiting() == 1; }));
    CloseHandle(std::exchange(port, INVALID_HANDLE_VALUE));
    OpenPort();
    EXPECT_EQ(Waiting(), 0u);
}

TEST_F(Serial, NamesLeadToDevices) {
    Link("com1", (folder.Path() / "nothing").string());
    std::ofstream(folder.Path() / "file") << "no line";
    Link("com2", (folder.Path() / "file").string());
    Link("com8", far.Device());
    for (const char* missing : {"COM1", "COM2"}) {
        EXPECT_EQ(Open(missing), INVALID_HANDLE_VALUE) << missing;
        EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND) << missing;
    }
    port = Open("CoM8");
    EXPECT_NE(port, INVALID_HANDLE_VALUE);
    EXPECT_EQ(CreateFileA("COM3", GENERIC_READ, 0, nullptr, CREATE_ALWAYS, 0, nullptr), INVALID_HANDLE_VALUE);

    for (const char* none : {"COM0", "COM9", "COM", "COM10", "COM1 ", "LPT1", ""}) {
        EXPECT_EQ(kernel::PortNumber(none), 0) << none;
    }
    EXPECT_EQ(kernel::PortDevice(4), "/dev/ttyS3");
    const EnvironmentVariable noFolder("XDG_CONFIG_HOME", "relative");
    const EnvironmentVariable home("HOME", folder.Path().c_str());
    fs::create_directories(folder.Path() / ".config/tesselia/ports");
    fs::create_symlink(far.Device(), folder.Path() / ".config/tesselia/ports/com4");
    EXPECT_EQ(kernel::PortDevice(4), folder.Path().string() + "/.config/tesselia/ports/com4");
    EXPECT_EQ(kernel::PortDevice(1), "/dev/ttyS0");
    const EnvironmentVariable relative("HOME", "here");
    EXPECT_EQ(kernel::ConfigurationFolder(), std::string(getpwuid(geteuid())->pw_dir) + "/.config");
}

TEST_F(Serial, UsbAdaptersStandInOrderOfTheirNumbers) {
    const std::string devices = folder.Path().string();
    for (const char* name : {"ttyACM0", "ttyUSB10", "ttyUSB2", "ttyUSB", "ttyUSBx", "ttyS0"}) {
        std::ofstream(folder.Path() / name) << "";
    }
    const std::vector<std::string> expected = {devices + "/ttyUSB2", devices + "/ttyUSB10", devices + "/ttyACM0"};
    EXPECT_EQ(kernel::UsbPorts(devices), expected);
    EXPECT_TRUE(kernel::UsbPorts(devices + "/none").empty());
}

TEST_F(Serial, APulledOutDeviceFailsAtOnceAndCostsNothing) {
    OpenPort();
    far.PullOut();
    COMSTAT status;
    EXPECT_TRUE(WaitUntil([&] { return !ClearCommError(port, nullptr, &status); }));
    ExpectDead();
    EXPECT_EQ(GetLastError(), ERROR_GEN_FAILURE);

    // The loop of a reader: a pass that spins or blocks would show on one of the two clocks.
    const auto cpuNs = [] {
        timespec now;
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
        return now.tv_sec * 1'000'000'000 + now.tv_nsec;
    };
    const std::int64_t cpu = cpuNs();
    const std::int64_t start = kernel::MonotonicNs();
    for (int i = 0; i < 10'000; ++i) {
        ASSERT_FALSE(ClearCommError(port, nullptr, &status));
    }
    EXPECT_LT(cpuNs() - cpu, 500 * kernel::kNsPerMs);
    EXPECT_LT(kernel::MonotonicNs() - start, 5000 * kernel::kNsPerMs);
    EXPECT_TRUE(CloseHandle(std::exchange(port, INVALID_HANDLE_VALUE)));
}

TEST_F(Serial, AWriteThatGetsStuckFailsAfterTwoSeconds) {
    OpenPort();
    const std::string bytes(1'000'000, 'x');
    DWORD written = 0;
    const std::int64_t start = kernel::MonotonicNs();
    EXPECT_FALSE(WriteFile(port, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr));
    const std::int64_t end = kernel::MonotonicNs();
    EXPECT_EQ(GetLastError(), ERROR_WRITE_FAULT);
    EXPECT_GE(end - start, 2000 * kernel::kNsPerMs);
    EXPECT_LT(end - start, 10'000 * kernel::kNsPerMs);
    EXPECT_GT(written, 0u);
    EXPECT_LT(written, bytes.size());
    ExpectDead();
    EXPECT_TRUE(CloseHandle(std::exchange(port, INVALID_HANDLE_VALUE)));
    EXPECT_LT(kernel::MonotonicNs() - end, 1500 * kernel::kNsPerMs);
    // Opened anew, the line is as good as ever.
    OpenPort();
    EXPECT_EQ(Waiting(), 0u);
}

struct StuckWrite {
    HANDLE port;
    std::atomic<bool> failed{false};
};

DWORD WINAPI WriteUntilStuck(LPVOID parameter) {
    auto* stuck = static_cast<StuckWrite*>(parameter);
    const std::string bytes(1'000'000, 'x');
    stuck->failed = !WriteFile(stuck->port, bytes.data(), static_cast<DWORD>(bytes.size()), nullptr, nullptr);
    return 0;
}

TEST_F(Serial, ClosingEndsAWriteThatIsStuck) {
    OpenPort();
    StuckWrite stuck{port};
    HANDLE thread = CreateThread(nullptr, 0, WriteUntilStuck, &stuck, 0, nullptr);
    // A byte at the far end shows that the write is under way; the queue of the line is far smaller than the write.
    EXPECT_EQ(far.Receive(1).substr(0, 1), "x");
    EXPECT_TRUE(CloseHandle(std::exchange(port, INVALID_HANDLE_VALUE)));
    EXPECT_EQ(WaitForSingleObject(thread, 1900), WAIT_OBJECT_0);
    EXPECT_TRUE(stuck.failed);
    CloseHandle(thread);
    OpenPort();
}

TEST_F(Serial, WhatWasWrittenBeforeClosingGoesOut) {
    OpenPort();
    // More than the far end takes at a time, so that a part of it is still on its way when the port is closed.
    const std::string bytes(6000, 'x');
    EXPECT_TRUE(WriteFile(port, bytes.data(), static_cast<DWORD>(bytes.size()), nullptr, nullptr));
    EXPECT_TRUE(CloseHandle(std::exchange(port, INVALID_HANDLE_VALUE)));
    EXPECT_EQ(far.Receive(bytes.size()).size(), bytes.size());
}

}  // namespace
