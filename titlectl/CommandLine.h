// The command line of titlectl.
#pragma once

#include <string>

#include "TitleNumbers.h"

extern const char kUsage[];

struct Command {
    const char* port = nullptr;  // null to search all
    std::string verb;
    GroupId group = 0;
    TrackNo track = -1;  // -1 for all
    std::string text;
    std::string file;
    bool dryRun = false;
};

// False for anything that the usage does not tell.
bool ParseCommand(int count, char** arguments, Command& command);
