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
    for (const int open : {departures, slave, file}) {
        if (open >= 0) {
            close(open);
        }
    }
}

bool UnitPort::OpenTerminal(std::string& error) {
    char name[128];
    file = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (file < 0 || grantpt(file) != 0 || unlockpt(file) != 0 || ptsname_r(file, name, sizeof name) != 0) {
        return Fail(error, "pseudo terminal");
    }
    path = name;
    slave = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (slave < 0 || !MakeRaw(slave)) {
        return Fail(error, path);
    }
    departures = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (departures < 0 || inotify_add_watch(departures, name, IN_CLOSE_WRITE) < 0) {
        return Fail(error, path);
    }
    return true;
}

bool UnitPort::OpenDevice(const std::string& device, std::string& error) {
    path = device;
    file = open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (file < 0 || flock(file, LOCK_EX | LOCK_NB) != 0 || !MakeRaw(file) || tcflush(file, TCIOFLUSH) != 0) {
        return Fail(error, path);
    }
    return true;
}

bool UnitPort::Read(std::string& bytes, std::string& error) {
    char part[4096];
    const ssize_t count = read(file, part, sizeof part);
    if (count > 0) {
        bytes.append(part, static_cast<std::size_t>(count));
        return true;
    }
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) {
        return true;
    }
    if (count < 0) {
        return Fail(error, path);
    }
    error = path + ": the device is gone";
    return false;
}

std::size_t UnitPort::Write(std::string_view bytes) {
    const ssize_t count = write(file, bytes.data(), bytes.size());
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

void UnitPort::ClientLeft() {
    alignas(inotify_event) char events[4096];
    while (read(departures, events, sizeof events) > 0) {}
    // A client that took the terminal for itself alone and crashed leaves it so while the unit holds it open.
    ioctl(slave, TIOCNXCL);
}

}  // namespace mainunit
