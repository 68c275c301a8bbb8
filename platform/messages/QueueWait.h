// How the thread of a queue goes to sleep and is woken.
#pragma once

#include <windows.h>

// A thread whose events come from elsewhere as well (from the screen) can sleep there instead: this class is all that knows
// how.
class QueueWait {
public:
    QueueWait();
    ~QueueWait();
    QueueWait(const QueueWait&) = delete;
    QueueWait& operator=(const QueueWait&) = delete;

    // False if the system had no event to give; the object can then not be used.
    bool IsUsable() const { return wake != nullptr; }

    // From any thread. The owner's wait that is under way, or else its next one, returns.
    void Wake();

    // On the owner's thread. At most MAXIMUM_WAIT_OBJECTS - 1 handles. Gives what WaitForMultipleObjects gives for the
    // handles, and WAIT_OBJECT_0 + count after Wake; handles go first.
    DWORD Wait(DWORD count, const HANDLE* handles, DWORD milliseconds);

private:
    HANDLE wake;  // auto-reset
};
