#include "StatusCheck.h"

namespace {

constexpr DWORD kPauseBeforePollMs = 100;

// What the unit answers. The first four values share one count.
constexpr std::uint32_t kTrayOpen = 0x00;
constexpr std::uint32_t kNoData = 0x46;
constexpr std::uint32_t kBusy = 0xFE;
constexpr std::uint32_t kBusyToo = 0xFF;  // and, to kStatusMenu, that the unit is not in MENU mode
constexpr std::uint32_t kWaiting = 0x01;
constexpr std::uint32_t kWaitingUncounted = 0x02;
constexpr std::uint32_t kWantsBEFirst = 0x04;
constexpr std::uint32_t kWantsBELast = 0x08;
constexpr std::uint32_t kWantsBD = 0xFD;
constexpr std::uint32_t kReady = 0x40;

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
        return value == kBusyToo ? StatusVerdict{.next = kAskReady} : StatusVerdict{.status = ST_MENU_MODE, .next = {}};
    }
    if (value >= kWantsBEFirst && value <= kWantsBELast) {
        return {.next = {LinkRequest::kUnitCommand, kCommandBE, 0, 0}};
    }
    switch (value) {
        case kReady: return {.ready = true, .next = {}};
        case kTrayOpen:
        case kNoData:
        case kBusy:
        case kBusyToo:
        case kWaiting:
        case kWaitingUncounted: return {.next = kAskReady, .pauseMs = kPauseBeforePollMs};
        case kWantsBD: return {.next = {LinkRequest::kUnitCommand, kCommandBD, 0, 0}};
        default: return {.status = ST_NOT_STOPPED, .next = {}};
    }
}

// The failure that the count has come to.
BYTE StatusCheck::Count(std::uint32_t value, bool limited) {
    if (value == kWaitingUncounted) {
        return ST_OK;
    }
    if (value != kTrayOpen && value != kNoData && value != kBusy && value != kBusyToo) {
        repeats = 0;
        return ST_OK;
    }
    ++repeats;
    if (limited && value == kTrayOpen && repeats > kTrayLimit) {
        return ST_TRAY_OPEN;
    }
    if (limited && value == kNoData && repeats > kNoDataLimit) {
        return ST_NO_DATA;
    }
    return limited && value >= kBusy && repeats > kBusyLimit ? ST_BUSY : ST_OK;
}
