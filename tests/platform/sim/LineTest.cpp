// Serial lines: pace in both directions, and every way for a port to fail.
#include <gtest/gtest.h>
#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "SimTools.h"
#include "Simulation.h"

namespace {

// The end of byte n (from 1) of a transmission at 9600 baud.
constexpr std::uint64_t ByteUs(std::uint64_t count) {
    return (count * 10'000'000 + 9599) / 9600;
}

struct Peer : SerialPeer {
    void OnBytes(std::string_view bytes, std::uint64_t firstByteUs, std::uint64_t lastByteUs) override {
        writes.push_back({std::string(bytes), firstByteUs, lastByteUs, Simulation::Current()->Now()});
        if (answer) {
            answer();
        }
    }

    struct Write {
        std::string bytes;
        std::uint64_t firstUs;
        std::uint64_t lastUs;
        std::uint64_t heardUs;
    };
    std::vector<Write> writes;
    std::function<void()> answer;
};

HANDLE Open(const char* name = "COM1") {
    return CreateFileA(name, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
}

bool Write(HANDLE port, const std::string& bytes) {
    DWORD written = 99;
    const BOOL done = WriteFile(port, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    EXPECT_EQ(written, done ? bytes.size() : 0);
    return done != FALSE;
}

std::size_t Waiting(HANDLE port) {
    DWORD errors = 99;
    COMSTAT status;
    EXPECT_TRUE(ClearCommError(port, &errors, &status));
    EXPECT_EQ(errors, 0U);
    return status.cbInQue;
}

std::string Read(HANDLE port) {
    std::string bytes(Waiting(port), '\0');
    DWORD count = 0;
    EXPECT_TRUE(ReadFile(port, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr));
    EXPECT_EQ(count, bytes.size());
    return bytes;
}

// A run with a line at COM1 whose port is open.
class LineTest : public testing::Test {
protected:
    void Run(const std::function<void()>& main) {
        ExpectDone(simulation, [&] {
            timeBeginPeriod(1);
            port = Open();
            ASSERT_NE(port, INVALID_HANDLE_VALUE);
            main();
            CloseHandle(port);
        });
    }

    void ExpectDead() {
        DWORD errors;
        DWORD count = 99;
        COMSTAT status;
        status.cbInQue = 99;
        DCB state;
        char byte;
        EXPECT_FALSE(ClearCommError(port, &errors, &status));
        EXPECT_EQ(status.cbInQue, 0U);
        EXPECT_FALSE(ReadFile(port, &byte, 1, &count, nullptr));
        EXPECT_EQ(count, 0U);
        EXPECT_FALSE(Write(port, "x"));
        EXPECT_FALSE(GetCommState(port, &state));
    }

    Simulation simulation{{.jitterMs = 0}};
    Peer peer;
    SerialLine& line = simulation.AttachPort("COM1", &peer);
    HANDLE port = nullptr;
};

TEST_F(LineTest, WritesArriveAtThePaceOfTheLineOneBehindTheOther) {
    Run([&] {
        EXPECT_TRUE(Write(port, std::string(96, 'a')));
        EXPECT_TRUE(Write(port, "bc"));
        EXPECT_EQ(simulation.Now(), 0U);
        Sleep(1000);
        EXPECT_TRUE(Write(port, "d"));
        Sleep(100);
    });
    ASSERT_EQ(peer.writes.size(), 3U);
    const Peer::Write expected[] = {
        {std::string(96, 'a'), ByteUs(1), 100 * kMs, 100 * kMs},
        {"bc", ByteUs(97), ByteUs(98), ByteUs(98)},
        {"d", kSecond + ByteUs(1), kSecond + ByteUs(1), kSecond + ByteUs(1)},
    };
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(peer.writes[i].bytes, expected[i].bytes);
        // A microsecond for the rounding of a byte's time.
        EXPECT_NEAR(static_cast<double>(peer.writes[i].firstUs), static_cast<double>(expected[i].firstUs), 1);
        EXPECT_NEAR(static_cast<double>(peer.writes[i].lastUs), static_cast<double>(expected[i].lastUs), 1);
        EXPECT_EQ(peer.writes[i].heardUs, peer.writes[i].lastUs);
    }
}

TEST_F(LineTest, TheBaudRateSetsThePaceOfBothDirections) {
    Run([&] {
        DCB state = {};
        EXPECT_TRUE(GetCommState(port, &state));
        EXPECT_EQ(state.BaudRate, 9600U);
        EXPECT_EQ(state.ByteSize, 8);
        DCB wrong = state;
        wrong.BaudRate = 12345;
        EXPECT_FALSE(SetCommState(port, &wrong));
        wrong = state;
        wrong.fOutxCtsFlow = 1;
        EXPECT_FALSE(SetCommState(port, &wrong));
        state.BaudRate = 19200;
        EXPECT_TRUE(SetCommState(port, &state));
        peer.answer = [&] { line.Send(std::string(192, 'r')); };
        EXPECT_TRUE(Write(port, std::string(192, 'q')));
        Sleep(150);
        EXPECT_EQ(Waiting(port), 96U);
        Sleep(51);
        EXPECT_EQ(Waiting(port), 192U);
        Read(port);
        CloseHandle(port);
        port = Open();
        EXPECT_TRUE(GetCommState(port, &state));
        EXPECT_EQ(state.BaudRate, 9600U);
    });
    ASSERT_EQ(peer.writes.size(), 1U);
    EXPECT_NEAR(static_cast<double>(peer.writes[0].lastUs), 100'000.0, 1);
}

TEST_F(LineTest, APulledPlugKillsThePortAndCutsWhatIsOnItsWay) {
    Run([&] {
        EXPECT_TRUE(Write(port, "abcdef"));
        EXPECT_TRUE(Write(port, "never"));
        line.Send("answer");
        Sleep(4);
        line.Unplug();
        ExpectDead();
        line.Send("lost");
        const HANDLE none = Open();
        EXPECT_EQ(none, INVALID_HANDLE_VALUE);
        EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
        line.Plug();
        ExpectDead();
        CloseHandle(port);
        port = Open();
        ASSERT_NE(port, INVALID_HANDLE_VALUE);
        // While the last bytes of what was cut off would still be under way.
        EXPECT_TRUE(Write(port, "again"));
        Sleep(100);
        EXPECT_EQ(Waiting(port), 0U);
    });
    ASSERT_EQ(peer.writes.size(), 2U);
    EXPECT_EQ(peer.writes[0].bytes, "abc");
    EXPECT_EQ(peer.writes[1].bytes, "again");
    EXPECT_EQ(peer.writes[1].heardUs, peer.writes[1].lastUs);
}

}  // namespace
