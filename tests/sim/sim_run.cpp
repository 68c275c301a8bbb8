// Runs the link's simulation for one seed, or for many, and prints what each run has drawn.
//
//   sim_run --seed N     one run, with everything that it drew
//   sim_run --seeds N    seeds 1 to N; --from F begins at F; stops at the first that fails
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "LinkWorld.h"

namespace {

bool RunOne(std::uint64_t seed, bool verbose, double& virtualSeconds, int& misfiled) {
    const WorldOptions options = WorldOptions::Draw(seed, Canary::kNone);
    if (verbose) {
        std::printf("%s\n", options.Text().c_str());
        std::fflush(stdout);
    }
    const WorldOutcome outcome = RunWorld(options);
    virtualSeconds += outcome.virtualSeconds;
    misfiled += outcome.misfiled;
    if (!outcome.passed) {
        std::printf("FAILED %s\n%s\nrepeat with: build/checked/bin/sim_run --seed %llu\n", options.Text().c_str(),
                    outcome.report.c_str(), static_cast<unsigned long long>(seed));
    } else if (verbose) {
        std::printf("passed, %.0f s of line time, trace %016llx\n", outcome.virtualSeconds,
                    static_cast<unsigned long long>(outcome.traceHash));
    }
    return outcome.passed;
}

}  // namespace

int main(int argc, char** argv) {
    std::uint64_t from = 1;
    std::uint64_t to = 0;
    bool verbose = false;
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::uint64_t number = std::strtoull(argv[i + 1], nullptr, 10);
        if (std::strcmp(argv[i], "--seed") == 0) {
            from = to = number;
            verbose = true;
        } else if (std::strcmp(argv[i], "--seeds") == 0) {
            to = number;
        } else if (std::strcmp(argv[i], "--from") == 0) {
            from = number;
        }
    }
    if (to < from) {
        std::fputs("usage: sim_run --seed N | sim_run --seeds N [--from F]\n", stderr);
        return 2;
    }
    double virtualSeconds = 0;
    int misfiled = 0;
    const auto begin = std::chrono::steady_clock::now();
    for (std::uint64_t seed = from; seed <= to; ++seed) {
        if (!RunOne(seed, verbose, virtualSeconds, misfiled)) {
            return 1;
        }
    }
    const std::chrono::duration<double> real = std::chrono::steady_clock::now() - begin;
    std::printf(
        "%llu runs passed: %.0f s of line time in %.1f s, %.0f times real time; %d titles misfiled by replies later than "
        "the repeat of their request\n",
        static_cast<unsigned long long>(to - from + 1), virtualSeconds, real.count(), virtualSeconds / real.count(),
        misfiled);
    return 0;
}
