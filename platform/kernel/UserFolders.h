// Where the user's own files are. Any thread.
#pragma once

#include <string>

namespace kernel {

// The variable HOME, or what the system's entry of the user says where that is missing or relative. Empty if there is
// neither.
std::string HomeFolder();

// The variable XDG_CONFIG_HOME, or .config in the home folder where that is missing or relative. Empty if there is neither.
std::string ConfigurationFolder();

}  // namespace kernel
