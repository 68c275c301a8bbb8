// UnitRandom: a small generator of numbers that come out the same from the same seed on every machine and library.
#pragma once

#include <cstdint>

namespace mainunit {

// splitmix64: any seed is good, and neighbouring seeds give unrelated numbers.
class UnitRandom {
public:
    explicit UnitRandom(std::uint64_t seed) : state(seed) {}

    std::uint64_t Next() {
        std::uint64_t mixed = state += 0x9E3779B97F4A7C15U;
        mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9U;
        mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBU;
        return mixed ^ (mixed >> 31);
    }

    // `low` to `high`, both included; `low` when the range is empty.
    int Between(int low, int high) {
        if (high <= low) {
            return low;
        }
        const auto span = static_cast<std::uint64_t>(std::int64_t{high} - low) + 1;
        return static_cast<int>(low + static_cast<std::int64_t>(Next() % span));
    }

    // True at the rate given, 0 never, 1 always. Draws a number in any case.
    bool Chance(double rate) { return static_cast<double>(Next() >> 11) * 0x1.0p-53 < rate; }

private:
    std::uint64_t state;
};

}  // namespace mainunit
