// titlectl against a main unit: what it prints, what it writes, and how it ends.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <string>
#include <vector>

#include "Faults.h"
#include "TitlectlTest.h"
#include "UnitFrames.h"

namespace {

using library::Entry;
using library::GroupKind;

// Refusals in a wanted order: the options for a unit whose n-th reply with a title or a map is refused where the n-th
// character is an x. What comes behind them is left to chance.
std::vector<std::string> RefusalOptions(const std::string& order) {
    const std::string reply = mainunit::BlockReply(mainunit::SubType::kTitleWrite, mainunit::kAccepted);
    mainunit::FaultRates rates;
    rates.refused = 0.5;
    std::uint64_t seed = 0;
    for (bool found = false; !found;) {
        mainunit::Faults faults(++seed, rates);
        found = true;
        for (const char wanted : order) {
            const bool refused = faults.Apply({{reply, 0}}).front().bytes != reply;
            found = found && refused == (wanted == 'x');
        }
    }
    return {"--faults", "refused=0.5", "--seed", std::to_string(seed)};
}

TEST_F(TitlectlTest, ListsAndGets) {
    const UnitProcess unit = StartUnit();
    EXPECT_EQ(Run({"--port", "COM1", "list"}), kDone) << errors;
    EXPECT_EQ(output,
              "D1    0  Harbour in March\n"
              "D2    0  Paper Lanterns\n"
              "A7    0  Evening Walks\n"
              "A999  0  The Last of Them All, 32 Letters\n");
    EXPECT_EQ(Run({"--port", "COM1", "get", "D1"}), kDone) << errors;
    EXPECT_EQ(output,
              "D1    0  Harbour in March\n"
              "D1    1  Low Water\n"
              "D1    2  High Water\n");
    EXPECT_EQ(Run({"--port", "COM1", "get", "a7", "1"}), kDone) << errors;
    EXPECT_EQ(output, "A7    1  Low Water\n");
    EXPECT_EQ(Run({"--port", "COM1", "get", "A7", "0"}), kDone) << errors;
    EXPECT_EQ(output, "A7    0  Evening Walks\n");
    // A Disc that is not there, and a Disc and a track that have no title.
    for (const std::vector<std::string>& missing :
         {std::vector<std::string>{"get", "D500"}, {"get", "D12", "0"}, {"get", "D1", "3"}}) {
        EXPECT_EQ(Run(missing), kNotWritable) << errors;
        EXPECT_EQ(output, "");
    }
    EXPECT_EQ(unit.Complaints(), "");
}

TEST_F(TitlectlTest, SetsWhatCanBeSet) {
    const UnitProcess unit = StartUnit();
    struct Case {
        const char* group;
        const char* track;
        const char* text;
        Entry entry;
        const char* saved;
    };
    const Case cases[] = {
        {"D1", "2", "  ~Neap Tide~ 5\"\\  ", {GroupKind::kDisc, 1, 2}, "  ~Neap Tide~ 5\"\\"},
        {"D1", "0", "Thirty-Two Letters, Not One Less", {GroupKind::kDisc, 1, 0}, "Thirty-Two Letters, Not One Less"},
        {"A999", "0", "Renamed", {GroupKind::kAlbum, 999, 0}, "Renamed"},
        {"D2", "1", "", {GroupKind::kDisc, 2, 1}, ""},
    };
    library::UnitLibrary expected = Saved();
    for (const Case& one : cases) {
        EXPECT_EQ(Run({"--port", "COM1", "set", one.group, one.track, one.text}), kDone) << errors;
        expected.SetTitle(one.entry, one.saved);
        EXPECT_TRUE(Saved() == expected) << one.group << ' ' << one.track << ' ' << SavedTitle(one.entry);
    }
    EXPECT_EQ(output, "D2    1  \n");
    EXPECT_EQ(unit.Complaints(), "");
}

TEST_F(TitlectlTest, RefusesWhatCannotBeSet) {
    const UnitProcess unit = StartUnit();
    const library::UnitLibrary before = Saved();
    // The first three without a word on the line, the others since the unit has no such title.
    const std::vector<std::vector<std::string>> wrong = {
        {"set", "A7", "1", "Album track"},
        {"set", "D1", "1", "Grand Caf\xC3\xA9"},
        {"set", "D1", "1", "This title has 33 letters, one to"},
        {"set", "D1", "3", "No title yet"},
        {"set", "D1", "99", "No such track"},
        {"set", "A8", "0", "No such Album"},
    };
    for (std::size_t i = 0; i < wrong.size(); ++i) {
        EXPECT_EQ(Run(wrong[i]), kNotWritable) << wrong[i].back() << '\n' << errors;
        EXPECT_EQ(output, "");
        if (i == 2) {
            EXPECT_EQ(unit.CountRequests("ModelQuery"), 0);
        }
    }
    EXPECT_EQ(unit.CountRequests("TitleWrite"), 0);
    EXPECT_TRUE(Saved() == before);
}

TEST_F(TitlectlTest, TellsTheUsage) {
    const std::vector<std::vector<std::string>> wrong = {
        {},
        {"--port"},
        {"--port", "COM9", "list"},
        {"--port", "/dev/ttyS0", "list"},
        {"lists"},
        {"get"},
        {"get", "D0"},
        {"get", "D1000"},
        {"get", "X1"},
        {"get", "D1", "100"},
        {"get", "D1", "-1"},
        {"set", "D1", "1"},
        {"set", "D1", "1", "Text", "and more"},
        {"import", "D1"},
        {"backup", "--dry-run", "backup.json"},
        {"restore", "--dry-run"},
    };
    for (const std::vector<std::string>& arguments : wrong) {
        EXPECT_EQ(Run(arguments), kUsage) << (arguments.empty() ? "" : arguments.back());
        EXPECT_NE(errors.find("Exit codes: 0 done"), std::string::npos) << errors;
    }
    // Who asks for it may want to page through it.
    EXPECT_EQ(Run({"--help"}), kDone);
    EXPECT_NE(output.find("Exit codes: 0 done"), std::string::npos) << output;
}

TEST_F(TitlectlTest, SearchesThePorts) {
    const Terminal silent;
    LinkPort("COM1", silent.Path());
    // Wine lets everybody have a terminal, and refuses a folder as Windows refuses a port in use.
    const Terminal busy;
    LinkPort("COM2", OnWindows() ? "/dev/pts/." : busy.Path());
    const int taken = open(busy.Path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_GE(taken, 0);
    ASSERT_EQ(flock(taken, LOCK_EX), 0);

    EXPECT_EQ(Run({"list"}), kNoUnit);
    EXPECT_NE(errors.find("no main unit answers"), std::string::npos) << errors;
    EXPECT_EQ(Run({"--port", "COM2", "list"}), kNoUnit);
    EXPECT_NE(errors.find("the port is in use"), std::string::npos) << errors;
    if (!OnWindows()) {
        EXPECT_EQ(Run({"--port", "COM4", "list"}), kNoUnit);
        EXPECT_NE(errors.find("no such port"), std::string::npos) << errors;
    }

    const UnitProcess unit = StartUnit({}, "COM3");
    EXPECT_EQ(Run({"get", "D2", "0"}), kDone) << errors;
    EXPECT_EQ(output, "D2    0  Paper Lanterns\n");
    EXPECT_EQ(Run({"--port", "COM3", "get", "D2", "0"}), kDone) << errors;
    EXPECT_EQ(silent.Receive(10).substr(0, 5),
              "\x11"
              "000\x03")
        << "the silent port was asked, too";
    close(taken);
}

TEST_F(TitlectlTest, TellsWhyTheUnitIsNotReady) {
    struct Case {
        std::vector<std::string> options;
        int code;
        const char* reason;
    };
    const Case cases[] = {
        {{"--menu"}, kMenuMode, "MENU mode"},
        {{"--status", "00"}, kTrayOpen, "tray is open"},
        {{"--status", "41"}, kNotStopped, "stop it"},
        // Asked for some 13 seconds.
        {{"--status", "46"}, kNoData, "holds no data"},
    };
    for (const Case& one : cases) {
        const UnitProcess unit = StartUnit(one.options);
        EXPECT_EQ(Run({"--port", "COM1", "list"}), one.code) << one.reason;
        EXPECT_NE(errors.find(one.reason), std::string::npos) << errors;
        EXPECT_EQ(unit.CountRequests("MapQuery"), 0);
    }
    // Busy for a while, then wanting to be stopped: no reason to give up.
    const UnitProcess unit = StartUnit({"--status", "FE,FF,01,04,FD,40"});
    EXPECT_EQ(Run({"--port", "COM1", "get", "D2", "0"}), kDone) << errors;
    EXPECT_EQ(unit.CountRequests("UnitCommand"), 2);
}

TEST_F(TitlectlTest, TellsThatATitleIsRefused) {
    const UnitProcess unit = StartUnit({"--refuse-writes"});
    EXPECT_EQ(Run({"--port", "COM1", "set", "D2", "0", "Refused"}), kRefused) << errors;
    EXPECT_EQ(SavedTitle({GroupKind::kDisc, 2, 0}), "Paper Lanterns");
    EXPECT_EQ(unit.CountRequests("TitleWrite"), 2) << "once, and once more";
    EXPECT_EQ(unit.CountRequests("TitleData"), 0);
}

TEST_F(TitlectlTest, BelievesOnlyWhatIsReadBack) {
    // Two reads, the write, the map and the read that goes with it are fine; then the unit has no such title any more.
    const UnitProcess unit = StartUnit(RefusalOptions("-----x"));
    EXPECT_EQ(Run({"--port", "COM1", "set", "D2", "0", "Doubtful"}), kDiffers) << errors;
    EXPECT_EQ(unit.CountRequests("TitleData"), 1);
}

TEST_F(TitlectlTest, NoticesThatTheUnitFallsSilent) {
    AddDiscs(100, 160);
    for (const int signal : {SIGSTOP, SIGKILL}) {
        const UnitProcess unit = StartUnit();
        const auto list = Start({"--port", "COM1", "list"});
        ASSERT_TRUE(list->WaitForError(secondTitle)) << list->Errors();
        unit.Signal(signal);
        EXPECT_EQ(End(*list), kTimeOut) << errors;
        // What came until then is not kept back.
        EXPECT_TRUE(output.starts_with("D1    0  Harbour in March\nD2    0  Paper Lanterns\n")) << output;
        EXPECT_LT(list->CpuSeconds(), list->WallSeconds() / 4) << "it spins";
    }
}

TEST_F(TitlectlTest, EndsWhenThePortIsPulledOut) {
    Terminal terminal;
    LinkPort("COM1", terminal.Path());
    const auto list = Start({"--port", "COM1", "list"});
    EXPECT_NE(terminal.Receive(5), "");
    terminal.Unplug();
    EXPECT_EQ(list->End(), kNoUnit) << list->Errors();
    EXPECT_LT(list->CpuSeconds(), list->WallSeconds() / 4) << "it spins";
}

TEST_F(TitlectlTest, EndsInGoodOrderOnCtrlC) {
    // A request that nobody answers takes four.
    constexpr std::chrono::seconds kMostForAStop{3};
    AddDiscs(100, 160);
    const UnitProcess unit = StartUnit();
    const auto list = Start({"--port", "COM1", "list"});
    ASSERT_TRUE(list->WaitForError(secondTitle)) << list->Errors();
    list->Signal(SIGINT);
    EXPECT_EQ(End(*list, kMostForAStop), kStopped) << errors;
    EXPECT_TRUE(output.starts_with("D1    0  Harbour in March\nD2    0  Paper Lanterns\n")) << output;
    EXPECT_EQ(output.find("D160"), std::string::npos);
    EXPECT_EQ(Run({"--port", "COM1", "get", "D2", "1"}), kDone) << errors;
    EXPECT_EQ(output, "D2    1  The Ferry & the Notebook\n");
    EXPECT_EQ(unit.Complaints(), "");

    const Terminal silent;
    LinkPort("COM2", silent.Path());
    const auto search = Start({"--port", "COM2", "list"});
    EXPECT_NE(silent.Receive(5), "");
    search->Signal(SIGINT);
    EXPECT_EQ(search->End(kMostForAStop), kStopped) << search->Errors();
}

}  // namespace
