// Where copies of the program that run at the same time find each other.
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

bool MakePrivateFolder(const std::string& path) {
    // One that exists already is looked at like a new one.
    mkdir(path.c_str(), S_IRWXU);
    return IsPrivateFolder(path);
}

}  // namespace

std::string RuntimeFolder() {
    // A relative folder there is invalid and to be ignored.
    if (const char* runtime = std::getenv("XDG_RUNTIME_DIR"); runtime && runtime[0] == '/') {
        std::string folder = std::string(runtime) + "/tesselia";
        if (IsPrivateFolder(runtime) && MakePrivateFolder(folder))
            return folder;
    }
    const std::string folder = "/tmp/tesselia-" + std::to_string(geteuid());
    return MakePrivateFolder(folder) ? folder : std::string();
}

}  // namespace kernel
