// Where copies of the program that run at the same time find each other.
#pragma once

#include <string>

namespace kernel {

// A folder that belongs to this user and that nobody else can reach: "tesselia" in XDG_RUNTIME_DIR, else, where that is
// missing or not private, "tesselia-" and the user's number in /tmp. It is made if it is missing. Empty if there is none
// that can be trusted. Any thread.
std::string RuntimeFolder();

}  // namespace kernel
