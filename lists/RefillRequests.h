// What a list asks of its refresher, and how far that is.
#pragma once

#include <windows.h>

#include "Lock.h"
#include "Shared.h"
#include "TitleNumbers.h"

// One refill as it was asked for.
struct Refill {
    LONG number;
    GroupId group;
    DisplayRanges ranges;
};

// Every request has a number, and a later one, or Cancel, overtakes all before it. A refill that was overtaken stops, ends
// nothing and leaves no rows behind. The user's thread asks, cancels and ends; the refresher begins and looks.
class RefillRequests {
public:
    // --- The user's thread
    // A refill of this group from now on. What a list without groups to choose from makes of the number is its own business.
    void Request(GroupId group);
    void Cancel();
    // A title has changed: a refill that is wanted or under way begins once more, for it may have read the old text. False
    // if there is none.
    bool Repeat();
    // For the refills that are asked for from now on.
    void SetRanges(const DisplayRanges& newRanges);
    bool IsRequested() const;
    bool IsRebuilding() const { return rebuilding != 0; }
    // The refill is through, or has stopped. True if nothing has overtaken it; then there is nothing left to do.
    bool End(const Refill& refill);

    // --- The refresher
    // True, and the refill to do, if one is wanted.
    bool Begin(Refill& refill);
    bool IsLatest(const Refill& refill) const { return refill.number == latest; }

private:
    // Around the request, so that it is seen whole. Never held across a call of anybody else.
    mutable CriticalSection lock;
    bool rebuildRequested = false;
    GroupId pendingGroup = 0;
    DisplayRanges ranges;
    Shared<LONG> latest = 0;      // number of the latest request; written by the user's thread, under the lock
    Shared<LONG> rebuilding = 0;  // 1 from Begin to End
};
