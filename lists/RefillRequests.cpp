#include "RefillRequests.h"

#include <cassert>

void RefillRequests::Request(GroupId group) {
    const LockGuard guard(lock);
    latest.Add(1);
    rebuildRequested = true;
    pendingGroup = group;
}

void RefillRequests::Cancel() {
    const LockGuard guard(lock);
    latest.Add(1);
    rebuildRequested = false;
}

bool RefillRequests::Repeat() {
    const LockGuard guard(lock);
    if (rebuildRequested) {
        latest.Add(1);
    }
    return rebuildRequested;
}

void RefillRequests::SetRanges(const DisplayRanges& newRanges) {
    const LockGuard guard(lock);
    ranges = newRanges;
}

bool RefillRequests::IsRequested() const {
    const LockGuard guard(lock);
    return rebuildRequested;
}

bool RefillRequests::End(const Refill& refill) {
    const LockGuard guard(lock);
    assert(rebuilding != 0);
    rebuilding = 0;
    if (!IsLatest(refill)) {
        return false;
    }
    rebuildRequested = false;
    return true;
}

bool RefillRequests::Begin(Refill& refill) {
    const LockGuard guard(lock);
    if (!rebuildRequested) {
        return false;
    }
    assert(rebuilding == 0);
    rebuilding = 1;
    refill = {latest, pendingGroup, ranges};
    return true;
}
