// The program mainunit on a real pseudo terminal.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "EndToEndTest.h"
#include "UnitFrames.h"

namespace mainunit {
namespace {

namespace fs = std::filesystem;

const std::string kModelQuery = std::string("\x11") + "000\x03";

// A client's end of the line.
class Client {
public:
    explicit Client(const std::string& path) : file(open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) {}
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;
    ~Client() {
        if (file >= 0) {
            close(file);
        }
    }

    std::string Ask(const std::string& request) const {
        Tell(request);
        return NextReply();
    }
    // What comes up to the end of a frame, or until the limit.
    std::string NextReply() const {
        std::string bytes;
        pollfd waiting{file, POLLIN, 0};
        char byte = 0;
        while (!bytes.ends_with(kEtx) && poll(&waiting, 1, kLimitMs) == 1 && read(file, &byte, 1) == 1) {
            bytes += byte;
        }
        return bytes;
    }
    void Tell(const std::string& bytes) const {
        EXPECT_EQ(write(file, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }

    int File() const { return file; }

private:
    static constexpr int kLimitMs = 20'000;

    int file;
};

class Program : public Process {
public:
    Program(const std::vector<std::string>& arguments, const std::string& outputs)
        : Process(TESSELIA_BIN "/mainunit", arguments, outputs) {}

    // The path behind "ready: ".
    std::string Path() const {
        EXPECT_TRUE(WaitUntil([this] { return Output().find('\n') != std::string::npos; })) << Errors();
        const std::string output = Output();
        EXPECT_TRUE(output.starts_with("ready: ")) << output;
        return output.size() > 7 ? output.substr(7, output.find('\n') - 7) : "";
    }

    // The exit code, after the signal if one is given.
    int End(int signal = 0) {
        if (signal != 0) {
            Signal(signal);
        }
        return Process::End();
    }
};

class MainUnitProgramTest : public EndToEndTest {
protected:
    Program Start(const std::vector<std::string>& arguments) { return Program(arguments, NextOutputs("mainunit")); }

    const fs::path ports = folder / "ports";
};

TEST_F(MainUnitProgramTest, ServesOneClientAfterTheOtherAndTakesItsLinkAway) {
    Program program = Start({"--link", "COM1", "--model", "C0071", "--quiet"});
    const std::string path = program.Path();
    const fs::path link = folder / "tesselia" / "ports" / "com1";
    ASSERT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(fs::read_symlink(link), path);
    for (int round = 0; round < 3; ++round) {
        const Client client(link);
        ASSERT_GE(client.File(), 0);
        EXPECT_EQ(client.Ask(kModelQuery), ModelReply("C0071"));
    }
    EXPECT_EQ(program.End(SIGTERM), 0);
    EXPECT_FALSE(fs::exists(fs::symlink_status(link)));
}

TEST_F(MainUnitProgramTest, FreesTheLineOfAClientThatTookItForItselfAndWent) {
    Program program = Start({"--quiet"});
    const std::string path = program.Path();
    // Only root can open a terminal that another one has for itself.
    const auto isExclusive = [&] {
        const Client client(path);
        int exclusive = 1;
        return ioctl(client.File(), TIOCGEXCL, &exclusive) != 0 || exclusive != 0;
    };
    {
        const Client client(path);
        ASSERT_EQ(ioctl(client.File(), TIOCEXCL), 0);
        EXPECT_EQ(client.Ask(kModelQuery), ModelReply("C0053"));
    }
    EXPECT_TRUE(WaitUntil([&] { return !isExclusive(); }));
    EXPECT_EQ(program.End(SIGINT), 0);
}

TEST_F(MainUnitProgramTest, ReplacesALeftLinkAndNothingElse) {
    fs::create_directories(ports);
    fs::create_symlink("/dev/pts/gone", ports / "com2");
    Program replaces = Start({"--link", "COM2", "--ports", ports, "--quiet"});
    const std::string first = replaces.Path();
    EXPECT_EQ(fs::read_symlink(ports / "com2"), first);

    std::ofstream(ports / "com3") << "precious";
    Program refuses = Start({"--link", "COM3", "--ports", ports});
    EXPECT_EQ(refuses.End(), 1);
    EXPECT_NE(refuses.Errors().find("leads to no simulated unit"), std::string::npos) << refuses.Errors();
    EXPECT_TRUE(fs::is_regular_file(ports / "com3"));

    // The user's own link to a real port.
    fs::create_symlink("/dev/ttyUSB7", ports / "com4");
    Program spares = Start({"--link", "COM4", "--ports", ports});
    EXPECT_EQ(spares.End(), 1);
    EXPECT_EQ(fs::read_symlink(ports / "com4"), "/dev/ttyUSB7");

    // Another unit takes the name over; the first one leaves the other's link alone when it ends.
    Program takesOver = Start({"--link", "COM2", "--ports", ports, "--quiet"});
    const std::string path = takesOver.Path();
    EXPECT_EQ(replaces.End(SIGTERM), 0);
    EXPECT_EQ(fs::read_symlink(ports / "com2"), path);
}

TEST_F(MainUnitProgramTest, SavesEachTitleThatIsWritten) {
    fs::remove(libraryFile);
    Program program = Start({"--library", libraryFile, "--sample", "--pace", "0", "--log", folder / "dialogue.log"});
    {
        const Client client(program.Path());
        EXPECT_EQ(client.Ask(BlockFrame("0600120300000000")), BlockReply(SubType::kTitleWrite, kAccepted));
        client.Tell(BlockFrame("High Water                      "));
        // The reply to the next request tells that the title has been dealt with.
        EXPECT_EQ(client.Ask(BlockFrame("0500120300000000")),
                  BlockReply(SubType::kTitleRead, kAccepted, "High Water                      "));
    }
    EXPECT_EQ(*Saved().Title({library::GroupKind::kDisc, 12, 3}), "High Water");
    EXPECT_EQ(program.End(SIGTERM), 0);
    const std::string log = ReadFile(folder / "dialogue.log");
    for (const char* line :
         {" > TitleWrite Disc 12 track 3 ", " < TitleWriteReply accepted ", " > TitleData \"High Water\" "}) {
        EXPECT_NE(log.find(line), std::string::npos) << log;
    }
}

TEST_F(MainUnitProgramTest, PassesEveryByteUnchanged) {
    Program program = Start({"--pace", "0", "--log", "-", "--status", "FE,40"});
    const Client client(program.Path());
    // Control bytes that a terminal would act upon: interrupt, end of file, stop, start, suspend, CR and LF.
    client.Tell("\x03\x04\x13\x1A\r\n");
    const std::string status = std::string("\x02") + "52000\x03";
    EXPECT_EQ(client.Ask(status), ShortReply(kStatusReply, 0xFE));
    EXPECT_EQ(client.Ask(status), ShortReply(kStatusReply, 0x40));
    EXPECT_EQ(program.End(SIGTERM), 0);
    std::string dump;
    for (std::istringstream lines(program.Output()); std::getline(lines, dump);) {
        if (dump.find("outside a frame") != std::string::npos) {
            break;
        }
    }
    EXPECT_TRUE(dump.ends_with("  03 04 13 1A 0D 0A")) << program.Output();
}

TEST_F(MainUnitProgramTest, KeepsTheSpeedOfTheLineAndSleepsWhileItWaits) {
    Program program = Start({"--quiet", "--sample", "--latency", "50"});
    const Client client(program.Path());
    constexpr int kRounds = 4;
    const auto start = std::chrono::steady_clock::now();
    for (int round = 0; round < kRounds; ++round) {
        EXPECT_EQ(client.Ask(BlockFrame("0300000000000000")).size(), 262U);
    }
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    // 24 bytes one way, 262 the other at 960 in a second. Only the lower limit can be relied on.
    EXPECT_GE(taken.count(), kRounds * (0.05 + (24 + 262) / 960.0));
    EXPECT_EQ(program.End(SIGTERM), 0);
    EXPECT_LT(program.CpuSeconds(), taken.count() / 2) << "it spins";
}

TEST_F(MainUnitProgramTest, FaultsReachTheLine) {
    Program program = Start({"--quiet", "--pace", "0", "--seed", "5", "--faults", "doubled=1,doubled-delay-ms=0"});
    const Client client(program.Path());
    EXPECT_EQ(client.Ask(kModelQuery), ModelReply("C0053"));
    EXPECT_EQ(client.NextReply(), ModelReply("C0053"));
}

TEST_F(MainUnitProgramTest, ServesADeviceGivenByName) {
    Terminal other;
    Program program = Start({"--device", other.Path(), "--quiet"});
    EXPECT_EQ(program.Path(), other.Path());
    other.Send(kModelQuery);
    EXPECT_EQ(other.Receive(ModelReply("C0053").size()), ModelReply("C0053"));

    Program second = Start({"--device", other.Path(), "--quiet"});
    EXPECT_EQ(second.End(), 1) << "a device in use is refused";
    other.Unplug();
    EXPECT_EQ(program.End(), 1) << "a device that is pulled out ends the program";
}

TEST_F(MainUnitProgramTest, ListensToARealUnit) {
    Program unit = Start({"--sample", "--pace", "0", "--quiet"});
    Program spy = Start({"--spy", unit.Path(), "--link", "COM5", "--ports", ports, "--log", folder / "dialogue.log"});
    spy.Path();
    for (int client = 0; client < 2; ++client) {
        const Client line(ports / "com5");
        EXPECT_EQ(line.Ask(kModelQuery), ModelReply("C0053"));
        EXPECT_EQ(line.Ask(BlockFrame("0300000000000000")).size(), 262U);
        line.Tell("\r\n\x14half a frame");
        EXPECT_EQ(line.Ask(std::string("\x02") + "52060\x03"), ShortReply(kStatusReply, 0xFF));
    }
    // The line comes first, and the log behind it.
    const std::string path = folder / "dialogue.log";
    EXPECT_TRUE(WaitUntil([&] { return ReadFile(path).rfind("StatusReply") != ReadFile(path).find("StatusReply"); }));
    EXPECT_EQ(spy.End(SIGTERM), 0);
    const std::string log = ReadFile(path);
    std::size_t at = 0;
    for (const char* text :
         {" > ModelQuery ", " < ModelReply \"C0053\" ", " > MapQuery Discs ", " < MapReply ", "(bytes outside a frame)",
          "(frame without its end)", " > StatusQuery 0x60 ", " < StatusReply 0xFF "}) {
        at = log.find(text, at);
        ASSERT_NE(at, std::string::npos) << text << "\n" << log;
    }
    EXPECT_FALSE(fs::exists(fs::symlink_status(ports / "com5")));
    EXPECT_EQ(unit.End(SIGTERM), 0);
}

TEST_F(MainUnitProgramTest, TheSpyEndsWithItsUnit) {
    Program unit = Start({"--quiet"});
    Program spy = Start({"--spy", unit.Path(), "--log", "-"});
    const Client line(spy.Path());
    EXPECT_EQ(line.Ask(kModelQuery), ModelReply("C0053"));
    EXPECT_EQ(unit.End(SIGTERM), 0);
    EXPECT_EQ(spy.End(), 1);
    EXPECT_NE(spy.Errors().find("mainunit: "), std::string::npos) << spy.Errors();
}

TEST_F(MainUnitProgramTest, RefusesWrongOptionsAndLibraries) {
    const std::vector<std::vector<std::string>> wrong = {
        {"--nonsense"},
        {"--model"},
        {"--model", "C007"},
        {"--status", "4"},
        {"--status", "40,"},
        {"--status", "GG"},
        {"--probe", "maybe"},
        {"--latency", "-1"},
        {"--pace", "fast"},
        {"--seed", ""},
        {"--faults", "lost=2"},
        {"--link", "COM9"},
        {"--ports", "/tmp"},
        {"--log", ""},
        {"--link", "COM1", "--device", "/dev/null"},
        {"--spy", "/dev/null", "--sample"},
    };
    for (const std::vector<std::string>& arguments : wrong) {
        Program program = Start(arguments);
        EXPECT_EQ(program.End(), 2) << arguments.front() << ' ' << arguments.back();
        EXPECT_NE(program.Errors().find("mainunit --help"), std::string::npos) << program.Errors();
    }
    std::ofstream(libraryFile) << "{\"discs\": 1}";
    Program broken = Start({"--library", libraryFile});
    EXPECT_EQ(broken.End(), 1);
    EXPECT_NE(broken.Errors().find("discs is no object"), std::string::npos) << broken.Errors();
    Program missing = Start({"--library", folder / "missing.json"});
    EXPECT_EQ(missing.End(), 1);
    Program noTerminal = Start({"--device", libraryFile});
    EXPECT_EQ(noTerminal.End(), 1);
    Program help = Start({"--help"});
    EXPECT_EQ(help.End(), 0);
    EXPECT_NE(help.Output().find("Usage: mainunit"), std::string::npos);
}

}  // namespace
}  // namespace mainunit
