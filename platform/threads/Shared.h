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
    constexpr Shared() noexcept : value_{} {}
    constexpr Shared(T value) noexcept : value_(value) {}
    Shared(const Shared&) = delete;
    Shared& operator=(const Shared&) = delete;

    T operator=(T value) noexcept {
        value_.store(value);
        return value;
    }
    operator T() const noexcept { return value_.load(); }

    T Exchange(T value) noexcept { return value_.exchange(value); }
    // Adds and gives the new value.
    T Add(T amount) noexcept { return value_.fetch_add(amount) + amount; }

private:
    std::atomic<T> value_;
};
