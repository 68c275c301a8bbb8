// Waiting for threads and events.
#include <windows.h>

#include <utility>

#include "Scheduler.h"

using sim::KernelObject;
using sim::Scheduler;
using sim::SimThread;

namespace {

using Objects = std::vector<std::shared_ptr<KernelObject>>;

bool FindWaitObjects(DWORD count, const HANDLE* handles, Objects& objects) {
    for (DWORD i = 0; i < count; ++i) {
        objects.push_back(sim::HandleTable::Get().Find(handles[i]));
        if (objects.back() == nullptr || objects.back()->kind == KernelObject::Kind::kPort) {
            SetLastError(ERROR_INVALID_HANDLE);
            return false;
        }
        if (objects.back() == sim::Self().object) {
            sim::Misuse("waits for its own end");
            SetLastError(ERROR_INVALID_HANDLE);
            return false;
        }
    }
    return true;
}

DWORD BlockOn(Scheduler& scheduler, Objects objects, DWORD milliseconds) {
    SimThread& self = sim::Self();
    self.waits = std::move(objects);
    for (const auto& object : self.waits) {
        object->waiters.push_back(&self);
    }
    if (milliseconds == INFINITE) {
        self.wakeTime = Scheduler::kNever;
        scheduler.CheckCircle();
        return scheduler.Block(sim::ThreadState::kWaitingForObjects, Scheduler::kNever);
    }
    return scheduler.BlockFor(sim::ThreadState::kWaitingForObjects, scheduler.now + std::uint64_t{milliseconds} * 1000);
}

}  // namespace

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    return WaitForMultipleObjects(1, &handle, FALSE, milliseconds);
}

DWORD WaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL waitAll, DWORD milliseconds) {
    sim::SchedulingPoint();
    if (count == 0 || count > MAXIMUM_WAIT_OBJECTS || handles == nullptr || waitAll) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return WAIT_FAILED;
    }
    Scheduler* scheduler = Scheduler::Current();
    Objects objects;
    objects.reserve(count);
    if (!FindWaitObjects(count, handles, objects)) {
        return WAIT_FAILED;
    }
    for (DWORD i = 0; i < count; ++i) {
        if (objects[i]->IsSignalled()) {
            objects[i]->WaitEnded();
            return WAIT_OBJECT_0 + i;
        }
    }
    if (milliseconds == 0) {
        return WAIT_TIMEOUT;
    }
    if (scheduler == nullptr || !scheduler->IsOnThread()) {
        sim::Misuse("waits where nobody can wake it");
        return WAIT_FAILED;
    }
    return BlockOn(*scheduler, std::move(objects), milliseconds);
}
