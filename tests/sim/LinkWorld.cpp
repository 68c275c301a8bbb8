#include "LinkWorld.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <sstream>

#include "MessageWindow.h"
#include "PumpUntil.h"

using library::Entry;
using library::UnitLibrary;

namespace {

constexpr std::uint64_t kMs = 1000;
constexpr std::uint64_t kRageMs = 150'000;
// More than any operation of so small a library can take, with every request timing out once.
constexpr DWORD kOperationLimitMs = 1'500'000;
constexpr std::uint64_t kRunLimitUs = 24ULL * 3600 * 1000 * kMs;
constexpr std::uint64_t kQuickestSendUs = 200 * kMs;  // two questions about the status
constexpr GroupId kDiscCount = 5;
constexpr GroupId kAlbumCount = 3;
constexpr TrackNo kTrackCount = 4;

GroupKind KindOf(GroupId group) {
    return IsAlbum(group) ? kKindAlbum : kKindDisc;
}

Entry EntryOf(GroupId group, TrackNo track) {
    const bool album = KindOf(group) == kKindAlbum;
    return {album ? library::GroupKind::kAlbum : library::GroupKind::kDisc, album ? AlbumNumber(group) : group, track};
}

// A few Discs and Albums, some without a title, some without tracks. No two titles are alike, so a title under a wrong
// number shows.
UnitLibrary MakeLibrary(Simulation& simulation) {
    UnitLibrary library;
    for (GroupId group = 1; group <= kDiscCount + kAlbumCount; ++group) {
        const GroupId id = group <= kDiscCount ? group : AlbumGroup(group - kDiscCount);
        const auto tracks = static_cast<TrackNo>(simulation.Random(kTrackCount + 1));
        library.Add(EntryOf(id, 0));
        for (TrackNo track = 0; track <= tracks; ++track) {
            library.Add(EntryOf(id, track));
            if (!simulation.Chance(0.1)) {
                library.SetTitle(EntryOf(id, track), library::NameOf(EntryOf(id, track)) + " of the unit");
            }
        }
    }
    return library;
}

}  // namespace

WorldOptions WorldOptions::Draw(std::uint64_t seed, Canary canary) {
    mainunit::UnitRandom random(seed);
    const auto chance = [&](double of) { return random.Chance(of); };
    const auto rate = [&](double most) { return chance(0.4) ? most * random.Between(1, 10) / 10 : 0.0; };
    WorldOptions options;
    options.seed = seed;
    options.canary = canary;
    options.rates.lost = rate(0.15);
    options.rates.corrupted = rate(0.15);
    options.rates.split = rate(0.5);
    options.rates.doubled = rate(0.3);
    options.rates.stray = rate(0.1);
    options.rates.junk = rate(0.2);
    options.rates.refused = rate(0.1);
    options.rates.silence = rate(0.03);
    options.rates.late = rate(0.2);
    // To a thread that stands still a reply in time is a late one, too.
    options.stalls = chance(0.2) && canary == Canary::kNone;
    options.repliesInTime = (!chance(0.25) && !options.stalls) || canary != Canary::kNone;
    options.rates.lateMaxMs = options.repliesInTime ? 900 : 6000;
    // A second copy that is still arriving when the next request is out cannot be told from its reply. Copies come quickly
    // here, and in few pauses, or count as replies that come too late.
    options.rates.doubledDelayMs = options.repliesInTime ? 20 : 3000;
    options.rates.splitGapMs = options.repliesInTime && options.rates.doubled > 0 ? 8 : 40;
    options.requestsLost = rate(0.1);
    options.requestsCorrupted = rate(0.1);
    options.latencyMs = random.Between(1, 300);
    options.probeAccepted = chance(0.5);
    options.oddStatus = chance(0.5);
    options.unplugs = chance(0.2);
    options.secondStarter = chance(0.7);
    options.rates.foreign = rate(0.2);
    options.holds = !options.stalls && chance(0.5);
    // Which write a refusal is for cannot be known if answers are lost, or if writes are.
    options.answersData = canary == Canary::kUnheardRefusal || (options.repliesInTime && chance(0.3));
    if (options.answersData) {
        options.requestsLost = options.requestsCorrupted = 0;
        options.rates = {.late = options.rates.late, .foreign = options.rates.foreign, .lateMaxMs = options.rates.lateMaxMs};
    }
    // A canary on a line that is pulled out, or among the starts of a second thread, could not sing.
    options.unplugs = options.unplugs && canary == Canary::kNone && !options.answersData;
    options.secondStarter = options.secondStarter && canary == Canary::kNone;
    return options;
}

std::string WorldOptions::Text() const {
    std::ostringstream text;
    text << "seed=" << seed << " lost=" << rates.lost << " corrupted=" << rates.corrupted << " split=" << rates.split
         << " doubled=" << rates.doubled << " stray=" << rates.stray << " junk=" << rates.junk
         << " refused=" << rates.refused << " silence=" << rates.silence << " foreign=" << rates.foreign
         << " late=" << rates.late << " lateMaxMs=" << rates.lateMaxMs << " requestsLost=" << requestsLost
         << " requestsCorrupted=" << requestsCorrupted << " latencyMs=" << latencyMs << " probeAccepted=" << probeAccepted
         << " oddStatus=" << oddStatus << " unplugs=" << unplugs << " stalls=" << stalls << " holds=" << holds
         << " answersData=" << answersData << " secondStarter=" << secondStarter << " repliesInTime=" << repliesInTime
         << " canary=" << static_cast<int>(canary);
    return text.str();
}

WorldOutcome RunWorld(const WorldOptions& options) {
    // An assert that fails would leave no word of the seed.
    static unsigned long long seed;
    seed = options.seed;
    std::signal(SIGABRT, [](int) { std::fprintf(stderr, "repeat with: build/checked/bin/sim_run --seed %llu\n", seed); });
    Simulation::Options simulationOptions;
    simulationOptions.seed = options.seed;
    simulationOptions.traceEvents = 20;
    Simulation simulation(simulationOptions);
    UnitPeer peer(simulation, options, MakeLibrary(simulation));
    peer.Attach(simulation.AttachPort("COM1", &peer));
    WorldOutcome outcome;
    outcome.passed = simulation.Run(
        [&] {
            LinkWorld world(simulation, peer, options);
            world.Run();
            outcome.misfiled = world.Misfiled();
        },
        kRunLimitUs);
    outcome.traceHash = simulation.TraceHash();
    outcome.virtualSeconds = static_cast<double>(simulation.Now()) / 1e6;
    if (outcome.passed && simulation.PeriodsHeld() != 0) {
        outcome.passed = false;
        outcome.report = "the timer period is still held\n";
    }
    if (!outcome.passed) {
        outcome.report += simulation.Report() + "\n" + peer.Dialogue();
    }
    return outcome;
}

LinkWorld::LinkWorld(Simulation& newSimulation, UnitPeer& newPeer, const WorldOptions& newOptions)
    : simulation(newSimulation), peer(newPeer), options(newOptions) {}

void LinkWorld::Run() {
    window = MakeMessageWindow("LinkWorld", WindowProc);
    SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    link.SetPaneWindow(window);
    link.SetTitleStore(&store);
    link.SetDisplayRanges({.discTo = kDiscCount, .albumTo = kAlbumCount, .trackTo = kTrackCount});

    HANDLE starter = nullptr;
    if (options.secondStarter) {
        starterRuns = 1;
        starter = CreateThread(nullptr, 0, StarterMain, this, 0, nullptr);
    }
    if (options.stalls) {
        simulation.SetFaults({.stallChance = 0.0002, .stallMs = 1500});
    } else if (options.holds) {
        simulation.SetFaults({.stallChance = 0.1, .stallMs = 3});
    }
    Rage();
    starterRuns = 0;
    if (starter != nullptr) {
        WaitForSingleObject(starter, INFINITE);
        CloseHandle(starter);
    }
    ComeToRest();
    link.Disconnect();
    DestroyWindow(window);
}

LRESULT CALLBACK LinkWorld::WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* world = reinterpret_cast<LinkWorld*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    if (message == LM_RESULT) {
        world->OnResult(wParam);
        return 0;
    }
    return message == LM_PROGRESS ? 0 : DefWindowProcA(window, message, wParam, lParam);
}

DWORD WINAPI LinkWorld::StarterMain(LPVOID object) {
    auto* world = static_cast<LinkWorld*>(object);
    while (world->starterRuns) {
        Sleep(static_cast<DWORD>(1 + world->simulation.Random(12'000)));
        const std::uint64_t choice = world->simulation.Random(10);
        if (choice == 0) {
            world->StopOperation();
        } else {
            world->StartOperation(choice < 8 ? OP_GET_TRACKS : OP_SEND_GROUP, world->AnyGroup());
        }
    }
    return 0;
}

void LinkWorld::OnResult(WPARAM wParam) {
    results.push_back(wParam);
    mustEndWithMessage = false;
    const BYTE status = StatusOf(wParam);
    if (status == ST_BAD_REPLY && CodeOf(wParam) == RC_TITLE_WRITE) {
        refusalTold = Now();
    }
    if (status == ST_BUSY || status == ST_NO_DATA || status == ST_TRAY_OPEN) {
        standing = true;
    }
    if (status == ST_FOREIGN || status == ST_LAST) {
        simulation.Fail("a status was posted that is nobody's business");
    }
    if (wParam == OP_SEND_GROUP) {
        CheckSentRange();
    }
}

void LinkWorld::Pass(DWORD ms) {
    PumpUntil([] { return false; }, ms);
}

bool LinkWorld::Connected() {
    results.clear();
    starts.push_back({OP_CONNECT, 0, Now(), 0, false});
    const std::size_t index = starts.size() - 1;
    standing = false;
    peer.Stopped(false);
    peer.Enter();
    const bool connected = link.Connect("COM1");
    peer.Leave();
    starts[index].endUs = Now();
    starts[index].began = connected;
    return connected;
}

void LinkWorld::Rage() {
    const std::uint64_t end = Now() + kRageMs * kMs;
    Pass(10);
    Connected();
    Pass(10);
    PlantCanary();
    CheckEdits();
    while (Now() < end) {
        Act();
        CheckEdits();
    }
}

void LinkWorld::Act() {
    const std::uint64_t choice = simulation.Random(100);
    if (choice < 45) {
        simulation.Chance(0.2) ? UndoSomething() : EditSomething();
        Pass(static_cast<DWORD>(simulation.Random(400)));
    } else if (choice < 75) {
        StartSomething();
        Pass(static_cast<DWORD>(simulation.Random(8000)));
    } else if (choice < 82) {
        // Often while the driver is about to tell of a step.
        if (simulation.Chance(0.5)) {
            StartSomething();
            Pass(static_cast<DWORD>(simulation.Random(40)));
        }
        StopOperation();
    } else if (choice < 95) {
        Settle();
    } else if (choice < 98 && options.unplugs) {
        peer.Line().Unplug();
        Pass(static_cast<DWORD>(simulation.Random(5000)));
        peer.Line().Plug();
        Connected();
    } else if (choice == 99) {
        Connected();
    }
}

void LinkWorld::StopOperation() {
    mustEndWithMessage = false;
    // Of a stop beside a start it is not known here which comes first.
    peer.Stopped(!options.secondStarter);
    peer.Enter();
    link.StopOperation();
    peer.Leave();
}

GroupId LinkWorld::AnyGroup() {
    const auto number = static_cast<GroupId>(1 + simulation.Random(kDiscCount + kAlbumCount));
    return number <= kDiscCount ? number : AlbumGroup(number - kDiscCount);
}

void LinkWorld::StartSomething() {
    constexpr WORD kOperations[] = {OP_GET_ALL, OP_GET_GROUP, OP_GET_TRACKS, OP_SEND_ALL, OP_SEND_GROUP, OP_SEND_GROUP};
    const WORD operation = kOperations[simulation.Random(std::size(kOperations))];
    // Tracks are asked for by group; all the others know what all groups are.
    StartOperation(operation, operation != OP_GET_TRACKS && simulation.Chance(0.1) ? 0 : AnyGroup());
}

bool LinkWorld::StartOperation(WORD operation, GroupId group) {
    starts.push_back({operation, group, Now(), 0, false});
    const std::size_t index = starts.size() - 1;
    standing = false;
    peer.Note("        operation " + std::to_string(operation) + " for " + std::to_string(group));
    peer.Stopped(false);
    peer.Enter();
    bool began = false;
    switch (operation) {
        case OP_GET_ALL: began = link.GetAllTitles(); break;
        case OP_GET_GROUP: began = link.GetOneGroup(group); break;
        case OP_GET_TRACKS: began = link.GetGroupTracks(group); break;
        case OP_SEND_ALL: began = link.SendAllTitles(); break;
        default: began = link.SendGroup(group); break;
    }
    peer.Leave();
    starts[index].endUs = Now();
    starts[index].began = began;
    // A void frame ends an operation without a word, and of two starts at once the later one ends the earlier.
    const mainunit::FaultRates& rates = options.rates;
    mustEndWithMessage = began && !options.secondStarter && rates.stray + rates.junk + rates.corrupted + rates.split == 0;
    return began;
}

void LinkWorld::EditSomething() {
    const GroupId group = AnyGroup();
    const TrackNo track = IsAlbum(group) ? 0 : static_cast<TrackNo>(simulation.Random(kTrackCount + 1));
    if (store.GetState(group, track) <= TS_NONE) {
        return;
    }
    char text[kTitleSize];
    std::snprintf(text, sizeof text, "%s edit %d", library::NameOf(EntryOf(group, track)).c_str(), ++editNumber);
    if (store.EditTitle(group, track, text)) {
        edits[{group, track}] = {text, Now()};
    }
}

void LinkWorld::UndoSomething() {
    GroupId group = 0;
    TrackNo track = 0;
    char text[kTitleSize];
    if (store.UndoEdit(&group, &track, text) == 0) {
        return;
    }
    edits.erase({group, track});
    if (store.IsEdited(group, track)) {
        edits[{group, track}] = {text, Now()};
    }
}

void LinkWorld::PlantCanary() {
    switch (options.canary) {
        case Canary::kNone:
        case Canary::kStaleTitle: return;
        case Canary::kFrameAfterStop: {
            char frame[kFrameSize];
            DWORD written = 0;
            EncodeModelQuery(frame);
            StopOperation();
            Pass(1000);
            link.Write(frame, 5, written);
            break;
        }
        case Canary::kUnheardRefusal:
            StartOperation(OP_SEND_ALL, 0);
            peer.NoteRefusal();
            Pass(300);
            PostMessageA(window, LM_RESULT, PackResult(OP_SEND_GROUP), 0);
            Pass(10);
            break;
        case Canary::kWrongTitle: store.StoreReceived(kDiscs, 0, "a title from nowhere"); break;
        case Canary::kLostEdit:
            store.StoreReceived(1, 0, "of the unit");
            store.EditTitle(1, 0, "typed");
            edits[{1, 0}] = {"typed", Now()};
            store.StoreReceived(1, 0, "not what was typed");
            break;
        case Canary::kHastyFrame: {
            char frame[kFrameSize];
            DWORD written = 0;
            EncodeModelQuery(frame);
            link.Write(frame, 5, written);
            link.Write(frame, 5, written);
            break;
        }
    }
}

// Waits until the operation has ended or stands, as each has to.
void LinkWorld::Settle() {
    if (!PumpUntil([&] { return !link.IsOperationActive() || standing; }, kOperationLimitMs)) {
        simulation.Fail("an operation neither ends nor stands");
    }
    if (!link.IsOperationActive() && !PumpUntil([&] { return !mustEndWithMessage; }, 100)) {
        simulation.Fail("an operation has ended without a message");
    }
    CheckEdits();
    CheckStoredTitles(kDiscCount, kAlbumCount, kTrackCount);
}

// The faults are over: now everything must get through.
void LinkWorld::ComeToRest() {
    simulation.SetFaults({});
    peer.Calm();
    link.StopOperation();
    Pass(15'000);
    CheckEdits();
    if (options.unplugs) {
        Connected();
        Settle();
    }
    const auto through = [&](WORD operation, GroupId group, WPARAM result) {
        results.clear();
        if (!StartOperation(operation, group)) {
            simulation.Fail("an operation does not start on a quiet line");
            return;
        }
        Settle();
        if (!PumpUntil([&] { return std::find(results.begin(), results.end(), result) != results.end(); }, 100)) {
            simulation.Fail("an operation does not get through on a quiet line");
        }
    };
    CheckStoredTitles(kDiscs, kAlbums, kTracks);
    // A title under a wrong number can have been edited, and no unit takes that.
    if (options.repliesInTime) {
        through(OP_SEND_ALL, 0, OP_SEND_GROUP);
        CheckEdits();
        if (options.canary == Canary::kStaleTitle) {
            store.StoreReceived(1, 0, "not what the unit holds");
        }
        CheckEqualToUnit(false);
    }
    store.ResetAll();
    edits.clear();
    through(OP_GET_ALL, 0, OP_GET_ALL);
    for (GroupId group = 1; group <= kDiscCount + kAlbumCount; ++group) {
        const GroupId id = group <= kDiscCount ? group : AlbumGroup(group - kDiscCount);
        through(OP_GET_TRACKS, id, OP_GET_TRACKS);
    }
    CheckEqualToUnit(true);
}

// A send that ends with success has sent all that was edited in its range before it began.
void LinkWorld::CheckSentRange() {
    const auto found = std::find_if(starts.rbegin(), starts.rend(), [](const Start& start) { return start.began; });
    if (found == starts.rend() || (found->operation != OP_SEND_ALL && found->operation != OP_SEND_GROUP)) {
        return;
    }
    // Of two starts at once it is not known here which was the later.
    const Start last = *found;
    // It may be the end of the one before; to a thread that stands still, for any time.
    if (Now() < last.beginUs + kQuickestSendUs || (options.stalls && options.secondStarter)) {
        return;
    }
    const bool refused = peer.RefusedAt() >= last.endUs;
    for (auto other = starts.rbegin(); other != starts.rend(); ++other) {
        if (other != found && (other->endUs == 0 || other->endUs >= last.beginUs)) {
            return;
        }
    }
    if (refused && options.answersData && refusalTold < last.endUs) {
        simulation.Fail("a refused write disappears under a success");
    }
    for (const auto& [where, edit] : edits) {
        const auto& [group, track] = where;
        const bool inRange = last.group == 0 || last.operation == OP_SEND_ALL || last.group == group;
        if (inRange && !refused && edit.timeUs < last.beginUs && store.IsEdited(group, track) &&
            peer.SentAt(EntryOf(group, track), edit.text) < last.beginUs) {
            simulation.Fail("a send reports success and has left out " + library::NameOf(EntryOf(group, track)));
        }
    }
}

// An edit is either still in the store, or its text went out.
void LinkWorld::CheckEdits() {
    for (const auto& [where, edit] : edits) {
        const auto& [group, track] = where;
        char text[kTitleSize] = {};
        const bool stays = store.IsEdited(group, track) && store.GetTitle(group, track, text) && edit.text == text;
        if (!stays && peer.SentAt(EntryOf(group, track), edit.text) < edit.timeUs) {
            simulation.Fail("an edit is lost: " + edit.text);
        }
    }
}

// A title in the store is one that the unit has had under this number.
void LinkWorld::CheckStoredTitles(GroupId lastDisc, GroupId lastAlbum, TrackNo lastTrack) {
    for (GroupId group = 1; group <= AlbumGroup(lastAlbum); ++group) {
        if (group == lastDisc + 1) {
            group = AlbumGroup(1);
        }
        for (TrackNo track = 0; track <= lastTrack; ++track) {
            char text[kTitleSize];
            if (store.GetState(group, track) != TS_RECEIVED || !store.GetTitle(group, track, text) ||
                peer.EverHeld(EntryOf(group, track), text)) {
                continue;
            }
            misfiled.insert(text);
            if (options.repliesInTime) {
                simulation.Fail("a title is stored under a wrong number: " + library::NameOf(EntryOf(group, track)) + ": " +
                                text);
            }
        }
    }
}

// What the store takes for the unit's title is the unit's, of all entries or only where the store has one.
void LinkWorld::CheckEqualToUnit(bool all) {
    for (GroupId group = 1; group <= kGroups; ++group) {
        for (TrackNo track = 0; track <= kTrackCount; ++track) {
            char text[kTitleSize];
            const std::string* title = peer.Library().Title(EntryOf(group, track));
            const bool there = store.GetState(group, track) == TS_RECEIVED && store.GetTitle(group, track, text) != 0;
            if ((there && (title == nullptr || *title != text)) || (all && !there && title != nullptr)) {
                simulation.Fail("the store does not hold what the unit holds: " + library::NameOf(EntryOf(group, track)));
                return;
            }
        }
    }
}
