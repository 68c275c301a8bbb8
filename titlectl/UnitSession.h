// One connection to a main unit whose operations are waited for: what a command line needs of the link.
#pragma once

#include <windows.h>

#include "DeviceLink.h"
#include "TitleStore.h"

// How an operation ended.
enum class Outcome {
    kDone,
    kNoUnit,      // nobody answered
    kNoPort,      // the named port is not there
    kPortTaken,   // another program has the named port, or the user may not use it
    kBusy,        // the unit stayed busy
    kNotStopped,  // the HDD is not selected or not stopped
    kMenuMode,    // the unit is in MENU mode
    kTrayOpen,    // the disc tray is open
    kNoData,      // the HDD holds no data
    kTimeOut,     // the unit stopped answering
    kRefused,     // the unit refused a title
    kDisturbed,   // the line was disturbed again and again
    kStopped,     // the user stopped it
};

// Everything here runs on the thread that made the session; RequestStop may come from any thread.
class UnitSession {
public:
    UnitSession();
    ~UnitSession();
    UnitSession(const UnitSession&) = delete;
    UnitSession& operator=(const UnitSession&) = delete;

    bool IsReady() const { return window != nullptr; }

    // Searches COM1 to COM8, or only the named port, and waits until the unit is ready. A port without a unit is passed over
    // in the search, whatever else is on it.
    Outcome Connect(const char* name);
    // The port that Connect has found, such as "COM1".
    const char* Port() const { return port; }

    // Limits what the operations below read and write: one group, or all for 0, and one track, or all for -1. For a single
    // group's own title (track 0) no track is read.
    void Limit(GroupId group, TrackNo track);

    Outcome ReadGroupTitles();
    // The group's own title, and its tracks unless the limit says that there is none to read.
    Outcome ReadGroup(GroupId group);
    // The tracks alone, of a group whose own title was read before.
    Outcome ReadTracks(GroupId group);
    // What is edited, in the group or in all.
    Outcome SendGroup(GroupId group);
    Outcome SendAll();

    TitleStore& Store() { return store; }

    // Ends the operation that runs in good order; it answers kStopped.
    void RequestStop();

private:
    static LRESULT CALLBACK WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void OnResult(WPARAM wParam);
    void OnProgress(WPARAM wParam, LPARAM lParam) const;
    void OnWatch();
    template <class Start>
    Outcome Run(Start start);
    Outcome Wait();
    Outcome ConnectTo(const char* name);
    static Outcome OutcomeOf(BYTE status);

    TitleStore store;
    DeviceLink link;
    HWND window = nullptr;
    char port[16] = {};
    bool tracksWanted = true;
    Shared<LONG> stopRequested = 0;  // written by any thread, read by the session's
    bool ended = false;              // the operation has told its end
    bool modelFound = false;
    bool refused = false;  // a write was refused; it is repeated, and times out if it stays so
    int idleWatches = 0;   // looks in a row that found no operation and no end
    Outcome outcome = Outcome::kDone;
};
