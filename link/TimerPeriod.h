// Precise short sleeps, for as long as somebody needs them. An idle program should not ask for them.
#pragma once

#include <windows.h>

class TimerPeriod {
public:
    void Hold() {
        if (!held) {
            held = timeBeginPeriod(kMs) == TIMERR_NOERROR;
        }
    }
    void Release() {
        if (held) {
            timeEndPeriod(kMs);
            held = false;
        }
    }

private:
    static constexpr UINT kMs = 1;
    bool held = false;
};
