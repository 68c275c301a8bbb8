#include "RuntimeFolder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

namespace kernel {
namespace {

// The folder itself, not what a link leads to: in /tmp anybody can leave a link of that name.
bool IsPrivateFolder(const std::string& path) {
    struct stat status;
    return lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == geteuid() &&
           (status.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}

// An existing folder is checked like a new one.
std::string MakePrivateFolder(const std::string& path) {
    mkdir(path.c_str(), S_IRWXU);
    return IsPrivateFolder(path) ? path : std::string();
}

}  // namespace

std::string RuntimeFolder() {
    if (const char* chosen = std::getenv("TESSELIA_RUNTIME_DIR")) {
        return MakePrivateFolder(chosen);
    }
    // Not below /run/user, which comes and goes with the user's logins.
    return MakePrivateFolder("/tmp/tesselia-" + std::to_string(geteuid()));
}

}  // namespace kernel
