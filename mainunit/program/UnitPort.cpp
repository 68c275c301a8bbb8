#include "UnitPort.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace mainunit {

namespace {

bool Fail(std::string& error, const std::string& what) {
    error = what + ": " + std::system_category().message(errno);
    return false;
}

// Every byte as it is: no echo, no translation of CR and LF, no signals from control bytes.
bool MakeRaw(int file) {
    termios settings{};
    if (tcgetattr(file, &settings) != 0) {
        return false;
    }
    cfmakeraw(&settings);
    settings.c_cflag &= ~static_cast<tcflag_t>(CSTOPB | PARENB | CRTSCTS);
    settings.c_cflag |= CS8 | CLOCAL | CREAD;
    settings.c_cc[VMIN] = 1;
    settings.c_cc[VTIME] = 0;
    return cfsetispeed(&settings, B9600) == 0 && cfsetospeed(&settings, B9600) == 0 &&
           tcsetattr(file, TCSANOW, &settings) == 0;
}

}  // namespace

UnitPort::~UnitPort() {
    for (const int file : {departures_, slave_, file_}) {
        if (file >= 0) {
            close(file);
        }
    }
}

bool UnitPort::OpenTerminal(std::string& error) {
    char name[128];
    file_ = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (file_ < 0 || grantpt(file_) != 0 || unlockpt(file_) != 0 || ptsname_r(file_, name, sizeof name) != 0) {
        return Fail(error, "pseudo terminal");
    }
    path_ = name;
    slave_ = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (slave_ < 0 || !MakeRaw(slave_)) {
        return Fail(error, path_);
    }
    departures_ = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (departures_ < 0 || inotify_add_watch(departures_, name, IN_CLOSE_WRITE) < 0) {
        return Fail(error, path_);
    }
    return true;
}

bool UnitPort::OpenDevice(const std::string& path, std::string& error) {
    path_ = path;
    file_ = open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (file_ < 0 || flock(file_, LOCK_EX | LOCK_NB) != 0 || !MakeRaw(file_) || tcflush(file_, TCIOFLUSH) != 0) {
        return Fail(error, path);
    }
    return true;
}

bool UnitPort::Read(std::string& bytes, std::string& error) {
    char part[4096];
    const ssize_t count = read(file_, part, sizeof part);
    if (count > 0) {
        bytes.append(part, static_cast<std::size_t>(count));
        return true;
    }
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) {
        return true;
    }
    if (count < 0) {
        return Fail(error, path_);
    }
    error = path_ + ": the device is gone";
    return false;
}

std::size_t UnitPort::Write(std::string_view bytes) {
    const ssize_t count = write(file_, bytes.data(), bytes.size());
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

void UnitPort::ClientLeft() {
    alignas(inotify_event) char events[4096];
    while (read(departures_, events, sizeof events) > 0) {}
    // A client that took the terminal for itself alone and crashed leaves it so while the unit holds it open.
    ioctl(slave_, TIOCNXCL);
}

}  // namespace mainunit
