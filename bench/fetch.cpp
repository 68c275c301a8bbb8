// How fast group titles come in over a line of 9600 baud, against what the line and the pauses allow, and what an open link
// costs while nothing happens.
//
// Wants a simulated main unit on COM1 whose dialogue goes to the file that the argument names; bench/run sees to that:
//     mainunit --link COM1 --pace 9600 --latency 0 --library LIBRARY --log LOG &
//     bench_fetch LOG
#include <windows.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <string>
#include <vector>

#include "UnitSession.h"
#include "WorkerThread.h"

namespace {

constexpr double kBaud = 9600;
constexpr double kBitsPerByte = 10;
constexpr double kRequestBytes = 24;  // TitleRead
constexpr double kReplyBytes = 44;    // TitleReadReply with a title
constexpr double kPacingMs = 120;
constexpr double kTickMs = 20;
constexpr double kPollMs = 1;
constexpr double kLeastRate = 0.97;

constexpr DWORD kIdleMs = 10'000;
constexpr double kMostIdleShare = 0.01;

// The time of a line of the log has milliseconds only, so it is taken over a stretch of titles.
constexpr std::size_t kStretch = 10;

// One title, from request to request, if no program took any time at all:
//
//     write            line             reader     sender: the next tick     pacing     write
//       |---- 24 + 44 bytes at 9600 ----|-- poll --|---------- ... ----------|-- 120 --|
//
// The sender's ticks are no random moments: the frame is written at the end of a tick, which slept for the pacing first,
// and the sleeps of 20 ms begin there. So the reply is found at the first multiple of 20 ms behind the write that is
// behind the reply's arrival and the reader's poll. The reader's pauses know nothing of all this and cost half a
// millisecond on average; that matters only where it moves the reply across a tick. With 70.8 ms on the line the tick is
// the fourth and a title takes 200 ms: a little less than the 201.3 that half a tick on average would give, and the harder
// one to reach of the two.
double BoundMs() {
    const double line = (kRequestBytes + kReplyBytes) * kBitsPerByte * 1000 / kBaud;
    const double found = std::ceil((line + kPollMs / 2) / kTickMs) * kTickMs;
    return found + kPacingMs;
}

// The times, in milliseconds, at which the unit got the requests for titles.
std::vector<double> RequestTimes(const char* log) {
    std::vector<double> times;
    std::ifstream lines(log);
    for (std::string line; std::getline(lines, line);) {
        double seconds = 0;
        char direction = 0;
        if (line.find(" TitleRead ") != std::string::npos &&
            std::sscanf(line.c_str(), "%lf %c", &seconds, &direction) == 2 && direction == '>') {
            times.push_back(seconds * 1000);
        }
    }
    return times;
}

// The median time of one title, or 0 if there are too few.
double MedianMs(const std::vector<double>& times) {
    std::vector<double> each;
    for (std::size_t i = kStretch; i < times.size(); ++i) {
        each.push_back((times[i] - times[i - kStretch]) / kStretch);
    }
    if (each.empty()) {
        return 0;
    }
    std::sort(each.begin(), each.end());
    return each[each.size() / 2];
}

bool Fetch(UnitSession& session, const char* log) {
    if (session.Connect("COM1") != Outcome::kDone || session.ReadGroupTitles() != Outcome::kDone) {
        std::fputs("bench_fetch: the titles could not be read from COM1\n", stderr);
        return false;
    }
    const std::vector<double> times = RequestTimes(log);
    const double measured = MedianMs(times);
    if (measured <= 0) {
        std::fputs("bench_fetch: too few requests in the log\n", stderr);
        return false;
    }
    const double bound = BoundMs();
    std::printf("fetch of group titles, %zu titles | at least %.0f %% of the rate at %.1f ms each | %.1f %%, %.1f ms each\n",
                times.size(), kLeastRate * 100, bound, bound / measured * 100, measured);
    return true;
}

// The session's port is open and its three workers run. Four more stand for those of the window: message line, group
// watcher and two refreshers, which find nothing to do.
bool StandIdle() {
    WorkerThread workers[4];
    for (WorkerThread& worker : workers) {
        if (!worker.Start([](LPARAM) {}, 0)) {
            return false;
        }
    }
    const std::clock_t before = std::clock();
    Sleep(kIdleMs);
    const double seconds = static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC;
    const double share = seconds * 1000 / kIdleMs;
    std::printf("idle link, port open, 7 workers | at most %.0f %% of one core | %.2f %%\n", kMostIdleShare * 100,
                share * 100);
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("Usage: bench_fetch LOG, with a main unit on COM1 that writes its dialogue to LOG\n", stderr);
        return 2;
    }
    UnitSession session;
    return session.IsReady() && Fetch(session, argv[1]) && StandIdle() ? 0 : 1;
}
