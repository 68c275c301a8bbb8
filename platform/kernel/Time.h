// The clock of the layer.
#pragma once

#include <cstdint>

namespace kernel {

inline constexpr std::int64_t kNsPerMs = 1'000'000;

// Nanoseconds of the clock that no setting of the time of day moves.
std::int64_t MonotonicNs();

}  // namespace kernel
