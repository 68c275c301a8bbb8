#include "PortLink.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace mainunit {

namespace {

namespace fs = std::filesystem;

std::string Environment(const char* name) {
    const char* const value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): the program has one thread
    return value ? value : "";
}

bool Fail(std::string& error, const fs::path& path, const std::error_code& problem) {
    error = path.string() + ": " + problem.message();
    return false;
}

}  // namespace

std::string DefaultPortsFolder() {
    const std::string configuration = Environment("XDG_CONFIG_HOME");
    if (configuration.starts_with('/')) {
        return configuration + "/tesselia/ports";
    }
    std::string home = Environment("HOME");
    if (!home.starts_with('/')) {
        const passwd* const user = getpwuid(geteuid());  // NOLINT(concurrency-mt-unsafe): the program has one thread
        home = user && user->pw_dir ? user->pw_dir : "";
    }
    return home.starts_with('/') ? home + "/.config/tesselia/ports" : "";
}

PortLink::~PortLink() {
    // Another unit may have taken the name over in the meantime; its link stays.
    std::error_code problem;
    if (!path.empty() && fs::read_symlink(path, problem) == target) {
        fs::remove(path, problem);
    }
}

bool PortLink::Create(const std::string& folder, const std::string& name, const std::string& device, std::string& error) {
    std::error_code problem;
    fs::create_directories(folder, problem);
    if (problem) {
        return Fail(error, folder, problem);
    }
    std::string file = name;
    for (char& letter : file) {
        if (letter >= 'A' && letter <= 'Z') {
            letter = static_cast<char>(letter - 'A' + 'a');
        }
    }
    const fs::path link = fs::path(folder) / file;
    const fs::file_status there = fs::symlink_status(link, problem);
    // A link to anything but a pseudo terminal is the user's own, to a real port.
    if (fs::is_symlink(there) && fs::read_symlink(link, problem).string().starts_with("/dev/pts/")) {
        fs::remove(link, problem);
    } else if (fs::exists(there)) {
        error = link.string() + ": is there already and leads to no simulated unit";
        return false;
    }
    fs::create_symlink(device, link, problem);
    if (problem) {
        return Fail(error, link, problem);
    }
    path = link.string();
    target = device;
    return true;
}

}  // namespace mainunit
