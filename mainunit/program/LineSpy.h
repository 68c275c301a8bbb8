// LineSpy: stands between a client and a real main unit, passes every byte on as it came, and writes down what is said.
#pragma once

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <string>

#include "UnitPort.h"
#include "UnitRequest.h"

namespace mainunit {

class LineSpy {
public:
    // Both ports are open, `client` a pseudo terminal; they outlive the spy, as does `log`.
    LineSpy(UnitPort& client, UnitPort& unit, std::FILE* log);

    // Passes on until `stop` is set. While it waits, and only then, the signals of `waitMask` are as there. False if a port
    // is gone, which is told on the standard error.
    bool Run(const volatile std::sig_atomic_t& stop, const sigset_t& waitMask);

private:
    struct Direction {
        UnitPort& from;
        UnitPort& to;
        PieceCutter cutter;
        bool isRequest;
    };

    bool Wait(const sigset_t& waitMask);
    bool Carry(Direction& direction);
    void Note(const Direction& direction, const std::string& piece);

    Direction requests;
    Direction replies;
    std::FILE* log;
    std::int64_t startMs;
    bool hasRequest = false;  // the last wait found bytes of the client
    bool hasReply = false;    // and of the unit
};

}  // namespace mainunit
