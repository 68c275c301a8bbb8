// Options: the command line of the program mainunit.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Faults.h"
#include "MainUnit.h"

namespace mainunit {

struct Options {
    std::string device;   // empty: a pseudo terminal
    std::string spy;      // a device to be listened to; empty: a unit is simulated
    std::string link;     // "COM1" to "COM8", or empty
    std::string ports;    // the folder for the link; empty: that of the user's configuration
    std::string library;  // empty: nothing is loaded or saved
    bool sample = false;
    UnitSettings unit;
    FaultRates faults;
    std::uint64_t seed = 1;
    std::optional<int> pace;  // bits in a second, 0 for no pacing
    std::string log;          // a file, "-" for the standard output, empty for the standard error
    bool quiet = false;
    bool help = false;
};

// `arguments` without the name of the program. On failure the result is false and `error` is a line for the user.
bool ParseOptions(const std::vector<std::string>& arguments, Options& options, std::string& error);

// The text of --help.
const char* Usage();

}  // namespace mainunit
