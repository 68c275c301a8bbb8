#include "Stopper.h"

#include "Lock.h"

namespace {

// The handler has a thread of its own, so the session and its end are under the lock.
class Stopper {
public:
    void Watch(UnitSession* newSession) {
        LockGuard guard(lock);
        session = newSession;
    }

    // Whether this is the first time: whoever asks twice does not want to wait for the line.
    bool Stop() {
        LockGuard guard(lock);
        if (session == nullptr || asked) {
            return false;
        }
        asked = true;
        session->RequestStop();
        return true;
    }

private:
    CriticalSection lock;
    UnitSession* session = nullptr;
    bool asked = false;
};

// Never destroyed, since the handler's thread may still be in it when the program ends.
Stopper& TheStopper() {
    static Stopper& stopper = *new Stopper;
    return stopper;
}

BOOL WINAPI OnConsoleEvent(DWORD) {
    return TheStopper().Stop();
}

}  // namespace

void StopOnCtrlC(UnitSession* session) {
    TheStopper().Watch(session);
    if (session != nullptr) {
        SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
    }
}
