// The serial port of the link on pseudo terminals: its reader is a real thread.
#include "SerialPort.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <atomic>
#include <set>
#include <string>
#include <vector>

#include "EndToEndTest.h"
#include "Lock.h"

namespace {

// Notes what it receives. While it is held, it stands in OnReceive.
class RecordingPort : public SerialPort {
public:
    ~RecordingPort() override {
        held = false;
        Close();
        for (char* chunk : taken) {
            LocalFree(chunk);
        }
    }

    void OnReceive(char*& chunk, DWORD length) override {
        {
            LockGuard guard(lock);
            chunks.emplace_back(chunk, length);
            terminated = terminated && chunk[length] == '\0';
            if (takesOver) {
                taken.push_back(chunk);
                chunk = nullptr;
            }
        }
        WaitUntil([this] { return !held; });
    }

    std::vector<std::string> Chunks() const {
        LockGuard guard(lock);
        return chunks;
    }

    // Waits until all that came is this.
    bool Receives(const std::string& bytes) const {
        return WaitUntil([&] {
            std::string all;
            for (const std::string& chunk : Chunks()) {
                all += chunk;
            }
            return all == bytes;
        });
    }

    std::atomic<bool> held = false;
    std::atomic<bool> takesOver = false;
    std::atomic<bool> terminated = true;  // there was a NUL behind each chunk
    std::vector<char*> taken;             // for the test to look at once the reader has ended

private:
    mutable CriticalSection lock;
    std::vector<std::string> chunks;
};

class SerialPortTest : public EndToEndTest {
protected:
    SerialPortTest() {
        LinkPort("COM1", first.Path());
        LinkPort("COM2", second.Path());
    }

    static bool WriteAll(SerialPort& port, const std::string& bytes) {
        DWORD written = 0;
        const auto length = static_cast<DWORD>(bytes.size());
        return port.Write(bytes.data(), length, written) != FALSE && written == length;
    }

    Terminal first;
    Terminal second;
};

TEST_F(SerialPortTest, ClosesWhatIsOpenBeforeItOpens) {
    RecordingPort port;
    ASSERT_TRUE(port.Open("COM1"));
    ASSERT_TRUE(port.StartReader());
    // A port is open once only, so its own old handle would be in the way.
    ASSERT_TRUE(port.Open("COM1"));
    ASSERT_TRUE(port.StartReader());
    RecordingPort other;
    EXPECT_FALSE(other.Open("COM1"));
    ASSERT_TRUE(port.Open("COM2"));
    EXPECT_TRUE(other.Open("COM1"));
    ASSERT_TRUE(port.StartReader());
    second.Send("second");
    EXPECT_TRUE(port.Receives("second"));

    EXPECT_FALSE(port.Open("COM5"));
    EXPECT_FALSE(port.IsOpen());
    EXPECT_TRUE(other.Open("COM2")) << "a failed opening has closed the old port, too";
}

TEST_F(SerialPortTest, SetsUpTheLineOrLeavesItAsItWas) {
    // Opened first, since the port keeps everybody else out.
    const int look = open(first.Path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_GE(look, 0);
    const auto speed = [look] {
        termios settings = {};
        return tcgetattr(look, &settings) == 0 ? cfgetospeed(&settings) : speed_t{B0};
    };
    RecordingPort port;
    EXPECT_FALSE(port.Configure(19200, NOPARITY, ONESTOPBIT)) << "nothing is open";
    ASSERT_TRUE(port.Open("COM1"));
    EXPECT_TRUE(port.Configure(19200, NOPARITY, ONESTOPBIT));
    EXPECT_EQ(speed(), speed_t{B19200});
    // Even parity and two stop bits: the layer has neither, and takes nothing of what it cannot do whole.
    constexpr BYTE kEvenParity = 2;
    constexpr BYTE kTwoStopBits = 2;
    EXPECT_TRUE(port.Configure(4800, kEvenParity, ONESTOPBIT));
    EXPECT_TRUE(port.Configure(4800, NOPARITY, kTwoStopBits));
    EXPECT_EQ(speed(), speed_t{B19200});
    ASSERT_TRUE(port.Configure(4800, NOPARITY, ONESTOPBIT));
    ASSERT_TRUE(port.StartReader());
    EXPECT_EQ(speed(), speed_t{B4800}) << "the reader's start keeps to it";
    close(look);
}

TEST_F(SerialPortTest, HasOneReaderHoweverOftenItIsStarted) {
    RecordingPort port;
    ASSERT_TRUE(port.Open("COM1"));
    ASSERT_TRUE(port.StartReader());
    const std::size_t withReader = CountThreads();
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(port.StartReader());
    }
    EXPECT_TRUE(WaitUntil([&] { return CountThreads() == withReader; }, kThreadEndLimit)) << CountThreads() - withReader;
    first.Send("still read");
    EXPECT_TRUE(port.Receives("still read"));
    port.StopReader();
    EXPECT_TRUE(WaitUntil([&] { return CountThreads() == withReader - 1; }, kThreadEndLimit));
    EXPECT_TRUE(port.IsOpen());
}

TEST_F(SerialPortTest, GivesInOneChunkWhatCameWhileTheReceiverWasBusy) {
    // Opened first, since the port keeps everybody else out.
    const int look = open(first.Path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_GE(look, 0);
    const auto arrived = [&] {
        int count = 0;
        return ioctl(look, FIONREAD, &count) == 0 ? count : -1;
    };
    RecordingPort port;
    port.held = true;
    ASSERT_TRUE(port.Open("COM1"));
    ASSERT_TRUE(port.StartReader());
    first.Send("a");
    ASSERT_TRUE(port.Receives("a"));
    first.Send("bc");
    first.Send(std::string("d\0e", 3));
    ASSERT_TRUE(WaitUntil([&] { return arrived() == 5; })) << arrived();
    port.held = false;
    EXPECT_TRUE(port.Receives(std::string("abcd\0e", 6)));
    EXPECT_EQ(port.Chunks().size(), 2U);
    EXPECT_TRUE(port.terminated);
    close(look);
}

TEST_F(SerialPortTest, LetsTheReceiverKeepTheBuffer) {
    RecordingPort port;
    port.takesOver = true;
    ASSERT_TRUE(port.Open("COM1"));
    ASSERT_TRUE(port.StartReader());
    first.Send("kept");
    ASSERT_TRUE(port.Receives("kept"));
    port.takesOver = false;
    first.Send("+more");
    ASSERT_TRUE(port.Receives("kept+more"));
    port.Close();
    std::string kept;
    for (const char* chunk : port.taken) {
        kept += chunk;
    }
    EXPECT_EQ(kept, "kept");
}

TEST_F(SerialPortTest, DoesNothingWhileItIsClosed) {
    RecordingPort port;
    port.Close();
    port.StopReader();
    EXPECT_FALSE(port.Configure(9600, NOPARITY, ONESTOPBIT));
    EXPECT_FALSE(port.StartReader());
    EXPECT_FALSE(WriteAll(port, "x"));
    ASSERT_TRUE(port.Open("COM1"));
    EXPECT_TRUE(WriteAll(port, "after the opening"));
    EXPECT_EQ(first.Receive(17), "after the opening");
    ASSERT_TRUE(port.StartReader());
    port.Close();
    port.Close();
    EXPECT_FALSE(port.IsOpen());
    EXPECT_FALSE(WriteAll(port, "x"));
    EXPECT_EQ(first.Receive(0), "");
}

}  // namespace
