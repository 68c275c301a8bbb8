// UnitPort: the unit's end of the line, a pseudo terminal of its own or a real serial device.
#pragma once

#include <string>
#include <string_view>

namespace mainunit {

// All calls return at once. On failure a call is false and `error` says why.
class UnitPort {
public:
    UnitPort() = default;
    UnitPort(const UnitPort&) = delete;
    UnitPort& operator=(const UnitPort&) = delete;
    ~UnitPort();

    bool OpenTerminal(std::string& error);
    // 9600 bits a second, 8 data bits, no parity, 1 stop bit, no handshake. The device is locked against other programs.
    bool OpenDevice(const std::string& device, std::string& error);

    // What a client opens, or the device.
    const std::string& Path() const { return path; }

    // To be waited for: readable when bytes came or the device is gone.
    int File() const { return file; }
    // To be waited for: readable when a client closed the pseudo terminal. -1 for a device.
    int Departures() const { return departures; }

    // Appends what came. False when the device is gone.
    bool Read(std::string& bytes, std::string& error);

    // Bytes for which there is no room are lost, as on a line at whose end nobody reads. The number of bytes that went.
    std::size_t Write(std::string_view bytes);

    // After a client closed the pseudo terminal: makes it free for the next one.
    void ClientLeft();

private:
    int file = -1;
    int slave = -1;  // held open, since the terminal would report a hang-up whenever no client has it open
    int departures = -1;
    std::string path;
};

}  // namespace mainunit
