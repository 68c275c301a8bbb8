// The point at which the simulation may let another thread run.
#pragma once

#include <cstdint>

namespace sim {

// How many more points the running thread may pass before the scheduler wants to hear of one. The scheduler keeps it at 0
// while somebody else could run, and far above while nobody could, so that a point without a choice costs a decrement.
// Nearly endless outside of a run.
extern std::int64_t pointsLeft;

void PointReached();

inline void SchedulingPoint() {
    if (--pointsLeft < 0) {
        PointReached();
    }
}

}  // namespace sim
