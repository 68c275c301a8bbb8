#include "CommandLine.h"

#include <cstdlib>
#include <cstring>
#include <vector>

const char kUsage[] =
    "titlectl [--port COMn] list              every Disc and Album title\n"
    "titlectl [--port COMn] get GROUP [TRACK] a group's title and its tracks, or one of them\n"
    "titlectl [--port COMn] set GROUP TRACK TEXT\n"
    "titlectl [--port COMn] export GROUP FILE a group's titles to a new CSV file\n"
    "titlectl [--port COMn] import [--dry-run] GROUP FILE\n"
    "                                         a group's titles from a CSV, tab text or ASX file, by its extension;\n"
    "                                         writes those that differ, after asking, or only tells which\n"
    "titlectl [--port COMn] backup FILE       all titles of the main unit to a new JSON file\n"
    "titlectl [--port COMn] restore [--dry-run] FILE\n"
    "                                         the same as import with all titles of a backup\n"
    "titlectl --help                          shows this text\n"
    "\n"
    "GROUP is D1 to D999 for a Disc, A1 to A999 for an Album. TRACK is 1 to 99, or 0 for the group's own title. TEXT has at "
    "most\n"
    "32 printable ASCII characters. Only titles that the main unit has can be written, and no tracks of Albums. Without "
    "--port\n"
    "the main unit is searched on COM1 to COM8.\n"
    "\n"
    "Exit codes: 0 done, 1 usage, 2 no main unit, 3 busy, 4 MENU mode, 5 tray open, 6 no data, 7 time-out, 8 write "
    "refused,\n"
    "9 HDD not selected or not stopped, 10 no such title or not writable, 11 read back something else, 12 line disturbed,\n"
    "13 file not read or not written, 130 stopped by the user.\n";

namespace {

using Words = std::vector<const char*>;

constexpr int kPorts = 8;

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

// Takes the option away from the front.
bool TakeOption(Words& words, const char* option) {
    if (words.empty() || std::strcmp(words[0], option) != 0) {
        return false;
    }
    words.erase(words.begin());
    return true;
}

bool ParseGet(const Words& words, Command& command) {
    return (words.size() == 1 || (words.size() == 2 && ParseNumber(words[1], 0, kTracks, command.track))) &&
           ParseGroup(words[0], command.group);
}

bool ParseSet(const Words& words, Command& command) {
    if (words.size() != 3 || !ParseGroup(words[0], command.group) || !ParseNumber(words[1], 0, kTracks, command.track)) {
        return false;
    }
    command.text = words[2];
    return true;
}

bool ParseGroupFile(const Words& words, Command& command) {
    if (words.size() != 2 || !ParseGroup(words[0], command.group)) {
        return false;
    }
    command.file = words[1];
    return true;
}

bool ParseFile(const Words& words, Command& command) {
    if (words.size() != 1) {
        return false;
    }
    command.file = words[0];
    return true;
}

}  // namespace

bool ParseCommand(int count, char** arguments, Command& command) {
    Words words(arguments + 1, arguments + count);
    if (TakeOption(words, "--port")) {
        if (words.empty() || !IsPortName(words[0])) {
            return false;
        }
        command.port = words[0];
        words.erase(words.begin());
    }
    if (words.empty()) {
        return false;
    }
    command.verb = words[0];
    words.erase(words.begin());
    if (command.verb == "list") {
        return words.empty();
    }
    if (command.verb == "get") {
        return ParseGet(words, command);
    }
    if (command.verb == "set") {
        return ParseSet(words, command);
    }
    if (command.verb == "import" || command.verb == "restore") {
        command.dryRun = TakeOption(words, "--dry-run");
    }
    if (command.verb == "import" || command.verb == "export") {
        return ParseGroupFile(words, command);
    }
    return (command.verb == "backup" || command.verb == "restore") && ParseFile(words, command);
}
