// The folder in which copies of the program that run at the same time find each other.
#pragma once

#include <string>

namespace kernel {

// A folder that belongs to this user and that nobody else can reach: "tesselia" in /run/user/UID, else /tmp/tesselia-UID.
// XDG_RUNTIME_DIR does not count, as two copies may be started with and without it. TESSELIA_RUNTIME_DIR, which is for
// tests, names another folder. A missing folder is created. Empty if there is none that can be trusted. Any thread.
std::string RuntimeFolder();

}  // namespace kernel
