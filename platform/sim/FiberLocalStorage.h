// The end of a thread as its local storage sees it.
#pragma once

namespace sim::fiberlocals {

// Runs the callbacks for what the calling thread has set, in order of the slots, and again for what they have set anew, up
// to four times.
void ThreadEnds();
// One pass of that; true if a callback ran.
bool ClearOnce();

}  // namespace sim::fiberlocals
