// Shared<T>: a flag or number that two threads touch, for the simulation.
//
// The interface is that of the product's header of this name. Each access is a point at which another thread may run;
// outside of a run of a simulation it is a plain access.
#pragma once

#include <atomic>

#include "SchedulingPoint.h"

// T is a number, an enumeration or a pointer. The point lies before the access, so that whatever the thread has computed
// from an earlier access can be out of date by the time of this one.
template <class T>
class Shared {
public:
    constexpr Shared() noexcept : value{} {}
    constexpr Shared(T value) noexcept : value(value) {}
    Shared(const Shared&) = delete;
    Shared& operator=(const Shared&) = delete;

    T operator=(T newValue) noexcept {
        sim::SchedulingPoint();
        value.store(newValue);
        return newValue;
    }
    operator T() const noexcept {
        sim::SchedulingPoint();
        return value.load();
    }

    T Exchange(T newValue) noexcept {
        sim::SchedulingPoint();
        return value.exchange(newValue);
    }
    // Adds and gives the new value.
    T Add(T amount) noexcept {
        sim::SchedulingPoint();
        return value.fetch_add(amount) + amount;
    }

private:
    std::atomic<T> value;
};
