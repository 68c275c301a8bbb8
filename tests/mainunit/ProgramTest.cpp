// The program mainunit on a real pseudo terminal.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "LibraryFile.h"
#include "UnitFrames.h"

extern char** environ;

namespace mainunit {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr auto kLimit = std::chrono::seconds(20);

const std::string kModelQuery = std::string("\x11") + "000\x03";

// Reads until the bytes end with `end` or the time is up.
std::string ReadUntil(int file, const std::string& end) {
    const auto deadline = Clock::now() + kLimit;
    std::string bytes;
    while (!bytes.ends_with(end)) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
        pollfd waiting{file, POLLIN, 0};
        char byte = 0;
        if (left <= 0 || poll(&waiting, 1, static_cast<int>(left)) != 1 || read(file, &byte, 1) != 1)
            break;
        bytes += byte;
    }
    return bytes;
}

// A client's end of the line.
class Client {
public:
    explicit Client(const std::string& path) : file_(open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) {}
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;
    ~Client() {
        if (file_ >= 0)
            close(file_);
    }

    std::string Ask(const std::string& request) const {
        Tell(request);
        return ReadUntil(file_, std::string(1, kEtx));
    }
    void Tell(const std::string& bytes) const {
        EXPECT_EQ(write(file_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }

    int file() const { return file_; }

private:
    int file_;
};

// A run of the program; killed with its object at the latest.
class Program {
public:
    explicit Program(const std::vector<std::string>& arguments) {
        std::vector<char*> words;
        std::string name = MAINUNIT_PROGRAM;
        std::vector<std::string> copies = arguments;
        words.push_back(name.data());
        for (std::string& copy : copies)
            words.push_back(copy.data());
        words.push_back(nullptr);

        int ends[2] = {-1, -1};
        EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
        output_ = ends[0];
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);
        EXPECT_EQ(posix_spawn(&process_, name.c_str(), &actions, nullptr, words.data(), environ), 0);
        posix_spawn_file_actions_destroy(&actions);
        close(ends[1]);
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program() {
        if (process_ > 0) {
            kill(process_, SIGKILL);
            waitpid(process_, nullptr, 0);
        }
        close(output_);
    }

    // The path behind "ready: ".
    std::string Path() {
        const std::string line = ReadUntil(output_, "\n");
        EXPECT_TRUE(line.starts_with("ready: ")) << line;
        return line.size() > 8 ? line.substr(7, line.size() - 8) : "";
    }

    // Processor time since the start of the program.
    double UsedSeconds() const {
        clockid_t clock{};
        timespec time{};
        EXPECT_EQ(clock_getcpuclockid(process_, &clock), 0);
        EXPECT_EQ(clock_gettime(clock, &time), 0);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
    }

    std::string RestOfOutput() const { return ReadUntil(output_, "\xFF never written"); }

    // The exit code, after the signal if one is given; -1 if it did not end by itself.
    int End(int signal = 0) {
        if (signal != 0)
            kill(process_, signal);
        lastOutput_ = RestOfOutput();
        int status = 0;
        EXPECT_EQ(waitpid(process_, &status, 0), process_);
        process_ = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    const std::string& lastOutput() const { return lastOutput_; }

private:
    pid_t process_ = 0;
    int output_ = -1;
    std::string lastOutput_;
};

class ProgramTest : public testing::Test {
protected:
    ProgramTest() {
        std::string name = fs::temp_directory_path() / "mainunit-test-XXXXXX";
        folder_ = mkdtemp(name.data());
        ports_ = folder_ / "ports";
        library_ = folder_ / "library.json";
    }
    ~ProgramTest() override { fs::remove_all(folder_); }

    fs::path folder_;
    fs::path ports_;
    std::string library_;
};

TEST_F(ProgramTest, ServesOneClientAfterTheOtherAndTakesItsLinkAway) {
    ASSERT_EQ(setenv("XDG_CONFIG_HOME", folder_.c_str(), 1), 0);
    Program program({"--link", "COM1", "--model", "C0071", "--quiet"});
    const std::string path = program.Path();
    const fs::path link = folder_ / "tesselia" / "ports" / "com1";
    ASSERT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(fs::read_symlink(link), path);
    for (int round = 0; round < 3; ++round) {
        const Client client(link);
        ASSERT_GE(client.file(), 0);
        EXPECT_EQ(client.Ask(kModelQuery), ModelReply("C0071"));
    }
    EXPECT_EQ(program.End(SIGTERM), 0);
    EXPECT_FALSE(fs::exists(fs::symlink_status(link)));
}

TEST_F(ProgramTest, FreesTheLineOfAClientThatTookItForItselfAndWent) {
    Program program({"--quiet"});
    const std::string path = program.Path();
    // Only root can open a terminal that another one has for itself.
    const auto isExclusive = [&] {
        const Client client(path);
        int exclusive = 1;
        return ioctl(client.file(), TIOCGEXCL, &exclusive) != 0 || exclusive != 0;
    };
    {
        const Client client(path);
        ASSERT_EQ(ioctl(client.file(), TIOCEXCL), 0);
        EXPECT_EQ(client.Ask(kModelQuery), ModelReply("C0053"));
    }
    const auto deadline = Clock::now() + kLimit;
    while (isExclusive() && Clock::now() < deadline) {}
    EXPECT_FALSE(isExclusive());
    EXPECT_EQ(program.End(SIGINT), 0);
}

TEST_F(ProgramTest, ReplacesALeftLinkAndNothingElse) {
    fs::create_directories(ports_);
    fs::create_symlink("/dev/pts/gone", ports_ / "com2");
    Program replaces({"--link", "COM2", "--ports", ports_, "--quiet"});
    const std::string first = replaces.Path();
    EXPECT_EQ(fs::read_symlink(ports_ / "com2"), first);

    std::ofstream(ports_ / "com3") << "precious";
    Program refuses({"--link", "COM3", "--ports", ports_});
    EXPECT_EQ(refuses.End(), 1);
    EXPECT_NE(refuses.lastOutput().find("leads to no simulated unit"), std::string::npos) << refuses.lastOutput();
    EXPECT_TRUE(fs::is_regular_file(ports_ / "com3"));

    // The user's own link to a real port.
    fs::create_symlink("/dev/ttyUSB7", ports_ / "com4");
    Program spares({"--link", "COM4", "--ports", ports_});
    EXPECT_EQ(spares.End(), 1);
    EXPECT_EQ(fs::read_symlink(ports_ / "com4"), "/dev/ttyUSB7");

    // Another unit takes the name over; the first one leaves the other's link alone when it ends.
    Program takesOver({"--link", "COM2", "--ports", ports_, "--quiet"});
    const std::string path = takesOver.Path();
    EXPECT_EQ(replaces.End(SIGTERM), 0);
    EXPECT_EQ(fs::read_symlink(ports_ / "com2"), path);
}

TEST_F(ProgramTest, SavesEachTitleThatIsWritten) {
    Program program({"--library", library_, "--sample", "--pace", "0", "--log", folder_ / "dialogue.log"});
    {
        const Client client(program.Path());
        EXPECT_EQ(client.Ask(BlockFrame("0600120300000000")), BlockReply(SubType::TitleWrite, kAccepted));
        client.Tell(BlockFrame("High Water                      "));
        // The reply to the next request tells that the title has been dealt with.
        EXPECT_EQ(client.Ask(BlockFrame("0500120300000000")),
                  BlockReply(SubType::TitleRead, kAccepted, "High Water                      "));
    }
    UnitLibrary saved;
    std::string error;
    ASSERT_TRUE(LoadLibrary(library_, saved, error)) << error;
    EXPECT_EQ(*saved.Title({GroupKind::Disc, 12, 3}), "High Water");
    EXPECT_EQ(program.End(SIGTERM), 0);

    std::stringstream log;
    log << std::ifstream(folder_ / "dialogue.log").rdbuf();
    EXPECT_NE(log.str().find(" > TitleWrite Disc 12 track 3 "), std::string::npos) << log.str();
    EXPECT_NE(log.str().find(" < TitleWriteReply accepted "), std::string::npos) << log.str();
    EXPECT_NE(log.str().find(" > TitleData \"High Water\" "), std::string::npos) << log.str();
}

TEST_F(ProgramTest, PassesEveryByteUnchanged) {
    Program program({"--pace", "0", "--log", "-", "--status", "FE,40"});
    const Client client(program.Path());
    // Control bytes that a terminal would act upon: interrupt, end of file, stop, start, suspend, CR and LF.
    client.Tell("\x03\x04\x13\x1A\r\n");
    const std::string status = std::string("\x02") + "52000\x03";
    EXPECT_EQ(client.Ask(status), ShortReply(kStatusReply, 0xFE));
    EXPECT_EQ(client.Ask(status), ShortReply(kStatusReply, 0x40));
    EXPECT_EQ(program.End(SIGTERM), 0);
    std::string dump;
    for (std::istringstream lines(program.lastOutput()); std::getline(lines, dump);) {
        if (dump.find("outside a frame") != std::string::npos)
            break;
    }
    EXPECT_TRUE(dump.ends_with("  03 04 13 1A 0D 0A")) << program.lastOutput();
}

TEST_F(ProgramTest, KeepsTheSpeedOfTheLineAndSleepsWhileItWaits) {
    Program program({"--quiet", "--sample", "--latency", "50"});
    const Client client(program.Path());
    const double usedBefore = program.UsedSeconds();
    const auto start = Clock::now();
    const std::string reply = client.Ask(BlockFrame("0300000000000000"));
    const std::chrono::duration<double> taken = Clock::now() - start;
    EXPECT_EQ(reply.size(), 262U);
    // 24 bytes one way, 262 the other at 960 in a second. Only the lower limit can be relied on.
    EXPECT_GE(taken.count(), 0.05 + (24 + 262) / 960.0);
    EXPECT_LT(program.UsedSeconds() - usedBefore, taken.count() / 2) << "it spins";
    EXPECT_EQ(program.End(SIGTERM), 0);
}

TEST_F(ProgramTest, FaultsReachTheLine) {
    Program program({"--quiet", "--pace", "0", "--seed", "5", "--faults", "doubled=1,doubled-delay-ms=0"});
    const Client client(program.Path());
    EXPECT_EQ(client.Ask(kModelQuery), ModelReply("C0053"));
    EXPECT_EQ(ReadUntil(client.file(), "\x03"), ModelReply("C0053"));
}

TEST_F(ProgramTest, ServesADeviceGivenByName) {
    const int other = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    char name[128];
    ASSERT_TRUE(other >= 0 && grantpt(other) == 0 && unlockpt(other) == 0 && ptsname_r(other, name, sizeof name) == 0);
    Program program({"--device", name, "--quiet"});
    EXPECT_EQ(program.Path(), name);
    ASSERT_EQ(write(other, kModelQuery.data(), kModelQuery.size()), static_cast<ssize_t>(kModelQuery.size()));
    EXPECT_EQ(ReadUntil(other, "\x03"), ModelReply("C0053"));

    Program second({"--device", name, "--quiet"});
    EXPECT_EQ(second.End(), 1) << "a device in use is refused";
    close(other);
    EXPECT_EQ(program.End(), 1) << "a device that is pulled out ends the program";
}

TEST_F(ProgramTest, ListensToARealUnit) {
    Program unit({"--sample", "--pace", "0", "--quiet"});
    Program spy({"--spy", unit.Path(), "--link", "COM5", "--ports", ports_, "--log", folder_ / "dialogue.log"});
    spy.Path();
    for (int client = 0; client < 2; ++client) {
        const Client line(ports_ / "com5");
        EXPECT_EQ(line.Ask(kModelQuery), ModelReply("C0053"));
        EXPECT_EQ(line.Ask(BlockFrame("0300000000000000")).size(), 262U);
        line.Tell("\r\n\x14half a frame");
        EXPECT_EQ(line.Ask(std::string("\x02") + "52060\x03"), ShortReply(kStatusReply, 0xFF));
    }
    // The line comes first, and the log behind it.
    const auto Log = [this] {
        std::stringstream log;
        log << std::ifstream(folder_ / "dialogue.log").rdbuf();
        return log.str();
    };
    const auto deadline = Clock::now() + kLimit;
    while (Clock::now() < deadline && Log().rfind("StatusReply") == Log().find("StatusReply")) {}
    EXPECT_EQ(spy.End(SIGTERM), 0);
    const std::string log = Log();
    std::size_t at = 0;
    for (const char* text :
         {" > ModelQuery ", " < ModelReply \"C0053\" ", " > MapQuery Discs ", " < MapReply ", "(bytes outside a frame)",
          "(frame without its end)", " > StatusQuery 0x60 ", " < StatusReply 0xFF "}) {
        at = log.find(text, at);
        ASSERT_NE(at, std::string::npos) << text << "\n" << log;
    }
    EXPECT_FALSE(fs::exists(fs::symlink_status(ports_ / "com5")));
    EXPECT_EQ(unit.End(SIGTERM), 0);
}

TEST_F(ProgramTest, TheSpyEndsWithItsUnit) {
    Program unit({"--quiet"});
    Program spy({"--spy", unit.Path(), "--log", "-"});
    const Client line(spy.Path());
    EXPECT_EQ(line.Ask(kModelQuery), ModelReply("C0053"));
    EXPECT_EQ(unit.End(SIGTERM), 0);
    EXPECT_EQ(spy.End(), 1);
    EXPECT_NE(spy.lastOutput().find("mainunit: "), std::string::npos) << spy.lastOutput();
}

TEST_F(ProgramTest, RefusesWrongOptionsAndLibraries) {
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
        Program program(arguments);
        EXPECT_EQ(program.End(), 2) << arguments.front() << ' ' << arguments.back();
        EXPECT_NE(program.lastOutput().find("mainunit --help"), std::string::npos) << program.lastOutput();
    }
    std::ofstream(library_) << "{\"discs\": 1}";
    Program broken({"--library", library_});
    EXPECT_EQ(broken.End(), 1);
    EXPECT_NE(broken.lastOutput().find("discs is no object"), std::string::npos) << broken.lastOutput();
    Program missing({"--library", folder_ / "missing.json"});
    EXPECT_EQ(missing.End(), 1);
    Program noTerminal({"--device", library_});
    EXPECT_EQ(noTerminal.End(), 1);
    Program help({"--help"});
    EXPECT_EQ(help.End(), 0);
    EXPECT_NE(help.lastOutput().find("Usage: mainunit"), std::string::npos);
}

}  // namespace
}  // namespace mainunit
