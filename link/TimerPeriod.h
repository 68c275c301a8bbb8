// Makes short sleeps precise while it is held. An idle program does without.
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
