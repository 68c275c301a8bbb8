// A serial port on a terminal device.
#pragma once

#include <termios.h>

#include <atomic>
#include <mutex>

#include "Stream.h"

namespace kernel {

// A port whose device goes away, or that takes no bytes for two seconds, is dead from then on: every call fails at once, and
// only opening it anew helps. Any thread; a read never waits for a write.
class Port final : public Stream {
public:
    static constexpr Kind kKind = Kind::kPort;

    // Opens COM1 to COM8, at 9600 baud. Gives none with ERROR_FILE_NOT_FOUND if there is no such device, or
    // ERROR_ACCESS_DENIED if someone else has it. Never waits.
    static Ref<Port> Open(int number);

    // Lets bytes that move go out for at most half a second, and drops the rest.
    ~Port() override;

    // Gives what is there, at most count bytes, without waiting for more.
    BOOL Read(void* buffer, DWORD count, DWORD& read) override;
    BOOL Write(const void* buffer, DWORD count, DWORD& written) override;
    void HandleClosed() override;

    BOOL GetState(DCB& state);
    BOOL SetState(const DCB& state);
    // The number of bytes that wait, without waiting for any.
    BOOL Waiting(DWORD& bytes);

private:
    enum class Line { kQuiet, kReadable, kDead };

    Port(int file, const termios& before) : Stream(kKind), file(file), before(before) {}

    Line LookAtLine(int& bytes);
    bool WaitForRoom(std::int64_t untilNs);
    void WaitUntilSent();
    BOOL Die(DWORD error);

    const int file;
    const termios before;  // The settings that the next user of the device finds again.
    std::mutex readLock;   // Held over looking at the line and taking bytes, so that "readable, and zero bytes" is no race.
    std::mutex writeLock;  // One write goes out whole before the next.
    std::atomic<bool> dead{false};    // Set by any thread that finds out.
    std::atomic<bool> closed{false};  // Set by HandleClosed, read by a write in progress.
};

}  // namespace kernel
