// Whatever a main unit answers: the whole link in virtual time, with a unit whose answers come from the input.
//
// The input: a byte that chooses the operation and its group, a byte that chooses ranges and unit, a byte for the seed of
// the simulation, and then what each request is answered with, one after the other, parted by the byte 0xFE. The first byte
// of an answer says what is made of the rest:
//     h  the right answer, and the rest behind it; also for every byte that is not named here
//     r  the rest as it is; the byte 0xFD parts it into portions
//     b  the rest as the payload of a block frame with the right length and check field
//     s  silence
//     e  the user edits a title first, which the rest chooses; then the right answer
//     o  another operation is started first, which the rest chooses; then the right answer, which is too late
// Aborts where something does not hold that must hold for any answers.
#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "Check.h"
#include "DeviceLink.h"
#include "Dialogue.h"
#include "MainUnit.h"
#include "Simulation.h"
#include "TitleStore.h"
#include "UnitFrames.h"
#include "UnitRequest.h"

using mainunit::UnitRequest;

namespace {

constexpr char kNextAnswer = static_cast<char>(0xFE);
constexpr char kNextPortion = static_cast<char>(0xFD);
constexpr std::size_t kHeadBytes = 3;
constexpr int kMostAnswers = 40;

constexpr DWORD kLookMs = 10;
constexpr std::uint64_t kLeastPauseUs = 120'000;
// An operation that asks nothing for longer than a request can wait for its reply has ended, or stands.
constexpr std::uint64_t kLongestQuietUs = 6'000'000;
constexpr std::uint64_t kRunLimitUs = 24ULL * 3600 * 1'000'000;

using Place = std::pair<GroupId, TrackNo>;

Place PlaceOf(const library::Entry& entry) {
    return {entry.kind == library::GroupKind::kAlbum ? AlbumGroup(entry.group) : entry.group, entry.track};
}

mainunit::MainUnit MakeUnit(unsigned choice) {
    using library::GroupKind;
    library::UnitLibrary library;
    for (int group = 1; group <= 3; ++group) {
        library.SetTitle({GroupKind::kDisc, group, 0}, "Disc of the unit");
        library.SetTitle({GroupKind::kDisc, group, 1}, "First");
        library.Add({GroupKind::kDisc, group, 2});
    }
    library.SetTitle({GroupKind::kAlbum, 1, 0}, "Album of the unit");
    library.SetTitle({GroupKind::kAlbum, 1, 3}, "Third");
    mainunit::UnitSettings settings;
    settings.probeAccepted = (choice & 0x10) != 0;
    settings.refuseMaps = (choice & 0x20) != 0;
    if ((choice & 0x40) != 0) {
        settings.status = {0xFE, 0xFD, 0x04, mainunit::kReady};
    }
    return mainunit::MainUnit(std::move(library), settings);
}

DisplayRanges MakeRanges(unsigned choice) {
    DisplayRanges ranges;
    if ((choice & 0x01) != 0) {
        ranges.discTo = ranges.albumTo = ranges.trackTo = 2;
    }
    if ((choice & 0x02) != 0) {
        ranges.discFrom = ranges.discTo = 0;
    }
    if ((choice & 0x04) != 0) {
        ranges.albumFrom = ranges.albumTo = 0;
    }
    if ((choice & 0x08) != 0) {
        ranges.trackFrom = ranges.trackTo = 0;
    }
    return ranges;
}

// The unit's end of the line: checks each frame that the link writes, and keeps the requests that want an answer.
class UnitEnd : public SerialPeer {
public:
    UnitEnd(Simulation& simulation, unsigned choice) : unit(MakeUnit(choice)) {
        simulation.AttachPort("COM1", this).OnWrite([this](std::string_view bytes, std::uint64_t timeUs, bool) {
            CheckWrite(bytes, timeUs);
        });
    }

    void OnBytes(std::string_view bytes, std::uint64_t, std::uint64_t newLastByteUs) override {
        lastByteUs = newLastByteUs;
        for (const mainunit::Reply& reply : unit.Receive(bytes)) {
            answers.push_back(reply.bytes);
        }
    }

    std::uint64_t LastByteUs() const { return lastByteUs; }

    std::deque<std::string> answers;  // the right answer to each request that has none yet
    std::set<Place> asked;
    std::set<std::pair<Place, std::string>> sent;

private:
    void CheckWrite(std::string_view bytes, std::uint64_t timeUs) {
        CHECK(!lastWriteUs || timeUs - *lastWriteUs >= kLeastPauseUs);
        lastWriteUs = timeUs;
        UnitRequest request;
        std::string problem;
        const bool sound = mainunit::ReadRequest(bytes, request, problem);
        if (!sound) {
            std::fprintf(stderr, "%s\n", mainunit::Dialogue::RequestLine(0, bytes, problem).c_str());
        }
        CHECK(sound);
        if (request.kind == UnitRequest::Kind::kTitleRead) {
            asked.insert(PlaceOf(request.entry));
        } else if (request.kind == UnitRequest::Kind::kTitleWrite) {
            writing = PlaceOf(request.entry);
        } else if (request.kind == UnitRequest::Kind::kTitleData) {
            sent.insert({writing, request.text.substr(0, request.text.find_last_not_of(' ') + 1)});
        }
    }

    mainunit::MainUnit unit;
    std::optional<std::uint64_t> lastWriteUs;
    std::uint64_t lastByteUs = 0;
    Place writing;
};

// The answers of the input.
class Script {
public:
    explicit Script(std::string_view text) : rest(text) {}

    bool IsOver() const { return rest.empty() || taken == kMostAnswers; }
    std::string_view Next() {
        const std::size_t end = rest.find(kNextAnswer);
        const std::string_view answer = rest.substr(0, end);
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
        ++taken;
        return answer;
    }

private:
    std::string_view rest;
    int taken = 0;
};

// The user, the pane's window and the reader, all on the first thread of the simulation.
class FuzzedSession {
public:
    FuzzedSession(TitleStore& titles, UnitEnd& unitEnd, std::string_view input)
        : store(titles), unit(unitEnd), choice(input), script(input.substr(kHeadBytes)) {}

    void Run();
    // After the run.
    void CheckStore() const;

private:
    static LRESULT CALLBACK WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void Fill();
    void Start(unsigned choice);
    void Edit(unsigned choice);
    void Talk();
    void Pump();
    void OnResult(BYTE status);
    void Answer(const std::string& rightAnswer, std::string_view instruction);
    void Deliver(std::string_view bytes);
    void CheckEdits() const;

    static unsigned FirstByte(std::string_view text) { return text.empty() ? 0 : static_cast<std::uint8_t>(text[0]); }

    TitleStore& store;
    UnitEnd& unit;
    std::string_view choice;
    Script script;
    DeviceLink link;
    bool standing = false;  // a status has left the operation open and idle
    std::uint64_t startedUs = 0;
    std::set<Place> filled;
    std::map<Place, std::string> edits;
    int editNumber = 0;  // no two texts are alike
};

LRESULT CALLBACK FuzzedSession::WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == LM_RESULT) {
        auto* session = reinterpret_cast<FuzzedSession*>(GetWindowLongPtrA(window, GWLP_USERDATA));
        session->OnResult(StatusOf(wParam));
        return 0;
    }
    return message == LM_PROGRESS ? 0 : DefWindowProcA(window, message, wParam, lParam);
}

void FuzzedSession::OnResult(BYTE status) {
    CHECK(status != ST_FOREIGN && status != ST_LAST);
    standing = standing || status == ST_BUSY || status == ST_NO_DATA || status == ST_TRAY_OPEN;
}

// What a session before this one has left: titles of the unit, and some of the user's.
void FuzzedSession::Fill() {
    for (const Place& place : {Place{1, 0}, {1, 1}, {1, 2}, {AlbumGroup(1), 0}, {AlbumGroup(2), 0}}) {
        store.StoreReceived(place.first, place.second, "before");
        filled.insert(place);
    }
    Edit(0);
    Edit(2);
    Edit(3);
}

void FuzzedSession::Edit(unsigned choice) {
    constexpr Place kPlaces[] = {{1, 0}, {1, 1}, {1, 2}, {AlbumGroup(1), 0}, {2, 0}, {3, 0}};
    const Place& place = kPlaces[choice % std::size(kPlaces)];
    char text[kTitleSize];
    std::snprintf(text, sizeof text, "edit %d of %d %d", ++editNumber, place.first, place.second);
    if (store.GetState(place.first, place.second) > TS_NONE && store.EditTitle(place.first, place.second, text) != 0) {
        edits[place] = text;
    }
}

void FuzzedSession::Start(unsigned choice) {
    constexpr GroupId kGroupChoices[] = {0, 1, 2, AlbumGroup(1)};
    const GroupId group = kGroupChoices[choice / 8 % std::size(kGroupChoices)];
    standing = false;
    startedUs = Simulation::Current()->Now();
    switch (choice % 8) {
        case 0: link.GetAllTitles(); break;
        case 1: link.GetOneGroup(group); break;
        case 2: link.GetGroupTracks(std::max(group, 1)); break;  // tracks are asked for by group, never for all
        case 3: link.SendAllTitles(); break;
        case 4: link.SendGroup(group); break;
        case 5: link.StopOperation(); break;
        default:
            CHECK(link.Connect("COM1"));
            link.StopReader();
            break;
    }
}

void FuzzedSession::Run() {
    WNDCLASSEXA windowClass = {};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = WindowProc;
    windowClass.lpszClassName = "FuzzedLink";
    RegisterClassExA(&windowClass);
    HWND window = CreateWindowExA(0, "FuzzedLink", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    link.SetPaneWindow(window);
    link.SetTitleStore(&store);
    link.SetDisplayRanges(MakeRanges(FirstByte(choice.substr(1))));
    Fill();
    CHECK(link.Connect("COM1"));
    // From here on this thread is the reader: its own would only look for bytes a thousand times a second.
    link.StopReader();
    Start(FirstByte(choice));
    Talk();
    link.StopOperation();
    CHECK(!link.IsOperationActive());
    Pump();
    CheckEdits();
    link.Disconnect();
    link.SetPaneWindow(nullptr);
    DestroyWindow(window);
}

// Until the script is over and the link asks once more, or has nothing to ask.
void FuzzedSession::Talk() {
    while (true) {
        Pump();
        CheckEdits();
        if (!unit.answers.empty()) {
            if (script.IsOver()) {
                return;
            }
            const std::string rightAnswer = unit.answers.front();
            unit.answers.pop_front();
            Answer(rightAnswer, script.Next());
        } else if (!link.IsOperationActive() || standing) {
            if (script.IsOver()) {
                return;
            }
            Answer({}, script.Next());
        } else {
            CHECK(Simulation::Current()->Now() < std::max(startedUs, unit.LastByteUs()) + kLongestQuietUs);
            Sleep(kLookMs);
        }
    }
}

void FuzzedSession::Pump() {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        DispatchMessageA(&message);
    }
}

void FuzzedSession::Answer(const std::string& rightAnswer, std::string_view instruction) {
    const char how = instruction.empty() ? 'h' : instruction[0];
    const std::string_view rest = instruction.substr(instruction.empty() ? 0 : 1);
    switch (how) {
        case 's': break;
        case 'r': Deliver(rest); break;
        case 'b': Deliver(mainunit::BlockFrame(rest.substr(0, 255))); break;
        case 'e':
            Edit(FirstByte(rest));
            Deliver(rightAnswer);
            break;
        case 'o':
            Start(FirstByte(rest));
            Deliver(rightAnswer);
            break;
        default: Deliver(rightAnswer + std::string(rest)); break;
    }
}

void FuzzedSession::Deliver(std::string_view bytes) {
    while (!bytes.empty()) {
        const std::string_view portion = bytes.substr(0, bytes.find(kNextPortion));
        bytes.remove_prefix(std::min(bytes.size(), portion.size() + 1));
        auto* chunk = static_cast<char*>(LocalAlloc(LMEM_FIXED, portion.size() + 1));
        std::copy(portion.begin(), portion.end(), chunk);
        chunk[portion.size()] = '\0';
        link.OnReceive(chunk, static_cast<DWORD>(portion.size()));
        if (chunk != nullptr) {
            LocalFree(chunk);
        }
    }
}

// A user's text stands where it was typed until it has gone out under that number.
void FuzzedSession::CheckEdits() const {
    for (const auto& [place, text] : edits) {
        char held[kTitleSize] = {};
        const bool stays = store.IsEdited(place.first, place.second) != 0 &&
                           store.GetTitle(place.first, place.second, held) != 0 && text == held;
        CHECK(stays || unit.sent.contains({place, text}));
    }
}

// Every title is printable, and nothing is known that nobody has asked for.
void FuzzedSession::CheckStore() const {
    for (GroupId group = 1; group <= kGroups; ++group) {
        const bool hasTracks = store.GetState(group, 1) >= TS_NONE;
        for (TrackNo track = 0; track <= (hasTracks ? kTracks : 0); ++track) {
            if (store.IsKnown(group, track) == 0) {
                continue;
            }
            CHECK(unit.asked.contains({group, track}) || filled.contains({group, track}));
            char text[kTitleSize] = {};
            store.GetTitle(group, track, text);
            const char* end = std::find(std::begin(text), std::end(text), '\0');
            CHECK(end != std::end(text));
            CHECK(std::all_of(static_cast<const char*>(text), end, [](char c) { return c >= 0x20 && c <= 0x7E; }));
            CHECK(end == text || end[-1] != ' ');
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < kHeadBytes) {
        return 0;
    }
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    Simulation::Options options;
    options.seed = data[2];
    options.traceEvents = 20;
    Simulation simulation(options);
    UnitEnd unit(simulation, data[1]);
    TitleStore store;
    std::optional<FuzzedSession> session;
    const bool done = simulation.Run(
        [&] {
            session.emplace(store, unit, input);
            session->Run();
        },
        kRunLimitUs);
    if (!done) {
        std::fputs(simulation.Report().c_str(), stderr);
    }
    CHECK(done);
    CHECK(simulation.PeriodsHeld() == 0);
    session->CheckStore();
    return 0;
}
