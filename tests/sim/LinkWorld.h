// The link against the simulated main unit while everything goes wrong that the seed has chosen, and what must hold all the
// same.
#pragma once

#include <windows.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "DeviceLink.h"
#include "Faults.h"
#include "MainUnit.h"
#include "Simulation.h"
#include "TitleStore.h"

// A fault of the program that is planted on purpose: the checks must find it in every run.
enum class Canary { kNone, kWrongTitle, kLostEdit, kHastyFrame, kFrameAfterStop, kUnheardRefusal, kStaleTitle };

// What one seed has drawn. Each kind of fault is wholly on or off in a run.
struct WorldOptions {
    std::uint64_t seed = 1;
    Canary canary = Canary::kNone;

    mainunit::FaultRates rates;
    double requestsLost = 0;
    double requestsCorrupted = 0;
    int latencyMs = 5;
    bool probeAccepted = false;
    bool oddStatus = false;     // the unit is busy, has its tray open, or wants a command now and then
    bool unplugs = false;       // the line is pulled out now and then
    bool stalls = false;        // threads stand still now and then
    bool holds = false;         // threads are held for moments, often
    bool answersData = false;   // the unit answers each TitleData, late, and refuses writes now and then
    bool secondStarter = true;  // a second thread starts operations, too
    bool repliesInTime = true;  // no reply comes later than the repeat of its request

    static WorldOptions Draw(std::uint64_t seed, Canary canary);
    std::string Text() const;
};

struct WorldOutcome {
    bool passed = false;
    std::string report;  // why not, with the seed and the last events
    std::uint64_t traceHash = 0;
    double virtualSeconds = 0;
    int misfiled = 0;  // titles stored under a wrong number while replies came too late to be told apart
};

WorldOutcome RunWorld(const WorldOptions& options);

// The unit and its line, and the checks of what the link puts on it.
class UnitPeer : public SerialPeer {
public:
    UnitPeer(Simulation& simulation, const WorldOptions& options, library::UnitLibrary library);

    void OnBytes(std::string_view bytes, std::uint64_t firstByteUs, std::uint64_t lastByteUs) override;
    void Attach(SerialLine& newLine);
    SerialLine& Line() { return *line; }
    // Every fault off, and the unit ready.
    void Calm();
    // Around each start and stop, which empty the link's queue: the next request may come at once.
    void Enter() { ++calls; }
    void Leave() {
        --calls;
        released = true;
    }
    // From the beginning of a stop until the next start nothing may be asked.
    void Stopped(bool isStopped) { stoppedAt = isStopped ? std::optional(simulation.Now()) : std::nullopt; }

    const library::UnitLibrary& Library() const { return unit.Library(); }
    // The latest frames of both directions in words, and the notes of the world.
    std::string Dialogue() const;
    void Note(std::string line);
    bool EverHeld(const library::Entry& entry, const std::string& text) const;
    // The virtual time at which a text last went out in a TitleData for the entry, 0 for never. Only
    // what went out for a write that the unit had not refused counts.
    std::uint64_t SentAt(const library::Entry& entry, const std::string& text) const;
    // The virtual time of the latest refusal of a TitleWrite, 0 for never.
    std::uint64_t RefusedAt() const { return refusedAt; }
    void NoteRefusal() { refusedAt = simulation.Now(); }

private:
    using Key = std::pair<std::string, std::string>;  // name of the entry, text

    void DrawSettings();
    void NoteAnswer(const std::string& received, const std::vector<mainunit::Reply>& replies);
    void Deliver(const std::string& bytes, std::uint64_t atUs);
    void CheckWrite(std::string_view bytes, std::uint64_t timeUs);
    void CheckOrder(const std::string& bytes, std::uint64_t timeUs);
    void Remember();

    Simulation& simulation;
    WorldOptions options;
    mainunit::MainUnit unit;
    mainunit::Faults faults;
    SerialLine* line = nullptr;
    bool calm = false;
    std::uint64_t lastDelivery = 0;  // the unit answers in the order in which it was asked
    std::optional<std::uint64_t> lastWrite;
    std::deque<std::string> dialogue;  // the latest lines
    std::string lastRequest;
    std::uint64_t lastRequestTime = 0;
    int calls = 0;
    bool released = true;
    std::optional<std::uint64_t> stoppedAt;
    std::uint64_t refusedAt = 0;
    std::uint64_t lastArrival = 0;  // of bytes that were sent to the program
    library::Entry writing;
    std::set<std::string> accepted;  // entries whose latest TitleWrite the unit has accepted, by name
    std::set<Key> held;
    std::map<Key, std::uint64_t> sent;
};

// The user, the second starter, the store and the pane's window.
class LinkWorld {
public:
    LinkWorld(Simulation& simulation, UnitPeer& peer, const WorldOptions& options);
    void Run();
    int Misfiled() const { return static_cast<int>(misfiled.size()); }

private:
    struct Start {
        WORD operation;
        GroupId group;
        std::uint64_t beginUs;
        std::uint64_t endUs;  // 0 while the call lasts
        bool began;
    };
    struct Edit {
        std::string text;
        std::uint64_t timeUs;
    };

    static LRESULT CALLBACK WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    static DWORD WINAPI StarterMain(LPVOID world);
    void OnResult(WPARAM wParam);
    void Pass(DWORD ms);
    bool Connected();
    void Rage();
    void Act();
    void StopOperation();
    void StartSomething();
    bool StartOperation(WORD operation, GroupId group);
    void EditSomething();
    void UndoSomething();
    void PlantCanary();
    void Settle();
    void ComeToRest();
    void CheckSentRange();
    void CheckEdits();
    void CheckStoredTitles(GroupId lastDisc, GroupId lastAlbum, TrackNo lastTrack);
    void CheckEqualToUnit(bool all);
    GroupId AnyGroup();
    std::uint64_t Now() const { return simulation.Now(); }

    Simulation& simulation;
    UnitPeer& peer;
    WorldOptions options;
    TitleStore store;
    DeviceLink link;
    HWND window = nullptr;
    std::vector<Start> starts;
    std::map<std::pair<GroupId, TrackNo>, Edit> edits;
    std::vector<WPARAM> results;
    std::uint64_t refusalTold = 0;    // the virtual time of the latest
    bool mustEndWithMessage = false;  // the operation that runs was not stopped, and nothing else ends one in silence
    bool standing = false;            // a status has left the operation open and idle
    Shared<LONG> starterRuns = 0;
    std::set<std::string> misfiled;
    int editNumber = 0;
};
