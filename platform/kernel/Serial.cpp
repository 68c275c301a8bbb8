// Serial ports by termios.
#include "Serial.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <new>

#include "Handles.h"
#include "LastError.h"
#include "PortNames.h"
#include "Time.h"

namespace kernel {
namespace {

constexpr std::int64_t kWriteStallNs = 2000 * kNsPerMs;
constexpr std::int64_t kCloseDrainNs = 500 * kNsPerMs;
// How often a write that waits looks whether its port was closed.
constexpr int kWritePollMs = 50;
// Four bytes at 9600 baud: short against the limit, long against the call.
constexpr DWORD kDrainPollUs = 4000;

struct Speed {
    DWORD baud;
    speed_t code;
};
constexpr Speed kSpeeds[] = {{110, B110},     {300, B300},     {600, B600},      {1200, B1200},
                             {2400, B2400},   {4800, B4800},   {9600, B9600},    {19200, B19200},
                             {38400, B38400}, {57600, B57600}, {115200, B115200}};

// Opens and locks the device without touching its settings, which belong to whoever has it. Gives -1 and the last error.
int OpenExclusively(const std::string& device) {
    if (device.empty()) {
        Fail(ERROR_FILE_NOT_FOUND);
        return -1;
    }
    int file;
    do {
        // Without O_NONBLOCK the call would wait for the carrier.
        file = open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    } while (file < 0 && errno == EINTR);
    if (file < 0) {
        const bool refused = errno == EACCES || errno == EPERM || errno == EBUSY;
        Fail(refused ? ERROR_ACCESS_DENIED : ERROR_FILE_NOT_FOUND);
        return -1;
    }
    // Names of built-in ports exist without the hardware; those, like files that are no line at all, are no terminals.
    DWORD error = ERROR_SUCCESS;
    if (!isatty(file)) {
        error = ERROR_FILE_NOT_FOUND;
    } else if (flock(file, LOCK_EX | LOCK_NB) != 0) {
        error = ERROR_ACCESS_DENIED;
    }
    if (error != ERROR_SUCCESS) {
        close(file);
        Fail(error);
        return -1;
    }
    // The lock binds those who ask for it, this one everybody but root.
    ioctl(file, TIOCEXCL);
    return file;
}

// 8 data bits, no parity, one stop bit, nothing translated, at 9600 baud.
termios RawSettings(const termios& before) {
    termios settings = before;
    cfmakeraw(&settings);
    settings.c_cflag &= ~static_cast<tcflag_t>(CSTOPB | CRTSCTS);
    settings.c_cflag |= CLOCAL | CREAD;
    settings.c_iflag &= ~static_cast<tcflag_t>(IXOFF | IXANY | INPCK);
    settings.c_iflag |= IGNBRK;
    // With a minimum of one byte a read of nothing tells "not yet" from "device gone".
    settings.c_cc[VMIN] = 1;
    settings.c_cc[VTIME] = 0;
    cfsetispeed(&settings, B9600);
    cfsetospeed(&settings, B9600);
    return settings;
}

bool IsSupported(const DCB& state) {
    return state.fBinary && !state.fParity && !state.fOutxCtsFlow && !state.fOutxDsrFlow && state.fDtrControl <= 1 &&
           !state.fDsrSensitivity && !state.fOutX && !state.fInX && !state.fErrorChar && !state.fNull &&
           state.fRtsControl <= 1 && state.ByteSize == 8 && state.Parity == NOPARITY && state.StopBits == ONESTOPBIT;
}

// Devices without such a wire, pseudo terminals among them, refuse this, and lose nothing.
void SetWire(int file, int wire, bool on) {
    ioctl(file, on ? TIOCMBIS : TIOCMBIC, &wire);
}

}  // namespace

Ref<Port> Port::Open(int number) {
    const int file = OpenExclusively(PortDevice(number));
    if (file < 0) {
        return {};
    }
    termios before;
    if (tcgetattr(file, &before) == 0) {
        const termios raw = RawSettings(before);
        if (tcsetattr(file, TCSANOW, &raw) == 0) {
            tcflush(file, TCIOFLUSH);
            if (auto* port = new (std::nothrow) Port(file, before)) {
                return Ref<Port>(port);
            }
        }
    }
    // A device that was pulled out between the calls is as good as missing.
    ioctl(file, TIOCNXCL);
    close(file);
    Fail(ERROR_FILE_NOT_FOUND);
    return {};
}

Port::~Port() {
    // Closing the file would wait for unsent bytes for as long as the driver likes, which is half a minute.
    if (!dead) {
        WaitUntilSent();
    }
    int unsent = 0;
    if (dead || (ioctl(file, TIOCOUTQ, &unsent) == 0 && unsent > 0)) {
        tcflush(file, TCOFLUSH);
    }
    tcsetattr(file, TCSANOW, &before);
    ioctl(file, TIOCNXCL);
    close(file);
}

void Port::WaitUntilSent() {
    const std::int64_t end = MonotonicNs() + kCloseDrainNs;
    while (MonotonicNs() < end) {
        int unsent = 0;
        if (ioctl(file, TIOCOUTQ, &unsent) != 0) {
            return;
        }
        // The driver's queue is empty before the chip's own has gone out; a change of settings would garble the rest.
        int chip = 0;
        const bool chipBusy = ioctl(file, TIOCSERGETLSR, &chip) == 0 && (chip & TIOCSER_TEMT) == 0;
        if (unsent == 0 && !chipBusy) {
            return;
        }
        usleep(kDrainPollUs);
    }
}

BOOL Port::Die(DWORD error) {
    dead = true;
    return Fail(error);
}

void Port::HandleClosed() {
    closed = true;
}

Port::Line Port::LookAtLine(int& bytes) {
    bytes = 0;
    // A second look, so that someone else's flush between the two calls does not pass for the end of the device.
    for (int look = 0; look < 2; ++look) {
        pollfd line{file, POLLIN, 0};
        const int ready = poll(&line, 1, 0);
        if (ready == 0 || (ready < 0 && errno == EINTR)) {
            return Line::kQuiet;
        }
        if (ready < 0 || (line.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0) {
            return Line::kDead;
        }
        if (ioctl(file, FIONREAD, &bytes) != 0) {
            return Line::kDead;
        }
        if (bytes > 0) {
            return Line::kReadable;
        }
    }
    return Line::kDead;
}

BOOL Port::Waiting(DWORD& bytes) {
    bytes = 0;
    const std::lock_guard guard(readLock);
    int count;
    if (dead || LookAtLine(count) == Line::kDead) {
        return Die(ERROR_GEN_FAILURE);
    }
    bytes = static_cast<DWORD>(count);
    return TRUE;
}

BOOL Port::Read(void* buffer, DWORD count, DWORD& read) {
    read = 0;
    const std::lock_guard guard(readLock);
    if (dead) {
        return Fail(ERROR_GEN_FAILURE);
    }
    while (read < count) {
        const ssize_t got = ::read(file, static_cast<char*>(buffer) + read, count - read);
        if (got > 0) {
            read += static_cast<DWORD>(got);
        } else if (got < 0 && errno == EAGAIN) {
            break;
        } else if (got == 0 || errno != EINTR) {
            // Bytes that this call has got before the end are still good.
            dead = true;
            return read > 0 ? TRUE : Fail(ERROR_READ_FAULT);
        }
    }
    return TRUE;
}

// Waits until the line takes bytes. Gives false when the time is over, the port is closed or the device is gone.
bool Port::WaitForRoom(std::int64_t untilNs) {
    while (!closed && !dead) {
        // Rounded up, so that the last look is not before the time.
        const std::int64_t left = (untilNs - MonotonicNs() + kNsPerMs - 1) / kNsPerMs;
        if (left <= 0) {
            return false;
        }
        pollfd line{file, POLLOUT, 0};
        const int ready = poll(&line, 1, static_cast<int>(std::min<std::int64_t>(left, kWritePollMs)));
        if (ready > 0) {
            return (line.revents & (POLLHUP | POLLERR | POLLNVAL)) == 0;
        }
        if (ready < 0 && errno != EINTR) {
            return false;
        }
    }
    return false;
}

BOOL Port::Write(const void* buffer, DWORD count, DWORD& written) {
    written = 0;
    const std::lock_guard guard(writeLock);
    if (dead) {
        return Fail(ERROR_GEN_FAILURE);
    }
    std::int64_t deadline = MonotonicNs() + kWriteStallNs;
    while (written < count) {
        const ssize_t put = ::write(file, static_cast<const char*>(buffer) + written, count - written);
        if (put > 0) {
            written += static_cast<DWORD>(put);
            deadline = MonotonicNs() + kWriteStallNs;
        } else if (put < 0 && errno == EINTR) {
            continue;
        } else if ((put < 0 && errno != EAGAIN) || !WaitForRoom(deadline)) {
            return Die(ERROR_WRITE_FAULT);
        }
    }
    return TRUE;
}

BOOL Port::GetState(DCB& state) {
    state = {};
    state.DCBlength = sizeof state;
    termios settings;
    if (dead || tcgetattr(file, &settings) != 0) {
        return Die(ERROR_GEN_FAILURE);
    }
    const auto* speed = std::find_if(std::begin(kSpeeds), std::end(kSpeeds),
                                     [&](const Speed& s) { return s.code == cfgetospeed(&settings); });
    state.BaudRate = speed != std::end(kSpeeds) ? speed->baud : 0;
    state.fBinary = 1;
    int wires = 0;
    // Where there are no wires the defaults of an open port are told.
    const bool known = ioctl(file, TIOCMGET, &wires) == 0;
    state.fDtrControl = !known || (wires & TIOCM_DTR) != 0;
    state.fRtsControl = !known || (wires & TIOCM_RTS) != 0;
    state.ByteSize = 8;
    state.Parity = NOPARITY;
    state.StopBits = ONESTOPBIT;
    return TRUE;
}

BOOL Port::SetState(const DCB& state) {
    const auto* speed =
        std::find_if(std::begin(kSpeeds), std::end(kSpeeds), [&](const Speed& s) { return s.baud == state.BaudRate; });
    if (!IsSupported(state) || speed == std::end(kSpeeds)) {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    if (dead) {
        return Fail(ERROR_GEN_FAILURE);
    }
    termios settings;
    if (tcgetattr(file, &settings) != 0) {
        return Die(ERROR_GEN_FAILURE);
    }
    cfsetispeed(&settings, speed->code);
    cfsetospeed(&settings, speed->code);
    if (tcsetattr(file, TCSANOW, &settings) != 0) {
        return Die(ERROR_GEN_FAILURE);
    }
    SetWire(file, TIOCM_DTR, state.fDtrControl == 1);
    SetWire(file, TIOCM_RTS, state.fRtsControl == 1);
    return TRUE;
}

}  // namespace kernel

BOOL GetCommState(HANDLE port, DCB* state) {
    const auto object = kernel::FindHandle<kernel::Port>(port);
    return object ? object->GetState(*state) : FALSE;
}

BOOL SetCommState(HANDLE port, DCB* state) {
    const auto object = kernel::FindHandle<kernel::Port>(port);
    return object ? object->SetState(*state) : FALSE;
}

BOOL SetCommTimeouts(HANDLE port, COMMTIMEOUTS*) {
    return kernel::FindHandle<kernel::Port>(port) ? TRUE : FALSE;
}

BOOL ClearCommError(HANDLE port, LPDWORD errors, COMSTAT* status) {
    if (errors) {
        *errors = 0;
    }
    if (status) {
        *status = {};
    }
    const auto object = kernel::FindHandle<kernel::Port>(port);
    if (!object) {
        return FALSE;
    }
    DWORD waiting;
    const BOOL result = object->Waiting(waiting);
    if (status) {
        status->cbInQue = waiting;
    }
    return result;
}
