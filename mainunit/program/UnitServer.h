// UnitServer: one thread that carries bytes between the port and the main unit, in real time.
#pragma once

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <string>

#include "Options.h"
#include "PacedLine.h"
#include "UnitPort.h"

namespace mainunit {

class UnitServer {
public:
    // `port` is open and outlives the server, as does `log`, which is null for no log.
    UnitServer(const Options& options, UnitLibrary library, UnitPort& port, std::FILE* log);

    // Serves until `stop` is set. While it waits, and only then, the signals of `waitMask` are as there. False if the port
    // is gone or the library could not be saved in the end; both are told on the standard error.
    bool Run(const volatile std::sig_atomic_t& stop, const sigset_t& waitMask);

private:
    bool Wait(const sigset_t& waitMask);
    bool TakeIn();
    void SendOut();
    void Save();
    std::int64_t NowNs() const;
    std::int64_t NowMs() const { return NowNs() / 1'000'000; }
    void Note(const std::string& line);

    std::string libraryPath;
    UnitPort& port;
    std::FILE* log;
    MainUnit unit;
    Faults faults;
    PacedLine line;
    std::int64_t startNs;
    bool unsaved = false;   // a change is not in the file yet
    bool incoming = false;  // the last wait found bytes at the port
};

}  // namespace mainunit
