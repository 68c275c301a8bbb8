// Critical sections.
#include <new>
#include <string_view>

#include "LockData.h"
#include "Scheduler.h"

namespace sim {

namespace {

std::uint32_t lastLockNumber = 0;

}  // namespace

LockData* LockData::Of(CRITICAL_SECTION* section, std::string_view action) {
    auto* lock = std::launder(reinterpret_cast<LockData*>(section->storage));
    if (lock->magic == kMagic) {
        return lock;
    }
    Misuse(std::string(action) + " a lock that does not exist");
    return nullptr;
}

void LockData::AddWaiter(SimThread& thread) {
    thread.waitsForLock = this;
    thread.nextForLock = firstWaiter;
    firstWaiter = &thread;
    ++waiterCount;
}

void LockData::RemoveWaiter(SimThread& thread) {
    SimThread** link = &firstWaiter;
    while (*link != &thread) {
        link = &(*link)->nextForLock;
    }
    *link = thread.nextForLock;
    thread.nextForLock = nullptr;
    thread.waitsForLock = nullptr;
    --waiterCount;
}

SimThread& LockData::WaiterAt(std::uint64_t index) {
    SimThread* thread = firstWaiter;
    for (; index != 0; --index) {
        thread = thread->nextForLock;
    }
    return *thread;
}

std::string LockData::Name() const {
    return "lock " + std::to_string(number);
}

}  // namespace sim

using sim::LockData;
using sim::Scheduler;
using sim::SimThread;

// No scheduling point here: static variables are made under a guard of the compiler's, on which a second thread would hang.
void InitializeCriticalSection(LPCRITICAL_SECTION section) {
    new (section->storage) LockData{LockData::kMagic, ++sim::lastLockNumber, 0, nullptr, 0, 0};
}

void DeleteCriticalSection(LPCRITICAL_SECTION section) {
    LockData* lock = LockData::Of(section, "deletes");
    if (lock == nullptr) {
        return;
    }
    if (lock->owner != 0 || lock->firstWaiter != nullptr) {
        sim::Misuse("deletes " + lock->Name());
    }
    lock->magic = 0;
}

void EnterCriticalSection(LPCRITICAL_SECTION section) {
    sim::SchedulingPoint();
    LockData* lock = LockData::Of(section, "takes");
    if (lock == nullptr) {
        return;
    }
    SimThread& self = sim::Self();
    if (lock->owner == self.serial) {
        ++lock->depth;
        return;
    }
    while (lock->owner != 0) {
        Scheduler* scheduler = Scheduler::Current();
        if (scheduler == nullptr || !scheduler->IsOnThread()) {
            sim::Misuse("cannot wait for " + lock->Name());
            return;
        }
        lock->AddWaiter(self);
        scheduler->CheckCircle();
        scheduler->Block(sim::ThreadState::kWaitingForLock, Scheduler::kNever);
    }
    lock->owner = self.serial;
    lock->depth = 1;
    ++self.heldLocks;
}

void LeaveCriticalSection(LPCRITICAL_SECTION section) {
    LockData* lock = LockData::Of(section, "lets go");
    if (lock == nullptr) {
        return;
    }
    SimThread& self = sim::Self();
    if (lock->owner != self.serial) {
        sim::Misuse("lets go " + lock->Name() + ", which it does not hold");
        return;
    }
    if (--lock->depth != 0) {
        return;
    }
    lock->owner = 0;
    --self.heldLocks;
    if (lock->firstWaiter != nullptr) {
        Scheduler* scheduler = Scheduler::Current();
        scheduler->Wake(lock->WaiterAt(scheduler->decisions.Below(lock->waiterCount)), WAIT_OBJECT_0);
    }
    sim::SchedulingPoint();
}
