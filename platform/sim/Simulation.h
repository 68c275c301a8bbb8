// One run of the program in virtual time, and what a test can do to it.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "SerialLine.h"

namespace sim {
class Scheduler;
}

// The threads of the program are fibers of the one system thread that calls Run; which of them goes on at each sleep, wait,
// lock, event, call of a port and access to a Shared<T> is drawn from the seed. Virtual time stands still while any of them
// can go on, and else jumps to the next moment at which something happens. The same seed, options and program give the same
// run, on any machine.
//
// One object serves one run, and one run is on at a time. Outside of a run the calls of win/kernel.h work as far as they
// need no waiting and no thread, so that static objects may have locks; a call that would have to wait ends the process.
//
// A run that does not end well drops its threads where they stand: nothing on their stacks is destroyed, and what the
// program keeps in static variables is in no defined state. A test stops its process after such a run, or at least its
// program.
class Simulation {
public:
    struct Options {
        std::uint64_t seed = 1;
        DWORD jitterMs = 1;             // a wake-up by time is late by up to this, in steps of a quarter of one
        double switchChance = 0.1;      // 0 to 1: that a lock, event, port call or Shared access lets another thread go on
        std::size_t traceEvents = 200;  // how many of the last events Report shows
        std::uint64_t standstillPoints = 50'000'000;  // so many scheduling points at one moment of time end the run
    };

    // Faults that can be on for a part of the run; each is a chance of 0 to 1.
    struct Faults {
        double stallChance = 0;    // at a scheduling point: the thread stands still ...
        DWORD stallMs = 0;         // ... for up to so long
        double threadFailure = 0;  // CreateThread gives 0
    };

    enum class Outcome {
        kNotRun,
        kDone,        // main has returned, and every other thread had ended before
        kLeftover,    // main has returned, and others had not ended
        kDeadlock,    // nobody can ever go on, or a circle of threads waits for each other
        kTimeLimit,   // the virtual time is up
        kStandstill,  // a thread runs for ever without any time passing
        kMisuse,      // the program has broken a rule of the seam, see Report
        kFailed,      // somebody has called Fail
    };

    explicit Simulation(const Options& options);
    ~Simulation();
    Simulation(const Simulation&) = delete;
    Simulation& operator=(const Simulation&) = delete;

    // Runs main as the first thread until it returns, at most until the limit in virtual microseconds; true for Done. Main
    // ends like a thread that CreateThread has made: its FLS callbacks run.
    [[nodiscard]] bool Run(std::function<void()> main, std::uint64_t limitUs);
    Outcome Result() const;
    // The result in words with its reason, seed, options, every thread and what it waits for, and the last events. At any
    // time.
    std::string Report() const;

    // The run that is on, or null.
    static Simulation* Current();

    // Virtual microseconds since the start.
    std::uint64_t Now() const;
    // 0 to limit - 1, from a stream that only callers of this function draw from: it does not disturb the scheduler's.
    std::uint64_t Random(std::uint64_t limit);
    // True with a probability of 0 to 1, from the same stream.
    bool Chance(double probability);

    // Folds an event of the caller's into the hash, and into the last events of the report.
    void Trace(std::string_view text);
    // Over every decision of the scheduler and every traced event so far.
    std::uint64_t TraceHash() const;

    // Calls back at a virtual time, or at once if that has passed, from no thread of the program: the callback must not wait
    // nor take a lock that the program may hold. Callbacks of one moment run in the order of the calls, before any thread
    // does.
    void At(std::uint64_t timeUs, std::function<void()> callback);
    void SetFaults(const Faults& faults);
    // Ends the run. From a thread it does not return; from a callback it does, and no thread runs any more.
    void Fail(std::string_view reason);

    // A port "COM1" to "COM8" with the peer behind it, which outlives the simulation. All other ports are absent.
    SerialLine& AttachPort(std::string_view name, SerialPeer* peer);

    // Calls of timeBeginPeriod that have not seen their timeEndPeriod.
    int PeriodsHeld() const;
    // Times that a thread was given the processor so far.
    std::uint64_t Switches() const;

private:
    std::unique_ptr<sim::Scheduler> scheduler;
};
