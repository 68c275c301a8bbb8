// What the scheduler says about a run, and what it finds wrong with a wait.
#include <cinttypes>
#include <cstdio>

#include "LockData.h"
#include "Scheduler.h"

namespace sim {

std::string Scheduler::Report() const {
    char numbers[200];
    std::snprintf(numbers, sizeof numbers,
                  "seed %" PRIu64 ", jitterMs %u, switchChance %g, %" PRIu64 " switches, trace %016" PRIx64 "\n",
                  options.seed, options.jitterMs, options.switchChance, switches, trace.Hash());
    std::string text = std::string("simulation: ") + OutcomeText() + " at " + TimeText(now);
    text += reason.empty() ? "\n" : ": " + reason + "\n";
    text += numbers;
    text += current == this ? DescribeThreads() : threadsAtEnd;
    if (options.traceEvents != 0) {
        text += "last events:\n" + trace.Text();
    }
    return text;
}

std::string Scheduler::DescribeThreads() const {
    std::string text;
    for (const auto& thread : threads) {
        if (thread->state != ThreadState::kEnded) {
            text += "  " + Describe(*thread) + "\n";
        }
    }
    return text;
}

std::string Scheduler::Describe(const SimThread& thread) const {
    std::string text = "thread " + std::to_string(thread.id) + " (" + thread.name + ") ";
    switch (thread.state) {
        case ThreadState::kEnded: return text + "has ended";
        case ThreadState::kReady: return text + "could run";
        case ThreadState::kRunning: return text + "runs";
        case ThreadState::kSleeping: text += "sleeps"; break;
        case ThreadState::kStalled: text += "is stalled"; break;
        case ThreadState::kWaitingForLock: {
            const SimThread* owner = FindThread(thread.waitsForLock->owner);
            return text + "waits for " + thread.waitsForLock->Name() + ", held by " +
                   (owner != nullptr ? owner->name : "a thread of an earlier run");
        }
        case ThreadState::kWaitingForObjects:
            text += "waits for ";
            for (const auto& object : thread.waits) {
                text += (object == thread.waits.front() ? "" : " or ") + object->Name();
            }
            break;
    }
    return text + (thread.wakeTime == kNever ? " for ever" : " until " + TimeText(thread.wakeTime));
}

const char* Scheduler::OutcomeText() const {
    switch (outcome) {
        case Simulation::Outcome::kNotRun: return Current() == this ? "still running" : "not run";
        case Simulation::Outcome::kDone: return "done";
        case Simulation::Outcome::kLeftover: return "threads left over";
        case Simulation::Outcome::kDeadlock: return "deadlock";
        case Simulation::Outcome::kTimeLimit: return "time limit";
        case Simulation::Outcome::kStandstill: return "standstill";
        case Simulation::Outcome::kMisuse: return "misuse";
        case Simulation::Outcome::kFailed: break;
    }
    return "failed";
}

void Scheduler::CheckCircle() {
    // The caller is not yet marked as waiting when it asks, but what it waits for is set.
    const SimThread& self = Self();
    std::string circle = self.name;
    const SimThread* thread = WaitsForThread(self);
    // Every wait in a chain is another thread's, so that more than all of them are a circle that the caller is not in.
    for (std::size_t i = 0; thread != nullptr && i < threads.size(); ++i) {
        circle += ", which waits for " + thread->name;
        if (thread == &self) {
            End(Simulation::Outcome::kDeadlock, circle);
        }
        thread = WaitsForThread(*thread);
    }
}

SimThread* Scheduler::WaitsForThread(const SimThread& thread) const {
    if (thread.waitsForLock != nullptr) {
        return FindThread(thread.waitsForLock->owner);
    }
    const bool endless = thread.waits.size() == 1 && thread.wakeTime == kNever;
    if (!endless || thread.waits.front()->kind != KernelObject::Kind::kThread) {
        return nullptr;
    }
    for (const auto& other : threads) {
        if (other->object == thread.waits.front()) {
            return other.get();
        }
    }
    return nullptr;
}

SimThread* Scheduler::FindThread(std::uint64_t serial) const {
    for (const auto& thread : threads) {
        if (thread->serial == serial && thread->state != ThreadState::kEnded) {
            return thread.get();
        }
    }
    return nullptr;
}

}  // namespace sim
