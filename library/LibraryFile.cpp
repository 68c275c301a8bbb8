#include "LibraryFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string_view>
#include <system_error>

#include "LibraryText.h"

namespace library {

namespace {

constexpr std::streamsize kLargestFile = std::streamsize{32} << 20;

std::string LastError() {
    return std::system_category().message(errno);
}

bool WriteAll(int file, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(file, text.data(), text.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return false;
        }
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

// The rename itself is on the disk only once the folder is.
bool SyncFolder(const std::string& folder) {
    const int file = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (file < 0) {
        return false;
    }
    // Some file systems cannot do that for a folder, and then the rename is all that there is.
    const bool synced = fsync(file) == 0 || errno == EINVAL || errno == ENOTSUP;
    close(file);
    return synced;
}

// The file that the name stands for, so that a link is followed and not replaced.
std::string ResolveLink(const std::string& path) {
    char* const real = realpath(path.c_str(), nullptr);
    if (!real) {
        return path;
    }
    std::string resolved(real);
    free(real);
    return resolved;
}

// An existing library keeps its permissions; a new one is readable for all.
mode_t ModeFor(const std::string& path) {
    struct stat info{};
    return stat(path.c_str(), &info) == 0 ? info.st_mode & 07777 : 0644;
}

}  // namespace

bool LoadLibrary(const std::string& path, UnitLibrary& library, std::string& error) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        error = path + ": " + LastError();
        return false;
    }
    std::string text;
    char part[65536];
    while (file.read(part, sizeof part), file.gcount() > 0) {
        text.append(part, static_cast<std::size_t>(file.gcount()));
        if (std::ssize(text) > kLargestFile) {
            error = path + ": is larger than 32 MiB";
            return false;
        }
    }
    if (file.bad()) {
        error = path + ": cannot be read";
        return false;
    }
    if (ParseLibrary(text, library, error)) {
        return true;
    }
    error = path + ": " + error;
    return false;
}

bool SaveLibrary(const std::string& path, const UnitLibrary& library, std::string& error) {
    const std::string target = ResolveLink(path);
    const std::size_t slash = target.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : target.substr(0, slash + 1);
    std::string temporary = target + ".XXXXXX";
    const int file = mkostemp(temporary.data(), O_CLOEXEC);
    if (file < 0) {
        error = path + ": " + LastError();
        return false;
    }
    bool saved = WriteAll(file, FormatLibrary(library)) && fchmod(file, ModeFor(target)) == 0 && fsync(file) == 0;
    if (!saved) {
        error = path + ": " + LastError();
    }
    if (close(file) != 0 && saved) {
        error = path + ": " + LastError();
        saved = false;
    }
    if (saved && rename(temporary.c_str(), target.c_str()) != 0) {
        error = path + ": " + LastError();
        saved = false;
    }
    if (!saved) {
        unlink(temporary.c_str());
        return false;
    }
    if (!SyncFolder(folder)) {
        error = folder + ": " + LastError();
        return false;
    }
    return true;
}

}  // namespace library
