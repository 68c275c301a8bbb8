// How the queue and the step of the operation react to a reply. On the reader thread, under queueLock.
#include "DeviceLink.h"
#include "LinkOutbox.h"

namespace {

constexpr DWORD kPauseBeforePollMs = 100;
constexpr WPARAM kModelFound = 1118209;  // OP_CONNECT, RC_MODEL, ST_OK

constexpr BYTE kProgressDisc = 5;
constexpr BYTE kProgressAlbum = 7;
constexpr BYTE kProgressTrack = 9;
constexpr BYTE kProgressWrite = 10;

constexpr std::uint32_t kProbeAccepted = 0x10002;
constexpr std::uint32_t kProbeRefused = 0x20002;

}  // namespace

void DeviceLink::React(Outbox& outbox) {
    assert(queueLock.IsHeldByThisThread() && sending && handlingFrame);
    if (result.status != ST_OK && result.status != ST_LAST) {
        return;
    }
    switch (result.operation) {
        case OP_CONNECT: ReactCommon(outbox); break;
        case OP_GET_ALL:
            ReactCommon(outbox);
            ReactReading(outbox);
            break;
        case OP_GET_GROUP:
        case OP_GET_TRACKS:
            ReactCommon(outbox);
            ReactGroup(outbox);
            break;
        case OP_SEND_ALL:
        case OP_SEND_GROUP:
            ReactCommon(outbox);
            ReactSending(outbox);
            break;
        default: operationActive = 0; break;
    }
}

void DeviceLink::ReactCommon(Outbox& outbox) {
    if (result.code == RC_MODEL && step == 1) {
        outbox = {LM_RESULT, kModelFound, static_cast<LPARAM>(result.data), 0};
        stepBusy = false;
    } else if (result.code == RC_STATUS && step == 2) {
        ReactToStatus(outbox);
    } else if (result.code == RC_COMMAND && step == 2 && (result.data == kCommandBD || result.data == kCommandBE)) {
        NextEntry() = {LinkRequest::kStatusQuery, kStatusReady, 0, 0};
    }
}

void DeviceLink::ReactToStatus(Outbox& outbox) {
    const std::uint32_t parameter = result.data >> 16;
    const std::uint32_t value = result.data & 0xFFFF;
    if (parameter == kStatusMenu) {
        if (value == 0xFF) {
            NextEntry() = {LinkRequest::kStatusQuery, kStatusReady, 0, 0};
        } else {
            operationActive = 0;
            result.posted = 1;
            result.status = ST_MENU_MODE;
        }
        return;
    }
    if (parameter != kStatusReady) {
        return;
    }
    switch (value) {
        case 0x40: stepBusy = false; break;
        case 0x00:
        case 0x01:
        case 0x02:
        case 0x46:
        case 0xFE:
        case 0xFF:
            NextEntry() = {LinkRequest::kStatusQuery, kStatusReady, 0, 0};
            outbox.pauseMs = kPauseBeforePollMs;
            break;
        case 0x04:
        case 0x05:
        case 0x06:
        case 0x07:
        case 0x08: NextEntry() = {LinkRequest::kUnitCommand, kCommandBE, 0, 0}; break;
        case 0xFD: NextEntry() = {LinkRequest::kUnitCommand, kCommandBD, 0, 0}; break;
        default:
            operationActive = 0;
            result.posted = 1;
            result.status = ST_NOT_STOPPED;
            break;
    }
}

void DeviceLink::ReactReading(Outbox& outbox) {
    if (result.code == RC_MAP && (step == 4 || step == 6)) {
        stepBusy = false;
    } else if (result.code == RC_TITLE_READ && (step == 5 || step == 7)) {
        TitleThrough(static_cast<GroupId>(result.data >> 16) > kDiscs ? kProgressAlbum : kProgressDisc, outbox);
    }
}

void DeviceLink::ReactGroup(Outbox& outbox) {
    if (result.code == RC_TITLE_READ && step == 9) {
        TitleThrough(kProgressTrack, outbox);
        return;
    }
    if (result.code != RC_MAP || step != 8) {
        return;
    }
    if (result.data == kProbeAccepted) {
        nextRing.fill({});
        stepBusy = false;
    } else if (result.data == kProbeRefused) {
        NextEntry() = {LinkRequest::kMapQuery, kMapTracks, GroupCode(static_cast<GroupId>(operationGroup)), 0};
    } else if (result.data == kMapTracks) {
        if (nextRing[0].IsFree()) {
            step = 9;
        }
        stepBusy = false;
    }
}

void DeviceLink::ReactSending(Outbox& outbox) {
    if (result.code == RC_TITLE_WRITE && step == 10) {
        TitleThrough(kProgressWrite, outbox);
    } else {
        ReactReading(outbox);
    }
}

// One title of a queue laid out in advance: the last one ends the step, each other is told.
void DeviceLink::TitleThrough(BYTE progress, Outbox& outbox) {
    if (result.status == ST_LAST) {
        stepBusy = false;
    } else {
        outbox = {LM_PROGRESS, result.operation | static_cast<WPARAM>(progress) << 16, static_cast<LPARAM>(result.data), 0};
    }
}
