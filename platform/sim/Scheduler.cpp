#include "Scheduler.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "FiberLocalStorage.h"
#include "LockData.h"

namespace sim {

constinit std::int64_t pointsLeft = INT64_MAX;

namespace {

// The system's ids are multiples of four; the first one is high enough not to be taken for a number of something else.
constexpr DWORD kFirstId = 1000;
constexpr DWORD kIdStep = 4;

// Code takes no virtual time, so threads only get in each other's way when they wake at the same moment. Wake-ups by time
// therefore fall on a grid, of which both a millisecond and the system's beat of 15.625 ms are multiples, and are late by
// steps of it.
constexpr std::uint64_t kGridUs = 125;
constexpr std::uint64_t kLateStepUs = 2 * kGridUs;

SimThread& Outside() {
    static SimThread& outside = *[] {
        auto* thread = new SimThread;
        thread->name = "the outside";
        return thread;
    }();
    return outside;
}

SimThread* running = nullptr;  // null outside of the threads of a run
std::uint64_t lastSerial = 1;  // 1 is the stand-in's

}  // namespace

Scheduler* Scheduler::current = nullptr;

SimThread& Self() {
    return running != nullptr ? *running : Outside();
}

void Misuse(std::string_view what) {
    if (Scheduler* scheduler = Scheduler::Current()) {
        scheduler->End(Simulation::Outcome::kMisuse, Self().name + " " + std::string(what));
        return;
    }
    std::fprintf(stderr, "outside of a simulation: somebody %.*s\n", static_cast<int>(what.size()), what.data());
    std::abort();
}

Scheduler::Scheduler(Simulation& owner, const Simulation::Options& theOptions)
    : simulation(owner),
      options(theOptions),
      decisions(options.seed, 1),
      chances(options.seed, 2),
      world(options.seed, 3),
      trace(options.traceEvents),
      lastId(kFirstId - kIdStep) {}

Scheduler::~Scheduler() = default;

// --- The run -------------------------------------------------------------------------------------------------------------

bool Scheduler::Run(std::function<void()> main, std::uint64_t limitUs) {
    if (current != nullptr || outcome != Simulation::Outcome::kNotRun) {
        std::fputs("simulation: one run for each object, and one at a time\n", stderr);
        std::abort();
    }
    current = this;
    Start(std::move(main), "main");
    while (!stopped) {
        RunDueTimers();
        if (stopped) {
            break;
        }
        if (next != nullptr || !ready.empty()) {
            RunOne();
        } else if (!AdvanceTime(limitUs)) {
            End(timers.empty() ? Simulation::Outcome::kDeadlock : Simulation::Outcome::kTimeLimit,
                timers.empty() ? "nobody can ever go on" : "the time is up");
        }
    }
    // What the program still shares with threads that are dropped must not point to them.
    threadsAtEnd = DescribeThreads();
    for (const auto& thread : threads) {
        StopWaiting(*thread);
    }
    callbacks.clear();
    current = nullptr;
    return outcome == Simulation::Outcome::kDone;
}

void Scheduler::End(Simulation::Outcome newOutcome, std::string_view newReason) {
    // The first reason counts.
    if (!stopped) {
        stopped = true;
        outcome = newOutcome;
        reason = newReason;
    }
    if (running != nullptr) {
        running->fiber->Abandon();
    }
}

void Scheduler::RunDueTimers() {
    while (!stopped && !timers.empty() && timers.top().time <= now) {
        const Timer timer = timers.top();
        timers.pop();
        if (timer.thread == nullptr) {
            const auto found = callbacks.find(timer.number);
            const std::function<void()> callback = std::move(found->second);
            callbacks.erase(found);
            CountStep();
            callback();
        } else if (timer.thread->wakeNumber == timer.number) {
            Wake(*timer.thread, WAIT_TIMEOUT);
        }
    }
}

bool Scheduler::AdvanceTime(std::uint64_t limitUs) {
    // Waits that ended early have left their timers behind; time does not pass for them.
    while (!timers.empty() && timers.top().thread != nullptr && timers.top().thread->wakeNumber != timers.top().number) {
        timers.pop();
    }
    if (timers.empty()) {
        return false;
    }
    if (timers.top().time > limitUs) {
        now = std::max(now, limitUs);
        return false;
    }
    now = timers.top().time;
    steps = 0;
    return true;
}

void Scheduler::RunOne() {
    SimThread* thread = std::exchange(next, nullptr);
    if (thread == nullptr) {
        const std::size_t index = ready.size() == 1 ? 0 : decisions.Below(ready.size());
        thread = ready[index];
        ready[index] = ready.back();
        ready.pop_back();
    }
    CountStep();
    if (!stopped) {
        Resume(*thread);
    }
}

void Scheduler::Resume(SimThread& thread) {
    ++switches;
    trace.Run(now, thread.id);
    thread.state = ThreadState::kRunning;
    running = &thread;
    GrantPoints();
    thread.fiber->Enter();
    TakeBackPoints();
    pointsLeft = INT64_MAX;
    running = nullptr;
    if (thread.state == ThreadState::kEnded) {
        thread.fiber.reset();
        thread.program = nullptr;
        freeThreads.push_back(&thread);
    }
}

// --- Threads -------------------------------------------------------------------------------------------------------------

std::shared_ptr<ThreadObject> Scheduler::Start(std::function<void()> program, std::string_view name) {
    if (faults.threadFailure > 0 && chances.Chance(faults.threadFailure)) {
        return nullptr;
    }
    if (freeThreads.empty()) {
        threads.push_back(std::make_unique<SimThread>());
        freeThreads.push_back(threads.back().get());
    }
    SimThread& thread = *freeThreads.back();
    freeThreads.pop_back();
    // Timers of the thread that was here before must stay stale: their numbers never come again.
    lastId += kIdStep;
    thread.id = lastId;
    thread.serial = ++lastSerial;
    thread.name = name.empty() ? "thread " + std::to_string(thread.id) : std::string(name);
    thread.program = std::move(program);
    thread.lastError = ERROR_SUCCESS;
    thread.localStorage = nullptr;
    thread.object = std::make_shared<ThreadObject>(thread.id);
    thread.fiber = std::make_unique<Fiber>(RunProgram, &thread);
    MakeReady(thread);
    return thread.object;
}

// Whatever the program lets out ends the process here.
void Scheduler::RunProgram(void* object) noexcept {
    auto& thread = *static_cast<SimThread*>(object);
    thread.program();
    fiberlocals::ThreadEnds();
    current->EndOfThread(thread);
    thread.fiber->Finish();
}

void Scheduler::EndOfThread(SimThread& thread) {
    if (thread.heldLocks != 0) {
        Misuse("ends while it holds a lock");
    }
    thread.object->ended = true;
    // Every wait takes itself off the list.
    while (!thread.object->waiters.empty()) {
        SimThread& waiter = *thread.object->waiters.front();
        const auto place = std::ranges::find(waiter.waits, thread.object);
        Wake(waiter, WAIT_OBJECT_0 + static_cast<DWORD>(place - waiter.waits.begin()));
    }
    thread.object = nullptr;
    thread.state = ThreadState::kEnded;
    if (&thread == threads.front().get()) {
        const bool alone =
            std::ranges::all_of(threads, [](const auto& other) { return other->state == ThreadState::kEnded; });
        stopped = true;
        outcome = alone ? Simulation::Outcome::kDone : Simulation::Outcome::kLeftover;
        reason = alone ? "" : "main has returned and other threads have not ended";
    }
}

void Scheduler::MakeReady(SimThread& thread) {
    thread.state = ThreadState::kReady;
    ready.push_back(&thread);
    if (running != nullptr) {
        // Whoever runs now has a rival: its next point is one of choice.
        TakeBackPoints();
        GrantPoints();
    }
}

void Scheduler::Wake(SimThread& thread, DWORD result) {
    StopWaiting(thread);
    thread.waitResult = result;
    MakeReady(thread);
}

void Scheduler::StopWaiting(SimThread& thread) {
    thread.wakeNumber = 0;
    for (const auto& object : thread.waits) {
        std::erase(object->waiters, &thread);
    }
    thread.waits.clear();
    if (thread.waitsForLock != nullptr) {
        thread.waitsForLock->RemoveWaiter(thread);
    }
}

DWORD Scheduler::Block(ThreadState state, std::uint64_t untilUs) {
    SimThread& self = *running;
    self.state = state;
    self.wakeTime = untilUs;
    if (untilUs != kNever) {
        self.wakeNumber = ++lastNumber;
        timers.push({untilUs, lastNumber, &self});
    }
    self.fiber->Leave();
    return self.waitResult;
}

DWORD Scheduler::BlockFor(ThreadState state, std::uint64_t untilUs) {
    if (untilUs == kNever) {
        return Block(state, kNever);
    }
    const std::uint64_t late = decisions.Below(std::uint64_t{options.jitterMs} * 1000 / kLateStepUs + 1) * kLateStepUs;
    return Block(state, (untilUs + kGridUs - 1) / kGridUs * kGridUs + late);
}

void Scheduler::Yield() {
    SimThread& self = *running;
    self.state = ThreadState::kReady;
    ready.push_back(&self);
    self.fiber->Leave();
}

// --- Scheduling points ---------------------------------------------------------------------------------------------------

void Scheduler::Point() {
    CountStep();
    if (faults.stallChance > 0 && chances.Chance(faults.stallChance)) {
        Block(ThreadState::kStalled, now + chances.Below(std::uint64_t{faults.stallMs} * 1000 + 1));
        return;
    }
    if (ready.empty() || !decisions.Chance(options.switchChance)) {
        return;
    }
    SimThread& self = *running;
    SimThread*& place = ready[decisions.Below(ready.size())];
    next = place;
    place = &self;
    self.state = ThreadState::kReady;
    self.fiber->Leave();
}

void PointReached() {
    Scheduler::PointReachedByRunningThread();
}

void Scheduler::PointReachedByRunningThread() {
    if (running == nullptr) {
        pointsLeft = INT64_MAX;
        return;
    }
    current->TakeBackPoints();
    current->Point();
    current->GrantPoints();
}

void Scheduler::GrantPoints() {
    const bool alone = ready.empty() && faults.stallChance <= 0;
    granted = alone && steps < options.standstillPoints ? static_cast<std::int64_t>(options.standstillPoints - steps) : 0;
    pointsLeft = granted;
}

void Scheduler::TakeBackPoints() {
    // The point that asks for the scheduler has gone one below 0; it is counted by Point.
    steps += static_cast<std::uint64_t>(granted - std::max<std::int64_t>(pointsLeft, 0));
    granted = 0;
    pointsLeft = 0;
}

void Scheduler::FaultsChanged() {
    if (running != nullptr) {
        TakeBackPoints();
        GrantPoints();
    }
}

void Scheduler::CountStep() {
    if (++steps > options.standstillPoints) {
        const std::string who = running == nullptr ? "somebody" : running->name;
        End(Simulation::Outcome::kStandstill, "no time passes: " + who + " goes on for ever");
    }
}

// --- The world around ----------------------------------------------------------------------------------------------------

void Scheduler::At(std::uint64_t timeUs, std::function<void()> callback) {
    callbacks.emplace(++lastNumber, std::move(callback));
    timers.push({std::max(timeUs, now), lastNumber, nullptr});
}

void Scheduler::Note(std::string_view text) {
    trace.Note(now, running == nullptr ? 0 : running->id, text);
}

bool Scheduler::IsOnThread() const {
    return running != nullptr;
}

}  // namespace sim
