#include "SerialLine.h"

#include <algorithm>
#include <utility>

#include "PortObject.h"
#include "Scheduler.h"

namespace {

// A byte of eight bits has a start bit and a stop bit.
constexpr std::uint64_t kBitsPerByte = 10;
constexpr std::uint64_t kNsPerSecond = 1'000'000'000;
constexpr std::uint64_t kNsPerUs = 1000;
constexpr DWORD kFirstBaudRate = 9600;

// The first whole microsecond at which a moment has come.
std::uint64_t UsAt(std::uint64_t ns) {
    return (ns + kNsPerUs - 1) / kNsPerUs;
}

}  // namespace

std::size_t SerialLine::Burst::ArrivedAt(std::uint64_t ns) const {
    return ns <= startNs ? 0 : std::min<std::size_t>(bytes.size(), (ns - startNs) / byteTime);
}

SerialLine::SerialLine(sim::Scheduler& theScheduler, SerialPeer* thePeer, std::string_view theName)
    : scheduler(theScheduler), peer(thePeer), name(theName) {
    SetBaudRate(kFirstBaudRate);
}

SerialLine::~SerialLine() {
    if (open != nullptr) {
        open->Die();
    }
}

void SerialLine::Send(std::string_view bytes, std::uint64_t delayUs) {
    if (!plugged || bytes.empty()) {
        return;
    }
    const std::uint64_t start = std::max(NowNs() + delayUs * kNsPerUs, toProgramFree);
    toProgram.push_back({std::string(bytes), start, byteTime});
    toProgramFree = toProgram.back().ArrivalNs(bytes.size() - 1);
}

void SerialLine::Unplug() {
    if (!plugged) {
        return;
    }
    plugged = false;
    ++pluggings;
    scheduler.Note(name + " is unplugged");
    // The peer hears the part that had arrived; it may call back, so the line is in order before.
    const std::deque<Burst> cut = std::exchange(toPeer, {});
    toProgram.clear();
    received.clear();
    toPeerFree = 0;
    toProgramFree = 0;
    if (open != nullptr) {
        std::exchange(open, nullptr)->Die();
    }
    for (const Burst& burst : cut) {
        TellPeer(burst, burst.ArrivedAt(NowNs()));
    }
}

void SerialLine::Plug() {
    if (!plugged) {
        plugged = true;
        scheduler.Note(name + " is plugged in");
    }
}

std::uint64_t SerialLine::QuietAt() const {
    return UsAt(std::max(toPeerFree, toProgramFree));
}

bool SerialLine::Opened(sim::PortObject& port) {
    if (!plugged) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return false;
    }
    if (busy || open != nullptr) {
        SetLastError(ERROR_ACCESS_DENIED);
        return false;
    }
    open = &port;
    SetBaudRate(kFirstBaudRate);
    Received().clear();
    return true;
}

void SerialLine::Closed(const sim::PortObject& port) {
    if (open == &port) {
        open = nullptr;
    }
}

void SerialLine::SetBaudRate(DWORD baud) {
    byteTime = kBitsPerByte * kNsPerSecond / baud;
}

void SerialLine::Transmit(std::string_view bytes) {
    const std::uint64_t start = std::max(NowNs(), toPeerFree);
    toPeer.push_back({std::string(bytes), start, byteTime});
    toPeerFree = toPeer.back().ArrivalNs(bytes.size() - 1);
    scheduler.At(UsAt(toPeerFree), [this, plugging = pluggings] { Deliver(plugging); });
}

void SerialLine::Deliver(std::uint64_t plugging) {
    if (plugging != pluggings) {
        return;
    }
    const Burst burst = std::move(toPeer.front());
    toPeer.pop_front();
    TellPeer(burst, burst.bytes.size());
}

void SerialLine::TellPeer(const Burst& burst, std::size_t count) {
    if (count != 0 && peer != nullptr) {
        peer->OnBytes(std::string_view(burst.bytes).substr(0, count), UsAt(burst.ArrivalNs(0)),
                      UsAt(burst.ArrivalNs(count - 1)));
    }
}

std::string& SerialLine::Received() {
    while (!toProgram.empty()) {
        Burst& burst = toProgram.front();
        const std::size_t arrived = burst.ArrivedAt(NowNs());
        received.append(burst.bytes, burst.taken, arrived - burst.taken);
        burst.taken = arrived;
        if (arrived != burst.bytes.size()) {
            break;
        }
        toProgram.pop_front();
    }
    return received;
}

std::uint64_t SerialLine::NowNs() const {
    return scheduler.now * kNsPerUs;
}
