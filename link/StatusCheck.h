// Judges the unit's answers while an operation waits for it to be ready.
#pragma once

#include <windows.h>

#include <cstdint>

#include "Frames.h"
#include "LinkMessages.h"
#include "RequestRing.h"

inline constexpr LinkRequest kAskReady = {LinkRequest::kStatusQuery, kStatusReady, 0, 0};

struct StatusVerdict {
    bool ready = false;
    BYTE status = ST_OK;  // what has failed
    LinkRequest next;     // what to ask next; free when ready or failed
    DWORD pauseMs = 0;    // before the next question
};

class StatusCheck {
public:
    void Begin() { repeats = 0; }

    // The answer `value` to a StatusQuery with `parameter`. The unit is asked for ever where `limited` is false.
    StatusVerdict Judge(std::uint32_t parameter, std::uint32_t value, bool limited);

private:
    BYTE Count(std::uint32_t value, bool limited);

    std::int32_t repeats = 0;  // waiting values in a row
};
