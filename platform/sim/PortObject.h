// The program's end of a serial line.
#pragma once

#include "KernelObject.h"
#include "SerialLine.h"

namespace sim {

inline constexpr std::size_t kNoPort = 8;

// 0 to 7 for "COM1" to "COM8", in capitals or not, else kNoPort.
std::size_t PortIndex(std::string_view name);

class PortObject : public KernelObject {
public:
    PortObject() : KernelObject(Kind::kPort) {}
    ~PortObject() override;
    std::string Name() const override { return "a port"; }

    // False for a port that is absent, unplugged or taken; the last error is set.
    bool Open(SerialLine& newLine);
    // The plug was pulled, a write was rejected, or the simulation is gone.
    void Die() { line = nullptr; }
    // False, with that last error, for a dead port.
    bool IsAlive(DWORD error) const;

    bool SetState(const DCB& state);
    bool Write(std::string_view bytes);
    std::size_t Waiting() { return line->Received().size(); }
    std::size_t Read(char* buffer, std::size_t size);

    DCB state = {};

private:
    SerialLine* line = nullptr;  // null once the port is dead
};

}  // namespace sim
