// Runs the link's simulation for one seed, or for many, and prints what each run has drawn.
//
//   sim_run --seed N     one run, with everything that it drew
//   sim_run --seeds N    seeds 1 to N; --from F begins at F, --jobs J works on J at a time; each job stops where one fails
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
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

// Every step-th seed from the first on; false at the first that fails.
bool RunMany(std::uint64_t from, std::uint64_t to, std::uint64_t step, bool verbose) {
    double virtualSeconds = 0;
    int misfiled = 0;
    const auto begin = std::chrono::steady_clock::now();
    for (std::uint64_t seed = from; seed <= to; seed += step) {
        if (!RunOne(seed, verbose, virtualSeconds, misfiled)) {
            return false;
        }
    }
    const std::chrono::duration<double> real = std::chrono::steady_clock::now() - begin;
    std::printf(
        "%llu runs passed: %.0f s of line time in %.1f s, %.0f times real time; %d titles misfiled by replies later than "
        "the repeat of their request\n",
        static_cast<unsigned long long>((to - from) / step + 1), virtualSeconds, real.count(), virtualSeconds / real.count(),
        misfiled);
    return true;
}

// The seeds shared out among processes, since one holds one simulation at a time.
bool RunInJobs(std::uint64_t from, std::uint64_t to, std::uint64_t jobs) {
    for (std::uint64_t job = 0; job < jobs && from + job <= to; ++job) {
        const pid_t child = fork();
        if (child < 0) {
            std::perror("sim_run");
            break;
        }
        if (child == 0) {
            const bool passed = RunMany(from + job, to, jobs, false);
            std::fflush(stdout);
            _exit(passed ? 0 : 1);
        }
    }
    std::uint64_t passed = 0;
    int status = 0;
    while (wait(&status) > 0) {
        passed += WIFEXITED(status) && WEXITSTATUS(status) == 0 ? 1 : 0;
    }
    return passed == std::min(jobs, to - from + 1);
}

}  // namespace

int main(int argc, char** argv) {
    std::uint64_t from = 1;
    std::uint64_t to = 0;
    std::uint64_t jobs = 1;
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
        } else if (std::strcmp(argv[i], "--jobs") == 0) {
            jobs = number;
        }
    }
    if (to < from) {
        std::fputs("usage: sim_run --seed N | sim_run --seeds N [--from F] [--jobs J]\n", stderr);
        return 2;
    }
    const bool passed = jobs > 1 ? RunInJobs(from, to, jobs) : RunMany(from, to, 1, verbose);
    return passed ? 0 : 1;
}
