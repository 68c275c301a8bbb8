#include "LineSpy.h"

#include <poll.h>

#include <cerrno>
#include <ctime>

#include "Dialogue.h"

namespace mainunit {

namespace {

std::int64_t ClockMs() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return std::int64_t{time.tv_sec} * 1000 + time.tv_nsec / 1'000'000;
}

}  // namespace

LineSpy::LineSpy(UnitPort& client, UnitPort& unit, std::FILE* log)
    : requests{client, unit, PieceCutter::ForRequests(), true},
      replies{unit, client, PieceCutter::ForReplies(), false},
      log(log),
      startMs(ClockMs()) {}

bool LineSpy::Run(const volatile std::sig_atomic_t& stop, const sigset_t& waitMask) {
    bool alive = true;
    while (alive && !stop) {
        alive = Wait(waitMask) && (!hasRequest || Carry(requests)) && (!hasReply || Carry(replies));
    }
    // Half a frame may be what the fault report is about.
    for (const Direction* direction : {&requests, &replies}) {
        if (!direction->cutter.HeldBytes().empty()) {
            Note(*direction, direction->cutter.HeldBytes());
        }
    }
    return alive;
}

bool LineSpy::Wait(const sigset_t& waitMask) {
    UnitPort& client = requests.from;
    pollfd files[] = {{client.File(), POLLIN, 0}, {client.Departures(), POLLIN, 0}, {requests.to.File(), POLLIN, 0}};
    hasRequest = hasReply = false;
    if (ppoll(files, std::size(files), nullptr, &waitMask) < 0) {
        if (errno == EINTR) {
            return true;
        }
        std::perror("mainunit: ppoll");
        return false;
    }
    if (files[1].revents != 0) {
        client.ClientLeft();
    }
    hasRequest = files[0].revents != 0;
    hasReply = files[2].revents != 0;
    return true;
}

// The bytes go on first: the log must not delay the line.
bool LineSpy::Carry(Direction& direction) {
    std::string bytes;
    std::string error;
    if (!direction.from.Read(bytes, error)) {
        std::fprintf(stderr, "mainunit: %s\n", error.c_str());
        return false;
    }
    const std::size_t passed = direction.to.Write(bytes);
    for (const std::string& piece : direction.cutter.Feed(bytes)) {
        Note(direction, piece);
    }
    if (passed < bytes.size()) {
        std::fprintf(log, "%zu bytes are lost: nobody reads them\n", bytes.size() - passed);
    }
    std::fflush(log);
    return true;
}

void LineSpy::Note(const Direction& direction, const std::string& piece) {
    const std::int64_t now = ClockMs() - startMs;
    UnitRequest request;
    std::string problem;
    if (direction.isRequest) {
        ReadRequest(piece, request, problem);
    }
    const std::string line =
        direction.isRequest ? Dialogue::RequestLine(now, piece, problem) : Dialogue::ReplyLine(now, piece);
    std::fprintf(log, "%s\n", line.c_str());
}

}  // namespace mainunit
