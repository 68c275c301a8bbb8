// The threads of a run, whose turn it is, and virtual time.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <queue>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Fiber.h"
#include "KernelObject.h"
#include "RandomStream.h"
#include "SchedulingPoint.h"
#include "Simulation.h"
#include "TraceLog.h"

namespace sim {

struct LockData;

// Signalled once the thread has ended.
class ThreadObject : public KernelObject {
public:
    explicit ThreadObject(DWORD threadId) : KernelObject(Kind::kThread), id(threadId) {}
    bool IsSignalled() const override { return ended; }
    std::string Name() const override { return "the end of thread " + std::to_string(id); }

    const DWORD id;
    bool ended = false;
};

enum class ThreadState { kEnded, kReady, kRunning, kSleeping, kStalled, kWaitingForLock, kWaitingForObjects };

// A thread of the program, or the stand-in for the code outside of a run. Used again for another thread once it has ended.
struct SimThread {
    DWORD id = 0;  // 0 outside of a run
    // Tells it from all threads of this process so far, so that a lock knows its owner; never 0.
    std::uint64_t serial = 1;
    std::string name;
    ThreadState state = ThreadState::kEnded;
    std::function<void()> program;
    std::unique_ptr<Fiber> fiber;
    std::shared_ptr<ThreadObject> object;

    std::uint64_t wakeNumber = 0;  // of the timer that may wake it; timers of other numbers are stale
    std::uint64_t wakeTime = 0;    // or kNever
    DWORD waitResult = 0;
    std::vector<std::shared_ptr<KernelObject>> waits;
    LockData* waitsForLock = nullptr;
    SimThread* nextForLock = nullptr;

    int heldLocks = 0;
    DWORD lastError = 0;
    LPVOID localStorage = nullptr;
};

// The thread that runs, or the stand-in.
SimThread& Self();

// The program has broken a rule of the seam. In a run this ends the run, and returns only if no thread called; outside of
// one it ends the process.
void Misuse(std::string_view what);

class Scheduler {
public:
    static constexpr std::uint64_t kNever = UINT64_MAX;

    // Of the run that is on, or null.
    static Scheduler* Current() { return current; }

    Scheduler(Simulation& owner, const Simulation::Options& options);
    ~Scheduler();

    bool Run(std::function<void()> main, std::uint64_t limitUs);
    // From a thread it does not return.
    void End(Simulation::Outcome newOutcome, std::string_view reason);
    std::string Report() const;

    // Gives null if the fault of that name strikes.
    std::shared_ptr<ThreadObject> Start(std::function<void()> program, std::string_view name);

    // The calls below are for a thread that runs.

    // Another thread may go on here.
    void Point();
    // Anybody may go on, the caller too.
    void Yield();
    // Waits for Wake, or until a time; gives the argument of Wake, or WAIT_TIMEOUT.
    DWORD Block(ThreadState state, std::uint64_t untilUs);
    // For a time that the program has asked for: with the lateness that is drawn for every such wake-up.
    DWORD BlockFor(ThreadState state, std::uint64_t untilUs);
    // Ends the run if the caller, which is about to block without a time, closes a circle.
    void CheckCircle();

    // From anywhere.
    void Wake(SimThread& thread, DWORD result);
    void At(std::uint64_t timeUs, std::function<void()> callback);
    void Note(std::string_view text);
    bool IsOnThread() const;
    void FaultsChanged();

    static void PointReachedByRunningThread();

    Simulation& simulation;
    const Simulation::Options options;
    Simulation::Faults faults;
    Simulation::Outcome outcome = Simulation::Outcome::kNotRun;
    std::uint64_t now = 0;  // microseconds
    int periodsHeld = 0;    // of timeBeginPeriod
    std::uint64_t switches = 0;
    RandomStream decisions;  // the scheduler's
    RandomStream chances;    // the faults'
    RandomStream world;      // the test's
    TraceLog trace;
    std::vector<std::unique_ptr<SerialLine>> lines;  // by number of the port, from COM1

private:
    struct Timer {
        std::uint64_t time;
        std::uint64_t number;  // in order of setting
        SimThread* thread;     // null: a callback
        bool operator>(const Timer& other) const { return time != other.time ? time > other.time : number > other.number; }
    };

    static void RunProgram(void* thread) noexcept;
    void EndOfThread(SimThread& thread);
    void RunDueTimers();
    bool AdvanceTime(std::uint64_t limitUs);
    void RunOne();
    void Resume(SimThread& thread);
    void MakeReady(SimThread& thread);
    void StopWaiting(SimThread& thread);
    void GrantPoints();
    void TakeBackPoints();
    void CountStep();
    SimThread* FindThread(std::uint64_t serial) const;
    SimThread* WaitsForThread(const SimThread& thread) const;
    std::string DescribeThreads() const;
    std::string Describe(const SimThread& thread) const;
    const char* OutcomeText() const;

    static Scheduler* current;

    std::vector<std::unique_ptr<SimThread>> threads;  // in order of their first start
    std::vector<SimThread*> freeThreads;
    std::vector<SimThread*> ready;
    SimThread* next = nullptr;  // whom a thread has chosen to go on in its place
    std::priority_queue<Timer, std::vector<Timer>, std::greater<>> timers;
    std::unordered_map<std::uint64_t, std::function<void()>> callbacks;  // by number of the timer; never gone through
    std::uint64_t lastNumber = 0;
    DWORD lastId;
    std::uint64_t steps = 0;   // scheduling points since time has last moved
    std::int64_t granted = 0;  // what pointsLeft was set to
    bool stopped = false;
    std::string reason;
    std::string threadsAtEnd;
};

}  // namespace sim
