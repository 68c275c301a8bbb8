// Events without a name.
#pragma once

#include "KernelObject.h"

namespace sim {

class Event : public KernelObject {
public:
    Event(bool manualReset, bool signalled);

    bool IsSignalled() const override { return signalled; }
    void WaitEnded() override { signalled = signalled && manualReset; }
    std::string Name() const override { return "event " + std::to_string(number); }

    // Lets all waiters go, or, with automatic reset, one of them, drawn from the seed.
    void Set();

private:
    void Release(SimThread& waiter);

    const bool manualReset;
    const std::uint32_t number;
    bool signalled;
};

}  // namespace sim
