#include "Ending.h"

#include <cstdio>

int Fail(int code, const std::string& why) {
    std::fprintf(stderr, "titlectl: %s\n", why.c_str());
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
