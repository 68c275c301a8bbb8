// Shared<T>: a flag or number that two threads touch.
//
// The product and the simulation each have a header of this name; the simulation's makes every access a point at which
// another thread may run.
#pragma once

#include <atomic>

// T is a number, an enumeration or a pointer. Every access is sequentially consistent: the order of the stores is part of
// the protocols between the threads, and a reader should not have to prove that a weaker order is enough.
template <class T>
class Shared {
public:
    constexpr Shared() noexcept : value{} {}
    constexpr Shared(T value) noexcept : value(value) {}
    Shared(const Shared&) = delete;
    Shared& operator=(const Shared&) = delete;

    T operator=(T newValue) noexcept {
        value.store(newValue);
        return newValue;
    }
    operator T() const noexcept { return value.load(); }

    T Exchange(T newValue) noexcept { return value.exchange(newValue); }
    // Adds and gives the new value.
    T Add(T amount) noexcept { return value.fetch_add(amount) + amount; }

private:
    std::atomic<T> value;
};
