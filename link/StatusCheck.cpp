#include "StatusCheck.h"

namespace {

constexpr DWORD kPauseBeforePollMs = 100;

// How often in a row the unit may answer with a waiting value before the operation gives up.
constexpr std::int32_t kTrayLimit = 10;
constexpr std::int32_t kNoDataLimit = 50;
constexpr std::int32_t kBusyLimit = 100;

}  // namespace

StatusVerdict StatusCheck::Judge(std::uint32_t parameter, std::uint32_t value, bool limited) {
    if (const BYTE status = Count(value, limited); status != ST_OK) {
        return {.status = status, .next = {}};
    }
    if (parameter == kStatusMenu) {
        return value == 0xFF ? StatusVerdict{.next = kAskReady} : StatusVerdict{.status = ST_MENU_MODE, .next = {}};
    }
    switch (value) {
        case 0x40: return {.ready = true, .next = {}};
        case 0x00:
        case 0x01:
        case 0x02:
        case 0x46:
        case 0xFE:
        case 0xFF: return {.next = kAskReady, .pauseMs = kPauseBeforePollMs};
        case 0x04:
        case 0x05:
        case 0x06:
        case 0x07:
        case 0x08: return {.next = {LinkRequest::kUnitCommand, kCommandBE, 0, 0}};
        case 0xFD: return {.next = {LinkRequest::kUnitCommand, kCommandBD, 0, 0}};
        default: return {.status = ST_NOT_STOPPED, .next = {}};
    }
}

// The failure that the count has come to. The waiting values share one count, which 0x02 leaves as it is.
BYTE StatusCheck::Count(std::uint32_t value, bool limited) {
    if (value == 0x02) {
        return ST_OK;
    }
    if (value != 0x00 && value != 0x46 && value != 0xFE && value != 0xFF) {
        repeats = 0;
        return ST_OK;
    }
    ++repeats;
    if (limited && value == 0x00 && repeats > kTrayLimit) {
        return ST_TRAY_OPEN;
    }
    if (limited && value == 0x46 && repeats > kNoDataLimit) {
        return ST_NO_DATA;
    }
    return limited && value >= 0xFE && repeats > kBusyLimit ? ST_BUSY : ST_OK;
}
