// The program in front of a real screen and at the line of a main unit: what a user does with keys and mouse reaches the
// unit, and what goes wrong is told.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "LibraryFile.h"
#include "ProgramTesting.h"

namespace {

using library::GroupKind;

// A window 600 pixels wide, title bar left out: the menu bar, the buttons, the first rows of the lists.
constexpr int kGroupsX = 80;
constexpr int kFirstRowY = 90;
constexpr int kRowHeight = 19;
constexpr int kSyncX = 35;
constexpr int kStopX = 88;
constexpr int kButtonsY = 42;

constexpr char kError[] = "Tesselia Error";
// The choosers of wine have no titles.
const char* const kOpen = OnWindows() ? "" : "Open";
const char* const kSave = OnWindows() ? "" : "Save As";
constexpr char kMessage[] = "Tesselia Message";

class SessionTest : public ProgramTest {
protected:
    // A unit that answers, and the program in front with the first titles on the screen.
    void StartWithTitles() {
        StartTheUnit();
        Start();
        WaitUntilQuiet();
    }

    // Until nothing has gone over the line for longer than any pause between two requests.
    void WaitUntilQuiet() {
        constexpr auto kQuiet = std::chrono::milliseconds(1200);
        std::string before = unit->Dialogue();
        auto since = std::chrono::steady_clock::now();
        EXPECT_TRUE(WaitUntil(
            [&] {
                const std::string now = unit->Dialogue();
                const auto time = std::chrono::steady_clock::now();
                if (now != before || now.find("TitleRead") == std::string::npos) {
                    before = now;
                    since = time;
                }
                return time - since > kQuiet;
            },
            std::chrono::seconds(30)));
    }

    static void Click(int x, int y) {
        Xdotool("mousemove --window $(xdotool getactivewindow) " + std::to_string(x) + " " + std::to_string(y) + " click 1");
    }
    // Into the open editor, in place of its text.
    static void TypeOver(const std::string& text) {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        Xdotool("type --delay 20 '" + text + "'");
        Xdotool("key Return");
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
    }
    // In place of the title that the focus is on.
    static void TypeTitle(const std::string& text) {
        Xdotool("key Return");
        TypeOver(text);
    }
    // Presses the keys, and waits for the window that they lead to.
    static void Press(const std::string& keys, const char* front) {
        Xdotool("key " + keys);
        ASSERT_TRUE(WaitUntilActive(front));
    }
    void TypePath(const char* name) {
        std::string path = (folder / name).string();
        if (OnWindows()) {
            std::replace(path.begin(), path.end(), '/', '\\');
            path.insert(0, "Z:");
        }
        Xdotool("type --delay 20 '" + path + "'");
    }
    // A click on the selected row opens its editor at once if the list has just got the focus.
    static void EditFirstGroup(const std::string& text) {
        Click(kStopX, kButtonsY);
        Click(kGroupsX, kFirstRowY);
        TypeOver(text);
    }
    bool WaitForTitle(GroupKind kind, int group, int track, const std::string& text) {
        return WaitUntil([&] { return TitleOf(kind, group, track) == text; });
    }
    std::string TitleOf(GroupKind kind, int group, int track) {
        const library::UnitLibrary library = Saved();
        const std::string* title = library.Title({kind, group, track});
        return title == nullptr ? "(none)" : *title;
    }
};

}  // namespace

TEST_F(SessionTest, TypedTitlesReachTheUnit) {
    StartWithTitles();
    EditFirstGroup("Harbour, typed");
    // Enter has led to the first track, and leads on to the next.
    TypeTitle("First & typed");
    TypeTitle("Second typed");
    Click(kSyncX, kButtonsY);
    EXPECT_TRUE(WaitForTitle(GroupKind::kDisc, 1, 0, "Harbour, typed"));
    EXPECT_TRUE(WaitForTitle(GroupKind::kDisc, 1, 1, "First & typed"));
    EXPECT_TRUE(WaitForTitle(GroupKind::kDisc, 1, 2, "Second typed"));
    WaitUntilQuiet();

    // Undone before it was sent, an edit is nothing.
    EditFirstGroup("Not meant");
    Xdotool("key ctrl+u");
    Xdotool("key alt+v key a");
    WaitUntilQuiet();
    EXPECT_EQ(TitleOf(GroupKind::kDisc, 1, 0), "Harbour, typed");

    // In two groups at once, one of them cleared.
    EditFirstGroup("Once more");
    Click(kGroupsX, kFirstRowY + kRowHeight);
    WaitUntilQuiet();
    Xdotool("key Delete");
    Xdotool("key alt+v key a");
    EXPECT_TRUE(WaitForTitle(GroupKind::kDisc, 1, 0, "Once more"));
    EXPECT_TRUE(WaitForTitle(GroupKind::kDisc, 2, 0, ""));
    WaitUntilQuiet();
    EXPECT_EQ(unit->Complaints(), "");
    End();
}

TEST_F(SessionTest, TransfersByMenu) {
    AddDiscs(20, 70);
    StartWithTitles();
    const int all = unit->CountRequests("TitleRead");
    EXPECT_GT(all, 50);
    Xdotool("key alt+v key 1");
    ASSERT_TRUE(WaitUntil([&] { return unit->CountRequests("TitleRead") >= all + 3; }));
    WaitUntilQuiet();
    const int group = unit->CountRequests("TitleRead");
    EXPECT_LT(group, all + 15) << "one group alone";
    Xdotool("key alt+v key g");
    ASSERT_TRUE(WaitUntil([&] { return unit->CountRequests("TitleRead") >= group + 5; }));
    Xdotool("key alt+v key q");
    WaitUntilQuiet();
    const int stopped = unit->CountRequests("TitleRead");
    EXPECT_LT(stopped, group + 40) << "stopped in the middle";
    // Narrower ranges: Disc 20 alone.
    Press("alt+t key o", "Display ranges");
    Xdotool("type --delay 20 '20\t20\t0\t0\t1\t9'");
    Press("Return", kTitle);
    WaitUntilQuiet();
    EXPECT_LT(unit->CountRequests("TitleRead"), stopped + 5);
    End();
    EXPECT_NE(Settings().find("20"), std::string::npos) << Settings();
}

TEST_F(SessionTest, TitlesComeFromFilesAndGoToFiles) {
    StartWithTitles();
    // Each click fills a list anew, and a click on rows that are just being filled may meet none.
    for (const int row : {1, 0}) {
        Click(kStopX, kButtonsY);
        WaitUntilQuiet();
        Click(kGroupsX, kFirstRowY + row * kRowHeight);
        WaitUntilQuiet();
    }
    std::ofstream(folder / "in.csv") << " 0,\"From \"\"a\"\" file\"\r\n 2,\"Second, too\"\r\n50,\"No such track\"\r\n";
    Press("alt+f key i", kOpen);
    TypePath("in.csv");
    Press("Return", kTitle);
    Click(kSyncX, kButtonsY);
    EXPECT_TRUE(WaitForTitle(GroupKind::kDisc, 1, 0, "From \"a\" file"));
    EXPECT_TRUE(WaitForTitle(GroupKind::kDisc, 1, 2, "Second, too"));
    EXPECT_EQ(TitleOf(GroupKind::kDisc, 1, 1), "Low Water");
    WaitUntilQuiet();

    Press("alt+f key e", kSave);
    // Without an extension it gets the one of its type.
    TypePath("out");
    Press("Return", kTitle);
    const std::string written = " 0,\"From \"\"a\"\" file\"\r\n 1,\"Low Water\"\r\n 2,\"Second, too\"\r\n";
    EXPECT_TRUE(WaitUntil([&] { return ReadFile(folder / "out.csv") == written; })) << ReadFile(folder / "out.csv");

    // What is no play list changes nothing.
    std::ofstream(folder / "bad.asx") << "no play list";
    Press("alt+f key i", kOpen);
    TypePath("bad.asx");
    Press("Return", kError);
    Press("Return", kTitle);
    End();
}

TEST_F(SessionTest, AUnitThatIsNotReadyIsTold) {
    // In MENU mode, with its tray open, and not stopped.
    const std::vector<std::vector<std::string>> states = {{"--menu"}, {"--status", "00"}, {"--status", "41"}};
    for (const std::vector<std::string>& state : states) {
        StartTheUnit(state);
        Start(kError);
        Press("Return", kTitle);
        EXPECT_EQ(unit->CountRequests("TitleRead"), 0);
        End();
    }
}

TEST_F(SessionTest, TypingGoesOnDuringAFetch) {
    library::UnitLibrary library = Saved();
    for (int track = 3; track <= 60; ++track) {
        library.SetTitle({GroupKind::kDisc, 1, track}, "Track " + std::to_string(track));
    }
    std::string error;
    ASSERT_TRUE(library::SaveLibrary(libraryFile, library, error)) << error;
    StartTheUnit();
    Start();
    // The titles of the groups are there, and the tracks of the first are on their way.
    ASSERT_TRUE(WaitUntil([this] { return unit->CountRequests("TitleRead") >= 10; }));
    Click(kGroupsX, kFirstRowY);
    TypeOver("Typed while tracks arrive");
    EXPECT_LT(unit->CountRequests("TitleRead"), 55) << "the fetch has not ended before";
    EXPECT_TRUE(WaitUntil([this] { return unit->CountRequests("TitleRead") > 60; })) << "and was not cut off";
    WaitUntilQuiet();
    TypeTitle("A track as well");
    Click(kSyncX, kButtonsY);
    EXPECT_TRUE(WaitForTitle(GroupKind::kDisc, 1, 0, "Typed while tracks arrive"));
    EXPECT_TRUE(WaitForTitle(GroupKind::kDisc, 1, 1, "A track as well"));
    End();
}

TEST_F(SessionTest, AnEditOutlivesTheUnit) {
    StartWithTitles();
    EditFirstGroup("Kept");
    unit->Signal(SIGKILL);
    unit->End();
    Click(kSyncX, kButtonsY);
    ASSERT_TRUE(WaitUntilActive(kError)) << "nothing is said to be written";
    Press("Return", kTitle);
    StartTheUnit();
    Press("alt+t key c", kMessage);
    Press("Return", kTitle);
    Click(kSyncX, kButtonsY);
    EXPECT_TRUE(WaitForTitle(GroupKind::kDisc, 1, 0, "Kept"));
    WaitUntilQuiet();
    End();
}

TEST_F(SessionTest, TheNextRunBeginsWhereThisOneEnded) {
    StartWithTitles();
    Click(kGroupsX, kFirstRowY + kRowHeight);
    WaitUntilQuiet();
    Xdotool("getactivewindow windowsize --sync 500 333 windowmove --sync 111 99");
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    End();
    std::string settings = Settings();
    EXPECT_NE(settings.find("GroupNo=2"), std::string::npos) << settings;
    for (int run = 0; run < 5; ++run) {
        if (run == 2) {
            // From now on the window manager has a place of its own for it.
            const std::string rules = (theScreen->Folder() / "openbox").string();
            Shell("mkdir " + rules +
                  " && sed 's|</applications>|<application title=\"ORVANE*\"><position force=\"yes\"><x>300"
                  "</x><y>200</y></position></application>&|' /etc/xdg/openbox/rc.xml >" +
                  rules + "/rc.xml");
            Shell("openbox --reconfigure");
            const std::size_t place = settings.find("PosX=");
            // Under wine a frame counts that the window manager does not draw.
            settings.replace(place, settings.find('\n', settings.find("PosY=")) - place,
                             OnWindows() ? "PosX=297\nPosY=197" : "PosX=300\nPosY=200");
        }
        StartTheUnit();
        Start();
        WaitUntilQuiet();
        End();
        EXPECT_EQ(Settings(), settings) << run;
    }
}

TEST_F(SessionTest, ClosesInEveryState) {
    // Searching: COM1 is there and says nothing.
    Terminal silent;
    LinkPort("COM1", silent.Path());
    Start();
    End();
    // Transferring.
    AddDiscs(20, 99);
    StartTheUnit();
    Start();
    ASSERT_TRUE(WaitUntil([&] { return unit->CountRequests("TitleRead") > 5; }));
    End();
    // With an open editor, whose text is not sent.
    StartTheUnit();
    Start();
    WaitUntilQuiet();
    Click(kStopX, kButtonsY);
    Click(kGroupsX, kFirstRowY);
    Xdotool("type --delay 20 'half a ti'");
    End();
    EXPECT_EQ(TitleOf(GroupKind::kDisc, 1, 0), "Harbour in March");
    if (OnWindows()) {
        return;
    }
    // When the session or the terminal goes, the last time behind a box that nobody answers.
    for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
        StartTheUnit(signal == SIGTERM ? std::vector<std::string>{"--menu"} : std::vector<std::string>{});
        Start(signal == SIGTERM ? kError : kTitle);
        const int left = 100 + 10 * signal;
        Xdotool("search --name '^" + std::string(kTitle) + "$' windowmove --sync " + std::to_string(left) + " 99");
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        program->Signal(signal);
        EXPECT_EQ(program->End(kEndLimit), 0) << program->Errors();
        // The frame is a pixel wide.
        EXPECT_NE(Settings().find("PosX=" + std::to_string(left - 1)), std::string::npos) << Settings();
    }
}
