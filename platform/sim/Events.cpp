// Events without a name.
#include <algorithm>

#include "Event.h"
#include "Scheduler.h"

namespace sim {

namespace {

std::uint32_t lastEventNumber = 0;

}  // namespace

Event::Event(bool manual, bool initial)
    : KernelObject(Kind::kEvent), manualReset(manual), number(++lastEventNumber), signalled(initial) {}

void Event::Set() {
    if (manualReset) {
        signalled = true;
        while (!waiters.empty()) {
            Release(*waiters.front());
        }
    } else if (waiters.empty()) {
        signalled = true;
    } else {
        // The waiter has it at once: nobody who comes now can take it away.
        Release(*waiters[Scheduler::Current()->decisions.Below(waiters.size())]);
    }
}

void Event::Release(SimThread& waiter) {
    const auto place = std::ranges::find_if(waiter.waits, [this](const auto& object) { return object.get() == this; });
    Scheduler::Current()->Wake(waiter, WAIT_OBJECT_0 + static_cast<DWORD>(place - waiter.waits.begin()));
}

}  // namespace sim

using sim::Event;
using sim::KernelObject;

// No scheduling point here: static variables are made under a guard of the compiler's, on which a second thread would hang.
HANDLE CreateEventA(LPSECURITY_ATTRIBUTES security, BOOL manualReset, BOOL initialState, LPCSTR name) {
    if (security != nullptr || name != nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    return sim::HandleTable::Get().Add(std::make_shared<Event>(manualReset != FALSE, initialState != FALSE));
}

BOOL SetEvent(HANDLE handle) {
    const auto event = sim::FindObject<Event>(handle, KernelObject::Kind::kEvent);
    if (event == nullptr) {
        return FALSE;
    }
    event->Set();
    sim::SchedulingPoint();
    return TRUE;
}
