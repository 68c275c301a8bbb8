#include "UnitSession.h"

#include <cstdio>
#include <cstring>

#include "Frames.h"

namespace {

constexpr char kClassName[] = "TitlectlSession";
constexpr UINT kStopMessage = WM_USER + 10;
constexpr UINT_PTR kWatchTimer = 1;
constexpr UINT kWatchPeriodMs = 250;
constexpr int kIdleWatches = 3;
constexpr int kMostTries = 3;
constexpr int kPorts = 8;

constexpr struct {
    LinkStep step;
    const char* text;
} kProgressTexts[] = {
    {LinkStep::kFindingModel, "Searching the main unit on "},
    {LinkStep::kCheckingStatus, "Checking the main unit"},
    {LinkStep::kMappingDiscs, "Asking which Discs there are"},
    {LinkStep::kMappingAlbums, "Asking which Albums there are"},
    {LinkStep::kReadingGroup, "Reading tracks"},
    {LinkStep::kWriting, "Writing titles"},
};

}  // namespace

UnitSession::UnitSession() {
    WNDCLASSEXA windowClass = {};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = WindowProc;
    windowClass.lpszClassName = kClassName;
    RegisterClassExA(&windowClass);
    window = CreateWindowExA(0, kClassName, "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    if (window == nullptr) {
        return;
    }
    SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    SetTimer(window, kWatchTimer, kWatchPeriodMs, nullptr);
    link.SetPaneWindow(window);
    link.SetTitleStore(&store);
}

UnitSession::~UnitSession() {
    link.StopOperation();
    link.Disconnect();
    link.SetPaneWindow(nullptr);
    link.SetTitleStore(nullptr);
    if (window != nullptr) {
        DestroyWindow(window);
    }
}

void UnitSession::Limit(GroupId group, TrackNo track) {
    DisplayRanges ranges;
    if (group != 0 && IsAlbum(group)) {
        ranges.discFrom = ranges.discTo = 0;
        ranges.albumFrom = ranges.albumTo = AlbumNumber(group);
    } else if (group != 0) {
        ranges.albumFrom = ranges.albumTo = 0;
        ranges.discFrom = ranges.discTo = group;
    }
    // A range of no tracks at all would keep the link from reading and writing the group's own title, too.
    tracksWanted = track != 0;
    if (track >= 0) {
        ranges.trackFrom = ranges.trackTo = track > 0 ? track : 1;
    }
    link.SetDisplayRanges(ranges);
}

Outcome UnitSession::Connect(const char* name) {
    if (name != nullptr) {
        return ConnectTo(name);
    }
    for (int i = 1; i <= kPorts; ++i) {
        char numbered[16];
        std::snprintf(numbered, sizeof numbered, "COM%d", i);
        const Outcome tried = ConnectTo(numbered);
        if (tried != Outcome::kNoUnit && tried != Outcome::kNoPort && tried != Outcome::kPortTaken) {
            return tried;
        }
    }
    return Outcome::kNoUnit;
}

Outcome UnitSession::ConnectTo(const char* name) {
    std::snprintf(port, sizeof port, "%s", name);
    Outcome result = Outcome::kDisturbed;
    for (int i = 0; i < kMostTries && result == Outcome::kDisturbed; ++i) {
        modelFound = false;
        ended = false;
        if (!link.Connect(port)) {
            return GetLastError() == ERROR_FILE_NOT_FOUND ? Outcome::kNoPort : Outcome::kPortTaken;
        }
        result = Wait();
    }
    const bool nobody = !modelFound && (result == Outcome::kTimeOut || result == Outcome::kDisturbed);
    return nobody ? Outcome::kNoUnit : result;
}

Outcome UnitSession::ReadGroupTitles() {
    return Run([this] { return link.GetAllTitles(); });
}

Outcome UnitSession::ReadGroup(GroupId group) {
    const Outcome own = Run([this, group] { return link.GetOneGroup(group); });
    if (own != Outcome::kDone || !tracksWanted) {
        return own;
    }
    const Outcome tracks = ReadTracks(group);
    if (tracks != Outcome::kTimeOut || store.GetState(group, 0) > TS_NONE) {
        return tracks;
    }
    // A unit refuses to tell the tracks of a group that it does not have, and the link waits on for another answer. So a
    // group without a title is only missing as long as the unit still answers to anything else.
    return Run([this, group] { return link.GetOneGroup(group); });
}

Outcome UnitSession::ReadTracks(GroupId group) {
    return Run([this, group] { return link.GetGroupTracks(group); });
}

Outcome UnitSession::SendGroup(GroupId group) {
    return Run([this, group] { return link.SendGroup(group); });
}

Outcome UnitSession::SendAll() {
    return Run([this] { return link.SendAllTitles(); });
}

void UnitSession::RequestStop() {
    stopRequested = 1;
    PostMessageA(window, kStopMessage, 0, 0);
}

// A void frame on the line ends an operation without a word. What was read until then is in the store, and what was not
// written is still edited there, so the operation is begun again and goes on from there.
template <class Start>
Outcome UnitSession::Run(Start start) {
    for (int i = 0; i < kMostTries; ++i) {
        ended = false;
        if (!start()) {
            return Outcome::kNoUnit;
        }
        const Outcome result = Wait();
        if (result != Outcome::kDisturbed) {
            return result;
        }
    }
    return Outcome::kDisturbed;
}

Outcome UnitSession::Wait() {
    refused = false;
    idleWatches = 0;
    outcome = Outcome::kDisturbed;
    MSG message;
    while (!ended && !stopRequested && GetMessageA(&message, nullptr, 0, 0) > 0) {
        DispatchMessageA(&message);
    }
    if (stopRequested) {
        link.StopOperation();
        return Outcome::kStopped;
    }
    return outcome;
}

LRESULT CALLBACK UnitSession::WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* session = reinterpret_cast<UnitSession*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    if (session == nullptr) {
        return DefWindowProcA(window, message, wParam, lParam);
    }
    switch (message) {
        case LM_RESULT: session->OnResult(wParam); return 0;
        case LM_PROGRESS: session->OnProgress(wParam, lParam); return 0;
        case WM_TIMER: session->OnWatch(); return 0;
        default: return DefWindowProcA(window, message, wParam, lParam);
    }
}

void UnitSession::OnResult(WPARAM wParam) {
    const BYTE status = StatusOf(wParam);
    if (CodeOf(wParam) == RC_MODEL && status == ST_OK) {
        modelFound = true;
        return;
    }
    if (status == ST_BAD_REPLY || status == ST_BAD_CHECKSUM || status == ST_NO_TITLE) {
        refused = refused || status == ST_BAD_REPLY;
        return;  // the link repeats the request, and times out if that does not help
    }
    outcome = refused && status == ST_TIMEOUT ? Outcome::kRefused : OutcomeOf(status);
    if (refused && status == ST_OK) {
        outcome = Outcome::kDisturbed;  // it is not known what was refused, and all of it is still to be sent
    }
    ended = true;
}

Outcome UnitSession::OutcomeOf(BYTE status) {
    switch (status) {
        case ST_OK: return Outcome::kDone;
        case ST_BUSY: return Outcome::kBusy;
        case ST_NO_DATA: return Outcome::kNoData;
        case ST_TRAY_OPEN: return Outcome::kTrayOpen;
        case ST_NOT_STOPPED: return Outcome::kNotStopped;
        case ST_MENU_MODE: return Outcome::kMenuMode;
        default: return Outcome::kTimeOut;
    }
}

void UnitSession::OnProgress(WPARAM wParam, LPARAM lParam) const {
    if (lParam != 0) {
        const GroupId group = GroupOfTitle(lParam);
        std::fprintf(stderr, "  %c%d %d\n", IsAlbum(group) ? 'A' : 'D', IsAlbum(group) ? AlbumNumber(group) : group,
                     TrackOfTitle(lParam));
        return;
    }
    for (const auto& [step, text] : kProgressTexts) {
        if (step == StepOf(wParam)) {
            std::fprintf(stderr, "%s%s\n", text, step == LinkStep::kFindingModel ? port : "");
        }
    }
}

// Looks for an operation that is over and has told nothing: its end would have been dispatched before the timer.
void UnitSession::OnWatch() {
    idleWatches = link.IsOperationActive() ? 0 : idleWatches + 1;
    if (idleWatches >= kIdleWatches) {
        outcome = Outcome::kDisturbed;
        ended = true;
    }
}
