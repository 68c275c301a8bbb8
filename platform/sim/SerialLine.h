// A serial line between the program and what a test has put at its other end.
#pragma once

#include <windows.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <string_view>

namespace sim {
class PortObject;
class Scheduler;
}  // namespace sim

// What is at the other end. It is called by the scheduler, from no thread of the program, and may call Send.
struct SerialPeer {
    virtual ~SerialPeer() = default;
    // One write of the program, when its last byte has arrived; times in virtual microseconds, each the end of that byte's
    // transmission. Of a write that was cut off by pulling the plug, the part that had arrived.
    virtual void OnBytes(std::string_view bytes, std::uint64_t firstByteUs, std::uint64_t lastByteUs) = 0;
};

// Both directions run at the baud rate that the program has set (9600 after opening), ten bits a byte, each byte arriving at
// its own time, behind what is still on its way. A WriteFile is over as soon as the driver has the bytes.
class SerialLine {
public:
    // accepted: whether the driver took the bytes.
    using WriteObserver = std::function<void(std::string_view bytes, std::uint64_t timeUs, bool accepted)>;

    // Bytes for the program, on their way after a delay. They are lost on an unplugged line, and those that arrive before
    // the program opens the port are lost when it does.
    void Send(std::string_view bytes, std::uint64_t delayUs = 0);

    // An unplugged port cannot be opened; an open one is dead for good, even when the line is plugged in again. What is on
    // its way is lost.
    void Unplug();
    void Plug();

    // Another program has the port: opening it fails. An open port is not touched.
    void SetBusy(bool newBusy) { busy = newBusy; }
    // Every write fails while that is on, as it may on Windows, and the line hears nothing of it.
    void RejectWrites(bool newReject) { rejectWrites = newReject; }
    // Called for each WriteFile that reaches a live port, by the writing thread and before the peer hears of it; must not
    // wait.
    void OnWrite(WriteObserver newObserver) { observer = std::move(newObserver); }

    // The virtual time in microseconds at which the last byte of either direction arrives, as far as it is sent by now.
    std::uint64_t QuietAt() const;

    // The rest serves the calls of the program.
    SerialLine(sim::Scheduler& scheduler, SerialPeer* peer, std::string_view name);
    ~SerialLine();
    SerialLine(const SerialLine&) = delete;
    SerialLine& operator=(const SerialLine&) = delete;

private:
    friend class sim::PortObject;

    // Bytes on their way, back to back.
    struct Burst {
        std::string bytes;
        std::uint64_t startNs;   // of the first byte's transmission
        std::uint64_t byteTime;  // nanoseconds for each
        std::size_t taken = 0;   // bytes that have left the burst at its front

        std::uint64_t ArrivalNs(std::size_t index) const { return startNs + (index + 1) * byteTime; }
        std::size_t ArrivedAt(std::uint64_t ns) const;
    };

    bool Opened(sim::PortObject& port);
    void Closed(const sim::PortObject& port);
    void SetBaudRate(DWORD baud);
    void Transmit(std::string_view bytes);
    void Deliver(std::uint64_t plugging);
    void TellPeer(const Burst& burst, std::size_t count);
    // Moves what has arrived by now into the driver's buffer.
    std::string& Received();
    std::uint64_t NowNs() const;

    sim::Scheduler& scheduler;
    SerialPeer* const peer;
    const std::string name;
    sim::PortObject* open = nullptr;
    bool plugged = true;
    bool busy = false;
    bool rejectWrites = false;
    WriteObserver observer;

    std::uint64_t byteTime;        // nanoseconds
    std::uint64_t pluggings = 0;   // a delivery of an earlier plugging is void
    std::deque<Burst> toPeer;      // until the last byte has arrived
    std::deque<Burst> toProgram;   // until the last byte is in the driver's buffer
    std::uint64_t toPeerFree = 0;  // nanoseconds: when the next byte may start
    std::uint64_t toProgramFree = 0;
    std::string received;  // the driver's buffer
};
