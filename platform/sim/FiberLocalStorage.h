// The end of a thread as its local storage sees it.
#pragma once

namespace sim::fiberlocals {

// Runs the callback for what the calling thread has set, and again for what that has set anew, up to four times.
void ThreadEnds();

}  // namespace sim::fiberlocals
