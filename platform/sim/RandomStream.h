// A stream of random numbers that depends on its seed alone (xoshiro256**, seeded by splitmix64).
#pragma once

#include <bit>
#include <cstdint>

namespace sim {

class RandomStream {
public:
    // Streams of one seed with different names are independent of each other.
    RandomStream(std::uint64_t seed, std::uint64_t name) {
        std::uint64_t mixed = seed ^ (name * 0xD1342543DE82EF95);
        for (std::uint64_t& word : state) {
            mixed += 0x9E3779B97F4A7C15;
            word = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
            word = (word ^ (word >> 27)) * 0x94D049BB133111EB;
            word ^= word >> 31;
        }
    }

    std::uint64_t Next() {
        const std::uint64_t result = std::rotl(state[1] * 5, 7) * 9;
        const std::uint64_t shifted = state[1] << 17;
        state[2] ^= state[0];
        state[3] ^= state[1];
        state[1] ^= state[2];
        state[0] ^= state[3];
        state[2] ^= shifted;
        state[3] = std::rotl(state[3], 45);
        return result;
    }

    // 0 to limit - 1; 0 for a limit of 0. Small limits, those of the scheduler, avoid the division.
    std::uint64_t Below(std::uint64_t limit) {
        if (limit <= UINT32_MAX) {
            return ((Next() >> 32) * limit) >> 32;
        }
        return Next() % limit;
    }

    // True with the given probability, 0 to 1. Draws nothing where the answer is known.
    bool Chance(double probability) {
        if (probability <= 0) {
            return false;
        }
        return probability >= 1 || static_cast<double>(Next() >> 11) * 0x1p-53 < probability;
    }

private:
    std::uint64_t state[4];
};

}  // namespace sim
