// How titlectl ends: its exit codes, and what it says with them.
#pragma once

#include <string>

#include "UnitSession.h"

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
    kExitFile = 13,
    kExitStopped = 130,
};

// Says why on the standard error, and gives the code.
int Fail(int code, const std::string& why);

// Says why an operation ended, unless it is done, and gives the exit code for it.
int Report(Outcome outcome);
