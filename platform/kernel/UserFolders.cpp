#include "UserFolders.h"

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

namespace kernel {
namespace {

std::string AbsoluteFolder(const char* folder) {
    return folder != nullptr && folder[0] == '/' ? folder : std::string();
}

}  // namespace

std::string HomeFolder() {
    if (std::string home = AbsoluteFolder(std::getenv("HOME")); !home.empty()) {
        return home;
    }
    constexpr std::size_t kLongestEntry = 16384;
    std::array<char, kLongestEntry> texts;
    passwd entry;
    passwd* found = nullptr;
    getpwuid_r(geteuid(), &entry, texts.data(), texts.size(), &found);
    return found != nullptr ? AbsoluteFolder(found->pw_dir) : std::string();
}

std::string ConfigurationFolder() {
    if (std::string folder = AbsoluteFolder(std::getenv("XDG_CONFIG_HOME")); !folder.empty()) {
        return folder;
    }
    const std::string home = HomeFolder();
    return home.empty() ? std::string() : home + "/.config";
}

}  // namespace kernel
