#include "Simulation.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "PortObject.h"
#include "Scheduler.h"

Simulation::Simulation(const Options& options) : scheduler(std::make_unique<sim::Scheduler>(*this, options)) {}

Simulation::~Simulation() = default;

bool Simulation::Run(std::function<void()> main, std::uint64_t limitUs) {
    return scheduler->Run(std::move(main), limitUs);
}

Simulation::Outcome Simulation::Result() const {
    return scheduler->outcome;
}

std::string Simulation::Report() const {
    return scheduler->Report();
}

Simulation* Simulation::Current() {
    return sim::Scheduler::Current() == nullptr ? nullptr : &sim::Scheduler::Current()->simulation;
}

std::uint64_t Simulation::Now() const {
    return scheduler->now;
}

std::uint64_t Simulation::Random(std::uint64_t limit) {
    return scheduler->world.Below(limit);
}

bool Simulation::Chance(double probability) {
    return scheduler->world.Chance(probability);
}

void Simulation::Trace(std::string_view text) {
    scheduler->Note(text);
}

std::uint64_t Simulation::TraceHash() const {
    return scheduler->trace.Hash();
}

void Simulation::At(std::uint64_t timeUs, std::function<void()> callback) {
    scheduler->At(timeUs, std::move(callback));
}

void Simulation::SetFaults(const Faults& faults) {
    scheduler->faults = faults;
    scheduler->FaultsChanged();
}

void Simulation::Fail(std::string_view reason) {
    scheduler->End(Outcome::kFailed, reason);
}

SerialLine& Simulation::AttachPort(std::string_view name, SerialPeer* peer) {
    const std::size_t index = sim::PortIndex(name);
    scheduler->lines.resize(std::max(scheduler->lines.size(), index + 1));
    if (index == sim::kNoPort || scheduler->lines[index] != nullptr) {
        std::fprintf(stderr, "simulation: no port to attach by the name %s\n", std::string(name).c_str());
        std::abort();
    }
    scheduler->lines[index] = std::make_unique<SerialLine>(*scheduler, peer, name);
    return *scheduler->lines[index];
}

int Simulation::PeriodsHeld() const {
    return scheduler->periodsHeld;
}

std::uint64_t Simulation::Switches() const {
    return scheduler->switches;
}
