// titlectl: lists, reads and writes the titles of a main unit from the command line.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "Lock.h"
#include "UnitSession.h"

namespace {

enum ExitCode {
    kExitDone = 0,
    kExitUsage = 1,
    kExitNoUnit = 2,
    kExitBusy = 3,
    kExitMenuMode = 4,
    kExitTrayOpen = 5,
    kExitNoData = 6,
    kExitTimeOut = 7,
    kExitRefused = 8,
    kExitNotStopped = 9,
    kExitNotWritable = 10,
    kExitDiffers = 11,
    kExitDisturbed = 12,
    kExitStopped = 130,
};

constexpr char kUsage[] =
    "titlectl [--port COMn] list              every Disc and Album title\n"
    "titlectl [--port COMn] get GROUP [TRACK] a group's title and its tracks, or one of them\n"
    "titlectl [--port COMn] set GROUP TRACK TEXT\n"
    "\n"
    "GROUP is D1 to D999 for a Disc, A1 to A999 for an Album. TRACK is 1 to 99, or 0 for the group's own title. TEXT has at "
    "most\n"
    "32 printable ASCII characters. Without --port the main unit is searched on COM1 to COM8.\n"
    "\n"
    "Exit codes: 0 done, 1 usage, 2 no main unit, 3 busy, 4 MENU mode, 5 tray open, 6 no data, 7 time-out, 8 write "
    "refused,\n"
    "9 HDD not selected or not stopped, 10 no such title or not writable, 11 read back something else, 12 line disturbed,\n"
    "130 stopped by the user.\n";

constexpr int kPorts = 8;

struct Command {
    const char* port = nullptr;
    std::string verb;
    GroupId group = 0;
    TrackNo track = -1;  // -1 for all
    std::string text;
};

// The session that the user can stop. The handler has a thread of its own, so the session and its end are under the lock.
class Stopper {
public:
    void Watch(UnitSession* session) {
        LockGuard lock(lock_);
        session_ = session;
    }

    // Whether this is the first time: whoever asks twice does not want to wait for the line.
    bool Stop() {
        LockGuard lock(lock_);
        if (session_ == nullptr || asked_) {
            return false;
        }
        asked_ = true;
        session_->RequestStop();
        return true;
    }

private:
    CriticalSection lock_;
    UnitSession* session_ = nullptr;
    bool asked_ = false;
};

Stopper& TheStopper() {
    static Stopper& stopper = *new Stopper;
    return stopper;
}

BOOL WINAPI OnConsoleEvent(DWORD) {
    return TheStopper().Stop();
}

int Fail(int code, const char* why) {
    std::fprintf(stderr, "titlectl: %s\n", why);
    return code;
}

int Report(Outcome outcome) {
    switch (outcome) {
        case Outcome::kDone: return kExitDone;
        case Outcome::kNoUnit: return Fail(kExitNoUnit, "no main unit answers; is it switched on and connected?");
        case Outcome::kNoPort: return Fail(kExitNoUnit, "there is no such port");
        case Outcome::kPortTaken: return Fail(kExitNoUnit, "the port is in use, or you may not use it (group dialout?)");
        case Outcome::kBusy: return Fail(kExitBusy, "the main unit stays busy");
        case Outcome::kNotStopped: return Fail(kExitNotStopped, "select the HDD on the main unit and stop it");
        case Outcome::kMenuMode: return Fail(kExitMenuMode, "the main unit is in MENU mode; leave the menu first");
        case Outcome::kTrayOpen: return Fail(kExitTrayOpen, "the disc tray is open");
        case Outcome::kNoData: return Fail(kExitNoData, "the HDD holds no data");
        case Outcome::kTimeOut: return Fail(kExitTimeOut, "the main unit has stopped answering");
        case Outcome::kRefused: return Fail(kExitRefused, "the main unit refuses this title");
        case Outcome::kDisturbed: return Fail(kExitDisturbed, "the line is disturbed; nothing more was done");
        case Outcome::kStopped: return Fail(kExitStopped, "stopped");
    }
    return kExitTimeOut;
}

bool ParseNumber(const char* text, int least, int most, int& value) {
    char* end = nullptr;
    const long number = std::strtol(text, &end, 10);
    value = static_cast<int>(number);
    return *text >= '0' && *text <= '9' && *end == '\0' && number >= least && number <= most;
}

bool IsPortName(const char* name) {
    int number = 0;
    return std::strncmp(name, "COM", 3) == 0 && ParseNumber(name + 3, 1, kPorts, number);
}

bool ParseGroup(const char* text, GroupId& group) {
    int number = 0;
    const char kind = static_cast<char>(text[0] & ~0x20);
    if ((kind != 'D' && kind != 'A') || !ParseNumber(text + 1, 1, kDiscs, number)) {
        return false;
    }
    group = kind == 'A' ? AlbumGroup(number) : number;
    return true;
}

bool ParseCommand(int count, char** arguments, Command& command) {
    std::vector<const char*> words(arguments + 1, arguments + count);
    if (words.size() >= 2 && std::strcmp(words[0], "--port") == 0) {
        command.port = words[1];
        if (!IsPortName(words[1])) {
            return false;
        }
        words.erase(words.begin(), words.begin() + 2);
    }
    if (words.empty()) {
        return false;
    }
    command.verb = words[0];
    const std::size_t given = words.size() - 1;
    if (command.verb == "list") {
        return given == 0;
    }
    if (given < 1 || !ParseGroup(words[1], command.group)) {
        return false;
    }
    if (given >= 2 && !ParseNumber(words[2], 0, kTracks, command.track)) {
        return false;
    }
    if (command.verb == "get") {
        return given <= 2;
    }
    if (command.verb == "set" && given == 3) {
        command.text = words[3];
        return true;
    }
    return false;
}

void PrintTitle(TitleStore& store, GroupId group, TrackNo track) {
    char text[kTitleSize];
    if (!store.GetTitle(group, track, text)) {
        return;
    }
    const char kind = IsAlbum(group) ? 'A' : 'D';
    const int number = IsAlbum(group) ? AlbumNumber(group) : group;
    const char* mark = store.IsEdited(group, track) ? "*" : "";
    std::printf("%c%-3d %2d  %s%s\n", kind, number, track, text, mark);
}

int List(UnitSession& session) {
    session.Limit(0, -1);
    const Outcome outcome = session.ReadGroupTitles();
    for (GroupId group = 1; group <= kGroups; ++group) {
        PrintTitle(session.Store(), group, 0);
    }
    return Report(outcome);
}

int Get(UnitSession& session, const Command& command) {
    session.Limit(command.group, command.track);
    const Outcome outcome = session.ReadGroup(command.group);
    if (outcome != Outcome::kDone) {
        return Report(outcome);
    }
    TitleStore& store = session.Store();
    const TrackNo first = command.track < 0 ? 0 : command.track;
    const TrackNo last = command.track < 0 ? kTracks : command.track;
    int found = 0;
    for (TrackNo track = first; track <= last; ++track) {
        found += store.GetState(command.group, track) > TS_NONE ? 1 : 0;
        PrintTitle(store, command.group, track);
    }
    return found > 0 ? kExitDone : Fail(kExitNotWritable, "the main unit has no such title");
}

// Blanks at the end of a title do not survive the wire: they cannot be told from the padding.
std::string WithoutEndBlanks(const std::string& text) {
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

bool IsTitleText(const std::string& text) {
    return text.size() <= static_cast<std::size_t>(kTitleLength) &&
           text.find_first_not_of(
               " !\"#$%&'()*+,-./0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_`abcdefghijklmnopqrstuvwxyz{|}~") ==
               std::string::npos;
}

int Set(UnitSession& session, const Command& command) {
    const std::string text = WithoutEndBlanks(command.text);
    session.Limit(command.group, command.track);
    TitleStore& store = session.Store();
    Outcome outcome = session.ReadGroup(command.group);
    if (outcome != Outcome::kDone) {
        return Report(outcome);
    }
    if (store.GetState(command.group, command.track) <= TS_NONE) {
        return Fail(kExitNotWritable, "the main unit has no such title; only titles that are there can be changed");
    }
    if (store.EditTitle(command.group, command.track, text.c_str()) == 0) {
        return Fail(kExitNotWritable, "the title could not be changed");
    }
    outcome = session.SendGroup(command.group);
    if (outcome != Outcome::kDone) {
        return Report(outcome);
    }
    // The unit does not say what it has made of a title, so only its own word counts.
    store.ResetAll();
    outcome = session.ReadGroup(command.group);
    if (outcome != Outcome::kDone) {
        return Report(outcome);
    }
    char readBack[kTitleSize] = {};
    const bool there = store.GetTitle(command.group, command.track, readBack) != 0;
    PrintTitle(store, command.group, command.track);
    return there && text == readBack ? kExitDone : Fail(kExitDiffers, "the main unit holds another title than was sent");
}

int Execute(UnitSession& session, const Command& command) {
    const Outcome outcome = session.Connect(command.port);
    if (outcome != Outcome::kDone) {
        return Report(outcome);
    }
    if (command.verb == "list") {
        return List(session);
    }
    return command.verb == "get" ? Get(session, command) : Set(session, command);
}

}  // namespace

int main(int argc, char** argv) {
    Command command;
    if (!ParseCommand(argc, argv, command)) {
        std::fputs(kUsage, stderr);
        return kExitUsage;
    }
    if (command.verb == "set" && IsAlbum(command.group) && command.track != 0) {
        return Fail(kExitNotWritable, "an Album's tracks cannot be written; only its own title can");
    }
    if (command.verb == "set" && !IsTitleText(command.text)) {
        return Fail(kExitNotWritable, "a title has at most 32 printable ASCII characters");
    }
    UnitSession session;
    if (!session.IsReady()) {
        return Fail(kExitNoUnit, "no window could be made to receive the link's messages");
    }
    TheStopper().Watch(&session);
    SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
    const int code = Execute(session, command);
    TheStopper().Watch(nullptr);
    return code;
}
