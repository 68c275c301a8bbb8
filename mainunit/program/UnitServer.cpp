#include "UnitServer.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <optional>
#include <utility>

#include "Dialogue.h"
#include "LibraryFile.h"

namespace mainunit {

namespace {

constexpr int kLineSpeed = 9600;
constexpr std::int64_t kSecondNs = 1'000'000'000;
constexpr std::int64_t kMillisecondNs = 1'000'000;

std::int64_t ClockNs() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * kSecondNs + time.tv_nsec;
}

// A real device has a speed of its own.
int PaceFor(const Options& options) {
    return options.pace.value_or(options.device.empty() ? kLineSpeed : 0);
}

}  // namespace

UnitServer::UnitServer(const Options& options, UnitLibrary library, UnitPort& port, std::FILE* log)
    : libraryPath(options.library),
      port(port),
      log(log),
      unit(std::move(library), options.unit,
           [this](std::string_view bytes, std::string_view problem) {
               Note(Dialogue::RequestLine(NowMs(), bytes, problem));
           }),
      faults(options.seed, options.faults),
      line(PaceFor(options)),
      startNs(ClockNs()) {}

std::int64_t UnitServer::NowNs() const {
    return ClockNs() - startNs;
}

void UnitServer::Note(const std::string& line) {
    if (!log) {
        return;
    }
    std::fprintf(log, "%s\n", line.c_str());
    std::fflush(log);
}

bool UnitServer::Run(const volatile std::sig_atomic_t& stop, const sigset_t& waitMask) {
    bool alive = true;
    while (alive && !stop) {
        alive = Wait(waitMask) && (!incoming || TakeIn());
        SendOut();
    }
    if (unsaved) {
        Save();
    }
    return alive && !unsaved;
}

// Sleeps until bytes came, a client left, the next bytes are to go out, or a signal arrived.
bool UnitServer::Wait(const sigset_t& waitMask) {
    pollfd files[] = {{port.File(), POLLIN, 0}, {port.Departures(), POLLIN, 0}};
    timespec time{};
    const std::optional<std::int64_t> nextNs = line.NextNs();
    if (nextNs) {
        const std::int64_t waitNs = std::max<std::int64_t>(*nextNs - NowNs(), 0);
        time.tv_sec = waitNs / kSecondNs;
        time.tv_nsec = waitNs % kSecondNs;
    }
    incoming = false;
    if (ppoll(files, std::size(files), nextNs ? &time : nullptr, &waitMask) < 0) {
        if (errno == EINTR) {
            return true;
        }
        std::perror("mainunit: ppoll");
        return false;
    }
    if (files[1].revents != 0) {
        port.ClientLeft();
    }
    incoming = files[0].revents != 0;
    return true;
}

bool UnitServer::TakeIn() {
    std::string bytes;
    std::string error;
    if (!port.Read(bytes, error)) {
        std::fprintf(stderr, "mainunit: %s\n", error.c_str());
        return false;
    }
    const std::int64_t arrivedNs = line.ArrivalNs(bytes.size(), NowNs());
    for (const Chunk& chunk : faults.Apply(unit.Receive(bytes))) {
        if (!line.Add(chunk.bytes, arrivedNs + chunk.delayMs * kMillisecondNs)) {
            Note("a reply is dropped: too many wait for the line");
        }
    }
    if (unit.TakeChanged() && !libraryPath.empty()) {
        Save();
    }
    return true;
}

void UnitServer::SendOut() {
    const PacedLine::Taken taken = line.Take(NowNs());
    if (taken.bytes.empty()) {
        return;
    }
    const std::size_t written = port.Write(taken.bytes);
    for (const std::string& chunk : taken.finished) {
        Note(Dialogue::ReplyLine(NowMs(), chunk));
    }
    if (written < taken.bytes.size()) {
        Note(std::to_string(taken.bytes.size() - written) + " bytes are lost: nobody reads them");
    }
}

// A change that cannot be saved is tried again with the next one and at the end.
void UnitServer::Save() {
    std::string error;
    unsaved = !SaveLibrary(libraryPath, unit.Library(), error);
    if (unsaved) {
        std::fprintf(stderr, "mainunit: the library is not saved: %s\n", error.c_str());
    }
}

}  // namespace mainunit
