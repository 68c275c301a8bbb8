// titlectl: lists, reads, writes, backs up and restores the titles of a main unit from the command line.
#include <cstdio>
#include <cstring>

#include "Commands.h"
#include "Ending.h"
#include "Stopper.h"

namespace {

struct Verb {
    const char* name;
    int (*run)(UnitSession& session, const Command& command);
};

constexpr Verb kVerbs[] = {{"list", List},     {"get", Get},       {"set", Set},        {"import", Import},
                           {"export", Export}, {"backup", Backup}, {"restore", Restore}};

}  // namespace

int main(int argc, char** argv) {
    if (argc == 2 && std::strcmp(argv[1], "--help") == 0) {
        std::fputs(kUsage, stdout);
        return kExitDone;
    }
    Command command;
    if (!ParseCommand(argc, argv, command)) {
        std::fputs(kUsage, stderr);
        return kExitUsage;
    }
    UnitSession session;
    if (!session.IsReady()) {
        return Fail(kExitNoUnit, "no window could be made to receive the link's messages");
    }
    StopOnCtrlC(&session);
    int code = kExitUsage;
    for (const Verb& verb : kVerbs) {
        if (command.verb == verb.name) {
            code = verb.run(session, command);
        }
    }
    StopOnCtrlC(nullptr);
    return code;
}
